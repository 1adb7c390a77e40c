"""The types intarray and floatarray."""

import math
import unittest

import samples
from array_tests import ArrayTests
from module_under_test import vantorPM


def except_numbers():
    """Values that are no number of any kind."""
    wrong = [lambda: None, lambda: "1", lambda: b"1", lambda: 1j, lambda: [], lambda: (), object]
    return wrong + [make for make in samples.MAKE.values()]


class IntArrayTest(ArrayTests, unittest.TestCase):
    type_name = "intarray"
    message = "intarray object has not been initialized"
    elements = [(lambda: 1, (1,)), (lambda: 2, (2,)), (lambda: -2147483648, (-2147483648,))]
    texts = ["[intarray ]", "[intarray 1 ]", "[intarray 1, 2 ]", "[intarray 1, 2, -2147483648 ]"]
    zero_texts = {1: "[intarray 0 ]", 3: "[intarray 0, 0, 0 ]"}
    wrong_elements = except_numbers()
    wrong_pattern = None

    def numbered(self, number):
        return number * 7 - 3

    def test_one_two_three(self):
        array = vantorPM.intarray().add(1).add(2).add(3)
        self.assertEqual(str(array), "[intarray 1, 2, 3 ]")

    def test_five_six(self):
        array = vantorPM.intarray()
        self.assertIs(array.add(5).add(6), array)
        self.assertEqual(array.get(1), 6)
        self.assert_out_of_bounds(array.get, 2)

    def test_elements_are_integers(self):
        for element in [self.array.get(0), self.array[0]]:
            self.assertIs(type(element), int)

    def test_the_full_range_of_the_long_is_kept(self):
        for number in [2**31 - 1, -(2**31), 0, -1, 65536]:
            with self.subTest(number):
                array = vantorPM.intarray().add(number).add(0).add(0)
                array.set(1, number)
                array[2] = number
                self.assertEqual(list(array), [number] * 3)
                self.assertEqual(str(array), "[intarray {0}, {0}, {0} ]".format(number))

    def test_values_beyond_32_bits_are_an_overflow_that_stores_nothing(self):
        message = "Python int too large to convert to C long"
        for number in [
            2**31,
            -(2**31) - 1,
            2**32,
            2**32 + 5,
            2**63,
            -(2**64),
            10**50,
        ]:
            with self.subTest(number):
                self.assert_message(OverflowError, message, self.array.add, number)
                self.assert_message(OverflowError, message, self.array.set, 0, number)
                self.assert_message(OverflowError, message, self.assign, self.array, 0, number)
        self.assert_holds(self.array, [0, 1, 2])

    def test_a_float_is_truncated_toward_zero_on_every_way_in(self):
        for number, stored in [
            (2.7, 2),
            (-2.7, -2),
            (0.99, 0),
            (-0.0, 0),
            (2147483647.5, 2147483647),
        ]:
            with self.subTest(number):
                array = vantorPM.intarray().add(number).add(9).add(9)
                array.set(1, number)
                array[2] = number
                self.assertEqual(list(array), [stored] * 3)
                self.assertIs(type(array[0]), int)

    def test_floats_that_are_no_integer_or_too_large_store_nothing(self):
        for number, kind in [
            (math.nan, ValueError),
            (math.inf, OverflowError),
            (-math.inf, OverflowError),
            (2147483648.0, OverflowError),
            (-1e300, OverflowError),
        ]:
            with self.subTest(number):
                self.assert_fails(kind, None, self.array.add, number)
                self.assert_fails(kind, None, self.array.set, 0, number)
                self.assert_fails(kind, None, self.assign, self.array, 0, number)
        self.assert_holds(self.array, [0, 1, 2])

    def test_a_value_whose_conversion_empties_the_array_is_stored_nowhere(self):
        array = vantorPM.intarray().add(1).add(2).add(3)

        class Empties:
            def __index__(self):
                array.setSize(0)
                return 7

        array[2] = Empties()
        self.assertEqual(array.getSize(), 0)
        self.assertEqual(list(array.setSize(3)), [0, 0, 0])
        self.assert_out_of_bounds(array.set, 2, Empties())
        self.assertEqual(array.getSize(), 0)
        array.setSize(3).add(Empties())
        self.assertEqual(list(array), [7])

    def test_a_value_whose_conversion_grows_the_array_is_stored_in_its_place(self):
        array = vantorPM.intarray().add(1)

        class Grows:
            def __index__(self):
                array.setSize(1000)
                return 7

        array[0] = Grows()
        self.assertEqual((array.get(0), array.get(1), array.getSize()), (7, 0, 1000))
        array.setSize(1).add(Grows())
        self.assertEqual((array.getSize(), array.get(1000), array.get(1)), (1001, 7, 0))


class FloatArrayTest(ArrayTests, unittest.TestCase):
    type_name = "floatarray"
    message = "floatarray object has not been initialized"
    elements = [(lambda: 1.5, (1.5,)), (lambda: -0.25, (-0.25,)), (lambda: 1e-7, (1e-7,))]
    texts = [
        "[floatarray ]",
        "[floatarray 1.5 ]",
        "[floatarray 1.5, -0.25 ]",
        "[floatarray 1.5, -0.25, 1e-07 ]",
    ]
    zero_texts = {1: "[floatarray 0 ]", 3: "[floatarray 0, 0, 0 ]"}
    wrong_elements = except_numbers()
    wrong_pattern = None

    def numbered(self, number):
        return float(number * 7 - 3)

    def test_item_assignment_changes_one_element_and_no_other(self):
        for index, after in [
            (0, [8.0, -0.25, 1e-7]),
            (1, [1.5, 8.0, 1e-7]),
            (-3, [8.0, -0.25, 1e-7]),
            (-2, [1.5, 8.0, 1e-7]),
            (-1, [1.5, -0.25, 8.0]),
        ]:
            with self.subTest(index):
                array = self.array_of(3)
                array[index] = 8
                self.assert_same_bits(array, after)

    def test_item_assignment_truncates_but_set_and_add_take_fractions(self):
        for number, stored in [
            (2.7, 2.0),
            (-2.7, -2.0),
            (0.5, 0.0),
            (-0.5, 0.0),
            (3, 3.0),
            (True, 1.0),
        ]:
            with self.subTest(number):
                array = vantorPM.floatarray().add(number).add(9)
                array.set(1, number)
                self.assert_same_bits(array, [float(number)] * 2)
                array[0] = number
                self.assert_same_bits(array, [stored, float(number)])

    def test_item_assignment_beyond_32_bits_is_an_overflow_that_stores_nothing(self):
        message = "Python int too large to convert to C long"
        for number in [2**31, -(2**31) - 1, 2**64]:
            with self.subTest(number):
                self.assert_message(OverflowError, message, self.assign, self.array, 0, number)
        for number, kind in [
            (2147483648.0, OverflowError),
            (1e300, OverflowError),
            (math.nan, ValueError),
            (math.inf, OverflowError),
            (-math.inf, OverflowError),
        ]:
            with self.subTest(number):
                self.assert_fails(kind, None, self.assign, self.array, 0, number)
        self.assert_holds(self.array, [0, 1, 2])

    def test_item_assignment_takes_the_full_range_of_the_long(self):
        for number in [2**31 - 1, -(2**31)]:
            self.array[1] = number
            self.assert_same_bits(self.array, [1.5, float(number), 1e-7])

    def test_set_and_add_take_any_number(self):
        for number in [
            math.nan,
            math.inf,
            -math.inf,
            -0.0,
            5e-324,
            1e308,
            0.1,
            2**31,
            2**64,
            -(10**300),
        ]:
            with self.subTest(number):
                array = vantorPM.floatarray().add(number).add(0)
                array.set(1, number)
                self.assert_same_bits(array, [float(number)] * 2)

    def test_an_integer_too_large_for_a_double_is_an_overflow_that_stores_nothing(self):
        self.assert_fails(OverflowError, None, self.array.add, 10**400)
        self.assert_fails(OverflowError, None, self.array.set, 0, -(10**400))
        self.assert_holds(self.array, [0, 1, 2])

    def test_elements_are_floats(self):
        array = vantorPM.floatarray().add(1).add(2)
        array[1] = 5
        for element in [array.get(0), array[0], array.get(1), array[1]]:
            self.assertIs(type(element), float)

    def test_special_numbers_are_printed_as_c_prints_them(self):
        array = vantorPM.floatarray().add(math.nan).add(math.inf).add(-math.inf).add(-0.0).add(1e20)
        self.assertEqual(str(array), "[floatarray nan, inf, -inf, -0, 1e+20 ]")

    def test_a_value_whose_conversion_empties_the_array_is_stored_nowhere(self):
        array = vantorPM.floatarray().add(1).add(2).add(3)

        class Empties:
            def __index__(self):
                array.setSize(0)
                return 7

            def __float__(self):
                array.setSize(0)
                return 7.5

        array[2] = Empties()
        self.assertEqual(array.getSize(), 0)
        self.assertEqual(list(array.setSize(3)), [0.0, 0.0, 0.0])
        self.assert_out_of_bounds(array.set, 2, Empties())
        self.assertEqual(array.getSize(), 0)
        array.setSize(3).add(Empties())
        self.assertEqual(list(array), [7.5])


if __name__ == "__main__":
    unittest.main()
