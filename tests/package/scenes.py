"""What the tests of the package share: small scenes, a folder, and numpy if it is there."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import warnings

import vantor as vt

try:
    import numpy
except ImportError:
    numpy = None

needs_numpy = unittest.skipUnless(numpy, "this interpreter has no numpy")


class PackageTest(unittest.TestCase):
    """A test with a folder of its own, in which a warning that is not expected is an error."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vantor-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        catching = warnings.catch_warnings()
        catching.__enter__()
        self.addCleanup(catching.__exit__, None, None, None)
        warnings.simplefilter("error")

    def path(self, name):
        return os.path.join(self.folder, name)


def lit_scene(**options):
    """A scene with a camera and a sky, and nothing in it."""
    scene = vt.Scene(**options)
    scene.camera("perspective", position=(0, 1, 6), target=(0, 1, 0), fov=35)
    scene.light("sky", sun_direction=(1, 2, 1))
    return scene


def floats(picture, name="color"):
    return picture.buffer(name).cast("B").cast("f").tolist()


def ball_scene():
    scene = lit_scene()
    with scene.material("plastic", color=(0.8, 0.1, 0.1)), vt.translate(0, 1, 0):
        scene.add("sphere", radius=1.0)
    return scene


def in_silence(work):
    """What work() gives, without warnings of the scene."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", vt.SceneWarning)
        return work()


def run_script(script, *arguments, library=None, **environment):
    """Runs a Python script's text in a process of its own; (status, output, errors)."""
    variables = dict(os.environ, **environment)
    if library:
        variables["LD_LIBRARY_PATH"] = library
    done = subprocess.run([sys.executable, "-c", script, *arguments], env=variables, timeout=120,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True)
    return done.returncode, done.stdout, done.stderr


def is_ended(pid):
    """Whether a process has ended and only waits for somebody to ask for its status."""
    try:
        with open("/proc/{}/stat".format(pid)) as file:
            return file.read().rpartition(")")[2].split()[0] in "ZX"
    except OSError:
        return True
