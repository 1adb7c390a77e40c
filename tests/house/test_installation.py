"""What "cmake --install" puts somewhere is complete: a script can import the module from there."""

import glob
import os
import re
import subprocess
import sys
import sysconfig
import tempfile
import unittest

import repository

IMPORTED = "import vantorPM, vantor; print(vantorPM.transform().identity(), vantorPM.__file__)"


def install(*options, **environment):
    """What cmake --install says."""
    return subprocess.run(["cmake", "--install", repository.BUILD, *options], check=True, text=True,
                          stdout=subprocess.PIPE, env=dict(os.environ, **environment)).stdout


def folders_of_modules(place):
    return [folder for folder, _, names in os.walk(place)
            if any(name.startswith("vantorPM.") for name in names)]


def import_from(folder, script=IMPORTED):
    return subprocess.run([sys.executable, "-c", script], text=True, cwd=folder,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          env=dict(os.environ, PYTHONPATH=folder, PYTHONDONTWRITEBYTECODE="1"))


class InstallationTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.prefix = os.path.join(folder.name, "prefix")
        cls.said = install("--prefix", cls.prefix)
        cls.modules = folders_of_modules(cls.prefix)[0]

    def test_it_goes_below_the_prefix_as_python_has_it(self):
        self.assertEqual(folders_of_modules(self.prefix), [self.modules])
        below = os.path.relpath(self.modules, self.prefix)
        self.assertRegex(below, r"^lib\w*/python\d\.\d+/(site|dist)-packages$")
        self.assertTrue(sysconfig.get_path("platlib").endswith(below))

    def test_everything_that_is_installed_goes_below_the_prefix(self):
        places = re.findall(r"^-- (?:Installing|Up-to-date): (.*)", self.said, re.M)
        self.assertGreater(len(places), 20)
        for place in places:
            self.assertTrue(place.startswith(self.prefix + "/"), place)

    def test_without_a_prefix_it_goes_where_python_imports_from_and_says_so(self):
        with tempfile.TemporaryDirectory() as root:
            said = install(DESTDIR=root)
            place = root + sysconfig.get_path("platlib")
            self.assertRegex(said, r"-- For Python [\d.]+ \(\S+\): {}\n".format(re.escape(place)))
            self.assertEqual(folders_of_modules(root), [place])

    def test_the_module_is_imported_from_there(self):
        result = import_from(self.modules)
        self.assertRegex(result.stdout, r"^transform\(.*\) " + re.escape(self.prefix))

    def test_stubs_and_the_package_are_complete(self):
        ours = repository.files(".py", ".pyi", "py.typed")
        expected = [path for path in ours if path.startswith("vantor/")]
        self.assertIn("vantor/py.typed", expected)
        for path in [*expected, "vantorPM-stubs/__init__.pyi", "libVantor.so"]:
            self.assertTrue(os.path.isfile(os.path.join(self.modules, path)), path)

    def test_another_renderer_is_built_from_the_headers(self):
        source = os.path.join(repository.ROOT, "examples/another_renderer/counting_vantor.cpp")
        headers = os.path.join(self.prefix, "include", "vantor")
        subprocess.run(["c++", "-std=c++20", "-fsyntax-only", "-I", headers, source], check=True)

    def test_a_module_for_another_python_is_told_with_both_versions(self):
        this = re.escape("Python {}.{}".format(*sys.version_info[:2]))
        for name, where in (("vantor/_native", "vantor"), ("vantorPM", "")):
            with tempfile.TemporaryDirectory() as root:
                install("--prefix", root)
                folder = folders_of_modules(root)[0]
                built, = glob.glob(os.path.join(folder, name + ".*.so"))
                other = os.path.join(folder, name + ".cpython-399-x86_64-linux-gnu.so")
                os.rename(built, other)
                error = import_from(folder, "import vantor").stderr.splitlines()[-1]
                self.assertRegex(error, "^ImportError: vantor is built for Python 3.99, and this "
                                        "is {}: .*{}$".format(this, re.escape(where)))
                os.remove(other)
                error = import_from(folder, "import vantor").stderr.splitlines()[-1]
                self.assertRegex(error, "^ImportError: .*(holds the sources|no module .vantorPM.)")


if __name__ == "__main__":
    unittest.main()
