"""Points: clouds of spheres, from arrays."""

from . import _values


class Points:
    """A cloud of spheres, which points() makes. scene.add(cloud) puts it into a scene.

    positions and colors are arrays of the module; radii is one of them or a number. None of radii
    and colors is what was not given.
    """

    def __init__(self, positions, radii=None, colors=None):
        self.positions = _array("positions", "vector3array", positions)
        count = len(self.positions)
        self.radii = None if radii is None else _number_or_array("radii", "floatarray", radii)
        self.colors = None if colors is None else _array("colors", "vector3array", colors)
        if _is_array(self.radii):
            _check("radii", (len(self.radii),), "one number, or the shape ({},)".format(count),
                   count)
        if self.colors is not None:
            _check("colors", (len(self.colors), 3), "the shape ({}, 3)".format(count), count)

    def __len__(self):
        return len(self.positions)

    def add_to(self, scene):
        """Adds them as one object, within the open blocks; returns it."""
        name = "radii" if _is_array(self.radii) else "radius"
        return scene.add("points", positions=self.positions, colors=self.colors,
                         **{name: self.radii})


def points(positions, radii=None, colors=None):
    """A cloud of spheres, one at each of the positions: molecules, particles, scans.

    positions is an array (N, 3); radii one number for all (0.01, if it is not given) or an array
    (N,); colors an array (N, 3), which the material's colour is multiplied with. scene.add(cloud)
    puts them into the scene, as one object. ValueError tells both shapes, where they do not match.
    """
    return Points(positions, radii, colors)


def _is_array(value):
    return hasattr(value, "getSize")


def _array(name, kind, value):
    return _converted(name, lambda: _values.array(kind, value))


def _number_or_array(name, kind, value):
    return _converted(name, lambda: _values.number(value) if not _is_array(value)
                      and _values.is_one_number(value) else _values.array(kind, value))


def _converted(name, convert):
    try:
        return convert()
    except (TypeError, ValueError, OverflowError) as error:
        raise type(error)("points: {}: {}".format(name, error)) from None


def _check(name, shape, expected, count):
    if shape[0] != count:
        message = "points: {}: expected {}, as positions have the shape ({}, 3), got {}"
        raise ValueError(message.format(name, expected, count, shape))
