"""Parts: pictures of some of the samples, put together."""

import os
from collections.abc import Iterable

from . import _native
from ._picture import Picture


class Layer(bytearray):
    """Three float32 for each pixel, and what they are made of: parts, tuples (first, end, in_all,
    reduction, sums), whose samples follow upon each other."""

    parts: list = []

    @classmethod
    def of(cls, parts):
        """What these parts are together."""
        layer = cls(_native.sum_parts(parts))
        layer.parts = _joined(parts)
        return layer


def merge(pictures):
    """The picture of all samples of these, which are Pictures of ranges of samples, or the .exr
    files of such passes, in any order. Once all samples are there it is, bit for bit, what one pass
    makes of them, and of denoised parts their mean; before that, it can be merged further."""
    if isinstance(pictures, (str, os.PathLike)) or not isinstance(pictures, Iterable):
        raise TypeError("merge: expected several pictures, got {!r}".format(pictures))
    pictures = [_picture(picture) for picture in pictures]
    if not pictures:
        raise ValueError("merge: expected pictures, got none")
    first = pictures[0]
    for picture in pictures:
        if (picture.full_size, picture.origin, picture.width, picture.height) != (
            first.full_size, first.origin, first.width, first.height):
            raise ValueError("merge: expected pictures of one window, got {!r} and {!r}".format(
                first, picture))
    layers = {name: Layer.of(_in_order(name, pictures)) for name in first.names}
    return Picture(first.width, first.height, layers, full_size=first.full_size,
                   origin=first.origin)


def _picture(value):
    if isinstance(value, Picture):
        return value
    if not isinstance(value, (str, os.PathLike)):
        raise TypeError("merge: expected a Picture or a path, got {!r}".format(value))
    width, height, (x0, y0, x1, y1), part = _native.read_part(value)
    return Picture(x1 - x0, y1 - y0, {"color": Layer.of([part])}, full_size=(width, height),
                   origin=(x0, y0))


def _joined(parts):
    """Fewer parts that are the same, to save memory: those that are summed in pairs anyway."""
    result = []
    for part in parts:
        while result and _are_siblings(result[-1], part):
            part = _native.join_parts(result.pop(), part)
        result.append(part)
    return result


def _are_siblings(part, following):
    count = part[1] - part[0]
    return following[1] - following[0] == count and part[0] % (2 * count) == 0


def _in_order(name, pictures):
    """The parts of one layer of all pictures."""
    parts = []
    for picture in pictures:
        of_picture = getattr(picture.layers().get(name), "parts", None)
        if not of_picture:
            raise ValueError('merge: {!r} has no "{}" of a range of samples'.format(picture, name))
        parts += of_picture
    parts.sort(key=lambda part: part[:2])
    for before, after in zip(parts, parts[1:]):
        if (before[2], before[3]) != (after[2], after[3]):
            text = "merge: expected parts of one picture, got of {} samples ({}) and of {} ({})"
            raise ValueError(text.format(before[2], before[3], after[2], after[3]))
        if before[1] != after[0]:
            what = "are missing" if before[1] < after[0] else "are there twice"
            low, high = sorted((before[1], after[0]))
            raise ValueError("merge: samples {} to {} {}".format(low, high - 1, what))
    return parts
