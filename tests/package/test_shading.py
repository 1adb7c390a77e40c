"""What the materials, cameras and lights of model files become in a scene."""

import base64
import json
import math
import struct
import unittest
import warnings

import vantor as vt
from scenes import PackageTest, lit_scene
from test_models import why_not
from vantor import _native

# A square of two triangles in the plane z = 0, from -1 to 1; glTF's v counts from above.
POINTS = [(-1, -1, 0), (1, -1, 0), (1, 1, 0), (-1, 1, 0)]
UVS = [(0, 1), (1, 1), (1, 0), (0, 0)]
INDICES = [0, 1, 2, 0, 2, 3]


def square(material=None, uvs=UVS, normals=None, indices=INDICES, **more):
    """A glTF file of the square. A picture is "name.png" beside it."""
    data, views, accessors = b"", [], []

    def add(code, rows, kind):
        nonlocal data
        packed = b"".join(struct.pack("<{}{}".format(len(row), code), *row) for row in rows)
        views.append({"buffer": 0, "byteOffset": len(data), "byteLength": len(packed)})
        accessors.append({"bufferView": len(views) - 1, "count": len(rows), "type": kind,
                          "componentType": {"f": 5126, "I": 5125}[code]})
        if kind == "VEC3":
            accessors[-1].update(min=[-1, -1, -1], max=[1, 1, 1])
        data += packed
        return len(accessors) - 1

    attributes = {"POSITION": add("f", POINTS, "VEC3")}
    if uvs:
        attributes["TEXCOORD_0"] = add("f", uvs, "VEC2")
    if normals:
        attributes["NORMAL"] = add("f", normals, "VEC3")
    primitive = {"attributes": attributes, "indices": add("I", [(i,) for i in indices], "SCALAR")}
    document = {"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
                "nodes": [{"mesh": 0}], "meshes": [{"primitives": [primitive]}],
                "textures": [{"source": 0}], "images": [{"uri": "name.png"}],
                "bufferViews": views, "accessors": accessors}
    if material is not None:
        document["materials"] = [material]
        primitive["material"] = 0
    document.update(more)
    document["buffers"] = [{"byteLength": len(data), "uri":
                            "data:application/octet-stream;base64,"
                            + base64.b64encode(data).decode()}]
    return json.dumps(document).encode()


PICTURE = {"index": 0}
METAL = {"baseColorFactor": [1, 1, 1, 1], "metallicRoughnessTexture": PICTURE}


@unittest.skipIf(why_not, why_not)
class ShadingTest(PackageTest):
    def load(self, data, name="a.gltf"):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return vt.load(self.path(name))

    def picture(self, rows, name="name.png"):
        """The picture beside the model: rows of colours, from the top."""
        size = len(rows[0]), len(rows)
        numbers = bytearray(b"".join(struct.pack("<3f", *pixel) for row in rows for pixel in row))
        vt.Picture(*size, {"color": numbers}).save(self.path(name))

    def seen(self, model, aovs=(), size=8, **settings):
        """A picture of it, looked at from the front, in light of radiance 1 from everywhere."""
        scene = vt.Scene(strict=True)
        scene.camera("orthographic", position=(0, 0, 5), height=2)
        scene.light("environment")
        scene.add(model)
        return scene.render(size, size, settings.get("samples", 4), aovs=aovs)

    def of(self, model, kind, type=None):
        scene = lit_scene(strict=True)
        scene.add(model)
        return [h for h in scene.handles if h.kind == kind and type in (None, h.type)]

    def test_pictures_stand_as_the_file_has_them(self):
        # Red above, green below.
        self.picture([[(1, 0, 0)] * 2, [(0, 1, 0)] * 2])
        model = self.load(square({"pbrMetallicRoughness": {
            "metallicFactor": 0, "baseColorTexture": PICTURE,
            "baseColorFactor": [0.5, 0.5, 0.5, 1]}}))
        albedo = self.seen(model, "albedo").buffer("albedo").tolist()
        for row, bright, dark in ((1, 0, 1), (6, 1, 0)):
            self.assertGreater(albedo[row][4][bright], 0.4)
            self.assertLess(albedo[row][4][dark], 0.1)

    def test_roughness_and_metallic_are_channels_of_one_picture(self):
        # Linear numbers are kept in the 8 bits of the picture as they are.
        coded = [((51 / 255 + 0.055) / 1.055) ** 2.4, ((204 / 255 + 0.055) / 1.055) ** 2.4]
        self.picture([[(0, coded[0], coded[1])]])
        base = {"baseColorFactor": [0.9, 0.5, 0.2, 1]}
        packed = self.load(square({"pbrMetallicRoughness": dict(
            base, metallicRoughnessTexture=PICTURE, metallicFactor=0.5, roughnessFactor=1)}))
        plain = self.load(square({"pbrMetallicRoughness": dict(
            base, roughnessFactor=51 / 255, metallicFactor=0.5 * 204 / 255)}))
        told = packed.materials[0]
        self.assertEqual(told["metallic_texture"], told["roughness_texture"])
        pictures = [[v for row in self.seen(m).buffer().tolist() for pixel in row for v in pixel]
                    for m in (packed, plain)]
        for one, other in zip(*pictures):
            self.assertAlmostEqual(one, other, 3)

    def test_alpha_counts_where_the_file_says_so(self):
        self.picture([[(1, 1, 1)]])
        base = {"baseColorTexture": PICTURE, "baseColorFactor": [1, 1, 1, 0.25]}
        for mode, expected in (("OPAQUE", 1), ("BLEND", 0.25), ("MASK", 0.25)):
            model = self.load(square({"alphaMode": mode, "pbrMetallicRoughness": base}))
            self.assertEqual(model.materials[0]["opacity"], expected)
            self.assertEqual(model.materials[0].get("has_alpha", False), mode != "OPAQUE")
        seen = self.seen(self.load(square({"alphaMode": "BLEND", "pbrMetallicRoughness": base})),
                         "albedo", samples=256).buffer("albedo").tolist()[4][4]
        self.assertAlmostEqual(seen[0], 0.25, delta=0.08)

    def test_what_a_material_emits_shines(self):
        model = self.load(square({"emissiveFactor": [0.5, 0.25, 0],
                                  "pbrMetallicRoughness": {"baseColorFactor": [0, 0, 0, 1],
                                                           "metallicFactor": 1}}))
        scene = vt.Scene(strict=True)
        scene.camera("orthographic", position=(0, 0, 5), height=2)
        scene.add(model)
        for value, expected in zip(scene.render(4, 4, 4).buffer().tolist()[2][2], (0.5, 0.25, 0)):
            self.assertAlmostEqual(value, expected, 3)

    def test_a_picture_of_emission_shines(self):
        # Dark above the diagonal from the upper left corner, where the second triangle lies.
        self.picture([[(float(x < y - 1),) * 3 for x in range(32)] for y in range(32)])
        model = self.load(square({"emissiveFactor": [1, 0.5, 0], "emissiveTexture": PICTURE},
                                 indices=[0, 1, 3, 1, 2, 3]))
        self.assertEqual(len(self.of(model, "light", "area")), 1)
        self.assertEqual(len(self.of(model, "object", "mesh")), 2)

    def test_emission_is_as_sharp_as_its_picture(self):
        self.picture([[(1.0, 1.0, 1.0) if x < 16 else (0.0, 0.0, 0.0) for x in range(32)]
                      for _ in range(32)])
        scene = vt.Scene()
        scene.camera("orthographic", position=(0, 0, 3), height=2)
        scene.add(self.load(square({"emissiveFactor": [1, 0.5, 0], "emissiveTexture": PICTURE})))
        row = scene.render(8, 8, 4).buffer().tolist()[4]
        for value, expected in zip(row[1], (1, 0.5, 0)):
            self.assertAlmostEqual(value, expected, 3)
        self.assertEqual(row[6], [0, 0, 0])

    def test_triangles_that_do_not_shine_are_told_apart(self):
        triangles = struct.pack("<6i", 0, 1, 2, 0, 2, 3)
        uvs = struct.pack("<8d", 0, 0, 0.5, 0, 0.5, 1, 0, 1)  # the left half
        pixels = struct.pack("<6f", 2, 4, 8, 0, 0, 0)
        dark, bright = _native.emission_parts(triangles, uvs, pixels, 2, 1)
        self.assertIsNone(dark)
        self.assertEqual(bright.getSize(), 6)
        right = struct.pack("<8d", 0.5, 0, 1, 0, 1, 1, 0.5, 1)
        dark, bright = _native.emission_parts(triangles, right, pixels, 2, 1)
        self.assertEqual(dark.getSize(), 6)
        self.assertIsNone(bright)
        self.assertRaises(ValueError, _native.emission_parts, triangles, uvs[:16], pixels, 2, 1)
        self.assertRaises(ValueError, _native.emission_parts, triangles, uvs, pixels, 3, 1)

    def test_transforms_of_texture_coordinates(self):
        turned = {"index": 0, "extensions": {"KHR_texture_transform": {
            "offset": [0.25, 0.125], "rotation": 0.5, "scale": [2, 3]}}}
        model = self.load(square({"pbrMetallicRoughness": {"baseColorTexture": turned}},
                                 extensionsUsed=["KHR_texture_transform"]))
        found = memoryview(_native.from_array(model.meshes[0]["uvs"])[0]).cast("d").tolist()
        cosine, sine = math.cos(0.5), math.sin(0.5)
        for i, (u, v) in enumerate(UVS):
            u, v = 2 * u, 3 * v
            self.assertAlmostEqual(found[2 * i], 0.25 + cosine * u + sine * v, 5)
            self.assertAlmostEqual(found[2 * i + 1], 1 - (0.125 - sine * u + cosine * v), 5)

    def test_cameras_stand_in_their_nodes(self):
        cameras = [{"type": "perspective",
                    "perspective": {"yfov": 0.8, "aspectRatio": 2, "znear": 0.1}},
                   {"type": "orthographic",
                    "orthographic": {"xmag": 3, "ymag": 2, "zfar": 9, "znear": 0.1}}]
        model = self.load(square(cameras=cameras, scenes=[{"nodes": [0, 1, 2]}], nodes=[
            {"mesh": 0}, {"camera": 0, "translation": [0, 0, 5]},
            {"camera": 1, "translation": [0, 0, 7]}]))
        near, flat = model.cameras
        self.assertAlmostEqual(near["fov"], math.degrees(0.8), 4)
        self.assertEqual((near["fov_axis"], near["position"]), ("vertical", (0, 0, 0)))
        self.assertEqual(near["transform"][3], (0, 0, 5, 1))
        self.assertAlmostEqual(flat["height"], 4, 5)
        for index, distance in ((0, 5), (1, 7)):
            scene = vt.Scene(strict=True)
            scene.light("environment")
            camera = model.add_camera_to(scene, index)
            self.assertEqual(camera.kind, "camera")
            scene.add(model)
            depth = scene.render(9, 9, 1, aovs="depth").buffer("depth").tolist()[4][4][0]
            self.assertAlmostEqual(depth, distance, 1)
        self.assertRaisesRegex(IndexError, "2 cameras", model.add_camera_to, scene, 2)

    def test_lights_have_their_angles_from_the_axis(self):
        lights = [{"type": "spot", "color": [1, 0.5, 0.25], "intensity": 8,
                   "spot": {"innerConeAngle": 0.25, "outerConeAngle": 0.5}},
                  {"type": "directional", "intensity": 3},
                  {"type": "point", "intensity": 0}]
        key = "KHR_lights_punctual"
        model = self.load(square(
            extensionsUsed=[key], extensions={key: {"lights": lights}},
            scenes=[{"nodes": [0, 1, 2, 3]}],
            nodes=[{"mesh": 0}] + [{"translation": [0, 0, 4], "extensions": {key: {"light": i}}}
                                   for i in range(3)]))
        spot = model.lights[0]
        self.assertAlmostEqual(spot["inner_angle"], math.degrees(0.25), 4)
        self.assertAlmostEqual(spot["outer_angle"], math.degrees(0.5), 4)
        scene = vt.Scene(strict=True)
        scene.camera("orthographic", position=(0, 0, 5), height=2)
        self.assertEqual([light.type for light in model.add_lights_to(scene)], ["spot", "distant"])
        with scene.material("diffuse", reflectance=1.0):
            scene.add(model)
        # 3 from the sun, and 8, 4, 2 from the spot, 4 away.
        middle = scene.render(9, 9, 1024).buffer().tolist()[4][4]
        for value, intensity in zip(middle, (8, 4, 2)):
            self.assertAlmostEqual(value, (3 + intensity / 16) / math.pi, delta=0.03)

    def test_a_file_without_materials_takes_that_of_the_block(self):
        model = self.load(square(uvs=None))
        self.assertEqual(model.meshes[0]["material"], -1)
        scene = vt.Scene(strict=True)
        scene.camera("orthographic", position=(0, 0, 5), height=2)
        scene.light("environment")
        with scene.material("diffuse", reflectance=(0.25, 0.5, 1)):
            scene.add(model)
        albedo = scene.render(4, 4, 1, aovs="albedo").buffer("albedo").tolist()[2][2]
        self.assertEqual(albedo, [0.25, 0.5, 1])

    def test_pictures_that_cannot_be_used_are_left_out_with_a_warning(self):
        data = square({"pbrMetallicRoughness": {"baseColorTexture": PICTURE, "metallicFactor": 0,
                                                "baseColorFactor": [0.25, 0.5, 1, 1]}})
        for content, why in ((None, "No such file"), (b"BM6", "no PNG, JPEG, OpenEXR or Radiance"),
                             (b"", "no PNG, JPEG, OpenEXR or Radiance")):
            if content is not None:
                with open(self.path("name.png"), "wb") as file:
                    file.write(content)
            model = self.load(data)
            scene = lit_scene()
            with warnings.catch_warnings(record=True) as found:
                warnings.simplefilter("always")
                scene.add(model)
            warning, = found
            self.assertIn('"name.png"', str(warning.message))
            self.assertIn(why, str(warning.message))
            self.assertEqual(warning.filename, __file__)
            self.assertRaises(vt.SceneError, lit_scene(strict=True).add, model)

    def test_pictures_are_found_by_names_of_other_machines(self):
        self.picture([[(1, 1, 1)]], "Some Name.PNG")
        for uri in ("some%20name.png", "textures/Some Name.PNG", "C:\\\\models\\\\some name.png"):
            data = square({"pbrMetallicRoughness": {"baseColorTexture": PICTURE}},
                          images=[{"uri": uri}])
            self.assertEqual(len(self.of(self.load(data), "texture")), 1, uri)

    def test_triangles_without_area_and_useless_normals(self):
        model = self.load(square(indices=INDICES + [0, 1, 1, 2, 2, 2],
                                 normals=[(0, 0, 0), (0, 0, 1), (0, 0, 1), (0, 0, 0)]))
        self.assertEqual(model.triangle_count, 2)
        normals = memoryview(_native.from_array(model.meshes[0]["normals"])[0]).cast("d").tolist()
        for i in range(4):
            self.assertEqual(normals[3 * i : 3 * i + 2], [0, 0])
            self.assertGreater(normals[3 * i + 2], 0)
        self.seen(model)


if __name__ == "__main__":
    unittest.main()
