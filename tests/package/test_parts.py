"""Ranges of samples: parts of a picture, put together; and the time limit."""

import os
import pickle
import unittest

import vantor as vt
from scenes import PackageTest, ball_scene, floats, in_silence

AOVS = ("albedo", "normal", "depth", "position", "object_id", "variance")

# Of 100 samples: two groups, two more, and the rest, whose last group is not full.
RANGES = ((0, 32), (32, 32), (64, 36))


def numbers(picture):
    return {name: bytes(picture.buffer(name)) for name in picture.names}


class PartsTest(PackageTest):
    def parts(self, scene, **options):
        return [scene.render(40, 30, count, first_sample=first, samples_in_all=100, **options)
                for first, count in RANGES]

    def test_parts_are_bit_for_bit_the_one_pass(self):
        scene = ball_scene()
        whole = scene.render(40, 30, 100, aovs=AOVS)
        parts = self.parts(scene, aovs=AOVS)
        self.assertEqual([part.samples for part in parts],
                         [(0, 32, 100), (32, 64, 100), (64, 100, 100)])
        self.assertIsNone(whole.samples)
        for order in (parts, parts[::-1]):
            self.assertEqual(numbers(vt.merge(order)), numbers(whole))
        # In two steps, over another process.
        some = pickle.loads(pickle.dumps(vt.merge(parts[1:])))
        self.assertEqual(some.samples, (32, 100, 100))
        self.assertEqual(numbers(vt.merge([some, parts[0]])), numbers(whole))
        for part in parts:
            self.assertNotEqual(numbers(part)["color"], numbers(whole)["color"])

    def test_denoised_parts_are_put_together_as_their_mean(self):
        scene = ball_scene()
        own = self.path("own.exr")
        scene.imager("file", name=own)
        smooth, raw = [], []
        for first, count in RANGES:
            smooth.append(scene.render(40, 30, count, first_sample=first, samples_in_all=100,
                                       window=(0.25, 0, 1, 0.5), aovs="variance", denoise=True))
            raw.append(vt.Picture.load(own))
            os.rename(own, self.path("{}.exr".format(first)))
        self.assertNotEqual(bytes(smooth[0].buffer()), bytes(raw[0].buffer()))
        merged = vt.merge(smooth)
        means = [sum(weight * value for weight, value in zip((32, 32, 36), values)) / 100
                 for values in zip(*map(floats, smooth))]
        for value, mean in zip(floats(merged), means):
            self.assertAlmostEqual(value, mean, delta=1e-6 * max(1, mean))
        # What is not denoised is as ever, in the same pass.
        scene.imager("file", name=self.path("whole.exr"))
        whole = scene.render(40, 30, 100, window=(0.25, 0, 1, 0.5), aovs="variance")
        self.assertEqual(bytes(merged.buffer("variance")), bytes(whole.buffer("variance")))
        of_files = vt.merge([self.path("{}.exr".format(first)) for first, _ in RANGES])
        self.assertEqual(bytes(of_files.buffer()), bytes(whole.buffer()))
        # Nor does a limit that is not reached make a difference.
        limited = [scene.render(40, 30, count, first_sample=first, samples_in_all=100,
                                window=(0.25, 0, 1, 0.5), aovs="variance", denoise=True,
                                time_limit=1000) for first, count in RANGES]
        self.assertEqual(numbers(vt.merge(limited)), numbers(merged))
        # Of two samples at a range's end nothing can be told.
        with self.assertWarnsRegex(vt.SceneWarning, "as it is"):
            end = scene.render(40, 30, 2, first_sample=16, samples_in_all=18, denoise=True)
        self.assertEqual(bytes(end.buffer()), bytes(scene.render(
            40, 30, 2, first_sample=16, samples_in_all=18).buffer()))

    def test_every_cut_is_the_same(self):
        scene = ball_scene()
        whole = numbers(scene.render(24, 16, 112))
        for cuts in ((64, 112), (16, 32, 64, 96, 112), (32, 48, 64, 80, 96, 112)):
            parts = [scene.render(24, 16, end - first, first_sample=first, samples_in_all=112)
                     for first, end in zip((0, *cuts), cuts)]
            self.assertEqual(numbers(vt.merge(parts)), whole)

    def test_files_of_parts_are_bit_for_bit_the_one_pass(self):
        scene = ball_scene()
        for what in ("color", *AOVS):
            paths = []
            for first, count in RANGES:
                paths.append(self.path("{}-{}.exr".format(what, first)))
                scene.imager("file", name=paths[-1], what=what)
                scene.render(40, 30, count, window=(0.25, 0, 1, 0.5), first_sample=first,
                             samples_in_all=100)
            scene.imager("file", name=self.path("whole.exr"), what=what)
            scene.render(40, 30, 100, window=(0.25, 0, 1, 0.5))
            merged = vt.merge(paths)
            merged.save(self.path("merged.exr"))
            self.assertEqual((merged.width, merged.height, merged.origin), (30, 15, (10, 0)))
            self.assertEqual(numbers(vt.Picture.load(self.path("merged.exr"))),
                             numbers(vt.Picture.load(self.path("whole.exr"))), what)

    def test_the_exposure_of_files_is_not_in_their_sums(self):
        scene = ball_scene()
        paths = []
        for first, count in RANGES:
            paths.append(self.path("{}.exr".format(first)))
            scene.imager("file", name=paths[-1], exposure=1.3)
            scene.render(40, 30, count, first_sample=first, samples_in_all=100)
        self.assertEqual(numbers(vt.merge(paths)), numbers(scene.render(40, 30, 100)))

    def test_a_job_makes_a_part(self):
        scene = ball_scene()
        jobs = self.parts(scene, wait=False)
        pictures = [job.result() for job in jobs]
        self.assertEqual(numbers(vt.merge(pictures)), numbers(scene.render(40, 30, 100)))

    def test_settings_of_the_script_stay(self):
        scene = ball_scene()
        plain = numbers(scene.render(40, 30, 100))
        settings = scene.imager("settings", seed=5)
        other = numbers(scene.render(40, 30, 100))
        self.assertNotEqual(plain, other)
        self.assertEqual(numbers(vt.merge(self.parts(scene))), other)
        self.assertEqual(numbers(scene.render(40, 30, 100)), other)
        scene.imager("settings")
        self.assertEqual(numbers(scene.render(40, 30, 100)), plain)
        with settings:
            self.assertEqual(numbers(vt.merge(self.parts(scene))), other)

    def test_what_cannot_be_merged(self):
        scene = ball_scene()
        parts = self.parts(scene)
        whole = scene.render(40, 30, 16)
        other = scene.render(40, 30, 16, first_sample=32, samples_in_all=64)
        smaller = scene.render(20, 30, 32, first_sample=32, samples_in_all=100)
        whole.save(self.path("whole.exr"))
        for pictures, error, text in (
            ([], ValueError, "expected pictures, got none"),
            ([parts[0], parts[2]], ValueError, "samples 32 to 63 are missing"),
            ([parts[0], parts[0]], ValueError, "samples 0 to 31 are there twice"),
            ([parts[0], other], ValueError, "of 100 samples .* of 64"),
            ([parts[0], smaller], ValueError, "of one window"),
            ([whole], ValueError, 'no "color" of a range'),
            ([self.path("whole.exr")], OSError, "no part of a larger picture"),
            ([self.path("none.exr")], OSError, "No such file"),
            ([3], TypeError, "expected a Picture or a path"),
        ):
            with self.assertRaisesRegex(error, text):
                vt.merge(pictures)

    def test_a_broken_file_is_told(self):
        scene = ball_scene()
        path = self.path("part.exr")
        scene.imager("file", name=path)
        scene.render(40, 30, 16, samples_in_all=32)
        with open(path, "rb") as file:
            content = file.read()
        for broken in (content[: len(content) // 2], content.replace(b"hits.low", b"hats.low"),
                       content.replace(b"radiance", b"radianze"), content[:100]):
            with open(path, "wb") as file:
                file.write(broken)
            self.assertRaises(OSError, vt.merge, [path])

    def test_ranges_that_are_no_parts_are_refused(self):
        scene = ball_scene()
        for first, count, in_all in ((8, 16, 64), (16, 32, 64), (0, 24, 64), (0, 48, 64),
                                     (32, 64, 64), (0, 16, 8)):
            with self.assertRaisesRegex(vt.SceneError, "samples {} to {}".format(
                    first, first + count - 1)):
                in_silence(lambda: scene.render(8, 8, count, first_sample=first,
                                                samples_in_all=in_all))

    def test_an_interrupted_part_is_none(self):
        job = ball_scene().render(400, 300, 1 << 14, samples_in_all=1 << 15, wait=False)
        while job.progress == 0:
            pass
        job.cancel()
        self.assertIsNone(in_silence(job.result).samples)


class TimeLimitTest(PackageTest):
    def test_a_pass_in_time_is_the_same_picture(self):
        scene = ball_scene()
        whole = scene.render(40, 30, 100, aovs=AOVS)
        limited = scene.render(40, 30, 100, aovs=AOVS, time_limit=1000)
        self.assertEqual(numbers(limited), numbers(whole))
        parts = [scene.render(40, 30, count, first_sample=first, samples_in_all=100,
                              time_limit=1000) for first, count in RANGES]
        self.assertEqual(numbers(vt.merge(parts)), numbers(whole)["color"] and
                         {"color": numbers(whole)["color"]})

    def test_a_pass_beyond_its_time_finishes_what_it_began(self):
        scene = ball_scene()
        path = self.path("limited.exr")
        scene.imager("file", name=path)
        limited = scene.render(40, 30, 1 << 20, time_limit=1e-6)
        first = scene.render(40, 30, 16, samples_in_all=1 << 20)
        self.assertEqual(numbers(limited), numbers(first))
        self.assertIsNone(limited.samples)
        scene.render(40, 30, 1 << 20, time_limit=1e-6)
        with open(path, "rb") as file:
            self.assertIn(b"16 samples a pixel; stopped by the time limit, 1048576 were asked for",
                          file.read())

    def test_few_samples_need_no_round(self):
        scene = ball_scene()
        self.assertEqual(numbers(scene.render(8, 8, 3, time_limit=1e-6)),
                         numbers(scene.render(8, 8, 3)))


if __name__ == "__main__":
    unittest.main()
