"""What the embedded renderer needs for a Cornell box: rays, seconds a sample, seconds to a noise.

The work is done by render_cornell; libray_counter counts the rays, in a run that is not timed.
"""

import json
import math
import os
import subprocess
import tempfile

SIDE = 512
NOISE = 0.01


def run(folder, environment, reference, samples):
    """What render_cornell prints: the threads, and a record for each picture."""
    with tempfile.TemporaryDirectory() as pictures:
        output = subprocess.run(
            [os.path.join(folder, "render_cornell"), pictures, str(SIDE), str(reference)]
            + [str(count) for count in samples],
            env=environment, stdout=subprocess.PIPE, check=True).stdout
    return json.loads(output)


def samples_to_noise(pictures):
    """Samples a pixel for the error NOISE: along the line through the errors of the two pictures
    that come nearest, in logarithms."""
    nearest = sorted(pictures, key=lambda picture: abs(math.log(picture["rmse"] / NOISE)))[:2]
    (x0, y0), (x1, y1) = [(math.log(one["samples"]), math.log(one["rmse"])) for one in nearest]
    return math.exp(x0 + (math.log(NOISE) - y0) * (x1 - x0) / (y1 - y0))


def measure(folder, environment, quick):
    counts = (16, 64) if quick else (8, 16, 32, 64)
    repeats = 1 if quick else 3
    timed = run(folder, environment, 256 if quick else 1024, counts * repeats)

    best = {}
    for picture in timed["pictures"]:
        known = best.setdefault(picture["samples"], picture)
        known["seconds"] = min(known["seconds"], picture["seconds"])
    pictures = [best[count] for count in counts]

    # What does not depend on the samples, scene and file among it, cancels out.
    first, last = pictures[0], pictures[-1]
    a_sample = (last["seconds"] - first["seconds"]) / (last["samples"] - first["samples"])
    constant = last["seconds"] - a_sample * last["samples"]

    preload = dict(environment, LD_PRELOAD=os.path.join(folder, "libray_counter.so"))
    counted = run(folder, preload, 0, counts[:1])["pictures"][0]
    rays_a_sample = counted["rays"] / counted["samples"]

    return {
        "threads": timed["threads"],
        "pictures": pictures,
        "seconds a sample": a_sample,
        "rays a pixel and sample": rays_a_sample / SIDE ** 2,
        "million rays a second": rays_a_sample / a_sample / 1e6,
        "seconds to noise": constant + a_sample * samples_to_noise(pictures),
    }
