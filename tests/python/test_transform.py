"""The type transform, and the module functions compose and invert."""

import io
import math
import random
import unittest

import samples
from expectations import Expectations
from module_under_test import vantorPM
from native_parts import doubles, transform_of
from names import METHODS

ZERO = [0.0] * 16
IDENTITY = [1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0]
COUNTING = [float(number) for number in range(1, 17)]
MESSAGE = "Transform object has not been initialized"


def entries(transform):
    return list(doubles(transform, 16))


def product(a, b):
    """A x B, each sum taken left to right."""
    return [
        a[4 * i] * b[j]
        + a[4 * i + 1] * b[4 + j]
        + a[4 * i + 2] * b[8 + j]
        + a[4 * i + 3] * b[12 + j]
        for i in range(4)
        for j in range(4)
    ]


def adjugate(a):
    """R(j, i) is the cofactor of A(i, j), expanded along a row over 2x2 minors of two others."""
    # For each result column: the row to expand along, and the two rows of the minors.
    plan = [(1, 2, 3), (0, 2, 3), (0, 1, 3), (0, 1, 2)]
    result = [0.0] * 16
    for i, (along, upper, lower) in enumerate(plan):
        for j in range(4):
            p, q, r = [column for column in range(4) if column != j]

            def minor(first, second):
                return (
                    a[4 * upper + first] * a[4 * lower + second]
                    - a[4 * upper + second] * a[4 * lower + first]
                )

            cofactor = (
                a[4 * along + p] * minor(q, r)
                - a[4 * along + q] * minor(p, r)
                + a[4 * along + r] * minor(p, q)
            )
            result[4 * j + i] = -cofactor if (i + j) % 2 else cofactor
    return result


def determinant(a, r):
    """Expansion along row 0, summed in order."""
    return a[0] * r[0] + a[1] * r[4] + a[2] * r[8] + a[3] * r[12]


def inverse(a):
    r = adjugate(a)
    det = determinant(a, r)
    if 1e-6 > abs(det):
        return r
    q = 1.0 / det
    return [entry * q for entry in r]


class TransformTest(Expectations, unittest.TestCase):
    def setUp(self):
        self.transform = transform_of(COUNTING)

    def assert_holds(self, transform, expected):
        """The transform reads the same through every door; zeros of either sign agree."""
        self.assertEqual([entry for row in range(4) for entry in transform.get(row)], expected)
        matrix = transform.matrix()
        self.assertEqual([entry for row in range(4) for entry in matrix.get(row)], expected)
        self.assertEqual(entries(transform), expected)

    # Creation and reading

    def test_a_fresh_transform_is_the_zero_matrix_whatever_the_arguments(self):
        for arguments in [(), (1, 2, 3), (None,), (self.transform,), ("identity",)]:
            with self.subTest(arguments):
                transform = vantorPM.transform(*arguments)
                self.assert_same_bits(entries(transform), ZERO)
                self.assertEqual(
                    str(transform),
                    "transform( (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0) )",
                )

    def test_get_returns_a_row_as_a_new_vector4(self):
        for row in range(4):
            with self.subTest(row):
                vector = self.transform.get(row)
                self.assertEqual(type(vector).__name__, "vector4")
                self.assert_same_bits(vector, COUNTING[4 * row : 4 * row + 4])
                self.assertIsNot(self.transform.get(row), vector)

    def test_get_1_of_the_identity(self):
        self.assertEqual(list(vantorPM.transform().identity().get(1)), [0.0, 1.0, 0.0, 0.0])

    def test_a_row_that_was_read_is_independent_of_the_transform(self):
        row = self.transform.get(2).set(0, 99.0)
        self.assert_holds(self.transform, COUNTING)
        self.transform.zero()
        self.assertEqual(list(row), [99.0, 10.0, 11.0, 12.0])

    def test_get_outside_0_to_3_is_an_index_error(self):
        for index in [-1, -4, 4, 5, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                self.assert_out_of_bounds(self.transform.get, index)

    def test_get_needs_exactly_one_integer(self):
        for arguments in [(), (0, 1), ((0,),), ([0],), (None,), ("0",), (1j,)]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.transform.get, *arguments)

    def test_the_index_of_get_is_truncated_toward_zero(self):
        self.assertEqual(list(self.transform.get(3.9)), [13.0, 14.0, 15.0, 16.0])
        self.assertEqual(list(self.transform.get(-0.9)), [1.0, 2.0, 3.0, 4.0])

    def test_matrix_returns_a_new_matrix4_with_the_same_entries(self):
        matrix = self.transform.matrix()
        self.assertEqual(type(matrix).__name__, "matrix4")
        self.assert_same_bits(doubles(matrix, 16), COUNTING)
        self.assertIsNot(self.transform.matrix(), matrix)

    def test_a_matrix_that_was_read_is_independent_of_the_transform(self):
        matrix = self.transform.matrix()
        matrix.set(0, vantorPM.vector4(-1, -2, -3, -4))
        self.assert_holds(self.transform, COUNTING)
        matrix = self.transform.matrix()
        self.transform.identity()
        self.assert_same_bits(doubles(matrix, 16), COUNTING)

    def test_any_double_is_kept_as_it_is(self):
        special = [math.nan, math.inf, -math.inf, -0.0] * 4
        transform = transform_of(special)
        self.assert_same_bits(doubles(transform.matrix(), 16), special)
        self.assert_same_bits(transform.get(3), special[12:])

    # Text

    def test_print_shows_exactly_the_stated_text_without_a_newline(self):
        for numbers, text in [
            (
                COUNTING,
                "transform( (1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16) )",
            ),
            (
                [math.nan, math.inf, -math.inf, -0.0, 0.1, 1e-5, 1e6, 1e-300] + ZERO[:8],
                "transform( (nan, inf, -inf, -0), (0.1, 1e-05, 1e+06, 1e-300), "
                "(0, 0, 0, 0), (0, 0, 0, 0) )",
            ),
        ]:
            with self.subTest(text):
                transform = transform_of(numbers)
                stream = io.StringIO()
                print(transform, end="", file=stream)
                self.assertEqual(stream.getvalue(), text)
                self.assertEqual(str(transform), text)
                self.assertEqual(repr(transform), text)

    # Setters of the library

    def setters(self):
        """Each setter with arguments that it accepts."""
        v = vantorPM.vector3(1, 2, 3)
        w = vantorPM.vector3(0, 0, 1)
        return [
            ("zero", ()),
            ("identity", ()),
            ("scaling", (v,)),
            ("translation", (v,)),
            ("alignmentToZ", (v,)),
            ("alignmentTo", (v, w)),
            ("rotationAroundX", (30.0,)),
            ("rotationAroundY", (30.0,)),
            ("rotationAroundZ", (30.0,)),
            ("rotationAroundAxis", (v, w, 30.0)),
            ("reflectionOnXY", ()),
        ]

    def test_every_setter_returns_the_object_itself(self):
        for name, arguments in self.setters():
            with self.subTest(name):
                self.assert_returns_itself(
                    self.transform, getattr(self.transform, name), *arguments
                )

    def test_every_setter_replaces_all_sixteen_entries_and_reads_none(self):
        for name, arguments in self.setters():
            with self.subTest(name):
                results = []
                for before in (ZERO, COUNTING, [math.nan] * 16, [math.inf] * 16):
                    transform = transform_of(before)
                    getattr(transform, name)(*arguments)
                    results.append(entries(transform))
                for result in results:
                    self.assert_same_bits(result, results[0])
                    self.assertTrue(all(map(math.isfinite, result)))

    def test_setters_leave_their_vectors_as_they_were(self):
        for name, arguments in self.setters():
            with self.subTest(name):
                before = [repr(argument) for argument in arguments]
                getattr(self.transform, name)(*arguments)
                self.assertEqual([repr(argument) for argument in arguments], before)

    def test_methods_without_arguments_ignore_what_they_are_given(self):
        for name in ["matrix", "zero", "identity", "reflectionOnXY", "invert"]:
            expected = repr(getattr(transform_of(COUNTING), name)())
            for arguments in [(5,), (None,), ((),), ("x", []), (1, 2, 3)]:
                with self.subTest(name, arguments=arguments):
                    self.assertEqual(
                        repr(getattr(transform_of(COUNTING), name)(*arguments)), expected
                    )

    def test_identity_with_a_surplus_argument_returns_the_object_itself(self):
        self.assertIs(self.transform.identity(5), self.transform)
        self.assert_holds(self.transform, IDENTITY)

    def test_zero_and_identity(self):
        self.assert_holds(self.transform.identity(), IDENTITY)
        self.assert_holds(self.transform.zero(), ZERO)

    def test_scaling_stands_on_the_diagonal(self):
        self.transform.scaling(vantorPM.vector3(2, -3, 0.5))
        self.assert_holds(self.transform, [2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1])

    def test_translation_stands_in_row_3(self):
        self.transform.translation(vantorPM.vector3(2, -3, 0.5))
        self.assert_holds(self.transform, [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, -3, 0.5, 1])

    def test_reflection_turns_z_around(self):
        self.assert_holds(
            self.transform.reflectionOnXY(), [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1]
        )

    def assert_near(self, transform, expected):
        for got, wanted in zip(entries(transform), expected):
            self.assertAlmostEqual(got, wanted, delta=1e-14, msg=repr(transform))

    def test_rotations_about_the_coordinate_axes_are_in_degrees_and_counter_clockwise(self):
        c = math.cos(math.radians(30))
        s = 0.5
        for angle in (30, 30.0):
            self.assert_near(
                self.transform.rotationAroundX(angle),
                [1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1],
            )
            self.assert_near(
                self.transform.rotationAroundY(angle),
                [c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1],
            )
            self.assert_near(
                self.transform.rotationAroundZ(angle),
                [c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1],
            )

    def image(self, point):
        """The point, as a row, times the transform."""
        row = list(point) + [1.0]
        matrix = entries(self.transform)
        return [sum(row[k] * matrix[4 * k + column] for k in range(4)) for column in range(3)]

    def assert_takes(self, point, expected):
        for got, wanted in zip(self.image(point), expected):
            self.assertAlmostEqual(got, wanted, delta=1e-13)

    def test_rotation_around_an_axis_takes_a_point_and_a_direction_in_this_order(self):
        self.transform.rotationAroundAxis(vantorPM.vector3(1, 0, 0), vantorPM.vector3(0, 0, 5), 90)
        self.assert_takes((1, 0, 7), (1, 0, 7))
        self.assert_takes((2, 0, 0), (1, 1, 0))

    def test_alignment_takes_the_first_vector_to_the_second(self):
        root = math.sqrt(0.5)
        self.transform.alignmentTo(vantorPM.vector3(2, 0, 0), vantorPM.vector3(0, 3, 3))
        self.assert_takes((1, 0, 0), (0, root, root))
        self.transform.alignmentToZ(vantorPM.vector3(0, -4, 0))
        self.assert_takes((0, -1, 0), (0, 0, 1))

    # What the setters refuse

    def vector_calls(self):
        """Methods, and their arguments with the place of one vector left out."""
        v = vantorPM.vector3(1, 2, 3)
        return [
            ("scaling", lambda x: (x,)),
            ("translation", lambda x: (x,)),
            ("alignmentToZ", lambda x: (x,)),
            ("alignmentTo", lambda x: (x, v)),
            ("alignmentTo", lambda x: (v, x)),
            ("rotationAroundAxis", lambda x: (x, v, 1.0)),
            ("rotationAroundAxis", lambda x: (v, x, 1.0)),
        ]

    def test_a_vector_argument_is_exactly_a_vector3(self):
        for method, arguments in self.vector_calls():
            for name, value in samples.one_of_each().items():
                if name != "vector3":
                    with self.subTest(method, value=name):
                        pattern = "must be vector3, not " + name
                        self.assert_fails(
                            TypeError, pattern, getattr(self.transform, method), *arguments(value)
                        )
            for value in [None, 1.0, "x", [1, 2, 3]]:
                with self.subTest(method, value=value):
                    self.assert_fails(
                        TypeError,
                        "must be vector3",
                        getattr(self.transform, method),
                        *arguments(value),
                    )
        self.assert_holds(self.transform, COUNTING)

    def test_an_angle_is_a_number(self):
        v = vantorPM.vector3(1, 2, 3)
        for wrong in [None, "1", 1j, [], (1,), v]:
            with self.subTest(wrong):
                self.assert_fails(TypeError, None, self.transform.rotationAroundX, wrong)
                self.assert_fails(TypeError, None, self.transform.rotationAroundY, wrong)
                self.assert_fails(TypeError, None, self.transform.rotationAroundZ, wrong)
                self.assert_fails(TypeError, None, self.transform.rotationAroundAxis, v, v, wrong)
        self.assert_holds(self.transform, COUNTING)

    def test_single_argument_methods_need_exactly_one_argument(self):
        v = vantorPM.vector3(1, 2, 3)
        for name, argument in [
            ("scaling", v),
            ("translation", v),
            ("alignmentToZ", v),
            ("rotationAroundX", 1.0),
            ("rotationAroundY", 1.0),
            ("rotationAroundZ", 1.0),
            ("compose", vantorPM.transform()),
        ]:
            method = getattr(self.transform, name)
            for arguments in [(), (argument, argument), ((argument,),), ((),)]:
                with self.subTest(name, arguments=arguments):
                    self.assert_fails(TypeError, None, method, *arguments)
        self.assert_holds(self.transform, COUNTING)

    def test_tuple_methods_need_exactly_their_number_of_arguments(self):
        v = vantorPM.vector3(1, 2, 3)
        for arguments, count in [((), 0), ((v,), 1), ((v, v, v), 3), (((v,),), 1), (([v, v],), 1)]:
            with self.subTest(arguments):
                self.assert_fails(
                    TypeError,
                    "exactly 2 arguments \\({} given\\)".format(count),
                    self.transform.alignmentTo,
                    *arguments,
                )
        for arguments, count in [
            ((), 0),
            ((v,), 1),
            ((v, v), 2),
            ((v, v, 1.0, 2.0), 4),
            (((v, v),), 2),
        ]:
            with self.subTest(arguments):
                self.assert_fails(
                    TypeError,
                    "exactly 3 arguments \\({} given\\)".format(count),
                    self.transform.rotationAroundAxis,
                    *arguments,
                )
        self.assert_holds(self.transform, COUNTING)

    def test_tuple_methods_take_one_tuple_as_several_arguments(self):
        v = vantorPM.vector3(1, 2, 3)
        w = vantorPM.vector3(0, 1, 1)
        expected = entries(vantorPM.transform().alignmentTo(v, w))
        self.assert_holds(self.transform.alignmentTo((v, w)), expected)
        expected = entries(vantorPM.transform().rotationAroundAxis(v, w, 40))
        self.assert_holds(self.transform.rotationAroundAxis((v, w, 40)), expected)

    def test_scaling_with_a_vector4_leaves_the_transform_unchanged(self):
        self.assert_fails(
            TypeError,
            "must be vector3, not vector4",
            self.transform.scaling,
            vantorPM.vector4(1, 2, 3, 4),
        )
        self.assert_holds(self.transform, COUNTING)

    def test_no_method_takes_keyword_arguments(self):
        v = vantorPM.vector3(1, 2, 3)
        for name, keywords in [
            ("get", {"i": 0}),
            ("matrix", {"x": 1}),
            ("zero", {"x": 1}),
            ("identity", {"x": 1}),
            ("scaling", {"v": v}),
            ("rotationAroundX", {"angle": 1.0}),
            ("alignmentTo", {"a": v, "b": v}),
            ("compose", {"other": self.transform}),
            ("invert", {"x": 1}),
        ]:
            with self.subTest(name):
                self.assert_fails(
                    TypeError, "keyword", lambda: getattr(self.transform, name)(**keywords)
                )
        self.assert_holds(self.transform, COUNTING)

    # What a transform is not

    def test_a_transform_is_no_sequence(self):
        for operation in [
            lambda: len(self.transform),
            lambda: self.transform[0],
            lambda: list(self.transform),
            lambda: self.transform * self.transform,
            lambda: self.transform + self.transform,
            lambda: self.transform(),
        ]:
            self.assert_fails(TypeError, None, operation)

    def test_comparison_is_by_identity(self):
        self.assertTrue(self.transform == self.transform)
        self.assertFalse(self.transform == transform_of(COUNTING))

    def test_type_and_methods(self):
        self.assertEqual(type(self.transform).__name__, "transform")
        self.assertEqual(
            [name for name in vars(type(self.transform)) if not name.startswith("__")],
            METHODS["transform"],
        )

    # Objects without their native part

    def test_methods_of_an_uninitialised_transform_say_so_before_they_parse(self):
        for name in METHODS["transform"]:
            good = dict(self.setters()).get(
                name, (0,) if name == "get" else (vantorPM.transform(),)
            )
            for arguments in [good, (), ("x",), (None, None)]:
                with self.subTest(name, arguments=arguments):
                    method = getattr(self.transform, name)
                    self.assert_not_initialized(self.transform, MESSAGE, method, *arguments)
        self.assert_holds(self.transform, COUNTING)


class ComposeTest(Expectations, unittest.TestCase):
    def test_the_receiver_of_compose_is_the_left_factor_and_is_returned(self):
        a = transform_of(COUNTING)
        b = transform_of([float(number) for number in range(16, 0, -1)])
        expected = product(entries(a), entries(b))
        self.assertEqual(expected[:4], [80.0, 70.0, 60.0, 50.0])
        b_before = entries(b)
        self.assertIs(a.compose(b), a)
        self.assert_same_bits(entries(a), expected)
        self.assert_same_bits(entries(b), b_before)

    def test_the_function_returns_a_new_object_with_the_same_entries_and_changes_neither(self):
        a = transform_of(COUNTING)
        b = transform_of([float(number) for number in range(16, 0, -1)])
        a_before, b_before = entries(a), entries(b)
        c = vantorPM.compose(a, b)
        self.assertEqual(type(c).__name__, "transform")
        self.assertIsNot(c, a)
        self.assertIsNot(c, b)
        self.assert_same_bits(entries(a), a_before)
        self.assert_same_bits(entries(b), b_before)
        self.assert_same_bits(entries(c), entries(a.compose(b)))

    def test_composition_is_not_commutative(self):
        a = vantorPM.transform().scaling(vantorPM.vector3(2, 3, 4))
        b = vantorPM.transform().translation(vantorPM.vector3(1, 1, 1))
        self.assertEqual(list(vantorPM.compose(a, b).get(3)), [1.0, 1.0, 1.0, 1.0])
        self.assertEqual(list(vantorPM.compose(b, a).get(3)), [2.0, 3.0, 4.0, 1.0])

    def test_compose_with_itself_squares(self):
        a = transform_of(COUNTING)
        expected = product(COUNTING, COUNTING)
        self.assertEqual(expected[0], 90.0)
        self.assertIs(a.compose(a), a)
        self.assert_same_bits(entries(a), expected)
        a = transform_of(COUNTING)
        self.assert_same_bits(entries(vantorPM.compose(a, a)), expected)
        self.assert_same_bits(entries(a), COUNTING)

    def test_compose_is_the_plain_sum_bit_for_bit(self):
        generator = random.Random(1)
        for _ in range(500):
            a = [generator.uniform(-1, 1) * 10.0 ** generator.randint(-12, 12) for _ in range(16)]
            b = [generator.uniform(-1, 1) * 10.0 ** generator.randint(-12, 12) for _ in range(16)]
            self.assert_same_bits(
                entries(vantorPM.compose(transform_of(a), transform_of(b))), product(a, b)
            )
            self.assert_same_bits(entries(transform_of(a).compose(transform_of(b))), product(a, b))

    def test_compose_of_infinities_and_nans(self):
        a = [math.inf, 0.0, 0.0, 0.0] + IDENTITY[4:]
        b = [math.nan] + IDENTITY[1:]
        for one, other in [(a, b), (b, a), (a, a), (a, ZERO)]:
            self.assert_same_bits(
                entries(vantorPM.compose(transform_of(one), transform_of(other))),
                product(one, other),
            )

    def test_chained_calls(self):
        t = vantorPM.transform()
        u = transform_of(COUNTING)
        self.assertIs(t.identity().compose(u), t)
        self.assert_same_bits(entries(t), COUNTING)

    def test_compose_needs_transforms(self):
        t = vantorPM.transform()
        for value in [vantorPM.HermiteBasis(), None, 1.0, vantorPM.transformarray()]:
            with self.subTest(value):
                self.assert_fails(TypeError, "must be transform, not ", t.compose, value)
                self.assert_fails(
                    TypeError, "argument 1 must be transform, not ", vantorPM.compose, value, t
                )
                self.assert_fails(
                    TypeError, "argument 2 must be transform, not ", vantorPM.compose, t, value
                )
        for count in (0, 1, 3):
            self.assert_fails(
                TypeError,
                "exactly 2 arguments \\({} given\\)".format(count),
                vantorPM.compose,
                *[t] * count,
            )
        self.assert_fails(TypeError, None, vantorPM.compose, (t, t))


class InvertTest(Expectations, unittest.TestCase):
    def assert_inverts(self, numbers, expected):
        """Method and function give the expected entries; the sign of a zero is not looked at."""
        transform = transform_of(numbers)
        result = vantorPM.invert(transform)
        self.assertIsNot(result, transform)
        self.assert_same_bits(entries(transform), numbers)
        self.assertIs(transform.invert(), transform)
        self.assert_same_bits(entries(transform), entries(result))
        if any(map(math.isnan, expected)):
            self.assert_same_bits(entries(result), expected)
        else:
            self.assertEqual(entries(result), expected)

    def test_the_zero_transform_stays_zero_and_raises_nothing(self):
        transform = vantorPM.transform()
        self.assertIs(transform.invert(), transform)
        self.assertEqual(
            str(transform), "transform( (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0) )"
        )
        self.assert_inverts(ZERO, ZERO)

    def test_the_identity_inverts_to_the_identity(self):
        self.assert_inverts(IDENTITY, IDENTITY)
        self.assertEqual(
            str(vantorPM.transform().identity().invert()),
            "transform( (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1) )",
        )

    def test_a_translation_inverts_to_the_negated_one_on_either_side(self):
        below = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, -3, 0.5, 1]
        self.assert_inverts(
            list(map(float, below)), [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -2, 3, -0.5, 1]
        )
        beside = [1, 0, 0, 2, 0, 1, 0, -3, 0, 0, 1, 0.5, 0, 0, 0, 1]
        self.assert_inverts(
            list(map(float, beside)), [1, 0, 0, -2, 0, 1, 0, 3, 0, 0, 1, -0.5, 0, 0, 0, 1]
        )

    def test_uniform_scaling_by_a_hundredth_gives_the_adjugate(self):
        numbers = [0.01 * entry for entry in IDENTITY]
        cube = 0.01 * (0.01 * 0.01)
        self.assert_inverts(numbers, [cube * entry for entry in IDENTITY])
        self.assertEqual(str(transform_of(numbers).invert().get(3)), "vector4( 0, 0, 0, 1e-06 )")

    def diagonal(self, first):
        return [first, 0.0, 0.0, 0.0] + IDENTITY[4:]

    def test_a_determinant_of_exactly_a_millionth_still_inverts(self):
        for sign in (1, -1):
            q = 1.0 / (sign * 1e-6)
            self.assert_inverts(
                self.diagonal(sign * 1e-6),
                [
                    q,
                    0,
                    0,
                    0,
                    0,
                    sign * 1e-6 * q,
                    0,
                    0,
                    0,
                    0,
                    sign * 1e-6 * q,
                    0,
                    0,
                    0,
                    0,
                    sign * 1e-6 * q,
                ],
            )

    def test_a_determinant_just_below_a_millionth_gives_the_adjugate(self):
        for sign in (1, -1):
            below = sign * math.nextafter(1e-6, 0.0)
            self.assert_inverts(
                self.diagonal(below), [1, 0, 0, 0, 0, below, 0, 0, 0, 0, below, 0, 0, 0, 0, below]
            )

    def test_the_rule_is_absolute_and_not_scaled(self):
        # Nearly singular, but with large entries: the determinant is not small.
        numbers = [entry * 1e6 for entry in self.diagonal(1e-9)]
        self.assertGreater(abs(determinant(numbers, adjugate(numbers))), 1.0)
        self.assert_inverts(numbers, inverse(numbers))

    def test_a_singular_transform_gives_its_adjugate(self):
        numbers = [float(number) for number in (1, 2, 0, 0, 2, 4, 0, 0, 0, 0, 3, 0, 0, 0, 0, 5)]
        self.assert_inverts(numbers, [60, -30, 0, 0, -30, 15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0])

    def test_a_determinant_that_is_no_number_makes_every_entry_nan(self):
        self.assert_inverts([math.nan] + COUNTING[1:], [math.nan] * 16)
        self.assert_inverts([math.inf, -math.inf] + COUNTING[2:], [math.nan] * 16)

    def test_a_known_inverse(self):
        numbers = [float(number) for number in (2, 0, 0, 1, 0, 1, 0, 0, 0, 3, 1, 0, 1, 0, 0, 1)]
        self.assert_inverts(numbers, [1, 0, 0, -1, 0, 1, 0, 0, 0, -3, 1, 0, -1, 0, 0, 2])

    def test_invert_is_the_cofactor_method_bit_for_bit(self):
        generator = random.Random(2)
        for _ in range(500):
            numbers = [
                generator.uniform(-1, 1) * 10.0 ** generator.randint(-3, 3) for _ in range(16)
            ]
            self.assert_inverts(numbers, inverse(numbers))

    def test_near_singular_transforms_follow_the_rule_bit_for_bit(self):
        generator = random.Random(3)
        below = 0
        for _ in range(500):
            scale = 10.0 ** generator.uniform(-2.2, -1.0)
            numbers = [generator.uniform(-1, 1) * scale for _ in range(16)]
            below += abs(determinant(numbers, adjugate(numbers))) < 1e-6
            self.assert_inverts(numbers, inverse(numbers))
        self.assertTrue(50 < below < 450, below)

    def test_a_transform_times_its_inverse_is_the_identity(self):
        generator = random.Random(4)
        for _ in range(100):
            numbers = [generator.uniform(-1, 1) + 3 * one for one in IDENTITY]
            transform = transform_of(numbers)
            for got, wanted in zip(
                entries(vantorPM.compose(transform, vantorPM.invert(transform))), IDENTITY
            ):
                self.assertAlmostEqual(got, wanted, delta=1e-12)

    def test_invert_needs_one_transform(self):
        t = vantorPM.transform()
        for value in [vantorPM.HermiteBasis(), None, 1.0, (t,)]:
            with self.subTest(value):
                self.assert_fails(
                    TypeError, "argument 1 must be transform, not ", vantorPM.invert, value
                )
        for count in (0, 2):
            self.assert_fails(
                TypeError,
                "exactly 1 argument \\({} given\\)".format(count),
                vantorPM.invert,
                *[t] * count,
            )


if __name__ == "__main__":
    unittest.main()
