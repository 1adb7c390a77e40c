"""The types vector2, vector3 and vector4."""

import io
import math
import random
import struct
import sys
import unittest

from expectations import Expectations
from module_under_test import vantorPM
from native_parts import doubles
from names import METHODS

NAN = math.nan
INF = math.inf

# What no method without arguments ever looks at.
IGNORED = [(99,), (None,), ("x",), ((),), (1, 2, 3), (object(), [], {})]


class Chained:
    """A number that does something when it is converted."""

    def __init__(self, action, number):
        self.action = action
        self.number = number

    def __float__(self):
        self.action()
        return float(self.number)

    def __index__(self):
        self.action()
        return int(self.number)


class VectorTests(Expectations):
    """Tests of the family; each member's facts stand in its class below."""

    def setUp(self):
        self.make = getattr(vantorPM, self.type_name)
        self.vector = self.make(*self.components)

    def assert_holds(self, vector, components):
        """The vector reads the same through every door."""
        last = self.dimension - 1
        self.assert_same_bits([vector.get(i) for i in range(self.dimension)], components)
        self.assert_same_bits([vector[i] for i in range(self.dimension)], components)
        self.assert_same_bits(
            [vector[i - self.dimension] for i in range(self.dimension)], components
        )
        self.assert_same_bits(list(vector), components)
        self.assert_same_bits(doubles(vector, self.dimension), components)
        self.assert_same_bits([list(vector)[last]], [vector[-1]])

    # Creation

    def test_constructor_stores_its_arguments_in_order(self):
        self.assert_holds(self.vector, self.components)

    def test_constructor_accepts_integers_as_numbers(self):
        self.assert_holds(
            self.make(*range(1, self.dimension + 1)), [1.0, 2.0, 3.0, 4.0][: self.dimension]
        )

    def test_constructor_needs_exactly_its_number_of_components(self):
        exactly = "exactly {} arguments \\({{}} given\\)".format(self.dimension)
        for count in range(7):
            if count != self.dimension:
                with self.subTest(count):
                    self.assert_fails(TypeError, exactly.format(count), self.make, *[1.0] * count)

    def test_constructor_has_no_form_from_a_sequence_or_another_vector(self):
        for argument in [self.vector, self.components, list(self.components)]:
            with self.subTest(argument):
                self.assert_fails(TypeError, "arguments \\(1 given\\)", self.make, argument)

    def test_constructor_checks_every_component(self):
        for place in range(self.dimension):
            for wrong in [None, "1", 1j, [], self.vector]:
                with self.subTest(place=place, wrong=wrong):
                    components = list(self.components)
                    components[place] = wrong
                    self.assert_fails(TypeError, None, self.make, *components)

    def test_each_call_of_the_constructor_makes_a_new_object(self):
        other = self.make(*self.components)
        self.assertIsNot(other, self.vector)
        other.set(0, 100)
        self.assert_holds(self.vector, self.components)

    def test_any_double_is_kept_as_it_is(self):
        for number in [0.0, -0.0, NAN, INF, -INF, 5e-324, sys.float_info.max, 0.1]:
            with self.subTest(number):
                self.assert_holds(self.make(*[number] * self.dimension), [number] * self.dimension)

    # get, set, items

    def test_get_out_of_range_is_an_index_error(self):
        for index in [
            -1,
            -2,
            -self.dimension,
            self.dimension,
            self.dimension + 1,
            2**31 - 1,
            -(2**31),
        ]:
            with self.subTest(index):
                self.assert_out_of_bounds(self.vector.get, index)

    def test_get_needs_exactly_one_integer(self):
        for arguments in [(), (0, 1), ((0,),), ((),), ([0],), (None,), ("0",), (1j,)]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.vector.get, *arguments)

    def test_get_returns_a_new_float(self):
        self.assertIs(type(self.make(*[1] * self.dimension).get(0)), float)

    def test_set_changes_one_component_and_no_other(self):
        for place in range(self.dimension):
            with self.subTest(place):
                vector = self.make(*self.components)
                expected = list(self.components)
                expected[place] = 7.0
                self.assert_returns_itself(vector, vector.set, place, 7)
                self.assert_holds(vector, expected)

    def test_set_of_one_component_returns_the_object_itself(self):
        self.assertIs(self.vector.set(1, 7), self.vector)
        self.assertEqual(self.vector.get(1), 7.0)

    def test_set_takes_a_tuple_of_two_as_two_arguments(self):
        self.assert_returns_itself(self.vector, self.vector.set, (0, 5.5))
        self.assertEqual(self.vector.get(0), 5.5)

    def test_set_out_of_range_changes_nothing(self):
        for index in [-1, self.dimension, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                self.assert_out_of_bounds(self.vector.set, index, 9.0)
                self.assert_out_of_bounds(self.vector.set, (index, 9.0))
                self.assert_holds(self.vector, self.components)

    def test_set_parses_both_arguments_before_it_tests_the_index(self):
        self.assert_fails(TypeError, None, self.vector.set, 99, "x")

    def test_set_of_a_wrong_kind_changes_nothing(self):
        for arguments in [
            (0, None),
            (0, "1"),
            (0, 1j),
            (None, 1.0),
            ("0", 1.0),
            ([], 1.0),
            (0, self.vector),
        ]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.vector.set, *arguments)
                self.assert_holds(self.vector, self.components)

    def test_set_needs_exactly_two_arguments(self):
        for arguments, count in [
            ((), 0),
            ((1,), 1),
            ((1, 2, 3), 3),
            (((),), 0),
            (((1,),), 1),
            (((1, 2, 3),), 3),
            (([0, 1.0],), 1),
            ((None,), 1),
            (("ab",), 1),
        ]:
            with self.subTest(arguments):
                pattern = "exactly 2 arguments \\({} given\\)".format(count)
                self.assert_fails(TypeError, pattern, self.vector.set, *arguments)
                self.assert_holds(self.vector, self.components)

    def test_item_assignment_changes_one_component_and_no_other(self):
        for place in range(self.dimension):
            for index in (place, place - self.dimension):
                with self.subTest(index):
                    vector = self.make(*self.components)
                    expected = list(self.components)
                    expected[place] = -8.25
                    vector[index] = -8.25
                    self.assert_holds(vector, expected)

    def test_item_assignment_of_an_integer_stores_a_float(self):
        self.vector[0] = 2
        self.assert_holds(self.vector, [2.0] + list(self.components[1:]))

    def test_items_out_of_range_are_index_errors(self):
        def assign(index):
            self.vector[index] = 1.0

        for index in [
            self.dimension,
            self.dimension + 1,
            -self.dimension - 1,
            2**31,
            2**32,
            -(2**32),
            2**62,
        ]:
            with self.subTest(index):
                self.assert_out_of_bounds(lambda: self.vector[index])
                self.assert_out_of_bounds(assign, index)
                self.assert_holds(self.vector, self.components)

    def test_items_beyond_every_machine_integer_are_index_errors(self):
        for index in [2**64, -(2**64), 10**30]:
            with self.subTest(index):
                self.assert_fails(IndexError, None, lambda: self.vector[index])

    def test_negative_subscripts_count_from_the_end_but_get_and_set_do_not(self):
        self.assertEqual(self.vector[-1], self.components[-1])
        self.assert_out_of_bounds(self.vector.get, -1)
        self.assert_out_of_bounds(self.vector.set, -1, 0.0)

    def test_item_assignment_tests_the_range_before_it_parses_the_value(self):
        def assign(index):
            self.vector[index] = "x"

        self.assert_out_of_bounds(assign, 5)
        self.assert_out_of_bounds(assign, -5)
        self.assert_fails(TypeError, None, assign, 0)
        self.assert_holds(self.vector, self.components)

    def test_deleting_a_component_fails_in_the_value_parse(self):
        def delete(index):
            del self.vector[index]

        for index in [0, self.dimension - 1, -1]:
            with self.subTest(index):
                self.assert_fails(TypeError, None, delete, index)
                self.assert_holds(self.vector, self.components)
        self.assert_out_of_bounds(delete, self.dimension)

    def test_subscripts_are_integers(self):
        for subscript in ["0", 0.0, None, (0,)]:
            with self.subTest(subscript):
                self.assert_fails(TypeError, None, lambda: self.vector[subscript])

    def test_an_index_is_truncated_toward_zero(self):
        self.assertEqual(self.vector.get(1.9), self.components[1])
        self.assertEqual(self.vector.get(-0.9), self.components[0])
        self.assert_returns_itself(self.vector, self.vector.set, 1.5, 3.0)
        self.assertEqual(self.vector.get(1), 3.0)
        self.assert_out_of_bounds(self.vector.get, float(self.dimension))

    # Sequence

    def test_len_is_the_dimension(self):
        self.assertEqual(len(self.vector), self.dimension)

    def test_iteration_yields_the_components_in_order_and_ends(self):
        self.assertEqual(list(self.vector), list(self.components))
        self.assertEqual(tuple(self.vector), tuple(self.components))
        self.assertEqual([component for component in self.vector], list(self.components))
        self.assertEqual(list(reversed(self.vector)), list(self.components)[::-1])

    def test_a_component_is_found_in_the_vector(self):
        self.assertIn(self.components[1], self.vector)
        self.assertNotIn(12345.0, self.vector)

    def test_slices_are_not_supported(self):
        def assign():
            self.vector[0:1] = [1.0]

        def delete():
            del self.vector[0:1]

        self.assert_fails(TypeError, None, lambda: self.vector[:])
        self.assert_fails(TypeError, None, assign)
        self.assert_fails(TypeError, None, delete)
        self.assert_holds(self.vector, self.components)

    def test_concatenation_repetition_and_arithmetic_are_not_supported(self):
        vector = self.vector
        for operation in [
            lambda: vector + vector,
            lambda: vector * 2,
            lambda: 2 * vector,
            lambda: vector - vector,
            lambda: -vector,
            lambda: float(vector),
            lambda: vector(),
            lambda: vector < vector,
        ]:
            self.assert_fails(TypeError, None, operation)

        def extend():
            nonlocal vector
            vector += [1.0]

        def repeat():
            nonlocal vector
            vector *= 2

        self.assert_fails(TypeError, None, extend)
        self.assert_fails(TypeError, None, repeat)
        self.assert_holds(self.vector, self.components)

    def test_comparison_is_by_identity(self):
        self.assertTrue(self.vector == self.vector)
        self.assertFalse(self.vector == self.make(*self.components))
        self.assertEqual({self.vector: "found"}[self.vector], "found")

    # length, sqlength, normalize

    def test_length_and_sqlength(self):
        for components, length, sqlength in self.lengths:
            with self.subTest(components):
                vector = self.make(*components)
                self.assert_same_bits([vector.length()], [length])
                self.assert_same_bits([vector.sqlength()], [sqlength])
                self.assert_holds(vector, [float(component) for component in components])

    def test_length_sqlength_and_normalize_ignore_their_arguments(self):
        for arguments in IGNORED:
            with self.subTest(arguments):
                vector = self.make(*self.components)
                self.assertEqual(vector.length(*arguments), self.vector.length())
                self.assertEqual(vector.sqlength(*arguments), self.vector.sqlength())
                self.assert_returns_itself(vector, vector.normalize, *arguments)

    def test_normalize(self):
        for components, unit in self.units:
            with self.subTest(components):
                vector = self.make(*components)
                self.assert_returns_itself(vector, vector.normalize)
                self.assert_holds(vector, unit)

    def test_normalize_of_zero_returns_the_object_unchanged(self):
        zero = self.make(*[0.0] * self.dimension)
        self.assert_returns_itself(zero, zero.normalize)
        self.assert_holds(zero, [0.0] * self.dimension)
        minus_zero = self.make(*[-0.0] * self.dimension)
        self.assert_holds(minus_zero.normalize(), [-0.0] * self.dimension)

    def test_a_vector_whose_squares_underflow_has_no_length_and_is_not_normalized(self):
        components = [1e-200] + [0.0] * (self.dimension - 1)
        vector = self.make(*components)
        self.assertEqual(vector.sqlength(), 0.0)
        self.assertEqual(vector.length(), 0.0)
        self.assert_holds(vector.normalize(), components)

    def test_a_vector_whose_squares_are_denormal_is_normalized(self):
        components = [3e-162] + [0.0] * (self.dimension - 1)
        vector = self.make(*components)
        self.assertNotEqual(vector.sqlength(), 0.0)
        factor = 1.0 / math.sqrt(3e-162 * 3e-162)
        self.assert_holds(vector.normalize(), [3e-162 * factor] + [0.0] * (self.dimension - 1))

    def test_normalize_of_a_vector_with_a_nan_gives_nan_everywhere(self):
        for place in range(self.dimension):
            components = [1.0] * self.dimension
            components[place] = NAN
            self.assert_holds(self.make(*components).normalize(), [NAN] * self.dimension)

    def test_an_infinite_component_gives_the_factor_0(self):
        components = [INF, -1.0, 2.0, 3.0][: self.dimension]
        self.assert_holds(
            self.make(*components).normalize(), [NAN, -0.0, 0.0, 0.0][: self.dimension]
        )

    def test_components_are_multiplied_by_the_factor_and_not_divided_by_the_length(self):
        # 5 / 5.385... and 5 * (1 / 5.385...) differ in the last bit for one of these.
        different = 0
        for first in range(1, 60):
            components = [float(first), 7.0, 2.0, 3.0][: self.dimension]
            length = self.make(*components).length()
            factor = 1.0 / length
            self.assert_holds(
                self.make(*components).normalize(), [component * factor for component in components]
            )
            different += any(component * factor != component / length for component in components)
        self.assertGreater(different, 0)

    def test_sums_are_accumulated_in_order_bit_for_bit(self):
        generator = random.Random(20240517)
        for _ in range(3000):
            components = [
                generator.uniform(-1, 1) * 10.0 ** generator.randint(-20, 20)
                for _ in range(self.dimension)
            ]
            total = components[0] * components[0]
            for component in components[1:]:
                total = total + component * component
            vector = self.make(*components)
            self.assert_same_bits([vector.sqlength(), vector.length()], [total, math.sqrt(total)])
            factor = 1.0 / math.sqrt(total)
            self.assert_same_bits(
                vector.normalize(), [component * factor for component in components]
            )

    def test_calls_can_be_chained(self):
        vector = self.make(*[9.0] * self.dimension)
        for place in range(1, self.dimension):
            vector.set(place, 0.0)
        self.assertIs(vector.set(0, 2.0).normalize().set(1, 4.0), vector)
        self.assert_holds(vector, [1.0, 4.0, 0.0, 0.0][: self.dimension])

    # Text

    def test_print_shows_exactly_the_stated_text_without_a_newline(self):
        for components, text in self.texts:
            with self.subTest(text):
                vector = self.make(*components)
                stream = io.StringIO()
                print(vector, end="", file=stream)
                self.assertEqual(stream.getvalue(), text)
                self.assertEqual(str(vector), text)
                self.assertEqual(repr(vector), text)
                self.assertEqual("%s" % vector, text)
                self.assertEqual("{}".format(vector), text)

    def test_the_interactive_echo_shows_the_text(self):
        stream, sys.stdout = sys.stdout, io.StringIO()
        try:
            sys.displayhook(self.make(*self.texts[0][0]))
            shown = sys.stdout.getvalue()
        finally:
            sys.stdout = stream
        self.assertEqual(shown, self.texts[0][1] + "\n")

    # Calling convention and type

    def test_no_method_takes_keyword_arguments(self):
        for name, keywords in [
            ("get", {"i": 0}),
            ("set", {"i": 0, "d": 1.0}),
            ("length", {"x": 1}),
            ("sqlength", {"x": 1}),
            ("normalize", {"x": 1}),
        ]:
            with self.subTest(name):
                self.assert_fails(
                    TypeError, "keyword", lambda: getattr(self.vector, name)(**keywords)
                )
                self.assert_holds(self.vector, self.components)

    def test_type_and_methods(self):
        self.assertEqual(type(self.vector).__name__, self.type_name)
        self.assertEqual(
            [name for name in vars(type(self.vector)) if not name.startswith("__")],
            METHODS[self.type_name],
        )

    def test_a_conversion_that_raises_leaves_the_vector_as_it_was(self):
        def fail():
            raise KeyError("under way")

        def assign(value):
            self.vector[0] = value

        bad = Chained(fail, 1)
        self.assert_fails(KeyError, "under way", self.vector.set, 0, bad)
        self.assert_fails(KeyError, "under way", self.vector.set, bad, 1.0)
        self.assert_fails(KeyError, "under way", self.vector.get, bad)
        self.assert_fails(KeyError, "under way", assign, bad)
        self.assert_fails(KeyError, "under way", self.make, bad, *self.components[1:])
        self.assert_holds(self.vector, self.components)

    def test_a_conversion_that_changes_the_vector_is_stored_after_the_change(self):
        self.vector.set(0, Chained(lambda: self.vector.set(1, 50.0).set(0, 60.0), 70.0))
        self.assertEqual(list(self.vector)[:2], [70.0, 50.0])
        self.vector[0] = Chained(lambda: self.vector.set(1, 51.0).set(0, 61.0), 71.0)
        self.assertEqual(list(self.vector)[:2], [71.0, 51.0])

    # Objects without their native part

    def test_methods_of_an_uninitialised_vector_say_so(self):
        for name, arguments in [
            ("get", (0,)),
            ("set", (0, 1.0)),
            ("length", ()),
            ("sqlength", ()),
            ("normalize", ()),
        ]:
            with self.subTest(name):
                method = getattr(self.vector, name)
                self.assert_not_initialized(self.vector, self.method_message, method, *arguments)
                self.assert_holds(self.vector, self.components)

    def test_methods_of_an_uninitialised_vector_say_so_before_they_parse(self):
        for name in ["get", "set", "length", "sqlength", "normalize"]:
            for arguments in [(), (99,), ("x",), (None, None), (1, 2, 3)]:
                with self.subTest(name, arguments=arguments):
                    method = getattr(self.vector, name)
                    self.assert_not_initialized(
                        self.vector, self.method_message, method, *arguments
                    )

    def test_len_of_an_uninitialised_vector_speaks_of_vector2_in_every_type(self):
        self.assert_not_initialized(
            self.vector, "vector2 object has not been initialized", len, self.vector
        )

    def test_a_negative_subscript_of_an_uninitialised_vector_asks_for_the_length(self):
        def assign():
            self.vector[-1] = 1.0

        def delete():
            del self.vector[-1]

        for operation in [lambda: self.vector[-1], assign, delete, lambda: bool(self.vector)]:
            self.assert_not_initialized(
                self.vector, "vector2 object has not been initialized", operation
            )
        self.assert_holds(self.vector, self.components)


class Vector2Test(VectorTests, unittest.TestCase):
    type_name = "vector2"
    dimension = 2
    components = (1.5, -2.25)
    method_message = "Vector2 object has not been initialized"
    lengths = [
        ((3, 4), 5.0, 25.0),
        ((0, 0), 0.0, 0.0),
        ((-3, -4), 5.0, 25.0),
        ((1e-200, 0), 0.0, 0.0),
        ((1e200, 0), INF, INF),
        ((NAN, 0), NAN, NAN),
        ((-INF, 1), INF, INF),
    ]
    # 3 and 4 times 0.2, the double nearest to 1/5.
    units = [((3, 4), [3 * 0.2, 0.8]), ((0, -2), [0.0, -1.0]), ((0.5, 0), [1.0, 0.0])]
    texts = [
        ((1.5, 2), "vector2( 1.5, 2 )"),
        ((0, -0.0), "vector2( 0, -0 )"),
        ((1e-7, 1234567), "vector2( 1e-07, 1.23457e+06 )"),
        ((INF, -INF), "vector2( inf, -inf )"),
        ((NAN, 100000), "vector2( nan, 100000 )"),
    ]


class Vector3Test(VectorTests, unittest.TestCase):
    type_name = "vector3"
    dimension = 3
    components = (1.5, -2.25, 4.125)
    method_message = "Vector3 object has not been initialized"
    lengths = [
        ((1, 2, 2), 3.0, 9.0),
        ((0, 0, 0), 0.0, 0.0),
        ((-2, 3, 6), 7.0, 49.0),
        ((0, 0, 1e-200), 0.0, 0.0),
        ((0, INF, NAN), NAN, NAN),
    ]
    units = [
        ((0, 0, 2), [0.0, 0.0, 1.0]),
        ((0, -4, 0), [0.0, -1.0, 0.0]),
        ((0.25, 0, 0), [1.0, 0.0, 0.0]),
    ]
    texts = [
        ((1, 2, 3), "vector3( 1, 2, 3 )"),
        ((0.1, -0.0, 1e300), "vector3( 0.1, -0, 1e+300 )"),
        ((NAN, INF, -INF), "vector3( nan, inf, -inf )"),
        ((1 / 3, 2 / 3, 1e5), "vector3( 0.333333, 0.666667, 100000 )"),
    ]

    def test_the_first_edge_case(self):
        vector = vantorPM.vector3(1, 2, 3)
        self.assert_out_of_bounds(vector.get, 3)
        self.assert_out_of_bounds(vector.get, -1)
        self.assertEqual(vector[-1], 3.0)
        self.assertEqual(len(vector), 3)


class Vector4Test(VectorTests, unittest.TestCase):
    type_name = "vector4"
    dimension = 4
    components = (1.5, -2.25, 4.125, 1e-3)
    method_message = "Vector4 object has not been initialized"
    lengths = [
        ((1, 1, 1, 1), 2.0, 4.0),
        ((0, 0, 0, 0), 0.0, 0.0),
        ((2, 4, 5, 6), 9.0, 81.0),
        ((0, 1e-200, 0, 0), 0.0, 0.0),
    ]
    units = [
        ((2, 0, 0, 0), [1.0, 0.0, 0.0, 0.0]),
        ((1, 1, -1, 1), [0.5, 0.5, -0.5, 0.5]),
        ((0, 0, 0, -8), [0.0, 0.0, 0.0, -1.0]),
    ]
    texts = [
        ((1, 2, 3, 4), "vector4( 1, 2, 3, 4 )"),
        ((0.5, -0.0, NAN, 1e-10), "vector4( 0.5, -0, nan, 1e-10 )"),
        ((INF, -INF, 999999, 9999995), "vector4( inf, -inf, 999999, 1e+07 )"),
    ]

    def test_three_components_are_not_enough(self):
        self.assert_fails(TypeError, "exactly 4 arguments \\(3 given\\)", vantorPM.vector4, 1, 2, 3)


class NegativeNaNTest(unittest.TestCase):
    def test_the_sign_of_a_nan_is_kept_and_printed_as_c_prints_it(self):
        minus_nan = struct.unpack("<d", struct.pack("<Q", 0xFFF8000000000000))[0]
        vector = vantorPM.vector2(minus_nan, 0)
        self.assertEqual(struct.pack("<d", vector.get(0)), struct.pack("<Q", 0xFFF8000000000000))
        self.assertEqual(repr(vector), "vector2( -nan, 0 )")


if __name__ == "__main__":
    unittest.main()
