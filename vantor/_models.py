"""Models: what 3D files hold, and the meshes of other packages."""

import contextlib
import os

from . import _native
from ._shading import Shading
from ._transforms import Transform


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

    def __repr__(self):
        return "<Model: meshes {}, triangles {}>".format(len(self.meshes), self.triangle_count)

    def bounds(self):
        """The least and the greatest coordinates of all that stands in the model."""
        corners = [corner for mesh, rows in self.instances
                   for corner in _placed_corners(_mesh_bounds(self.meshes[mesh]), rows)]
        if not corners:
            raise ValueError("the model has no points")
        return tuple(map(min, zip(*corners))), tuple(map(max, zip(*corners)))

    def add_to(self, scene):
        """Adds every mesh at every place, within the open blocks; returns their objects. Materials
        of the model count before that of an open block; what they emit shines."""
        objects, shading = {}, Shading(scene, self)
        for mesh_index, rows in self.instances:
            mesh = self.meshes[mesh_index]
            if not mesh["triangles"]:
                continue
            if mesh_index not in objects:
                parameters = {name: mesh[name] for name in _ARRAYS if mesh.get(name) is not None}
                objects[mesh_index] = [
                    (scene.object("mesh", triangles=triangles, **parameters), light)
                    for triangles, light in shading.parts(mesh)
                ]
            material = shading.material(mesh.get("material", -1))
            for made, light in objects[mesh_index]:
                with contextlib.ExitStack() as blocks:
                    blocks.enter_context(Transform(rows))
                    for block in filter(None, (material, light)):
                        blocks.enter_context(block)
                    scene.add(made)
        return [made for parts in objects.values() for made, _ in parts]

    def add_lights_to(self, scene):
        """Adds the point lights, spots and distant lights of the file; returns them."""
        return [
            _light(scene, light)
            for light in self.lights
            if light["type"] != "other" and max(light["color"]) > 0
        ]

    def add_camera_to(self, scene, index=0):
        """Adds the camera of that index in the file, which then takes the picture; returns it."""
        try:
            told = self.cameras[index]
        except IndexError:
            raise IndexError("the model has {} cameras, and no camera {}".format(
                len(self.cameras), index)) from None
        position = told["position"]
        parameters = {name: told[name] for name in ("fov", "fov_axis", "height") if name in told}
        target = tuple(a + b for a, b in zip(position, told["direction"]))
        with Transform(told["transform"]):
            return scene.camera(told["type"], position=position, target=target, up=told["up"],
                                **parameters)


_IDENTITY = ((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))
_ARRAYS = ("points", "normals", "uvs", "colors")


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
        shape = _native.shape(triangles)[0]
        if shape[1:] != (3,) or shape[0] == 0:
            raise ValueError("expected triangles of the shape (N, 3), got {}".format(shape))
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


def _light(scene, light):
    parameters = {}
    if light["type"] == "distant":
        parameters.update(direction=light["direction"], irradiance=light["color"])
    else:
        parameters.update(position=light["position"], intensity=light["color"])
    if light["type"] == "spot":
        outer = min(max(light["outer_angle"], 0.01), 180.0)
        parameters.update(direction=light["direction"], cutoff_angle=outer,
                          beam_width=min(light["inner_angle"], outer))
    with Transform(light["transform"]):
        return scene.light(light["type"], **parameters)
