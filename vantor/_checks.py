"""What a scene describes in vain: looked for before each pass."""

from ._messages import tell
from ._vocabulary import ALL

# Surfaces that enclose nothing: a ray that enters glass there never leaves it.
_OPEN_SHAPES = ("quad", "disk")


def tell_all(scene, place):
    """Warns of what has no effect, each with the line where it was made; place is that of the pass.
    None of it is an error: a scene may be rendered while it grows."""
    if not ALL.is_known:
        return
    lights = [handle for handle in scene.handles if handle.kind == "light"]
    if not any(light.is_on for light in lights):
        say(scene, "render: no light is on, so that only black is seen", place)
    for handle in scene.handles:
        if handle.is_used:
            continue
        if handle.kind == "object":
            say(scene, "{!r} is never added to the scene".format(handle), handle.place)
        elif handle.kind == "material":
            say(scene, "{!r} is never used: nothing is added in its block".format(handle),
                handle.place)
        elif handle.kind == "light" and handle.type == "area" and handle.is_on:
            say(scene, "{!r} lights nothing: nothing is added in its block".format(handle),
                handle.place)


def note_added(handle, material):
    """Looks at an object that is added, and at its material, which may be None."""
    if material and material.type == "dielectric" and handle.type in _OPEN_SHAPES:
        say(handle.scene, "{!r} is glass, and needs a closed body: {!r} is open".format(
            material, handle), handle.place)


def say(scene, text, place):
    tell([(False, text)], scene.strict, place)
