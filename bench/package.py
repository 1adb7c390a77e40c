"""What the package vantor costs: arrays in and out, models, pictures, jobs.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/package.py    (numpy is needed)
Prints the least of several runs, in milliseconds.
"""

import os
import tempfile
import time

import numpy
import vantor as vt
from vantor import _native

MILLION = 1000000


def least(work, runs=7):
    """Milliseconds of the fastest run; what it makes is released outside of the time."""
    times = []
    for _ in range(runs):
        begin = time.perf_counter()
        made = work()
        times.append(time.perf_counter() - begin)
        del made
    return 1000 * min(times)


def grid(side):
    """Points and triangles of a waved square."""
    x, z = numpy.meshgrid(numpy.linspace(-1, 1, side), numpy.linspace(-1, 1, side))
    points = numpy.stack([x, 0.2 * numpy.sin(5 * x) * numpy.cos(4 * z), z], -1).reshape(-1, 3)
    corner = numpy.arange(side * side).reshape(side, side)[:-1, :-1].ravel()
    lower = numpy.stack([corner, corner + side, corner + side + 1], -1)
    upper = numpy.stack([corner, corner + side + 1, corner + 1], -1)
    return points.astype("<f4"), numpy.concatenate([lower, upper]).astype("<i4")


def write_ply(path, points, triangles):
    faces = numpy.zeros(len(triangles), [("count", "u1"), ("corners", "<i4", 3)])
    faces["count"], faces["corners"] = 3, triangles
    with open(path, "wb") as file:
        file.write("ply\nformat binary_little_endian 1.0\nelement vertex {}\nproperty float x\n"
                   "property float y\nproperty float z\nelement face {}\n"
                   "property list uchar int vertex_indices\nend_header\n"
                   .format(len(points), len(triangles)).encode())
        file.write(points.tobytes() + faces.tobytes())


def write_stl(path, points, triangles):
    rows = numpy.zeros(len(triangles), [("normal", "<f4", 3), ("corners", "<f4", (3, 3)),
                                        ("attribute", "<u2")])
    rows["corners"] = points[triangles]
    with open(path, "wb") as file:
        file.write(bytes(80) + numpy.uint32(len(triangles)).tobytes() + rows.tobytes())


def write_obj(path, points, triangles):
    with open(path, "w") as file:
        numpy.savetxt(file, points, "v %.6g %.6g %.6g")
        numpy.savetxt(file, triangles + 1, "f %d %d %d")


def arrays():
    doubles = numpy.random.default_rng(1).random((MILLION, 3))
    matrices = numpy.broadcast_to(numpy.eye(4), (MILLION, 4, 4)).copy()
    indices = numpy.arange(3 * MILLION).reshape(-1, 3)
    for name, kind, value in (
        ("a million points, float64", "vector3array", doubles),
        ("a million points, float32", "vector3array", doubles.astype("f4")),
        ("a million triangles, int64", "intarray", indices),
        ("a million 4 x 4 matrices", "transformarray", matrices),
    ):
        made = _native.to_array(kind, value)
        yield name + ", in", least(lambda: _native.to_array(kind, value))
        yield name + ", out", least(lambda: vt.to_numpy(made))


def models(folder):
    points, triangles = grid(708)
    for ending, write in (("ply", write_ply), ("stl", write_stl), ("obj", write_obj)):
        path = os.path.join(folder, "grid." + ending)
        write(path, points, triangles)
        yield "load, a million triangles, " + ending, least(lambda: vt.load(path), 3)
    path = os.path.join(folder, "grid.ply")

    def first_ray():
        scene = vt.Scene()
        scene.camera("perspective", position=(0, 2, 3), target=(0, 0, 0))
        scene.light("sky")
        scene.add(vt.load(path))
        return scene.render(1, 1, 1)

    yield "from that ply to the first ray", least(first_ray, 3)


def clouds():
    numbers = numpy.random.default_rng(1).random((MILLION, 7)).astype("f4")
    positions, radii, colors = numbers[:, :3], 0.003 * numbers[:, 3], numbers[:, 4:]
    yield "a million points, arrays in", least(lambda: vt.points(positions, radii, colors))

    def first_ray():
        scene = vt.Scene()
        scene.camera("perspective", position=(0, 2, 3), target=(0, 0, 0))
        scene.light("sky")
        scene.add(vt.points(positions, radii, colors))
        return scene.render(1, 1, 1)

    yield "from these to the first ray", least(first_ray, 3)


def passes():
    scene = vt.Scene()
    scene.camera("perspective", position=(0, 2, 6), target=(0, 1, 0))
    scene.light("sky")
    scene.add("sphere", center=(0, 1, 0))
    waited = least(lambda: scene.render(64, 48, 1), 15)
    job = least(lambda: scene.render(64, 48, 1, wait=False).result(), 15)
    yield "a pass of 64 x 48 pixels", waited
    yield "what a job costs more", job - waited
    yield "an object, added", least(lambda: [scene.add("sphere") for _ in range(1000)], 5) / 1000


def main():
    with tempfile.TemporaryDirectory() as folder:
        for rows in (arrays(), models(folder), clouds(), passes()):
            for name, milliseconds in rows:
                print("{:40} {:8.2f}".format(name, milliseconds), flush=True)


if __name__ == "__main__":
    main()
