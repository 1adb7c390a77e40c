"""Finds the compiled companion, or says in one line why it is not there."""

import glob
import importlib.util
import os
import sysconfig


def check():
    """Raises ImportError unless the companion is there for this interpreter."""
    if importlib.util.find_spec(__package__ + "._native"):
        return
    folder = os.path.dirname(os.path.abspath(__file__))
    suffix = sysconfig.get_config_var("EXT_SUFFIX")
    found = glob.glob(os.path.join(folder, "_native.*.so"))
    built = sorted(map(os.path.basename, found))
    if built:
        raise ImportError("vantor is built for another Python: {} has {}, and this one needs "
                          "_native{}".format(folder, ", ".join(built), suffix))
    raise ImportError("{} holds the sources of vantor; what is built stands in the build's folder "
                      "python/ (PYTHONPATH=build/release/python, and not from the sources' own "
                      "folder)".format(folder))
