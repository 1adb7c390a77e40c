"""What a page of a view asks for, read and checked.

A value that is none raises ValueError, TypeError or LookupError: the page is told, nothing else.
"""

import sys

from ._passes import aov_parameter
from ._view_process import Request
from ._vocabulary import ALL

_CAMERA = ("position", "target", "up", "fov", "fov_axis", "aperture_radius", "focus_distance")


def checked_number(value, low, high):
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not low <= value <= high:
        raise ValueError("expected a number from {} to {}, got {!r}".format(low, high, value))
    return value


def _vector(value):
    if not isinstance(value, list) or len(value) != 3:
        raise ValueError("expected three numbers, got {!r}".format(value))
    return tuple(float(checked_number(each, -1e9, 1e9)) for each in value)


def checked_size(value):
    width, height = value
    return int(checked_number(width, 1, 4096)), int(checked_number(height, 1, 4096))


def checked_camera(value):
    if not isinstance(value, dict):
        raise TypeError("expected a camera's parameters, got {!r}".format(value))
    camera = {name: value[name] for name in _CAMERA if value.get(name) is not None}
    for name, given in camera.items():
        if name in ("position", "target", "up"):
            camera[name] = _vector(given)
        elif name == "fov_axis":
            camera[name] = str(given)
        else:
            camera[name] = float(checked_number(given, 0, sys.float_info.max))
    if camera.get("position") == camera.get("target"):
        raise ValueError("the camera stands at its target")
    return camera


def checked_request(asked, which):
    """The Request, with that number, for what a page's message asks to see."""
    known = aov_parameter()
    aov = asked["aov"]
    if aov not in (known.choices if known else ["color"]):
        raise ValueError("there is no value {!r}".format(aov))
    if asked["display"] not in ("srgb", "filmic", "linear"):
        raise ValueError("there is no display {!r}".format(asked["display"]))
    display = asked["display"] if aov == "color" else None
    return Request(which, checked_camera(asked["camera"]), checked_size(asked["size"]), aov,
                   float(checked_number(asked["exposure"], -20, 20)), display,
                   int(checked_number(asked["samples"], 1, 1 << 20)),
                   _denoises(asked) and aov == "color" and can_denoise())


def can_denoise():
    return ALL.parameter("newImager", "file", "denoise") is not None


def _denoises(asked):
    if not isinstance(asked["denoise"], bool):
        raise ValueError("expected true or false, got {!r}".format(asked["denoise"]))
    return asked["denoise"]
