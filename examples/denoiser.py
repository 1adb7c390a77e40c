"""What the denoiser makes of a few samples: one pass, once as it is and once denoised.

    python3 examples/denoiser.py [width [samples]]

Both files are of the same paths.
"""

import sys
from typing import Sequence

from vantorPM import scene, vector3

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 320
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 16

room = scene()
eye, target = vector3(0, 1.7, 6.2), vector3(0, 1.15, 0)
room.newCamera("perspective", ["position", eye, "target", target, "fov", 38.0])

# A lamp that hangs low, and lights the walls more than what stands on the floor.
room.newLight("area", ["radiance", vector3(24, 20, 14)])
room.lightBegin()
edges = ["edge_u", vector3(0.8, 0, 0), "edge_v", vector3(0, 0, 0.8)]
room.addObject(room.newObject("quad", ["origin", vector3(-0.4, 2.99, -0.6)] + edges))
room.lightEnd()


Numbers = Sequence[float]


def wall(color: Numbers, origin: Numbers, edge_u: Numbers, edge_v: Numbers) -> None:
    room.materialBegin(room.newMaterial("diffuse", ["reflectance", vector3(*color)]))
    edges = ["edge_u", vector3(*edge_u), "edge_v", vector3(*edge_v)]
    room.addObject(room.newObject("quad", ["origin", vector3(*origin)] + edges))
    room.materialEnd()


white, ochre, teal = (0.76, 0.74, 0.7), (0.75, 0.45, 0.12), (0.1, 0.42, 0.42)
wall(white, (-2, 3, -2), (4, 0, 0), (0, 0, 9))
wall(white, (-2, 0, -2), (4, 0, 0), (0, 3, 0))
wall(ochre, (-2, 0, 7), (0, 0, -9), (0, 3, 0))
wall(teal, (2, 0, -2), (0, 0, 9), (0, 3, 0))

# Tiles, whose edges are to stay.
tiles = room.newPattern(
    "checker", ["a", vector3(0.75, 0.72, 0.66), "b", vector3(0.16, 0.15, 0.15), "scale", 6.0]
)
paint = room.newInterface("diffuse", [])
room.materialBegin(room.newMaterial("surface", ["interface", paint, "color", tiles]))
floor = ["min", vector3(-2, -0.2, -2), "max", vector3(2, 0, 7)]
room.addObject(room.newObject("box", floor))
room.materialEnd()

balls = (
    (-1.05, 0.75, -0.5, room.newInterface("conductor", ["metal", "copper", "roughness", 0.25])),
    (1.0, 0.75, -0.2, room.newInterface("plastic", ["color", vector3(0.65, 0.1, 0.1)])),
    (0.05, 0.45, 1.4, room.newInterface("dielectric", ["ior", 1.5])),
)
for x, radius, z, interface in balls:
    room.materialBegin(room.newMaterial("surface", ["interface", interface]))
    center = vector3(x, radius, z)
    room.addObject(room.newObject("sphere", ["center", center, "radius", radius]))
    room.materialEnd()

for name, denoise in (("denoiser_raw.jpg", 0), ("denoiser.jpg", 1)):
    room.imagerBegin(room.newImager("file", ["name", name, "denoise", denoise]))
room.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
for _ in range(2):
    room.imagerEnd()
