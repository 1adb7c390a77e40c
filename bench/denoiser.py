"""What the denoiser gains and costs: errors raw and denoised, its seconds beside those of the pass.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/denoiser.py [width [samples ...]]

Draws a Cornell box, a room in indirect light, and caustics of glass and gold, with 8 and 16 samples
a pixel unless others are named. Errors are root mean squares against a picture of 64 times as many
samples and other numbers; lamps, whose edges would count for all else, are left out. Seconds are
processor seconds / 2. Compare ratios, and only of one run. numpy is needed.
"""

import os
import sys
import tempfile
import time

import numpy
from vantor import Picture
from vantorPM import scene, vector3

WHITE, RED, GREEN = (0.73, 0.73, 0.73), (0.63, 0.06, 0.05), (0.14, 0.45, 0.09)


def quad(world, origin, edge_u, edge_v):
    world.addObject(world.newObject("quad", [
        "origin", vector3(*origin), "edge_u", vector3(*edge_u), "edge_v", vector3(*edge_v)]))


def wall(world, color, *corner):
    world.materialBegin(world.newMaterial("diffuse", ["reflectance", vector3(*color)]))
    quad(world, *corner)
    world.materialEnd()


def lamp(world, radiance, *corner):
    world.newLight("area", ["radiance", vector3(*radiance)])
    world.lightBegin()
    quad(world, *corner)
    world.lightEnd()


def box_walls(world):
    world.newCamera("perspective", ["position", vector3(2.78, 2.73, -8),
                                    "target", vector3(2.78, 2.73, 0), "fov", 37.6])
    wall(world, WHITE, (0, 0, 0), (0, 0, 5.6), (5.56, 0, 0))
    wall(world, WHITE, (0, 5.49, 0), (5.56, 0, 0), (0, 0, 5.6))
    wall(world, WHITE, (0, 0, 5.6), (0, 5.49, 0), (5.56, 0, 0))
    wall(world, RED, (5.56, 0, 0), (0, 0, 5.6), (0, 5.49, 0))
    wall(world, GREEN, (0, 0, 0), (0, 5.49, 0), (0, 0, 5.6))


def cornell(world):
    box_walls(world)
    wall(world, WHITE, (1, 0.1, 1), (0, 1.6, 0), (1.6, 0, 0.5))
    lamp(world, (18.4, 15.6, 8), (2.13, 5.48, 2.27), (1.3, 0, 0), (0, 0, 1.05))


def indirect(world):
    box_walls(world)
    lamp(world, (40, 34, 20), (0.5, 3.9, 2.27), (0, 0, 1), (0.5, 0, 0))


def caustics(world):
    world.newCamera("perspective", ["position", vector3(0, 4, 6),
                                    "target", vector3(0, 0.3, 0), "fov", 38.0])
    wall(world, WHITE, (-6, 0, 6), (12, 0, 0), (0, 0, -12))
    lamp(world, (60, 55, 50), (-2.5, 5, -0.4), (0.7, 0, 0), (0, 0, 0.7))
    balls = (-0.9, "dielectric", ["ior", 1.5]), (0.9, "conductor", ["metal", "gold"])
    for x, kind, words in balls:
        interface = world.newInterface(kind, words)
        world.materialBegin(world.newMaterial("surface", ["interface", interface]))
        world.addObject(world.newObject("sphere", ["center", vector3(x, 0.8, 0), "radius", 0.8]))
        world.materialEnd()


def draw(make, folder, width, samples, seed, denoise):
    """The picture, and the seconds of the pass."""
    world = scene()
    make(world)
    path = os.path.join(folder, "picture.exr")
    world.newImager("settings", ["seed", seed])
    world.newImager("file", ["name", path, "denoise", denoise])
    start = time.process_time()
    world.render(width, width, samples)
    seconds = (time.process_time() - start) / 2
    return numpy.asarray(Picture.load(path).color), seconds


def rmse(picture, reference):
    """Without what is brighter than 4, and the pixels beside it."""
    bright = numpy.pad(reference.max(-1) > 4, 1)
    near = [numpy.roll(bright, (y, x), (0, 1)) for y in (-1, 0, 1) for x in (-1, 0, 1)]
    counts = ~numpy.any(near, axis=0)[1:-1, 1:-1]
    return float(numpy.sqrt(((picture - reference)[counts] ** 2).mean()))


def main(width=512, *counts):
    print("{:10} {:>7} {:>8} {:>9} {:>6} {:>9} {:>12} {:>10}".format(
        "scene", "samples", "raw", "denoised", "ratio", "mean", "pass, s", "denoiser, s"))
    with tempfile.TemporaryDirectory() as folder:
        for make in (cornell, indirect, caustics):
            reference, _ = draw(make, folder, width, 64 * max(counts), 1, 0)
            for count in counts:
                raw, seconds = draw(make, folder, width, count, 0, 0)
                smooth, with_denoiser = draw(make, folder, width, count, 0, 1)
                before, after = rmse(raw, reference), rmse(smooth, reference)
                print("{:10} {:7} {:8.4f} {:9.4f} {:6.3f} {:+8.3%} {:12.2f} {:10.2f}".format(
                    make.__name__, count, before, after, after / before,
                    smooth.mean() / raw.mean() - 1, seconds, with_denoiser - seconds), flush=True)


if __name__ == "__main__":
    words = [int(word) for word in sys.argv[1:]]
    main(*(words[:1] or [512]), *(words[1:] or [8, 16]))
