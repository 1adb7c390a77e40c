"""The module itself: its dictionary, its table of functions, its error class, import and exit."""

import ctypes
import random
import sys
import threading
import types
import unittest

from expectations import Expectations
from module_under_test import vantorPM
from names import ARRAYS, BASES, FUNCTIONS, STEPS
from scripts import Scripts

# These never look at what they are given.
WITHOUT_ARGUMENTS = ["transform"] + BASES + STEPS + ARRAYS


class MethodDefinition(ctypes.Structure):
    _fields_ = [
        ("name", ctypes.c_char_p),
        ("handler", ctypes.c_void_p),
        ("flags", ctypes.c_int),
        ("doc", ctypes.c_char_p),
    ]


def definition(function):
    """The function's table entry: its object's first pointer after the header."""
    address = ctypes.c_void_p.from_address(id(function) + object.__basicsize__).value
    return MethodDefinition.from_address(address)


class ModuleDictionaryTest(Expectations, unittest.TestCase):
    def entries(self):
        return [name for name in vars(vantorPM) if not name.startswith("__")]

    def test_module_dictionary_holds_exactly_the_27_functions_and_error(self):
        self.assertEqual(len(FUNCTIONS), 27)
        self.assertEqual(sorted(self.entries()), sorted(FUNCTIONS + ["error"]))

    def test_functions_stand_in_the_order_of_the_table_and_error_comes_last(self):
        self.assertEqual(self.entries(), FUNCTIONS + ["error"])

    def test_there_are_no_constants(self):
        for name in self.entries():
            with self.subTest(name):
                kind = type if name == "error" else types.BuiltinFunctionType
                self.assertIsInstance(getattr(vantorPM, name), kind)

    def test_every_function_has_its_name_and_no_doc_string(self):
        for name in FUNCTIONS:
            with self.subTest(name):
                function = getattr(vantorPM, name)
                self.assertEqual(function.__name__, name)
                self.assertIsNone(function.__doc__)

    def test_the_flags_word_of_every_function_is_1(self):
        for name in FUNCTIONS:
            with self.subTest(name):
                entry = definition(getattr(vantorPM, name))
                self.assertEqual(entry.name, name.encode())
                self.assertEqual(entry.flags, 1)
                self.assertIsNone(entry.doc)

    def test_the_module_has_its_name_and_no_doc_string(self):
        self.assertEqual(vantorPM.__name__, "vantorPM")
        self.assertIsNone(vantorPM.__doc__)

    def test_no_function_takes_keyword_arguments(self):
        for name in FUNCTIONS:
            with self.subTest(name):
                self.assert_fails(TypeError, "keyword", lambda: getattr(vantorPM, name)(x=1))

    def test_functions_without_arguments_ignore_whatever_they_are_given(self):
        for name in WITHOUT_ARGUMENTS:
            function = getattr(vantorPM, name)
            expected = repr(function())
            for arguments in [(1,), (1, 2, 3), (None,), ((),), ("x", object()), ([1, 2],)]:
                with self.subTest(name, arguments=arguments):
                    self.assertEqual(repr(function(*arguments)), expected)

    def test_constructors_return_a_new_object_each_time(self):
        for name in WITHOUT_ARGUMENTS:
            if not name.endswith("Step"):
                with self.subTest(name):
                    function = getattr(vantorPM, name)
                    self.assertIsNot(function(), function())


class ErrorTest(Expectations, unittest.TestCase):
    def test_error_is_a_class_whose_name_is_vantorPM_error(self):
        self.assertIsInstance(vantorPM.error, type)
        self.assertEqual(
            vantorPM.error.__module__ + "." + vantorPM.error.__name__, "vantorPM.error"
        )
        self.assertEqual(str(vantorPM.error), "<class 'vantorPM.error'>")

    def test_error_is_an_exception_without_a_base_of_its_own(self):
        self.assertEqual(vantorPM.error.__bases__, (Exception,))

    def test_a_script_can_raise_and_catch_error(self):
        with self.assertRaises(vantorPM.error) as caught:
            raise vantorPM.error("a text", 1)
        self.assertEqual(caught.exception.args, ("a text", 1))

    def test_an_error_of_the_module_is_a_SystemError_and_not_vantorPM_error(self):
        try:
            vantorPM.scene().newCamera(None, [None])
        except vantorPM.error:
            self.fail("vantorPM.error was raised")
        except SystemError as error:
            self.assertIs(type(error), SystemError)
            self.assertEqual(str(error), "unsupported parameter type at 0 in the parameter list")
        else:
            self.fail("nothing was raised")

    def test_error_itself_is_no_SystemError(self):
        self.assertFalse(issubclass(vantorPM.error, SystemError))
        self.assertFalse(issubclass(SystemError, vantorPM.error))


class ThreadTest(unittest.TestCase):
    def test_threads_that_share_objects_take_turns(self):
        array, vector, scene = vantorPM.vector3array(), vantorPM.vector3(1, 2, 3), vantorPM.scene()
        surprises = []

        def work(seed):
            generator = random.Random(seed)
            operations = [
                lambda: array.setSize(generator.randrange(-1, 40)),
                lambda: array.add(vector),
                lambda: array.set(generator.randrange(10), vector),
                lambda: array.get(generator.randrange(10)).normalize(),
                lambda: repr(array),
                lambda: [list(element) for element in array],
                lambda: vector.set(generator.randrange(3), generator.random()),
                lambda: scene.newObject("x", ["array", array, "vector", vector]),
            ]
            try:
                for _ in range(2000):
                    try:
                        generator.choice(operations)()
                    except IndexError:
                        pass
            except Exception as error:
                surprises.append(error)

        interval = sys.getswitchinterval()
        sys.setswitchinterval(1e-6)
        try:
            threads = [threading.Thread(target=work, args=(seed,)) for seed in range(4)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
        finally:
            sys.setswitchinterval(interval)
        self.assertEqual(surprises, [])


class ImportTest(Scripts, unittest.TestCase):
    def test_import_prints_nothing_and_warns_of_nothing(self):
        self.assert_script("import vantorPM", "", "-W", "error", "-X", "dev")

    def test_a_second_import_gives_the_same_module(self):
        self.assert_script(
            """
            import vantorPM as first
            import vantorPM as second
            import sys
            print(first is second is sys.modules["vantorPM"])
            """,
            "True\n",
        )

    def test_import_after_removal_from_sys_modules_gives_the_same_error_and_working_functions(self):
        self.assert_script(
            """
            import sys
            import vantorPM as first
            vector = first.vector3(1, 2, 3)
            del sys.modules["vantorPM"]
            import vantorPM as second
            print(first.error is second.error)
            print(sorted(name for name in vars(first) if name[0] != "_") ==
                  sorted(name for name in vars(second) if name[0] != "_"))
            print(second.matrix3(vector, vector, second.vector3(4, 5, 6)))
            """,
            "True\nTrue\nmatrix3( (1, 2, 3), (1, 2, 3), (4, 5, 6) )\n",
        )

    def test_errors_stay_what_they_are_when_error_is_deleted_from_the_module(self):
        self.assert_script(
            """
            import vantorPM
            del vantorPM.error
            try:
                vantorPM.scene().newLight("x", [()])
            except SystemError as error:
                print(error)
            """,
            "unsupported parameter type at 0 in the parameter list\n",
        )

    def test_objects_alive_at_exit_are_released_quietly(self):
        self.assert_script(
            """
            import builtins, sys
            from samples import one_of_each
            here = one_of_each()
            builtins.there = one_of_each()
            sys.elsewhere = one_of_each()
            class Node:
                def __del__(self):
                    repr(self.objects)
            node = Node()
            node.node = node
            node.objects = one_of_each()
            methods = [getattr(value, name) for value in here.values() for name in dir(value)]
            here["scene"].transformBegin(here["transform"])
            here["scene"].lightBegin()
            """,
            "",
            "-X",
            "dev",
        )


if __name__ == "__main__":
    unittest.main()
