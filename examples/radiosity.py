"""A room lit by way of its ceiling: the left half by paths alone, the right half by radiosity.

    python3 examples/radiosity.py [width [samples]]

Both halves have the same number of samples. They are windows of one picture, in files of their own.
"""

import sys
import time
from typing import Sequence, Tuple

from vantorPM import scene, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 32

room = scene(20000)  # the number of patches that radiosity divides the surfaces into
eye, target = vector3(0, 1.65, 4.9), vector3(0, 1.6, 0)
room.newCamera("perspective", ["position", eye, "target", target, "fov", 48.0])


Range = Tuple[float, float]


def box(color: Sequence[float], x: Range, y: Range, z: Range) -> None:
    """A box between two numbers along each axis, and its mirror image on the other side."""
    room.materialBegin(room.newMaterial("diffuse", ["reflectance", vector3(*color)]))
    for a, b in ((x[0], x[1]), (-x[1], -x[0])):
        corners = ["min", vector3(a, y[0], z[0]), "max", vector3(b, y[1], z[1])]
        room.addObject(room.newObject("box", corners))
    room.materialEnd()


white, wood, blue, brick = (0.78, 0.76, 0.72), (0.5, 0.33, 0.2), (0.2, 0.32, 0.5), (0.7, 0.42, 0.3)
box(wood, (0, 2.6), (-0.1, 0), (-3, 5))
box(white, (0, 2.6), (3.2, 3.3), (-3, 5))
box(brick, (0, 2.6), (0, 3.2), (-3.1, -3))
box(white, (0, 2.6), (0, 3.2), (5, 5.1))
box(white, (2.6, 2.7), (0, 3.2), (-3, 5))
box(blue, (0.9, 1.9), (0, 0.9), (-1.9, -0.9))
box(white, (0.35, 0.85), (0, 1.8), (-2.6, -2.1))
box(wood, (1.3, 1.8), (0, 0.45), (0.3, 0.8))

# A shelf along each wall hides a lamp that shines upwards: only the ceiling sees it.
box(white, (2.15, 2.55), (2.45, 2.5), (-2.9, 4.9))
box(white, (2.15, 2.2), (2.5, 2.6), (-2.9, 4.9))
room.newLight("area", ["radiance", vector3(9, 7.6, 5.6)])
room.lightBegin()
for x in (-2.45, 2.25):
    edges = ["edge_u", vector3(0.2, 0, 0), "edge_v", vector3(0, 0, -7.6)]
    room.addObject(room.newObject("quad", ["origin", vector3(x, 2.52, 4.8)] + edges))
room.lightEnd()

for name, left, right in (("paths", 0.0, 0.5), ("patches", 0.5, 1.0)):
    start = time.perf_counter()
    if name == "patches":
        room.radiosity()
    file = ["name", "radiosity_%s.jpg" % name, "exposure", 0.5, "display", "filmic"]
    room.imagerBegin(room.newImager("file", file))
    room.render(WIDTH, WIDTH * 3 // 4, SAMPLES, left, 0.0, right, 1.0)
    room.imagerEnd()
    print("By %s: %.1f s" % (name, time.perf_counter() - start))
