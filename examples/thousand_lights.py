"""A thousand lanterns above a temple at night, each a light of its own.

    python3 examples/thousand_lights.py [width [samples]]
"""

import math
import random
import sys
from typing import Sequence

from vantorPM import scene, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 64

night = scene()
view = ["position", vector3(3.2, 1.7, 11.5), "target", vector3(0, 2.0, 0)]
night.newCamera("perspective", view + ["fov", 36.0])
night.newLight("environment", ["radiance", vector3(0.004, 0.006, 0.012)])


def lantern(x: float, y: float, z: float, radius: float, color: Sequence[float]) -> None:
    night.newLight("area", ["radiance", vector3(*color)])
    night.lightBegin()
    ball = ["center", vector3(x, y, z), "radius", radius]
    night.addObject(night.newObject("sphere", ball))
    night.lightEnd()


# They rise on a spiral, and some drift away from it.
chance = random.Random(1)
for i in range(1000):
    angle, rise = 0.21 * i, (i / 1000) ** 0.8
    away = 2.9 + 1.6 * rise + chance.gauss(0, 0.25 + 0.5 * rise)
    warm = chance.uniform(0.2, 0.55)
    lantern(away * math.sin(angle), 0.25 + 6 * rise + chance.gauss(0, 0.15), away * math.cos(angle),
            chance.uniform(0.03, 0.05), (5, 5 * warm, 5 * warm * warm))


def stone(kind: str, *parameters: object) -> None:
    night.addObject(night.newObject(kind, list(parameters)))


night.materialBegin(night.newMaterial("diffuse", ["reflectance", vector3(0.7, 0.66, 0.6)]))
for size, y in ((2.3, 0.0), (2.1, 0.12), (1.9, 0.24), (2.0, 2.3)):
    stone("box", "min", vector3(-size, y, -size), "max", vector3(size, y + 0.12, size))
for x, z in ((x, z) for x in range(-2, 3) for z in range(-2, 3) if 2 in (abs(x), abs(z))):
    foot, top = vector3(0.85 * x, 0.36, 0.85 * z), vector3(0.85 * x, 2.3, 0.85 * z)
    stone("cylinder", "from", foot, "to", top, "radius", 0.14)
stone("cone", "from", vector3(0, 2.42, 0), "to", vector3(0, 3.5, 0), "radius", 1.9)
night.materialEnd()

water = night.newInterface("plastic", ["color", vector3(0.02, 0.03, 0.04), "roughness", 0.12])
night.materialBegin(night.newMaterial("surface", ["interface", water]))
stone("disk", "normal", vector3(0, 1, 0), "radius", 40.0)
night.materialEnd()

night.newImager("file", ["name", "thousand_lights.jpg", "display", "filmic", "exposure", 1.2])
night.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
