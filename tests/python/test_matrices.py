"""The types matrix2, matrix3 and matrix4."""

import io
import math
import unittest

import samples
from expectations import Expectations
from module_under_test import vantorPM
from native_parts import doubles
from names import METHODS


class MatrixTests(Expectations):
    """Tests of the family; each member's facts stand in its class below."""

    def setUp(self):
        self.make = getattr(vantorPM, self.type_name)
        self.make_row = getattr(vantorPM, self.row_type)
        self.numbers = [float(number) for row in self.rows for number in row]
        self.matrix = self.matrix_of(self.rows)

    def matrix_of(self, rows):
        return self.make(*[self.make_row(*row) for row in rows])

    def assert_holds(self, matrix, rows):
        """The matrix reads the same row by row and in its storage."""
        for index, row in enumerate(rows):
            self.assert_same_bits(matrix.get(index), [float(number) for number in row])
        self.assert_same_bits(
            doubles(matrix, self.dimension**2), [float(number) for row in rows for number in row]
        )

    # Creation

    def test_constructor_takes_its_rows_in_order(self):
        self.assert_holds(self.matrix, self.rows)

    def test_constructor_copies_the_rows(self):
        rows = [self.make_row(*row) for row in self.rows]
        matrix = self.make(*rows)
        for row in rows:
            row.set(0, 99.0).normalize()
        self.assert_holds(matrix, self.rows)

    def test_one_vector_may_be_every_row(self):
        row = self.make_row(*self.rows[0])
        self.assert_holds(self.make(*[row] * self.dimension), [self.rows[0]] * self.dimension)

    def test_constructor_needs_exactly_its_number_of_rows(self):
        row = self.make_row(*self.rows[0])
        pattern = "exactly {} arguments \\({{}} given\\)".format(self.dimension)
        for count in range(7):
            if count != self.dimension:
                with self.subTest(count):
                    self.assert_fails(TypeError, pattern.format(count), self.make, *[row] * count)

    def test_constructor_takes_rows_of_its_own_vector_type_only(self):
        row = self.make_row(*self.rows[0])
        for place in range(self.dimension):
            for name, value in samples.one_of_each().items():
                if name != self.row_type:
                    with self.subTest(name, place=place):
                        rows = [row] * self.dimension
                        rows[place] = value
                        pattern = "argument {} must be {}, not {}".format(
                            place + 1, self.row_type, name
                        )
                        self.assert_fails(TypeError, pattern, self.make, *rows)
            for value in [None, 1.0, tuple(self.rows[0]), list(self.rows[0])]:
                rows = [row] * self.dimension
                rows[place] = value
                self.assert_fails(TypeError, "must be " + self.row_type, self.make, *rows)

    # get and set

    def test_get_returns_a_new_vector_of_the_row_type(self):
        row = self.matrix.get(1)
        self.assertEqual(type(row).__name__, self.row_type)
        self.assertEqual(list(row), [float(number) for number in self.rows[1]])
        self.assertIsNot(self.matrix.get(1), row)

    def test_a_row_that_was_read_is_independent_of_the_matrix(self):
        row = self.matrix.get(0)
        self.assertIs(row.set(0, 9), row)
        self.assert_holds(self.matrix, self.rows)
        self.matrix.set(0, self.make_row(*self.rows[1]))
        self.assertEqual(list(row), [9.0] + [float(number) for number in self.rows[0][1:]])

    def test_set_changes_one_row_and_no_other(self):
        for index in range(self.dimension):
            with self.subTest(index):
                matrix = self.matrix_of(self.rows)
                rows = list(self.rows)
                rows[index] = self.other_row
                self.assert_returns_itself(
                    matrix, matrix.set, index, self.make_row(*self.other_row)
                )
                self.assert_holds(matrix, rows)

    def test_set_copies_the_vector(self):
        row = self.make_row(*self.other_row)
        self.matrix.set(0, row)
        row.set(0, 1000.0)
        self.assert_holds(self.matrix, [self.other_row] + list(self.rows[1:]))

    def test_set_takes_a_tuple_of_two_as_two_arguments(self):
        self.assert_returns_itself(
            self.matrix, self.matrix.set, (0, self.make_row(*self.other_row))
        )
        self.assert_holds(self.matrix, [self.other_row] + list(self.rows[1:]))

    def test_set_can_be_chained(self):
        row = self.make_row(*self.other_row)
        self.assertIs(self.matrix.set(0, row).set(1, row), self.matrix)
        self.assert_holds(self.matrix, [self.other_row] * 2 + list(self.rows[2:]))

    def test_set_with_an_object_of_another_type_changes_nothing(self):
        for name, value in samples.one_of_each().items():
            if name != self.row_type:
                with self.subTest(name):
                    pattern = "must be {}, not {}".format(self.row_type, name)
                    self.assert_fails(TypeError, pattern, self.matrix.set, 0, value)
        for value in [None, 1.0, tuple(self.rows[0]), list(self.rows[0])]:
            with self.subTest(value):
                self.assert_fails(TypeError, "must be " + self.row_type, self.matrix.set, 0, value)
        self.assert_holds(self.matrix, self.rows)

    def test_set_needs_exactly_two_arguments(self):
        row = self.make_row(*self.other_row)
        for arguments, count in [
            ((), 0),
            ((0,), 1),
            ((row,), 1),
            ((0, row, row), 3),
            (((),), 0),
            (((0,),), 1),
            (([0, row],), 1),
        ]:
            with self.subTest(arguments):
                pattern = "exactly 2 arguments \\({} given\\)".format(count)
                self.assert_fails(TypeError, pattern, self.matrix.set, *arguments)
        self.assert_holds(self.matrix, self.rows)

    def test_get_needs_exactly_one_integer(self):
        for arguments in [(), (0, 1), ((0,),), ([0],), (None,), ("0",), (1j,)]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.matrix.get, *arguments)

    def test_the_index_of_set_is_an_integer(self):
        for index in [None, "0", [], 1j]:
            with self.subTest(index):
                self.assert_fails(
                    TypeError, None, self.matrix.set, index, self.make_row(*self.other_row)
                )
        self.assert_holds(self.matrix, self.rows)

    def test_get_of_a_row_outside_gives_a_zero_row(self):
        for index in [-1, -2, self.dimension, self.dimension + 1, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                row = self.matrix.get(index)
                self.assertEqual(type(row).__name__, self.row_type)
                self.assert_same_bits(row, [0.0] * self.dimension)

    def test_set_of_a_row_outside_stores_nothing_and_returns_the_object_itself(self):
        row = self.make_row(*self.other_row)
        for index in [-1, -2, self.dimension, self.dimension + 1, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                self.assert_returns_itself(self.matrix, self.matrix.set, index, row)
                self.assert_holds(self.matrix, self.rows)

    def test_an_index_beyond_32_bits_is_an_overflow(self):
        row = self.make_row(*self.other_row)
        for index in [2**31, -(2**31) - 1, 2**32, 2**63, -(2**70)]:
            with self.subTest(index):
                self.assert_fails(OverflowError, None, self.matrix.get, index)
                self.assert_fails(OverflowError, None, self.matrix.set, index, row)
        self.assert_holds(self.matrix, self.rows)

    def test_an_index_is_truncated_toward_zero(self):
        self.assertEqual(list(self.matrix.get(1.9)), [float(number) for number in self.rows[1]])
        self.assertEqual(list(self.matrix.get(-0.9)), [float(number) for number in self.rows[0]])
        self.matrix.set(1.2, self.make_row(*self.other_row))
        self.assert_holds(self.matrix, [self.rows[0], self.other_row] + list(self.rows[2:]))

    def test_a_conversion_that_changes_matrix_and_row_is_seen(self):
        matrix, row = self.matrix, self.make_row(*self.rows[0])

        class Index:
            def __index__(self):
                matrix.set(1, row)
                row.set(0, 50.0)
                return 0

        matrix.set(Index(), row)
        changed = [50.0] + list(self.rows[0][1:])
        self.assert_holds(matrix, [changed, self.rows[0]] + list(self.rows[2:]))

    def test_a_conversion_that_raises_leaves_the_matrix_as_it_was(self):
        class Raises:
            def __index__(self):
                raise KeyError("under way")

        self.assert_fails(KeyError, "under way", self.matrix.get, Raises())
        self.assert_fails(
            KeyError, "under way", self.matrix.set, Raises(), self.make_row(*self.other_row)
        )
        self.assert_holds(self.matrix, self.rows)

    def test_any_double_is_kept_as_it_is(self):
        special = [math.nan, math.inf, -0.0, 5e-324][: self.dimension]
        self.matrix.set(1, self.make_row(*special))
        self.assert_holds(self.matrix, [self.rows[0], special] + list(self.rows[2:]))

    # What a matrix is not

    def test_a_matrix_is_no_sequence(self):
        def assign():
            self.matrix[0] = self.make_row(*self.other_row)

        def delete():
            del self.matrix[0]

        for operation in [
            lambda: len(self.matrix),
            lambda: self.matrix[0],
            lambda: list(self.matrix),
            assign,
            delete,
            lambda: self.matrix[0:1],
            lambda: self.matrix + self.matrix,
            lambda: self.matrix * 2,
            lambda: 1.0 in self.matrix,
            lambda: self.matrix(),
            lambda: -self.matrix,
        ]:
            self.assert_fails(TypeError, None, operation)
        self.assert_holds(self.matrix, self.rows)

    def test_comparison_is_by_identity(self):
        self.assertTrue(self.matrix == self.matrix)
        self.assertFalse(self.matrix == self.matrix_of(self.rows))
        self.assertTrue(self.matrix)

    # Text

    def test_print_shows_exactly_the_stated_text_without_a_newline(self):
        for rows, text in self.texts:
            with self.subTest(text):
                matrix = self.matrix_of(rows)
                stream = io.StringIO()
                print(matrix, end="", file=stream)
                self.assertEqual(stream.getvalue(), text)
                self.assertEqual(str(matrix), text)
                self.assertEqual(repr(matrix), text)

    # Calling convention and type

    def test_no_method_takes_keyword_arguments(self):
        self.assert_fails(TypeError, "keyword", lambda: self.matrix.get(i=0))
        self.assert_fails(
            TypeError, "keyword", lambda: self.matrix.set(0, v=self.make_row(*self.other_row))
        )
        self.assert_holds(self.matrix, self.rows)

    def test_type_and_methods(self):
        self.assertEqual(type(self.matrix).__name__, self.type_name)
        self.assertEqual(
            [name for name in vars(type(self.matrix)) if not name.startswith("__")],
            METHODS[self.type_name],
        )

    def test_methods_of_an_uninitialised_matrix_say_so_before_they_parse(self):
        row = self.make_row(*self.other_row)
        for name, arguments in [
            ("get", (0,)),
            ("get", ()),
            ("get", ("x",)),
            ("get", (0, 1)),
            ("set", (0, row)),
            ("set", ()),
            ("set", (0,)),
            ("set", (0, None)),
            ("set", ("x", row)),
        ]:
            with self.subTest(name, arguments=arguments):
                method = getattr(self.matrix, name)
                self.assert_not_initialized(self.matrix, self.message, method, *arguments)
        self.assert_holds(self.matrix, self.rows)


class Matrix2Test(MatrixTests, unittest.TestCase):
    type_name = "matrix2"
    row_type = "vector2"
    dimension = 2
    rows = ((1, 2), (3, 4))
    other_row = (-7.5, 8)
    message = "Matrix2 object has not been initialized"
    texts = [
        (((1, 2), (3, 4)), "matrix2( (1, 2), (3, 4) )"),
        (((0.1, -0.0), (1e-5, 1e20)), "matrix2( (0.1, -0), (1e-05, 1e+20) )"),
    ]

    def test_element_0_1_is_the_second_component_of_the_first_row(self):
        self.assertEqual(self.matrix.get(0).get(1), 2.0)
        self.assertEqual(self.matrix.get(1).get(0), 3.0)


class Matrix3Test(MatrixTests, unittest.TestCase):
    type_name = "matrix3"
    row_type = "vector3"
    dimension = 3
    rows = ((1, 2, 3), (4, 5, 6), (7.25, 8.5, -9))
    other_row = (-70, 80, 0.5)
    message = "Matrix3 object has not been initialized"
    texts = [
        (((1, 2, 3), (4, 5, 6), (7, 8, 9)), "matrix3( (1, 2, 3), (4, 5, 6), (7, 8, 9) )"),
        (
            ((math.nan, math.inf, -math.inf), (-0.0, 0, 1e6), (1 / 3, 1e-4, 123456)),
            "matrix3( (nan, inf, -inf), (-0, 0, 1e+06), (0.333333, 0.0001, 123456) )",
        ),
    ]

    def test_set_of_the_last_row_shows_in_the_print(self):
        matrix = self.matrix.set(2, vantorPM.vector3(7, 8, 9))
        self.assertIs(matrix, self.matrix)
        self.assertTrue(str(matrix).endswith("(7, 8, 9) )"), str(matrix))

    def test_two_rows_or_rows_of_another_dimension_fail_in_the_parser(self):
        self.assert_fails(
            TypeError,
            "exactly 3 arguments \\(2 given\\)",
            vantorPM.matrix3,
            vantorPM.vector3(1, 0, 0),
            vantorPM.vector3(0, 1, 0),
        )
        self.assert_fails(
            TypeError,
            "argument 1 must be vector3, not vector2",
            vantorPM.matrix3,
            vantorPM.vector2(1, 0),
            vantorPM.vector3(0, 1, 0),
            vantorPM.vector3(0, 0, 1),
        )
        self.assert_fails(
            TypeError,
            "argument 2 must be vector3, not vector4",
            self.matrix.set,
            0,
            vantorPM.vector4(1, 2, 3, 4),
        )


class Matrix4Test(MatrixTests, unittest.TestCase):
    type_name = "matrix4"
    row_type = "vector4"
    dimension = 4
    rows = ((1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16))
    other_row = (-1, -2, 0.25, 1e10)
    message = "Matrix4 object has not been initialized"
    texts = [
        (
            ((1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16)),
            "matrix4( (1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16) )",
        ),
        (
            ((0, 0, 0, 0), (-0.0, 0, 0, 0), (0, 0, 1.5, 0), (0, 0, 0, 1e-300)),
            "matrix4( (0, 0, 0, 0), (-0, 0, 0, 0), (0, 0, 1.5, 0), (0, 0, 0, 1e-300) )",
        ),
    ]

    def made_elsewhere(self):
        """Matrices that are returned by the spline and transform functions."""
        return [
            ("BezierBasis", vantorPM.BezierBasis()),
            ("BSplineBasis", vantorPM.BSplineBasis()),
            ("CatmullRomBasis", vantorPM.CatmullRomBasis()),
            ("HermiteBasis", vantorPM.HermiteBasis()),
            ("transform", vantorPM.transform().matrix()),
        ]

    def test_a_matrix4_made_elsewhere_behaves_like_one_built_by_matrix4(self):
        row = vantorPM.vector4(1, 2, 3, 4)
        for name, matrix in self.made_elsewhere():
            with self.subTest(name):
                self.assertIs(type(matrix), type(self.matrix))
                before = [list(matrix.get(index)) for index in range(4)]
                self.assert_returns_itself(matrix, matrix.set, 2, row)
                before[2] = [1.0, 2.0, 3.0, 4.0]
                self.assert_holds(matrix, before)
                self.assertEqual(repr(matrix), repr(self.matrix_of(before)))
                self.assertEqual(list(matrix.get(4)), [0.0] * 4)
                self.assert_fails(TypeError, None, len, matrix)
                self.assert_fails(
                    TypeError, "must be vector4", matrix.set, 0, vantorPM.vector3(1, 2, 3)
                )
                self.assert_not_initialized(
                    matrix, "Matrix4 object has not been initialized", matrix.get, 0
                )


if __name__ == "__main__":
    unittest.main()
