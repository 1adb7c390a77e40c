"""Transforms. Points are rows: p' = p M, and a translation stands in row 3."""

import contextvars
import math

import vantorPM

from . import _native

# The transform blocks that are open in this thread or task, the outermost first.
open_transforms = contextvars.ContextVar("vantor.open_transforms", default=())


class Transform:
    """A transform, and a block: cameras and lights that are made and objects that are added within
    "with transform:" stand under it, in any scene. The innermost of nested blocks acts first.

    a @ b is the transform that applies a first, then b.
    """

    __slots__ = ("module_transform", "_tokens")

    def __init__(self, value):
        """Of any 4 x 4 numbers, which are kept exactly; also a transform of the module."""
        if isinstance(value, Transform):
            value = value.module_transform
        #: The module's own transform.
        self.module_transform = _native.to_transform(value)
        self._tokens = []

    @property
    def rows(self):
        """The sixteen numbers, as four tuples."""
        numbers = _native.numbers(self.module_transform, (4, 4))
        return tuple(numbers[4 * i : 4 * i + 4] for i in range(4))

    def __matmul__(self, other):
        if not isinstance(other, Transform):
            return NotImplemented
        return Transform(vantorPM.compose(self.module_transform, other.module_transform))

    def inverse(self):
        """The transform that takes everything back; ValueError if there is none."""
        inverse = Transform(vantorPM.invert(self.module_transform))
        for i, row in enumerate((self @ inverse).rows):
            for j, number in enumerate(row):
                # What has none comes back as something else.
                if not abs(number - (i == j)) < 0.5:
                    raise ValueError("{!r} has no inverse".format(self))
        return inverse

    def __array__(self, dtype=None, copy=None):
        import numpy

        return numpy.array(self.rows, dtype=dtype)

    def __eq__(self, other):
        return self.rows == other.rows if isinstance(other, Transform) else NotImplemented

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self):
        return "Transform({})".format(self.rows)

    def __enter__(self):
        self._tokens.append(open_transforms.set(open_transforms.get() + (self,)))
        return self

    def __exit__(self, *_):
        open_transforms.reset(self._tokens.pop())


def _vector(value):
    return vantorPM.vector3(*_native.numbers(value, (3,)))


def _three(x, y, z):
    """Three numbers from three arguments, or from the first, a sequence."""
    return (x, y, z) if y is not None and z is not None else _native.numbers(x, (3,))


def translate(x, y=None, z=None):
    """Moves by (x, y, z): three numbers, or one sequence of three."""
    return Transform(vantorPM.transform().translation(_vector(_three(x, y, z))))


def scale(x, y=None, z=None):
    """Scales by one number, or by three."""
    if y is None and z is None and _native.shape(x)[0] == ():
        y = z = x
    return Transform(vantorPM.transform().scaling(_vector(_three(x, y, z))))


def rotate(angle, axis=(0, 1, 0), point=(0, 0, 0)):
    """Turns by an angle in degrees about the axis through a point, counter-clockwise when looked at
    against the axis."""
    angle, = _native.numbers(angle, ())
    axis = _vector(axis)
    if not (math.isfinite(angle) and 0 < axis.length() < math.inf):
        raise ValueError("rotate expects a finite angle and an axis that has a direction")
    return Transform(vantorPM.transform().rotationAroundAxis(_vector(point), axis, angle))


def matrix(value):
    """A transform of any 4 x 4 numbers."""
    return Transform(value)


def look_at(position, target, up=(0, 1, 0)):
    """Moves what stands at the origin to the position and turns it, so that its -Z points to the
    target and its +Y up, as a camera looks."""
    position = _native.numbers(position, (3,))
    back = _unit(tuple(p - t for p, t in zip(position, _native.numbers(target, (3,)))), "direction")
    right = _unit(_cross(_native.numbers(up, (3,)), back), "side")
    above = _cross(back, right)
    rows = (*right, 0.0), (*above, 0.0), (*back, 0.0), (*position, 1.0)
    return Transform(rows)


def _cross(a, b):
    return (
        a[1] * b[2] - a[2] * b[1],
        a[2] * b[0] - a[0] * b[2],
        a[0] * b[1] - a[1] * b[0],
    )


def _unit(v, what):
    length = math.sqrt(sum(x * x for x in v))
    if not 0 < length < math.inf:
        raise ValueError(
            "look_at has no {}: the position has to differ from the target, and the line between "
            "them from \"up\"".format(what)
        )
    return tuple(x / length for x in v)
