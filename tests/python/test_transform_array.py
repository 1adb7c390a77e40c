"""The type transformarray."""

import unittest

import samples
from array_tests import ObjectElementTests
from module_under_test import vantorPM
from native_parts import transform_of

COUNTING = tuple(range(1, 17))
IDENTITY = (1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
SPARSE = (0.5, 0, 0, 1e9, 0, 0, 0, 0, 0, 0, -7, 0, 0, 1e-9, 0, 0)


class TransformArrayTest(ObjectElementTests, unittest.TestCase):
    type_name = "transformarray"
    message = "transformarray object has not been initialized"
    elements = [
        (lambda: transform_of(COUNTING), COUNTING),
        (lambda: vantorPM.transform().identity(), IDENTITY),
        (lambda: transform_of(SPARSE), SPARSE),
    ]
    texts = [
        "[transformarray ]",
        "[transformarray [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), "
        "( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ] ]",
        "[transformarray [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), "
        "( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ], "
        "[ ( 1, 0, 0, 0 ), ( 0, 1, 0, 0 ), ( 0, 0, 1, 0 ), ( 0, 0, 0, 1 ) ] ]",
        "[transformarray [ ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ), "
        "( 9, 10, 11, 12 ), ( 13, 14, 15, 16 ) ], "
        "[ ( 1, 0, 0, 0 ), ( 0, 1, 0, 0 ), ( 0, 0, 1, 0 ), ( 0, 0, 0, 1 ) ], "
        "[ ( 0.5, 0, 0, 1e+09 ), ( 0, 0, 0, 0 ), ( 0, 0, -7, 0 ), ( 0, 1e-09, 0, 0 ) ] ]",
    ]
    zero_texts = {
        1: "[transformarray [ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ] ]",
        3: "[transformarray [ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ], "
        "[ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ], "
        "[ ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ), ( 0, 0, 0, 0 ) ] ]",
    }
    wrong_elements = [
        lambda: vantorPM.HermiteBasis(),
        lambda: vantorPM.vector4(1, 2, 3, 4),
        lambda: vantorPM.transformarray(),
        lambda: None,
        lambda: 1.0,
        lambda: COUNTING,
    ]
    wrong_pattern = "must be transform, not "

    @staticmethod
    def change(element):
        element.zero()

    def numbered(self, number):
        return transform_of([number + place * 0.5 for place in range(16)])

    def test_a_matrix4_is_refused_even_though_its_entries_have_the_same_shape(self):
        matrix = self.element(0).matrix()
        self.assert_fails(TypeError, "must be transform, not matrix4", self.array.add, matrix)
        self.assert_fails(
            TypeError, "argument 2 must be transform, not matrix4", self.array.set, 0, matrix
        )
        self.assert_fails(
            TypeError, "must be transform, not matrix4", self.assign, self.array, 0, matrix
        )
        self.assert_holds(self.array, [0, 1, 2])

    def test_new_elements_are_the_zero_matrix_and_not_the_identity(self):
        array = vantorPM.transformarray().setSize(2)
        self.assertEqual(
            str(array.get(0)), "transform( (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0) )"
        )
        self.assertEqual(samples.numbers(array), [0.0] * 32)

    def test_an_element_read_back_prints_the_same_entries_as_a_transform(self):
        self.assertEqual(
            str(self.array.get(0)),
            "transform( (1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16) )",
        )

    def test_an_element_text_is_that_of_a_matrix4array(self):
        matrices = vantorPM.matrix4array()
        for transform in self.array:
            matrices.add(transform.matrix())
        self.assertEqual(str(self.array), str(matrices).replace("matrix4array", "transformarray"))


if __name__ == "__main__":
    unittest.main()
