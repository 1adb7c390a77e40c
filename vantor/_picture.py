"""Picture: what a pass has made, or a file."""

import os
import tempfile

from . import _native
from ._files import temporary_place

# Of these every pixel has one number; the files have it three times.
_SINGLE = ("depth", "depth_z", "object_id", "alpha")

_FLOAT = 4
_PIXEL = 3 * _FLOAT


class Picture:
    """Linear colours of every pixel, and whatever else a pass was asked for.

    color is a numpy array (height, width, 3) of float32, row after row from the top; each further
    value ("albedo", "normal", "depth" ...) is an attribute of its name. The arrays are the
    picture's own: what is written into them is saved. Where numpy is missing, buffer() gives the
    same numbers.
    """

    def __init__(self, width, height, layers, *, full_size=None, origin=(0, 0), alpha=None):
        """layers are bytearrays of three float32 for each pixel, by name; full_size and origin say
        of which whole picture they are a window, in pixels."""
        self.width = width
        self.height = height
        self.full_size = full_size or (width, height)
        self.origin = origin
        self._layers = layers
        self._alpha = alpha

    @classmethod
    def of_pass(cls, work, layers):
        x0, y0, x1, y1 = work.pixel_window
        size = (work.width, work.height)
        alpha = None
        if "background" in work.of_color and "alpha" in layers:
            alpha = bytearray(memoryview(layers["alpha"]).cast("f")[::3].tobytes())
        return cls(x1 - x0, y1 - y0, layers, full_size=size, origin=(x0, y0), alpha=alpha)

    @classmethod
    def load(cls, path):
        """The picture in a PNG, JPEG, TIFF, OpenEXR or Radiance file. What integers hold is taken
        as sRGB. Layers of an OpenEXR file are further values by their names; one named "color",
        beside the picture itself, is "color_layer"."""
        width, height, colors, alpha = _native.read_picture(path)
        values = {"color": colors}
        for name, layer in _native.read_layers(path).items():
            values["color_layer" if name == "color" else name] = layer
        return cls(width, height, values, alpha=alpha)

    @classmethod
    def of(cls, value):
        """A picture of an array (height, width, 3), or (height, width) of grey, of linear numbers;
        of a Picture itself."""
        if isinstance(value, cls):
            return value
        numbers, shape, is_integer = _native.float32(value)
        is_grey = len(shape) == 2
        if 0 in shape or not (is_grey or len(shape) == 3 and shape[2] == 3):
            expected = "expected a picture of the shape (H, W, 3) or (H, W), got {}"
            raise ValueError(expected.format(shape))
        if is_integer:
            raise TypeError("expected a picture of linear floats, got integers")
        if is_grey:
            grey = memoryview(numbers).cast("f")
            numbers = bytearray(_PIXEL * len(grey))
            colors = memoryview(numbers).cast("f")
            for channel in range(3):
                colors[channel::3] = grey
        return cls(shape[1], shape[0], {"color": numbers})

    @property
    def names(self):
        """What the picture has: "color", and what else its pass was asked for."""
        return tuple(self._layers)

    @property
    def samples(self):
        """Of a part of a larger picture, which of its samples it has: (first, end, in_all). None
        of any other picture. vantor.merge() puts parts together."""
        parts = getattr(self._layers.get("color"), "parts", None)
        return (parts[0][0], parts[-1][1], parts[0][2]) if parts else None

    def layers(self):
        """All of its numbers, for another Picture."""
        return self._layers

    def buffer(self, name="color"):
        """The numbers as a memoryview of float32, (height, width, 3)."""
        return memoryview(self._layer(name)).cast("f", (self.height, self.width, 3))

    def array(self, name="color"):
        """The numbers as a numpy array: (height, width, 3), or (height, width) of "depth" and
        "object_id"."""
        try:
            import numpy
        except ImportError:
            raise ImportError(
                "arrays of a picture need numpy (Debian: python3-numpy); buffer() does not"
            ) from None
        values = numpy.frombuffer(self._layer(name), numpy.float32)
        values = values.reshape(self.height, self.width, 3)
        return values[..., 0] if name in _SINGLE else values

    @property
    def color(self):
        return self.array("color")

    @property
    def alpha(self):
        """How much of each pixel is covered, as a numpy array (height, width); None if neither the
        pass nor the file says. PNG and OpenEXR files keep it where there is no background."""
        if self._alpha is None:
            return self.array("alpha") if "alpha" in self._layers else None
        import numpy

        return numpy.frombuffer(self._alpha, numpy.float32).reshape(self.height, self.width)

    def __array__(self, dtype=None, copy=None):
        """numpy.asarray(picture) is its color."""
        colors = self.color
        if copy is False and dtype not in (None, colors.dtype):
            raise ValueError("a picture is of float32; another type is a copy")
        return colors.astype(dtype or colors.dtype, copy=bool(copy))

    def __getattr__(self, name):
        layers = self.__dict__.get("_layers", {})
        if name not in layers:
            names = ", ".join(layers)
            raise AttributeError('the picture has no "{}"; it has {}'.format(name, names))
        return self.array(name)

    def __dir__(self):
        return [*super().__dir__(), *self._layers]

    def _layer(self, name):
        if name not in self._layers:
            raise KeyError('the picture has no "{}"; it has {}'.format(name, ", ".join(self.names)))
        return self._layers[name]

    def save(self, path, exposure=0.0, display=None, name="color", *, bits=None, layers=()):
        """Writes a .png, .jpg, .tif or .exr file, whole or not at all.

        What is saved, the colour or another value by its name, is multiplied by 2^exposure. In
        integers, display is "srgb" (the default of colours), "filmic" or "linear" (that of all
        other values); a normal from -1 to 1 is then shown as 0 to 1, and the greatest depth as
        white. bits are those of a channel: 8 or 16 of a .png file, 16 or 32 of an .exr file. In an
        .exr file, layers are the names of further values to be saved beside.
        """
        path = os.fspath(path)
        is_float = str(path).lower().endswith(".exr")
        layers = (layers,) if isinstance(layers, str) else tuple(layers)
        if layers and not is_float:
            raise ValueError("only .exr files have layers, got {!r}".format(path))
        if name in layers or len(set(layers)) < len(layers):
            raise ValueError("layers: expected names that differ, got {!r}".format((name, *layers)))
        layer, display = self._in_8_bits(name, display)
        layer = self._layer(name) if is_float else layer
        scale = _factor_of(exposure)
        x0, y0 = self.origin
        window = (x0, y0, x0 + self.width, y0 + self.height)
        alpha = self._alpha if name == "color" and "alpha" in self._layers else None
        beside = tuple((layer_name, self._layer(layer_name)) for layer_name in layers)
        if bits == 16 and is_float and name == "object_id":
            bits = None  # halves are whole numbers only up to 2048
        _native.write_picture(path, *self.full_size, window, layer, scale, display, alpha,
                              bits or 0, beside)

    def png(self, exposure=0.0, display=None, name="color"):
        """The colour, or another value, as a PNG file in memory; the rest is as for save()."""
        layer, display = self._in_8_bits(name, display)
        return _native.png_bytes(self.width, self.height, layer, _factor_of(exposure), display)

    def _in_8_bits(self, name, display):
        layer = self._layer(name)
        if name in ("normal", "depth", "depth_z"):
            layer = _shown(layer, name)
        return layer, display or ("srgb" if name in ("color", "albedo") else "linear")

    def _repr_png_(self):
        return self.png()

    def __repr__(self):
        return "<Picture {} x {}: {}>".format(self.width, self.height, ", ".join(self.names))


def check_format(path, exposure=0.0, display=None):
    """Tries to write such a file elsewhere, before hours of work for one that cannot be. Of the
    path, only the ending counts."""
    with tempfile.TemporaryDirectory(prefix="vantor-", dir=temporary_place()) as folder:
        black = os.path.join(folder, "black" + os.path.splitext(path)[1])
        try:
            Picture(1, 1, {"color": bytearray(_PIXEL)}).save(black, exposure, display)
        except ValueError as error:
            raise ValueError(str(error).replace(black, path)) from None


def _factor_of(exposure):
    """What light is multiplied by, of stops."""
    stops, = _native.numbers(exposure, ())
    if not -100 <= stops <= 100:
        raise ValueError("exposure expects stops from -100 to 100, got {!r}".format(exposure))
    return 2.0 ** stops


def _shown(layer, name):
    """A copy that can be looked at in 8 bits."""
    import array

    values = array.array("f", bytes(layer))
    if name == "normal":
        return array.array("f", [0.5 + 0.5 * value for value in values])
    greatest = max(values, default=0) or 1
    return array.array("f", [value / greatest for value in values])
