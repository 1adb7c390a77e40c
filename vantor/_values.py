"""Values: from what Python has to what the module takes."""

import operator
import os
from collections.abc import Iterable
from typing import Any

import vantorPM

from . import _native
from ._handles import Handle, with_article
from ._transforms import Transform

_VECTORS: "dict[int, Any]" = {2: vantorPM.vector2, 3: vantorPM.vector3, 4: vantorPM.vector4}
_MODULE_TYPES = {
    type(value): name
    for name in ("intarray", "floatarray", "vector2array", "vector3array", "vector4array",
                 "matrix2array", "matrix3array", "matrix4array", "transformarray", "transform")
    for value in [getattr(vantorPM, name)()]
}
_MODULE_TYPES.update({type(make(*range(n))): "vector%d" % n for n, make in _VECTORS.items()})
_BASIS = type(vantorPM.BezierBasis())
_MODULE_TYPES[_BASIS] = "matrix4"


def named(name, convert, *arguments):
    """What the conversion makes; its errors say what it was of."""
    try:
        return convert(*arguments)
    except (TypeError, ValueError, OverflowError) as error:
        kind = next(kind for kind in (TypeError, OverflowError, ValueError)
                    if isinstance(error, kind))
        raise kind("{}: {}".format(name, error)) from None


def number(value):
    if isinstance(value, (bool, str, bytes)):
        raise TypeError("expected a number, got {!r}".format(value))
    return _native.numbers(value, ())[0]


def integer(value):
    if isinstance(value, bool):
        raise TypeError("expected an integer, got {!r}".format(value))
    try:
        return operator.index(value)
    except TypeError:
        raise TypeError("expected an integer, got {!r}".format(value)) from None


def switch(value):
    if isinstance(value, bool) or _is_numpy_bool(value) or hasattr(value, "__index__"):
        is_on = int(value)
        if is_on in (0, 1):
            return is_on
    raise TypeError("expected True or False, got {!r}".format(value))


def _is_numpy_bool(value):
    return type(value).__module__ == "numpy" and type(value).__name__ in ("bool_", "bool")


def vector(value, length):
    return _VECTORS[length](*_native.numbers(value, (length,)))


def text(value):
    value = os.fspath(value)
    if not isinstance(value, str):
        raise TypeError("expected a text, got {!r}".format(value))
    if "\0" in value:
        raise ValueError("expected a text without null characters, got {!r}".format(value))
    return value


def matrix4(value):
    if isinstance(value, Transform):
        value = value.module_transform
    numbers = _native.numbers(value, (4, 4))
    rows = [vantorPM.vector4(*numbers[4 * i : 4 * i + 4]) for i in range(4)]
    return vantorPM.matrix4(*rows)


def array(kind, value):
    if kind == "transformarray" and isinstance(value, (list, tuple)):
        value = [v.module_transform if isinstance(v, Transform) else v for v in value]
    return value if _MODULE_TYPES.get(type(value)) == kind else _native.to_array(kind, value)


def colors(value):
    converted = array("vector3array", value)
    if type(value) not in _MODULE_TYPES and _native.shape(value)[1]:
        greatest = max(memoryview(_native.from_array(converted)[0]).cast("d"), default=0)
        if greatest > 1:
            raise ValueError("expected linear colours, of which 1 is white, got integers up to "
                             "{:g}".format(greatest))
    return converted


def is_one_number(value):
    return not isinstance(value, (list, tuple, Handle)) and _native.shape(value)[0] == ()


def color(value):
    return number(value) if is_one_number(value) else vector(value, 3)


def scale(value):
    if is_one_number(value):
        return number(value)
    length = 2 if _native.shape(value)[0] == (2,) else 3
    return vector(value, length)


def ids(scene, kind, value):
    if isinstance(value, Handle):
        return scene.id_of(value, kind)
    if not isinstance(value, Iterable):
        raise TypeError("expected {} or several, got {!r}".format(with_article(kind), value))
    return _native.to_array("intarray", [scene.id_of(handle, kind) for handle in value])


_PLAIN = {
    "number": number,
    "integer": integer,
    "switch": switch,
    "text": text,
    "color": color,
    "scale": scale,
    "matrix4": matrix4,
    "vector2": lambda value: vector(value, 2),
    "vector3": lambda value: vector(value, 3),
}


def by_kind(scene, kind, value):
    """The value for a parameter of that kind, in the vocabulary's words."""
    kind, _, wanted_id = kind.partition("|id:")
    if wanted_id and isinstance(value, Handle):
        return scene.id_of(value, wanted_id)
    if isinstance(value, Handle) and not kind.startswith(("id:", "ids:")):
        kind = kind.partition(":")[0]
        raise TypeError("expected {}, got {!r}".format(with_article(kind), value))
    if kind.startswith("choice:"):
        return text(value)
    if kind.startswith("id:"):
        return scene.id_of(value, kind[3:])
    if kind.startswith("ids:"):
        return ids(scene, kind[4:], value)
    if kind in _PLAIN:
        return _PLAIN[kind](value)
    if kind.endswith("array"):
        return array(kind, value)
    return by_shape(scene, value)  # of a renderer that is newer than this package


def by_shape(scene, value):
    """The value for a parameter that the vocabulary does not tell of: by what it looks like. Rows
    of integers are an intarray; two to four numbers are a vector; more are an array."""
    if isinstance(value, Handle):
        return scene.id_of(value)
    if isinstance(value, Transform):
        return value.module_transform
    if isinstance(value, (str, os.PathLike)):
        return text(value)
    if isinstance(value, bool) or _is_numpy_bool(value):
        return int(value)
    if type(value) in _MODULE_TYPES or type(value) in (int, float):
        return value
    if isinstance(value, (list, tuple)) and value and all(isinstance(v, Handle) for v in value):
        return _native.to_array("intarray", [scene.id_of(handle) for handle in value])
    if isinstance(value, (list, tuple)) and any(isinstance(v, Transform) for v in value):
        return array("transformarray", value)
    shape, is_integer = _native.shape(value)
    if shape == ():
        return integer(value) if is_integer else number(value)
    if shape == (4, 4):
        return matrix4(value)
    if len(shape) == 1:
        if shape[0] in _VECTORS:
            return vector(value, shape[0])
        return _native.to_array("intarray" if is_integer else "floatarray", value)
    if is_integer and len(shape) == 2:
        return _native.to_array("intarray", value)
    if len(shape) == 2 and shape[1] in _VECTORS:
        return _native.to_array("vector%darray" % shape[1], value)
    if len(shape) == 3 and shape[1:] == (4, 4):
        return _native.to_array("transformarray", value)
    raise ValueError("no parameter takes numbers of the shape {}".format(shape))


def to_numpy(module_array):
    """The elements of an array of the module, as a numpy array of their own: (N,), (N, 3) and so
    on."""
    numbers, dtype, shape = _native.from_array(module_array)
    import numpy

    return numpy.frombuffer(numbers, dtype).reshape(shape)
