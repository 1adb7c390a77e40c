"""The repository's files, and the build folder, for the house tests."""

import os

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.path.abspath(os.environ.get("VANTOR_BUILD", os.path.join(ROOT, "build", "test")))

# Where the build puts the module and the library.
IMPORT_FOLDER = os.path.join(BUILD, "python")

NO_SOURCES = {".git", "build", "__pycache__"}


def files(*suffixes):
    """The paths of all files with one of the suffixes, relative to the root, in order."""
    found = []
    for folder, folders, names in os.walk(ROOT):
        folders[:] = [name for name in folders if name not in NO_SOURCES]
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
    """The one file of the build's import folder whose name the regular expression matches."""
    names = [name for name in os.listdir(IMPORT_FOLDER) if pattern.fullmatch(name)] \
        if os.path.isdir(IMPORT_FOLDER) else []
    if len(names) != 1:
        raise AssertionError("{} instead of one {} in {}: build first, or say in VANTOR_BUILD where"
                             .format(names, pattern.pattern, IMPORT_FOLDER))
    return os.path.join(IMPORT_FOLDER, names[0])
