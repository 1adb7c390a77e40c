"""Points, and instances with colours: from arrays to pictures."""

import array
import unittest

import vantor as vt
import vantorPM
from scenes import PackageTest, needs_numpy, numpy

RED, GREEN, BLUE = (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0)


def row_scene(**options):
    """A scene of which the picture has three parts, around x = -2, 0 and 2."""
    scene = vt.Scene(**options)
    scene.camera("orthographic", position=(0, 0, 5), target=(0, 0, 0), height=2)
    scene.light("environment", radiance=1.0)
    return scene


def middles(scene):
    """The albedo in the middles of the three parts."""
    pixels = scene.render(18, 6, samples=1, aovs=["albedo"]).buffer("albedo")
    return [tuple(round(pixels[3, x, channel], 4) for channel in range(3)) for x in (3, 9, 15)]


class Points(PackageTest):
    def test_sequences_and_buffers(self):
        flat = array.array("d", [-2, 0, 0, 0, 0, 0, 2, 0, 0])
        for positions in ([(-2, 0, 0), (0, 0, 0), (2, 0, 0)],
                          memoryview(flat).cast("B").cast("d", (3, 3)),
                          vt.points([(-2, 0, 0), (0, 0, 0), (2, 0, 0)]).positions):
            for radii in (0.5, [0.5, 0.5, 0.5], array.array("f", [0.5, 0.5, 0.5])):
                scene = row_scene(strict=True)
                cloud = vt.points(positions, radii, [RED, GREEN, BLUE])
                self.assertEqual(len(cloud), 3)
                with scene.material("diffuse", reflectance=0.5):
                    made = scene.add(cloud)
                self.assertEqual((made.kind, made.type), ("object", "points"))
                self.assertEqual(middles(scene), [(0.5, 0, 0), (0, 0.5, 0), (0, 0, 0.5)])

    @needs_numpy
    def test_numpy_arrays(self):
        positions = numpy.array([[-2, 0, 0], [0, 0, 0], [2, 0, 0]])
        for kind in ("f4", "f8", ">f8"):
            scene = row_scene(strict=True)
            with scene.material("diffuse", reflectance=1.0):
                scene.add(vt.points(positions.astype(kind), numpy.full(3, 0.5, kind),
                                    numpy.eye(3, dtype=kind)))
            self.assertEqual(middles(scene), [RED, GREEN, BLUE])
        self.assertEqual(vt.to_numpy(vt.points(positions).positions).tolist(), positions.tolist())
        self.assertEqual(vt.points(positions, numpy.float32(0.25)).radii, 0.25)

    def test_transforms_act_on_them(self):
        scene = row_scene(strict=True)
        with scene.material("diffuse", reflectance=1.0):
            scene.add(vt.points([(-1, 0, 0), (1, 0, 0)], 0.2, [RED, BLUE]), scale=2,
                      transform=vt.translate(0, 0, -1))
        self.assertEqual(middles(scene), [RED, (0, 0, 0), BLUE])

    def test_what_is_left_out_is_the_renderers_default(self):
        cloud = vt.points([(0, 0, 0)])
        self.assertIsNone(cloud.radii)
        self.assertIsNone(cloud.colors)
        scene = row_scene(strict=True)
        scene.add(cloud)  # 0.01 wide

    def assert_refused(self, error, parts, *arguments):
        with self.assertRaises(error) as caught:
            vt.points(*arguments)
        for part in ("points: ",) + parts:
            self.assertIn(part, str(caught.exception))

    def test_shapes_that_do_not_match(self):
        three = [(0, 0, 0)] * 3
        self.assert_refused(ValueError, ("positions", "(N, 3)", "(3, 2)"), [(0, 0)] * 3)
        self.assert_refused(ValueError, ("positions", "(N, 3)", "(3,)"), (1, 2, 3))
        self.assert_refused(ValueError, ("radii", "(3,)", "(3, 3)", "(2,)"), three, [1, 2])
        self.assert_refused(ValueError, ("radii", "(N,)", "(1, 3)"), three, [[1, 2, 3]])
        self.assert_refused(ValueError, ("colors", "(3, 3)", "(2, 3)"), three, 1, [RED] * 2)
        self.assert_refused(ValueError, ("colors", "(N, 3)", "(3,)"), three, 1, RED)
        self.assert_refused(TypeError, ("positions", "numbers"), ["abc"])
        self.assert_refused(TypeError, ("radii",), three, "thick")

    def test_what_the_renderer_refuses(self):
        scene = row_scene()
        for radii in ([0.5, -1], [0.5, float("nan")]):
            with self.assertWarnsRegex(vt.SceneWarning, "radii.*1 unusable element, 1"):
                scene.add(vt.points([(0, 0, 0), (1, 0, 0)], radii))
        with self.assertWarnsRegex(vt.SceneWarning, "leaves out point 0"):
            scene.add(vt.points([(float("inf"), 0, 0), (1, 0, 0)], 0.5))
        strict = row_scene(strict=True)
        with self.assertRaisesRegex(vt.SceneError, "is empty"):
            strict.add(vt.points([]))


class ColoredInstances(PackageTest):
    def test_each_has_its_own(self):
        places = [vt.translate(x, 0, 0) for x in (-2, 0, 2)]
        scene = row_scene(strict=True)
        with scene.material("diffuse", reflectance=0.5):
            scene.add("instances", object=scene.object("box", min=(-0.5, -0.5, 0),
                                                       max=(0.5, 0.5, 0.5)),
                      places=places, colors=[RED, GREEN, BLUE])
        self.assertEqual(middles(scene), [(0.5, 0, 0), (0, 0.5, 0), (0, 0, 0.5)])

    @needs_numpy
    def test_from_numpy_and_of_points(self):
        places = numpy.tile(numpy.eye(4), (3, 1, 1))
        places[:, 3, 0] = -2, 0, 2
        scene = row_scene(strict=True)
        pair = scene.object("points", positions=numpy.array([[0, 0, -0.1]]),
                            radii=numpy.array([0.5]), colors=numpy.array([[0.5, 0.5, 1]]))
        with scene.material("diffuse", reflectance=1.0):
            scene.add("instances", object=pair, places=places, colors=numpy.eye(3, dtype="f4"))
        self.assertEqual(middles(scene), [(0.5, 0, 0), (0, 0.5, 0), BLUE])

    def test_another_number_of_colors(self):
        scene = row_scene()
        with self.assertWarnsRegex(vt.SceneWarning, r"2 elements \(expected one for each of the 1 "
                                                    r"places\); it is left out"):
            scene.add("instances", object=scene.object("box"), places=[vt.scale(1)],
                      colors=[RED, BLUE])
        with self.assertRaisesRegex(ValueError, r"\(N, 3\), got \(1, 2\)"):
            scene.object("instances", object=scene.object("box"), places=[vt.scale(1)],
                         colors=[(1, 2)])


class Words(unittest.TestCase):
    def test_what_people_try(self):
        for word in ("point", "particles", "pointcloud", "spheres"):
            scene = vt.Scene()
            with self.assertWarnsRegex(vt.SceneWarning, 'did you mean "points"'):
                scene.object(word)

    def test_a_module_array_is_taken_as_it_is(self):
        positions = vantorPM.vector3array()
        self.assertIs(vt.points(positions).positions, positions)


if __name__ == "__main__":
    unittest.main()
