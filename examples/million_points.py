"""A million points, each with a colour of its own: the stars of a spiral galaxy.

    python3 examples/million_points.py [width [samples [points]]]
"""

import math
import random
import sys

from vantorPM import floatarray, scene, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 128
COUNT = int(sys.argv[3]) if len(sys.argv) > 3 else 1000000

galaxy = scene()
eye, target = vector3(0, 5.2, 9.4), vector3(0, -0.2, 0.4)
galaxy.newCamera("perspective", ["position", eye, "target", target, "fov", 38.0])
galaxy.newLight("environment", ["radiance", 0.8])
galaxy.newLight("point", ["position", vector3(0, 1.2, 0), "intensity", vector3(5, 4.3, 3.5)])

# Two arms wind around the middle, a bulge of old stars; beyond them few are left.
chance = random.Random(3)
positions, radii, colors = vector3array(), floatarray(), vector3array()
for i in range(COUNT):
    if i % 5 == 0:
        distance = abs(chance.gauss(0, 0.55))
        turn = chance.uniform(0, 2 * math.pi)
        height, spread = 0.5 * chance.gauss(0, max(0.05, 0.5 - 0.4 * distance)), 0.0
    else:
        distance = 0.5 + chance.expovariate(0.7) % 4.5
        spread = chance.gauss(0, 0.26)
        turn = math.pi * (i % 2) + 2.4 * math.log(distance / 0.5) + spread
        height = chance.gauss(0, 0.04 + 0.02 * distance)
    positions.add(vector3(distance * math.cos(turn), height, distance * math.sin(turn)))
    radii.add(0.004 + 0.006 * chance.random() ** 3)
    # Young and blue along the middle of an arm, red at its side, yellow in the bulge.
    age = min(1.0, abs(spread) / 0.5) if i % 5 else 0.75
    colors.add(vector3(0.35 + 0.6 * age, 0.5 + 0.15 * age, 1.0 - 0.7 * age))

dust = galaxy.newInterface("diffuse", ["reflectance", 0.9])
galaxy.materialBegin(galaxy.newMaterial("surface", ["interface", dust]))
galaxy.addObject(galaxy.newObject(
    "points", ["positions", positions, "radii", radii, "colors", colors]))
galaxy.materialEnd()

imager = ["name", "million_points.jpg", "exposure", 0.3, "display", "filmic", "background", 0]
galaxy.newImager("file", imager)
galaxy.render(WIDTH, WIDTH * 9 // 16, SAMPLES)
