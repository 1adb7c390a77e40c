"""The Cornell box: a room, a lamp, two blocks. Draws cornell_box.png in a minute or less.

    python3 examples/cornell_box.py [width [samples]]

Lengths are in metres, angles in degrees, colours in linear light.
"""

import os
import sys

from vantorPM import intarray, scene, transform, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 512
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 256
WHITE, RED, GREEN = vector3(0.73, 0.73, 0.73), vector3(0.63, 0.06, 0.05), vector3(0.14, 0.45, 0.09)

# The camera stands in front of the open side and looks in.
box = scene()
box.newCamera("perspective", ["position", vector3(2.78, 2.73, -8.0),
                              "target", vector3(2.78, 2.73, 0.0), "fov", 37.6])

# The room's corners: four in front, four behind them; add() returns the array, so that calls chain.
corners = vector3array()
for z in (0.0, 5.6):
    corners.add(vector3(0, 0, z)).add(vector3(5.56, 0, z))
    corners.add(vector3(5.56, 5.49, z)).add(vector3(0, 5.49, z))

# What is added within a material block is made of that material, which reflects a fraction of red,
# green and blue light. Four of the corners, counter-clockwise, are a wall.
for color, walls in ((WHITE, (0, 1, 5, 4, 3, 7, 6, 2, 4, 5, 6, 7)),  # floor, ceiling, back
                     (RED, (1, 2, 6, 5)), (GREEN, (0, 4, 7, 3))):
    quads = intarray()
    for corner in walls:
        quads.add(corner)
    box.materialBegin(box.newMaterial("diffuse", ["reflectance", color]))
    box.addObject(box.newObject("mesh", ["points", corners, "quads", quads]))
    box.materialEnd()

# Objects within a light block shine: here a small quad below the ceiling, facing down.
box.newLight("area", ["radiance", vector3(18.4, 15.6, 8.0)])
box.lightBegin()
box.addObject(box.newObject("quad", ["origin", vector3(2.13, 5.48, 2.27),
                                     "edge_u", vector3(1.3, 0, 0), "edge_v", vector3(0, 0, 1.05)]))
box.lightEnd()

# One cube, placed twice; compose() goes outwards: first the size, then the turn, then the place.
cube = box.newObject("box", ["min", vector3(-0.5, 0, -0.5), "max", vector3(0.5, 1, 0.5)])
box.materialBegin(box.newMaterial("diffuse", ["reflectance", WHITE]))
for height, angle, x, z in ((1.65, 17.0, 1.86, 1.69), (3.30, -17.0, 3.69, 3.51)):
    place = transform().scaling(vector3(1.65, height, 1.65))
    place.compose(transform().rotationAroundY(angle))
    place.compose(transform().translation(vector3(x, 0, z)))
    box.transformBegin(place)
    box.addObject(cube)
    box.transformEnd()
box.materialEnd()

box.newImager("file", ["name", "cornell_box.png", "exposure", 0.8])  # in stops
box.render(WIDTH, WIDTH, SAMPLES)
print("The picture is in", os.path.abspath("cornell_box.png"))
