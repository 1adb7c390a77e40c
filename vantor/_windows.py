"""Windows: how a frame is cut into pieces, by pixels and by samples, and put together again."""

import math

from ._parts import merge
from ._picture import Picture

# Pieces begin and end at multiples of this: the renderer works on blocks of 4 x 4 pixels, and those
# that two windows share would be rendered twice.
_GRID = 8

_PIXEL = 12  # bytes

# The renderer sums samples in groups of so many, and these in pairs.
_SAMPLES_OF_A_GROUP = 16


def cut(window, count):
    """Windows x0, y0, x1, y1 that fill the given one, in pixels: squares, about count of them."""
    x0, y0, x1, y1 = window
    width, height = x1 - x0, y1 - y0
    if width <= 0 or height <= 0:
        return [window]
    side = math.sqrt(width * height / max(count, 1))
    side = max(_GRID, _GRID * round(side / _GRID))
    return [
        (max(x, x0), max(y, y0), min(x + side, x1), min(y + side, y1))
        for y in range(y0 // side * side, y1, side)
        for x in range(x0 // side * side, x1, side)
    ]


def cut_samples(samples, count):
    """(first, end) of ranges that can be put together: equal but for the last, at most count."""
    size = _SAMPLES_OF_A_GROUP
    while size * count < samples:
        size *= 2
    return [(first, min(first + size, samples)) for first in range(0, samples, size)]


def fractions(window, width, height):
    """The window as render() takes it."""
    x0, y0, x1, y1 = window
    return x0 / width, y0 / height, x1 / width, y1 / height


class Canvas:
    """A window of a picture, to which its parts come one by one. What has not come is black."""

    def __init__(self, size, window, ranges=1):
        """ranges is in how many ranges of samples each part comes."""
        self._size = size
        self._window = window
        self._ranges = ranges
        self._waiting = {}  # for the other ranges: Pictures, by window
        self._layers = {}

    def put(self, window, layers):
        if self._ranges == 1:
            return self._put(window, layers)
        x0, y0, x1, y1 = window
        waiting = self._waiting.setdefault(window, [])
        waiting.append(Picture(x1 - x0, y1 - y0, layers, full_size=self._size, origin=(x0, y0)))
        if len(waiting) == self._ranges:
            self._put(window, merge(self._waiting.pop(window)).layers())

    def _put(self, window, layers):
        x0, y0, x1, y1 = window
        left, top, right, bottom = self._window
        row = _PIXEL * (x1 - x0)
        for name, numbers in layers.items():
            if name not in self._layers:
                self._layers[name] = bytearray(_PIXEL * (right - left) * (bottom - top))
            target = memoryview(self._layers[name])
            source = memoryview(numbers)
            for y in range(y1 - y0):
                start = _PIXEL * ((y0 - top + y) * (right - left) + x0 - left)
                target[start : start + row] = source[y * row : (y + 1) * row]

    def is_empty(self):
        return not self._layers

    def picture(self):
        """A Picture of what is there by now."""
        left, top, right, bottom = self._window
        layers = {name: bytearray(numbers) for name, numbers in self._layers.items()}
        return Picture(right - left, bottom - top, layers, full_size=self._size, origin=(left, top))
