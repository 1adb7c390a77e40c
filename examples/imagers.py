"""What one pass can show: the picture, and the colours, normals and depths of what it sees.

    python3 examples/imagers.py [width [samples]]

Every imager whose block is open writes a file, all of the same paths.
"""

import sys
from typing import Any, List, Sequence

from vantorPM import scene, transform, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 320
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 400

steps = scene()
eye, target = vector3(3.5, 3.4, 9.2), vector3(0, 1.8, 0)
steps.newCamera("perspective", ["position", eye, "target", target, "fov", 35.0])
steps.newLight("sky", ["sun_direction", vector3(-0.9, 1.0, 0.7), "scale", 0.55])


def add(color: Sequence[float], kind: str, parameters: List[Any]) -> None:
    paint = steps.newInterface("plastic", ["color", vector3(*color), "roughness", 0.3])
    steps.materialBegin(steps.newMaterial("surface", ["interface", paint]))
    steps.addObject(steps.newObject(kind, parameters))
    steps.materialEnd()


plate = ["from", vector3(0, -0.3, 0), "to", vector3(0, 0, 0), "radius", 3.3]
add((0.45, 0.4, 0.34), "cylinder", plate)

# A winding stair: each step is turned by 20 degrees and 0.22 higher than the one before.
step = ["min", vector3(0.2, 0, -0.3), "max", vector3(2.0, 0.16, 0.3)]
for i in range(14):
    place = transform().rotationAroundY(20.0 * i + 60)
    steps.transformBegin(place.compose(transform().translation(vector3(0, 0.22 * i, 0))))
    add((0.75 - 0.045 * i, 0.2 + 0.02 * i, 0.12 + 0.04 * i), "box", step)
    steps.transformEnd()
add(
    (0.8, 0.75, 0.65),
    "cylinder",
    ["from", vector3(0, 0, 0), "to", vector3(0, 3.6, 0), "radius", 0.24],
)
add((0.9, 0.6, 0.1), "sphere", ["center", vector3(0, 3.85, 0), "radius", 0.38])

for what in ("color", "albedo", "normal", "depth"):
    name = "imagers_%s.jpg" % what
    steps.imagerBegin(steps.newImager("file", ["name", name, "what", what]))
steps.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
for _ in range(4):
    steps.imagerEnd()
