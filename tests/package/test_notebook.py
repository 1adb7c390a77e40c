"""The notebook in examples/package, as nbconvert executes it."""

import base64
import os
import re
import sys
import unittest

import vantor as vt
from scenes import PackageTest

try:
    import ipykernel
    import nbformat
    import tqdm
    from nbconvert.preprocessors import ExecutePreprocessor
except ImportError as error:
    missing = "this interpreter has no {}".format(error.name)
else:
    missing = None

HERE = os.path.dirname(os.path.abspath(__file__))
NOTEBOOK = os.path.join(HERE, "..", "..", "examples", "package", "notebook.ipynb")


# Debian 13's pyzmq connects to nothing under the debug build, and nothing here looks for leaks.
@unittest.skipIf(hasattr(sys, "gettotalrefcount"), "this is a debug build")
@unittest.skipIf(missing, "{} (Debian: python3-nbconvert, python3-ipykernel, python3-tqdm, for "
                          "/usr/bin/python3)".format(missing))
class NotebookTest(PackageTest):
    @classmethod
    def setUpClass(cls):
        notebook = nbformat.read(NOTEBOOK, as_version=4)
        # A kernel of this interpreter: without a specification of its own, python3 is that.
        executing = ExecutePreprocessor(timeout=600, kernel_name="python3")
        executing.preprocess(notebook, {"metadata": {"path": HERE}})
        cls.cells = [cell for cell in notebook.cells if cell.cell_type == "code"]

    def text(self, number):
        """What a cell has printed, on either stream, and as the text of results."""
        outputs = self.cells[number].outputs
        return "".join(output.get("text", "") or output.get("data", {}).get("text/plain", "")
                       for output in outputs)

    def picture(self, number):
        """The Picture that a cell shows."""
        shown = [output.data["image/png"] for output in self.cells[number].outputs
                 if "image/png" in output.get("data", {})]
        self.assertEqual(len(shown), 1)
        with open(self.path("shown.png"), "wb") as file:
            file.write(base64.b64decode(shown[0]))
        return vt.Picture.load(self.path("shown.png"))

    def test_a_picture_shows_itself(self):
        picture = self.picture(0)
        self.assertEqual((picture.width, picture.height), (160, 120))
        self.assertGreater(len(set(bytes(picture.buffer()))), 50)

    def test_a_pass_shows_its_progress(self):
        self.assertIn("render: 100%", self.text(1))
        self.picture(1)

    def test_a_warning_has_the_line_of_the_cell(self):
        text = self.text(2)
        self.assertIn('unknown parameter "intensty" (did you mean "intensity"?)', text)
        line, = map(int, re.findall(r":(\d+): SceneWarning", text))
        self.assertEqual(self.cells[2].source.splitlines()[line - 1], "lamp = scene.light(")

    def test_a_cancelled_job_keeps_what_was_finished(self):
        self.assertIn("interrupted", self.text(3))
        pixels = self.picture(3).buffer().cast("B").cast("f").tolist()
        self.assertGreater(max(pixels), 0)
        self.assertIn(0, pixels)  # what was not finished


if __name__ == "__main__":
    unittest.main()
