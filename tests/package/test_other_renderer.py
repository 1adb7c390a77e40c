"""The package on a libVantor that has the interface and nothing else: the counting example."""

import os
import unittest

from scenes import run_script

LIBRARY = os.path.join(os.environ.get("VANTOR_BUILD", ""), "another_renderer")

SCENE = """import vantor as vt
s = vt.Scene()
s.camera("perspective", position=(0, 0, 5), target=[0, 0, 0], fov=40)
lamp = s.light("point", intensity=(1, 2, 3))
with s.material("surface", interface=s.interface("diffuse", reflectance=0.5)), vt.translate(0, 1,
    0):
    s.add("mesh", points=[[0.0, 0, 0], [1, 0, 0], [0, 1, 0], [1, 1, 1]], triangles=[[0, 1, 2]],
          names="x")
"""


@unittest.skipUnless(os.path.exists(os.path.join(LIBRARY, "libVantor.so")),
                     "the counting example is not built")
class OtherRendererTest(unittest.TestCase):
    def run_with_it(self, script):
        return run_script(SCENE + script, library=LIBRARY)

    def test_what_the_scene_says_arrives(self):
        script = "try:\n s.render(8, 6, 2)\nexcept vt.SceneError: pass"
        status, output, errors = self.run_with_it(script)
        self.assertEqual((status, errors), (0, ""))
        for line in ("Render 8 x 6, 2 samples", "1 AddObject", "1 MaterialBegin", "1 MaterialEnd",
                     "1 TransformEnd",
                     "4 points of objects"):
            self.assertIn(line, output)

    def test_a_pass_says_that_there_is_no_picture(self):
        for way in ("s.render(8, 6, 2)", "s.render(8, 6, 2, wait=False).result(60)"):
            status, _, errors = self.run_with_it(way)
            self.assertEqual(status, 1)
            self.assertIn("libVantor.so has made no picture", errors.splitlines()[-1])

    def test_what_it_does_not_tell_is_said(self):
        status, _, errors = self.run_with_it("vt.vocabulary('spot')")
        self.assertEqual(status, 1)
        self.assertIn("does not tell its vocabulary", errors.splitlines()[-1])
        status, output, _ = self.run_with_it("from vantor.__main__ import main\nmain(['info'])")
        self.assertEqual(status, 0)
        self.assertIn("not told", output)
        self.assertIn("on the error stream", output)
        self.assertIn(LIBRARY, output)

    def test_lists_of_transforms_are_arrays(self):
        script = ("for places in ([vt.translate(1, 2, 3)], [vt.translate(1, 2, 3).rows]):\n"
                  " s.object('instances', places=places)")
        self.assertEqual(self.run_with_it(script)[::2], (0, ""))

    def test_handles_still_know_their_kind_when_they_are_used(self):
        status, _, errors = self.run_with_it("s.add(lamp)")
        self.assertEqual(status, 1)
        self.assertIn("TypeError: add: expected an object", errors.splitlines()[-1])


if __name__ == "__main__":
    unittest.main()
