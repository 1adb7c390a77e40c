"""The types vector2array, vector3array and vector4array."""

import math
import unittest

from array_tests import ObjectElementTests
from module_under_test import vantorPM


class VectorArrayTests(ObjectElementTests):
    @staticmethod
    def change(element):
        element.set(0, 12345.0)


class Vector2ArrayTest(VectorArrayTests, unittest.TestCase):
    type_name = "vector2array"
    message = "vector2array object has not been initialized"
    elements = [
        (lambda: vantorPM.vector2(1, 2), (1, 2)),
        (lambda: vantorPM.vector2(4.5, -5), (4.5, -5)),
        (lambda: vantorPM.vector2(1e-7, 1e20), (1e-7, 1e20)),
    ]
    texts = [
        "[vector2array ]",
        "[vector2array ( 1, 2 ) ]",
        "[vector2array ( 1, 2 ), ( 4.5, -5 ) ]",
        "[vector2array ( 1, 2 ), ( 4.5, -5 ), ( 1e-07, 1e+20 ) ]",
    ]
    zero_texts = {1: "[vector2array ( 0, 0 ) ]", 3: "[vector2array ( 0, 0 ), ( 0, 0 ), ( 0, 0 ) ]"}
    wrong_elements = [
        lambda: vantorPM.vector3(1, 2, 3),
        lambda: vantorPM.vector4(1, 2, 3, 4),
        lambda: (1, 2),
        lambda: [1, 2],
        lambda: None,
        lambda: 1.0,
        lambda: "ab",
    ]
    wrong_pattern = "must be vector2, not "

    def numbered(self, number):
        return vantorPM.vector2(number, -number - 0.5)


class Vector3ArrayTest(VectorArrayTests, unittest.TestCase):
    type_name = "vector3array"
    message = "vector3array object has not been initialized"
    elements = [
        (lambda: vantorPM.vector3(1, 2, 3), (1, 2, 3)),
        (lambda: vantorPM.vector3(4, 5, 6), (4, 5, 6)),
        (lambda: vantorPM.vector3(-0.5, 1e-5, 1e6), (-0.5, 1e-5, 1e6)),
    ]
    texts = [
        "[vector3array ]",
        "[vector3array ( 1, 2, 3 ) ]",
        "[vector3array ( 1, 2, 3 ), ( 4, 5, 6 ) ]",
        "[vector3array ( 1, 2, 3 ), ( 4, 5, 6 ), ( -0.5, 1e-05, 1e+06 ) ]",
    ]
    zero_texts = {
        1: "[vector3array ( 0, 0, 0 ) ]",
        3: "[vector3array ( 0, 0, 0 ), ( 0, 0, 0 ), ( 0, 0, 0 ) ]",
    }
    wrong_elements = [
        lambda: vantorPM.vector2(1, 2),
        lambda: vantorPM.vector4(1, 2, 3, 4),
        lambda: (1, 2, 3),
        lambda: [1, 2, 3],
        lambda: None,
        lambda: 1.0,
        lambda: "abc",
    ]
    wrong_pattern = "must be vector3, not "

    def numbered(self, number):
        return vantorPM.vector3(number, -number - 0.5, number + 0.25)

    def test_three_adds_and_smaller_sizes(self):
        self.array.setSize(2).setSize(3)
        self.assertEqual(list(self.array.get(2)), [-0.5, 1e-5, 1e6])
        self.array.setSize(0).setSize(3)
        self.assertEqual([list(vector) for vector in self.array], [[0.0] * 3] * 3)

    def test_special_numbers_are_printed_as_c_prints_them(self):
        array = vantorPM.vector3array().add(vantorPM.vector3(math.nan, -math.inf, -0.0))
        self.assertEqual(str(array), "[vector3array ( nan, -inf, -0 ) ]")


class Vector4ArrayTest(VectorArrayTests, unittest.TestCase):
    type_name = "vector4array"
    message = "vector4array object has not been initialized"
    elements = [
        (lambda: vantorPM.vector4(1, 2, 3, 4), (1, 2, 3, 4)),
        (lambda: vantorPM.vector4(5, 6, 7, 8.5), (5, 6, 7, 8.5)),
        (lambda: vantorPM.vector4(-1, 1e-300, 0.1, 100000), (-1, 1e-300, 0.1, 100000)),
    ]
    texts = [
        "[vector4array ]",
        "[vector4array ( 1, 2, 3, 4 ) ]",
        "[vector4array ( 1, 2, 3, 4 ), ( 5, 6, 7, 8.5 ) ]",
        "[vector4array ( 1, 2, 3, 4 ), ( 5, 6, 7, 8.5 ), ( -1, 1e-300, 0.1, 100000 ) ]",
    ]
    zero_texts = {
        1: "[vector4array ( 0, 0, 0, 0 ) ]",
        3: "[vector4array ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ]",
    }
    wrong_elements = [
        lambda: vantorPM.vector2(1, 2),
        lambda: vantorPM.vector3(1, 2, 3),
        lambda: (1, 2, 3, 4),
        lambda: vantorPM.matrix2(vantorPM.vector2(1, 2), vantorPM.vector2(3, 4)),
        lambda: None,
        lambda: 1.0,
    ]
    wrong_pattern = "must be vector4, not "

    def numbered(self, number):
        return vantorPM.vector4(number, -number - 0.5, number + 0.25, number * 3)


if __name__ == "__main__":
    unittest.main()
