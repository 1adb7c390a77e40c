"""vantor.farm without a cluster: windows, sources, animations, and what a worker renders with."""

import os
import pickle
import threading
import time
import unittest
import unittest.mock
import warnings

import vantor as vt
from scenes import PackageTest, ball_scene, lit_scene
from vantor import farm
from vantor._render_process import Piece, Renderer
from vantor._source import Source
from vantor._windows import Canvas, cut, cut_samples, fractions

WHOLE = (0.0, 0.0, 1.0, 1.0)


def pickled(function):
    return pickle.dumps(Source(function))


def piece(window=WHOLE, samples=2):
    options = {"aovs": (), "filter": None, "filter_width": None}
    return Piece(None, (24, 18, samples), window, options, ("script.py", 7), None)


def crash():
    os.abort()


def no_scene():
    return 3


def unlit_scene():
    scene = vt.Scene()
    scene.camera("perspective")
    scene.add("sphere", center=(0, 0, -5))
    return scene


class UnusualError(Exception):
    """Cannot be made again from its arguments."""

    def __init__(self, one, two):
        super().__init__("{} and {}".format(one, two))


def unusual():
    raise UnusualError("this", "that")


class WindowsTest(unittest.TestCase):
    def test_every_pixel_is_in_one_piece(self):
        for window in ((0, 0, 640, 480), (0, 0, 1, 1), (5, 3, 100, 33), (0, 0, 7, 900)):
            for count in (1, 3, 16, 1000):
                parts = cut(window, count)
                pixels = [(x, y) for x0, y0, x1, y1 in parts for x in range(x0, x1)
                          for y in range(y0, y1)]
                x0, y0, x1, y1 = window
                self.assertEqual(sorted(pixels),
                                 [(x, y) for x in range(x0, x1) for y in range(y0, y1)])
                self.assertLessEqual(len(parts), max(4, 3 * count) + (x1 + y1) // 8)

    def test_fractions_name_the_same_pixels(self):
        from vantor._passes import pixel_window

        for width, height in ((640, 480), (1919, 1081), (7, 3)):
            for window in cut((0, 0, width, height), 100):
                self.assertEqual(pixel_window(fractions(window, width, height), width, height),
                                 window)

    def test_the_parts_of_a_picture_are_the_picture(self):
        scene = ball_scene()
        whole = scene.render(70, 50, 2, aovs="depth")
        canvas = Canvas((70, 50), (0, 0, 70, 50))
        parts = cut((0, 0, 70, 50), 9)
        self.assertGreater(len(parts), 5)
        for part in parts:
            picture = scene.render(70, 50, 2, window=fractions(part, 70, 50), aovs="depth")
            canvas.put(part, picture.layers())
        for name in ("color", "depth"):
            self.assertEqual(bytes(canvas.picture().buffer(name)), bytes(whole.buffer(name)))


    def test_ranges_of_samples_are_the_picture(self):
        scene = ball_scene()
        whole = scene.render(24, 18, 100, aovs="depth")
        ranges = cut_samples(100, 4)
        self.assertEqual(ranges, [(0, 32), (32, 64), (64, 96), (96, 100)])
        canvas = Canvas((24, 18), (0, 0, 24, 18), len(ranges))
        for part in cut((0, 0, 24, 18), 4):
            for first, end in ranges[::-1]:
                picture = scene.render(24, 18, end - first, window=fractions(part, 24, 18),
                                       aovs="depth", first_sample=first, samples_in_all=100)
                canvas.put(part, picture.layers())
        for name in ("color", "depth"):
            self.assertEqual(bytes(canvas.picture().buffer(name)), bytes(whole.buffer(name)))

    def test_samples_are_cut_where_they_can_be_put_together(self):
        self.assertEqual(cut_samples(8, 4), [(0, 8)])
        self.assertEqual(cut_samples(256, 1), [(0, 256)])
        self.assertEqual(cut_samples(256, 3), [(0, 128), (128, 256)])
        self.assertEqual(cut_samples(48, 100), [(0, 16), (16, 32), (32, 48)])


class RendererTest(PackageTest):
    def setUp(self):
        super().setUp()
        self.renderer = Renderer()
        self.addCleanup(self.renderer.end)

    def render(self, function, asked=None, is_wanted=lambda: True, token="a"):
        return self.renderer.render(token, pickled(function), asked or piece(), is_wanted)

    def test_pieces_are_those_of_the_picture(self):
        whole = bytes(ball_scene().render(24, 18, 2).buffer())
        for _ in range(2):
            self.assertEqual(bytes(self.render(ball_scene).layers["color"]), whole)
        upper = self.render(ball_scene, piece((0, 0, 1, 0.5))).layers["color"]
        self.assertEqual(bytes(upper), whole[: len(whole) // 2])

    def test_the_process_stays_for_the_next_piece_and_goes_with_another_source(self):
        self.render(ball_scene)
        pid = self.renderer._process.pid
        self.render(ball_scene)
        self.assertEqual(self.renderer._process.pid, pid)
        self.render(lit_scene, token="b")
        self.assertRaises(ProcessLookupError, os.kill, pid, 0)

    def test_messages_come_with_file_and_line(self):
        (text, file, line), = self.render(unlit_scene).said
        self.assertIn("no light reaches anything", text)
        self.assertEqual((file, line), ("script.py", 7))

    def test_what_is_not_wanted_stops(self):
        asked = threading.Event()

        def is_wanted():
            was_asked = asked.is_set()
            asked.set()
            return not was_asked

        self.assertIsNone(self.render(ball_scene, piece(samples=1000000), is_wanted))
        self.assertIsNotNone(self.render(ball_scene))

    def test_a_crash_is_a_failure_and_the_next_piece_has_a_new_process(self):
        reply = self.render(crash)
        self.assertIn("by signal 6", reply.failure.text)
        self.assertIsNotNone(self.render(ball_scene).layers)

    def test_a_process_that_is_idle_ends_without_a_trace_and_is_replaced(self):
        with unittest.mock.patch("vantor._render_process.IDLE_SECONDS", 0.2):
            self.render(ball_scene)
            pid = self.renderer._process.pid
            while os.path.exists("/proc/{}".format(pid)):  # a zombie, too, is one too many
                time.sleep(0.01)
        self.assertIsNotNone(self.render(ball_scene).layers)

    def test_a_process_leaves_no_files(self):
        with unittest.mock.patch("tempfile.tempdir", self.folder):
            self.render(ball_scene)
            self.assertNotEqual(os.listdir(self.folder), [])
            self.renderer.end()
            self.assertEqual(os.listdir(self.folder), [])
            self.render(crash)
            self.assertEqual(os.listdir(self.folder), [])

    def test_exceptions_travel(self):
        reply = self.render(no_scene)
        self.assertRegex(str(pickle.loads(reply.failure.pickled)), "no_scene returns no vantor")
        reply = self.render(unusual, token="b")
        self.assertEqual(str(pickle.loads(reply.failure.pickled)), "UnusualError: this and that")
        self.assertIn("raise UnusualError", reply.failure.text)


class SourceTest(PackageTest):
    def script(self, text):
        with open(self.path("scene.py"), "w") as file:
            file.write(text)
        return self.path("scene.py")

    def test_a_script_travels_as_text_and_knows_its_frame(self):
        path = self.script("import vantor as vt\nscene = vt.Scene()\nscene.name = __name__, frame")
        source = pickle.loads(pickle.dumps(Source(path)))
        os.remove(path)
        self.assertEqual(source.build(7).name, ("__vantor__", 7))

    def test_what_is_no_source_is_said(self):
        self.assertRaisesRegex(TypeError, "cannot travel", Source, ball_scene())
        self.assertRaisesRegex(TypeError, "expected a function", Source, 3)
        self.assertRaises(FileNotFoundError, Source, self.path("none.py"))
        self.assertRaises(SyntaxError, Source, self.script("scene = ("))
        self.assertRaisesRegex(TypeError, 'scene.py makes no vantor.Scene in the variable "scene"',
                               Source(self.script("scene = 1")).build)


class HereTest(PackageTest):
    """Without a client."""

    def test_a_picture_is_that_of_the_scene(self):
        picture = farm.render(ball_scene, 24, 18, 2)
        expected = bytes(ball_scene().render(24, 18, 2).buffer())
        self.assertEqual(bytes(picture.buffer()), expected)
        job = farm.render(ball_scene, 24, 18, 2, wait=False)
        self.assertEqual(bytes(job.result(60).buffer()), expected)

    def test_a_message_has_the_scripts_line(self):
        with warnings.catch_warnings(record=True) as said:
            warnings.simplefilter("always")
            farm.render(unlit_scene, 4, 4, 1)
        self.assertEqual(said[0].filename, __file__)

    def animate(self, frames, pattern="{:02}.png", source=lambda _: ball_scene(), **options):
        return farm.animate(source, frames, self.path(pattern), 8, 6, 1, **options)

    def test_frames_are_files_and_finished_ones_are_not_made_again(self):
        made = []

        def build(frame):
            made.append(frame)
            return ball_scene()

        paths = self.animate(range(3), source=build)
        self.assertEqual(paths, [self.path(name) for name in ("00.png", "01.png", "02.png")])
        self.assertEqual(sorted(os.listdir(self.folder)), ["00.png", "01.png", "02.png"])
        os.remove(paths[1])
        self.assertEqual(self.animate(range(4), source=build), paths + [self.path("03.png")])
        self.assertEqual(made, [0, 1, 2, 1, 3])
        self.animate([2], source=build, again=True)
        self.assertEqual(made[5:], [2])

    def test_a_frame_that_fails_leaves_the_others(self):
        def build(frame):
            if frame == 1:
                raise KeyError("one")
            return ball_scene()

        self.assertRaisesRegex(farm.FarmError, "1 of 3 frames are not made; the first is 01.png",
                               self.animate, range(3), source=build)
        self.assertEqual(sorted(os.listdir(self.folder)), ["00.png", "02.png"])

    def test_what_cannot_be_is_said_before_anything_is_rendered(self):
        def build(_):
            self.fail("a scene was built")

        for error, words, pattern in ((ValueError, "name of its own", "a.png"),
                                      (ValueError, "expected one such", "{:q}.png"),
                                      (ValueError, "expected one such", "{}{}.png"),
                                      (FileNotFoundError, "no folder", "none/{}.png"),
                                      (Exception, "xyz|ending|format", "{}.xyz")):
            self.assertRaisesRegex(error, words, self.animate, range(2), pattern, build)
        self.assertRaisesRegex(TypeError, "needs a client", self.animate, range(2), wait=False)
        for client in (3, "tcp://127.0.0.1:8786"):
            self.assertRaisesRegex(TypeError, "expected a distributed.Client", self.animate,
                                   range(2), source=build, client=client)
        self.assertEqual(os.listdir(self.folder), [])


if __name__ == "__main__":
    unittest.main()
