"""The battery of bench/: its scenes show what the peer shows, and its errors are those of noise."""

import math
import os
import sys
import unittest

from scenes import PackageTest, needs_numpy, numpy

if numpy:
    sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "bench"))
    import battery

# Means of the pictures that Cycles 4.3 has drawn, over pixels and channels.
PEER_MEANS = {
    "cornell": 0.1190, "indirect_room": 0.1973, "caustics": 0.0966, "environment": 0.9939,
    "thousand_lights": 0.1242, "haze": 0.0323, "grass": 0.2247, "glossy_interior": 0.1247,
    "big_geometry": 0.4696,
}


@needs_numpy
class Battery(PackageTest):
    def test_scenes_have_the_means_of_the_peers_pictures(self):
        self.assertEqual(set(battery.battery_scenes.SCENES), set(PEER_MEANS))
        for name, mean in PEER_MEANS.items():
            with self.subTest(scene=name):
                (picture,), _ = battery.Ours(name).draw([(16, 12, 64, 1)])
                self.assertLess(abs(picture.mean() / mean - 1), 0.08)

    def test_errors_are_those_of_the_noise(self):
        chance = numpy.random.default_rng(1)

        def drawn(noise):
            return 2 + noise * chance.normal(size=(192, 256, 3))

        reference = battery.Reference(drawn(0.5), drawn(0.5))
        picture = drawn(0.2)
        of_all, trimmed = battery.mean_errors(reference, [picture, drawn(0.2)])
        self.assertLess(abs(of_all / 0.1 - 1), 0.03)
        self.assertLess(trimmed, of_all)
        picture[5, 7] = 100
        with_a_firefly = battery.mean_errors(reference, [picture])
        self.assertGreater(with_a_firefly[0], 2 * of_all)
        self.assertLess(abs(with_a_firefly[1] / trimmed - 1), 0.02)

    def test_samples_are_read_off_the_curve(self):
        curve = [(1, 0.4), (4, 0.2), (8, 0.1)]
        for error, samples in ((0.5, 1), (0.4, 1), (0.2, 4), (0.1 * math.sqrt(2), math.sqrt(32)),
                               (0.05, 32)):
            self.assertAlmostEqual(battery.samples_to(error, curve), samples)


if __name__ == "__main__":
    unittest.main()
