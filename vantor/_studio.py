"""Studio: a camera, a sky and a ground by which an unknown model is seen well."""

import math

from ._scene import Scene
from ._transforms import translate


def scene_of_model(model, size):
    """A scene with the model, for a picture of that size."""
    low, high = model.bounds()
    center = tuple((a + b) / 2 for a, b in zip(low, high))
    # Scaled to a radius of 1, whatever its unit, and put on the ground.
    radius = math.dist(low, high) / 2
    if not 0 < radius < math.inf:
        raise OSError("the model has no size")
    factor = 1 / radius
    below = (center[1] - low[1]) * factor

    scene = Scene()
    fov = 35.0
    # The sphere around it fits into the narrower side.
    aspect = min(1.0, size[0] / size[1])
    half_angle = math.atan(math.tan(math.radians(fov / 2)) * aspect)
    distance = 1.05 / math.sin(half_angle)
    direction = (0.55, 0.4, 0.75)
    length = math.hypot(*direction)
    position = [below * (axis == 1) + distance * direction[axis] / length for axis in range(3)]
    scene.camera("perspective", position=position, target=(0, below, 0), fov=fov)
    scene.light("sky", sun_direction=(-0.4, 1.0, 0.8), scale=0.3)
    with scene.material("diffuse", reflectance=0.35):
        scene.add("disk", normal=(0, 1, 0), radius=100.0)
    middle = (0, below, 0)
    offset = translate(*(m - factor * c for m, c in zip(middle, center)))
    scene.add(model, transform=offset, scale=factor)
    return scene
