"""Pass: one picture on its way through the renderer."""

import math
import os

from . import _native
from ._messages import SceneError, tell
from ._parts import Layer
from ._vocabulary import ALL


class Pass:
    """A request to render. For each value that is asked for, the renderer makes a file of floats in
    a folder that nobody sees, beside the files of the script's own imagers; one that offers its
    pictures hands over the numbers instead."""

    def __init__(self, scene, size, window, aovs, filtering, settings, with_files=True,
                 of_color=None):
        self.scene = scene
        self.width, self.height, self.samples = size
        self.window = window
        self.aovs = aovs
        self.filtering = filtering
        self.settings = settings
        self.of_color = of_color or {}
        self._with_files = with_files
        self._imagers = []
        self._files = {}
        self._check_aovs()
        self._check_settings()

    def _check_aovs(self):
        known = aov_parameter()
        for aov in self.aovs:
            if not isinstance(aov, str):
                raise TypeError("render: aovs: expected names, got {!r}".format(aov))
            if known and aov not in known.choices:
                names = ", ".join(known.choices)
                raise ValueError('render: aovs: "{}" is none (one of {} is)'.format(aov, names))

    def _check_settings(self):
        asked = [("settings", name) for name in self.settings]
        if "denoise" in self.of_color:
            asked.append(("file", "denoise"))
        for type, name in asked:
            if not ALL.parameter("newImager", type, name):
                raise ValueError("render: this renderer has no {}".format(name))

    @property
    def pixel_window(self):
        """x0, y0, x1, y1 of the window: the pixels whose centres lie in it."""
        return pixel_window(self.window, self.width, self.height)

    def path_of(self, aov):
        """Of the file that the renderer makes for this value, or would make."""
        return self._files[aov]

    def prepare(self, folder):
        """Makes the imagers of the pass, whose files stand in the folder."""
        opened, last = self.scene.innermost_file_imagers()
        # Files of one pass have one filter, which is the innermost one's: the script's own, unless
        # this call says otherwise.
        own = {}
        for imager in (opened + last)[-1:]:
            for name in ("filter", "filter_width"):
                if imager.parameters.get(name) is not None:
                    own[name] = imager.parameters[name]
        filtering = self.filtering or own
        self._files = {aov: os.path.join(folder, aov + ".exr") for aov in self.aovs}
        self._imagers = [self.scene.id_of(imager) for imager in last if self._with_files]
        self._imagers += self.scene.own_settings(self.settings)
        for aov, path in self._files.items():
            self._imagers.append(self.scene.own_imager(path, aov, filtering, self.of_color))

    def run(self, messages):
        """The values that are asked for: a bytearray of three float32 for each pixel of the window,
        by name. Empty if the renderer made none. Its messages are appended to the list."""
        self._remove_files()
        pictures = dict.fromkeys(self._files.values())
        opened = 0
        try:
            for imager in self._imagers:
                self.scene.module_call(messages, "imagerBegin", imager)
                opened += 1
            asked = (self.width, self.height, self.samples, *self.window)
            self.scene.module_call(messages, "render", *asked, pictures=pictures)
        finally:
            for _ in range(opened):
                self.scene.module_call(messages, "imagerEnd")
        messages[:] = [(is_mistake, self._without_paths(text)) for is_mistake, text in messages]
        try:
            made = {aov: self._made(path, pictures[path]) for aov, path in self._files.items()}
            return {aov: colors for aov, colors in made.items() if colors}
        finally:
            self._remove_files()

    def tell_why_nothing(self, messages, place):
        """Raises what is wrong, when there is no picture; warns of the rest."""
        handles = self.scene.handles
        tell([message for message in messages if not message[0]], False, place, handles)
        tell([message for message in messages if message[0]], True, place, handles)
        raise SceneError("{} has made no picture".format(_native.library() or "the renderer"))

    def _without_paths(self, text):
        """A message as of a file that the script knows nothing of."""
        for path in self._files.values():
            text = text.replace('"{}"'.format(path), "the picture")
        return text

    def _made(self, path, taken):
        """What the renderer has handed over, or written into the file; None without either."""
        if isinstance(taken, tuple):
            layer = Layer(taken[0])
            layer.parts = [taken[1]]
            return layer
        if taken or not os.path.exists(path):
            return taken
        width, height, colors, _ = _native.read_picture(path)
        x0, y0, x1, y1 = self.pixel_window
        if (x1 - x0, y1 - y0) == (width, height):
            return colors
        pixel = 12
        rows = (colors[(y * width + x0) * pixel : (y * width + x1) * pixel] for y in range(y0, y1))
        return bytearray().join(rows)

    def _remove_files(self):
        for path in self._files.values():
            if os.path.exists(path):
                os.remove(path)


def aov_parameter():
    """By which the imager "file" is told what it shows; None if the renderer does not tell."""
    known = ALL.find("newImager", "file")
    for parameter in known.parameters.values() if known else ():
        if "albedo" in parameter.choices:
            return parameter
    return None


def pixel_window(window, width, height):
    """Of a window in fractions, the pixels whose centres lie in it: x0, y0, x1, y1."""
    x0, y0, x1, y1 = window
    return (
        _first_pixel(x0, width),
        _first_pixel(y0, height),
        _first_pixel(x1, width),
        _first_pixel(y1, height),
    )


def _first_pixel(fraction, size):
    return math.ceil(fraction * size - 0.5)
