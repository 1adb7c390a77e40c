"""Handles: the ids of a scene, each of which knows its kind."""

import weakref


def with_article(noun):
    """"a light", "an object"."""
    return ("an " if noun[0] in "aeiou" else "a ") + noun


class Handle:
    """What a scene has made. It belongs to its scene, and is given where its kind is expected."""

    kind = ""

    __slots__ = ("_scene", "id", "type", "place")

    def __init__(self, scene, id, type, place):
        # Not in a circle: a scene with all its memory goes as soon as nobody holds it.
        self._scene = weakref.ref(scene)
        self.id = id
        self.type = type
        self.place = place  # where in the script it was made

    @property
    def scene(self):
        """The scene that it belongs to, as long as somebody holds that."""
        scene = self._scene()
        if scene is None:
            raise ReferenceError("the scene of {!r} is gone".format(self))
        return scene

    def __repr__(self):
        return "<{} {}{}>".format(self.kind, self.id, ' "%s"' % self.type if self.type else "")


class _Block(Handle):
    """A handle that opens a block: "with handle:"."""

    __slots__ = ()

    def __enter__(self):
        self.scene.open_block(self)
        return self

    def __exit__(self, *_):
        self.scene.close_block(self)


class Camera(Handle):
    kind = "camera"
    __slots__ = ("parameters", "transforms")


class Imager(_Block):
    """While its block is open, passes also make its file, or follow its settings."""

    kind = "imager"
    __slots__ = ("parameters",)


class Interface(Handle):
    kind = "interface"
    __slots__ = ()


class Interior(_Block):
    """Objects that are added in its block are filled with it."""

    kind = "interior"
    __slots__ = ()


class Light(_Block):
    """A light, which is on. An area light shines from the objects that are added in its block."""

    kind = "light"
    __slots__ = ("is_on",)

    def on(self):
        """Switches it on, for the passes that follow."""
        self.scene.switch_light(self, True)

    def off(self):
        """Switches it off, for the passes that follow."""
        self.scene.switch_light(self, False)


class Material(_Block):
    """Objects that are added in its block have it."""

    kind = "material"
    __slots__ = ()


class Object(Handle):
    kind = "object"
    __slots__ = ("material",)


class Pattern(Handle):
    kind = "pattern"
    __slots__ = ()


class Texture(Handle):
    kind = "texture"
    __slots__ = ()


class Trimmer(Handle):
    kind = "trimmer"
    __slots__ = ()
