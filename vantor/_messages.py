"""Messages: what the renderer reports becomes Python's warnings, with the script's own line."""

import collections
import os
import re
import sys
import warnings


class SceneWarning(UserWarning):
    """Something is wrong with a scene, and the script goes on."""


class SceneError(Exception):
    """A scene that is strict had a message, or a pass made no picture."""


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


def tell(messages, strict, place=None):
    """Warns of each of the messages, pairs of whether it is a mistake, and the text. If strict,
    mistakes are raised as one SceneError instead."""
    if not messages:
        return
    messages = [(is_mistake, with_hint(text)) for is_mistake, text in messages]
    mistakes = [text for is_mistake, text in messages if is_mistake]
    if strict and mistakes:
        raise SceneError("; ".join(mistakes))
    if os.environ.get("VANTOR_DIAGNOSTICS") == "silent":
        return
    place = place or script_place()
    for _, text in messages:
        warnings.warn_explicit(
            text, SceneWarning, place.file, place.line, place.module, place.registry
        )


# What people try by habit, and what it is called here.
_HABITS = {
    "cube": "box",
    "cuboid": "box",
    "ball": "sphere",
    "plane": "quad",
    "rectangle": "quad",
    "glass": "dielectric",
    "mirror": "conductor",
    "metal": "conductor",
    "lambert": "diffuse",
    "matte": "diffuse",
    "sun": "distant",
    "directional": "distant",
    "envmap": "environment",
    "look_at": "target",
    "lookat": "target",
    "power": "intensity",
    "energy": "intensity",
    "file": "name",
    "filename": "name",
    "path": "name",
}
_UNKNOWN = re.compile(r'(?:unknown parameter "(?P<name>\w+)"|^\w+ "(?P<type>\w+)": unknown type)')


def with_hint(text):
    """The message, with a habit's word for an unknown one instead of one that looks alike."""
    found = _UNKNOWN.search(text)
    word = found and (found["name"] or found["type"])
    if word not in _HABITS:
        return text
    return '{} (did you mean "{}"?)'.format(text[: found.end()], _HABITS[word])
