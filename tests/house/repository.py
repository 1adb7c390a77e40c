"""The repository's files, and the build folder, for the house tests."""

import os
import re

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.path.abspath(os.environ.get("VANTOR_BUILD", os.path.join(ROOT, "build", "test")))

# Where the build puts the module and the library.
IMPORT_FOLDER = os.path.join(BUILD, "python")

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
