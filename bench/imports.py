"""What an import costs: fresh interpreters with and without it, taking turns."""

import os
import statistics
import subprocess
import sys
import time


def one_start(program, environment):
    """Seconds of an interpreter from start to end: by the wall clock, and of processor time."""
    begin = time.perf_counter()
    process = os.posix_spawn(sys.executable, [sys.executable, "-I", "-c", program], environment)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - begin
    if status:
        raise RuntimeError("this fails: {} -c {!r}".format(sys.executable, program))
    return wall, usage.ru_utime + usage.ru_stime


def can_import(module, paths):
    probe = ("import importlib.util, sys; sys.path[:0] = {!r}\n"
             "sys.exit(importlib.util.find_spec({!r}) is None)").format(paths, module)
    return subprocess.run([sys.executable, "-I", "-c", probe]).returncode == 0


def measure(candidates, starts):
    """Milliseconds by candidate: wall and processor time, minimum and median, less an empty one.

    candidates maps a name to the module to import, the folders to find it in, and the environment.
    What is not installed is left out.
    """
    programs = {"": ("pass", dict(os.environ))}
    for name, (module, paths, environment) in candidates.items():
        if can_import(module, paths):
            program = "import sys; sys.path[:0] = {!r}; import {}".format(paths, module)
            programs[name] = program, environment

    samples = {name: [] for name in programs}
    for _ in range(starts):
        for name, (program, environment) in programs.items():
            samples[name].append(one_start(program, environment))

    results = {}
    for name, taken in samples.items():
        columns = {}
        for column, clock in (("wall", 0), ("processor", 1)):
            for word, choose in (("minimum", min), ("median", statistics.median)):
                seconds = choose(sample[clock] for sample in taken)
                if name:
                    seconds -= choose(sample[clock] for sample in samples[""])
                columns[column + " " + word] = seconds * 1000
        results[name] = columns
    return results
