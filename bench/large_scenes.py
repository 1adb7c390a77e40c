"""What large scenes need from a script's arrays to the first ray: processor time and memory.

Run by run.py in a fresh process for each row; prints JSON.
"""

import json
import math
import os
import struct
import sys
import tempfile
import time
import zlib

import memory

THREADS = 2


def hills(module, columns, rows):
    """The parameters of a mesh with 2 * columns * rows triangles."""
    points, triangles = module.vector3array(), module.intarray()
    for j in range(rows + 1):
        for i in range(columns + 1):
            points.add(module.vector3(i / columns, 0.1 * math.sin(i * 0.01) * math.sin(j * 0.01),
                                      -j / rows))
    for j in range(rows):
        for i in range(j * (columns + 1), j * (columns + 1) + columns):
            for corner in (i, i + 1, i + columns + 2, i, i + columns + 2, i + columns + 1):
                triangles.add(corner)
    return ["points", points, "triangles", triangles]


def grid(module, count):
    """So many transforms, on a square grid."""
    places = module.transformarray()
    columns = math.isqrt(count)
    place = module.transform()
    for i in range(count):
        place.translation(module.vector3(i % columns, 0, -(i // columns)))
        places.add(place)
    return places


def colors_png(side):
    """A PNG file of 8-bit colours."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(
            ">I", zlib.crc32(kind + data))

    rows = zlib.compressobj(1)
    row = bytes(1) + bytes(i * 7 % 256 for i in range(3 * side))
    compressed = b"".join(rows.compress(row) for _ in range(side)) + rows.flush()
    header = struct.pack(">IIBBBBB", side, side, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", compressed)
            + chunk(b"IEND", b""))


def small_box(module, scene):
    return scene.newObject("box", ["min", module.vector3(0.2, 0.2, 0.2),
                                   "max", module.vector3(0.8, 0.8, 0.8)])


def add_mesh(module, scene, parameters):
    scene.addObject(scene.newObject("mesh", parameters))


def cloud(module, count):
    """The parameters of so many points in a cube, all of other sizes and colours."""
    positions, radii, colors = module.vector3array(), module.floatarray(), module.vector3array()
    state = 1
    for _ in range(count):
        numbers = []
        for _ in range(3):
            state = (1103515245 * state + 12345) % 2 ** 31
            numbers.append(state / 2 ** 31)
        positions.add(module.vector3(numbers[0], numbers[1] - 0.5, -numbers[2]))
        colors.add(module.vector3(*numbers))
        radii.add(0.001 + 0.002 * numbers[2])
    return ["positions", positions, "radii", radii, "colors", colors]


def add_points(module, scene, parameters):
    scene.addObject(scene.newObject("points", parameters[:4]))


def add_colored_points(module, scene, parameters):
    scene.addObject(scene.newObject("points", parameters))


def add_shining_points(module, scene, parameters):
    scene.newLight("area", [])
    scene.lightBegin()
    add_points(module, scene, parameters)
    scene.lightEnd()


def add_shining_mesh(module, scene, parameters):
    scene.newLight("area", [])
    scene.lightBegin()
    add_mesh(module, scene, parameters)
    scene.lightEnd()


def add_instances(module, scene, places):
    scene.addObject(scene.newObject(
        "instances", ["object", small_box(module, scene), "places", places]))


def add_one_by_one(module, scene, places):
    box = small_box(module, scene)
    for place in places:
        scene.transformBegin(place)
        scene.addObject(box)
        scene.transformEnd()


def add_textured_box(module, scene, png):
    with tempfile.NamedTemporaryFile(suffix=".png") as file:
        file.write(png)
        file.flush()
        texture = scene.newTexture(file.name)
    pattern = scene.newPattern("image", ["texture", texture])
    interface = scene.newInterface("diffuse", [])
    scene.materialBegin(scene.newMaterial("surface", ["interface", interface, "color", pattern]))
    scene.addObject(small_box(module, scene))
    scene.materialEnd()


# Of each row: how many things, what a script has, and how the scene gets it.
ROWS = {
    "a mesh of 1e6 triangles": (10 ** 6, lambda module: hills(module, 1000, 500), add_mesh),
    "a mesh of 1e6 triangles that shines": (
        10 ** 6, lambda module: hills(module, 1000, 500), add_shining_mesh),
    "a mesh of 1e7 triangles": (10 ** 7, lambda module: hills(module, 2500, 2000), add_mesh),
    "a cloud of 1e6 points": (10 ** 6, lambda module: cloud(module, 10 ** 6), add_points),
    "a cloud of 1e6 points with colours": (
        10 ** 6, lambda module: cloud(module, 10 ** 6), add_colored_points),
    "a cloud of 1e6 points that shine": (
        10 ** 6, lambda module: cloud(module, 10 ** 6), add_shining_points),
    "1e6 boxes, one object of places": (
        10 ** 6, lambda module: grid(module, 10 ** 6), add_instances),
    "1e6 boxes, added one by one": (
        10 ** 6, lambda module: grid(module, 10 ** 6), add_one_by_one),
    "a texture of 8192 x 8192, 8 bits": (
        8192 ** 2, lambda module: colors_png(8192), add_textured_box),
}
# Seconds to reach for another pass of an unchanged scene.
AGAIN = "a mesh of 1e6 triangles", 0.01
# Seconds and bytes to reach.
LIMITS = (("a mesh of 1e6 triangles", 0.4, 125), ("a mesh of 1e7 triangles", 3, 125),
          ("a cloud of 1e6 points", 0.5, 60),
          ("1e6 boxes, one object of places", 1, 300),
          ("a texture of 8192 x 8192, 8 bits", 0.5, 4))
QUICK = [row for row, (count, _, _) in ROWS.items() if count <= 10 ** 6]


def peak_bytes():
    """The most that this process has had in memory since forget_peak."""
    with open("/proc/self/status") as status:
        for line in status:
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) * 1024
    raise OSError("no VmHWM in /proc/self/status")


def forget_peak():
    with open("/proc/self/clear_refs", "w") as references:
        references.write("5")


def measure(row):
    """Processor seconds / threads of a first pass; the same of a second one, and of one after a
    small object was added; and the most memory beyond the script's arrays, in bytes for each
    thing."""
    import vantorPM as module

    os.environ["VANTOR_DIAGNOSTICS"] = "strict"  # no picture, and so no figure, of half a scene
    count, make, add = ROWS[row]
    made = make(module)
    with tempfile.TemporaryDirectory() as folder:
        forget_peak()
        before = memory.resident_bytes()
        begin = time.process_time()
        scene = module.scene(1)
        scene.newCamera("perspective", ["position", module.vector3(0.5, 2, 2),
                                        "target", module.vector3(0.5, 0, -0.5)])
        picture = os.path.join(folder, "pixel.exr")
        scene.newImager("file", ["name", picture])
        scene.newLight("point", ["position", module.vector3(0.5, 2, 2)])
        add(module, scene, made)

        def pass_since(start):
            scene.render(1, 1, 1, 0, 0, 1, 1)
            if not os.path.exists(picture):
                raise RuntimeError("no picture of " + row)
            os.remove(picture)
            return (time.process_time() - start) / THREADS

        seconds = pass_since(begin)
        peak = peak_bytes() - before
        again = pass_since(time.process_time())
        begin = time.process_time()
        scene.addObject(small_box(module, scene))
        one_more = pass_since(begin)
    return {"seconds": seconds, "again": again, "one more": one_more, "bytes": peak / count}


if __name__ == "__main__":
    settings = json.loads(sys.argv[1])
    sys.path[:0] = settings["paths"]
    os.sched_setaffinity(0, sorted(os.sched_getaffinity(0))[:THREADS])
    json.dump(measure(settings["row"]), sys.stdout)
