"""A lantern of patches with holes cut by trimmers, B-splines around its axis, and grass of curves.

    python3 examples/splines.py [width [samples]]
"""

import math
import random
import sys
from typing import Sequence

from vantorPM import BezierBasis, BSplineBasis, CatmullRomBasis
from vantorPM import intarray, scene, vector2, vector2array, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 400

night = scene()
view = ["position", vector3(0, 2.9, 8.5), "target", vector3(0, 1.15, 0)]
night.newCamera("perspective", view + ["fov", 30.0])
night.newLight("environment", ["radiance", vector3(0.05, 0.08, 0.15)])
night.newLight("area", ["radiance", vector3(110, 62, 24)])
night.lightBegin()
night.addObject(night.newObject("sphere", ["center", vector3(0, 1.2, 0), "radius", 0.16]))
night.lightEnd()


def add(color: Sequence[float], kind: str, *parameters: object) -> None:
    night.materialBegin(night.newMaterial("diffuse", ["reflectance", vector3(*color)]))
    night.addObject(night.newObject(kind, list(parameters)))
    night.materialEnd()


# Rows of holes: closed curves in (u, v), each a B-spline around six points.
holes = intarray()
for u, v in (((i + 0.5) / 12, 0.07 + 0.13 * j) for i in range(12) for j in range(7)):
    hexagon = vector2array()
    for angle in (math.radians(60 * corner) for corner in range(6)):
        hexagon.add(vector2(u + 0.034 * math.cos(angle), v + 0.055 * math.sin(angle)))
    hole = ["points", hexagon, "basis", BSplineBasis(), "keep", "outside"]
    holes.add(night.newTrimmer("curve", hole))

# The control points of the lantern: eight around the axis for each point of its profile.
points = vector3array()
for radius, y in ((1, -0.6), (0.7, 0), (1.2, 0.6), (1.35, 1.2), (1, 1.9), (0.5, 2.5), (1, 3)):
    for angle in (math.radians(45 * i) for i in range(8)):
        points.add(vector3(radius * math.sin(angle), y, radius * math.cos(angle)))
bases = ["basis_u", BSplineBasis(), "basis_v", CatmullRomBasis(), "wrap_u", 1]
add((0.62, 0.3, 0.2), "patches", "points", points, "columns", 8, "trimmers", holes, *bases)

blades, counts, chance = vector3array(), intarray(), random.Random(1)
for _ in range(5000):
    x, z, height = chance.uniform(-4, 4), chance.uniform(-5, 4), chance.uniform(0.15, 0.45)
    bend_x, bend_z = chance.gauss(0, 0.12), chance.gauss(0, 0.12)
    for reach, rise in ((0, 0), (0, 0.5), (0.6, 0.9), (2, 1)):
        blades.add(vector3(x + reach * bend_x, rise * height, z + reach * bend_z))
    counts.add(4)
add((0.25, 0.45, 0.1), "curves", "points", blades, "counts", counts, "basis", BezierBasis())
add((0.3, 0.27, 0.22), "disk", "normal", vector3(0, 1, 0), "radius", 7.0)

night.newImager("file", ["name", "splines.jpg", "display", "filmic"])
night.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
