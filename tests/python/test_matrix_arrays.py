"""The types matrix2array, matrix3array and matrix4array."""

import unittest

from array_tests import ObjectElementTests
from module_under_test import vantorPM


def matrix2(*rows):
    return vantorPM.matrix2(*[vantorPM.vector2(*row) for row in rows])


def matrix3(*rows):
    return vantorPM.matrix3(*[vantorPM.vector3(*row) for row in rows])


def matrix4(*rows):
    return vantorPM.matrix4(*[vantorPM.vector4(*row) for row in rows])


class MatrixArrayTests(ObjectElementTests):
    @staticmethod
    def change(element):
        element.set(0, element.get(0).set(0, 12345.0))


class Matrix2ArrayTest(MatrixArrayTests, unittest.TestCase):
    type_name = "matrix2array"
    message = "matrix2array object has not been initialized"
    elements = [
        (lambda: matrix2((1, 2), (3, 4)), (1, 2, 3, 4)),
        (lambda: matrix2((5, 6), (7, 8.5)), (5, 6, 7, 8.5)),
        (lambda: matrix2((-1, 0.1), (1e-7, 1e20)), (-1, 0.1, 1e-7, 1e20)),
    ]
    texts = [
        "[matrix2array ]",
        "[matrix2array [ ( 1, 2 ), ( 3, 4 ) ] ]",
        "[matrix2array [ ( 1, 2 ), ( 3, 4 ) ], [ ( 5, 6 ), ( 7, 8.5 ) ] ]",
        "[matrix2array [ ( 1, 2 ), ( 3, 4 ) ], [ ( 5, 6 ), ( 7, 8.5 ) ], "
        "[ ( -1, 0.1 ), ( 1e-07, 1e+20 ) ] ]",
    ]
    zero_texts = {
        1: "[matrix2array [ ( 0, 0 ), ( 0, 0 ) ] ]",
        3: "[matrix2array [ ( 0, 0 ), ( 0, 0 ) ], [ ( 0, 0 ), ( 0, 0 ) ], [ ( 0, 0 ), ( 0, 0 ) ] ]",
    }
    wrong_elements = [
        lambda: matrix3((1, 2, 3), (4, 5, 6), (7, 8, 9)),
        lambda: vantorPM.HermiteBasis(),
        lambda: vantorPM.vector4(1, 2, 3, 4),
        lambda: ((1, 2), (3, 4)),
        lambda: None,
        lambda: 1.0,
    ]
    wrong_pattern = "must be matrix2, not "

    def numbered(self, number):
        return matrix2((number, number + 0.5), (-number, number * 2))


class Matrix3ArrayTest(MatrixArrayTests, unittest.TestCase):
    type_name = "matrix3array"
    message = "matrix3array object has not been initialized"
    elements = [
        (lambda: matrix3((1, 0, 0), (0, 1, 0), (0, 0, 1)), (1, 0, 0, 0, 1, 0, 0, 0, 1)),
        (lambda: matrix3((1, 2, 3), (4, 5, 6), (7, 8, 9)), (1, 2, 3, 4, 5, 6, 7, 8, 9)),
        (
            lambda: matrix3((0.5, -2, 3), (4, 1e-9, 6), (7, 8, -9e9)),
            (0.5, -2, 3, 4, 1e-9, 6, 7, 8, -9e9),
        ),
    ]
    texts = [
        "[matrix3array ]",
        "[matrix3array [ ( 1, 0, 0 ), ( 0, 1, 0 ), ( 0, 0, 1 ) ] ]",
        "[matrix3array [ ( 1, 0, 0 ), ( 0, 1, 0 ), ( 0, 0, 1 ) ], "
        "[ ( 1, 2, 3 ), ( 4, 5, 6 ), ( 7, 8, 9 ) ] ]",
        "[matrix3array [ ( 1, 0, 0 ), ( 0, 1, 0 ), ( 0, 0, 1 ) ], "
        "[ ( 1, 2, 3 ), ( 4, 5, 6 ), ( 7, 8, 9 ) ], "
        "[ ( 0.5, -2, 3 ), ( 4, 1e-09, 6 ), ( 7, 8, -9e+09 ) ] ]",
    ]
    zero_texts = {
        1: "[matrix3array [ ( 0, 0, 0 ), ( 0, 0, 0 ), ( 0, 0, 0 ) ] ]",
        3: "[matrix3array [ ( 0, 0, 0 ), ( 0, 0, 0 ), ( 0, 0, 0 ) ], "
        "[ ( 0, 0, 0 ), ( 0, 0, 0 ), ( 0, 0, 0 ) ], "
        "[ ( 0, 0, 0 ), ( 0, 0, 0 ), ( 0, 0, 0 ) ] ]",
    }
    wrong_elements = [
        lambda: vantorPM.HermiteBasis(),
        lambda: matrix2((1, 2), (3, 4)),
        lambda: vantorPM.vector3(1, 2, 3),
        lambda: vantorPM.transform(),
        lambda: None,
        lambda: [1] * 9,
    ]
    wrong_pattern = "must be matrix3, not "

    def numbered(self, number):
        return matrix3((number, number + 0.5, 1), (-number, number * 2, 2), (3, 4, number * 0.125))

    def test_set_with_a_matrix4_fails_and_a_matrix3_changes_only_its_element(self):
        self.assert_fails(
            TypeError,
            "argument 2 must be matrix3, not matrix4",
            self.array.set,
            1,
            vantorPM.HermiteBasis(),
        )
        self.assert_holds(self.array, [0, 1, 2])
        self.array.set(1, self.element(0))
        self.assert_holds(self.array, [0, 0, 2])


class Matrix4ArrayTest(MatrixArrayTests, unittest.TestCase):
    type_name = "matrix4array"
    message = "matrix4array object has not been initialized"
    elements = [
        (
            lambda: matrix4((1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16)),
            tuple(range(1, 17)),
        ),
        (
            lambda: matrix4((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1)),
            (1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1),
        ),
        (
            lambda: matrix4((0.5, 0, 0, 1e9), (0, 0, 0, 0), (0, 0, -7, 0), (0, 1e-9, 0, 0)),
            (0.5, 0, 0, 1e9, 0, 0, 0, 0, 0, 0, -7, 0, 0, 1e-9, 0, 0),
        ),
    ]
    texts = [
        "[matrix4array ]",
        "[matrix4array [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), ( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ] ]",
        "[matrix4array [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), ( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ], "
        "[ ( 1, 0, 0, 0 ), ( 0, 1, 0, 0 ), ( 0, 0, 1, 0 ), ( 0, 0, 0, 1 ) ] ]",
        "[matrix4array [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), ( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ], "
        "[ ( 1, 0, 0, 0 ), ( 0, 1, 0, 0 ), ( 0, 0, 1, 0 ), ( 0, 0, 0, 1 ) ], "
        "[ ( 0.5, 0, 0, 1e+09 ), ( 0, 0, 0, 0 ), ( 0, 0, -7, 0 ), ( 0, 1e-09, 0, 0 ) ] ]",
    ]
    zero_texts = {
        1: "[matrix4array [ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ] ]",
        3: "[matrix4array [ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ], "
        "[ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ], "
        "[ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ] ]",
    }
    wrong_elements = [
        lambda: vantorPM.transform(),
        lambda: matrix2((1, 2), (3, 4)),
        lambda: vantorPM.vector4(1, 2, 3, 4),
        lambda: None,
        lambda: 1.0,
        lambda: "x",
    ]
    wrong_pattern = "must be matrix4, not "

    def numbered(self, number):
        return matrix4(
            (number, 1, 2, 3),
            (4, number + 0.5, 6, 7),
            (8, 9, -number, 11),
            (12, 13, 14, number * 4),
        )


if __name__ == "__main__":
    unittest.main()
