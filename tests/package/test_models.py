"""Models: files of several formats, and other packages' meshes."""

import base64
import json
import os
import struct
import types
import unittest

import vantor as vt
from scenes import PackageTest, lit_scene, needs_numpy, numpy
from vantor import _native

# Only PLY files are read by a companion that was built without Assimp.
try:
    _native.read_model(__file__)
except OSError as error:
    why_not = str(error) if "without Assimp" in str(error) else ""

CORNERS = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)]
FACES = [(0, 2, 1), (0, 1, 3), (0, 3, 2), (1, 2, 3)]


def points_of(model, mesh=0):
    numbers, _, (count, _) = _native.from_array(model.meshes[mesh]["points"])
    values = memoryview(numbers).cast("d").tolist()
    return [tuple(values[3 * i : 3 * i + 3]) for i in range(count)]


def indices_of(model, mesh=0):
    return memoryview(_native.from_array(model.meshes[mesh]["triangles"])[0]).cast("i").tolist()


def binary_ply():
    head = ("ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\n"
            "property float y\nproperty float z\nelement face 4\n"
            "property list uchar int vertex_indices\nend_header\n")
    body = b"".join(struct.pack("<3f", *corner) for corner in CORNERS)
    return head.encode() + body + b"".join(struct.pack("<B3i", 3, *face) for face in FACES)


def binary_stl():
    body = b"".join(struct.pack("<12fH", 0, 0, 0, *(x for i in face for x in CORNERS[i]),
                                0) for face in FACES)
    return bytes(80) + struct.pack("<I", len(FACES)) + body


OBJ = """mtllib tetrahedron.mtl
v 0 0 0
v 1 0 0
v 0 1 0
v 0 0 1
vt 0 0
vt 1 0
vt 0 1
usemtl red
f 1/1 3/3 2/2
f 1/1 2/2 4/3
usemtl picture
f 1/1 4/2 3/3
f 2/1 3/2 4/3
"""
MTL = "newmtl red\nKd 0.8 0.1 0.05\nNs 30\nnewmtl picture\nKd 1 1 1\nmap_Kd grey.exr\n"


def gltf(picture):
    """A triangle, moved by a node, with a material of metal and a picture inside, a camera, a
    lamp."""
    positions = b"".join(struct.pack("<3f", *corner) for corner in CORNERS[:3])
    indices = struct.pack("<3H", 0, 1, 2)
    uvs = struct.pack("<6f", 0, 0, 1, 0, 0, 1)
    data = positions + uvs + indices
    uri = "data:application/octet-stream;base64," + base64.b64encode(data).decode()
    return json.dumps({
        "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 1, 2]}],
        "extensionsUsed": ["KHR_lights_punctual"],
        "extensions": {"KHR_lights_punctual": {"lights": [
            {"type": "point", "color": [1, 0.5, 0.25], "intensity": 8}]}},
        "nodes": [{"mesh": 0, "translation": [1, 2, 3], "scale": [2, 2, 2]},
                  {"camera": 0, "translation": [0, 0, 5], "name": "eye"},
                  {"translation": [0, 4, 0], "name": "lamp",
                   "extensions": {"KHR_lights_punctual": {"light": 0}}}],
        "cameras": [{"type": "perspective",
                     "perspective": {"yfov": 0.8, "aspectRatio": 1, "znear": 0.1}}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1}, "indices": 2,
                                    "material": 0}]}],
        "materials": [{"pbrMetallicRoughness": {"baseColorFactor": [0.9, 0.6, 0.3, 1],
                                                "metallicFactor": 0.75,
                                                "roughnessFactor": 0.25,
                                                "baseColorTexture": {"index": 0}}}],
        "textures": [{"source": 0}],
        "images": [{"mimeType": "image/png",
                    "uri": "data:image/png;base64," + base64.b64encode(picture).decode()}],
        "buffers": [{"byteLength": len(data), "uri": uri}],
        "bufferViews": [{"buffer": 0, "byteOffset": 0, "byteLength": 36},
                        {"buffer": 0, "byteOffset": 36, "byteLength": 24},
                        {"buffer": 0, "byteOffset": 60, "byteLength": 6}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3",
                       "min": [0, 0, 0], "max": [1, 1, 0]},
                      {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC2"},
                      {"bufferView": 2, "componentType": 5123, "count": 3, "type": "SCALAR"}],
    }).encode()


DAE = """<?xml version="1.0"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset><unit meter="1"/><up_axis>Y_UP</up_axis></asset>
<library_effects><effect id="paint"><profile_COMMON><technique sid="common"><lambert>
<diffuse><color>0.75 0.5 0.25 1</color></diffuse>
</lambert></technique></profile_COMMON></effect></library_effects>
<library_materials><material id="red"><instance_effect url="#paint"/></material></library_materials>
<library_geometries><geometry id="shape"><mesh>
<source id="corners"><float_array id="numbers" count="9">0 0 0 1 0 0 0 1 0</float_array>
<technique_common><accessor source="#numbers" count="3" stride="3"><param name="X" type="float"/>
<param name="Y" type="float"/><param name="Z" type="float"/></accessor></technique_common></source>
<vertices id="points"><input semantic="POSITION" source="#corners"/></vertices>
<triangles count="1" material="paint"><input semantic="VERTEX" source="#points" offset="0"/>
<p>0 1 2</p></triangles></mesh></geometry></library_geometries>
<library_visual_scenes><visual_scene id="all"><node><translate>1 2 3</translate>
<scale>2 2 2</scale><instance_geometry url="#shape"><bind_material><technique_common>
<instance_material symbol="paint" target="#red"/></technique_common></bind_material>
</instance_geometry></node></visual_scene></library_visual_scenes>
<scene><instance_visual_scene url="#all"/></scene></COLLADA>
"""


@unittest.skipIf(why_not, why_not)
class FilesTest(PackageTest):
    def written(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return self.path(name)

    def test_points_and_triangles_of_a_ply(self):
        model = vt.load(self.written("a.ply", binary_ply()))
        self.assertEqual(points_of(model), CORNERS)
        self.assertEqual(indices_of(model), [i for face in FACES for i in face])
        self.assertEqual((model.triangle_count, model.bounds()), (4, ((0, 0, 0), (1, 1, 1))))

    def test_triangles_of_an_stl(self):
        model = vt.load(self.written("a.stl", binary_stl()))
        corners = [points_of(model)[i] for i in indices_of(model)]
        self.assertEqual(corners, [CORNERS[i] for face in FACES for i in face])

    def test_materials_and_pictures_of_an_obj(self):
        vt.Picture.of([[0.5]]).save(self.path("grey.exr"))
        self.written("tetrahedron.mtl", MTL.encode())
        model = vt.load(self.written("tetrahedron.obj", OBJ.encode()))
        self.assertEqual(len(model.meshes), 2)
        red = next(m for m in model.materials if m["name"] == "red")
        for value, expected in zip(red["base_color"], (0.8, 0.1, 0.05)):
            self.assertAlmostEqual(value, expected, 6)
        scene = lit_scene(strict=True)
        objects = scene.add(model)
        self.assertEqual([o.type for o in objects], ["mesh", "mesh"])
        self.assertEqual(len([h for h in scene.handles if h.kind == "texture"]), 1)
        scene.render(4, 4, 1)

    def test_nodes_materials_camera_and_light_of_a_gltf(self):
        picture = vt.Picture.of([[1.0, 0.25]])
        model = vt.load(self.written("a.gltf", gltf(picture._repr_png_())))
        self.assertEqual(model.bounds(), ((1, 2, 3), (3, 4, 3)))
        told = model.materials[0]
        self.assertAlmostEqual(told["metallic"], 0.75)
        self.assertAlmostEqual(told["roughness"], 0.25)
        self.assertAlmostEqual(told["base_color"][1], 0.6)
        self.assertEqual(told["base_color_texture"][0], "*")
        self.assertEqual(model.cameras[0]["transform"][3], (0, 0, 5, 1))
        scene = lit_scene(strict=True)
        scene.add(model, scale=0.5)
        light, = model.add_lights_to(scene)
        self.assertEqual(light.type, "point")
        scene.render(4, 4, 1)

    def test_points_node_and_colour_of_a_collada(self):
        model = vt.load(self.written("a.dae", DAE.encode("ascii")))
        self.assertEqual((model.triangle_count, model.bounds()), (1, ((1, 2, 3), (3, 4, 3))))
        self.assertEqual(sorted(points_of(model)), sorted(CORNERS[:3]))
        color = model.materials[model.meshes[0]["material"]]["base_color"]
        for value, expected in zip(color, (0.75, 0.5, 0.25)):
            self.assertAlmostEqual(value, expected, 6)
        scene = lit_scene(strict=True)
        scene.add(model)
        scene.render(4, 4, 1)

    def test_a_model_stands_where_its_file_says(self):
        picture = vt.Picture.of([[1.0]])
        model = vt.load(self.written("a.gltf", gltf(picture._repr_png_())))
        scene = vt.Scene(strict=True)
        scene.camera("orthographic", position=(0, 0, 9), height=10)
        scene.light("environment")
        scene.add(model, transform=vt.translate(0, 0, -3))
        rows = scene.render(10, 10, 1, aovs="object_id").buffer("object_id").tolist()
        seen = {(x, y) for y, row in enumerate(rows) for x, pixel in enumerate(row) if pixel[0]}
        self.assertTrue({(6, 2)} <= seen <= {(6, 1), (6, 2), (7, 2)}, seen)

    def test_what_is_wrong_with_a_file_is_one_error_and_nothing_is_added(self):
        cut_off = binary_ply()[:-20]
        for name, data in (("a.ply", cut_off), ("b.obj", b""), ("c.gltf", b"{"),
                           ("d.stl", b"solid x"), ("e.txt", b"x"),
                           ("f.glb", b"glTF\x02\0\0\0\xff\xff\xff\xff")):
            with self.subTest(name):
                with self.assertRaises(OSError) as error:
                    vt.load(self.written(name, data))
                self.assertIn(name, str(error.exception))
                self.assertNotIn("\n", str(error.exception))
        self.assertRaisesRegex(OSError, "directory", vt.load, self.folder)
        self.assertRaisesRegex(OSError, "No such file", vt.load, self.path("none.obj"))

    def test_every_cut_of_a_file_is_an_error_or_a_model(self):
        whole = gltf(vt.Picture.of([[1.0]])._repr_png_())
        for data, name in ((whole, "a.gltf"), (binary_ply(), "a.ply"), (binary_stl(), "a.stl")):
            for length in range(0, len(data), max(1, len(data) // 23)):
                try:
                    vt.load(self.written(name, data[:length]))
                except OSError:
                    pass


class PlyTest(PackageTest):
    """PLY files need no Assimp."""

    def load(self, data):
        with open(self.path("a.ply"), "wb") as file:
            file.write(data)
        return vt.load(self.path("a.ply"))

    def assert_refused(self, data, words):
        with self.assertRaises(OSError) as error:
            self.load(data)
        self.assertIn(words, str(error.exception))
        self.assertIn("a.ply", str(error.exception))

    TEXT = ("ply\r\nformat ascii 1.0\r\ncomment made by hand\r\nelement vertex 4\r\n"
            "property float x\r\n"
            "property double y\r\nproperty float z\r\nproperty float nx\r\nproperty float ny\r\n"
            "property float nz\r\nproperty uchar red\r\nproperty uchar green\r\n"
            "property uchar blue\r\n"
            "property float s\r\nproperty float t\r\nelement face 1\r\nproperty uchar flags\r\n"
            "property list uchar int vertex_index\r\nend_header\r\n"
            "0 0 0 0 0 1 255 0 51 0 0\r\n1 0 0 0 0 1 0 0 0 1 0\r\n1 1 0 0 0 1 0 0 0 1 1\r\n"
            "0 1 0 0 0 1 0 0 0 0 1e0\r\n7 4 0 1 2 3\r\n")

    def test_text_with_all_that_a_mesh_can_use(self):
        model = self.load(self.TEXT.encode())
        self.assertEqual(points_of(model), [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)])
        self.assertEqual(indices_of(model), [0, 1, 2, 0, 2, 3])
        mesh = model.meshes[0]
        self.assertEqual(str(mesh["normals"][3]), "vector3( 0, 0, 1 )")
        self.assertEqual(str(mesh["uvs"][3]), "vector2( 0, 1 )")
        # Bytes are colours of a display: 51 is a fifth of it, and less of the light.
        self.assertEqual(str(mesh["colors"][0]), "vector3( 1, 0, 0.0331048 )")

    def test_the_other_byte_order(self):
        head = binary_ply().partition(b"end_header\n")[0].replace(b"little",
            b"big") + b"end_header\n"
        body = b"".join(struct.pack(">3f", *corner) for corner in CORNERS)
        model = self.load(head + body + b"".join(struct.pack(">B3i", 3, *face) for face in FACES))
        self.assertEqual(points_of(model), CORNERS)
        self.assertEqual(indices_of(model), [i for face in FACES for i in face])

    def test_every_cut_is_an_error(self):
        for data in (binary_ply(), self.TEXT.rstrip().encode()):
            for length in range(len(data)):
                self.assertRaises(OSError, self.load, data[:length])

    def test_what_is_wrong_is_said(self):
        whole = binary_ply()
        self.assert_refused(b"solid", "does not begin")
        self.assert_refused(b"", "does not begin")
        self.assert_refused(whole.replace(b"vertex 4", b"vertex 999999999"), "too short")
        self.assert_refused(whole.replace(b"vertex 4", b"vertex -4"), "good count")
        self.assert_refused(whole.replace(b"float x", b"float a"), "no x, y and z")
        self.assert_refused(whole.replace(b"float x", b"quad x"), "no known type")
        self.assert_refused(whole[:-4] + struct.pack("<i", 9), "names point 9 of 4")
        self.assert_refused(whole[:-4] + struct.pack("<i", -1), "length or an index")
        self.assert_refused(whole.replace(b"face 4", b"face 0"), "no triangles")
        self.assert_refused(self.TEXT.replace("1 1 0 0 0 1", "1 x 0 0 0 1").encode(),
                            "a number is expected")


class OtherPackagesTest(PackageTest):
    def test_meshes_by_their_attributes(self):
        flat = types.SimpleNamespace
        for mesh in (flat(vertices=CORNERS, faces=FACES), flat(vertices=CORNERS, triangles=FACES),
                     flat(points=CORNERS, cells_dict={"triangle": FACES}),
                     flat(points=CORNERS, regular_faces=FACES)):
            model = vt.load(mesh)
            self.assertEqual((points_of(model), model.triangle_count), (CORNERS, 4))
        scene = lit_scene(strict=True)
        with scene.material("diffuse"):
            made, = scene.add(model)
        self.assertEqual(made.type, "mesh")

    @needs_numpy
    def test_their_arrays(self):
        mesh = types.SimpleNamespace(vertices=numpy.array(CORNERS, "f4"), faces=numpy.array(FACES))
        self.assertEqual(points_of(vt.load(mesh)), CORNERS)

    def test_what_is_no_mesh(self):
        self.assertRaisesRegex(TypeError, "got int", vt.load, 5)
        quads = types.SimpleNamespace(vertices=CORNERS, faces=[(0, 1, 2, 3)])
        self.assertRaisesRegex(ValueError, r"\(N, 3\), got \(1, 4\)", vt.load, quads)


if __name__ == "__main__":
    unittest.main()
