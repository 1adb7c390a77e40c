"""Bad input to every entry of the package: one clear error, and nothing added, lost or left behind.
What belongs to arrays alone is in test_values.py, to jobs in test_jobs.py, to the farm in its own.
"""

import gc
import http.client
import math
import os
import types
import unittest
import warnings

import vantor as vt
from scenes import PackageTest, ball_scene, lit_scene, needs_numpy, numpy
from test_models import why_not
from vantor import farm

try:
    import aiohttp
except ImportError:
    aiohttp = None

NAN = math.nan
CORNERS = [(0, 0, 0), (1, 0, 0), (0, 1, 0)]


class RefusedTest(PackageTest):
    """Each call raises an error of that class, whose text has those words."""

    def assert_refused(self, rows):
        for error, words, call, *arguments in rows:
            with self.subTest(words, arguments=arguments):
                with self.assertRaisesRegex(error, words) as raised:
                    call(*arguments)
                self.assertNotIn("\n", str(raised.exception))

    def test_what_a_scene_is_made_of(self):
        scene = lit_scene(strict=True)
        count = len(scene.handles)

        def mesh(points, triangles=((0, 1, 2),)):
            scene.object("mesh", points=points, triangles=triangles)

        def camera(**parameters):
            scene.camera("perspective", **parameters)

        self.assert_refused((
            (ValueError, r"points: expected the shape \(N, 3\), got \(3, 2\)", mesh,
             [(0, 0), (1, 0), (0, 1)]),
            (vt.SceneError, "expected finite", mesh, [(0, 0, NAN), (1, 0, 0), (0, 1, 0)]),
            (vt.SceneError, "there are no points", mesh, []),
            (vt.SceneError, "no triangle", mesh, CORNERS, []),
            (vt.SceneError, "indices from 0 to 2", mesh, CORNERS, [(0, 1, -1)]),
            (TypeError, "triangles: expected integers", mesh, CORNERS, [(0, 1, 1.5)]),
            (OverflowError, "triangles: expected integers of 32 bits", mesh, CORNERS,
             [(0, 1, 2**40)]),
            (TypeError, "expected numbers, got NoneType", mesh, [(0, 0, None)]),
            (TypeError, "expected numbers, got str", mesh, "abc"),
            (vt.SceneError, "position.*expected finite", lambda: camera(position=(0, NAN, 1))),
            (ValueError, r"position: expected the shape \(3,\)", lambda: camera(position=(0, 1))),
            (TypeError, "fov: expected a number, got '35'", lambda: camera(fov="35")),
            (vt.SceneError, "fov.*expected finite", lambda: camera(fov=math.inf)),
            (TypeError, "newCamera: expected the name of a type", scene.camera, b"perspective"),
            (TypeError, "trimmers: expected a trimmer or several, got 3",
             lambda: scene.object("box", trimmers=3)),
            (ValueError, "newTexture: expected a text without null", scene.texture, "a\0b"),
            (ValueError, r"newTexture: .*\(H, W, 3\)", scene.texture, [[[0.0] * 4]]),
            (vt.SceneError, "newTexture.*Is a directory", scene.texture, self.folder),
            (vt.SceneError, "environment.*Is a directory",
             lambda: scene.light("environment", name=self.folder)),
            (ValueError, r"environment.*name: .*\(H, W, 3\)",
             lambda: scene.light("environment", name=[])),
            (TypeError, "add: expected an object, got 5", scene.add, 5),
            (TypeError, "add: scale: expected numbers", lambda: scene.add("box", scale="2")),
            (ValueError, r"add: transform: .*\(4, 4\)", lambda: scene.add("box", transform=[1])),
            (TypeError, r"vantor.load\('a.obj'\)", scene.add, "a.obj"),
            (TypeError, "Scene: patches: expected an integer, got 'a'", vt.Scene, "a"),
            (TypeError, "caps: expected True or False, got 'yes'",
             lambda: scene.object("cylinder", caps="yes")),
            (TypeError, "caps: expected True or False, got 2",
             lambda: scene.object("cylinder", caps=2)),
        ))
        self.assertEqual(len(scene.handles), count)

    def test_what_is_no_block_or_given_by_one(self):
        scene = lit_scene(strict=True)
        paint, lamp = scene.material("diffuse"), scene.light("point")
        fog = scene.interior("homogeneous", sigma_s=1.0)
        count = len(scene.handles)
        self.assert_refused((
            (TypeError, '"with material:', lambda: scene.add("box", material=paint)),
            (TypeError, '"with interior:', lambda: scene.add("box", medium=fog)),
            (TypeError, 'light.*has no block.*"area"', lamp.__enter__),
        ))
        self.assertEqual(len(scene.handles), count)
        with paint:
            scene.add("box")
        self.assertEqual(scene.render(2, 2, 1).width, 2)

    def test_colours_of_integers(self):
        scene = lit_scene(strict=True)
        byte_colors = [(255, 0, 0), (0, 1, 0), (0, 0, 7)]
        self.assert_refused((
            (ValueError, "points: colors: .*linear.*255", vt.points, CORNERS, None, byte_colors),
            (ValueError, "mesh.*colors: .*linear.*255", lambda: scene.object(
                "mesh", points=CORNERS, triangles=[(0, 1, 2)], colors=byte_colors)),
        ))
        white = [(1, 1, 1)] * 3
        scene.object("mesh", points=CORNERS, triangles=[(0, 1, 2)], colors=white)
        self.assertEqual(len(vt.points(CORNERS, colors=white)), 3)
        bright = [(255.0, 1.0, 1.0)] * 3
        self.assertEqual(len(vt.points(CORNERS, colors=bright)), 3)

    def test_transforms(self):
        self.assert_refused((
            (ValueError, r"expected the shape \(4, 4\), got \(3,\)", vt.matrix, (1, 2, 3)),
            (ValueError, r"expected the shape \(3,\)", vt.translate, (1, 2)),
            (TypeError, "expected numbers, got str", vt.translate, "abc"),
            (TypeError, "expected numbers, got str", vt.rotate, "90"),
            (ValueError, "finite angle", vt.rotate, NAN),
            (ValueError, "axis that has a direction", vt.rotate, 90, (0, 0, 0)),
            (ValueError, "axis that has a direction", vt.rotate, 90, (0, NAN, 0)),
            (ValueError, "look_at has no direction", vt.look_at, (0, 0, 0), (0, 0, 0)),
            (ValueError, "look_at has no", vt.look_at, (0, 0, NAN), (0, 0, 0)),
            (ValueError, "has no inverse", vt.scale(1, 0, 1).inverse),
            (ValueError, "has no inverse", vt.matrix([[1, 2, 3, 4]] * 4).inverse),
            (ValueError, "has no inverse", vt.scale(NAN).inverse),
        ))
        # Any sixteen numbers are a matrix; what cannot be placed is said where it is.
        scene = lit_scene(strict=True)
        box = scene.object("box")
        self.assertRaisesRegex(vt.SceneError, "unusable", scene.add, box,
                               transform=vt.translate(NAN, 0, 0))
        scene.add(box)
        self.assertEqual(scene.render(2, 2, 1).width, 2)

    def test_passes(self):
        scene = ball_scene()
        warnings.simplefilter("ignore", vt.SceneWarning)

        def render(*size, **options):
            return scene.render(*(size or (2, 2, 1)), **options)

        self.assert_refused((
            (vt.SceneError, "the width is 0", render, 0, 4, 1),
            (vt.SceneError, "the number of samples is -1", render, 4, 4, -1),
            (OverflowError, "too large", render, 10**20, 4, 1),
            (TypeError, "width: expected an integer, got 4.0", render, 4.0, 4, 1),
            (TypeError, "samples: expected an integer, got 'a'", render, 4, 4, "a"),
            (TypeError, "denoise: expected True or False, got 'yes'",
             lambda: render(denoise="yes")),
            (TypeError, "adaptive: expected True or False", lambda: render(adaptive="yes")),
            (TypeError, "background: expected True or False", lambda: render(background=None)),
            (vt.SceneError, "window", lambda: render(window=(0, 0, NAN, 1))),
            (vt.SceneError, "window",
             lambda: render(window=(0, 0, NAN, 1), wait=False).result()),
            (ValueError, r"window: expected the shape \(4,\)", lambda: render(window=(0, 1))),
            (TypeError, "aovs: expected names, got 5", lambda: render(aovs=5)),
            (TypeError, "aovs: expected names, got None", lambda: render(aovs=[None])),
            (ValueError, 'aovs: "albdo"', lambda: render(aovs="albdo")),
        ))
        self.assertEqual(render().width, 2)

    def test_pictures(self):
        picture = vt.Picture.of([[0.5]])
        os.mkdir(self.path("folder.png"))
        save = picture.save
        path = self.path("a.png")
        self.assert_refused((
            (ValueError, r"got \(0,\)", vt.Picture.of, []),
            (ValueError, r"got \(3,\)", vt.Picture.of, [1.0, 2.0, 3.0]),
            (TypeError, "got integers", vt.Picture.of, [[1]]),
            (TypeError, "got str", vt.Picture.of, "a.png"),
            (OSError, "folder.png.*Is a directory", save, self.path("folder.png")),
            (ValueError, "ends in", save, self.path("a")),
            (OSError, "No such file or directory", save, self.path("none/a.png")),
            (ValueError, "-100 to 100, got nan", save, path, NAN),
            (ValueError, "-100 to 100", save, path, 1e9),
            (TypeError, "got str", save, path, "a"),
            (ValueError, 'display.*got "x"', save, path, 0, "x"),
            (KeyError, 'no "depth"', save, path, 0, None, "depth"),
            (OSError, "Is a directory", vt.Picture.load, self.folder),
            (TypeError, "int", vt.Picture.load, 5),
        ))
        self.assertEqual(os.listdir(self.folder), ["folder.png"])

    @unittest.skipIf(why_not, why_not)
    def test_model_files(self):
        for name in ("a.obj", "a.ply", "a.stl", "a.gltf", "a.glb", "a.fbx", "a.3ds", "a.dae"):
            for data in (b"", bytes(3000), bytes(range(256)) * 12):
                with open(self.path(name), "wb") as file:
                    file.write(data)
                self.assert_refused([(OSError, name, vt.load, self.path(name))])
        os.mkfifo(self.path("pipe.obj"))
        self.assert_refused((
            (OSError, "Not a regular file", vt.load, self.path("pipe.obj")),
            (OSError, "Is a directory", vt.load, self.folder),
            (ValueError, "null", vt.load, "a\0b.obj"),
        ))

    def test_meshes_of_other_packages(self):
        def load(points, triangles):
            vt.load(types.SimpleNamespace(vertices=points, faces=triangles))

        self.assert_refused((
            (ValueError, r"\(N, 3\), got \(0,\)", load, CORNERS, []),
            (ValueError, r"\(N, 3\), got \(1, 2\)", load, CORNERS, [(0, 1)]),
            (ValueError, r"\(N, 3\), got \(1, 2\)", load, [(0, 1)], [(0, 1, 2)]),
            (TypeError, "expected integers", load, CORNERS, [(0, 1, NAN)]),
        ))

    def test_what_is_asked(self):
        self.assert_refused((
            (TypeError, "expects names, got 5", vt.vocabulary, 5),
            (LookupError, r'nothing is called "cube"\W*$', vt.vocabulary, "cube"),
            (TypeError, "merge: expected several pictures, got 5", vt.merge, 5),
            (TypeError, "merge: expected several pictures, got 'a.exr'", vt.merge, "a.exr"),
            (TypeError, "expected an array of the module", vt.to_numpy, [1, 2]),
            (TypeError, "expected an integer, got nan", vt.Scene, NAN),
        ))

    def test_how_long_a_job_is_waited_for(self):
        job = ball_scene().render(2, 2, 1, wait=False)
        self.assert_refused((
            (TypeError, "timeout: expected a number, got 'a'", job.result, "a"),
            (ValueError, "timeout: expected seconds, got nan", job.result, NAN),
        ))
        self.assertEqual(job.result(60).width, 2)

    @unittest.skipUnless(aiohttp, "this interpreter has no aiohttp")
    def test_where_a_view_listens(self):
        view = ball_scene().view
        self.assert_refused((
            (TypeError, "host: expected a name", lambda: view(host=5)),
            (ValueError, "port: expected 0 to 65535, got 70000", lambda: view(port=70000)),
            (ValueError, "port: expected 0 to 65535, got -1", lambda: view(port=-1)),
            (TypeError, "expected an integer", lambda: view(port="80")),
        ))
        with view() as opened:
            connection = http.client.HTTPConnection("127.0.0.1", opened.port, timeout=60)
            self.addCleanup(connection.close)
            for name, value in (("Host", "["), ("Origin", "http://[")):
                connection.request("GET", opened.url[opened.url.index("/?"):],
                                   headers={name: value})
                answer = connection.getresponse()
                self.assertEqual((answer.status, answer.read()), (403, b"forbidden"))

    def test_what_a_farm_is_asked(self):
        self.assert_refused((
            (TypeError, r"frames: expected several, such as range\(100\), got 5", farm.animate,
             ball_scene, 5, self.path("{}.png"), 2, 2),
            (ValueError, "window: expected four finite numbers", farm._pixels_of, (0, 0, NAN, 1),
             2, 2),
            (ValueError, "window: expected four finite numbers", farm._pixels_of,
             (0, 0, math.inf, 1), 2, 2),
            (ValueError, "no pixels in the window", farm._pixels_of, (0, 0, 0, 1), 2, 2),
        ))

    def test_handles_of_a_scene_that_is_gone(self):
        scene = lit_scene()
        box, material = lit_scene().object("box"), lit_scene().material("diffuse")
        gc.collect()
        self.assert_refused((
            (ReferenceError, "is gone", scene.add, box),
            (ReferenceError, "is gone", material.__enter__),
        ))


@needs_numpy
class LayoutTest(PackageTest):
    """Arrays that are read only, strided or of the other byte order are as good as others."""

    def layouts(self, value):
        read_only = value.copy()
        read_only.flags.writeable = False
        yield read_only
        wide = numpy.zeros((*value.shape[:-1], 2 * value.shape[-1]), value.dtype)
        wide[..., ::2] = value
        yield wide[..., ::2]
        yield value[::-1].copy()[::-1]
        yield numpy.asfortranarray(value)
        yield value.astype(value.dtype.newbyteorder(">"))
        yield value.astype(value.dtype.newbyteorder("<"))

    def test_every_entry_that_takes_arrays(self):
        square = numpy.random.default_rng(2).random((4, 4, 3)).astype("f4")
        expected = bytes(vt.Picture.of(square).buffer())
        points = numpy.array(CORNERS, "f8")
        triangles = numpy.array([(0, 1, 2)], "i4")
        matrix = numpy.array(vt.rotate(30, (1, 2, 3)).rows)
        for layout in self.layouts(square):
            self.assertEqual(bytes(vt.Picture.of(layout).buffer()), expected)
            lit_scene(strict=True).texture(layout)
            lit_scene(strict=True).light("environment", name=layout)
        for layout in self.layouts(matrix):
            self.assertEqual(vt.matrix(layout), vt.matrix(matrix))
        for layout in self.layouts(points):
            model = vt.load(types.SimpleNamespace(vertices=layout, faces=triangles))
            self.assertEqual(model.bounds(), ((0, 0, 0), (1, 1, 0)))
        for layout in self.layouts(triangles):
            scene = lit_scene(strict=True)
            scene.add("mesh", points=points, triangles=layout)
            scene.camera("perspective", position=points[1], target=points[::2][0])
            self.assertEqual(scene.render(2, 2, 1).width, 2)

    def test_types_that_no_number_is_of(self):
        scene = lit_scene(strict=True)
        points = numpy.array(CORNERS, "f8")
        for kind in ("f2", "g", "c8", object, str, [("x", "f4"), ("y", "f4")]):
            with self.assertRaisesRegex(TypeError, "points: expected numbers"):
                scene.object("mesh", points=points[:, :1].astype(kind), triangles=[(0, 1, 2)])


if __name__ == "__main__":
    unittest.main()
