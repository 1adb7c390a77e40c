"""What fills bodies: haze in beams of light, a cloud, coloured glass, and a ball within a ball.

    python3 examples/media.py [width [samples]]

An interior is what light meets within a body. Where bodies are nested, the innermost counts.
"""

import sys
from typing import Any, List

from vantorPM import scene, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 600

stage = scene()
eye, target = vector3(0, 1.9, 9.5), vector3(0, 1.45, 0)
stage.newCamera("perspective", ["position", eye, "target", target, "fov", 27.0])

# A large lamp above the front of the stage, and three spots above its back.
stage.newLight("area", ["radiance", vector3(1.9, 1.75, 1.65)])
stage.lightBegin()
lamp = ["origin", vector3(-4, 5.5, 5), "edge_u", vector3(0, 0, -5), "edge_v", vector3(8, 0, 0)]
stage.addObject(stage.newObject("quad", lamp))
stage.lightEnd()
for x, color in ((-2.6, (260, 16, 8)), (0, (14, 140, 16)), (2.6, (8, 34, 300))):
    axis = ["position", vector3(x, 6, -2), "target", vector3(0.2 * x, 0, -2)]
    stage.newLight("spot", axis + ["intensity", vector3(*color), "cutoff_angle", 11.0])

# An opacity of 0 makes a boundary that light does not notice, so that only the inside counts.
matt = stage.newInterface("diffuse", [])
nothing = stage.newMaterial("surface", ["interface", matt, "opacity", 0.0])
glass = stage.newMaterial("surface", ["interface", stage.newInterface("dielectric", ["ior", 1.5])])
stone = stage.newMaterial("diffuse", ["reflectance", vector3(0.2, 0.19, 0.18)])


def body(material: int, medium: List[Any], kind: str, parameters: List[Any]) -> None:
    stage.materialBegin(material)
    stage.interiorBegin(stage.newInterior("homogeneous", medium))
    stage.addObject(stage.newObject(kind, parameters))
    stage.interiorEnd()
    stage.materialEnd()


def ball(x: float, radius: float) -> List[Any]:
    return ["center", vector3(x, 0.85, 0), "radius", radius]


haze = ["sigma_s", 0.5, "g", 0.2]
body(nothing, haze, "box", ["min", vector3(-6, 0.01, -3.6), "max", vector3(6, 4.4, -1.2)])
body(stone, [], "box", ["min", vector3(-9, -1, -4), "max", vector3(9, 0, 9)])
body(stone, [], "box", ["min", vector3(-9, 0, -4), "max", vector3(9, 6, -3.7)])

cloud = ["sigma_t", 5.0, "albedo", vector3(0.985, 0.98, 0.97), "g", 0.3]
body(glass, ["sigma_a", vector3(0.12, 0.75, 1.9)], "sphere", ball(-2, 0.8))
body(nothing, cloud, "sphere", ball(0, 0.8))
body(glass, ["sigma_a", vector3(0.8, 0.3, 0.08)], "sphere", ball(2, 0.8))
body(nothing, ["sigma_t", 12.0, "albedo", 0.97], "sphere", ball(2, 0.4))

stage.newImager("file", ["name", "media.jpg", "display", "filmic"])
stage.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
