"""The type scene: its methods, their arguments and errors, and the conversion of parameter lists.

What reaches the renderer is another file's matter; here the embedded one stands behind the module.
"""

import math
import os
import tempfile
import unittest

import samples
from expectations import Expectations
from module_under_test import vantorPM
from names import ARRAYS, CREATION, METHODS, WITH_ID, WITHOUT_ARGUMENTS

MESSAGE = "scene object has not been initialized"

TOO_LARGE = "Python int too large to convert to C long"


class Text(str):
    pass


class Integer(int):
    pass


class Real(float):
    pass


class Items(list):
    pass


class Wrapper:
    """Merely wraps a vector, and would behave like one."""

    def __init__(self):
        self.vector = vantorPM.vector3(1, 2, 3)

    def __getattr__(self, name):
        return getattr(self.vector, name)

    def __len__(self):
        return 3

    def __getitem__(self, index):
        return self.vector[index]


class Disguised:
    """Claims to be of a type that is accepted."""

    @property
    def __class__(self):
        return int


def supported():
    """An element of each supported type, and more than one of some."""
    values = samples.one_of_each()
    del values["scene"]
    elements = list(values.values())
    elements += [getattr(vantorPM, name)() for name in ARRAYS]
    elements += [
        1,
        0,
        -1,
        2**31 - 1,
        -(2**31),
        0.5,
        -0.0,
        math.nan,
        math.inf,
        "name",
        "",
        "\u00e9\u20ac\U0001f600",
        "x" * 100000,
    ]
    return elements


def unsupported():
    return [
        None,
        True,
        False,
        2**31,
        -(2**31) - 1,
        2**32,
        2**63,
        2**64,
        -(10**40),
        1j,
        b"bytes",
        bytearray(b"x"),
        (),
        (1, 2),
        [],
        [1],
        {},
        {"a": 1},
        {1},
        object(),
        int,
        Text("x"),
        Integer(1),
        Real(1.5),
        Items(),
        Wrapper(),
        Disguised(),
        vantorPM.scene(),
        vantorPM.vector3,
        vantorPM.error,
        range(3),
        slice(1),
        Ellipsis,
        lambda: None,
    ]


class SceneTestCase(Expectations, unittest.TestCase):
    """Each test has a scene, and an empty folder, so that no picture can be written elsewhere."""

    def setUp(self):
        self.scene = vantorPM.scene()
        before = os.getcwd()
        folder = tempfile.TemporaryDirectory()
        os.chdir(folder.name)
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, before)


class ConstructionTest(SceneTestCase):
    def test_scene_takes_at_most_one_integer(self):
        for arguments in [(), (1,), (10240,), (0,), (-1,), (True,)]:
            with self.subTest(arguments):
                self.assertEqual(type(vantorPM.scene(*arguments)).__name__, "scene")
        self.assert_fails(TypeError, "at most 1 argument \\(2 given\\)", vantorPM.scene, 1, 2)

    def test_scene_refuses_what_is_no_integer(self):
        for wrong in [None, "1", b"1", 1j, [], (), {}, object(), self.scene]:
            with self.subTest(wrong):
                self.assert_fails(TypeError, None, vantorPM.scene, wrong)

    def test_scene_truncates_a_float_and_refuses_what_has_no_integer(self):
        self.assertEqual(type(vantorPM.scene(2.9)).__name__, "scene")
        self.assert_fails(
            ValueError, "cannot convert float NaN to integer", vantorPM.scene, math.nan
        )
        self.assert_fails(
            OverflowError, "cannot convert float infinity to integer", vantorPM.scene, math.inf
        )

    def test_scene_refuses_numbers_beyond_32_bits(self):
        for number in [2**31, -(2**31) - 1, 2**32, 2**32 + 1, 2**63, 2**64]:
            with self.subTest(number):
                self.assert_message(OverflowError, TOO_LARGE, vantorPM.scene, number)
        self.assertEqual(type(vantorPM.scene(2**31 - 1)).__name__, "scene")
        self.assertEqual(type(vantorPM.scene(-(2**31))).__name__, "scene")

    def test_each_call_makes_a_new_scene(self):
        self.assertIsNot(vantorPM.scene(), vantorPM.scene())
        self.assertFalse(self.scene == vantorPM.scene())
        self.assertTrue(self.scene == self.scene)

    def test_a_scene_with_open_blocks_can_be_dropped(self):
        scene = vantorPM.scene(16)
        scene.lightBegin()
        scene.transformBegin(vantorPM.transform().identity())
        scene.imagerBegin(1)
        del scene

    def test_many_scenes_live_side_by_side(self):
        scenes = [vantorPM.scene(number) for number in range(50)]
        ids = [scene.newTexture("x") for scene in scenes]
        self.assertEqual({type(number) for number in ids}, {int})


class MethodTest(SceneTestCase):
    def test_the_25_methods_stand_in_the_order_of_the_table(self):
        self.assertEqual(len(METHODS["scene"]), 25)
        self.assertEqual(
            [name for name in vars(type(self.scene)) if not name.startswith("__")], METHODS["scene"]
        )

    def test_a_scene_prints_as_the_interpreter_prints_any_object(self):
        self.assertRegex(repr(self.scene), "^<scene object at 0x[0-9a-f]+>$")
        self.assertEqual(str(self.scene), repr(self.scene))

    def test_a_scene_is_no_sequence_number_or_callable(self):
        for operation in [
            lambda: len(self.scene),
            lambda: self.scene[0],
            lambda: list(self.scene),
            lambda: self.scene + self.scene,
            lambda: self.scene(),
            lambda: self.scene["newCamera"],
        ]:
            self.assert_fails(TypeError, None, operation)

    def test_no_method_takes_keyword_arguments(self):
        for name in METHODS["scene"]:
            with self.subTest(name):
                method = getattr(self.scene, name)
                self.assert_fails(TypeError, "keyword", lambda: method(x=1))
                self.assert_fails(TypeError, "keyword", lambda: method("x", parameters=[]))

    def test_methods_without_arguments_ignore_what_they_are_given_and_return_none(self):
        for name in WITHOUT_ARGUMENTS:
            for arguments in [(), (5,), (1, 2), (None,), ((),), ("x", [], object())]:
                with self.subTest(name, arguments=arguments):
                    self.assertIsNone(getattr(self.scene, name)(*arguments))

    def test_light_begin_takes_no_id_while_the_other_begins_take_one(self):
        for arguments in [(), (5,), (1, 2)]:
            self.assertIsNone(self.scene.lightBegin(*arguments))
        for name in [name for name in WITH_ID if name.endswith("Begin")]:
            self.assert_fails(TypeError, None, getattr(self.scene, name))

    def test_methods_with_an_id_take_exactly_one_integer_and_return_none(self):
        for name in WITH_ID:
            method = getattr(self.scene, name)
            for number in [0, 1, -1, 2**31 - 1, -(2**31), True, 1.9]:
                with self.subTest(name, number=number):
                    self.assertIsNone(method(number))
            for arguments in [
                (),
                (1, 2),
                ((1,),),
                ((),),
                (None,),
                ("1",),
                ([1],),
                (1j,),
                (self.scene,),
            ]:
                with self.subTest(name, arguments=arguments):
                    self.assert_fails(TypeError, None, method, *arguments)

    def test_ids_beyond_32_bits_are_an_overflow(self):
        for name in WITH_ID:
            method = getattr(self.scene, name)
            for number in [2**31, -(2**31) - 1, 2**32, 2**63, -(2**64)]:
                with self.subTest(name, number=number):
                    self.assert_message(OverflowError, TOO_LARGE, method, number)
            self.assert_fails(OverflowError, "infinity", method, math.inf)
            self.assert_fails(ValueError, "NaN", method, math.nan)
            self.assert_fails(OverflowError, None, method, 1e10)

    def test_methods_of_an_uninitialised_scene_say_so_before_they_parse(self):
        good = {
            "newTexture": ("x",),
            "transformBegin": (vantorPM.transform(),),
            "render": (1, 1, 1),
        }
        good.update({name: ("x", []) for name in CREATION})
        good.update({name: (1,) for name in WITH_ID})
        for name in METHODS["scene"]:
            for arguments in [
                good.get(name, ()),
                (),
                (object(),),
                ("x", (1, 2)),
                ("x", [None]),
                (1, 2, 3, 4),
            ]:
                with self.subTest(name, arguments=arguments):
                    self.assert_not_initialized(
                        self.scene, MESSAGE, getattr(self.scene, name), *arguments
                    )
        self.assertIs(type(self.scene.newTexture("x")), int)


class CreationTest(SceneTestCase):
    def test_creation_returns_the_id_as_an_integer(self):
        for name in CREATION:
            with self.subTest(name):
                self.assertIs(type(getattr(self.scene, name)("x", [])), int)

    def test_creation_with_no_type_and_an_empty_list(self):
        for name in CREATION:
            with self.subTest(name):
                self.assertIs(type(getattr(self.scene, name)(None, [])), int)

    def test_one_tuple_is_taken_as_two_arguments(self):
        for name in CREATION:
            with self.subTest(name):
                self.assertIs(type(getattr(self.scene, name)(("x", []))), int)

    def test_the_parameters_are_exactly_a_list(self):
        for name in CREATION:
            method = getattr(self.scene, name)
            with self.subTest(name):
                self.assert_fails(
                    TypeError, "argument 2 must be list, not tuple", method, "x", (1, 2)
                )
                self.assert_fails(TypeError, "argument 2 must be list, not None", method, "x", None)
                self.assert_fails(TypeError, "argument 2 must be list, not dict", method, "x", {})
                self.assert_fails(
                    TypeError, "argument 2 must be list, not str", method, "x", "list"
                )
                self.assert_fails(
                    TypeError, "argument 2 must be list, not Items", method, "x", Items()
                )
                self.assert_fails(
                    TypeError,
                    "argument 2 must be list, not intarray",
                    method,
                    "x",
                    vantorPM.intarray(),
                )

    def test_the_type_is_a_string_or_none(self):
        for name in CREATION:
            for wrong in [1, 1.5, b"x", [], ("x",), object(), True]:
                with self.subTest(name, type=wrong):
                    self.assert_fails(TypeError, "str", getattr(self.scene, name), wrong, [])

    def test_the_type_may_be_any_text_without_a_null_character(self):
        for text in [
            "",
            "perspective",
            "\u00e9\u20ac\U0001f600",
            "x" * 10000,
            "%s%n%d",
            Text("perspective"),
        ]:
            for name in CREATION:
                with self.subTest(name, text=text[:20]):
                    self.assertIs(type(getattr(self.scene, name)(text, [])), int)
            self.assertIs(type(self.scene.newTexture(text)), int)

    def test_a_type_with_a_null_character_is_refused(self):
        for text in ["\0", "a\0b", "perspective\0"]:
            for name in CREATION:
                self.assert_message(
                    ValueError, "embedded null character", getattr(self.scene, name), text, []
                )
            self.assert_message(ValueError, "embedded null character", self.scene.newTexture, text)

    def test_a_type_without_a_utf_8_form_is_refused(self):
        for name in CREATION:
            self.assert_fails(
                UnicodeEncodeError,
                "surrogates not allowed",
                getattr(self.scene, name),
                "\ud800",
                [],
            )
        self.assert_fails(
            UnicodeEncodeError, "surrogates not allowed", self.scene.newTexture, "a\udfff"
        )

    def test_creation_needs_exactly_two_arguments(self):
        for name in CREATION:
            for arguments, count in [
                ((), 0),
                (("x",), 1),
                ((None,), 1),
                (([],), 1),
                (("x", [], 1), 3),
                ((("x",),), 1),
                ((["x", []],), 1),
                (((),), 0),
            ]:
                with self.subTest(name, arguments=arguments):
                    self.assert_fails(
                        TypeError,
                        "exactly 2 arguments \\({} given\\)".format(count),
                        getattr(self.scene, name),
                        *arguments,
                    )

    def test_new_texture_takes_a_type_and_no_list(self):
        self.assertIs(type(self.scene.newTexture("x")), int)
        self.assertIs(type(self.scene.newTexture(None)), int)
        for arguments in [(), ("x", []), (("x",),), (1,), (b"x",), ([],)]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.scene.newTexture, *arguments)


class ParameterListTest(SceneTestCase):
    def assert_unsupported(self, index, call, *arguments):
        self.assert_module_error(
            "unsupported parameter type at {} in the parameter list".format(index), call, *arguments
        )

    def test_all_19_types_are_supported_by_every_creation_method(self):
        elements = supported()
        self.assertEqual(len({type(element) for element in elements}), 19)
        for name in CREATION:
            method = getattr(self.scene, name)
            with self.subTest(name):
                self.assertIs(type(method("x", elements)), int)
            for element in elements:
                with self.subTest(name, element=repr(element)[:60]):
                    self.assertIs(type(method("x", [element])), int)
                    self.assertIs(type(method("x", ["name", element, "other", element])), int)

    def test_a_string_a_float_a_string_and_an_integer(self):
        parameters = ["a", 1.5, "b", 3]
        self.assertIs(type(self.scene.newLight("point", parameters)), int)
        self.assertEqual(parameters, ["a", 1.5, "b", 3])

    def test_every_other_type_is_unsupported(self):
        for name in CREATION:
            for element in unsupported():
                with self.subTest(name, element=repr(element)[:60]):
                    self.assert_unsupported(0, getattr(self.scene, name), "x", [element])

    def test_the_message_gives_the_index_counted_from_0(self):
        self.assert_unsupported(0, self.scene.newCamera, None, [None])
        self.assert_unsupported(1, self.scene.newCamera, None, [1, None])
        self.assert_unsupported(2, self.scene.newCamera, None, ["a", 1.5, (), None])
        self.assert_unsupported(123456, self.scene.newCamera, None, [1] * 123456 + [None])

    def test_elements_after_the_unsupported_one_are_not_looked_at(self):
        self.assert_unsupported(1, self.scene.newObject, "x", [1, None, "a\0b", "\ud800", ()])

    def test_an_error_of_an_earlier_element_comes_first(self):
        self.assert_message(
            ValueError, "embedded null character", self.scene.newObject, "x", ["a\0b", None]
        )

    def test_the_type_is_parsed_before_the_list_is_converted(self):
        self.assert_message(
            ValueError, "embedded null character", self.scene.newObject, "a\0b", [None]
        )
        self.assert_fails(TypeError, None, self.scene.newObject, 1, [None])

    def test_a_string_with_a_null_character_is_refused(self):
        for name in CREATION:
            for text in ["\0", "a\0", "a\0b"]:
                with self.subTest(name, text=text):
                    self.assert_message(
                        ValueError,
                        "embedded null character",
                        getattr(self.scene, name),
                        "x",
                        ["name", text],
                    )

    def test_a_string_without_a_utf_8_form_is_refused(self):
        for text in ["\ud800", "a\udfffb"]:
            with self.subTest(ascii(text)):
                self.assert_fails(
                    UnicodeEncodeError,
                    "surrogates not allowed",
                    self.scene.newObject,
                    "x",
                    [1, text],
                )

    def test_integers_of_more_than_32_bits_are_unsupported(self):
        for number in [
            2**31,
            -(2**31) - 1,
            2**32,
            2**32 + 1,
            2**62,
            2**63,
            -(2**63),
            2**64,
            10**100,
        ]:
            with self.subTest(number):
                self.assert_unsupported(1, self.scene.newObject, "x", ["name", number])
        self.assertIs(type(self.scene.newObject("x", [2**31 - 1, -(2**31)])), int)

    def test_a_list_that_contains_itself_is_an_unsupported_element(self):
        parameters = [1]
        parameters.append(parameters)
        self.assert_unsupported(1, self.scene.newObject, "x", parameters)
        self.assertIs(parameters[1], parameters)

    def test_no_python_code_runs_during_the_conversion(self):
        # So no element can change the list, or anything else, while the others are converted.
        called = []

        class Recording(type):
            def __instancecheck__(cls, instance):
                called.append("__instancecheck__")
                return True

        def watched(base):
            def note(name):
                def method(self, *arguments):
                    called.append(name)
                    return getattr(super(kind, self), name)(*arguments)

                return method

            names = [
                "__index__",
                "__int__",
                "__float__",
                "__str__",
                "__repr__",
                "__len__",
                "__getitem__",
                "__iter__",
                "__eq__",
                "__hash__",
                "__bool__",
                "__format__",
                "__getattribute__",
            ]
            kind = Recording("kind", (base,), {name: note(name) for name in names})
            return kind

        for base in [int, float, str, list, tuple, dict, object]:
            element = watched(base)()
            parameters = ["a", element, "b"]
            with self.subTest(base):
                called.clear()
                with self.assertRaises(SystemError) as caught:
                    self.scene.newObject("x", parameters)
                self.assertEqual(called, [])
                self.assertEqual(
                    str(caught.exception), "unsupported parameter type at 1 in the parameter list"
                )

    def test_the_list_and_its_elements_are_left_as_they_were(self):
        elements = supported()
        parameters = list(elements)
        before = [repr(element) for element in elements]
        self.scene.newMaterial("x", parameters)
        self.assertEqual(len(parameters), len(elements))
        self.assertTrue(all(map(lambda one, other: one is other, parameters, elements)))
        self.assertEqual([repr(element) for element in parameters], before)

    def test_objects_may_change_after_the_call(self):
        vector, array = vantorPM.vector3(1, 2, 3), vantorPM.intarray().add(1).add(2)
        self.scene.newObject("x", ["v", vector, "a", array])
        vector.set(0, 9)
        array.setSize(0)
        self.assertEqual((str(vector), str(array)), ("vector3( 9, 2, 3 )", "[intarray ]"))

    def test_empty_and_negative_arrays_are_passed(self):
        for name in ARRAYS:
            make = getattr(vantorPM, name)
            filled = samples.MAKE[name]()
            for array in [make(), make().setSize(-1), filled.setSize(-1), make().setSize(1000)]:
                with self.subTest(name, size=array.getSize()):
                    self.assertIs(type(self.scene.newObject("x", ["a", array])), int)

    def test_the_same_object_may_stand_in_the_list_more_than_once(self):
        array = vantorPM.floatarray().add(1)
        vector = vantorPM.vector3(1, 2, 3)
        self.assertIs(type(self.scene.newObject("x", [array, array, vector, vector, array])), int)

    def test_a_long_list(self):
        parameters = ["name", 1, 2.5, vantorPM.vector3(1, 2, 3)] * 5000
        self.assertIs(type(self.scene.newObject("x", parameters)), int)
        self.assert_unsupported(20000, self.scene.newObject, "x", parameters + [None])


class TransformBlockTest(SceneTestCase):
    def test_transform_begin_takes_a_transform_and_returns_none(self):
        transform = samples.transform()
        before = repr(transform)
        self.assertIsNone(self.scene.transformBegin(transform))
        self.assertEqual(repr(transform), before)
        transform.zero()
        self.assertIsNone(self.scene.transformEnd())

    def test_transform_begin_takes_exactly_a_transform(self):
        for name, value in samples.one_of_each().items():
            if name != "transform":
                with self.subTest(name):
                    self.assert_fails(
                        TypeError,
                        "must be transform, not " + name,
                        self.scene.transformBegin,
                        value,
                    )
        for value in [None, 1, "x", []]:
            self.assert_fails(
                TypeError, "must be transform, not ", self.scene.transformBegin, value
            )

    def test_transform_begin_takes_exactly_one_argument(self):
        transform = vantorPM.transform()
        for arguments in [
            (),
            (transform, 1),
            (transform, transform),
            ((transform, 1),),
            ((transform,),),
        ]:
            with self.subTest(arguments):
                self.assert_fails(TypeError, None, self.scene.transformBegin, *arguments)

    def test_transform_end_ignores_its_arguments(self):
        for arguments in [(), (1,), (1, 2), (vantorPM.transform(),)]:
            with self.subTest(arguments):
                self.assertIsNone(self.scene.transformEnd(*arguments))

    def test_transform_end_without_a_begin_is_not_checked_by_the_module(self):
        for _ in range(3):
            self.assertIsNone(self.scene.transformEnd())


class RenderTest(SceneTestCase):
    def test_render_takes_three_integers_and_up_to_four_numbers(self):
        for arguments in [
            (1, 1, 1),
            (1, 1, 1, 0.0),
            (1, 1, 1, 0, 0),
            (1, 1, 1, 0, 0, 1),
            (1, 1, 1, 0.0, 0.0, 1.0, 1.0),
            (1.9, True, 1, False),
            ((1, 1, 1),),
            ((1, 1, 1, 0.5),),
        ]:
            with self.subTest(arguments):
                self.assertIsNone(self.scene.render(*arguments))

    def test_render_needs_three_to_seven_arguments(self):
        for arguments, bound, count in [
            ((), "at least 3", 0),
            ((1,), "at least 3", 1),
            ((1, 2), "at least 3", 2),
            (((1, 2),), "at least 3", 2),
            (([1, 1, 1],), "at least 3", 1),
            ((1, 1, 1, 0, 0, 1, 1, 1), "at most 7", 8),
        ]:
            with self.subTest(arguments):
                self.assert_fails(
                    TypeError,
                    "{} arguments \\({} given\\)".format(bound, count),
                    self.scene.render,
                    *arguments,
                )

    def test_render_refuses_arguments_of_the_wrong_kind(self):
        good = [1, 1, 1, 0.0, 0.0, 1.0, 1.0]
        for place in range(7):
            for wrong in [None, "1", b"1", 1j, [], (), self.scene]:
                with self.subTest(place=place, wrong=wrong):
                    arguments = list(good)
                    arguments[place] = wrong
                    self.assert_fails(TypeError, None, self.scene.render, *arguments)

    def test_render_refuses_integers_beyond_32_bits(self):
        for place in range(3):
            for number in [2**31, -(2**31) - 1, 2**32 + 1, 2**64]:
                with self.subTest(place=place, number=number):
                    arguments = [1, 1, 1]
                    arguments[place] = number
                    self.assert_message(OverflowError, TOO_LARGE, self.scene.render, *arguments)
            for number, kind in [
                (math.nan, ValueError),
                (math.inf, OverflowError),
                (3e9, OverflowError),
            ]:
                arguments = [1, 1, 1]
                arguments[place] = number
                self.assert_fails(kind, None, self.scene.render, *arguments)

    def test_render_refuses_a_number_too_large_for_a_double(self):
        for place in range(4):
            arguments = [1, 1, 1, 0.0, 0.0, 1.0, 1.0]
            arguments[3 + place] = 10**400
            self.assert_fails(OverflowError, None, self.scene.render, *arguments)

    def test_nothing_is_written_by_an_empty_scene(self):
        self.scene.radiosity()
        self.scene.render(2, 2, 1)
        self.assertEqual(os.listdir("."), [])


if __name__ == "__main__":
    unittest.main()
