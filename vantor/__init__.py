"""vantor: scenes and pictures in Python's own words, on top of the module vantorPM.

    import vantor as vt

    scene = vt.Scene()
    scene.camera("perspective", position=(0, 2, 6), target=(0, 1, 0), fov=35)
    scene.light("sky", sun_direction=(1, 2, 1))
    with scene.material("plastic", color=(0.8, 0.1, 0.1)), vt.translate(0, 1, 0):
        scene.add("sphere", radius=1.0)
    scene.render(640, 480, samples=64).save("ball.png")

vocabulary() tells what the renderer knows, vocabulary("perspective") what a type takes.
"""

from . import _companion

_companion.check()

from ._handles import (
    Camera,
    Handle,
    Imager,
    Interface,
    Interior,
    Light,
    Material,
    Object,
    Pattern,
    Texture,
    Trimmer,
)
from . import _help, _native
from ._job import Job, JobError
from ._messages import SceneError, SceneWarning
from ._models import Model, load
from ._parts import merge
from ._picture import Picture
from ._points import Points, points
from ._scene import Scene
from ._transforms import Transform, look_at, matrix, rotate, scale, translate
from ._values import to_numpy
from ._viewer import View
from ._vocabulary import vocabulary

_help.document()

__version__ = _native.version

__all__ = [
    "Camera",
    "Handle",
    "Imager",
    "Interface",
    "Interior",
    "Job",
    "JobError",
    "Light",
    "Material",
    "Model",
    "Object",
    "Pattern",
    "Picture",
    "Points",
    "Scene",
    "SceneError",
    "SceneWarning",
    "Texture",
    "Transform",
    "Trimmer",
    "View",
    "load",
    "look_at",
    "matrix",
    "merge",
    "points",
    "rotate",
    "scale",
    "to_numpy",
    "translate",
    "vocabulary",
]
