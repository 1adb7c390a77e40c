"""Help: what help() says at the prompt, with the words of the renderer that is loaded."""

import vantorPM

from ._scene import Scene
from ._vocabulary import ALL

# The module has no texts of its own: its tables are those of its interface.
_MODULE = """Describes scenes to a renderer, call by call.

scene() makes a scene; its methods new...() make cameras, lights, materials and so on, each of the
name of a type and a list of names and values. vector3(x, y, z) and its like, the arrays and the
spline bases are values for such lists. What a script can name is told by vantor.vocabulary(), and
the package vantor says the same with keywords, numpy and pictures in memory."""


# Below the text of a method of Scene.
_TYPES = """

        Types: {}.
        vantor.vocabulary("{}") explains them.
        """


def document():
    """Gives texts to the module vantorPM, and the names of types to the methods of Scene."""
    vantorPM.__doc__ = vantorPM.__doc__ or _MODULE
    if not ALL.is_known:
        return
    for call in dict.fromkeys(call for call, _ in ALL.types):
        kind = call[3:].lower()
        method = getattr(Scene, kind, None)
        if method and method.__doc__:
            names = ", ".join('"%s"' % name for of, name in ALL.types if of == call)
            method.__doc__ = method.__doc__.rstrip() + _TYPES.format(names, kind)
