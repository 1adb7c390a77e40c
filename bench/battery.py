"""A battery of scenes with this renderer and with Blender's Cycles: seconds to the same error.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/battery.py [--quick] [--only REGEX]
           [--blender COMMAND] [--folder FOLDER] [--json FILE]

README.md tells how it measures. numpy is needed, by Blender's Python as well. Without Blender the
table has this renderer's part. If a folder is given the pictures stay there; COMMAND has to see it
under the same path.
"""

import argparse
import json
import math
import os
import re
import shlex
import shutil
import tempfile
import time

import numpy
import vantor as vt
from vantorPM import CatmullRomBasis

import battery_scenes
import render
import render_peers
import tables

SIZE = 256, 192
PEER_SAMPLES, MOST_SAMPLES = 16, 64

# To reach, raw and denoised: the peer's seconds to its own error, divided by this renderer's.
TO_REACH = {"cornell": (6, 15), "indirect_room": (5, 20), "caustics": (3, 3),
            "environment": (5, 10), "thousand_lights": (30, 60), "haze": (4, 8), "grass": (3, 3),
            "glossy_interior": (5, 12), "big_geometry": (4, 4)}


# ----- this renderer


def material(scene, words):
    if "glass" in words:
        return scene.material("dielectric", ior=words["glass"])
    if "metal" not in words:
        return scene.material("diffuse", reflectance=words["diffuse"])
    # With so much extinction a surface reflects everything, from everywhere.
    metal = scene.interface("conductor", eta=1.0, k=100.0, color=words["metal"],
                            roughness=words["roughness"])
    color = None
    if "picture" in words:
        color = scene.pattern("image", texture=scene.texture(words["picture"]))
    return scene.material("surface", interface=metal, color=color)


def describe(description, seed=0):
    """The scene for the package."""
    scene = vt.Scene(strict=True)
    position, target, fov = description.camera
    scene.camera("perspective", position=position, target=target, fov=fov)
    scene.imager("settings", seed=seed, max_depth=battery_scenes.MAX_DEPTH)
    for words, quads in description.quads:
        lamp = "lamp" in words
        with scene.light("area", radiance=words["lamp"]) if lamp else material(scene, words):
            for corners in quads:
                scene.add("quad", origin=corners[0], edge_u=corners[1] - corners[0],
                          edge_v=corners[3] - corners[0])
    for words, points, triangles, normals, places in description.meshes:
        with material(scene, words):
            mesh = scene.object("mesh", points=points, triangles=triangles, normals=normals)
            if places is None:
                scene.add(mesh)
            else:
                scene.add("instances", object=mesh, places=places)
    for words, points, radii in description.tubes:
        # The module's splines begin at the second point and end before the last.
        ends = [0, *range(points.shape[1]), -1]
        with material(scene, words):
            scene.add("curves", points=points[:, ends].reshape(-1, 3), kind="tube",
                      counts=numpy.full(len(points), len(ends)), basis=CatmullRomBasis(), step=1,
                      radii=numpy.tile(radii[ends], len(points)))
    for position, target, intensity, cutoff, beam in description.spots:
        scene.light("spot", position=position, target=target, intensity=intensity,
                    cutoff_angle=cutoff, beam_width=beam)
    if description.sun:
        direction, irradiance, angle = description.sun
        scene.light("distant", direction=direction, irradiance=irradiance, angle=angle)
    if numpy.ndim(description.sky) == 3:
        scene.light("environment", name=description.sky)
    elif description.sky is not None:
        scene.light("environment", radiance=description.sky)
    if description.haze:
        least, greatest, scattering, mean_cosine = description.haze
        clear = scene.material("surface", interface=scene.interface("diffuse"), opacity=0.0)
        with clear, scene.interior("homogeneous", sigma_s=scattering, g=mean_cosine):
            scene.add("box", min=least, max=greatest)
    return scene


class Ours:
    """Pictures by this renderer, each of a scene that is described anew."""

    def __init__(self, name):
        self.description = battery_scenes.SCENES[name]()

    def draw(self, jobs, denoise=False):
        """Pictures for jobs (width, height, samples, seed); and seconds with the preparation."""
        pictures, seconds = [], []
        for width, height, samples, seed in jobs:
            start = time.process_time()
            scene = describe(self.description, seed)
            picture = scene.render(width, height, samples, filter="box", denoise=denoise)
            seconds.append((time.process_time() - start) / render_peers.THREADS)
            pictures.append(numpy.array(picture.color))
        return pictures, seconds


class Cycles:
    """The same by Blender, in one process for all jobs; what describing takes counts for each."""

    def __init__(self, name, folder, blender):
        self.name, self.folder, self.blender, self.version = name, folder, blender, ""

    def draw(self, jobs):
        files = [os.path.join(self.folder, "{}-cycles-{}-{}.exr".format(self.name, *job[2:]))
                 for job in jobs]
        pictures = [(file, *job) for file, job in zip(files, jobs)]
        self.version, seconds, _ = render_peers.run_cycles(
            self.folder, self.name, pictures, self.blender)
        return [numpy.array(vt.Picture.load(name).color) for name in files], seconds


# ----- errors


class Reference:
    """The mean of two pictures, whose difference tells how much noise is left in it."""

    def __init__(self, one, other):
        self.picture = (one + other) / 2
        self.noise = ((one - other) ** 2).sum(-1) / 4
        dim = 0.01 * self.picture.mean() ** 2
        self.square = (self.picture ** 2).sum(-1) + 3 * dim

    def squared_errors(self, picture):
        """Relative ones: of all pixels, and without the hundredth of them that is worst."""
        each = (((picture - self.picture) ** 2).sum(-1) / self.square).ravel()
        own = each - (self.noise / self.square).ravel()
        kept = numpy.argsort(each)[:len(each) * 99 // 100]
        return max(own.mean(), 1e-12), max(own[kept].mean(), 1e-12)


def mean_errors(reference, pictures):
    """Relative errors of pictures with as many samples: root mean squares over all of them."""
    squares = [reference.squared_errors(picture) for picture in pictures]
    return [math.sqrt(square) for square in numpy.mean(squares, axis=0)]


def samples_to(error, curve):
    """Samples along a curve of (samples, error), on straight lines in logarithms; beyond its last
    point the error falls with the root of the samples. At least those of the first point."""
    if error >= curve[0][1]:
        return curve[0][0]
    for (n0, e0), (n1, e1) in zip(curve, curve[1:]):
        if e1 <= error:
            return n0 * (n1 / n0) ** (math.log(error / e0) / math.log(e1 / e0))
    return curve[-1][0] * (curve[-1][1] / error) ** 2


# ----- the run


def converged(ours, reference, wanted, denoise, repeats):
    """Curves of (samples, error), of all pixels and trimmed, until both errors are reached; and the
    (samples, seconds) of each picture."""
    samples, curves, spent = 2 if denoise else 1, ([], []), []
    while True:
        jobs = [(*SIZE, samples, 11 + i) for i in range(repeats if samples < MOST_SAMPLES else 1)]
        pictures, seconds = ours.draw(jobs, denoise)
        spent += [(samples, each) for each in seconds]
        errors = mean_errors(reference, pictures)
        for curve, error in zip(curves, errors):
            curve.append((samples, error))
        if all(error <= goal for error, goal in zip(errors, wanted)) or samples >= MOST_SAMPLES:
            return curves, spent
        samples *= 2


def cost(jobs, seconds):
    """The preparation by jobs of one sample, and what a sample takes besides: the least of each."""
    preparation = min(each for job, each in zip(jobs, seconds) if job[2] == 1)
    return preparation, min((each - preparation) / job[2]
                            for job, each in zip(jobs, seconds) if job[2] > 1)


def measure(name, setting):
    """A scene's record; without Blender its own renderer's errors are the goal."""
    half, repeats = (32, 1) if setting.quick else (64, 3)
    tries = [(*SIZE, PEER_SAMPLES, 11 + i) for i in range(repeats)]
    start = [(4, 4, 1, 1)] * 3  # fewer pixels than that Blender does not render
    jobs = [*start, *tries, (*SIZE, half, 101), (*SIZE, half, 102)]
    ours = Ours(name)
    pictures, seconds = ours.draw(jobs)
    reference = Reference(*pictures[-2:])
    wanted = mean_errors(reference, pictures[3:-2])
    preparation, a_sample = cost(jobs, seconds)
    record = {"scene": name, "mean": float(reference.picture.mean()), "errors": wanted}
    if setting.blender:
        cycles = Cycles(name, setting.folder, setting.blender)
        pictures, seconds = cycles.draw(jobs)
        goal = Reference(*pictures[-2:])
        wanted = mean_errors(goal, pictures[3:-2])
        its_preparation, its_sample = cost(jobs, seconds)
        record["cycles"] = {"version": cycles.version, "mean": float(goal.picture.mean()),
                            "errors": wanted, "preparation": its_preparation,
                            "seconds": its_preparation + PEER_SAMPLES * its_sample}
        if setting.keep:
            save(goal.picture, setting.folder, name, "cycles")
    if setting.keep:
        save(reference.picture, setting.folder, name, "vantor")
    raw, _ = converged(ours, reference, wanted, False, repeats)
    denoised, spent = converged(ours, reference, wanted, True, repeats)
    denoiser = min(each - preparation - samples * a_sample for samples, each in spent)
    record.update({"preparation": preparation, "seconds": preparation + PEER_SAMPLES * a_sample,
                   "a sample": a_sample, "denoiser": denoiser})
    for way, curves, more in (("raw", raw, 0), ("denoised", denoised, denoiser)):
        samples = [samples_to(error, curve) for error, curve in zip(wanted, curves)]
        record[way] = {"curves": curves, "samples": samples, "seconds": [
            preparation + more + a_sample * count for count in samples]}
    return record


def save(picture, folder, name, by):
    vt.Picture.of(picture).save(os.path.join(folder, "{}-{}.exr".format(name, by)))


def show(records):
    """The tables: of each renderer alone, and of both to the same error."""
    number, rows = tables.number, []
    heading = ["scene", "mean", "preparation", "16 samples", "denoiser", "error", "trimmed"]
    for record in records:
        for by, of in (("", record), ("  Cycles", record.get("cycles"))):
            if of:
                rows.append([by or record["scene"], "{:.4f}".format(of["mean"]),
                             number(of["preparation"]), number(of["seconds"]),
                             number(of.get("denoiser")),
                             *("{:.4f}".format(error) for error in of["errors"])])
    print("Seconds of the preparation, with it of 16 samples, of the denoiser; errors of 16\n"
          "samples, of all pixels and trimmed\n")
    tables.show(heading, rows)
    if "cycles" not in records[0]:
        return
    heading, rows = ["scene", "Cycles, s"], []
    for way in ("raw", "denoised"):
        heading += [way, "trimmed", "times", "trimmed", "to reach"]
    for record in records:
        peer = record["cycles"]["seconds"]
        row = [record["scene"], number(peer)]
        for way, reach in zip(("raw", "denoised"), TO_REACH[record["scene"]]):
            row += [number(count) for count in record[way]["samples"]]
            row += [number(peer / seconds) for seconds in record[way]["seconds"]] + [str(reach)]
        rows.append(row)
    print("To the error of Cycles at 16 samples, of all pixels and trimmed: samples, raw and\n"
          "denoised; and how many times faster\n")
    tables.show(heading, rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="fewer samples, one run of each")
    parser.add_argument("--only", default="", metavar="REGEX", help="scenes whose names match")
    parser.add_argument("--blender", metavar="COMMAND", help="how Blender is started")
    parser.add_argument("--folder", help="where the pictures stay")
    parser.add_argument("--json", metavar="FILE", help="also write all that was measured")
    setting = parser.parse_args()
    setting.blender = shlex.split(setting.blender or shutil.which("blender") or "")
    setting.keep = setting.folder is not None
    os.sched_setaffinity(0, render.processors(render_peers.THREADS))
    if not setting.blender:
        print("Blender is not installed: no peer\n")
    with tempfile.TemporaryDirectory() as folder:
        setting.folder = os.path.abspath(setting.folder or folder)
        os.makedirs(setting.folder, exist_ok=True)
        records = []
        for name in battery_scenes.SCENES:
            if re.search(setting.only, name):
                records.append(measure(name, setting))
                print(name, "is measured", flush=True)
                if setting.json:
                    with open(setting.json, "w") as file:
                        json.dump(records, file, indent=1)
    print()
    show(records)


if __name__ == "__main__":
    main()
