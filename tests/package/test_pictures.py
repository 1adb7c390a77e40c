"""Pictures: values of passes, files, arrays."""

import os
import struct
import unittest
import zlib

import vantor as vt
from scenes import PackageTest, ball_scene, floats, lit_scene, needs_numpy, numpy, run_script


def chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def grey_png(values):
    """A PNG of one row of grey bytes."""
    header = struct.pack(">IIBBBBB", len(values), 1, 8, 0, 0, 0, 0)
    rows = zlib.compress(b"\0" + bytes(values))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", rows) + chunk(b"IEND",
        b""))


class PassTest(PackageTest):
    def test_the_values_are_those_of_the_renderers_own_file(self):
        scene = ball_scene()
        with scene.imager("file", name=self.path("own.exr")):
            picture = scene.render(20, 15, 4)
        self.assertEqual((picture.width, picture.height, picture.names), (20, 15, ("color",)))
        self.assertEqual(floats(picture), floats(vt.Picture.load(self.path("own.exr"))))

    def test_a_file_imager_without_a_block_is_written_as_ever(self):
        scene = ball_scene()
        scene.imager("file", name=self.path("own.png"), filter="gaussian")
        picture = scene.render(8, 8, 4)  # without a word about filters of two kinds
        self.assertTrue(os.path.exists(self.path("own.png")))
        self.assertNotEqual(floats(picture), floats(ball_scene().render(8, 8, 4)))
        self.assertEqual(floats(picture), floats(ball_scene().render(8, 8, 4, filter="gaussian")))

    def test_all_values_that_are_asked_for(self):
        names = ("albedo", "normal", "depth", "position", "object_id", "variance")
        picture = ball_scene().render(9, 9, 4, aovs=names)
        self.assertEqual(picture.names, ("color",) + names)
        row, middle = picture.buffer("normal").tolist()[4], picture.buffer("depth").tolist()[4][4]
        self.assertGreater(row[4][2], 0.9)
        self.assertAlmostEqual(middle[0], 5, 1)
        self.assertRaisesRegex(AttributeError, "it has color, albedo", getattr, picture, "dept")

    def test_a_window_has_the_pixels_of_the_whole(self):
        scene = ball_scene()
        whole, part = scene.render(20, 10, 4), scene.render(20, 10, 4, window=(0.25, 0.5, 0.75, 1))
        self.assertEqual((part.width, part.height, part.origin, part.full_size),
                         (10, 5, (5, 5), (20, 10)))
        self.assertEqual(part.buffer().tolist(), [row[5:15] for row in whole.buffer().tolist()[5:]])

    def test_a_renderer_that_offers_no_pictures_writes_files(self):
        scene = ball_scene()
        asked = dict(aovs=["depth"], window=(0.25, 0.5, 0.75, 1))
        offered = scene.render(20, 10, 4, **asked)
        call = scene.module_call
        scene.module_call = lambda *arguments, pictures=None: call(*arguments)
        read = scene.render(20, 10, 4, **asked)
        for name in ("color", "depth"):
            self.assertEqual(bytes(offered.buffer(name)), bytes(read.buffer(name)))

    def test_no_file_is_left(self):
        script = ("import os, sys, tempfile, vantor\ntempfile.tempdir = sys.argv[1]\n"
                  "s = vantor.Scene()\ns.camera('perspective')\ns.light('sky')\n"
                  "s.render(4, 4, 1)\ns.render(4, 4, 1, wait=False).result()\n"
                  "s.render(4, 4, 1, wait=False)\n"
                  "print(len(os.listdir(sys.argv[1])))")
        status, output, errors = run_script(script, self.folder)
        self.assertEqual((status, errors), (0, ""))
        self.assertGreater(int(output), 0)
        self.assertEqual(os.listdir(self.folder), [])

    def test_the_script_needs_no_numpy(self):
        script = ("import sys\nsys.modules['numpy'] = None\nimport vantor\n"
                  "s = vantor.Scene()\ns.camera('perspective')\ns.light('sky')\n"
                  "p = s.render(4, 4, 1)\n"
                  "p.save(sys.argv[1])\nassert p._repr_png_()[1:4] == b'PNG'\n"
                  "try:\n    p.color\nexcept ImportError as error:\n    print(error)")
        status, output, errors = run_script(script, self.path("a.png"))
        self.assertEqual((status, errors), (0, ""))
        self.assertIn("numpy", output)
        self.assertTrue(os.path.exists(self.path("a.png")))

    @needs_numpy
    def test_arrays(self):
        picture = ball_scene().render(8, 6, 4, aovs=["depth", "object_id", "albedo"])
        self.assertEqual((picture.color.shape, picture.color.dtype), ((6, 8, 3), numpy.float32))
        self.assertEqual(picture.depth.shape, (6, 8))
        self.assertEqual(picture.albedo.shape, (6, 8, 3))
        self.assertIn("depth", dir(picture))
        picture.color[:] = 0.25
        picture.save(self.path("grey.exr"))
        self.assertEqual(set(floats(vt.Picture.load(self.path("grey.exr")))), {0.25})
        self.assertTrue(numpy.shares_memory(numpy.asarray(picture), picture.color))
        self.assertEqual(numpy.asarray(picture, "f8").dtype, numpy.float64)
        self.assertFalse(numpy.shares_memory(numpy.array(picture), picture.color))


class FilesTest(PackageTest):
    def test_without_a_background(self):
        scene = ball_scene()
        whole = scene.render(16, 12, 16, aovs="alpha")
        alone = scene.render(16, 12, 16, background=False)
        self.assertEqual(alone.names, ("color", "alpha"))
        self.assertEqual(bytes(alone.buffer("alpha")), bytes(whole.buffer("alpha")))
        # The sky in the corner is gone, the ball in the middle as it was.
        self.assertGreater(max(whole.buffer().tolist()[0][0]), 0)
        self.assertEqual((alone.buffer().tolist()[0][0], alone.buffer("alpha").tolist()[0][0]),
                         ([0, 0, 0], [0, 0, 0]))
        self.assertEqual(alone.buffer().tolist()[6][8], whole.buffer().tolist()[6][8])
        covered = [row[0] for line in alone.buffer("alpha").tolist() for row in line]
        self.assertTrue(any(0 < value < 1 for value in covered))
        for name in ("a.png", "a.exr"):
            alone.save(self.path(name))
            loaded = vt.Picture.load(self.path(name))
            alpha = memoryview(loaded._alpha).cast("f").tolist()
            for value, expected in zip(alpha, covered):
                self.assertAlmostEqual(value, expected, delta=0.003)
            whole.save(self.path(name))
            self.assertIsNone(vt.Picture.load(self.path(name))._alpha)
        alone.save(self.path("a.jpg"))
        job = scene.render(16, 12, 16, background=False, wait=False)
        self.assertEqual(bytes(job.result().buffer()), bytes(alone.buffer()))

    def test_denoised(self):
        scene = ball_scene()
        raw = scene.render(32, 24, 4, aovs="normal")
        smooth = scene.render(32, 24, 4, aovs="normal", denoise=True)
        self.assertEqual(bytes(smooth.buffer("normal")), bytes(raw.buffer("normal")))
        self.assertNotEqual(bytes(smooth.buffer()), bytes(raw.buffer()))
        self.assertAlmostEqual(sum(floats(smooth)) / sum(floats(raw)), 1, delta=1e-4)
        job = scene.render(32, 24, 4, denoise=True, wait=False)
        self.assertEqual(bytes(job.result().buffer()), bytes(smooth.buffer()))
        # As it was, when it is not asked for again.
        self.assertEqual(bytes(scene.render(32, 24, 4).buffer()), bytes(raw.buffer()))

    def test_samples_by_noise(self):
        scene = ball_scene()
        path = self.path("own.exr")
        scene.imager("file", name=path)
        plain = bytes(scene.render(32, 24, 100).buffer())
        for keywords, comment in (
            ({"adaptive": True}, b"100 samples a pixel on average, from 4"),
            ({"noise": 100}, b"16 samples a pixel; relative error about "),
            ({"noise": 0.01, "adaptive": True}, b" samples a pixel on average, from "),
        ):
            picture = bytes(scene.render(32, 24, 100, **keywords).buffer())
            with open(path, "rb") as file:
                self.assertIn(comment, file.read())
            self.assertNotEqual(picture, plain)
            job = scene.render(32, 24, 100, wait=False, **keywords)
            self.assertEqual(bytes(job.result().buffer()), picture)
            self.assertEqual(job.progress, 1)
        # As the script's settings say, unless it is asked for otherwise.
        settings = scene.imager("settings", noise=100)
        with settings:
            self.assertNotEqual(bytes(scene.render(32, 24, 100).buffer()), plain)
            self.assertEqual(bytes(scene.render(32, 24, 100, noise=0).buffer()), plain)
        self.assertRaisesRegex(TypeError, "expected True or False", scene.render, 8, 8, 16,
                               adaptive="yes")
        with self.assertWarnsRegex(vt.SceneWarning, "takes all samples of a picture in one pass"):
            scene.render(32, 24, 16, adaptive=True, samples_in_all=32)

    def test_every_format_is_saved_and_loaded(self):
        picture = ball_scene().render(16, 12, 4)
        for ending in ("png", "jpg", "jpeg", "tif", "tiff", "exr"):
            path = self.path("a." + ending)
            picture.save(path)
            loaded = vt.Picture.load(path)
            self.assertEqual((loaded.width, loaded.height), (16, 12))
            tolerance = 0 if ending == "exr" else 0.25 if ending.startswith("j") else 0.005
            for ours, theirs in zip(floats(picture), floats(loaded)):
                self.assertLessEqual(abs(min(ours, 1) - min(theirs, 1)), tolerance)

    def test_layers_come_back(self):
        names = ("albedo", "normal", "depth", "depth_z", "object_id")
        picture = ball_scene().render(16, 12, 4, aovs=names)
        picture.save(self.path("a.exr"), layers=names)
        loaded = vt.Picture.load(self.path("a.exr"))
        self.assertEqual(sorted(loaded.names), sorted(picture.names))
        for name in picture.names:
            self.assertEqual(bytes(loaded.buffer(name)), bytes(picture.buffer(name)), name)
        # The renderer's own file has the same ones.
        scene = ball_scene()
        with scene.imager("file", name=self.path("own.exr"), layers=" ".join(names)):
            scene.render(16, 12, 4)
        own = vt.Picture.load(self.path("own.exr"))
        for name in picture.names:
            self.assertEqual(bytes(own.buffer(name)), bytes(picture.buffer(name)), name)
        picture.save(self.path("b.exr"), name="normal", layers="color", bits=16)
        half = vt.Picture.load(self.path("b.exr"))
        self.assertEqual(half.names, ("color", "color_layer"))
        for ours, theirs in zip(floats(picture), floats(half, "color_layer")):
            self.assertAlmostEqual(ours, theirs, delta=abs(ours) / 2000 + 1e-7)

    def test_bits_and_layers_that_a_format_does_not_have(self):
        picture = ball_scene().render(16, 12, 1, aovs="depth")
        for name, options, message in (
            ("a.png", {"bits": 32}, "expected 8 or 16, got 32"),
            ("a.jpg", {"bits": 16}, "expected 8, got 16"),
            ("a.exr", {"bits": 8}, "expected 32 or 16, got 8"),
            ("a.png", {"layers": "depth"}, "only .exr files have layers"),
            ("a.exr", {"layers": "color"}, "names that differ"),
        ):
            self.assertRaisesRegex(ValueError, message, picture.save, self.path(name), **options)
        self.assertRaisesRegex(KeyError, "normal", picture.save, self.path("a.exr"),
                               layers="normal")

    def test_16_bits_tell_more_apart(self):
        picture = ball_scene().render(16, 12, 4)
        picture.save(self.path("a.png"), bits=16)
        for ours, theirs in zip(floats(picture), floats(vt.Picture.load(self.path("a.png")))):
            self.assertAlmostEqual(min(ours, 1), theirs, delta=2e-5)

    def test_radiance_files_are_loaded(self):
        with open(self.path("a.hdr"), "wb") as file:
            file.write(b"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n")
            file.write(bytes((128, 64, 0, 131, 0, 0, 0, 0)))
        loaded = vt.Picture.load(self.path("a.hdr"))
        self.assertEqual(floats(loaded), [4, 2, 0, 0, 0, 0])

    def test_the_bytes_are_the_renderers_own(self):
        scene = ball_scene()
        for display in ("srgb", "filmic"):
            with scene.imager("file", name=self.path("own.png"), display=display, exposure=0.5):
                picture = scene.render(16, 12, 4)
            picture.save(self.path("ours.png"), exposure=0.5, display=display)
            self.assertEqual(floats(vt.Picture.load(self.path("ours.png"))),
                             floats(vt.Picture.load(self.path("own.png"))))

    def test_values_that_are_no_light_can_be_looked_at(self):
        scene = ball_scene()
        picture = scene.render(16, 12, 4, aovs=("normal", "depth", "albedo"))
        for name in ("normal", "depth", "albedo"):
            with scene.imager("file", name=self.path("own.png"), what=name):
                scene.render(16, 12, 4)
            picture.save(self.path("ours.png"), name=name)
            self.assertEqual(floats(vt.Picture.load(self.path("ours.png"))),
                             floats(vt.Picture.load(self.path("own.png"))), name)

    def test_a_notebook_shows_it(self):
        with open(self.path("a.png"), "wb") as file:
            file.write(ball_scene().render(16, 12, 4)._repr_png_())
        self.assertEqual(vt.Picture.load(self.path("a.png")).width, 16)

    def test_eight_bits_are_srgb(self):
        with open(self.path("a.png"), "wb") as file:
            file.write(grey_png([0, 128, 255]))
        self.assertEqual([round(v, 4) for v in floats(vt.Picture.load(self.path("a.png")))[::3]],
                         [0, 0.2159, 1])

    def test_what_cannot_be_read_or_written_is_one_error(self):
        with open(self.path("no.tif"), "wb") as file:
            file.write(b"II*\0abc")
        for path, words in ((self.path("none.png"), "No such file"), (self.folder, "directory"),
                            (__file__, "no PNG"), (self.path("no.tif"), "no.tif")):
            with self.assertRaises(OSError) as error:
                vt.Picture.load(path)
            self.assertIn(words, str(error.exception))
            self.assertNotIn("\n", str(error.exception))
        picture = vt.Picture.of([[0.5, 1.0]])
        self.assertRaisesRegex(OSError, "No such file", picture.save, self.path("no/a.png"))
        self.assertRaisesRegex(ValueError, "ends in", picture.save, self.path("a.bmp"))
        self.assertRaisesRegex(ValueError, "display", picture.save, self.path("a.png"),
                               display="film")
        self.assertRaisesRegex(KeyError, "depth", picture.save, self.path("a.png"), name="depth")
        self.assertEqual(os.listdir(self.folder), ["no.tif"])


class ArraysTest(PackageTest):
    def test_a_picture_of_numbers(self):
        grey = vt.Picture.of([[0.25, 1.0]])
        self.assertEqual(grey.buffer().tolist(), [[[0.25] * 3, [1.0] * 3]])
        self.assertEqual(vt.Picture.of([[[1.0, 2, 3]]]).buffer().tolist(), [[[1, 2, 3]]])
        for value in ([0.5], [[[0.5]]], [[]], 0.5):
            self.assertRaises(ValueError, vt.Picture.of, value)
        self.assertRaises(TypeError, vt.Picture.of, [[1, 2]])
        self.assertRaises(TypeError, vt.Picture.of, "a.png")

    def test_textures_and_environments_from_numbers(self):
        scene = vt.Scene(strict=True)
        scene.camera("perspective", position=(0, 0, 3), target=(0, 0, 0))
        scene.light("environment", name=[[[1.0, 0, 0]] * 4] * 2)
        image = scene.pattern("image", texture=scene.texture([[0.5, 0.5], [0.5, 0.5]]))
        with scene.material("diffuse", reflectance=0.5):
            scene.add("quad", origin=(-1, -1, 0), edge_u=(2, 0, 0), edge_v=(0, 2, 0))
        with scene.material("surface", interface=scene.interface("diffuse"), color=image):
            scene.add("quad", origin=(-9, -9, 0), edge_u=(2, 0, 0), edge_v=(0, 2, 0))
        red, green, blue = scene.render(9, 9, 16).buffer().tolist()[4][4]
        self.assertAlmostEqual(red, 0.5, 1)
        self.assertEqual((green, blue), (0, 0))
        self.assertRaisesRegex(ValueError, "newTexture", scene.texture, 5)

    def test_the_texture_of_a_pattern_may_be_what_a_texture_is_made_of(self):
        green = vt.Picture.of([[[0.0, 1.0, 0.0]] * 2] * 2)
        green.save(self.path("green.exr"))
        for picture in (self.path("green.exr"), green, [[[0.0, 1.0, 0.0]] * 2] * 2):
            scene = lit_scene(strict=True)
            image = scene.pattern("image", texture=picture)
            with scene.material("surface", interface=scene.interface("diffuse"), color=image):
                scene.add("sphere", center=(0, 1, 0))
            albedo = scene.render(9, 9, 1, aovs="albedo").buffer("albedo").tolist()[4][4]
            self.assertEqual(albedo, [0, 1, 0])
        self.assertRaisesRegex(ValueError, 'newPattern "image": texture: ', scene.pattern, "image",
                               texture=5)
        self.assertRaisesRegex(vt.SceneError, "No such file", scene.pattern, "image",
                               texture=self.path("none.png"))


if __name__ == "__main__":
    unittest.main()
