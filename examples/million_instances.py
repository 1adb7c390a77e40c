"""A million columns, whose heights are waves on a pond: one box, in a million places.

    python3 examples/million_instances.py [width [samples [columns in a row]]]
"""

import math
import sys

from vantorPM import scene, transform, transformarray, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 128
COUNT = int(sys.argv[3]) if len(sys.argv) > 3 else 1000

pond = scene()
eye, target = vector3(8, 13, 33), vector3(2, -1.0, 3)
pond.newCamera("perspective", ["position", eye, "target", target, "fov", 30.0])
pond.newLight("sky", ["sun_direction", vector3(-0.85, 0.32, -0.25), "turbidity", 3.0])


def height(x: float, z: float) -> float:
    """Two rings of waves that meet."""
    first, second = math.hypot(x + 6, z - 2), math.hypot(x - 9, z + 8)
    wave = math.sin(1.6 * first) * math.exp(-0.06 * first)
    return 2.5 + 0.7 * wave + 0.5 * math.sin(2.1 * second) * math.exp(-0.07 * second)


# A column stands on 0 and is 1 high; each place scales it to its height and moves it there.
SIDE = 60.0
STEP = SIDE / COUNT
places, scaling, moving = transformarray(), transform(), transform()
for row in range(COUNT):
    z = (row + 0.5) * STEP - SIDE / 2
    for column in range(COUNT):
        x = (column + 0.5) * STEP - SIDE / 2
        scaling.scaling(vector3(STEP, height(x, z), STEP))
        places.add(scaling.compose(moving.translation(vector3(x, 0, z))))

column = pond.newObject("box", ["min", vector3(-0.5, 0, -0.5), "max", vector3(0.5, 1, 0.5)])
paint = pond.newInterface("plastic", ["color", vector3(0.16, 0.42, 0.5), "roughness", 0.3])
pond.materialBegin(pond.newMaterial("surface", ["interface", paint]))
pond.addObject(pond.newObject("instances", ["object", column, "places", places]))
pond.materialEnd()

imager = ["name", "million_instances.jpg", "exposure", -0.5, "display", "filmic"]
pond.newImager("file", imager)
pond.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
