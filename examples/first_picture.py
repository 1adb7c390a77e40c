"""A ball on a floor in the sun: the shortest way to a picture."""

from vantorPM import scene, vector3

ball = scene()
ball.newCamera("perspective", ["position", vector3(0, 2, 6), "target", vector3(0, 1, 0),
                               "fov", 35.0])
ball.newImager("file", ["name", "first_picture.png"])
ball.newLight("distant", ["direction", vector3(-1, -2, -1), "irradiance", vector3(3.0, 2.7, 2.3)])
ball.newLight("point", ["position", vector3(4, 5, 4), "intensity", vector3(4, 9, 16)])
ball.addObject(ball.newObject("sphere", ["center", vector3(0, 1, 0), "radius", 1.0]))
ball.addObject(ball.newObject("quad", ["origin", vector3(-9, 0, 9), "edge_u", vector3(18, 0, 0),
                                       "edge_v", vector3(0, 0, -18)]))
ball.render(640, 480, 64)
