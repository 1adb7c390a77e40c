"""Bad input at every place that takes a number: an error each time, and the object is as it was.

A place is a name, what makes the object, and the call with the object and the number left out.
"""

import collections
import decimal
import fractions
import math
import unittest

import samples
from expectations import Expectations
from module_under_test import vantorPM
from names import ARRAYS, MATRICES, NUMBERS, ROW_OF, SEQUENCES, VECTORS, WITH_ID

BEYOND_32_BITS = [
    2**31,
    -(2**31) - 1,
    2**32,
    2**32 + 1,
    -(2**32),
    2**63 - 1,
    2**63,
    -(2**63) - 1,
    2**64 + 1,
    10**100,
]
TOO_LARGE = "Python int too large to convert to C long"


def element_of(name):
    """An element for the array type."""
    return samples.MAKE[name]().get(0)


def assign(value, index, number):
    value[index] = number


def long_places():
    """Places whose interface says long: 32 bits, with the interpreter's text for a long."""
    places = [("scene", lambda: None, lambda _, number: vantorPM.scene(number))]
    for method in WITH_ID:
        places.append(
            (
                "scene." + method,
                samples.MAKE["scene"],
                lambda scene, number, method=method: getattr(scene, method)(number),
            )
        )
    for place in range(3):

        def render(scene, number, place=place):
            sizes = [1, 1, 1]
            sizes[place] = number
            return scene.render(*sizes)

        places.append(
            ("scene.render, argument {}".format(place + 1), samples.MAKE["scene"], render)
        )
    for name in ARRAYS:
        make = samples.MAKE[name]
        places += [
            (name + ".get", make, lambda array, number: array.get(number)),
            (
                name + ".set, index",
                make,
                lambda array, number, name=name: array.set(number, element_of(name)),
            ),
            (name + ".setSize", make, lambda array, number: array.setSize(number)),
        ]
    places += [
        (
            "intarray.set, value",
            samples.MAKE["intarray"],
            lambda array, number: array.set(0, number),
        ),
        ("intarray.add", samples.MAKE["intarray"], lambda array, number: array.add(number)),
        ("intarray[0]", samples.MAKE["intarray"], lambda array, number: assign(array, 0, number)),
        (
            "floatarray[0]",
            samples.MAKE["floatarray"],
            lambda array, number: assign(array, 0, number),
        ),
    ]
    return places


def int_places():
    """Places whose interface says int: the same range, with another text of the interpreter's."""
    places = [
        (
            "transform.get",
            samples.MAKE["transform"],
            lambda transform, number: transform.get(number),
        )
    ]
    for name in VECTORS:
        places += [
            (name + ".get", samples.MAKE[name], lambda vector, number: vector.get(number)),
            (
                name + ".set, index",
                samples.MAKE[name],
                lambda vector, number: vector.set(number, 1.0),
            ),
        ]
    for name in MATRICES:
        places += [
            (name + ".get", samples.MAKE[name], lambda matrix, number: matrix.get(number)),
            (
                name + ".set, index",
                samples.MAKE[name],
                lambda matrix, number, name=name: matrix.set(number, samples.MAKE[ROW_OF[name]]()),
            ),
        ]
    return places


def double_places():
    """Places whose interface says double."""
    places = []
    for name, count in [(name, NUMBERS[name]) for name in VECTORS]:
        for place in range(count):

            def construct(_, number, name=name, count=count, place=place):
                components = [1.0] * count
                components[place] = number
                return getattr(vantorPM, name)(*components)

            places += [
                ("{}, argument {}".format(name, place + 1), lambda: None, construct),
                (
                    "{}.set, component {}".format(name, place),
                    samples.MAKE[name],
                    lambda vector, number, place=place: vector.set(place, number),
                ),
                (
                    "{}[{}]".format(name, place),
                    samples.MAKE[name],
                    lambda vector, number, place=place: assign(vector, place, number),
                ),
            ]
    places += [
        ("floatarray.add", samples.MAKE["floatarray"], lambda array, number: array.add(number)),
        (
            "floatarray.set, value",
            samples.MAKE["floatarray"],
            lambda array, number: array.set(1, number),
        ),
    ]
    for method in ["rotationAroundX", "rotationAroundY", "rotationAroundZ"]:
        places.append(
            (
                "transform." + method,
                samples.MAKE["transform"],
                lambda transform, number, method=method: getattr(transform, method)(number),
            )
        )
    places.append(
        (
            "transform.rotationAroundAxis",
            samples.MAKE["transform"],
            lambda transform, number: transform.rotationAroundAxis(
                vantorPM.vector3(1, 2, 3), vantorPM.vector3(0, 0, 1), number
            ),
        )
    )
    for place in range(4):

        def render(scene, number, place=place):
            window = [0.0, 0.0, 1.0, 1.0]
            window[place] = number
            return scene.render(1, 1, 1, *window)

        places.append(
            ("scene.render, argument {}".format(place + 4), samples.MAKE["scene"], render)
        )
    return places


class Index:
    def __init__(self, number):
        self.number = number

    def __index__(self):
        return self.number


class Number:
    def __init__(self, number):
        self.number = number

    def __float__(self):
        return self.number


class RaisingIndex:
    def __index__(self):
        raise ZeroDivisionError("of the script's own")


class RaisingNumber(RaisingIndex):
    def __float__(self):
        raise ZeroDivisionError("of the script's own")


class Integer(int):
    pass


class Real(float):
    pass


class BadInputTests(Expectations):
    def assert_refused(self, kind, pattern, place, number):
        """The number is refused at the place, and the object is as it was."""
        label, make, call = place
        value = make()
        before = (
            repr(value),
            samples.numbers(value) if type(value).__name__ in SEQUENCES else None,
        )
        with self.subTest(label, number=number):
            self.assert_fails(kind, pattern, call, value, number)
            after = (
                repr(value),
                samples.numbers(value) if type(value).__name__ in SEQUENCES else None,
            )
            self.assertEqual(after, before)

    def assert_accepted(self, place, number, like):
        """The number does at the place what the other does."""
        label, make, call = place
        with self.subTest(label, number=number):
            value, other = make(), make()
            result, expected = call(value, number), call(other, like)
            if type(value).__name__ != "scene" and type(result).__name__ != "scene":
                self.assertEqual(repr(result), repr(expected))
                self.assertEqual(repr(value), repr(other))


class IntegerPlaceTest(BadInputTests, unittest.TestCase):
    places = long_places() + int_places()

    def test_what_is_no_number_is_refused(self):
        for place in self.places:
            for wrong in [
                None,
                "1",
                "",
                b"1",
                bytearray(b"1"),
                1j,
                [],
                [1],
                (),
                (1,),
                {},
                object(),
                int,
                len,
                NotImplemented,
                vantorPM.vector3(1, 2, 3),
                vantorPM.intarray(),
                range(1),
                Number(1.0),
            ]:
                self.assert_refused(TypeError, None, place, wrong)

    def test_nan_and_infinities_are_refused_with_the_errors_of_int(self):
        for place in self.places:
            self.assert_refused(ValueError, "cannot convert float NaN to integer", place, math.nan)
            self.assert_refused(
                OverflowError, "cannot convert float infinity to integer", place, math.inf
            )
            self.assert_refused(
                OverflowError, "cannot convert float infinity to integer", place, -math.inf
            )

    def test_integers_beyond_32_bits_are_an_overflow_everywhere(self):
        for place in self.places:
            for number in BEYOND_32_BITS:
                self.assert_refused(OverflowError, None, place, number)

    def test_integers_beyond_the_long_have_the_interpreters_text(self):
        for place in long_places():
            others = [Integer(2**31), Index(2**31), Index(2**64)]
            for number in BEYOND_32_BITS + others:
                self.assert_refused(OverflowError, "^" + TOO_LARGE + "$", place, number)

    def test_floats_beyond_32_bits_are_an_overflow(self):
        for place in self.places:
            for number in [2.0**31, -(2.0**31) - 1, 1e10, -1e10, 1e19, 1e300]:
                self.assert_refused(OverflowError, None, place, number)

    def test_floats_are_truncated_toward_zero(self):
        for place in self.places:
            self.assert_accepted(place, 1.999, 1)
            self.assert_accepted(place, -0.999, 0)
            self.assert_accepted(place, 0.0, 0)
            self.assert_accepted(place, -0.0, 0)
            self.assert_accepted(place, 5e-324, 0)

    def test_subclasses_of_numbers_and_objects_with_an_index_are_numbers(self):
        for place in self.places:
            self.assert_accepted(place, True, 1)
            self.assert_accepted(place, False, 0)
            self.assert_accepted(place, Integer(1), 1)
            self.assert_accepted(place, Index(1), 1)
            self.assert_accepted(place, Real(1.5), 1)

    def test_an_error_of_the_conversion_reaches_the_script(self):
        for place in self.places:
            self.assert_refused(ZeroDivisionError, "of the script's own", place, RaisingIndex())

    def test_a_conversion_that_gives_no_integer_is_refused(self):
        for place in self.places:
            for bad in [Index(1.0), Index(None), Index("1")]:
                self.assert_refused(TypeError, None, place, bad)


class NumberPlaceTest(BadInputTests, unittest.TestCase):
    places = double_places()

    def test_what_is_no_number_is_refused(self):
        for place in self.places:
            for wrong in [
                None,
                "1.0",
                "",
                b"1",
                1j,
                [],
                [1.0],
                (),
                (1.0,),
                {},
                object(),
                float,
                NotImplemented,
                vantorPM.vector3(1, 2, 3),
                vantorPM.floatarray(),
            ]:
                self.assert_refused(TypeError, None, place, wrong)

    def test_an_integer_too_large_for_a_double_is_an_overflow(self):
        for place in self.places:
            for number in [10**400, -(10**400), 2**1024]:
                self.assert_refused(OverflowError, None, place, number)

    def test_integers_beyond_a_machine_word_are_numbers(self):
        for place in self.places:
            for number in [2**31, 2**63, 2**64 + 1, -(10**30), 2**53 + 1]:
                self.assert_accepted(place, number, float(number))

    def test_whatever_has_a_float_is_a_number(self):
        for place in self.places:
            for number in [
                True,
                Integer(1),
                Index(1),
                Number(1.0),
                Real(1.0),
                fractions.Fraction(1),
                decimal.Decimal(1),
            ]:
                self.assert_accepted(place, number, 1.0)

    def test_an_error_of_the_conversion_reaches_the_script(self):
        for place in self.places:
            self.assert_refused(ZeroDivisionError, "of the script's own", place, RaisingNumber())
            self.assert_refused(ZeroDivisionError, "of the script's own", place, RaisingIndex())

    def test_a_conversion_that_gives_no_float_is_refused(self):
        for place in self.places:
            for bad in [Number(1), Number(None), Number("1.0")]:
                self.assert_refused(TypeError, None, place, bad)


class ArgumentShapeTest(Expectations, unittest.TestCase):
    """How one, several and tuple arguments reach the methods."""

    def test_a_tuple_of_a_tuple_is_no_tuple_of_arguments(self):
        vector = vantorPM.vector3(1, 2, 3)
        self.assert_fails(TypeError, "exactly 2 arguments \\(1 given\\)", vector.set, ((0, 1.0),))
        self.assertEqual(list(vector), [1.0, 2.0, 3.0])

    def test_a_named_tuple_is_a_tuple_of_arguments(self):
        pair = collections.namedtuple("Pair", "index value")(1, 7.5)
        vector = vantorPM.vector3(1, 2, 3)
        self.assertIs(vector.set(pair), vector)
        self.assertEqual(list(vector), [1.0, 7.5, 3.0])

    def test_a_list_an_iterator_or_a_string_is_no_tuple_of_arguments(self):
        vector = vantorPM.vector3(1, 2, 3)
        for argument in [[0, 1.0], iter((0, 1.0)), {0: 1.0}, "01", range(2), vector]:
            with self.subTest(argument):
                self.assert_fails(
                    TypeError, "exactly 2 arguments \\(1 given\\)", vector.set, argument
                )
        self.assertEqual(list(vector), [1.0, 2.0, 3.0])

    def test_the_tuple_of_arguments_is_left_as_it_was(self):
        vector, pair = vantorPM.vector3(1, 2, 3), (0, 9.0)
        vector.set(pair)
        vector.set(*pair)
        self.assertEqual(pair, (0, 9.0))

    def test_methods_can_be_called_through_their_type(self):
        vector = vantorPM.vector3(1, 2, 3)
        kind = type(vector)
        self.assertEqual(kind.get(vector, 1), 2.0)
        self.assertIs(kind.set(vector, 1, 8.0), vector)
        self.assertIs(kind.set(vector, (2, 9.0)), vector)
        self.assertEqual(kind.length(vector, 99), vector.length())
        self.assertEqual(list(vector), [1.0, 8.0, 9.0])

    def test_very_many_arguments(self):
        many = [0] * 100000
        vector, array, scene = vantorPM.vector3(3, 4, 0), vantorPM.intarray(), vantorPM.scene()
        self.assertEqual(vector.length(*many), 5.0)
        self.assertEqual(array.getSize(*many), 0)
        self.assertIsNone(scene.lightBegin(*many))
        self.assert_fails(TypeError, "exactly 2 arguments \\(100000 given\\)", vector.set, *many)
        self.assert_fails(TypeError, None, array.add, *many)
        self.assert_fails(TypeError, "at most 7 arguments \\(100000 given\\)", scene.render, *many)
        self.assertEqual(str(vantorPM.transform(*many)), str(vantorPM.transform()))

    def test_star_and_double_star_calls(self):
        vector = vantorPM.vector3(*[1, 2, 3], **{})
        self.assertIs(vector.set(*(0, 5.0), **{}), vector)
        self.assert_fails(TypeError, "keyword", lambda: vector.set(*(0, 5.0), **{"d": 1.0}))
        self.assertEqual(list(vector), [5.0, 2.0, 3.0])


if __name__ == "__main__":
    unittest.main()
