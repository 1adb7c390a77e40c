"""The Cornell box of render_cornell with other renderers: POV-Ray, and Blender's Cycles.

Each writes linear OpenEXR files, which render_cornell compares with the embedded renderer's own
reference. Seconds are processor seconds / 2, of the process and all its threads, without those of
its start: what it takes for next to no picture.
"""

import json
import os
import shutil
import subprocess

import render

THREADS = 2
HERE = os.path.dirname(os.path.abspath(__file__))

# What is left to POV-Ray's own settings, or made finer; lights of the lamp; further options.
POVRAY = (
    ("its own radiosity, lamp of 5 x 5", ("RADIOSITY=0", 5)),
    ("finer radiosity, lamp of 5 x 5", ("RADIOSITY=1", 5)),
    ("finer radiosity, lamp of 9 x 9, antialiased", ("RADIOSITY=1", 9, "+A0.1", "+R3")),
)


def processor_seconds(command, folder):
    """Of a process that works in the folder, and of its children, divided by the threads."""
    with open(os.path.join(folder, "output.txt"), "wb") as output:
        process = subprocess.Popen(
            command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
            preexec_fn=lambda: os.sched_setaffinity(0, render.processors(THREADS)))
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        with open(output.name, errors="replace") as output:
            raise RuntimeError("{}: {}".format(" ".join(command), output.read()[-1000:]))
    return (usage.ru_utime + usage.ru_stime) / THREADS


def run_povray(folder, name, side, radiosity, lights, *options):
    return processor_seconds(
        ["povray", "+Icornell.pov", "+O" + name, "+FE", "-D", "-GA", "+WT{}".format(THREADS),
         "+W{}".format(side), "+H{}".format(side), "Declare=" + radiosity,
         "Declare=LAMP_LIGHTS={}".format(lights), *options], folder)


def povray(folder, quick):
    # It reads and writes only below the folder that it is started in, unless it is told otherwise.
    shutil.copy(os.path.join(HERE, "peers", "cornell.pov"), folder)
    start = run_povray(folder, "start.exr", 1, "RADIOSITY=2", 1)
    pictures = []
    for i, (settings, options) in enumerate(POVRAY[:2] if quick else POVRAY):
        name = os.path.join(folder, "povray{}.exr".format(i))
        seconds = run_povray(folder, name, render.SIDE, *options) - start
        pictures.append({"settings": settings, "seconds": seconds, "file": name})
    return start, pictures


def run_cycles(folder, scene, pictures, blender=("blender",)):
    """Pictures (file, width, height, samples, seed) of a scene of the battery, all by one process:
    the version, the seconds of each with the scene's description, and those of the process that are
    left."""
    for program in ("peers/battery_cycles.py", "battery_scenes.py"):
        shutil.copy(os.path.join(HERE, program), folder)
    program, job, answer = (os.path.join(folder, name) for name in (
        "battery_cycles.py", "job.json", "answer.json"))
    with open(job, "w") as file:
        json.dump({"scene": scene, "pictures": pictures, "threads": THREADS, "answer": answer},
                  file)
    in_all = processor_seconds([*blender, "-b", "--factory-startup", "--python-exit-code", "1",
                                "--python", program, "--", job], folder)
    with open(answer) as file:
        told = json.load(file)
    seconds = [picture / THREADS for picture in told["seconds"]]
    return told["version"], seconds, in_all - sum(seconds)


def cycles(folder, quick):
    counts = (4, 16) if quick else (16, 64)
    files = [os.path.join(folder, "cycles{}.exr".format(count)) for count in counts]
    _, seconds, start = run_cycles(folder, "cornell", [
        (file, render.SIDE, render.SIDE, count, 0) for file, count in zip(files, counts)])
    return start, [{"samples": count, "seconds": spent, "file": file}
                   for count, spent, file in zip(counts, seconds, files)]


PEERS = {"POV-Ray": ("povray", povray), "Cycles": ("blender", cycles)}


def draw(folder, quick):
    """What is not installed, by its package; and of the others the seconds of a start, and the
    pictures, whose files are in the folder."""
    found, missing = {}, {}
    for name, (program, drawn_by) in PEERS.items():
        if shutil.which(program):
            start, pictures = drawn_by(folder, quick)
            found[name] = {"start": start, "pictures": pictures}
        else:
            missing[name] = program
    return missing, found
