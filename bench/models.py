"""What vt.load() costs: real files, and a million triangles of a binary PLY to the first ray.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/models.py [file ...]
The real files are those of Debian's packages glmark2-data and assimp-testmodels; others may be
named. Files that are not there are left out, which is said. Prints the least of several runs.
"""

import os
import sys
import tempfile
import time
import warnings

import vantor as vt
from package import grid, least, write_ply

GLMARK = "/usr/share/glmark2/models/"
ASSIMP = "/usr/share/assimp/models/"
FILES = (
    GLMARK + "bunny.obj",
    GLMARK + "asteroid-high.3ds",
    ASSIMP + "PLY/Wuson.ply",
    ASSIMP + "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
    ASSIMP + "FBX/spider.fbx",
    ASSIMP + "Collada/COLLADA.dae",
    ASSIMP + "STL/Spider_ascii.stl",
)


def first_ray(path):
    """One pixel of the model, from nothing."""
    scene = vt.Scene()
    scene.camera("perspective", position=(0, 2, 3), target=(0, 0, 0))
    scene.light("environment")
    scene.add(vt.load(path))
    return scene.render(1, 1, 1)


def processor_time(work, runs):
    """Of all threads, in milliseconds: other programs do not count, as they do in elapsed time."""
    times = []
    for _ in range(runs):
        begin = time.process_time()
        work()
        times.append(time.process_time() - begin)
    return 1000 * min(times)


def tell(name, path):
    print("| {} | {:.1f} | {} | {:.0f} | {:.0f} | {:.0f} |".format(
        name, os.path.getsize(path) / 1e6, vt.load(path).triangle_count,
        least(lambda: vt.load(path), 15), least(lambda: first_ray(path), 9),
        processor_time(lambda: first_ray(path), 5)), flush=True)


def main():
    warnings.simplefilter("ignore", vt.SceneWarning)  # of pictures that some packages leave out
    print("| file | MB | triangles | load, ms | to the first ray, ms | of the processors, ms |")
    print("|---|---:|---:|---:|---:|---:|")
    for path in sys.argv[1:] or FILES:
        if os.path.exists(path):
            tell(os.path.basename(path), path)
        else:
            print("{} is not there".format(path), file=sys.stderr)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "grid.ply")
        write_ply(path, *grid(708))
        tell("a million triangles, binary PLY", path)


if __name__ == "__main__":
    main()
