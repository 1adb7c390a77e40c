"""Finds what is compiled, or says in one line why it is not there."""

import glob
import importlib.util
import os
import re
import sys


def check():
    """Raises ImportError unless module and companion are there for this interpreter."""
    folder = os.path.dirname(os.path.abspath(__file__))
    _find(__package__ + "._native", folder)
    _find("vantorPM", os.path.dirname(folder))


def _find(name, folder):
    if importlib.util.find_spec(name):
        return
    stem = name.rpartition(".")[2]
    files = map(os.path.basename, glob.glob(os.path.join(folder, stem + ".*.so")))
    built = sorted(_python_of(file[len(stem) + 1 :]) for file in files)
    if built:
        message = "vantor is built for {}, and this is {}: there is no other {} in {}"
        this = _python_of(sys.implementation.cache_tag)
        raise ImportError(message.format(" and ".join(built), this, stem, folder))
    if name == "vantorPM":
        raise ImportError('there is no module "vantorPM" in {}, where vantor expects it'.format(
            folder))
    raise ImportError("{} holds the sources of vantor; what is built stands in the build's folder "
                      "python/ (PYTHONPATH=build/release/python, and not from the sources' own "
                      "folder)".format(folder))


def _python_of(tag):
    """"Python 3.11" of "cpython-311-x86_64-linux-gnu.so"; what is no such tag, as it is."""
    found = re.match(r"cpython-(\d)(\d+)(\w*)", tag)
    if not found:
        return tag
    kinds = {"d": " (debug)", "t": " (free-threaded)"}
    return "Python {}.{}{}".format(found[1], found[2], kinds.get(found[3], ""))
