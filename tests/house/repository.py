"""The repository's files, and the build folder, for the house tests."""

import os
import re
import shutil
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.path.abspath(os.environ.get("VANTOR_BUILD", os.path.join(ROOT, "build", "test")))

# Where the build puts the module and the library.
IMPORT_FOLDER = os.path.join(BUILD, "python")

# Where names.py lies, which all tests share.
sys.path.append(os.path.join(ROOT, "tests", "python"))

NO_SOURCES = {"build", "__pycache__"}


def has_sources(folder):
    """Whether a folder of that name holds files of ours; hidden ones are those of tools."""
    return folder not in NO_SOURCES and (folder == ".ci" or not folder.startswith("."))


def files(*suffixes):
    """The paths of all files with one of the suffixes, relative to the root, in order."""
    found = []
    for folder, folders, names in os.walk(ROOT):
        folders[:] = filter(has_sources, folders)
        for name in names:
            if name.endswith(suffixes):
                found.append(os.path.relpath(os.path.join(folder, name), ROOT).replace(os.sep, "/"))
    return sorted(found)


def text(path):
    with open(os.path.join(ROOT, path), encoding="utf-8", newline="") as file:
        return file.read()


def lines(path):
    return text(path).splitlines()


def cpp_files():
    return files(".h", ".cpp")


def built(pattern):
    """The files of the build's import folder whose names the regular expression matches; at least
    one."""
    if os.path.isdir(IMPORT_FOLDER):
        names = sorted(filter(re.compile(pattern).fullmatch, os.listdir(IMPORT_FOLDER)))
        if names:
            return [os.path.join(IMPORT_FOLDER, name) for name in names]
    raise AssertionError("{} has no {}: build first, or say in VANTOR_BUILD where the build is"
                         .format(IMPORT_FOLDER, pattern))


def clang_tool(name, version):
    """The path of the tool in this version and None, or None and why there is none. Its findings
    change from one version to the next, and the tree can follow those of one only."""
    found = "it is not installed"
    for candidate in filter(None, map(shutil.which, [name + "-" + version, name])):
        found = subprocess.run([candidate, "--version"], check=True, stdout=subprocess.PIPE,
                               universal_newlines=True).stdout
        found = re.search(r"version \S+", found)[0]
        if found.startswith("version {}.".format(version)):
            return candidate, None
        found = "here is " + found
    return None, "the tree follows {} {}; {}".format(name, version, found)
