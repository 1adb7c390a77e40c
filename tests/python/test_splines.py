"""The spline functions: basis matrices and steps of the four cubic families."""

import unittest

from expectations import Expectations
from module_under_test import vantorPM
from native_parts import doubles

# p(t) = (t^3 t^2 t 1) B (P0 P1 P2 P3)^T: row 0 holds the coefficients of t^3.
BEZIER = [[-1, 3, -3, 1], [3, -6, 3, 0], [-3, 3, 0, 0], [1, 0, 0, 0]]
# Times 1/6.
B_SPLINE = [[-1, 3, -3, 1], [3, -6, 3, 0], [-3, 0, 3, 0], [1, 4, 1, 0]]
# Tension 1/2.
CATMULL_ROM = [[-0.5, 1.5, -1.5, 0.5], [1, -2.5, 2, -0.5], [-0.5, 0, 0.5, 0], [0, 1, 0, 0]]
# Start, tangent at the start, end, tangent at the end.
HERMITE = [[2, 1, -2, 1], [-3, -2, 3, -1], [0, 1, 0, 0], [1, 0, 0, 0]]

ANY_ARGUMENTS = [(), (1,), (1, 2), (None,), ("x", [], {}), ((1, 2),), (object(),)]


def entries(matrix):
    return [list(matrix.get(row)) for row in range(4)]


def weights(matrix, t):
    """The weights of the four control points at t."""
    basis = entries(matrix)
    return [((basis[0][k] * t + basis[1][k]) * t + basis[2][k]) * t + basis[3][k] for k in range(4)]


def slopes(matrix, t):
    """The weights of the four control points in the derivative at t."""
    basis = entries(matrix)
    return [(3 * basis[0][k] * t + 2 * basis[1][k]) * t + basis[2][k] for k in range(4)]


class StepTest(Expectations, unittest.TestCase):
    def test_bezier_step_is_3(self):
        self.assertEqual(vantorPM.BezierStep(), 3)

    def test_b_spline_step_is_1(self):
        self.assertEqual(vantorPM.BSplineStep(), 1)

    def test_catmull_rom_step_is_1(self):
        self.assertEqual(vantorPM.CatmullRomStep(), 1)

    def test_hermite_step_is_2(self):
        self.assertEqual(vantorPM.HermiteStep(), 2)

    def test_steps_are_integers_and_accept_any_arguments(self):
        for name, step in [
            ("BezierStep", 3),
            ("BSplineStep", 1),
            ("CatmullRomStep", 1),
            ("HermiteStep", 2),
        ]:
            for arguments in ANY_ARGUMENTS:
                with self.subTest(name, arguments=arguments):
                    result = getattr(vantorPM, name)(*arguments)
                    self.assertIs(type(result), int)
                    self.assertEqual(result, step)


class BasisTests(Expectations):
    """Tests of the four families; each one's facts stand in its class below."""

    def setUp(self):
        self.function = getattr(vantorPM, self.name)

    def assert_near(self, got, expected):
        self.assertEqual(len(got), len(expected))
        for one, other in zip(got, expected):
            self.assertAlmostEqual(one, other, delta=1e-14)

    def test_basis_is_the_conventional_matrix(self):
        for got, expected in zip(entries(self.function()), self.matrix):
            self.assert_near(got, [entry * self.scale for entry in expected])

    def test_basis_is_a_matrix4_whatever_the_arguments(self):
        expected = list(doubles(self.function(), 16))
        for arguments in ANY_ARGUMENTS:
            with self.subTest(arguments):
                matrix = self.function(*arguments)
                self.assertEqual(type(matrix).__name__, "matrix4")
                self.assert_same_bits(doubles(matrix, 16), expected)

    def test_each_call_returns_a_new_independent_matrix(self):
        first = self.function()
        before = entries(first)
        second = self.function()
        self.assertIsNot(first, second)
        first.set(0, vantorPM.vector4(9, 9, 9, 9)).set(3, vantorPM.vector4(8, 8, 8, 8))
        self.assertEqual(entries(second), before)
        self.assertEqual(entries(self.function()), before)

    def test_point_weights_add_up_to_one(self):
        for t in [0.0, 0.25, 0.5, 1.0, 0.123]:
            with self.subTest(t):
                found = weights(self.function(), t)
                self.assertAlmostEqual(sum(found[k] for k in self.points), 1.0, delta=1e-14)

    def test_segments_join_at_the_step(self):
        # The end of one segment is the start of the next, which begins `step` control points later.
        step = getattr(vantorPM, self.name.replace("Basis", "Step"))()
        end = weights(self.function(), 1.0) + [0.0] * step
        start = [0.0] * step + weights(self.function(), 0.0)
        self.assert_near(end, start)


class BezierTest(BasisTests, unittest.TestCase):
    name = "BezierBasis"
    matrix = BEZIER
    scale = 1
    points = range(4)

    def test_the_curve_starts_and_ends_in_its_outer_points(self):
        self.assert_near(weights(self.function(), 0.0), [1, 0, 0, 0])
        self.assert_near(weights(self.function(), 1.0), [0, 0, 0, 1])
        self.assert_near(weights(self.function(), 0.5), [0.125, 0.375, 0.375, 0.125])


class BSplineTest(BasisTests, unittest.TestCase):
    name = "BSplineBasis"
    matrix = B_SPLINE
    scale = 1 / 6
    points = range(4)

    def test_knots_are_weighted_1_4_1(self):
        self.assert_near(weights(self.function(), 0.0), [1 / 6, 4 / 6, 1 / 6, 0])
        self.assert_near(slopes(self.function(), 0.0), [-0.5, 0, 0.5, 0])


class CatmullRomTest(BasisTests, unittest.TestCase):
    name = "CatmullRomBasis"
    matrix = CATMULL_ROM
    scale = 1
    points = range(4)

    def test_the_curve_passes_through_the_inner_points_with_tension_one_half(self):
        self.assert_near(weights(self.function(), 0.0), [0, 1, 0, 0])
        self.assert_near(weights(self.function(), 1.0), [0, 0, 1, 0])
        self.assert_near(slopes(self.function(), 0.0), [-0.5, 0, 0.5, 0])
        self.assert_near(slopes(self.function(), 1.0), [0, -0.5, 0, 0.5])


class HermiteTest(BasisTests, unittest.TestCase):
    name = "HermiteBasis"
    matrix = HERMITE
    scale = 1
    points = (0, 2)

    def test_points_and_tangents_alternate(self):
        self.assert_near(weights(self.function(), 0.0), [1, 0, 0, 0])
        self.assert_near(slopes(self.function(), 0.0), [0, 1, 0, 0])
        self.assert_near(weights(self.function(), 1.0), [0, 0, 1, 0])
        self.assert_near(slopes(self.function(), 1.0), [0, 0, 0, 1])


if __name__ == "__main__":
    unittest.main()
