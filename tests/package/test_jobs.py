"""Jobs: passes in processes of their own."""

import asyncio
import concurrent.futures
import contextlib
import io
import os
import signal
import threading
import time
import unittest
import warnings

import vantor as vt
from scenes import PackageTest, ball_scene, in_silence, is_ended, lit_scene, run_script

try:
    import tqdm
except ImportError:
    tqdm = None


def children():
    """The processes that this one has started and that are still there, ended or not."""
    with open("/proc/self/task/{}/children".format(threading.get_native_id())) as file:
        return file.read().split()


def long_job():
    """A job that takes much longer than a test may."""
    return ball_scene().render(800, 600, 1000, wait=False)


def when_begun(job):
    while job.progress == 0:
        time.sleep(0.01)
    return job


class JobTest(PackageTest):
    def tearDown(self):
        self.assertEqual(children(), [])

    def test_the_picture_is_that_of_a_pass_that_was_waited_for(self):
        scene = ball_scene()
        job = scene.render(20, 15, 4, aovs=["depth"], window=(0, 0, 1, 0.5), wait=False)
        picture = scene.render(20, 15, 4, aovs=["depth"], window=(0, 0, 1, 0.5))
        for name in ("color", "depth"):
            self.assertEqual(bytes(job.result().buffer(name)), bytes(picture.buffer(name)))
        self.assertTrue(job.done())
        self.assertEqual(job.progress, 1)
        self.assertEqual((job.result().width, job.result().height), (20, 7))

    def test_several_at_once_after_a_pass_and_from_threads(self):
        scene = ball_scene()
        expected = bytes(scene.render(24, 24, 4).buffer())
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            jobs = [pool.submit(lambda: scene.render(24, 24, 4, wait=False)) for _ in range(4)]
            pictures = [job.result().result(60) for job in jobs]
        self.assertEqual({bytes(picture.buffer()) for picture in pictures}, {expected})

    def test_after_a_pass_a_job_has_as_many_threads(self):
        lit_scene().render(8, 8, 1)
        job = when_begun(long_job())
        (child,) = children()
        # One for each processor, and one that watches for the script's end.
        expected = len(os.sched_getaffinity(0)) + 1
        tasks = "/proc/{}/task".format(child)
        end = time.monotonic() + 30
        while len(os.listdir(tasks)) < expected and time.monotonic() < end:
            time.sleep(0.01)
        threads = len(os.listdir(tasks))
        job.cancel()
        in_silence(lambda: job.result(60))
        self.assertEqual(threads, expected)

    def test_the_scene_of_the_script_goes_its_own_way(self):
        scene = lit_scene()
        job = scene.render(12, 12, 4, wait=False)
        scene.add("sphere", center=(0, 1, 0))
        self.assertNotEqual(bytes(job.result().buffer()), bytes(scene.render(12, 12, 4).buffer()))

    def test_cancelling_keeps_what_is_there(self):
        job = when_begun(long_job())
        self.assertFalse(job.done())
        self.assertLess(job.progress, 1)
        job.cancel()
        with warnings.catch_warnings(record=True) as said:
            warnings.simplefilter("always")
            picture = job.result(60)
        self.assertIn("interrupted", str(said[0].message))
        self.assertNotIn("/", str(said[0].message))
        self.assertGreater(max(picture.buffer().cast("B").cast("f")), 0)
        job.cancel()  # of one that is done: nothing

    def test_a_preview_is_what_is_finished(self):
        scene = ball_scene()
        whole = scene.render(160, 120, 64, window=(0.1, 0.2, 0.9, 1)).buffer().cast("B").cast("f")
        job = scene.render(160, 120, 64, window=(0.1, 0.2, 0.9, 1), wait=False)
        previews = []
        while not job.done():
            previews.append(job.preview())
        job.result()
        previews.append(job.preview())
        self.assertEqual(bytes(previews[-1].buffer()), bytes(whole))
        some = [preview for preview in previews if preview]
        for preview in some[:: max(len(some) // 20, 1)]:
            self.assertEqual((preview.width, preview.height), (128, 96))
            pixels = preview.buffer().cast("B").cast("f")
            # Black where it is not finished, and as it will be where it is.
            self.assertTrue(all(a in (0, b) for a, b in zip(pixels, whole)))

    def test_a_window_that_is_none_is_the_renderers_error(self):
        nan = float("nan")
        for window in ((1, 1, 0, 0), (nan, 0, 1, 1), (0, 0, 1e300, 1e300)):
            job = ball_scene().render(8, 8, 1, window=window, wait=False)
            with self.assertRaisesRegex(vt.SceneError, "is no part of the picture"):
                in_silence(job.result)

    def test_no_preview_of_a_job_that_has_not_begun(self):
        scene = vt.Scene()
        scene.light("sky")
        job = scene.render(8, 8, 1, wait=False)
        self.assertRaises(vt.SceneError, in_silence, job.result)
        self.assertIsNone(job.preview())

    @unittest.skipUnless(tqdm, "this interpreter has no tqdm (Debian: python3-tqdm)")
    def test_a_bar_is_shown(self):
        shown = io.StringIO()
        with contextlib.redirect_stderr(shown):
            picture = ball_scene().render(20, 15, 4, progress=True)
        self.assertIn("render: 100%", shown.getvalue())
        self.assertEqual(bytes(picture.buffer()), bytes(ball_scene().render(20, 15, 4).buffer()))

    @unittest.skipIf(tqdm, "this interpreter has tqdm")
    def test_a_bar_that_cannot_be_shown_is_said(self):
        self.assertRaisesRegex(ImportError, "needs tqdm", ball_scene().render, 20, 15, 4,
                               progress=True)

    def test_cancelling_at_once(self):
        job = long_job()
        job.cancel()
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", vt.SceneWarning)
            try:
                job.result(60)
            except concurrent.futures.CancelledError:
                pass

    def test_a_crash_is_an_exception(self):
        job = when_begun(long_job())
        os.kill(job._pid, signal.SIGKILL)
        self.assertRaisesRegex(vt.JobError, "by signal 9", job.result, 60)
        self.assertRaisesRegex(vt.JobError, "by signal 9", job.result)
        self.assertTrue(job.done())

    def test_a_timeout_leaves_the_job(self):
        job = long_job()
        self.assertRaises(TimeoutError, job.result, 0.05)
        self.assertFalse(job.done())

    def test_a_job_that_is_forgotten_ends(self):
        pid = long_job()._pid
        self.assertRaises(ProcessLookupError, os.kill, pid, 0)

    def test_awaiting(self):
        async def both():
            scene = ball_scene()
            ticks = []

            async def tick():
                while True:
                    ticks.append(1)
                    await asyncio.sleep(0.001)

            ticking = asyncio.ensure_future(tick())
            pictures = await asyncio.gather(scene.render(200, 150, 8, wait=False),
                                            scene.render(20, 15, 4, wait=False))
            ticking.cancel()
            return pictures, len(ticks)

        pictures, ticks = asyncio.run(both())
        self.assertEqual([picture.width for picture in pictures], [200, 20])
        self.assertGreater(ticks, 1)

    def test_messages_come_with_the_result(self):
        scene = lit_scene()
        scene.object("sphere")
        with warnings.catch_warnings(record=True) as said:
            warnings.simplefilter("always")
            job = scene.render(4, 4, 1, wait=False)
            self.assertEqual(said, [])
            job.result(60)
            self.assertEqual([warning.filename for warning in said], [__file__])
            job.result()
            self.assertEqual(len(said), 1)

    def test_why_there_is_no_picture_is_told_as_often_as_it_is_asked(self):
        job = vt.Scene().render(4, 4, 1, wait=False)
        for _ in range(2):
            self.assertRaisesRegex(vt.SceneError, "no camera", job.result, 60)

    def test_no_child_outlives_the_script(self):
        script = ("import os, signal, sys, vantor\ns = vantor.Scene()\n"
                  "s.camera('perspective')\ns.light('sky')\n"
                  "j = s.render(800, 600, 1000, wait=False)\nprint(j._pid, flush=True)\n{}")
        for end in ("sys.exit()", "os.kill(os.getpid(), signal.SIGKILL)"):
            _, output, _ = run_script(script.format(end))
            deadline = time.monotonic() + 30
            while os.path.exists("/proc/" + output.strip()) and not is_ended(output.strip()):
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.05)


if __name__ == "__main__":
    unittest.main()
