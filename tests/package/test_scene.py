"""Scenes: blocks, messages, what is said of what has no effect."""

import gc
import inspect
import os
import pickle
import sys
import types
import unittest
import warnings
import weakref

import vantor as vt
from scenes import PackageTest, ball_scene, lit_scene, run_script


def caught(call, *arguments, **parameters):
    """The warnings of one call."""
    with warnings.catch_warnings(record=True) as found:
        warnings.simplefilter("always")
        call(*arguments, **parameters)
    return found


class BlocksTest(PackageTest):
    def test_a_block_closes_when_an_error_leaves_it(self):
        scene = lit_scene(strict=True)
        material = scene.material("diffuse")
        with self.assertRaises(ZeroDivisionError):
            with material, scene.light("area"), vt.translate(0, 1,
                0), scene.interior("homogeneous"):
                scene.add("box")
                1 / 0
        with material:
            scene.add("sphere")
        scene.render(4, 4, 1)  # an open block would be a SceneError

    def test_blocks_of_one_kind_close_from_inside(self):
        scene = lit_scene()
        outer, inner = scene.material("diffuse"), scene.material("diffuse")
        outer.__enter__()
        inner.__enter__()
        self.assertRaises(RuntimeError, outer.__exit__)
        inner.__exit__()
        outer.__exit__()
        self.assertRaises(RuntimeError, outer.__exit__)

    def test_transforms_act_on_what_is_made_within_from_the_innermost(self):
        plain, moved = lit_scene(), lit_scene()
        plain.add("sphere", center=(0.5, 1, 0), radius=0.5)
        with vt.translate(0.5, 1, 0), vt.scale(0.5):
            moved.add("sphere")
        by_keyword = lit_scene()
        by_keyword.add("sphere", transform=vt.translate(0.5, 1, 0), scale=0.5)
        pictures = [bytes(s.render(16, 12, 4).buffer()) for s in (moved, by_keyword)]
        self.assertEqual(pictures[0], pictures[1])
        self.assertEqual(len(set(pictures[0])) > 50, True)
        difference = max(abs(a - b) for a, b in zip(
            memoryview(pictures[0]).cast("f"),
            plain.render(16, 12, 4).buffer().cast("B").cast("f")))
        self.assertLess(difference, 1e-3)

    def test_the_block_of_a_light_is_that_lights(self):
        # The renderer's block takes the one that was made last.
        def scene_with(make_second):
            scene = vt.Scene()
            scene.camera("perspective", position=(0, 0, 4), target=(0, 0, 0))
            bright = scene.light("area", radiance=3)
            second = scene.light("area", radiance=1) if make_second else None
            with bright:
                scene.add("sphere", radius=3)
            if second:
                with second:
                    scene.add("sphere", radius=0.01, center=(0, 0, 90))
            return scene

        with_one = scene_with(False).render(4, 4, 4).buffer().tolist()
        with_two = scene_with(True).render(4, 4, 4).buffer().tolist()
        self.assertEqual(with_one[2][2], [3, 3, 3])
        self.assertEqual(with_two[2][2], [3, 3, 3])

    def test_a_light_that_is_off_stays_off_in_its_block(self):
        scene = lit_scene()
        lamp = scene.light("area", radiance=50)
        scene.light("area", radiance=1).off()
        lamp.off()
        with lamp:
            scene.add("sphere", center=(0, 1, 0))
        with scene.imager("settings", max_depth=1):
            dark = scene.render(9, 9, 4).buffer().tolist()[4][4]
            lamp.on()
            lit = scene.render(9, 9, 4).buffer().tolist()[4][4]
        self.assertLess(max(dark), 10)
        self.assertGreaterEqual(min(lit), 50)


class LifeTest(PackageTest):
    def test_a_scene_goes_as_soon_as_nobody_holds_it(self):
        gc.disable()
        self.addCleanup(gc.enable)
        scene = ball_scene()
        handle = scene.handles[-1]
        folder = scene.files.path
        picture = scene.render(4, 4, 1)
        watch = weakref.ref(scene)
        del scene
        self.assertIsNone(watch())
        self.assertFalse(os.path.exists(folder))
        self.assertEqual(picture.width, 4)
        self.assertRaisesRegex(ReferenceError, "is gone", lambda: handle.scene)


class MaterialsTest(PackageTest):
    def test_a_material_by_the_name_of_an_interface(self):
        by_name, by_hand = lit_scene(strict=True), lit_scene(strict=True)
        with by_name.material("plastic", color=(0.8, 0.1, 0.1), roughness=0.2, opacity=0.5):
            by_name.add("sphere", center=(0, 1, 0))
        plastic = by_hand.interface("plastic", color=(0.8, 0.1, 0.1), roughness=0.2)
        with by_hand.material("surface", interface=plastic, opacity=0.5):
            by_hand.add("sphere", center=(0, 1, 0))
        pictures = {bytes(s.render(12, 12, 4).buffer()) for s in (by_name, by_hand)}
        self.assertEqual(len(pictures), 1)

    def test_a_pattern_goes_to_the_surface(self):
        scene = lit_scene(strict=True)
        checker = scene.pattern("checker", a=(1, 0, 0), b=(0, 1, 0), space="object")
        for kind, name in (("plastic", "color"), ("principled", "base_color"),
                           ("conductor", "color")):
            with scene.material(kind, **{name: checker, "roughness": checker}):
                scene.add("box")
        scene.render(4, 4, 1)


class MessagesTest(PackageTest):
    def test_a_mistake_is_a_warning_at_the_scripts_line(self):
        scene = lit_scene()
        with warnings.catch_warnings(record=True) as found:
            warnings.simplefilter("always")
            line = inspect.currentframe().f_lineno + 1
            scene.light("point", powr=3)
        warning, = found
        self.assertIs(warning.category, vt.SceneWarning)
        self.assertEqual((warning.filename, warning.lineno), (__file__, line))
        self.assertIn('newLight "point": unknown parameter "powr"', str(warning.message))

    def test_the_name_of_an_interface_that_is_nearly_right(self):
        scene = lit_scene()
        for wrong, right in (("plastik", "plastic"), ("conducter", "conductor"), ("glass",
                             "dielectric"), ("surfase", "surface")):
            with self.assertWarnsRegex(vt.SceneWarning, 'did you mean "{}"'.format(right)):
                scene.material(wrong)

    def test_mistakes_of_a_pass_without_a_picture_are_told_once(self):
        for wait in (True, False):
            scene = ball_scene()
            asked = (0, 4, 1)
            with warnings.catch_warnings(record=True) as found:
                warnings.simplefilter("always")
                with self.assertRaisesRegex(vt.SceneError, "width is 0"):
                    made = scene.render(*asked, wait=wait)
                    made.result(60)
            self.assertEqual(found, [])

    def test_errors_and_warnings_are_the_packages(self):
        for kind in (vt.SceneError, vt.SceneWarning, vt.JobError):
            self.assertEqual("{0.__module__}.{0.__name__}".format(kind),
                             "vantor." + kind.__name__)
            self.assertIs(pickle.loads(pickle.dumps(kind)), kind)

    def test_repeats_are_folded(self):
        script = ("import vantor\nscene = vantor.Scene()\n"
                  "for i in range(5):\n    scene.light('point', powr=i)\n"
                  "scene.light('point', powr=5)\n")
        status, _, errors = run_script(script)
        self.assertEqual(status, 0)
        self.assertEqual(errors.count("SceneWarning"), 2, errors)
        self.assertNotIn("vantor: ", errors)

    def test_strict_scenes_raise(self):
        scene = lit_scene(strict=True)
        with self.assertRaises(vt.SceneError) as error:
            scene.light("point", powr=3)
        self.assertIn('unknown parameter "powr"', str(error.exception))
        script = "import vantor\nvantor.Scene(strict=True).camera('perspectiv')"
        status, _, errors = run_script(script)
        self.assertEqual(status, 1)
        self.assertIn("SceneError", errors)
        status, _, errors = run_script(script.replace("strict=True", ""),
                                       VANTOR_DIAGNOSTICS="strict")
        self.assertEqual(status, 1)

    def test_the_environment_can_silence_warnings_but_no_errors(self):
        script = "import vantor\ns = vantor.Scene({})\ns.camera('perspectiv')"
        self.assertEqual(run_script(script.format(""), VANTOR_DIAGNOSTICS="silent"), (0, "", ""))
        self.assertEqual(run_script(script.format("strict=True"), VANTOR_DIAGNOSTICS="silent")[0],
                         1)

    def test_scenes_of_the_module_keep_the_error_stream(self):
        script = ("import vantor, vantorPM\nvantor.Scene().add('sphere')\n"
                  "vantorPM.scene().newCamera('perspectiv', [])")
        status, _, errors = run_script(script)
        self.assertEqual(status, 0)
        self.assertIn('vantor: newCamera "perspectiv": unknown type', errors)

    def test_words_that_people_try_get_the_right_one(self):
        scene = lit_scene()
        for make, type, word, right in (
                (scene.object, "cube", "cube", "box"), (scene.interface, "glass", "glass",
                                                        "dielectric"),
                (scene.interface, "mirror", "mirror", "conductor"),
                (scene.interface, "metal", "metal", "conductor")):
            warning, = caught(make, type)
            self.assertIn('"{}": unknown type (did you mean "{}"?)'.format(word, right),
                          str(warning.message))
        for make, type, word, right in ((scene.camera, "perspective", "look_at", "target"),
                                        (scene.light, "point", "power", "intensity"),
                                        (scene.light, "environment", "file", "name")):
            warning, = caught(make, type, **{word: (1, 2, 3)})
            self.assertIn('unknown parameter "{}" (did you mean "{}"?)'.format(word, right),
                          str(warning.message))

    def test_a_pass_without_a_picture_is_an_error(self):
        scene = vt.Scene()
        scene.light("point")
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", vt.SceneWarning)
            self.assertRaisesRegex(vt.SceneError, "there is no camera", scene.render, 4, 4, 1)
            self.assertRaisesRegex(vt.SceneError, "width", ball_scene().render, 0, 4, 1)
            self.assertRaisesRegex(vt.SceneError, "window", ball_scene().render, 4, 4, 1,
                                   window=(0, 0, 2, 1))
        self.assertRaises(TypeError, ball_scene().render, 4.5, 4, 1)
        self.assertRaises(ValueError, ball_scene().render, 4, 4, 1, window=(0, 1))
        self.assertRaisesRegex(ValueError, "albedo", ball_scene().render, 4, 4, 1, aovs="albdo")


class VainTest(PackageTest):
    """What a scene describes without effect is said before a pass, where it was made."""

    def assert_said(self, scene, *texts):
        found = [str(warning.message) for warning in caught(scene.render, 4, 4, 1)]
        self.assertEqual(len(found), len(texts), found)
        for said, text in zip(found, texts):
            self.assertIn(text, said)

    def test_nothing_is_said_of_a_good_scene(self):
        scene = ball_scene()
        with scene.light("area"):
            scene.add("quad")
        scene.add("instances", object=scene.object("box"), places=[vt.scale(1)])
        self.assert_said(scene)

    def test_no_light(self):
        scene = lit_scene()
        scene.handles[1].off()
        scene.add("sphere")
        self.assert_said(scene, "no light reaches anything")

    def test_what_is_never_used(self):
        scene = lit_scene()
        scene.object("sphere")
        scene.material("diffuse")
        scene.light("area")
        self.assert_said(scene, '<object 3 "sphere"> is never added',
                         '<material 4 "diffuse"> is never used',
                         '<light 5 "area"> lights nothing')

    def test_glass_on_an_open_surface(self):
        scene = lit_scene()
        with scene.material("dielectric"):
            scene.add("sphere")
        self.assert_said(scene)
        with scene.material("dielectric"):
            scene.add("quad")
        self.assert_said(scene, '"dielectric"> is glass, and needs a closed body')

    def test_it_is_said_of_the_line_where_it_was_made(self):
        scene = lit_scene()
        scene.object("sphere")
        line = sys._getframe().f_lineno - 1
        for render in (scene.render, lambda *size: scene.render(*size, wait=False).result()):
            warning, = caught(render, 4, 4, 1)
            self.assertEqual((warning.filename, warning.lineno), (__file__, line))
        strict = lit_scene(strict=True)
        strict.object("sphere")
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", vt.SceneWarning)
            self.assertEqual(strict.render(4, 4, 1).width, 4)  # it is no mistake


class VocabularyTest(unittest.TestCase):
    def test_a_type_explains_itself(self):
        text = repr(vt.vocabulary("perspective"))
        self.assertTrue(text.startswith('newCamera "perspective": '))
        self.assertIn("fov: number; degrees; 0.001 to 179; default 45", text)
        self.assertEqual(vt.vocabulary("light", "spot").name, "spot")
        self.assertEqual(vt.vocabulary("newLight", "spot").parameters["cutoff_angle"].unit,
                         "degrees")
        self.assertIn("vertical", vt.vocabulary("perspective").parameters["fov_axis"].choices)

    def test_a_parameter_says_in_words_what_it_takes(self):
        for words, line in ((("box",), "trimmers: a trimmer or several"),
                            (("light", "area"), "radiance: color"),
                            (("light", "area"), "pattern: a pattern"),
                            (("surface",), "interface: an interface"),
                            (("surface",), "opacity: number or a pattern"),
                            (("imager", "file"), 'filter: one of "')):
            self.assertIn("    {}".format(line), repr(vt.vocabulary(*words)))

    def test_what_is_printed_tells_what_it_is(self):
        scene = lit_scene()
        self.assertEqual(repr(vt.Scene()), "<Scene: empty>")
        for _ in range(2):
            scene.object("box")
        self.assertEqual(repr(scene), "<Scene: 1 camera, 1 light, 2 objects>")
        self.assertEqual(repr(vt.points([(0, 0, 0)] * 3)), "<Points: 3>")
        mesh = types.SimpleNamespace(vertices=[(0, 0, 0)] * 3, faces=[(0, 1, 2)])
        self.assertEqual(repr(vt.load(mesh)), "<Model: meshes 1, triangles 1>")

    def test_words_with_several_meanings_list_them(self):
        self.assertEqual({type.call for type in vt.vocabulary("diffuse")},
                         {"newInterface", "newMaterial"})
        self.assertGreater(len(vt.vocabulary("object")), 8)
        self.assertIn("newCamera: ", repr(vt.vocabulary()))

    def test_an_unknown_word_names_the_nearest(self):
        with self.assertRaises(LookupError) as error:
            vt.vocabulary("newLight", "spott")
        self.assertIn('did you mean "spot"', str(error.exception))

    def test_the_name_of_a_parameter_tells_whose_it_is(self):
        for name, type in (("fov", 'newCamera "perspective"'), ("radius", 'newObject "cone"')):
            with self.assertRaisesRegex(LookupError, "parameter of .*" + type):
                vt.vocabulary(name)


if __name__ == "__main__":
    unittest.main()
