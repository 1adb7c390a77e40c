"""One object of each of the module's types, and the facts that tests of all types share."""

from module_under_test import vantorPM
from names import NUMBERS
from native_parts import doubles, transform_of


def vector2(start=1.0):
    return vantorPM.vector2(start, start + 1)


def vector3(start=1.0):
    return vantorPM.vector3(start, start + 1, start + 2)


def vector4(start=1.0):
    return vantorPM.vector4(start, start + 1, start + 2, start + 3)


def matrix2(start=1.0):
    return vantorPM.matrix2(vector2(start), vector2(start + 2))


def matrix3(start=1.0):
    return vantorPM.matrix3(vector3(start), vector3(start + 3), vector3(start + 6))


def matrix4(start=1.0):
    return vantorPM.matrix4(
        vector4(start), vector4(start + 4), vector4(start + 8), vector4(start + 12)
    )


def transform(start=1.0):
    return transform_of([start + place for place in range(16)])


def filled(make_array, element):
    """An array of two elements."""
    return make_array().add(element(1)).add(element(50))


MAKE = {
    "scene": lambda: vantorPM.scene(),
    "vector2": vector2,
    "vector3": vector3,
    "vector4": vector4,
    "matrix2": matrix2,
    "matrix3": matrix3,
    "matrix4": matrix4,
    "transform": transform,
    "intarray": lambda: filled(vantorPM.intarray, int),
    "floatarray": lambda: filled(vantorPM.floatarray, float),
    "vector2array": lambda: filled(vantorPM.vector2array, vector2),
    "vector3array": lambda: filled(vantorPM.vector3array, vector3),
    "vector4array": lambda: filled(vantorPM.vector4array, vector4),
    "matrix2array": lambda: filled(vantorPM.matrix2array, matrix2),
    "matrix3array": lambda: filled(vantorPM.matrix3array, matrix3),
    "matrix4array": lambda: filled(vantorPM.matrix4array, matrix4),
    "transformarray": lambda: filled(vantorPM.transformarray, transform),
}


def one_of_each():
    return {name: make() for name, make in MAKE.items()}


def numbers(value):
    """All numbers of a scalar, vector, matrix, transform or array, in storage order."""
    if isinstance(value, (int, float)):
        return [value]
    name = type(value).__name__
    if name in NUMBERS:
        return list(doubles(value, NUMBERS[name]))
    return [number for index in range(value.getSize()) for number in numbers(value.get(index))]
