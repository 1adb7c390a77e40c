"""Patterns: marble of noise, a shell with holes, hammered copper, a gradient, a picture, tiles.

    python3 examples/patterns.py [width [samples]]
"""

import sys
from typing import Any, List

from vantorPM import scene, vector2, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 640
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 256
PICTURE = sys.path[0] + "/../docs/cornell_box.png"

room = scene()
view = ["position", vector3(0, 2.2, 9.5), "target", vector3(0, 1.55, 0), "fov", 31.0]
room.newCamera("perspective", view)


def add(kind: str, parameters: List[Any], *surface: object) -> None:
    room.materialBegin(room.newMaterial("surface", ["interface", *surface]))
    room.addObject(room.newObject(kind, parameters))
    room.materialEnd()


room.newLight("environment", ["radiance", vector3(0.16, 0.17, 0.19)])
room.newLight("area", ["radiance", vector3(26, 24, 21)])
room.lightBegin()
room.addObject(room.newObject("sphere", ["center", vector3(-5, 5.5, 4), "radius", 1.5]))
room.lightEnd()
matt = room.newInterface("diffuse", [])
paint = room.newInterface("plastic", ["roughness", 0.25])
copper = room.newInterface("conductor", ["metal", "copper", "roughness", 0.3])

# Marble is a mix of two colours, of which one is the grain; the amount is noise, too.
grain = room.newPattern("noise", ["a", 0.55, "b", 0.95, "scale", 9.0])
vein = room.newPattern("noise", ["b", 0.7, "scale", 1.7, "octaves", 8, "gain", 0.6])
marble = room.newPattern("mix", ["a", vector3(0.01, 0.07, 0.05), "b", grain, "amount", vein])
holes = room.newPattern("checker", ["scale", vector2(28, 14)])
dents = room.newPattern("noise", ["scale", 5.0, "octaves", 2])
hues = vector3array().add(vector3(0, 0.4, 0.5)).add(vector3(0.9, 0.7, 0.1)).add(vector3(0.7, 0, 0))
rainbow = room.newPattern("gradient", ["colors", hues, "direction", vector3(0, 1, 0)])
balls = [["center", vector3(x, 0.8, 0.3), "radius", 0.8] for x in (-2.55, -0.85, 0.85, 2.55)]
add("sphere", balls[0], paint, "color", marble)
add("sphere", balls[1], matt, "color", vector3(0.8, 0.6, 0.2), "opacity", holes)
add("sphere", balls[2], copper, "bump", dents, "bump_height", 0.12)
add("sphere", balls[3], paint, "color", rainbow)

colors = ["a", vector3(0.5, 0.47, 0.42), "b", vector3(0.17, 0.13, 0.11), "space", "object"]
tiles = room.newPattern("checker", colors + ["scale", vector3(1, 0, 1)])
image = room.newPattern("image", ["texture", room.newTexture(PICTURE)])
add("disk", ["normal", vector3(0, 1, 0), "radius", 8.0], paint, "color", tiles)
wall = ["origin", vector3(-8, 0, -2), "edge_u", vector3(16, 0, 0), "edge_v", vector3(0, 9, 0)]
add("quad", wall, matt, "color", vector3(0.45, 0.5, 0.55))
add("box", ["min", vector3(-1, 1.9, -2), "max", vector3(1, 3.9, -1.9)], copper)
canvas = ["origin", vector3(-0.9, 2, -1.89), "edge_u", vector3(1.8, 0, 0)]
add("quad", canvas + ["edge_v", vector3(0, 1.8, 0)], matt, "color", image)

room.newImager("settings", ["clamp", 2.0])  # no dots of light that the copper throws
room.newImager("file", ["name", "patterns.jpg", "display", "filmic"])
room.render(WIDTH, WIDTH * 3 // 4, SAMPLES)
