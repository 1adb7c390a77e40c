"""Models: what 3D files hold, and the meshes of other packages."""

import math
import os

import vantorPM

from . import _native
from ._transforms import Transform, translate


class Model:
    """Meshes with their materials, each at its places. scene.add(model) puts it into a scene.

    meshes, materials, cameras and lights are lists of dicts, as the file has them; instances are
    pairs of the number of a mesh, and the sixteen numbers of where it stands.
    """

    def __init__(self, meshes, instances=None, materials=(), textures=(), cameras=(), lights=(),
                 folder="."):
        self.meshes = meshes
        self.instances = instances or [(i, _IDENTITY) for i in range(len(meshes))]
        self.materials = list(materials)
        self.textures = list(textures)
        self.cameras = list(cameras)
        self.lights = list(lights)
        self.folder = folder

    @property
    def triangle_count(self):
        return sum(
            self.meshes[mesh]["triangles"].getSize() // 3
            for mesh, _ in self.instances
            if self.meshes[mesh]["triangles"]
        )

    def bounds(self):
        """The least and the greatest coordinates of all that stands in the model."""
        corners = [corner for mesh, rows in self.instances
                   for corner in _placed_corners(_mesh_bounds(self.meshes[mesh]), rows)]
        if not corners:
            raise ValueError("the model has no points")
        return tuple(map(min, zip(*corners))), tuple(map(max, zip(*corners)))

    def add_to(self, scene):
        """Adds every mesh at every place, within the open blocks; returns their objects. Materials
        of the model count before that of an open block."""
        objects, materials, pictures = {}, {}, {}
        for mesh_index, rows in self.instances:
            mesh = self.meshes[mesh_index]
            if not mesh["triangles"]:
                continue
            if mesh_index not in objects:
                parameters = {name: mesh[name] for name in _ARRAYS if mesh.get(name) is not None}
                objects[mesh_index] = scene.object("mesh", **parameters)
            number = mesh.get("material", -1)
            if number not in materials and 0 <= number < len(self.materials):
                materials[number] = self._material(scene, self.materials[number], pictures)
            with Transform(rows):
                if number in materials:
                    with materials[number]:
                        scene.add(objects[mesh_index])
                else:
                    scene.add(objects[mesh_index])
        return list(objects.values())

    def add_lights_to(self, scene):
        """Adds the point lights, spots and distant lights of the file; returns them."""
        return [_light(scene, light) for light in self.lights if light["type"] != "other"]

    def _material(self, scene, told, pictures):
        """A "principled" material of what the file says."""
        metallic = told.get("metallic", 0.0)
        parameters = {
            "base_color": _clipped(told.get("base_color", (0.8, 0.8, 0.8))),
            "metallic": _fraction(metallic),
            "roughness": _fraction(told.get("roughness", _roughness_of(told.get("shininess", 0)))),
        }
        transmission = _fraction(told.get("transmission", 0.0))
        if transmission > 0:
            parameters["transmission"] = transmission
            parameters["ior"] = min(max(told.get("ior", 1.5), 1.1), 3.0)
        base = self._image(scene, told.get("base_color_texture"), pictures)
        if base:
            factor = parameters.pop("base_color")
            is_white = min(factor) >= 1
            parameters["color"] = base if is_white else scene.pattern(
                "mix", a=base, b=factor, amount=1.0, mode="multiply")
        normals = self._image(scene, told.get("normal_texture"), pictures, color_space="linear")
        if normals:
            parameters["normal_map"] = normals
        if _fraction(told.get("opacity", 1.0)) < 1 and transmission == 0:
            parameters["opacity"] = _fraction(told["opacity"])
        return scene.material("principled", **parameters)

    def _image(self, scene, name, pictures, **parameters):
        """The pattern of a picture that the file names, or None."""
        if not name:
            return None
        if name not in pictures:
            path = self._picture_file(scene, name)
            pictures[name] = path and scene.texture(path)
        texture = pictures[name]
        return texture and scene.pattern("image", texture=texture, **parameters)

    def _picture_file(self, scene, name):
        if not name.startswith("*"):
            return os.path.join(self.folder, name.replace("\\", "/"))
        number = int(name[1:]) if name[1:].isdigit() else -1
        inside = self.textures[number] if 0 <= number < len(self.textures) else None
        if inside is None:
            return None
        path = scene.new_file(".picture")
        with open(path, "wb") as file:
            file.write(inside)
        return path


_IDENTITY = ((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))
_ARRAYS = ("points", "triangles", "normals", "uvs", "colors")


def load(path):
    """The Model in a file: PLY; by Assimp OBJ, STL, glTF, GLB, FBX, 3DS, COLLADA and others.
    OSError names the file and what is wrong with it.

    Also takes the meshes of other packages by their attributes: "vertices" and "faces" (trimesh),
    "vertices" and "triangles" (Open3D), "points" and "cells_dict" (meshio), "points" and
    "regular_faces" (PyVista).
    """
    if not isinstance(path, (str, os.PathLike)):
        return Model([_mesh_of(path)])
    read = _native.read_model(path)
    if not any(mesh["triangles"] for mesh in read["meshes"]):
        raise OSError('cannot load "{}": there are no triangles in it'.format(os.fspath(path)))
    return Model(folder=os.path.dirname(os.path.abspath(path)), **read)


def _mesh_of(mesh):
    """Points and triangles of another package's object."""
    cells = getattr(mesh, "cells_dict", None)
    pairs = [
        (getattr(mesh, "vertices", None), getattr(mesh, "faces", None)),
        (getattr(mesh, "vertices", None), getattr(mesh, "triangles", None)),
        (getattr(mesh, "points", None), cells.get("triangle") if cells is not None else None),
        (getattr(mesh, "points", None), getattr(mesh, "regular_faces", None)),
    ]
    for points, triangles in pairs:
        if points is None or triangles is None:
            continue
        if hasattr(points, "__array__"):  # Open3D's vectors are sequences of slow elements
            import numpy

            points, triangles = numpy.asarray(points), numpy.asarray(triangles)
        if _native.shape(triangles)[0][1:] != (3,):
            raise ValueError("expected triangles of the shape (N, 3), got {}".format(
                _native.shape(triangles)[0]))
        return {
            "points": _native.to_array("vector3array", points),
            "triangles": _native.to_array("intarray", triangles),
        }
    message = "expected the path of a model, or a mesh with points and triangles, got {}"
    raise TypeError(message.format(type(mesh).__name__))


def _mesh_bounds(mesh):
    if not mesh.get("points"):
        return None
    numbers = memoryview(_native.from_array(mesh["points"])[0]).cast("d")
    return [(min(numbers[axis::3]), max(numbers[axis::3])) for axis in range(3)]


def _placed_corners(bounds, rows):
    if bounds is None:
        return []
    corners = [(x, y, z) for x in bounds[0] for y in bounds[1] for z in bounds[2]]
    return [tuple(sum(p[k] * rows[k][axis] for k in range(3)) + rows[3][axis] for axis in range(3))
            for p in corners]


def _fraction(value):
    return min(max(value, 0.0), 1.0)


def _clipped(color):
    return tuple(map(_fraction, color))


def _roughness_of(shininess):
    # A Phong lobe of that exponent is about as wide as microfacets of alpha = sqrt(2 / (n + 2)),
    # and alpha is the square of the roughness.
    return (2.0 / (max(shininess, 0.0) + 2.0)) ** 0.25


def _light(scene, light):
    parameters = {}
    brightest = max(light["color"])
    if light["type"] == "distant":
        parameters.update(direction=light["direction"], irradiance=light["color"])
    else:
        parameters.update(position=light["position"], intensity=light["color"])
    if light["type"] == "spot":
        outer = math.degrees(light["outer_angle"])
        parameters.update(direction=light["direction"], cutoff_angle=max(outer, 0.01),
                          beam_width=min(math.degrees(light["inner_angle"]), outer))
    if not brightest > 0:
        return None
    with Transform(light["transform"]):
        return scene.light(light["type"], **parameters)
