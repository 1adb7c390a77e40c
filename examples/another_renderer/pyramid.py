"""A pyramid under a lamp. What becomes of it is for the libVantor that is loaded to decide."""

import vantorPM
from vantorPM import vector3

corners = vantorPM.vector3array()
for x, y, z in ((-1, 0, -1), (1, 0, -1), (1, 0, 1), (-1, 0, 1), (0, 1.5, 0)):
    corners.add(vector3(x, y, z))
triangles = vantorPM.intarray()
for index in (0, 1, 2, 0, 2, 3, 1, 0, 4, 2, 1, 4, 3, 2, 4, 0, 3, 4):
    triangles.add(index)

scene = vantorPM.scene()
scene.newCamera("perspective", ["position", vector3(3, 2, 4), "target", vector3(0, 0.5, 0)])
imager = scene.newImager("file", ["name", "pyramid.png"])
pyramid = scene.newObject("mesh", ["points", corners, "triangles", triangles])
lamp = scene.newLight("point", ["position", vector3(2, 4, 3), "intensity", vector3(20, 20, 20)])

scene.imagerBegin(imager)
scene.lightOn(lamp)
scene.transformBegin(vantorPM.transform().translation(vector3(0, 0.2, 0)))
scene.addObject(pyramid)
scene.transformEnd()
scene.render(320, 240, 16)
scene.imagerEnd()
