"""The stubs say what is true at run time, and are found where the module is."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import repository

# Each line with a comment is refused, for the reason that the comment is a pattern of.
SCRIPT = """
from typing import TYPE_CHECKING

import vantor as vt
import vantorPM

if TYPE_CHECKING:
    from vantor._vocabulary import _PerspectiveCamera
    from vantorPM import _vector3

view: "_PerspectiveCamera" = {"position": (0, 2, 6), "fov": 35}
up: "_vector3" = vantorPM.vector3(0, 1, 0)
scene = vt.Scene()
scene.camera("perspective", **view)
scene.camera("perspective", position=(0, 2, 6), target=up, fov=35, up=None)
scene.camera("perspectiv", fov=35)  # No overload variant of "camera"
scene.camera("perspective", fof=35)  # No overload variant of "camera"
scene.camera("perspective", fov="35")  # No overload variant of "camera"
with scene.material("plastic", color=scene.pattern("checker"), opacity=0.5), vt.rotate(30):
    scene.add("sphere", radius=1.0, scale=2)
    scene.add("mesh", points=[(0, 0, 1), up], triangles=[0, 1, 1])
    scene.add("mesh", triangles=[0, 1, 1])  # No overload variant of "add"
    scene.add(scene.object("quad"), transform=vt.translate(1, 2, 3))
    scene.add(scene.light("point"))  # No overload variant of "add"
    scene.add("sphere", trimmers=scene.light("point"))  # No overload variant of "add"
scene.render(10, 10, aovs=("depth", "albedo")).save("a.png", display="filmic")
scene.render(10, 10, aovs="dept")  # has incompatible type
scene.render(10, 10, wait=False).result().save("a.png")
vantorPM.scene().newCamera("perspective", ["fov", 35.0])
vantorPM.scene().newCamera("perspective")  # Too few arguments
vantorPM.matrix2(up, up)  # has incompatible type
"""


def checker(name):
    """The command of one of mypy's programs, and why it cannot be used here. Those of Debian run in
    Debian's own interpreter, which needs a module of the same kind for stubtest."""
    path = shutil.which(name)
    if path is None:
        return None, "{} is not installed (Debian: mypy)".format(name)
    with open(path, "rb") as file:
        first = file.readline().decode(errors="replace")
    interpreter = re.match(r"#!\s*(\S*python\S*)\s*$", first)
    command = [interpreter[1], path] if interpreter else [path]
    asked = [interpreter[1] if interpreter else sys.executable, "-c",
             "import sysconfig; print(sysconfig.get_config_var('EXT_SUFFIX'))"]
    suffix = subprocess.run(asked, stdout=subprocess.PIPE, text=True).stdout.strip()
    if not os.path.exists(os.path.join(repository.IMPORT_FOLDER, "vantorPM" + suffix)):
        return None, "{} runs in {}, which no module is built for".format(name, asked[0])
    return command, None


class StubsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def output_of(self, program, *arguments):
        """What it prints, with the build on PYTHONPATH as a user has it, from another folder."""
        command, why_not = checker(program)
        if command is None:
            self.skipTest(why_not)
        done = subprocess.run([*command, *arguments], cwd=self.folder, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=dict(os.environ, PYTHONPATH=repository.IMPORT_FOLDER))
        return done.returncode, done.stdout

    def test_what_is_told_of_the_vocabulary_is_up_to_date(self):
        tool = os.path.join(repository.ROOT, "tools", "vocabulary_types.py")
        done = subprocess.run([sys.executable, tool, "--check"], text=True, cwd=self.folder,
                              env=dict(os.environ, PYTHONPATH=repository.IMPORT_FOLDER),
                              stdout=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_stubs_are_what_is_there_at_run_time(self):
        # What only the package's own parts call stands in no stub.
        config = os.path.join(self.folder, "mypy.ini")
        with open(config, "w") as file:
            # Its stubs are a package of their own, which not everybody has.
            file.write("[mypy]\n[mypy-tqdm.*]\nignore_missing_imports = True\n")
        options = ["--concise", "--ignore-missing-stub", "--mypy-config-file", config]
        status, output = self.output_of("stubtest", *options, "vantorPM", "vantor")
        self.assertEqual(status, 0, output)

    def test_the_examples_are_strictly_typed(self):
        paths = [path for path in repository.files(".py") if path.startswith("examples/")
                 and not path.startswith("examples/package/")]
        self.assertGreater(len(paths), 10)
        status, output = self.strictly(paths)
        self.assertEqual(status, 0, output)

    def test_examples_of_the_package_are_too_and_what_is_wrong_is_refused(self):
        script = os.path.join(self.folder, "script.py")
        with open(script, "w") as file:
            file.write(SCRIPT)
        paths = [path for path in repository.files(".py") if path.startswith("examples/package/")]
        self.assertTrue(paths)
        output = self.strictly([*paths, script])[1]
        errors = re.findall(r"^([^:\n]*?)([^/:\n]+):(\d+): error: (.*)", output, re.M)
        self.assertEqual({name for _, name, _, _ in errors}, {"script.py"}, output)
        found = {int(number): error for _, _, number, error in errors}
        for number, line in enumerate(SCRIPT.splitlines(), 1):
            reason = line.partition("  # ")[2]
            error = found.get(number, "")
            self.assertTrue(reason in error if reason else not error, (line, error))

    def strictly(self, paths):
        paths = [os.path.join(repository.ROOT, path) for path in paths]
        cache = os.path.join(repository.BUILD, "mypy")
        return self.output_of("mypy", "--strict", "--cache-dir", cache, *paths)


if __name__ == "__main__":
    unittest.main()
