"""The command vantor."""

import os
import signal
import subprocess
import sys
import unittest
import urllib.request

import vantor as vt
import vantorPM
from scenes import PackageTest
from test_models import binary_ply, why_not

try:
    import aiohttp
except ImportError:
    aiohttp = None

SCRIPT = """import vantor as vt
scene = vt.Scene()
scene.camera("perspective", position=(0, 0, 5))
scene.light("sky")
scene.add("sphere")
if __name__ == "__main__":
    raise SystemExit("not for the command")
"""


class CommandTest(PackageTest):
    def vantor(self, *arguments):
        done = subprocess.run([sys.executable, "-m", "vantor", *arguments], cwd=self.folder,
                              timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True)
        return done.returncode, done.stdout, done.stderr

    def written(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return name

    def test_render(self):
        script = self.written("scene.py", SCRIPT.encode())
        asked = ("render", script, "-o", "a.exr", "--size", "20x10", "--samples", "2")
        self.assertEqual(self.vantor(*asked), (0, "a.exr\n", ""))
        picture = vt.Picture.load(self.path("a.exr"))
        self.assertEqual((picture.width, picture.height), (20, 10))

    def test_how_it_is_rendered(self):
        script = self.written("scene.py", SCRIPT.encode())
        asked = ("render", script, "-o", "a.exr", "--size", "24x16", "--samples", "40")
        scene = vt.Scene()
        scene.camera("perspective", position=(0, 0, 5))
        scene.light("sky")
        scene.add("sphere")
        for options, keywords in (
            (("--denoise",), {"denoise": True}),
            (("--adaptive", "--noise", "0.001"), {"adaptive": True, "noise": 0.001}),
            (("--noise", "100"), {"noise": 100}),
            (("--time-limit", "1e-6"), {"time_limit": 1e-6}),
        ):
            self.assertEqual(self.vantor(*asked, *options), (0, "a.exr\n", ""))
            self.assertEqual(bytes(vt.Picture.load(self.path("a.exr")).buffer()),
                             bytes(scene.render(24, 16, 40, **keywords).buffer()), options)
        status, _, errors = self.vantor(*asked, "--denoise", "--scheduler", "tcp://127.0.0.1:1")
        self.assertEqual(status, 1)
        self.assertIn("do not go with --scheduler", errors)

    def test_a_script_that_ends_itself_after_its_scene_is_rendered(self):
        script = self.written("scene.py", SCRIPT.encode() + b"raise SystemExit\n")
        asked = ("render", script, "-o", "a.exr", "--size", "4x3", "--samples", "1")
        self.assertEqual(self.vantor(*asked), (0, "a.exr\n", ""))

    def test_help(self):
        self.assertIn("vantor.vocabulary()", vantorPM.__doc__)
        for kind, name in (("camera", "perspective"), ("light", "spot"), ("object", "sphere")):
            self.assertIn('"{}"'.format(name), getattr(vt.Scene, kind).__doc__)
        self.assertIn("samples", vt.Scene.render.__doc__)

    @unittest.skipIf(why_not, why_not)
    def test_show(self):
        model = self.written("a.ply", binary_ply())
        status, _, errors = self.vantor("show", model, "-o", "a.png", "--size", "40x30",
                                        "--samples", "4")
        self.assertEqual((status, errors), (0, ""))
        values = vt.Picture.load(self.path("a.png")).buffer().cast("B").cast("f").tolist()
        self.assertGreater(len(set(values)), 30)

    def test_view(self):
        script = self.written("scene.py", SCRIPT.encode())
        if not aiohttp:
            status, _, errors = self.vantor("view", script)
            self.assertEqual(status, 1)
            self.assertIn("needs aiohttp", errors)
            return
        viewing = subprocess.Popen([sys.executable, "-m", "vantor", "view", "--no-browser", script],
                                   cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   universal_newlines=True)
        try:
            url = viewing.stdout.readline().strip()
            with urllib.request.urlopen(url) as page:
                self.assertIn(b"vantor view", page.read())
            viewing.send_signal(signal.SIGINT)
            _, errors = viewing.communicate(timeout=60)
        finally:
            viewing.kill()
        self.assertEqual((viewing.returncode, errors), (0, ""))
        status, _, errors = self.vantor("view", "none.py")
        self.assertEqual((status, "none.py" in errors), (1, True), errors)

    def test_vocabulary_and_info(self):
        status, output, _ = self.vantor("vocabulary", "newLight", "spot")
        self.assertEqual((status, output.split(":")[0]), (0, 'newLight "spot"'))
        status, output, _ = self.vantor("info")
        self.assertEqual(status, 0)
        self.assertRegex(vt.__version__, r"^\d+\.\d+\.\d+$")
        self.assertIn(vt.__version__, output.split())
        self.assertIn("libVantor.so (beside the module)", output)
        self.assertEqual(self.vantor("--version"), (0, "vantor {}\n".format(vt.__version__), ""))

    def test_what_is_wrong_is_one_line(self):
        empty = self.written("empty.py", b"")
        for arguments, words in ((("render", empty), "no vantor.Scene"),
                                 (("render", "none.py"), "No such file"),
                                 (("show", "none.obj"), "none.obj"), (("vocabulary", "spott"),
                                     'mean "spot"'),
                                 (("render", empty, "--size", "big"), "640x480"), ((), "command")):
            status, output, errors = self.vantor(*arguments)
            self.assertNotEqual(status, 0)
            self.assertIn(words, errors)
            self.assertNotIn("Traceback", errors)
        self.assertEqual(os.listdir(self.folder), ["empty.py"])

    def test_arguments_are_checked_before_anything_runs(self):
        script = self.written("scene.py", b"open('ran', 'w')")
        os.mkdir(self.path("folder.png"))
        for arguments, words in (
            (("render", script, "-o", "a.gif"), "a.gif"),
            (("render", script, "-o", "none/a.png"), "none/a.png"),
            (("render", script, "-o", "folder.png"), "folder.png"),
            (("render", script, "--exposure", "nan"), "exposure"),
            (("render", script, "--samples", str(10**20)), "--samples"),
            (("render", script, "--samples", "10**20"), "--samples"),
            (("show", "a.ply", "--size", "10x0"), "10x0"),
            (("render", script, "--noise", "0"), "--noise"),
            (("render", script, "--time-limit", "nan"), "--time-limit"),
            (("view", script, "--port", "99999"), "65535"),
        ):
            status, _, errors = self.vantor(*arguments)
            self.assertEqual(status, 2, errors)
            self.assertIn(words, errors.splitlines()[-1])
            self.assertNotIn("Traceback", errors)
        self.assertEqual(sorted(os.listdir(self.folder)), ["folder.png", "scene.py"])

    def test_an_error_of_the_script_has_the_scripts_lines_alone(self):
        for text, line, words in (
            (b"def draw():\n    return 1 / 0\n\ndraw()\n", 2, "ZeroDivisionError"),
            (b"import vantor\nvantor.Scene(strict=True).light('spott')\n", 2, 'mean "spot"'),
            (b"import vantor\n\nvantor.Scene(strict=True).light(5)\n", 3, "name of a type"),
            (b"{}['a']\n", 1, "KeyError"),
            (b"a = 1\nb = = 2\n", 2, "SyntaxError"),
        ):
            script = self.written("scene.py", text)
            status, _, errors = self.vantor("render", script)
            self.assertEqual(status, 1)
            self.assertIn(words, errors.splitlines()[-1])
            self.assertIn('scene.py", line {}'.format(line), errors)
            package = os.path.dirname(vt.__file__)
            self.assertNotIn('"' + package, errors)

    def test_what_a_pass_says_is_of_the_scripts_file(self):
        script = self.written("scene.py", b"import vantor\nscene = vantor.Scene()\n"
                              b"scene.camera('perspective')\nscene.add('sphere')\n")
        status, _, errors = self.vantor("render", script, "--size", "4x3", "--samples", "1")
        self.assertEqual(status, 0)
        self.assertRegex(errors, r"^scene.py:\d+: SceneWarning: .*light")
        self.assertNotIn("__main__", errors)

    def test_scripts_that_make_no_scene(self):
        for text, words in ((b"# \xe4", "UTF-8"), (b"a = 1\0", "null"),
                            (b"import sys\nsys.exit(0)", "before it made a scene")):
            status, _, errors = self.vantor("render", self.written("scene.py", text))
            self.assertEqual((status, len(errors.splitlines())), (1, 1), errors)
            self.assertIn(words, errors)
        self.assertEqual(os.listdir(self.folder), ["scene.py"])


if __name__ == "__main__":
    unittest.main()
