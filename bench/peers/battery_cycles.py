"""The scenes of battery_scenes.py for Blender's Cycles, in the same units of radiance.

    blender -b --factory-startup --python battery_cycles.py -- JOB.json

The job says which scene, which pictures, and where the processor seconds of each are to be written.
battery_scenes.py lies beside it. Axes are those of the scene: +Y is up, though Blender's own
viewports have +Z there.
"""

import json
import math
import os
import sys
import time

import bpy
import numpy
from mathutils import Matrix, Vector

job_path = sys.argv[sys.argv.index("--") + 1]
sys.path.insert(0, os.path.dirname(job_path))

import battery_scenes


class Nodes:
    """The nodes of a material or a world, whose output takes what they make."""

    def __init__(self, of):
        of.use_nodes = True
        self.nodes, self.links = of.node_tree.nodes, of.node_tree.links
        self.nodes.clear()

    def add(self, kind, **inputs):
        node = self.nodes.new("ShaderNode" + kind)
        for name, value in inputs.items():
            if isinstance(value, bpy.types.NodeSocket):
                self.links.new(value, node.inputs[name])
            elif value is not None:
                colored = node.inputs[name].type == "RGBA"
                node.inputs[name].default_value = (*value, 1) if colored else value
        return node

    def image(self, kind, picture, **inputs):
        rows, columns = picture.shape[:2]
        image = bpy.data.images.new("picture", columns, rows, float_buffer=True)
        image.colorspace_settings.is_data = True
        rgba = numpy.ones((rows, columns, 4), numpy.float32)
        rgba[:, :, :3] = picture[::-1]
        image.pixels.foreach_set(rgba.ravel())
        node = self.add(kind, **inputs)
        node.image = image
        return node.outputs["Color"]


def material(words):
    made = bpy.data.materials.new("material")
    nodes = Nodes(made)
    if "glass" in words:
        shader = nodes.add("BsdfGlass", Color=(1, 1, 1), Roughness=0.0, IOR=words["glass"])
    elif "metal" in words:
        color = nodes.image("TexImage", words["picture"]) if "picture" in words else words["metal"]
        shader = nodes.add("BsdfGlossy", Color=color, Roughness=words["roughness"])
    else:
        shader = nodes.add("BsdfDiffuse", Color=words.get("diffuse", (0.5, 0.5, 0.5)))
    if "lamp" in words:  # no light where Backfacing is 1
        front = nodes.add("Math")
        front.operation = "SUBTRACT"
        front.inputs[0].default_value = 1.0
        nodes.links.new(nodes.add("NewGeometry").outputs["Backfacing"], front.inputs[1])
        emission = nodes.add("Emission", Color=words["lamp"], Strength=front.outputs[0])
        both, reflection = nodes.add("AddShader"), shader
        nodes.links.new(emission.outputs[0], both.inputs[0])
        nodes.links.new(reflection.outputs[0], both.inputs[1])
        shader = both
        made.cycles.emission_sampling = "FRONT"
    nodes.add("OutputMaterial", Surface=shader.outputs[0])
    return made


def place(data, matrix=None):
    placed = bpy.data.objects.new("object", data)
    placed.matrix_world = Matrix.Identity(4) if matrix is None else matrix
    bpy.context.scene.collection.objects.link(placed)
    return placed


def mesh(of, points, faces, smooth=False):
    """Faces have the same number of corners each."""
    made = bpy.data.meshes.new("mesh")
    count, corners = faces.shape
    made.vertices.add(len(points))
    made.vertices.foreach_set("co", numpy.asarray(points, numpy.float32).ravel())
    made.loops.add(count * corners)
    made.loops.foreach_set("vertex_index", faces.astype(numpy.int32).ravel())
    made.polygons.add(count)
    made.polygons.foreach_set("loop_start", numpy.arange(0, count * corners, corners, numpy.int32))
    made.polygons.foreach_set("use_smooth", numpy.full(count, smooth))
    made.update(calc_edges=True)
    made.materials.append(of)
    return made


def tubes(of, points, radii):
    count, each = points.shape[:2]
    made = bpy.data.hair_curves.new("tubes")
    made.add_curves([each] * count)
    made.points.foreach_set("position", points.astype(numpy.float32).ravel())
    made.points.foreach_set("radius", numpy.tile(radii, count).astype(numpy.float32))
    made.materials.append(of)
    bpy.context.scene.cycles_curves.shape = "THICK"
    return made


def towards(position, direction):
    """What looks along its own -Z is at the position and looks there, with +Y up."""
    back = -Vector(direction).normalized()
    right = Vector((0, 1, 0)).cross(back).normalized()
    axes = Matrix((right, back.cross(right), back)).transposed()
    return Matrix.Translation(position) @ axes.to_4x4()


def light(kind, matrix, **settings):
    made = bpy.data.lights.new("light", kind)
    for name, value in settings.items():
        setattr(made, name, value)
    place(made, matrix)


def sky(radiance):
    world = bpy.context.scene.world = bpy.data.worlds.new("world")
    nodes = Nodes(world)
    if numpy.ndim(radiance) == 3:
        # Blender has +X in a picture's middle, -Y a quarter to the right and +Z above; the scene
        # has -Z, +X and +Y there.
        turn = Matrix(((0, 0, -1), (-1, 0, 0), (0, 1, 0))).to_euler()
        direction = nodes.add("TexCoord").outputs["Generated"]
        turned = nodes.add("Mapping", Vector=direction, Rotation=turn)
        radiance = nodes.image("TexEnvironment", radiance, Vector=turned.outputs[0])
    nodes.add("OutputWorld", Surface=nodes.add("Background", Color=radiance).outputs[0])


def haze(least, greatest, scattering, mean_cosine):
    made = bpy.data.materials.new("haze")
    nodes = Nodes(made)
    volume = nodes.add("VolumeScatter", Color=(1, 1, 1), Density=scattering,
                       Anisotropy=mean_cosine)
    nodes.add("OutputMaterial", Volume=volume.outputs[0])
    box = battery_scenes.Description(least, greatest, 1)
    box.box(None, least, greatest)
    _, points, triangles, _, _ = box.meshes[0]
    place(mesh(made, points, triangles))


def describe(scene):
    for words, corners in scene.quads:
        faces = numpy.arange(4 * len(corners)).reshape(-1, 4)
        flat = mesh(material(words), corners.reshape(-1, 3), faces)
        uvs = numpy.tile((0.0, 0, 1, 0, 1, 1, 0, 1), len(corners))
        flat.uv_layers.new().data.foreach_set("uv", uvs)
        place(flat)
    for words, points, triangles, normals, places in scene.meshes:
        made = mesh(material(words), points, triangles, normals is not None)
        for matrix in [numpy.eye(4)] if places is None else places:
            place(made, Matrix(matrix.T.tolist()))
    for words, points, radii in scene.tubes:
        place(tubes(material(words), points, radii))
    for position, target, intensity, cutoff, beam in scene.spots:
        cutoff, beam = math.radians(cutoff), math.radians(beam)
        strongest = max(intensity)
        light("SPOT", towards(position, Vector(target) - Vector(position)), shadow_soft_size=0,
              energy=4 * math.pi * strongest, color=[part / strongest for part in intensity],
              spot_size=2 * cutoff,
              spot_blend=(math.cos(beam) - math.cos(cutoff)) / (1 - math.cos(cutoff)))
    if scene.sun:
        direction, irradiance, angle = scene.sun
        strongest = max(irradiance)
        light("SUN", towards((0, 0, 0), direction), energy=strongest,
              color=[part / strongest for part in irradiance], angle=math.radians(angle))
    if scene.sky is not None:
        sky(scene.sky)
    if scene.haze:
        haze(*scene.haze)
    position, target, fov = scene.camera
    camera = bpy.data.cameras.new("camera")
    camera.sensor_fit, camera.angle_y = "VERTICAL", math.radians(fov)
    bpy.context.scene.camera = place(camera, towards(position, Vector(target) - Vector(position)))


def settle(threads):
    """Cycles as it is by default, without what changes the picture to make less noise of it."""
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    cycles = scene.cycles
    cycles.device = "CPU"
    cycles.use_adaptive_sampling = cycles.use_denoising = False
    cycles.sample_clamp_indirect = cycles.blur_glossy = 0
    cycles.pixel_filter_type, cycles.filter_width = "BOX", 1.0
    for kind in ("max", "diffuse", "glossy", "transmission", "volume"):
        setattr(cycles, kind + "_bounces", battery_scenes.MAX_DEPTH - 1)
    scene.render.threads_mode, scene.render.threads = "FIXED", threads
    scene.render.resolution_percentage = 100
    scene.render.image_settings.file_format = "OPEN_EXR"
    scene.render.image_settings.color_depth = "32"


def render(file, width, height, samples, seed):
    scene = bpy.context.scene
    scene.render.resolution_x, scene.render.resolution_y = width, height
    scene.cycles.samples, scene.cycles.seed = samples, seed
    scene.render.filepath = file
    bpy.ops.render.render(write_still=True)


def main():
    with open(job_path) as file:
        job = json.load(file)
    description = battery_scenes.SCENES[job["scene"]]()
    bpy.ops.wm.read_factory_settings(use_empty=True)
    bpy.context.scene.world = None
    start = time.process_time()
    settle(job["threads"])
    describe(description)
    described, seconds = time.process_time() - start, []
    for picture in job["pictures"]:
        start = time.process_time()
        render(*picture)
        seconds.append(described + time.process_time() - start)
    with open(job["answer"], "w") as file:
        json.dump({"version": bpy.app.version_string, "seconds": seconds}, file)


main()
