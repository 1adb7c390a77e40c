"""How source files are written: the first line, the layout, and what must not be left."""

import os
import re
import shutil
import subprocess
import unittest

import repository

CPP = (".h", ".cpp")
PYTHON = (".py", ".pyi")
HASH = ("CMakeLists.txt", ".cmake", "Makefile", "packages.txt", ".clang-tidy")
LINKER = (".map",)

# The version that the sources are formatted with; others break lines elsewhere.
CLANG_FORMAT = "14"


def scripts():
    """The programs without a suffix."""
    return [path for path in repository.files("")
            if "." not in os.path.basename(path) and repository.text(path).startswith("#!")]


def sources():
    return repository.files(*CPP, *PYTHON, *HASH, *LINKER) + scripts()


def opening(path):
    """The pattern of the comment that says what the file is."""
    if path.endswith(CPP):
        return r"// \S.*"
    if path.endswith(PYTHON):
        return r'"""\S.*'
    if path.endswith(LINKER):
        return r"/\* \S.*"
    return r"# \S.*"


class TextTest(unittest.TestCase):
    def test_the_first_line_says_what_the_file_is(self):
        self.assertGreater(len(sources()), 100)
        for path in sources():
            lines = [line for line in repository.lines(path)[:2] if not line.startswith("#!")]
            with self.subTest(path):
                self.assertTrue(lines)
                self.assertRegex(lines[0], r"\A" + opening(path) + r"\Z")

    def test_first_lines_tell_files_apart(self):
        first = {}
        for path in repository.files(*CPP, ".py"):
            key = repository.lines(path)[0], os.path.splitext(path)[1]
            first.setdefault(key, []).append(path)
        alike = [paths for paths in first.values() if len(paths) > 1]
        self.assertEqual(alike, [])

    def test_no_tabs(self):
        for path in sources() + repository.files(".md", ".json"):
            if not path.endswith("Makefile"):
                self.assertNotIn("\t", repository.text(path), path)

    def test_no_blanks_at_the_end_of_a_line_and_one_newline_at_the_end_of_the_file(self):
        for path in sources() + repository.files(".md", ".json", ".txt"):
            text = repository.text(path)
            with self.subTest(path):
                self.assertNotIn("\r", text)
                self.assertEqual([number for number, line in enumerate(text.split("\n"), 1)
                                  if line != line.rstrip()], [])
                self.assertTrue(text.endswith("\n"))
                self.assertFalse(text.endswith("\n\n"))

    def test_no_line_is_longer_than_120_columns_or_100_in_python(self):
        # Tables may be: documents and the list of packages.
        long = ["{}:{}".format(path, number) for path in sources() if path != "tools/packages.txt"
                for number, line in enumerate(repository.lines(path), 1)
                if len(line) > (100 if path.endswith((".py", ".pyi")) else 120)]
        self.assertEqual(long, [])

    def test_nothing_is_left_for_later(self):
        # Put together here, so that this file passes.
        words = "|".join(["TO" + "DO", "FIX" + "ME", "XX" + "X", "HA" + "CK", "WI" + "P"])
        pattern = re.compile(r"\b(?:{})\b|^\s*#\s*if 0\b".format(words))
        found = ["{}:{}".format(path, number) for path in sources() + repository.files(".md")
                 for number, line in enumerate(repository.lines(path), 1) if pattern.search(line)]
        self.assertEqual(found, [])

    def test_cpp_files_are_formatted(self):
        program = shutil.which("clang-format")
        if program is None:
            self.skipTest("clang-format is not installed")
        version = subprocess.run([program, "--version"], check=True, stdout=subprocess.PIPE,
                                 universal_newlines=True).stdout
        if not re.search(r"version {}\.".format(CLANG_FORMAT), version):
            self.skipTest("the sources are formatted with clang-format {}, this is {}".format(
                CLANG_FORMAT, version.strip()))
        paths = [os.path.join(repository.ROOT, path) for path in repository.cpp_files()]
        result = subprocess.run([program, "--dry-run", "-Werror", *paths], stderr=subprocess.PIPE,
                                universal_newlines=True)
        offences = re.findall(r"^(\S+?:\d+):\d+: ", result.stderr, re.M)
        self.assertEqual((result.returncode, offences), (0, []))


if __name__ == "__main__":
    unittest.main()
