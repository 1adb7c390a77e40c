"""What the embedded renderer needs for a Cornell box: rays, seconds a sample, seconds to a noise.

The work is done by render_cornell; libray_counter counts the rays, in a run that is not timed.
"""

import json
import math
import os
import subprocess
import tempfile

SIDE = 512
NOISES = 0.01, 0.005
RADIOSITY = 4, 16, 64  # samples after a radiosity pass


def processors(count):
    """So many of those that this process may use, or all."""
    return sorted(os.sched_getaffinity(0))[:count]


def run(folder, environment, reference, pictures, threads=2):
    """What render_cornell prints: the threads, and a record for each picture."""
    with tempfile.TemporaryDirectory() as files:
        output = subprocess.run(
            [os.path.join(folder, "render_cornell"), files, str(SIDE), str(reference)]
            + [str(picture) for picture in pictures],
            preexec_fn=lambda: os.sched_setaffinity(0, processors(threads)),
            env=environment, stdout=subprocess.PIPE, check=True).stdout
    return json.loads(output)


def samples_to(noise, pictures):
    """Samples a pixel for an error: along the line through the errors of the two pictures that come
    nearest, in logarithms."""
    nearest = sorted(pictures, key=lambda picture: abs(math.log(picture["rmse"] / noise)))[:2]
    (x0, y0), (x1, y1) = [(math.log(one["samples"]), math.log(one["rmse"])) for one in nearest]
    return math.exp(x0 + (math.log(noise) - y0) * (x1 - x0) / (y1 - y0))


def cost(pictures):
    """Seconds of a picture without samples, and of each sample: by the first and the last."""
    first, last = pictures[0], pictures[-1]
    a_sample = (last["seconds"] - first["seconds"]) / (last["samples"] - first["samples"])
    return last["seconds"] - a_sample * last["samples"], a_sample


def seconds_to(noise, pictures):
    """Seconds for an error."""
    constant, a_sample = cost(pictures)
    return constant + a_sample * samples_to(noise, pictures)


def seconds_until(noise, pictures):
    """Seconds of the first picture that is as good."""
    return min((picture["seconds"] for picture in pictures if picture["rmse"] <= noise),
               default=math.inf)


def least(pictures, clock):
    return min(picture[clock] for picture in pictures)


def measure(folder, environment, quick, drawn):
    """The embedded renderer's figures; and the mean and the error of each picture that a peer has
    drawn, into its record."""
    counts = (16, 64) if quick else (8, 16, 32, 64)
    repeats = 1 if quick else 3
    words = [str(count) for count in counts] + ["{}r".format(count) for count in RADIOSITY]
    timed = run(folder, environment, 256 if quick else 1024,
                words * repeats + [picture["file"] for picture in drawn])
    end = len(words) * repeats
    for picture, compared in zip(drawn, timed["pictures"][end:]):
        picture.update(mean=compared["mean"], rmse=compared["rmse"])
    by_word = [timed["pictures"][i:end:len(words)] for i in range(len(words))]
    best = [dict(same[0], seconds=least(same, "seconds")) for same in by_word]
    pictures, after_radiosity = best[:len(counts)], best[len(counts):]
    for picture in after_radiosity:
        picture["settings"] = "{} samples".format(picture["samples"])
    two = by_word[len(counts) - 1]
    a_sample = cost(pictures)[1]

    alone = run(folder, environment, 0, counts[-1:] * repeats, threads=1)["pictures"]
    preload = dict(environment, LD_PRELOAD=os.path.join(folder, "libray_counter.so"))
    counted = run(folder, preload, 0, counts[:1])["pictures"][0]
    rays_a_sample = counted["rays"] / counted["samples"]

    return {
        "threads": timed["threads"],
        "pictures": pictures,
        "after radiosity": after_radiosity,
        "seconds a sample": a_sample,
        "rays a pixel and sample": rays_a_sample / SIDE ** 2,
        "million rays a second": rays_a_sample / a_sample / 1e6,
        "seconds to noise": [seconds_to(noise, pictures) for noise in NOISES],
        "speed-up, processor": least(alone, "seconds") / least(two, "seconds"),
        "speed-up, wall": least(alone, "wall") / least(two, "wall"),
    }
