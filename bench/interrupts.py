"""How soon Ctrl-C is heard, wherever a call stands when it comes.

usage: PYTHONPATH=build/release/python python3 bench/interrupts.py

Each call is made once; then some times more, each in a fresh process that gets SIGINT after another
part of the call's time. Prints that time in seconds, and of the milliseconds from the signal until
the script goes on the median and the most.
"""

import os
import signal
import statistics
import subprocess
import sys
import tempfile
import time

import large_scenes

TIMES = 24  # a scene

SCENES = {
    "building a mesh of a million triangles": "mesh",
    "decoding a texture of 8192 x 8192": "texture",
    "radiosity": "radiosity",
    "tracing": "tracing",
}


# ----- the process that is interrupted


class Scene:
    def __init__(self, module):
        self.module = module
        self.scene = module.scene(2000)
        self.scene.newCamera("perspective", ["position", module.vector3(0.5, 1, 1),
                                             "target", module.vector3(0.5, 0, -0.5)])
        self.scene.newLight("environment", [])
        name = os.path.join(tempfile.gettempdir(), "interrupts.{}.png".format(os.getpid()))
        self.file = name
        self.scene.imagerBegin(self.scene.newImager("file", ["name", name]))
        self.work = lambda: self.scene.render(8, 8, 1)

    def mesh(self, side=720):
        large_scenes.add_mesh(self.module, self.scene,
                              large_scenes.hills(self.module, side, side))

    def texture(self):
        self.picture = self.file + ".texture.png"
        with open(self.picture, "wb") as file:
            file.write(large_scenes.colors_png(8192))
        self.work = lambda: self.scene.newTexture(self.picture)

    def radiosity(self):
        self.mesh(60)
        self.work = self.scene.radiosity

    def tracing(self):
        self.mesh(60)
        self.work = lambda: self.scene.render(400, 400, 16)


def interrupted(scene):
    """Says when the call begins, and when it has ended."""
    import vantorPM

    here = Scene(vantorPM)
    getattr(here, scene)()
    print("begins", flush=True)
    try:
        here.work()
    except KeyboardInterrupt:
        print("interrupted", end=" ")
    print(time.monotonic(), flush=True)
    for name in (here.file, here.file + ".texture.png"):
        if os.path.exists(name):
            os.remove(name)


# ----- the one that interrupts


def ended(scene, after=None):
    """When the signal was sent, or the call began; when it ended; whether it was interrupted."""
    command = [sys.executable, os.path.abspath(__file__), scene]
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True) as process:
        if process.stdout.readline() != "begins\n":
            raise RuntimeError("{} has failed".format(" ".join(command)))
        if after is not None:
            time.sleep(after)
        begin = time.monotonic()
        if after is not None:
            process.send_signal(signal.SIGINT)
        words = process.stdout.readline().split()
    return begin, float(words[-1]), words[0] == "interrupted"


def main():
    if len(sys.argv) > 1:
        return interrupted(sys.argv[1])
    print("{:40} {:>8} {:>10} {:>8}".format("", "seconds", "median ms", "most ms"))
    for name, scene in SCENES.items():
        begin, end, _ = ended(scene)
        whole = end - begin
        delays = []
        for i in range(TIMES):
            sent, end, is_heard = ended(scene, whole * 0.95 * (i + 0.5) / TIMES)
            if is_heard:  # not where the call was over before
                delays.append(1000 * (end - sent))
        print("{:40} {:8.2f} {:10.1f} {:8.1f}".format(
            name, whole, statistics.median(delays), max(delays)), flush=True)


if __name__ == "__main__":
    main()
