"""One place at three times of a clear day: morning, noon and evening, next to each other.

    python3 examples/sky.py [width [samples]]

They are three pictures, one for each light. The sculpture is a subdivision surface: a tower of
squares, each turned against the one below, which becomes smooth in the limit, but for the
creases that wind up along its corners.
"""

import math
import sys

from vantorPM import intarray, scene, vector3, vector3array

WIDTH = int(sys.argv[1]) if len(sys.argv) > 1 else 240
SAMPLES = int(sys.argv[2]) if len(sys.argv) > 2 else 256

hill = scene()
eye, target = vector3(0, 1.0, 11), vector3(0, 2.3, 0)
hill.newCamera("perspective", ["position", eye, "target", target, "fov", 33.0])
ground = ["center", vector3(0, 0, 0), "normal", vector3(0, 1, 0), "radius", 3e3]
hill.materialBegin(hill.newMaterial("diffuse", ["reflectance", vector3(0.3, 0.27, 0.2)]))
hill.addObject(hill.newObject("disk", ground))
hill.materialEnd()

# The cage: rings of four corners, each higher and turned further; the ends are closed by faces.
points, faces, creases = vector3array(), intarray(), intarray()
RINGS = 12
for ring in range(RINGS):
    for corner in range(4):
        angle = math.radians(90 * corner + 32 * ring)
        radius = 0.75 + 0.25 * math.cos(ring * 1.1)
        points.add(vector3(radius * math.cos(angle), 0.36 * ring - 0.25, -radius * math.sin(angle)))
for ring in range(RINGS - 1):
    for corner in range(4):
        a, b = 4 * ring + corner, 4 * ring + (corner + 1) % 4
        for index in (a, b, b + 4, a + 4):
            faces.add(index)
        creases.add(a).add(a + 4)
for index in (3, 2, 1, 0, 4 * RINGS - 4, 4 * RINGS - 3, 4 * RINGS - 2, 4 * RINGS - 1):
    faces.add(index)
tower = ["points", points, "indices", faces, "crease_edges", creases, "levels", 5]
marble = hill.newInterface("plastic", ["color", vector3(0.7, 0.68, 0.64), "roughness", 0.3])
hill.materialBegin(hill.newMaterial("surface", ["interface", marble]))
hill.addObject(hill.newObject("subdivision", tower))
hill.materialEnd()

for name, sun, exposure in (
    ("morning", vector3(0.95, 0.22, 0.35), 0.0),
    ("noon", vector3(0.35, 0.9, 0.4), -1.2),
    ("evening", vector3(-0.9, 0.13, 0.25), 0.6),
):
    light = hill.newLight("sky", ["sun_direction", sun, "ground_albedo", 0.3])
    file = ["name", "sky_%s.jpg" % name, "exposure", exposure, "display", "filmic"]
    hill.imagerBegin(hill.newImager("file", file))
    hill.render(WIDTH, WIDTH * 4 // 3, SAMPLES)
    hill.imagerEnd()
    hill.lightOff(light)
