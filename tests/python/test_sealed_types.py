"""The types are sealed: only the module's functions make objects; none is copied or pickled."""

import copy
import copyreg
import ctypes
import functools
import gc
import pickle
import unittest
import weakref

import samples
from expectations import Expectations
from native_parts import doubles
from names import METHODS, NUMBERS, SEQUENCES

OTHER_SLOTS = [
    "__call__",
    "__str__",
    "__iter__",
    "__next__",
    "__contains__",
    "__add__",
    "__radd__",
    "__iadd__",
    "__sub__",
    "__mul__",
    "__rmul__",
    "__imul__",
    "__neg__",
    "__bool__",
    "__int__",
    "__float__",
    "__index__",
    "__matmul__",
    "__setattr__",
    "__delattr__",
    "__getattr__",
    "__eq__",
    "__ne__",
    "__lt__",
    "__le__",
    "__gt__",
    "__ge__",
    "__hash__",
    "__new__",
    "__init__",
    "__enter__",
    "__exit__",
    "__format__",
    "__copy__",
    "__deepcopy__",
    "__dict__",
    "__weakref__",
]
LENGTH_AND_ITEMS = ["__len__", "__getitem__", "__setitem__", "__delitem__"]


def for_each_type(test):
    """Runs the test with an object of each type, so that a failure names the type."""

    @functools.wraps(test)
    def run(self):
        for name, value in samples.one_of_each().items():
            with self.subTest(name):
                test(self, name, value)

    return run


class SealedTypeTest(Expectations, unittest.TestCase):
    def assert_sealed(self, kind, value, call, *arguments):
        """The call fails and leaves the object as it was."""
        before = repr(value)
        self.assert_fails(kind, None, call, *arguments)
        self.assertEqual(repr(value), before)

    def test_there_are_17_types_with_their_names(self):
        values = samples.one_of_each()
        self.assertEqual([type(value).__name__ for value in values.values()], list(values))
        self.assertEqual(len({type(value) for value in values.values()}), 17)

    @for_each_type
    def test_an_object_is_the_header_and_one_pointer(self, name, value):
        self.assertEqual(
            type(value).__basicsize__, object.__basicsize__ + ctypes.sizeof(ctypes.c_void_p)
        )
        self.assertEqual(type(value).__itemsize__, 0)

    @for_each_type
    def test_the_methods_are_all_that_a_script_finds(self, name, value):
        public = [attribute for attribute in dir(value) if not attribute.startswith("__")]
        self.assertEqual(sorted(public), sorted(METHODS[name]))
        self.assertEqual(
            [attribute for attribute in vars(type(value)) if not attribute.startswith("__")],
            METHODS[name],
        )

    @for_each_type
    def test_methods_are_built_in_and_have_no_doc_string(self, name, value):
        for method in METHODS[name]:
            self.assertEqual(getattr(value, method).__name__, method)
            self.assertIs(getattr(value, method).__self__, value)
            self.assertIsNone(getattr(value, method).__doc__)
            self.assertTrue(callable(getattr(value, method)))

    @for_each_type
    def test_only_the_stated_slots_are_filled(self, name, value):
        filled = vars(type(value))
        for slot in OTHER_SLOTS:
            self.assertNotIn(slot, filled)
        for slot in LENGTH_AND_ITEMS:
            self.assertEqual(slot in filled, name in SEQUENCES, slot)
        self.assertEqual("__repr__" in filled, name != "scene")
        self.assertIsNone(type(value).__doc__)

    @for_each_type
    def test_calling_the_type_makes_no_object(self, name, value):
        kind = type(value)
        for arguments in [(), (1,), (1, 2), (1.0, 2.0, 3.0), (value,)]:
            self.assert_sealed(TypeError, value, kind, *arguments)
        self.assert_sealed(TypeError, value, lambda: kind(x=1))

    @for_each_type
    def test_no_back_door_makes_an_object(self, name, value):
        class Plain:
            pass

        def assign_class():
            Plain().__class__ = kind

        kind = type(value)
        self.assert_sealed(TypeError, value, object.__new__, kind)
        self.assert_sealed(TypeError, value, kind.__new__, kind)
        self.assert_sealed(TypeError, value, copyreg.__newobj__, kind)
        self.assert_sealed(TypeError, value, copyreg._reconstructor, kind, object, None)
        self.assert_sealed(TypeError, value, assign_class)

    @for_each_type
    def test_no_type_can_be_subclassed(self, name, value):
        kind = type(value)
        self.assert_sealed(TypeError, value, type, "Child", (kind,), {})
        self.assertEqual(kind.__subclasses__(), [])
        self.assertEqual(kind.__bases__, (object,))

    @for_each_type
    def test_no_attribute_can_be_set_or_deleted(self, name, value):
        for attribute in ["anything", METHODS[name][0], "__doc__", "__dict__"]:
            self.assert_sealed(AttributeError, value, setattr, value, attribute, 1)
            self.assert_sealed(AttributeError, value, object.__setattr__, value, attribute, 1)
            self.assert_sealed(AttributeError, value, delattr, value, attribute)
        self.assertFalse(hasattr(value, "__dict__"))

    @for_each_type
    def test_the_class_of_an_object_cannot_be_changed(self, name, value):
        class Plain:
            pass

        self.assert_sealed(TypeError, value, setattr, value, "__class__", Plain)
        for other in samples.one_of_each().values():
            if type(other) is not type(value):
                self.assert_sealed(TypeError, value, setattr, value, "__class__", type(other))

    @for_each_type
    def test_no_attribute_of_a_type_can_be_set_or_deleted(self, name, value):
        self.assert_sealed(TypeError, value, setattr, type(value), "anything", 1)
        self.assert_sealed(TypeError, value, setattr, type(value), METHODS[name][0], None)
        self.assert_sealed(TypeError, value, setattr, type(value), "__repr__", None)
        self.assert_sealed(TypeError, value, delattr, type(value), METHODS[name][0])

    @for_each_type
    def test_an_unknown_name_is_the_interpreters_attribute_error(self, name, value):
        for attribute in ["unknown", "Get", "value", "x", "", "getsize", "__len", "\u00e9", "a\0b"]:
            pattern = (
                None
                if "\0" in attribute
                else "'{}' object has no attribute '{}'".format(name, attribute)
            )
            self.assert_fails(AttributeError, pattern, getattr, value, attribute)

    @for_each_type
    def test_no_object_can_be_copied(self, name, value):
        self.assert_sealed(TypeError, value, copy.copy, value)
        self.assert_sealed(TypeError, value, copy.deepcopy, value)
        self.assert_sealed(TypeError, value, copy.deepcopy, [value])

    @for_each_type
    def test_no_object_can_be_pickled_at_any_protocol(self, name, value):
        for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
            self.assert_sealed(TypeError, value, pickle.dumps, value, protocol)
            self.assert_sealed(TypeError, value, value.__reduce_ex__, protocol)
        self.assert_sealed(TypeError, value, value.__reduce__)

    @for_each_type
    def test_no_weak_reference_can_be_made(self, name, value):
        self.assert_sealed(TypeError, value, weakref.ref, value)

    @for_each_type
    def test_objects_are_not_tracked_by_the_collector(self, name, value):
        # They refer to no other object.
        self.assertFalse(gc.is_tracked(value))
        self.assertEqual(
            [referent for referent in gc.get_referents(value) if referent is not type(value)], []
        )

    def test_methods_refuse_another_types_object(self):
        values = samples.one_of_each()
        for name, value in values.items():
            for method in METHODS[name]:
                unbound = getattr(type(value), method)
                for other_name, other in values.items():
                    if other_name != name:
                        with self.subTest(name, method=method, other=other_name):
                            self.assert_fails(TypeError, None, unbound, other)
                self.assert_fails(TypeError, None, unbound)
                self.assert_fails(TypeError, None, unbound, None)

    def test_the_record_points_to_the_value_in_storage_order(self):
        for name, count in NUMBERS.items():
            with self.subTest(name):
                value = samples.MAKE[name]()
                self.assertEqual(
                    list(doubles(value, count)), [float(number) for number in range(1, count + 1)]
                )

    @for_each_type
    def test_a_generic_alias_or_class_pattern_changes_nothing(self, name, value):
        self.assert_sealed(TypeError, value, lambda: type(value)[int])


if __name__ == "__main__":
    unittest.main()
