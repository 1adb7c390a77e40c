"""A height field of a quarter of a million points, from numpy to a picture without a loop."""

import numpy

import vantor as vt

SIDE = 512

x, z = numpy.meshgrid(numpy.linspace(-4, 4, SIDE), numpy.linspace(-4, 4, SIDE))
distance = numpy.hypot(x, z)
y = 0.6 * numpy.cos(4 * distance) * numpy.exp(-0.4 * distance)
points = numpy.stack([x, y, z], axis=-1).reshape(-1, 3)

corner = numpy.arange(SIDE * SIDE).reshape(SIDE, SIDE)[:-1, :-1].ravel()
quads = numpy.stack([corner, corner + SIDE, corner + SIDE + 1, corner + 1], axis=-1)
heat = (y.ravel() - y.min()) / numpy.ptp(y)
colors = numpy.stack([heat, 0.3 + 0 * heat, 1 - heat], axis=-1)

scene = vt.Scene(strict=True)
scene.camera("perspective", position=(3, 4, 7), target=(0, -0.3, 0), fov=40)
scene.light("sky", sun_direction=(-2, 1.5, 1))
with scene.material("plastic", color=1.0, roughness=0.2):
    scene.add("mesh", points=points, quads=quads, colors=colors)
picture = scene.render(640, 480, samples=64, aovs="depth")
picture.save("height_field.png", exposure=-1)
print("nearest point: %.2f" % picture.depth[picture.depth > 0].min())
