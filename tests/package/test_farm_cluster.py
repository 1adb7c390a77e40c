"""vantor.farm on a cluster: a scheduler and three workers, processes on the loopback."""

import collections
import concurrent.futures
import functools
import os
import sys
import time
import unittest
import warnings

import vantor as vt
from cluster import Cluster, distributed
from scenes import PackageTest, ball_scene
from vantor import farm

SIZE = 96, 72
SAMPLES = 16


class LoggedScene(vt.Scene):
    """A scene that notes in a file which worker renders which window of it. The second one of each
    worker is not handed on before there is a file ".go"."""

    log = None

    def render_for(self, *arguments, window, **options):
        picture = super().render_for(*arguments, window=window, **options)
        with open(self.log, "a") as file:
            file.write("{} {}\n".format(os.getppid(), window))
        while len(windows_of(self.log)[os.getppid()]) == 2 and not os.path.exists(self.log + ".go"):
            time.sleep(0.01)
        return picture


def windows_of(log):
    """What each worker has rendered, by its process id."""
    found = collections.defaultdict(list)
    if os.path.exists(log):
        with open(log) as file:
            for line in file:
                pid, window = line.strip().split(" ", 1)
                found[int(pid)].append(window)
    return found


def logged_ball(log):
    scene = LoggedScene()
    scene.log = log
    scene.camera("perspective", position=(0, 1, 6), target=(0, 1, 0), fov=35)
    scene.light("sky", sun_direction=(1, 2, 1))
    with scene.material("plastic", color=(0.8, 0.1, 0.1)), vt.translate(0, 1, 0):
        scene.add("sphere", radius=1.0)
    scene.object("disk")  # of which it is warned
    return scene


def frame_scene(folder, frame):
    with open(os.path.join(folder, "built"), "a") as file:
        file.write("{}\n".format(frame))
    if frame == 5:
        raise KeyError("five")
    return ball_scene()


def crash():
    os.abort()


@unittest.skipUnless(distributed, "this interpreter has no distributed (Debian: "
                                  "python3-distributed, for /usr/bin/python3)")
@unittest.skipIf(hasattr(sys, "gettotalrefcount"),
                 "not tried under a debug build: it has no compiled part to check for leaks")
class ClusterTest(PackageTest):
    @classmethod
    def setUpClass(cls):
        cls.cluster = Cluster()
        cls.addClassCleanup(cls.cluster.close)
        cls.client = cls.cluster.client

    def setUp(self):
        super().setUp()
        warnings.simplefilter("default")  # distributed has warnings of its own
        warnings.simplefilter("error", vt.SceneWarning)

    def wait_until(self, holds, job=None):
        """Waits for what must come, of a job while it runs."""
        end = time.monotonic() + 300
        while not holds():
            self.assertLess(time.monotonic(), end, self.cluster.log())
            if job and job.done():
                self.fail("the job is over: {}".format(job.result()))
            time.sleep(0.01)

    def test_a_killed_worker_costs_its_own_pieces_and_the_picture_is_that_of_one_process(self):
        expected = ball_scene().render(*SIZE, SAMPLES, aovs="normal")
        log = self.path("log")
        with warnings.catch_warnings(record=True) as said:
            warnings.simplefilter("always", vt.SceneWarning)
            job = farm.render(functools.partial(logged_ball, log), *SIZE, SAMPLES,
                              client=self.client, pieces=27, aovs="normal", wait=False)
            self.wait_until(lambda: [len(own) for own in windows_of(log).values()] == [2, 2, 2],
                            job)
            victim = self.cluster.kill_worker()
            self.addCleanup(self.cluster.replace_worker)
            self.assertFalse(job.done())
            with open(log + ".go", "w"):
                pass
            picture = job.result(600)
        for name in ("color", "normal"):
            self.assertEqual(bytes(picture.buffer(name)), bytes(expected.buffer(name)))
        self.assertEqual(job.progress, 1)
        # Warned once, of the line in the function.
        said = [(os.path.basename(w.filename), str(w.message)) for w in said
                if w.category is vt.SceneWarning]
        self.assertEqual(len(said), 1)
        self.assertEqual(said[0][0], os.path.basename(__file__))
        self.assertIn("never added", said[0][1])

        by = windows_of(log)
        of_victim = by.pop(victim)
        of_others = [window for own in by.values() for window in own]
        self.assertEqual(len(by), 2)
        self.assertEqual(len(of_others), len(set(of_others)))  # nothing of theirs twice
        self.assertIn(of_victim[1], of_others)  # what it had not handed on
        self.assertEqual(len(set(of_victim + of_others)), sum(job.workers.values()))

    def test_pieces_and_ranges_are_at_least_one(self):
        for name in ("pieces", "ranges"):
            with self.assertRaisesRegex(ValueError, name + ": expected 1 or more, got 0"):
                farm.render(ball_scene, *SIZE, 4, client=self.client, **{name: 0})

    def test_ranges_of_samples_are_the_picture_of_one_process(self):
        expected = ball_scene().render(*SIZE, 64, aovs="normal")
        picture = farm.render(ball_scene, *SIZE, 64, client=self.client, pieces=4, ranges=4,
                              aovs="normal")
        for name in ("color", "normal"):
            self.assertEqual(bytes(picture.buffer(name)), bytes(expected.buffer(name)))

    def test_cancelling_keeps_what_is_there_and_stops_the_workers(self):
        job = farm.render(ball_scene, *SIZE, 20000, client=self.client, pieces=30, wait=False)
        self.wait_until(lambda: job.progress > 0, job)
        shown = job.preview()
        self.assertGreater(max(shown.buffer().cast("B").cast("f")), 0)
        job.cancel()
        picture = job.result(60)
        self.assertEqual((picture.width, picture.height), SIZE)
        self.assertLess(job.progress, 1)
        self.wait_until(lambda: self.cluster.children() == 0)

        job = farm.render(ball_scene, *SIZE, 10000000, client=self.client, wait=False)
        self.assertRaises(TimeoutError, job.result, 0.05)
        job.cancel()
        self.assertRaises(concurrent.futures.CancelledError, job.result, 60)
        # One that nobody holds any more.
        job = farm.render(ball_scene, *SIZE, 10000000, client=self.client, wait=False)
        self.wait_until(lambda: self.cluster.children() > 0, job)
        del job
        self.wait_until(lambda: self.cluster.children() == 0)

    def test_a_client_that_is_closed(self):
        client = self.cluster.new_client()
        job = farm.render(ball_scene, *SIZE, 10000000, client=client, wait=False)
        self.wait_until(lambda: self.cluster.children() > 0, job)
        client.close()
        self.assertRaisesRegex(farm.FarmError, "client is clos", job.result, 60)
        self.assertRaisesRegex(farm.FarmError, "client is clos", farm.render, ball_scene, 8, 6,
                               client=client)
        self.wait_until(lambda: self.cluster.children() == 0)

    def test_an_animation_is_made_once(self):
        folder = self.path("frames")
        os.mkdir(folder)
        source = functools.partial(frame_scene, folder)

        def animate(frames, **options):
            return farm.animate(source, frames, os.path.join(folder, "{}.exr"), 16, 12, 2,
                                client=self.client, **options)

        paths = animate(range(4))
        self.assertEqual([os.path.basename(path) for path in paths],
                         ["0.exr", "1.exr", "2.exr", "3.exr"])
        self.assertRaisesRegex(farm.FarmError, "1 of 7 frames are not made; the first is 5.exr",
                               animate, range(7))
        with open(os.path.join(folder, "built")) as file:
            self.assertEqual(sorted(file.read().split()), list("0123456"))
        expected = bytes(ball_scene().render(16, 12, 2).buffer())
        self.assertEqual(bytes(vt.Picture.load(paths[3]).buffer()), expected)
        self.assertEqual(sorted(os.listdir(folder)),
                         [name + ".exr" for name in "012346"] + ["built"])

    def test_what_goes_wrong_on_a_worker_is_an_exception_here(self):
        self.assertRaisesRegex(farm.FarmError, "by signal 6", farm.render, crash, 8, 6,
                               client=self.client)
        warnings.simplefilter("ignore", vt.SceneWarning)
        with self.assertRaises(FileNotFoundError) as caught:
            farm.render(functools.partial(logged_ball, "/none/log"), 8, 6, client=self.client)
        self.assertIn("in render_for", str(caught.exception.__cause__))
        self.assertRaisesRegex(ValueError, "no pixels", farm.render, ball_scene, 8, 6,
                               window=(0, 0, 0, 0), client=self.client)


if __name__ == "__main__":
    unittest.main()
