"""A ball under a clear sky, in ten lines of the package vantor."""

import vantor as vt

scene = vt.Scene()
scene.camera("perspective", position=(0, 2, 6), target=(0, 1, 0), fov=35)
scene.light("sky", sun_direction=(1, 2, 1))
with scene.material("plastic", color=(0.8, 0.1, 0.1)), vt.translate(0, 1, 0):
    scene.add("sphere", radius=1.0)
scene.add("quad", origin=(-9, 0, 9), edge_u=(18, 0, 0), edge_v=(0, 0, -18))
picture = scene.render(640, 480, samples=64)
picture.save("ball.png", exposure=-1.5)
