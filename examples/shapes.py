"""All shapes that have a formula, and a smooth one from a rough one, before a camera with a lens.

    python3 examples/shapes.py [width [samples]]
"""

import sys
from typing import Any, List, Sequence

from vantorPM import intarray, scene, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 256
UP = vector3(0, 1, 0)

table = scene()
eye, target = vector3(-2.0, 3.6, 9.0), vector3(-0.1, 0.5, 0)
lens = ["aperture_radius", 0.09, "focus_distance", 9.6]
table.newCamera("perspective", ["position", eye, "target", target, "fov", 26.0] + lens)
for radiance, lamp in (
    ((17, 14.5, 11), ["center", vector3(-4, 5, 2.5), "normal", vector3(4, -5, -2), "radius", 1.4]),
    ((0.9, 1.0, 1.2), ["center", vector3(3, 8, 3), "normal", vector3(0, -1, 0), "radius", 6.0]),
):
    table.newLight("area", ["radiance", vector3(*radiance)])
    table.lightBegin()
    table.addObject(table.newObject("disk", lamp))
    table.lightEnd()


def add(color: Sequence[float], kind: str, *parameters: object) -> None:
    """An object of painted wood."""
    paint = table.newInterface("plastic", ["color", vector3(*color), "roughness", 0.3])
    table.materialBegin(table.newMaterial("surface", ["interface", paint]))
    table.addObject(table.newObject(kind, list(parameters)))
    table.materialEnd()


def stand(x: float, z: float, height: float) -> List[Any]:
    return ["from", vector3(x, 0, z), "to", vector3(x, height, z)]


add((0.5, 0.45, 0.4), "disk", "normal", UP, "radius", 30.0)
add((0.65, 0.1, 0.06), "sphere", "center", vector3(-1.6, 0.5, 0.7), "radius", 0.5)
add((0.75, 0.42, 0.06), "torus", "center", vector3(0, 0.2, 0.4), "major_radius", 0.5)
add((0.1, 0.32, 0.3), "cone", *stand(1.4, 0.2, 1.2), "radius", 0.5)
add((0.8, 0.7, 0.5), "cylinder", *stand(-1.0, -1.1, 1.4), "radius", 0.4)
add((0.3, 0.45, 0.16), "cone", *stand(-2.5, -0.9, 1), "radius", 0.55, "tip_radius", 0.25)
add((0.12, 0.2, 0.38), "box", "min", vector3(0.5, 0, -2.2), "max", vector3(1.4, 1.6, -1.3))
ring = ["center", vector3(0.5, 0.02, 1.8), "normal", UP, "radius", 0.45, "inner_radius", 0.22]
add((0.16, 0.22, 0.5), "disk", *ring)

# Eight corners of a rough stone; subdivision rounds it.
corners, faces = vector3array(), intarray()
bottom = ((-1, 0, 1), (1, 0, 1), (1, 0, -1), (-1, 0, -1))
for x, y, z in bottom + ((-0.3, 1.1, 1), (1, 1.3, 0.2), (0, 1.5, -1), (-1, 1.2, 0)):
    corners.add(vector3(2.4 + 0.6 * x, 0.8 * y - 0.1, -0.7 + 0.6 * z))
for i in (3, 2, 1, 0, 4, 5, 6, 7, 0, 1, 5, 4, 1, 2, 6, 5, 2, 3, 7, 6, 3, 0, 4, 7):
    faces.add(i)
add((0.42, 0.4, 0.4), "subdivision", "points", corners, "indices", faces, "levels", 5)

table.newImager("file", ["name", "shapes.jpg", "exposure", 0.5, "display", "filmic"])
table.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
