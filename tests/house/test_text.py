"""How source files are written: the first line, what must not be left, and the layout: that of C++
files is clang-format's affair, that of all others is looked at here."""

import os
import re
import subprocess
import unittest

import repository

CPP = (".h", ".cpp")
PYTHON = (".py", ".pyi")
HASH = ("CMakeLists.txt", ".cmake", "Makefile", "packages.txt", ".clang-tidy", ".toml")
LINKER = (".map",)
TABBED = ("Makefile", "debian/rules")
DOCUMENTS = (".md", ".json")

# The version that the sources are formatted with; others break lines elsewhere.
CLANG_FORMAT = "14"


def scripts():
    """The programs without a suffix."""
    return [path for path in repository.files("")
            if "." not in os.path.basename(path) and repository.text(path).startswith("#!")]


def sources():
    return repository.files(*CPP, *PYTHON, *HASH, *LINKER) + scripts()


def others():
    """The sources that clang-format does not look at."""
    return [path for path in sources() if not path.endswith(CPP)]


def is_python(path):
    return path.endswith(PYTHON) or repository.text(path).startswith("#!/usr/bin/env python3\n")


def opening(path):
    """The pattern of the comment that says what the file is."""
    if path.endswith(CPP):
        return r"// \S.*"
    if is_python(path):
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

    def test_every_file_ends_with_one_newline(self):
        for path in sources() + repository.files(*DOCUMENTS, ".txt"):
            with self.subTest(path):
                self.assertRegex(repository.text(path), r"[^\n]\n\Z")

    def test_no_tabs_no_carriage_returns_and_no_blanks_at_the_end_of_a_line(self):
        for path in [*others(), *repository.files(*DOCUMENTS, ".txt")]:
            unwanted = r"\s\Z|\r|.\t" if path in TABBED else r"\s\Z|\r|\t"
            with self.subTest(path):
                self.assertEqual([number for number, line in
                                  enumerate(repository.text(path).split("\n"), 1)
                                  if re.search(unwanted, line)], [])

    def test_no_line_is_longer_than_120_columns_or_100_in_python(self):
        # Tables may be: documents and the list of packages.
        long = ["{}:{}".format(path, number) for path in others() if path != "tools/packages.txt"
                for number, line in enumerate(repository.lines(path), 1)
                if len(line) > (100 if is_python(path) else 120)]
        self.assertEqual(long, [])

    def test_nothing_is_left_for_later(self):
        # Put together here, so that this file passes.
        words = "|".join(["TO" + "DO", "FIX" + "ME", "XX" + "X", "HA" + "CK", "WI" + "P"])
        pattern = re.compile(r"\b(?:{})\b|^\s*#\s*if 0\b".format(words))
        found = ["{}:{}".format(path, number) for path in sources() + repository.files(".md")
                 for number, line in enumerate(repository.lines(path), 1) if pattern.search(line)]
        self.assertEqual(found, [])

    def test_cpp_files_are_formatted(self):
        program, why_not = repository.clang_tool("clang-format", CLANG_FORMAT)
        if program is None:
            self.skipTest(why_not)
        paths = [os.path.join(repository.ROOT, path) for path in repository.cpp_files()]
        result = subprocess.run([program, "--dry-run", "-Werror", *paths], stderr=subprocess.PIPE,
                                universal_newlines=True)
        offences = re.findall(r"^(\S+?:\d+):\d+: ", result.stderr, re.M)
        self.assertEqual((result.returncode, offences), (0, []))


if __name__ == "__main__":
    unittest.main()
