"""The module's native factories, and what happens when a native part cannot be allocated.

vantor_factories is the module's own sources under another name, its allocations counted and made
to fail; it is built with the other test programs, beside the module.
"""

import gc
import os
import sys
import unittest

import recording
from names import ARRAYS, ARRAYS_OF_OBJECTS, BASES

# Everything that makes an object, as it is called.
CONSTRUCTORS = [
    ("scene", ()),
    ("vector2", (1, 2)),
    ("vector3", (1, 2, 3)),
    ("vector4", (1, 2, 3, 4)),
    ("transform", ()),
] + [(name, ()) for name in BASES + ARRAYS]

factories = None


def setUpModule():
    global factories
    recording.build_folder()
    os.environ["VANTOR_DIAGNOSTICS"] = "silent"
    import vantor_factories as factories  # noqa: F811


class FactoryTest(unittest.TestCase):
    def test_vectors_from_components(self):
        self.assertEqual(repr(factories.make_vector2(1, 2)), "vector2( 1, 2 )")
        self.assertEqual(repr(factories.make_vector3(1, 2, 3)), "vector3( 1, 2, 3 )")
        self.assertEqual(repr(factories.make_vector4(1, 2, 3, 4)), "vector4( 1, 2, 3, 4 )")

    def test_matrices_from_rows(self):
        make2, make3, make4 = (
            factories.make_vector2,
            factories.make_vector3,
            factories.make_vector4,
        )
        self.assertEqual(
            repr(factories.make_matrix2(make2(1, 2), make2(3, 4))), "matrix2( (1, 2), (3, 4) )"
        )
        self.assertEqual(
            repr(factories.make_matrix3(make3(1, 2, 3), make3(4, 5, 6), make3(7, 8, 9))),
            "matrix3( (1, 2, 3), (4, 5, 6), (7, 8, 9) )",
        )
        self.assertEqual(
            repr(
                factories.make_matrix4(
                    make4(1, 2, 3, 4),
                    make4(5, 6, 7, 8),
                    make4(9, 10, 11, 12),
                    make4(13, 14, 15, 16),
                )
            ),
            "matrix4( (1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16) )",
        )

    def test_a_transform_from_nothing_is_zero(self):
        self.assertEqual(
            repr(factories.make_transform()),
            "transform( (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0), (0, 0, 0, 0) )",
        )

    def test_from_a_value_is_an_independent_copy(self):
        originals = [
            factories.make_vector2(1, 2),
            factories.make_vector3(1, 2, 3),
            factories.make_vector4(1, 2, 3, 4),
            factories.make_transform(),
        ]
        originals += [
            getattr(factories.module, name)().setSize(1)[0]
            for name in ("matrix2array", "matrix3array", "matrix4array")
        ]
        for original in originals:
            with self.subTest(type=type(original).__name__):
                text = repr(original)
                copy = factories.copy(original)
                self.assertIs(type(copy), type(original))
                self.assertIsNot(copy, original)
                self.assertEqual(repr(copy), text)
                if hasattr(copy, "identity"):
                    copy.identity()
                elif hasattr(copy, "sqlength"):
                    copy.set(0, 9)
                else:
                    copy.set(0, self.row(len(repr(copy.get(0)).split(","))))
                self.assertNotEqual(repr(copy), text)
                self.assertEqual(repr(original), text)

    @staticmethod
    def row(length):
        return {2: factories.make_vector2, 3: factories.make_vector3, 4: factories.make_vector4}[
            length
        ](*[9] * length)

    def test_a_scene_takes_any_number(self):
        for number in (10240, 1, 0, -1, 2147483647, -2147483648):
            self.assertEqual(type(factories.make_scene(number)).__name__, "scene")

    def test_a_scene_is_made_with_the_number_given(self):
        finished = recording.record("import vantor_factories\nvantor_factories.make_scene(-7)")
        self.assertEqual(finished.lines(), ["#1 = VtLocalSceneProxy(-7)", "~VtLocalSceneProxy #1"])


class FailedAllocationTest(unittest.TestCase):
    def tearDown(self):
        factories.fail_allocation(0)

    def assert_fails_without_a_leak(self, call, *arguments):
        """The native part is refused; nothing native and nothing of the interpreter's stays."""

        def attempt():
            factories.fail_allocation(1)
            with self.assertRaises(SystemError) as raised:
                call(*arguments)
            self.assertEqual(raised.exception.args, (12, "Cannot allocate memory"))

        attempt()
        outstanding = factories.outstanding_allocations()
        gc.collect()
        blocks = sys.getallocatedblocks()
        for _ in range(200):
            attempt()
        gc.collect()
        self.assertEqual(factories.outstanding_allocations(), outstanding)
        self.assertLess(sys.getallocatedblocks() - blocks, 100)
        call(*arguments)

    def test_every_module_function_that_makes_an_object(self):
        for name, arguments in CONSTRUCTORS:
            with self.subTest(name=name):
                self.assert_fails_without_a_leak(getattr(factories.module, name), *arguments)

    def test_matrices(self):
        vectors = {
            2: factories.make_vector2(1, 2),
            3: factories.make_vector3(1, 2, 3),
            4: factories.make_vector4(1, 2, 3, 4),
        }
        for size, row in vectors.items():
            with self.subTest(size=size):
                for make in (
                    getattr(factories.module, "matrix%d" % size),
                    getattr(factories, "make_matrix%d" % size),
                ):
                    self.assert_fails_without_a_leak(make, *[row] * size)

    def test_compose_and_invert(self):
        t = factories.make_transform()
        self.assert_fails_without_a_leak(factories.module.compose, t, t)
        self.assert_fails_without_a_leak(factories.module.invert, t)

    def test_every_native_factory(self):
        self.assert_fails_without_a_leak(factories.make_scene, 1)
        self.assert_fails_without_a_leak(factories.make_vector2, 1, 2)
        self.assert_fails_without_a_leak(factories.make_vector3, 1, 2, 3)
        self.assert_fails_without_a_leak(factories.make_vector4, 1, 2, 3, 4)
        self.assert_fails_without_a_leak(factories.make_transform)
        for name in ARRAYS_OF_OBJECTS:
            element = getattr(factories.module, name)().setSize(1)[0]
            with self.subTest(element=type(element).__name__):
                self.assert_fails_without_a_leak(factories.copy, element)

    def test_reading_elements_and_rows(self):
        for name in ARRAYS_OF_OBJECTS:
            with self.subTest(name=name):
                array = getattr(factories.module, name)().setSize(2)
                self.assert_fails_without_a_leak(array.get, 1)
                self.assert_fails_without_a_leak(array.__getitem__, 1)
                if "vector" not in name:
                    self.assert_fails_without_a_leak(array[0].get, 0)
        self.assert_fails_without_a_leak(factories.make_transform().matrix)

    def test_a_block_that_cannot_be_allocated_is_a_memory_error(self):
        array = factories.module.intarray().add(1).add(2).add(3)
        for call in (lambda: array.add(4), lambda: array.setSize(10)):
            array.setSize(3)
            factories.fail_allocation(1)
            with self.assertRaises(MemoryError):
                call()
            array.setSize(3)
            self.assertEqual([array[i] for i in range(3)], [1, 2, 3])
            self.assertEqual(array.add(4)[3], 4)
            array.setSize(0).add(1).add(2).add(3)


class ThrowingProxyTest(unittest.TestCase):
    def test_the_memory_of_a_proxy_whose_constructor_throws_is_released(self):
        finished = recording.record(
            """
            import vantor_factories
            from vantor_probe import call_catching
            vantor_factories.make_scene(1)
            os.environ["VANTOR_RECORD_THROW"] = "VtLocalSceneProxy"
            before = vantor_factories.outstanding_allocations()
            for make in (vantor_factories.make_scene, vantor_factories.module.scene):
                print(call_catching(make, 5))
                print(vantor_factories.outstanding_allocations() - before)
            """
        )
        self.assertEqual(finished.output, "VtLocalSceneProxy throws\n0\n" * 2)
        self.assertEqual(
            finished.lines()[2:],
            ["#2 = VtLocalSceneProxy(5) throws", "#3 = VtLocalSceneProxy(5) throws"],
        )


if __name__ == "__main__":
    unittest.main()
