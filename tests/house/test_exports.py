"""What the binaries show to the linker: the symbols that they define and need, and their names."""

import os
import re
import subprocess
import unittest

import repository
from names import METHODS, operation

MODULES = r"vantorPM\..*\.so"
LIBRARY = r"libVantor\.so"

# Calls of these by name would bypass the object's dispatch table.
PROXY_OPERATIONS = ["~VtLocalSceneProxy", *map(operation, METHODS["scene"])]

RUNTIME = r"libVantor\.so|libstdc\+\+\.so\.\d+|libgcc_s\.so\.\d+|libm\.so\.\d+|libc\.so\.\d+|" \
    r"ld-linux.*\.so\.\d+"


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE,
                          universal_newlines=True).stdout


def symbols(path, which):
    """The demangled names of dynamic symbols. A constructor or destructor has up to three symbols
    of one name; here it counts once."""
    names = output("nm", "-DC", which, "--format=just-symbols", path).splitlines()
    return sorted({re.sub(r"@.*", "", name) for name in names})


def dynamic_section(path, tag):
    """The bracketed values of a tag: NEEDED, SONAME, RPATH, RUNPATH."""
    return re.findall(r"\({}\).*\[(.*)\]".format(tag), output("readelf", "-Wd", path))


class ModuleTest(unittest.TestCase):
    def test_it_defines_its_initialiser_and_nothing_else(self):
        for path in repository.built(MODULES):
            with self.subTest(os.path.basename(path)):
                self.assertEqual(symbols(path, "--defined-only"), ["PyInit_vantorPM"])

    def test_it_calls_a_scene_through_the_dispatch_table_only(self):
        for path in repository.built(MODULES):
            with self.subTest(os.path.basename(path)):
                of_proxy = [name for name in symbols(path, "--undefined-only")
                            if "VtLocalSceneProxy" in name]
                self.assertEqual(of_proxy, ["VtLocalSceneProxy::VtLocalSceneProxy(int)"])

    def test_it_finds_its_library_beside_itself_unless_told_otherwise(self):
        # With RPATH, LD_LIBRARY_PATH could not put another library in the place of this one.
        for path in repository.built(MODULES):
            with self.subTest(os.path.basename(path)):
                self.assertEqual(dynamic_section(path, "RUNPATH"), ["$ORIGIN"])
                self.assertEqual(dynamic_section(path, "RPATH"), [])

    def test_it_needs_the_library_and_the_runtime_only(self):
        for path in repository.built(MODULES):
            with self.subTest(os.path.basename(path)):
                needed = dynamic_section(path, "NEEDED")
                self.assertIn("libVantor.so", needed)
                self.assertEqual([name for name in needed if not re.fullmatch(RUNTIME, name)], [])


class LibraryTest(unittest.TestCase):
    def setUp(self):
        self.path, = repository.built(LIBRARY)

    def test_it_defines_exactly_the_listed_symbols(self):
        # A line less breaks modules that are built already; a line more is a promise to keep.
        listed = repository.lines("tests/house/libvantor_exports.txt")
        self.assertEqual(listed, sorted(listed))
        self.assertEqual(symbols(self.path, "--defined-only"), listed)

    def test_the_list_has_all_that_the_module_needs(self):
        listed = repository.lines("tests/house/libvantor_exports.txt")
        for path in repository.built(MODULES):
            needed = [name for name in symbols(path, "--undefined-only") if name.startswith("Vt")]
            self.assertGreater(len(needed), 30)
            self.assertEqual([name for name in needed if name not in listed], [])

    def test_the_list_has_every_operation_of_the_scene(self):
        listed = repository.lines("tests/house/libvantor_exports.txt")
        names = {line.split("(")[0] for line in listed}
        for operation in PROXY_OPERATIONS:
            self.assertIn("VtLocalSceneProxy::" + operation, names)
        self.assertEqual(len([line for line in listed if line.startswith("VtLocalSceneProxy::")]),
                         len(PROXY_OPERATIONS) + 1)

    def test_its_name_is_the_one_that_modules_ask_for(self):
        self.assertEqual(dynamic_section(self.path, "SONAME"), ["libVantor.so"])
        self.assertEqual(dynamic_section(self.path, "RPATH"), [])


if __name__ == "__main__":
    unittest.main()
