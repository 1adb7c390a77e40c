"""What reaches the renderer: every call, in order, with its values, from making to destruction.

The module runs against the recording libVantor.so, the same binary that runs with the embedded one.
"""

import os
import re
import signal
import struct
import unittest
from textwrap import dedent

import names
import recording
from recording import record, run

# An empty list, one list element: what surrounds an operation.
EMPTY_LIST = ["#2 = VtArgList(0, 0)", "~VtArgList #2"]


def with_operations(methods):
    return [(method, names.operation(method)) for method in methods]


CREATION_WITH_LIST = with_operations(names.CREATION)
WITH_ID = with_operations(names.WITH_ID)
WITHOUT_ARGUMENTS = with_operations(names.WITHOUT_ARGUMENTS)

IDENTITY = (
    "[[1.0, 0.0, 0.0, 0.0], [0.0, 1.0, 0.0, 0.0]," " [0.0, 0.0, 1.0, 0.0], [0.0, 0.0, 0.0, 1.0]]"
)


def setUpModule():
    recording.build_folder()


class RendererCalls(unittest.TestCase):
    maxDiff = None

    def assert_calls(self, script, *expected, **variables):
        """The script ends well and these are all its calls."""
        self.assertEqual(record(script, **variables).lines(), list(expected))

    def assert_scene_calls(self, script, *expected, **variables):
        """The script uses the scene `s`; these are its calls between the scene's own two."""
        self.assert_calls(
            "s = vantorPM.scene()\n" + dedent(script),
            "#1 = VtLocalSceneProxy(10240)",
            *expected,
            "~VtLocalSceneProxy #1",
            **variables
        )


class LibraryTest(RendererCalls):
    SCRIPT = """
        with open("/proc/self/maps") as maps:
            for path in sorted({row.split()[-1] for row in maps if "antor" in row}):
                print(path)
        """

    def loaded(self, library):
        return [os.path.realpath(path) for path in run(self.SCRIPT, library).output.split()]

    def test_the_same_module_loads_either_library(self):
        folder = os.path.realpath(recording.build_folder())
        embedded = self.loaded(None)
        recorded = self.loaded("recording")
        self.assertIn(os.path.join(folder, "python", "libVantor.so"), embedded)
        self.assertIn(os.path.join(folder, "recording", "libVantor.so"), recorded)
        self.assertEqual(
            [path for path in embedded if "libVantor" not in path],
            [path for path in recorded if "libVantor" not in path],
        )
        self.assertEqual(len(embedded), 2)
        self.assertEqual(len(recorded), 2)


class AnotherRendererTest(unittest.TestCase):
    """The example of docs/another-renderer.md: a library that counts and prints."""

    FOLDER = os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples", "another_renderer"
    )
    OUTPUT = """\
Render 320 x 240, 16 samples
     1 AddObject
     1 ImagerBegin
     1 LightOn
     1 NewCamera
     1 NewImager
     1 NewLight
     1 NewObject
     1 TransformBegin
     1 TransformEnd
     5 points of objects
"""

    def test_the_script_runs_with_the_library(self):
        with open(os.path.join(self.FOLDER, "pyramid.py")) as script:
            finished = run(script.read(), "another_renderer")
        self.assertEqual((finished.code, finished.errors), (0, ""))
        self.assertEqual(finished.output, self.OUTPUT)

    def test_the_page_shows_this_output(self):
        with open(os.path.join(self.FOLDER, "..", "..", "docs", "another-renderer.md")) as page:
            self.assertIn(self.OUTPUT, page.read())


class SceneTest(RendererCalls):
    def test_the_proxy_is_made_with_10240(self):
        self.assert_calls(
            "vantorPM.scene()", "#1 = VtLocalSceneProxy(10240)", "~VtLocalSceneProxy #1"
        )

    def test_the_proxy_is_made_with_the_number_given(self):
        for number in (1, 0, -1, 2147483647, -2147483648):
            with self.subTest(number=number):
                self.assert_calls(
                    "vantorPM.scene({})".format(number),
                    "#1 = VtLocalSceneProxy({})".format(number),
                    "~VtLocalSceneProxy #1",
                )

    def test_a_refused_number_makes_no_proxy(self):
        for argument in ("'1'", "2147483648", "1, 2", "None", "float('nan')"):
            with self.subTest(argument=argument):
                self.assert_calls(
                    """
                    try:
                        vantorPM.scene({})
                    except (TypeError, ValueError, OverflowError):
                        pass
                    else:
                        raise AssertionError("accepted")
                    """.format(
                        argument
                    )
                )

    def test_the_proxy_is_destroyed_when_the_scene_is_released(self):
        self.assert_calls(
            """
            s = vantorPM.scene()
            same = s
            del s
            same.lightBegin()
            del same
            vantorPM.BezierBasis()
            """,
            "#1 = VtLocalSceneProxy(10240)",
            "#1.LightBegin()",
            "~VtLocalSceneProxy #1",
            "VtBezierBasis()",
        )

    def test_the_proxy_is_destroyed_once_when_the_interpreter_ends(self):
        self.assert_calls(
            "s = vantorPM.scene()\ns.lightBegin()",
            "#1 = VtLocalSceneProxy(10240)",
            "#1.LightBegin()",
            "~VtLocalSceneProxy #1",
        )

    def test_every_scene_has_a_proxy_of_its_own(self):
        self.assert_calls(
            """
            a = vantorPM.scene(1)
            b = vantorPM.scene(2)
            b.lightBegin()
            a.lightEnd()
            del a
            b.radiosity()
            del b
            """,
            "#1 = VtLocalSceneProxy(1)",
            "#2 = VtLocalSceneProxy(2)",
            "#2.LightBegin()",
            "#1.LightEnd()",
            "~VtLocalSceneProxy #1",
            "#2.Radiosity()",
            "~VtLocalSceneProxy #2",
        )

    def test_looking_at_a_scene_calls_nothing(self):
        self.assert_scene_calls(
            """
            repr(s), str(s), s == 1, hash(s), s.newCamera, dir(s)
            try:
                s.newCameras
            except AttributeError:
                pass
            """
        )


class OperationTest(RendererCalls):
    def test_every_creation_method_reaches_its_operation(self):
        for method, operation in CREATION_WITH_LIST:
            with self.subTest(method=method):
                self.assert_scene_calls(
                    "assert s.{}('a type', [7]) == 1".format(method),
                    "#2 = VtArgList(0, 0)",
                    "#3 = VtArgType(Long, 7)",
                    "#2.Add(#3)",
                    "~VtArgType #3",
                    "#1.{}('a type', #2) -> 1".format(operation),
                    "~VtArgList #2",
                )

    def test_none_is_a_null_type_and_an_empty_list_is_still_a_list(self):
        for method, operation in CREATION_WITH_LIST:
            with self.subTest(method=method):
                self.assert_scene_calls(
                    "s.{}(None, [])".format(method),
                    EMPTY_LIST[0],
                    "#1.{}(None, #2) -> 1".format(operation),
                    EMPTY_LIST[1],
                )

    def test_new_texture_takes_a_type_and_no_list(self):
        self.assert_scene_calls(
            """
            assert s.newTexture('checker') == 1
            assert s.newTexture(None) == 2
            assert s.newTexture('') == 3
            """,
            "#1.NewTexture('checker') -> 1",
            "#1.NewTexture(None) -> 2",
            "#1.NewTexture('') -> 3",
        )

    def test_every_method_with_an_id_reaches_its_operation(self):
        for method, operation in WITH_ID:
            with self.subTest(method=method):
                self.assert_scene_calls(
                    "assert s.{}(5) is None".format(method), "#1.{}(5)".format(operation)
                )

    def test_ids_are_passed_unchanged(self):
        for method, operation in WITH_ID:
            with self.subTest(method=method):
                self.assert_scene_calls(
                    "for i in (0, -1, 2147483647, -2147483648, 2.7, -2.7): s.{}(i)".format(method),
                    *[
                        "#1.{}({})".format(operation, i)
                        for i in (0, -1, 2147483647, -2147483648, 2, -2)
                    ]
                )

    def test_every_method_without_arguments_reaches_its_operation_whatever_it_is_given(self):
        for method, operation in WITHOUT_ARGUMENTS:
            with self.subTest(method=method):
                self.assert_scene_calls(
                    """
                    assert s.{0}() is None
                    assert s.{0}(5) is None
                    assert s.{0}(1, 2) is None
                    """.format(
                        method
                    ),
                    *["#1.{}()".format(operation)] * 3
                )

    def test_render_has_four_defaults(self):
        self.assert_scene_calls(
            """
            assert s.render(640, 480, 1) is None
            s.render(1, 2, 3, 0.25)
            s.render(1, 2, 3, 0.25, 0.5)
            s.render(1, 2, 3, 0.25, 0.5, 0.75)
            s.render(1, 2, 3, 0.25, 0.5, 0.75, 0.875)
            """,
            "#1.Render(640, 480, 1, 0.0, 0.0, 1.0, 1.0)",
            "#1.Render(1, 2, 3, 0.25, 0.0, 1.0, 1.0)",
            "#1.Render(1, 2, 3, 0.25, 0.5, 1.0, 1.0)",
            "#1.Render(1, 2, 3, 0.25, 0.5, 0.75, 1.0)",
            "#1.Render(1, 2, 3, 0.25, 0.5, 0.75, 0.875)",
        )

    def test_render_gives_its_numbers_no_meaning(self):
        self.assert_scene_calls(
            """
            s.render(-1, 0, 2147483647, 5, -3, float('inf'), -0.0)
            s.render(-2147483648, 2.9, -2.9, float('nan'))
            """,
            "#1.Render(-1, 0, 2147483647, 5.0, -3.0, inf, -0.0)",
            "#1.Render(-2147483648, 2, -2, nan, 0.0, 1.0, 1.0)",
        )

    def test_the_ids_of_the_renderer_come_back_unchanged(self):
        for number in (0, 5, -1, 2147483647, -2147483648):
            with self.subTest(id=number):
                finished = record(
                    """
                    s = vantorPM.scene()
                    print(s.newCamera('a', []), s.newTexture('b'), s.newTrimmer(None, [1]))
                    """,
                    VANTOR_RECORD_ID=str(number),
                )
                self.assertEqual(finished.output, "{0} {0} {0}\n".format(number))

    def test_an_id_may_come_back_as_a_parameter_and_to_begin(self):
        self.assert_scene_calls(
            """
            m = s.newMaterial('m', [])
            o = s.newObject('o', ['material', m])
            s.materialBegin(m)
            s.addObject(o)
            s.materialEnd()
            """,
            "#2 = VtArgList(0, 0)",
            "#1.NewMaterial('m', #2) -> 1",
            "~VtArgList #2",
            "#3 = VtArgList(0, 0)",
            "#4 = VtArgType(Text, 'material')",
            "#3.Add(#4)",
            "~VtArgType #4",
            "#5 = VtArgType(Long, 1)",
            "#3.Add(#5)",
            "~VtArgType #5",
            "#1.NewObject('o', #3) -> 2",
            "~VtArgList #3",
            "#1.MaterialBegin(1)",
            "#1.AddObject(2)",
            "#1.MaterialEnd()",
        )

    def test_types_are_utf8(self):
        self.assert_scene_calls(
            "s.newTexture('stra\\u00dfe \\U0001f308 \"\\\\\\n')",
            "#1.NewTexture('straße 🌈 \"\\\\\\n') -> 1",
        )

    def test_refused_arguments_call_nothing(self):
        refused = [
            "{}({})".format(method, arguments)
            for method, _ in CREATION_WITH_LIST
            for arguments in (
                "",
                "'x'",
                "'x', (1, 2)",
                "'x', [], 1",
                "1, []",
                "'x', None",
                "'x\\0y', []",
                "type=None",
            )
        ]
        refused += [
            "newTexture({})".format(arguments)
            for arguments in ("", "'x', []", "1", "[]", "'x\\0y'")
        ]
        refused += [
            "{}({})".format(method, arguments)
            for method, _ in WITH_ID
            for arguments in ("", "1, 2", "'1'", "None", "2147483648", "float('nan')")
        ]
        refused += [
            "transformBegin({})".format(arguments)
            for arguments in (
                "",
                "1",
                "None",
                "vantorPM.matrix4array().setSize(1)[0]",
                "vantorPM.transform(), 1",
            )
        ]
        refused += [
            "render({})".format(arguments)
            for arguments in (
                "",
                "1, 2",
                "1, 2, '3'",
                "1, 2, 3, 4, 5, 6, 7, 8",
                "1, 2, 3, 'x'",
                "1, 2, 2147483648",
            )
        ]
        script = """
            for text in {!r}:
                try:
                    eval("s." + text)
                except (TypeError, ValueError, OverflowError):
                    pass
                else:
                    raise AssertionError(text + " was accepted")
            """.format(
            refused
        )
        self.assert_scene_calls(script)


class ParameterTest(RendererCalls):
    """Each element: a value made, added, destroyed; then one call; then the list goes."""

    def assert_parameter(self, expression, expected):
        self.assert_scene_calls(
            "s.newObject('o', [{}])".format(expression),
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType({})".format(expected),
            "#2.Add(#3)",
            "~VtArgType #3",
            "#1.NewObject('o', #2) -> 1",
            "~VtArgList #2",
        )

    def test_elements_come_in_list_order(self):
        self.assert_scene_calls(
            "s.newLight('point', ['a', 1.5, 'b', 3])",
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType(Text, 'a')",
            "#2.Add(#3)",
            "~VtArgType #3",
            "#4 = VtArgType(Double, 1.5)",
            "#2.Add(#4)",
            "~VtArgType #4",
            "#5 = VtArgType(Text, 'b')",
            "#2.Add(#5)",
            "~VtArgType #5",
            "#6 = VtArgType(Long, 3)",
            "#2.Add(#6)",
            "~VtArgType #6",
            "#1.NewLight('point', #2) -> 1",
            "~VtArgList #2",
        )

    def test_every_kind_of_parameter(self):
        kinds = [
            ("12", "Long, 12"),
            ("0.1", "Double, 0.1"),
            ("'radius'", "Text, 'radius'"),
            ("v.vector2(1, 2)", "Vector2, [1.0, 2.0]"),
            ("v.vector3(1, 2, 3)", "Vector3, [1.0, 2.0, 3.0]"),
            ("v.vector4(1, 2, 3, 4)", "Vector4, [1.0, 2.0, 3.0, 4.0]"),
            ("m2", "Matrix2, [[1.0, 2.0], [3.0, 4.0]]"),
            ("m3", "Matrix3, [[1.0, 2.0, 3.0], [4.0, 5.0, 6.0], [7.0, 8.0, 9.0]]"),
            (
                "m4",
                "Matrix4, [[1.0, 2.0, 3.0, 4.0], [5.0, 6.0, 7.0, 8.0], [9.0, 10.0, 11.0, 12.0],"
                " [13.0, 14.0, 15.0, 16.0]]",
            ),
            (
                "v.transform()",
                "Transform, [[0.0, 0.0, 0.0, 0.0], [0.0, 0.0, 0.0, 0.0],"
                " [0.0, 0.0, 0.0, 0.0], [0.0, 0.0, 0.0, 0.0]]",
            ),
            ("v.intarray().add(1).add(-2)", "LongArray, [1, -2]"),
            ("v.floatarray().add(0.1).add(2)", "DoubleArray, [0.1, 2.0]"),
            (
                "v.vector2array().add(v.vector2(1, 2)).add(v.vector2(3, 4))",
                "Vector2Array, [[1.0, 2.0], [3.0, 4.0]]",
            ),
            ("v.vector3array().add(v.vector3(1, 2, 3))", "Vector3Array, [[1.0, 2.0, 3.0]]"),
            ("v.vector4array().add(v.vector4(1, 2, 3, 4))", "Vector4Array, [[1.0, 2.0, 3.0, 4.0]]"),
            (
                "v.matrix2array().add(m2).add(m2)",
                "Matrix2Array, [[[1.0, 2.0], [3.0, 4.0]], [[1.0, 2.0], [3.0, 4.0]]]",
            ),
            (
                "v.matrix3array().add(m3)",
                "Matrix3Array, [[[1.0, 2.0, 3.0], [4.0, 5.0, 6.0], [7.0, 8.0, 9.0]]]",
            ),
            (
                "v.matrix4array().add(m4)",
                "Matrix4Array, [[[1.0, 2.0, 3.0, 4.0], [5.0, 6.0, 7.0, 8.0],"
                " [9.0, 10.0, 11.0, 12.0], [13.0, 14.0, 15.0, 16.0]]]",
            ),
            (
                "v.transformarray().setSize(1)",
                "TransformArray, [[[0.0, 0.0, 0.0, 0.0], [0.0, 0.0, 0.0, 0.0],"
                " [0.0, 0.0, 0.0, 0.0], [0.0, 0.0, 0.0, 0.0]]]",
            ),
        ]
        made = """
            v = vantorPM
            m2 = v.matrix2(v.vector2(1, 2), v.vector2(3, 4))
            m3 = v.matrix3(v.vector3(1, 2, 3), v.vector3(4, 5, 6), v.vector3(7, 8, 9))
            m4 = v.matrix4(v.vector4(1, 2, 3, 4), v.vector4(5, 6, 7, 8), v.vector4(9, 10, 11, 12),
                           v.vector4(13, 14, 15, 16))
            s = v.scene()
            s.newObject('all', [{}])
            """.format(
            ", ".join(expression for expression, _ in kinds)
        )
        expected = ["#1 = VtLocalSceneProxy(10240)", "#2 = VtArgList(0, 0)"]
        for number, (_, value) in enumerate(kinds, 3):
            expected += [
                "#{} = VtArgType({})".format(number, value),
                "#2.Add(#{})".format(number),
                "~VtArgType #{}".format(number),
            ]
        expected += ["#1.NewObject('all', #2) -> 1", "~VtArgList #2", "~VtLocalSceneProxy #1"]

        finished = record(made)

        self.assertEqual(finished.lines(), expected)
        self.assertEqual(finished.named("NewObject")[0]["count"], 19)

    def test_integers_keep_their_value(self):
        for number in (0, -1, 2147483647, -2147483648, 1073741824, -1073741825):
            with self.subTest(number=number):
                self.assert_parameter(str(number), "Long, {}".format(number))

    def test_reals_keep_every_bit(self):
        numbers = [
            0.1,
            -0.0,
            1e300,
            5e-324,
            1.7976931348623157e308,
            2.2250738585072011e-308,
            float("inf"),
            float("-inf"),
            1 / 3,
        ]
        finished = record(
            """
            vantorPM.scene().newObject(None, [float.fromhex(x) for x in {!r}])
            """.format(
                [number.hex() for number in numbers]
            )
        )
        self.assertEqual(
            [call["value"].hex() for call in finished.named("VtArgType")],
            [number.hex() for number in numbers],
        )

    def test_a_nan_stays_a_nan(self):
        self.assert_parameter("float('nan')", "Double, nan")

    def test_texts_are_utf8(self):
        self.assert_parameter("''", "Text, ''")
        self.assert_parameter("'stra\\u00dfe \\U0001f308'", "Text, 'straße 🌈'")

    def test_a_text_is_the_strings_own(self):
        finished = record(
            """
            s = vantorPM.scene()
            ascii, other = 'some text ' * 3, 'stra\\u00dfe'
            import sys
            print(id(ascii), sys.getsizeof(ascii))
            s.newObject(None, [ascii, other])
            s.newObject(None, [other, ascii])
            """
        )
        ascii_, other, other_again, ascii_again = [
            call["address"] for call in finished.named("VtArgType")
        ]
        self.assertEqual((ascii_, other), (ascii_again, other_again))
        begin, size = map(int, finished.output.split())
        self.assertTrue(begin < ascii_ < begin + size)

    def test_values_are_copies(self):
        self.assert_scene_calls(
            """
            v = vantorPM.vector3(1, 2, 3)
            m = vantorPM.matrix2(vantorPM.vector2(1, 2), vantorPM.vector2(3, 4))
            s.newObject('before', [v, m])
            v.set(1, 9)
            m.set(0, vantorPM.vector2(5, 6))
            s.newObject('after', [v, m])
            """,
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType(Vector3, [1.0, 2.0, 3.0])",
            "#2.Add(#3)",
            "~VtArgType #3",
            "#4 = VtArgType(Matrix2, [[1.0, 2.0], [3.0, 4.0]])",
            "#2.Add(#4)",
            "~VtArgType #4",
            "#1.NewObject('before', #2) -> 1",
            "~VtArgList #2",
            "#5 = VtArgList(0, 0)",
            "#6 = VtArgType(Vector3, [1.0, 9.0, 3.0])",
            "#5.Add(#6)",
            "~VtArgType #6",
            "#7 = VtArgType(Matrix2, [[5.0, 6.0], [3.0, 4.0]])",
            "#5.Add(#7)",
            "~VtArgType #7",
            "#1.NewObject('after', #5) -> 2",
            "~VtArgList #5",
        )

    def test_an_array_is_the_objects_own_container_whatever_its_size(self):
        for name in names.ARRAYS:
            with self.subTest(name=name):
                finished = record(
                    """
                    s = vantorPM.scene()
                    a, other = vantorPM.{0}(), vantorPM.{0}()
                    s.newObject(None, [a, other])
                    a.setSize(3)
                    s.newObject(None, [a])
                    a.setSize(5000)
                    s.newObject(None, [a, a])
                    """.format(
                        name
                    )
                )
                arrays = finished.named("VtArgType")
                self.assertEqual([call["size"] for call in arrays], [0, 0, 3, 5000, 5000])
                own = arrays[0]["address"]
                self.assertEqual(
                    [call["address"] == own for call in arrays], [True, False, True, True, True]
                )

    def test_an_array_is_read_as_it_is_at_the_time_of_the_call(self):
        finished = record(
            """
            s = vantorPM.scene()
            a = vantorPM.intarray().add(1).add(2).add(3)
            s.newObject(None, [a])
            a[1] = 7
            a.setSize(2)
            s.newObject(None, [a])
            a.setSize(-1)
            s.newObject(None, [a])
            """
        )
        self.assertEqual(
            [(call["size"], call["value"]) for call in finished.named("VtArgType")],
            [(3, [1, 2, 3]), (2, [1, 7]), (-1, [])],
        )

    def test_a_large_array_arrives_whole(self):
        finished = record(
            """
            a = vantorPM.floatarray()
            for i in range(1000):
                a.add(i / 7)
            vantorPM.scene().newObject(None, [a])
            """
        )
        checksum = 0xCBF29CE484222325
        for byte in struct.pack("1000d", *[i / 7 for i in range(1000)]):
            checksum = (checksum ^ byte) * 0x100000001B3 % 2**64
        (call,) = finished.named("VtArgType")
        self.assertEqual((call["size"], call["checksum"]), (1000, checksum))

    def test_the_same_object_may_stand_twice(self):
        self.assert_scene_calls(
            "v = vantorPM.vector2(1, 2)\ns.newObject(None, [v, v])",
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType(Vector2, [1.0, 2.0])",
            "#2.Add(#3)",
            "~VtArgType #3",
            "#4 = VtArgType(Vector2, [1.0, 2.0])",
            "#2.Add(#4)",
            "~VtArgType #4",
            "#1.NewObject(None, #2) -> 1",
            "~VtArgList #2",
        )

    def test_a_long_list(self):
        finished = record("vantorPM.scene().newObject('o', list(range(2000)))")
        self.assertEqual([call["value"] for call in finished.named("VtArgType")], list(range(2000)))
        self.assertEqual(finished.named("NewObject")[0]["count"], 2000)
        self.assertEqual(len(finished.named("~VtArgType")), 2000)

    def test_a_list_is_left_as_it_was(self):
        self.assert_scene_calls(
            "l = []\ns.newObject(None, l)\nassert l == []",
            EMPTY_LIST[0],
            "#1.NewObject(None, #2) -> 1",
            EMPTY_LIST[1],
        )


class FailedConversionTest(RendererCalls):
    """No operation is called; what was added before the failing element goes with the list."""

    ATTEMPT = """
        try:
            s.{}('x', {})
        except {} as error:
            print(error)
        else:
            raise AssertionError("accepted")
        """

    def assert_failure(self, method, elements, error, text, *expected):
        attempt = self.ATTEMPT.format(method, elements, error)
        finished = record("s = vantorPM.scene()\n" + dedent(attempt))
        self.assertEqual(
            finished.lines(), ["#1 = VtLocalSceneProxy(10240)", *expected, "~VtLocalSceneProxy #1"]
        )
        self.assertIn(text, finished.output)

    def test_the_values_before_the_failing_one_were_added(self):
        for method, _ in CREATION_WITH_LIST:
            with self.subTest(method=method):
                self.assert_failure(
                    method,
                    "[1, 'a', None, 2]",
                    "SystemError",
                    "unsupported parameter type at 2 in the parameter list",
                    "#2 = VtArgList(0, 0)",
                    "#3 = VtArgType(Long, 1)",
                    "#2.Add(#3)",
                    "~VtArgType #3",
                    "#4 = VtArgType(Text, 'a')",
                    "#2.Add(#4)",
                    "~VtArgType #4",
                    "~VtArgList #2",
                )

    def test_the_first_element_fails(self):
        for element in (
            "None",
            "(1,)",
            "[]",
            "{}",
            "True",
            "b'x'",
            "1j",
            "2147483648",
            "-2147483649",
            "10**30",
            "s",
            "vantorPM",
            "type('I', (int,), {})(1)",
            "type('F', (float,), {})(1)",
            "type('S', (str,), {})('x')",
        ):
            with self.subTest(element=element):
                self.assert_failure(
                    "newObject",
                    "[" + element + "]",
                    "SystemError",
                    "unsupported parameter type at 0 in the parameter list",
                    *EMPTY_LIST
                )

    def test_text_that_has_no_utf8_or_a_null_character(self):
        self.assert_failure(
            "newObject", "['\\ud800']", "UnicodeEncodeError", "surrogates", *EMPTY_LIST
        )
        self.assert_failure(
            "newObject", "['a\\0b']", "ValueError", "embedded null character", *EMPTY_LIST
        )

    def test_the_scene_works_on(self):
        self.assert_scene_calls(
            """
            try:
                s.newObject('o', [None])
            except SystemError:
                pass
            s.newObject('o', [])
            """,
            "#2 = VtArgList(0, 0)",
            "~VtArgList #2",
            "#3 = VtArgList(0, 0)",
            "#1.NewObject('o', #3) -> 1",
            "~VtArgList #3",
        )


class TransformTest(RendererCalls):
    def test_every_operation_gets_its_arguments_in_order(self):
        operations = [
            ("zero()", "Zero()"),
            ("identity()", "Identity()"),
            ("scaling(a)", "Scaling([1.0, 2.0, 3.0])"),
            ("translation(a)", "Translation([1.0, 2.0, 3.0])"),
            ("alignmentToZ(a)", "AlignmentToZ([1.0, 2.0, 3.0])"),
            ("alignmentTo(a, b)", "AlignmentTo([1.0, 2.0, 3.0], [4.0, 5.0, 6.0])"),
            ("alignmentTo(b, a)", "AlignmentTo([4.0, 5.0, 6.0], [1.0, 2.0, 3.0])"),
            ("rotationAroundX(30)", "RotationAroundX(30.0)"),
            ("rotationAroundY(-0.5)", "RotationAroundY(-0.5)"),
            ("rotationAroundZ(float('inf'))", "RotationAroundZ(inf)"),
            (
                "rotationAroundAxis(a, b, 30)",
                "RotationAroundAxis([1.0, 2.0, 3.0], [4.0, 5.0, 6.0], 30.0)",
            ),
            (
                "rotationAroundAxis(b, a, -1.5)",
                "RotationAroundAxis([4.0, 5.0, 6.0], [1.0, 2.0, 3.0], -1.5)",
            ),
            ("reflectionOnXY()", "ReflectionOnXY()"),
        ]
        for method, operation in operations:
            with self.subTest(method=method):
                self.assert_calls(
                    """
                    a, b = vantorPM.vector3(1, 2, 3), vantorPM.vector3(4, 5, 6)
                    t = vantorPM.transform()
                    assert t.{} is t
                    """.format(
                        method
                    ),
                    operation,
                )

    def test_operations_that_take_nothing_ignore_what_they_are_given(self):
        self.assert_calls(
            "vantorPM.transform(1, 2).zero(1).identity((2, 3)).reflectionOnXY(None, 4)",
            "Zero()",
            "Identity()",
            "ReflectionOnXY()",
        )

    def test_the_operations_set_the_objects_own_value(self):
        finished = record(
            """
            t, other = vantorPM.transform(), vantorPM.transform()
            t.identity().rotationAroundX(30).scaling(vantorPM.vector3(1, 2, 3))
            other.identity()
            print(t)
            """
        )
        first, second, third, other = [call["address"] for call in finished.calls]
        self.assertEqual([first, second, third], [first] * 3)
        self.assertNotEqual(other, first)
        self.assertEqual(
            finished.output, "transform( (1, 0, 0, 0), (0, 2, 0, 0), (0, 0, 3, 0), (0, 0, 0, 1) )\n"
        )

    def test_everything_else_is_the_modules_own(self):
        self.assert_calls(
            """
            t = vantorPM.transform()
            t.get(0), t.matrix(), t.compose(t), t.invert(), repr(t)
            vantorPM.compose(t, t), vantorPM.invert(t)
            vantorPM.transformarray().add(t).get(0)
            """
        )

    def test_refused_arguments_call_nothing(self):
        self.assert_calls(
            """
            t = vantorPM.transform()
            v3, v4 = vantorPM.vector3(1, 2, 3), vantorPM.vector4(1, 2, 3, 4)
            for method, arguments in (
                ('scaling', (v4,)), ('scaling', ()), ('translation', (v3, v3)),
                ('alignmentToZ', (1,)), ('alignmentTo', (v3,)), ('alignmentTo', (v3, v4)),
                ('rotationAroundX', ('30',)), ('rotationAroundY', ()), ('rotationAroundZ', (1, 2)),
                ('rotationAroundAxis', (v3, v3)), ('rotationAroundAxis', (v3, 1, v3)),
            ):
                try:
                    getattr(t, method)(*arguments)
                except TypeError:
                    pass
                else:
                    raise AssertionError(method)
            """
        )

    def test_transform_begin_passes_a_copy(self):
        finished = record(
            """
            s = vantorPM.scene()
            t = vantorPM.transform().identity()
            assert s.transformBegin(t) is None
            t.zero()
            s.transformBegin(t)
            s.transformEnd()
            """
        )
        self.assertEqual(
            finished.lines(),
            [
                "#1 = VtLocalSceneProxy(10240)",
                "Identity()",
                "#1.TransformBegin({})".format(IDENTITY),
                "Zero()",
                "#1.TransformBegin({})".format(IDENTITY.replace("1.0", "0.0")),
                "#1.TransformEnd()",
                "~VtLocalSceneProxy #1",
            ],
        )
        own = finished.named("VtTransform::Identity")[0]["address"]
        self.assertNotIn(own, [call["address"] for call in finished.named("TransformBegin")])


class SplineTest(RendererCalls):
    def test_each_basis_asks_the_library_once_for_each_call(self):
        for function in names.BASES:
            with self.subTest(function=function):
                self.assert_calls(
                    "vantorPM.{0}()\nvantorPM.{0}(1, 2)".format(function),
                    *["Vt{}()".format(function)] * 2
                )

    def test_the_steps_ask_nobody(self):
        self.assert_calls(
            """
            assert [f() for f in (vantorPM.BezierStep, vantorPM.BSplineStep,
                                  vantorPM.CatmullRomStep, vantorPM.HermiteStep)] == [3, 1, 1, 2]
            """
        )

    def test_a_basis_arrives_row_by_row(self):
        finished = record("print(vantorPM.BezierBasis())")
        self.assertEqual(
            finished.output,
            "matrix4( (-1, 3, -3, 1), (3, -6, 3, 0), (-3, 3, 0, 0), (1, 0, 0, 0) )\n",
        )


class NativeExceptionTest(RendererCalls):
    """The library's exceptions pass: the module's temporaries go, and nothing is converted."""

    CALL = dedent(
        """
        from vantor_probe import call_catching

        def call(function, *arguments):
            os.environ["VANTOR_RECORD_THROW"] = {!r}
            print(call_catching(function, *arguments))
            del os.environ["VANTOR_RECORD_THROW"]
        """
    )

    def thrown(self, throw, script, times=1):
        """A script in which `call` makes a call under the fault and prints what came of it."""
        finished = record(self.CALL.format(throw) + dedent(script))
        self.assertEqual(finished.output, (re.sub(r":\d+$", "", throw) + " throws\n") * times)
        return finished

    def assert_thrown(self, throw, script, *expected):
        """The fault arrives uncaught, and these are all the script's calls."""
        self.assertEqual(self.thrown(throw, script).lines(), list(expected))

    def test_from_a_value(self):
        self.assert_thrown(
            "VtArgType:2",
            "s = vantorPM.scene()\ncall(s.newLight, 'x', [1, 2.5, 3])",
            "#1 = VtLocalSceneProxy(10240)",
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType(Long, 1)",
            "#2.Add(#3)",
            "~VtArgType #3",
            "#4 = VtArgType(Double, 2.5) throws",
            "~VtArgList #2",
            "~VtLocalSceneProxy #1",
        )

    def test_from_a_value_of_every_kind(self):
        elements = ["1", "1.5", "'text'", "'stra\\u00dfe'"]
        arrays = ["vantorPM.{}()".format(name) for name in names.ARRAYS]
        elements += arrays + [array + ".setSize(1)[0]" for array in arrays]
        script = """
            s = vantorPM.scene()
            for element in [{}]:
                call(s.newLight, 'x', [element])
            """.format(
            ", ".join(elements)
        )
        for throw, between in (
            ("VtArgType", ["VtArgType"]),
            ("VtArgList::Add", ["VtArgType", "VtArgList::Add", "~VtArgType"]),
        ):
            with self.subTest(throw=throw):
                calls = self.thrown(throw, script, times=len(elements)).calls[1:-1]
                self.assertEqual(
                    [call["call"] for call in calls],
                    ["VtArgList", *between, "~VtArgList"] * len(elements),
                )

    def test_from_adding(self):
        self.assert_thrown(
            "VtArgList::Add:2",
            "s = vantorPM.scene()\ncall(s.newLight, 'x', [1, 2.5, 3])",
            "#1 = VtLocalSceneProxy(10240)",
            "#2 = VtArgList(0, 0)",
            "#3 = VtArgType(Long, 1)",
            "#2.Add(#3)",
            "~VtArgType #3",
            "#4 = VtArgType(Double, 2.5)",
            "#2.Add(#4) throws",
            "~VtArgType #4",
            "~VtArgList #2",
            "~VtLocalSceneProxy #1",
        )

    def test_from_making_the_list(self):
        self.assert_thrown(
            "VtArgList",
            "s = vantorPM.scene()\ncall(s.newLight, 'x', [1])",
            "#1 = VtLocalSceneProxy(10240)",
            "#2 = VtArgList(0, 0) throws",
            "~VtLocalSceneProxy #1",
        )

    def test_from_every_creation_call(self):
        for method, operation in CREATION_WITH_LIST:
            with self.subTest(method=method):
                self.assert_thrown(
                    operation,
                    "s = vantorPM.scene()\ncall(s.{}, 'x', [1])".format(method),
                    "#1 = VtLocalSceneProxy(10240)",
                    "#2 = VtArgList(0, 0)",
                    "#3 = VtArgType(Long, 1)",
                    "#2.Add(#3)",
                    "~VtArgType #3",
                    "#1.{}('x', #2) -> 1 throws".format(operation),
                    "~VtArgList #2",
                    "~VtLocalSceneProxy #1",
                )

    def test_from_every_other_operation(self):
        calls = [
            ("newTexture, 'x'", "NewTexture", "NewTexture('x') -> 1"),
            ("render, 1, 2, 3", "Render", "Render(1, 2, 3, 0.0, 0.0, 1.0, 1.0)"),
            (
                "transformBegin, vantorPM.transform()",
                "TransformBegin",
                "TransformBegin({})".format(IDENTITY.replace("1.0", "0.0")),
            ),
        ]
        calls += [(method + ", 5", operation, operation + "(5)") for method, operation in WITH_ID]
        calls += [(method, operation, operation + "()") for method, operation in WITHOUT_ARGUMENTS]
        for call, operation, text in calls:
            with self.subTest(operation=operation):
                self.assert_thrown(
                    operation,
                    "s = vantorPM.scene()\ncall(s.{})".format(call),
                    "#1 = VtLocalSceneProxy(10240)",
                    "#1." + text + " throws",
                    "~VtLocalSceneProxy #1",
                )

    def test_from_making_the_proxy(self):
        self.assert_thrown(
            "VtLocalSceneProxy", "call(vantorPM.scene, 5)", "#1 = VtLocalSceneProxy(5) throws"
        )

    def test_from_a_transform_operation_or_a_basis(self):
        self.assert_thrown(
            "VtTransform::Identity", "call(vantorPM.transform().identity)", "Identity() throws"
        )
        self.assert_thrown(
            "VtHermiteBasis", "call(vantorPM.HermiteBasis)", "VtHermiteBasis() throws"
        )

    def test_the_scene_works_on(self):
        self.assert_thrown(
            "NewLight",
            """
                           s = vantorPM.scene()
                           call(s.newLight, 'x', [])
                           s.newLight('y', [])
                           """,
            "#1 = VtLocalSceneProxy(10240)",
            "#2 = VtArgList(0, 0)",
            "#1.NewLight('x', #2) -> 1 throws",
            "~VtArgList #2",
            "#3 = VtArgList(0, 0)",
            "#1.NewLight('y', #3) -> 2",
            "~VtArgList #3",
            "~VtLocalSceneProxy #1",
        )

    def test_nothing_in_the_module_catches(self):
        finished = run("vantorPM.scene().newLight('x', [1])", VANTOR_RECORD_THROW="NewLight")
        self.assertEqual(finished.code, -signal.SIGABRT)
        self.assertIn("NewLight throws", finished.errors)


if __name__ == "__main__":
    unittest.main()
