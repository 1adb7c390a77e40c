"""Points: clouds of spheres, from arrays."""

from . import _native, _values


class Points:
    """A cloud of spheres, which points() makes. scene.add(cloud) puts it into a scene.

    positions and colors are arrays of the module; radii is one of them or a number. None of radii
    and colors is what was not given.
    """

    def __init__(self, positions, radii=None, colors=None):
        self.positions = _array("positions", "vector3array", positions)
        count = len(self.positions)
        if radii is None or _values.is_one_number(radii):
            self.radii = None if radii is None else _values.number(radii)
        else:
            self.radii = _array("radii", "floatarray", radii)
            _check("radii", (len(self.radii),), "one number, or the shape ({},)".format(count),
                   count)
        self.colors = None if colors is None else _array("colors", "vector3array", colors)
        if self.colors is not None:
            _check("colors", (len(self.colors), 3), "the shape ({}, 3)".format(count), count)

    def __len__(self):
        return len(self.positions)

    def add_to(self, scene):
        """Adds them as one object, within the open blocks; returns it."""
        one = {"radii": self.radii} if hasattr(self.radii, "getSize") else {"radius": self.radii}
        return scene.add("points", positions=self.positions, colors=self.colors, **one)


def points(positions, radii=None, colors=None):
    """A cloud of spheres, one at each of the positions: molecules, particles, scans.

    positions is an array (N, 3); radii one number for all (0.01, if it is not given) or an array
    (N,); colors an array (N, 3), which the material's colour is multiplied with. scene.add(cloud)
    puts them into the scene, as one object. ValueError tells both shapes, where they do not match.
    """
    return Points(positions, radii, colors)


def _array(name, kind, value):
    try:
        return _values.array(kind, value)
    except (TypeError, ValueError, OverflowError) as error:
        raise type(error)("points: {}: {}".format(name, error)) from None


def _check(name, shape, expected, count):
    if shape[0] != count:
        raise ValueError("points: {}: expected {}, as positions have the shape ({}, 3), got {}".format(
            name, expected, count, shape))
