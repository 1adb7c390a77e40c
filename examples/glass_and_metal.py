"""Glass, metal and paint: balls of different interfaces in a photographer's studio.

    python3 examples/glass_and_metal.py [width [samples]]

Behind: rough gold, silver, rough copper, plastic. In front: clear glass, frosted glass, car paint.
"""

import sys
from typing import Any, List, Sequence, Tuple

from vantorPM import scene, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 256

studio = scene()
eye, target = vector3(0, 5.8, 10.2), vector3(0, 0.45, 0.2)
studio.newCamera("perspective", ["position", eye, "target", target, "fov", 26.0])


def quad(origin: Sequence[float], edge_u: Sequence[float], edge_v: Sequence[float]) -> None:
    corner = ["origin", vector3(*origin), "edge_u", vector3(*edge_u), "edge_v", vector3(*edge_v)]
    studio.addObject(studio.newObject("quad", corner))


# Two softboxes, a warm one on the left and a cool one on the right, and a little light all around.
studio.newLight("area", ["radiance", vector3(7.5, 6.3, 5.0)])
studio.lightBegin()
quad((-6, 1, 4), (0.5, 0.5, -4.5), (2.0, 4, -0.5))
studio.lightEnd()
studio.newLight("area", ["radiance", vector3(4.0, 4.1, 4.4)])
studio.lightBegin()
quad((5.5, 0.5, 3.5), (-0.5, 4, 0), (0, 0, -5))
studio.lightEnd()
studio.newLight("environment", ["radiance", vector3(0.1, 0.1, 0.11)])

colors = ["a", vector3(0.34, 0.32, 0.3), "b", vector3(0.11, 0.11, 0.12), "scale", 24.0]
matt = studio.newInterface("diffuse", [])
squares = studio.newPattern("checker", colors)
studio.materialBegin(studio.newMaterial("surface", ["interface", matt, "color", squares]))
quad((-12, 0, 8), (24, 0, 0), (0, 0, -24))
studio.materialEnd()

green, blue = vector3(0.62, 0.92, 0.76), vector3(0.02, 0.1, 0.42)
balls: List[Tuple[float, float, float, str, List[Any]]] = [
    (-2.7, -0.5, 0.9, "conductor", ["metal", "gold", "roughness", 0.35]),
    (-0.9, -1.1, 0.9, "conductor", ["metal", "silver"]),
    (0.9, -1.1, 0.9, "conductor", ["metal", "copper", "roughness", 0.5]),
    (2.7, -0.5, 0.9, "plastic", ["color", vector3(0.62, 0.04, 0.03)]),
    (-1.65, 1.5, 0.62, "dielectric", ["ior", 1.5]),
    (0.0, 1.8, 0.55, "dielectric", ["ior", 1.5, "roughness", 0.35, "color", green]),
    (1.65, 1.5, 0.62, "principled", ["base_color", blue, "metallic", 0.5, "clearcoat", 1.0]),
]
for x, z, radius, interface, parameters in balls:
    ball = ["interface", studio.newInterface(interface, parameters)]
    studio.materialBegin(studio.newMaterial("surface", ball))
    sphere = ["center", vector3(x, radius, z), "radius", radius]
    studio.addObject(studio.newObject("sphere", sphere))
    studio.materialEnd()

studio.newImager("file", ["name", "glass_and_metal.jpg", "exposure", -0.5, "display", "filmic"])
studio.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
