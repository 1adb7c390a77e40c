"""The Cornell box of render_cornell.cpp for Blender's Cycles, in the same units of radiance.

    blender -b --factory-startup --python cornell_cycles.py -- FILE.exr SIDE SAMPLES THREADS

Axes and numbers are those of the box: +Y is up, though Blender's own viewports have +Z there.
"""

import math
import sys

import bpy
from mathutils import Matrix

WHITE, RED, GREEN = (0.73, 0.73, 0.73), (0.63, 0.06, 0.05), (0.14, 0.45, 0.09)
WIDTH, HEIGHT, DEPTH = 5.56, 5.49, 5.60
RADIANCE = 15.0


def diffuse(colour):
    """A material that reflects the colour equally in all directions."""
    material = bpy.data.materials.new("diffuse")
    material.use_nodes = True
    nodes, links = material.node_tree.nodes, material.node_tree.links
    nodes.clear()
    reflection = nodes.new("ShaderNodeBsdfDiffuse")
    reflection.inputs["Color"].default_value = (*colour, 1)
    links.new(reflection.outputs[0], nodes.new("ShaderNodeOutputMaterial").inputs["Surface"])
    return material


def lamp():
    """A material that shines from its front, where corners are counter-clockwise, and reflects."""
    material = diffuse((0.5, 0.5, 0.5))
    nodes, links = material.node_tree.nodes, material.node_tree.links
    strength = nodes.new("ShaderNodeMath")
    strength.operation = "MULTIPLY_ADD"  # RADIANCE, less as much where Backfacing is 1
    strength.inputs[1].default_value, strength.inputs[2].default_value = -RADIANCE, RADIANCE
    links.new(nodes.new("ShaderNodeNewGeometry").outputs["Backfacing"], strength.inputs[0])
    emission = nodes.new("ShaderNodeEmission")
    links.new(strength.outputs[0], emission.inputs["Strength"])
    both = nodes.new("ShaderNodeAddShader")
    links.new(emission.outputs[0], both.inputs[0])
    links.new(nodes["Diffuse BSDF"].outputs[0], both.inputs[1])
    links.new(both.outputs[0], nodes["Material Output"].inputs["Surface"])
    return material


def add_mesh(points, faces, material):
    mesh = bpy.data.meshes.new("mesh")
    mesh.from_pydata(points, [], faces)
    mesh.materials.append(material)
    placed = bpy.data.objects.new("object", mesh)
    bpy.context.scene.collection.objects.link(placed)
    return placed


def add_quad(origin, edge_u, edge_v, material):
    corners = [origin]
    for step, sign in ((edge_u, 1), (edge_v, 1), (edge_u, -1)):
        corners.append([p + sign * s for p, s in zip(corners[-1], step)])
    return add_mesh(corners, [(0, 1, 2, 3)], material)


def add_block(height, degrees, place, material):
    points = [(x, y, z) for x in (-0.5, 0.5) for y in (0, 1) for z in (-0.5, 0.5)]
    faces = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
    block = add_mesh(points, faces, material)
    block.matrix_world = (Matrix.Translation(place)
                          @ Matrix.Rotation(math.radians(degrees), 4, "Y")
                          @ Matrix.Diagonal((1.65, height, 1.65, 1)))


def describe_box():
    across, up, back = (WIDTH, 0, 0), (0, HEIGHT, 0), (0, 0, DEPTH)
    white, red, green = (diffuse(colour) for colour in (WHITE, RED, GREEN))
    add_quad((0, 0, 0), back, across, white)
    add_quad(up, across, back, white)
    add_quad(back, up, across, white)
    add_block(1.65, 17, (1.86, 0, 1.69), white)
    add_block(3.30, -17, (3.69, 0, 3.51), white)
    add_quad(across, back, up, red)
    add_quad((0, 0, 0), up, back, green)
    add_quad((2.13, 5.48, 2.27), (1.30, 0, 0), (0, 0, 1.05), lamp())

    camera = bpy.data.objects.new("camera", bpy.data.cameras.new("camera"))
    camera.data.angle = math.radians(39.3)
    # It looks along its own -Z, with +Y up.
    camera.matrix_world = Matrix.Translation((2.78, 2.73, -8)) @ Matrix.Rotation(math.pi, 4, "Y")
    bpy.context.scene.collection.objects.link(camera)
    bpy.context.scene.camera = camera


def render(path, side, samples, threads):
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    scene.cycles.device = "CPU"
    scene.cycles.samples = samples
    scene.cycles.use_adaptive_sampling = False
    scene.cycles.use_denoising = False
    scene.cycles.pixel_filter_type = "BOX"
    scene.cycles.filter_width = 1.0
    scene.cycles.max_bounces = scene.cycles.diffuse_bounces = 12
    scene.cycles.sample_clamp_indirect = 0
    scene.render.threads_mode = "FIXED"
    scene.render.threads = threads
    scene.render.resolution_x = scene.render.resolution_y = side
    scene.render.resolution_percentage = 100
    scene.render.image_settings.file_format = "OPEN_EXR"
    scene.render.image_settings.color_depth = "32"
    scene.render.filepath = path
    bpy.ops.render.render(write_still=True)


def main():
    path, side, samples, threads = sys.argv[sys.argv.index("--") + 1:]
    bpy.ops.wm.read_factory_settings(use_empty=True)
    bpy.context.scene.world = None
    describe_box()
    render(path, int(side), int(samples), int(threads))


main()
