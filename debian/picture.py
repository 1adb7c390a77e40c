"""Draws a small picture with what was built, and looks at it."""

import vantor as vt

scene = vt.Scene(strict=True)
scene.camera("perspective", position=(0, 0, 5))
scene.light("sky")
scene.add("sphere")
values = scene.render(32, 24, samples=4).buffer().cast("B").cast("f").tolist()
assert max(values) > 0 and len(set(values)) > 100
