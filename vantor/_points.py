"""Points: clouds of spheres, from arrays."""

from . import _values


class Points:
    """A cloud of spheres, which points() makes. scene.add(cloud) puts it into a scene.

    positions and colors are arrays of the module; radii is one of them or a number. None of radii
    and colors is what was not given.
    """

    def __init__(self, positions, radii=None, colors=None):
        self.positions = _values.named("points: positions", _values.array, "vector3array",
                                       positions)
        count = len(self.positions)
        self.radii = None if radii is None else _values.named("points: radii", _radii, radii)
        self.colors = None if colors is None else _values.named(
            "points: colors", _values.colors, colors)
        if _is_array(self.radii):
            _check("radii", (len(self.radii),), "one number, or the shape ({},)".format(count),
                   count)
        if self.colors is not None:
            _check("colors", (len(self.colors), 3), "the shape ({}, 3)".format(count), count)

    def __len__(self):
        return len(self.positions)

    def __repr__(self):
        return "<Points: {}>".format(len(self))

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


def _radii(value):
    is_one = not _is_array(value) and _values.is_one_number(value)
    return _values.number(value) if is_one else _values.array("floatarray", value)


def _check(name, shape, expected, count):
    if shape[0] != count:
        message = "points: {}: expected {}, as positions have the shape ({}, 3), got {}"
        raise ValueError(message.format(name, expected, count, shape))
