"""Messages: what the renderer reports becomes Python's warnings, with the script's own line."""

import collections
import os
import re
import sys
import warnings


class SceneWarning(UserWarning):
    """Something is wrong with a scene, and the script goes on."""

    __module__ = __package__


class SceneError(Exception):
    """A scene that is strict had a message, or a pass made no picture."""

    __module__ = __package__


# Where a message belongs: the script's file and line, its module's name, and the registry in which
# Python notes which warnings have been shown there.
Place = collections.namedtuple("Place", "file line module registry")


def script_place():
    """The innermost line outside of this package."""
    frame = sys._getframe(1)
    while frame.f_back and _is_inside(frame.f_globals.get("__name__", "")):
        frame = frame.f_back
    names = frame.f_globals
    return Place(
        frame.f_code.co_filename,
        frame.f_lineno,
        names.get("__name__", "<unknown>"),
        names.setdefault("__warningregistry__", {}),
    )


def _is_inside(module):
    return module.partition(".")[0] == __package__ or module == "contextlib"


def is_strict_by_environment():
    return os.environ.get("VANTOR_DIAGNOSTICS") == "strict"


def tell(messages, strict, place=None, handles=()):
    """Warns of each of the messages, pairs of whether it is a mistake, and the text. If strict,
    mistakes are raised as one SceneError instead. The handles are those of the scene."""
    if not messages:
        return
    place = place or script_place()
    mistakes = [_placed(text, place, handles)[0] for is_mistake, text in messages if is_mistake]
    if strict and mistakes:
        raise SceneError("; ".join(mistakes))
    if os.environ.get("VANTOR_DIAGNOSTICS") == "silent":
        return
    for _, text in messages:
        text, of = _placed(text, place, handles)
        warnings.warn_explicit(text, SceneWarning, of.file, of.line, of.module, of.registry)


# What the renderer says of an entity when a pass begins belongs to the line where that was made.
_OF_ENTITY = re.compile(r"^render: .*?\b((?:object|material|light) (\d+))\b")
# In this package a material is made of an interface in one step.
_IN_TWO_STEPS = re.compile(r'newInterface ("\w+"), as the interface of a material "surface"')
# Keywords are told by their names; only the renderer has them in a list.
_ITEM = re.compile(r'^(new\w+ "[^"]*": )item \d+: ')


def _placed(text, place, handles):
    """The text in this package's words, and the place that it belongs to."""
    text = _ITEM.sub(r"\1", _IN_TWO_STEPS.sub(r"\1", text))
    found = _OF_ENTITY.search(text)
    for handle in handles if found else ():
        if handle.id == int(found[2]):
            return text.replace(found[1], repr(handle), 1), handle.place
    return text, place
