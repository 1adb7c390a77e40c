"""Values: what Python has, as the module takes it."""

import array
import pathlib
import struct
import unittest

import vantor as vt
import vantorPM
from vantor import _native
from scenes import PackageTest, lit_scene, needs_numpy, numpy


def elements(module_array):
    """The numbers of an array of the module, one after the other."""
    numbers, dtype, _ = _native.from_array(module_array)
    return list(memoryview(numbers).cast("i" if dtype == "int32" else "d"))


class ArraysTest(unittest.TestCase):
    def assert_refused(self, kind, value, error, *words):
        with self.assertRaises(error) as caught:
            _native.to_array(kind, value)
        for word in words:
            self.assertIn(word, str(caught.exception))

    def test_nested_sequences_of_every_depth(self):
        points = [(1, 2, 3), [4.5, 5, 6], vantorPM.vector3(7, 8, 9)]
        self.assertEqual(elements(_native.to_array("vector3array", points)),
                         [1, 2, 3, 4.5, 5, 6, 7, 8, 9])
        rows = [[[float(4 * i + j) for j in range(4)] for i in range(4)]] * 2
        made = _native.to_array("transformarray", rows)
        self.assertIs(type(made), type(vantorPM.transformarray()))
        self.assertEqual(elements(made), [float(i) for i in range(16)] * 2)

    def test_rows_of_indices_are_one_array(self):
        made = _native.to_array("intarray", [(0, 1, 2), (2, 1, 3)])
        self.assertEqual(elements(made), [0, 1, 2, 2, 1, 3])

    def test_buffers_of_other_numbers(self):
        for code, size in (("f", 4), ("d", 8), ("b", 1), ("H", 2), ("i", 4), ("q", 8)):
            with self.subTest(code):
                view = memoryview(array.array(code, [1, 2, 3, 4])).cast("B").cast(code, (2, 2))
                made = _native.to_array("vector2array", view)
                self.assertEqual(elements(made), [1, 2, 3, 4])
                self.assertEqual(view.itemsize, size)

    def test_both_ways_are_exact(self):
        numbers = [0.1, -0.0, 1e300, 5e-324, 2.0**-1074, 3.0]
        made = _native.to_array("vector2array",
                                memoryview(array.array("d", numbers)).cast("B").cast("d", (3, 2)))
        self.assertEqual(struct.pack("6d", *elements(made)), struct.pack("6d", *numbers))

    def test_no_elements(self):
        for kind in ("intarray", "floatarray", "vector3array", "transformarray"):
            self.assertEqual(_native.to_array(kind, []).getSize(), 0)
            self.assertEqual(elements(_native.to_array(kind, ())), [])

    def test_a_wrong_shape_names_both(self):
        self.assert_refused("vector3array", [[1, 2], [3, 4]], ValueError, "(N, 3)", "(2, 2)")
        self.assert_refused("vector3array", [1, 2, 3], ValueError, "(N, 3)", "(3,)")
        self.assert_refused("transformarray", [[1, 2, 3, 4]] * 4, ValueError, "(N, 4, 4)", "(4, 4)")
        self.assert_refused("floatarray", 5.0, ValueError, "(N,)", "()")

    def test_rows_of_different_lengths(self):
        self.assert_refused("vector3array", [[1, 2, 3], [1, 2]], ValueError, "of 3 and of 2")
        self.assert_refused("vector3array", [[1, 2, 3], 4], ValueError, "different depths")
        self.assert_refused("floatarray", [1, [2]], ValueError, "different depths")
        endless = []
        endless.append(endless)
        self.assert_refused("floatarray", endless, ValueError, "different depths")

    def test_what_is_no_number(self):
        for value in ("abc", None, {1: 2}, [None], ["1"], [[1, 2, "3"]], b"abc", {1, 2}, [True],
                      object()):
            with self.subTest(repr(value)):
                self.assert_refused("floatarray", value, TypeError, "expected numbers")

    def test_integers_have_to_be_integers_of_32_bits(self):
        self.assert_refused("intarray", [0, 1.5], TypeError, "integers")
        self.assert_refused("intarray", array.array("d", [1]), TypeError, "integers")
        for value in ([2**31], [-(2**31) - 1], array.array("q", [2**40]),
                      array.array("Q", [2**63])):
            self.assert_refused("intarray", value, OverflowError, "32 bits")
        self.assertEqual(elements(_native.to_array("intarray", [2**31 - 1, -(2**31)])),
                         [2**31 - 1, -(2**31)])

    def test_a_sequence_that_changes_while_it_is_read(self):
        class Shrinks(float):
            pass

        class Number:
            def __float__(self):
                del values[1:]
                return 1.0

        values = [Number(), 2.0, Shrinks(3)]
        self.assert_refused("floatarray", values, RuntimeError, "changed")

    def test_an_error_of_a_number_passes(self):
        class Number:
            def __float__(self):
                raise KeyError("mine")

        self.assert_refused("floatarray", [Number()], KeyError, "mine")

    @needs_numpy
    def test_numpy_arrays_of_every_layout(self):
        points = numpy.arange(24, dtype=float).reshape(8, 3) / 7
        expected = points.ravel().tolist()
        read_only = points.copy()
        read_only.flags.writeable = False
        wide = numpy.zeros((8, 7))
        wide[:, 1:7:2] = points
        for value in (points, points[::-1][::-1], numpy.asfortranarray(points),
                      points.astype(">f8"),
                      read_only, wide[:, 1:7:2]):
            made = _native.to_array("vector3array", value)
            self.assertEqual(elements(made), expected)
            self.assertEqual(vt.to_numpy(made).tolist(), points.tolist())
        singles = points.astype("f4")
        self.assertEqual(vt.to_numpy(_native.to_array("vector3array", singles)).tolist(),
                         singles.astype(float).tolist())
        backwards = _native.to_array("vector3array", points[::-2])
        self.assertEqual(vt.to_numpy(backwards).tolist(), points[::-2].tolist())

    @needs_numpy
    def test_numpy_shapes_and_types(self):
        self.assertEqual(vt.to_numpy(vantorPM.vector3array()).shape, (0, 3))
        self.assertEqual(_native.to_array("vector3array", numpy.zeros((0, 3))).getSize(), 0)
        self.assert_refused("vector3array", numpy.zeros((3, 2)), ValueError, "(N, 3)", "(3, 2)")
        self.assert_refused("vector3array", numpy.zeros((2, 3), complex), TypeError, "Zd")
        self.assert_refused("vector3array", numpy.zeros((2, 3), bool), TypeError, "?")
        triangles = _native.to_array("intarray", numpy.array([[0, 1, 2]], dtype="u1"))
        self.assertEqual(vt.to_numpy(triangles).tolist(), [0, 1, 2])
        mixed = _native.to_array("vector3array", [numpy.ones(3), numpy.float32([1, 2, 3])])
        self.assertEqual(elements(mixed), [1, 1, 1, 1, 2, 3])

    def test_only_the_modules_arrays_come_back(self):
        for value in ([1], vantorPM.vector3(1, 2, 3), None):
            self.assertRaises(TypeError, _native.from_array, value)


class ParametersTest(PackageTest):
    """Values by the vocabulary's kinds."""

    def assert_refused(self, error, message, make, *arguments, **parameters):
        with self.assertRaises(error) as caught:
            make(*arguments, **parameters)
        self.assertEqual(str(caught.exception), message)

    def test_each_kind_takes_what_stands_for_it(self):
        scene = lit_scene(strict=True)
        scene.camera("perspective", position=array.array("d", [0, 1, 2]), fov=40, fov_axis="larger")
        scene.imager("settings", seed=3, final_gather=True)
        scene.imager("file", name=pathlib.Path(self.path("a.png")), exposure=1)
        noise = scene.pattern("noise", a=0, b=(1, 0, 0), scale=(2, 3))
        scene.material("surface", interface=scene.interface("diffuse"), color=noise, roughness=1)
        plane = scene.trimmer("plane", normal=(0, 1, 0))
        scene.object("sphere", trimmers=plane)
        scene.object("sphere", trimmers=[plane, plane])
        cone = scene.object("cone", from_=(0, 0, 0), to=(0, 2, 0), caps=False)
        scene.object("instances", object=cone, places=[vt.translate(1, 2, 3), vt.scale(2)])
        scene.object("patches", points=[(x, 0, y) for y in range(4) for x in range(4)], columns=4,
                     basis=vantorPM.BSplineBasis())
        scene.object("mesh", points=[[0, 0, 0], [1, 0, 0], [0, 1, 0]], triangles=[[0, 1, 2]],
                     uvs=[(0, 0), (1, 0), (0, 1)], normals=None)

    @needs_numpy
    def test_numpys_own_numbers(self):
        scene = lit_scene(strict=True)
        scene.add("sphere", radius=numpy.float32(2), center=numpy.ones(3, "f4"))
        scene.imager("settings", seed=numpy.int64(3), final_gather=numpy.bool_(True))
        scene.light("point", intensity=numpy.array(2.5))
        scene.object("instances", object=scene.object("box"),
                     places=numpy.stack([numpy.eye(4)] * 3))

    def test_errors_name_call_type_and_parameter(self):
        scene = lit_scene()
        self.assert_refused(ValueError,
                            'newObject "sphere": center: expected the shape (3,), got (2,)',
                            scene.object, "sphere", center=(1, 2))
        self.assert_refused(TypeError, 'newObject "sphere": radius: expected a number, got \'big\'',
                            scene.object, "sphere", radius="big")
        self.assert_refused(TypeError, 'newObject "cone": caps: expected True or False, got 2',
                            scene.object, "cone", caps=2)
        self.assert_refused(TypeError, 'newImager "settings": seed: expected an integer, got 1.5',
                            scene.imager, "settings", seed=1.5)
        self.assert_refused(TypeError, "newCamera: expected the name of a type, got 5",
                            scene.camera, 5)

    def test_a_handle_is_of_one_kind_and_one_scene(self):
        scene, other = lit_scene(), lit_scene()
        light = scene.light("point")
        self.assert_refused(
            TypeError,
            'newMaterial "surface": interface: expected an interface, got {!r}'.format(light),
            scene.material, "surface", interface=light)
        self.assert_refused(
            TypeError, 'newMaterial "surface": interface: expected an interface, got 1',
            scene.material, "surface", interface=1)
        ball = other.object("sphere")
        elsewhere = "add: {!r} belongs to another scene".format(ball)
        self.assert_refused(ValueError, elsewhere, scene.add, ball)
        self.assertRaises(TypeError, scene.add, light)
        self.assert_refused(TypeError,
                            'newObject "sphere": radius: expected a number, got {!r}'.format(light),
                            scene.object, "sphere", radius=light)

    def test_nothing_is_added_by_a_call_that_fails(self):
        scene = lit_scene()
        before = list(scene.handles)
        self.assertRaises(ValueError, scene.add, "sphere", center=(1, 2))
        self.assertRaises(TypeError, scene.add, scene.handles[0], radius=1)
        self.assertEqual(scene.handles, before)


class TransformsTest(unittest.TestCase):
    def test_they_are_the_modules(self):
        moved = vt.translate(1, 2, 3)
        self.assertEqual(moved.rows[3], (1, 2, 3, 1))
        self.assertEqual(moved, vt.translate((1, 2, 3)))
        self.assertEqual(vt.scale(2).rows[1], (0, 2, 0, 0))
        self.assertEqual(vt.scale(1, 2, 3), vt.scale((1, 2, 3)))
        turned = vantorPM.transform().rotationAroundY(30)
        for row, expected in zip(vt.rotate(30).rows, vt.Transform(turned).rows):
            for a, b in zip(row, expected):
                self.assertAlmostEqual(a, b, 14)

    def test_sixteen_numbers_are_kept_exactly(self):
        rows = tuple(tuple(0.1 * (4 * i + j) ** 3 for j in range(4)) for i in range(4))
        self.assertEqual(vt.matrix(rows).rows, rows)
        self.assertRaises(ValueError, vt.matrix, [[1, 2], [3, 4]])
        self.assertRaises(TypeError, vt.matrix, "abc")

    def test_a_product_applies_the_left_one_first(self):
        self.assertEqual((vt.scale(2) @ vt.translate(1, 0, 0)).rows[3], (1, 0, 0, 1))
        self.assertEqual((vt.translate(1, 0, 0) @ vt.scale(2)).rows[3], (2, 0, 0, 1))
        self.assertEqual((vt.translate(1, 0, 0) @ vt.translate(1, 0, 0).inverse()),
                         vt.translate(0, 0, 0))

    def test_look_at_turns_minus_z_to_the_target(self):
        rows = vt.look_at((1, 2, 3), (1, 2, -5)).rows
        self.assertEqual(rows, ((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (1, 2, 3, 1)))
        self.assertRaises(ValueError, vt.look_at, (1, 1, 1), (1, 1, 1))
        self.assertRaises(ValueError, vt.look_at, (0, 0, 0), (0, 5, 0))

    @needs_numpy
    def test_numpy_sees_the_matrix(self):
        self.assertEqual(numpy.asarray(vt.translate(1, 2, 3))[3].tolist(), [1, 2, 3, 1])
        self.assertEqual(vt.matrix(numpy.asarray(vt.scale(2))), vt.scale(2))


if __name__ == "__main__":
    unittest.main()
