"""From a script to a picture: the examples, Ctrl-C, the progress line, reports of mistakes."""

import os
import pty
import signal
import struct
import subprocess
import sys
import tempfile
import textwrap
import unittest

import scripts

EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples")

ENDLESS = """
    import vantorPM
    from vantorPM import vector3

    scene = vantorPM.scene()
    scene.newCamera("perspective", ["position", vector3(0, 0, 5)])
    scene.newImager("file", ["name", "part.png"])
    scene.newLight("point", ["position", vector3(2, 3, 4), "intensity", 20.0])
    scene.addObject(scene.newObject("sphere", []))
    try:
        scene.render(1024, 1024, 4096)
    except KeyboardInterrupt:
        print("stopped")
"""

# Each script of the gallery, with the pictures that it writes.
GALLERY = {
    "denoiser": ["denoiser", "denoiser_raw"],
    "glass_and_metal": ["glass_and_metal"],
    "imagers": ["imagers_albedo", "imagers_color", "imagers_depth", "imagers_normal"],
    "media": ["media"],
    "million_instances": ["million_instances"],
    "million_points": ["million_points"],
    "patterns": ["patterns"],
    "radiosity": ["radiosity_patches", "radiosity_paths"],
    "shapes": ["shapes"],
    "sky": ["sky_evening", "sky_morning", "sky_noon"],
    "splines": ["splines"],
    "thousand_lights": ["thousand_lights"],
}

MISTAKES = """
    from vantorPM import scene, vector3

    ball = scene()
    ball.newCamera("perspective", ["position", vector3(0, 2, 6), "tarqet", vector3(0, 1, 0)])
    ball.newLight("point", ["intensity", "bright"])
    ball.addObject(ball.newObject("spere", ["radius", 1.0]))
"""


def png_size(path):
    """Width and height, from the header."""
    with open(path, "rb") as file:
        header = file.read(24)
    assert header[:8] == b"\x89PNG\r\n\x1a\n", header
    return struct.unpack(">II", header[16:])


class EmbeddedRendererTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.realpath(folder.name)

    def run_in_folder(self, *arguments):
        return subprocess.run(
            [sys.executable, *arguments],
            cwd=self.folder,
            env=scripts.variables(VANTOR_DIAGNOSTICS="warn"),
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            universal_newlines=True,
            timeout=120,
        )

    def test_the_cornell_box_says_where_its_picture_is(self):
        process = self.run_in_folder(os.path.join(EXAMPLES, "cornell_box.py"), "32", "4")
        picture = os.path.join(self.folder, "cornell_box.png")
        self.assertEqual((process.stdout, process.stderr), ("The picture is in %s\n" % picture, ""))
        self.assertEqual(png_size(picture), (32, 32))

    def test_the_first_picture_needs_no_block(self):
        with open(os.path.join(EXAMPLES, "first_picture.py")) as file:
            script = file.read()
        self.assertIn("ball.render(640, 480, 64)", script)
        process = self.run_in_folder("-c", script.replace("640, 480, 64", "32, 24, 4"))
        self.assertEqual((process.returncode, process.stdout, process.stderr), (0, "", ""))
        self.assertEqual(png_size(os.path.join(self.folder, "first_picture.png")), (32, 24))

    def test_the_scripts_of_the_gallery_draw_their_pictures_and_have_nothing_to_report(self):
        for name, pictures in GALLERY.items():
            with self.subTest(name):
                # The last number is that of the columns in a row, or of the points.
                fewer = {"million_instances": ["20"], "million_points": ["2000"]}
                arguments = ["32", "2"] + fewer.get(name, [])
                process = self.run_in_folder(os.path.join(EXAMPLES, name + ".py"), *arguments)
                self.assertEqual((process.returncode, process.stderr), (0, ""))
                drawn = sorted(file for file in os.listdir(self.folder) if file.startswith(name))
                self.assertEqual(drawn, [picture + ".jpg" for picture in pictures])

    def output_after_ctrl_c(self, script):
        """The output and the return code of a script that gets Ctrl-C during a pass."""
        # The error stream is a terminal, so a progress line says when some of the picture is there.
        try:
            terminal, error_stream = pty.openpty()
        except OSError as error:
            self.skipTest("there is no pseudo-terminal: {}".format(error))
        self.addCleanup(os.close, terminal)
        process = subprocess.Popen(
            [sys.executable, "-c", textwrap.dedent(script)],
            cwd=self.folder,
            env=scripts.variables(VANTOR_DIAGNOSTICS="warn"),
            stdout=subprocess.PIPE,
            stderr=error_stream,
            universal_newlines=True,
            # A test run in the background has Ctrl-C ignored, and would hand that down.
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
        )
        os.close(error_stream)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        shown = b""
        while b"vantor: render:" not in shown:
            shown += os.read(terminal, 1000)
        self.assertRegex(shown, rb"vantor: render: +\d+ %, .* left")

        process.send_signal(signal.SIGINT)
        output, _ = process.communicate(timeout=60)
        while b"interrupted" not in shown:
            shown += os.read(terminal, 1000)
        self.assertRegex(
            shown,
            rb'vantor: render: interrupted; (less than )?\d+ % of the pixels are in "part.png"',
        )
        return output, process.returncode

    def assert_part_is_kept(self):
        self.assertEqual(os.listdir(self.folder), ["part.png"])
        self.assertEqual(png_size(os.path.join(self.folder, "part.png")), (1024, 1024))
        with open(os.path.join(self.folder, "part.png"), "rb") as file:
            comment = rb"; interrupted: (less than )?\d+ % of the pixels are finished"
            self.assertRegex(file.read(), comment)

    def test_ctrl_c_stops_a_pass_with_keyboard_interrupt_and_keeps_what_is_there(self):
        self.assertEqual(self.output_after_ctrl_c(ENDLESS), ("stopped\n", 0))
        self.assert_part_is_kept()

    def test_ctrl_c_keeps_what_is_there_even_where_it_ends_the_process(self):
        default = """
            import signal
            signal.signal(signal.SIGINT, signal.SIG_DFL)
        """
        script = textwrap.dedent(default) + textwrap.dedent(ENDLESS)
        self.assertEqual(self.output_after_ctrl_c(script), ("", -signal.SIGINT))
        self.assert_part_is_kept()

    def test_three_mistakes_give_three_lines_with_the_fix(self):
        process = self.run_in_folder("-c", textwrap.dedent(MISTAKES))
        self.assertEqual(
            process.stderr.splitlines(),
            [
                'vantor: newCamera "perspective": item 2: unknown parameter "tarqet" '
                '(did you mean "target"?)',
                'vantor: newLight "point": item 1: parameter "intensity" expects '
                "a colour (vector3 or number), got a string",
                'vantor: newObject "spere": unknown type (did you mean "sphere"?)',
            ],
        )
        self.assertEqual((process.returncode, process.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
