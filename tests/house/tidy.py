"""Runs clang-tidy with the repository's .clang-tidy over the module and the renderer.

usage: tidy.py [-j JOBS] [PATH...]   PATH is a source or a folder; all rooms are checked without it
The commands are those of compile_commands.json in the build folder, which VANTOR_BUILD names.
Sources that compile together are looked at as one, because the headers that they share cost more
than what is in them.
Closes with one line, "N passed, N failed": sources without a finding, and findings. Where there is
no clang-tidy of the version that the tree follows, it says "skipped: " and why.
"""

import argparse
import concurrent.futures
import itertools
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile

import repository

CLANG_TIDY = "14"

FINDING = re.compile(r": (warning|error): ")

ROOMS = ["algebra", "arrays", "interpreter", "libvantor", "module", "renderer", "scene", "vantor"]


# How many sources are looked at as one: each header is read once for all of them.
MOST_TOGETHER = 12


def compiled(commands, places):
    """The sources in the places that the build compiles, relative to the root: {path: command}."""
    found = {}
    for command in commands:
        path = os.path.join(command["directory"], command["file"])
        path = os.path.relpath(os.path.realpath(path), os.path.realpath(repository.ROOT))
        path = path.replace(os.sep, "/")
        if any(path == place or path.startswith(place + "/") for place in places):
            found.setdefault(path, command)
    return found


def arguments_of(command):
    """What the compiler is told, without the source and the object."""
    words = shlex.split(command["command"])
    words = words[: words.index("-o")] + words[words.index("-o") + 2 :]
    return [word for word in words if word not in ("-c", command["file"])]


class Unit:
    """Sources one after the other in a file of their own."""

    def __init__(self, folder, number, arguments, paths):
        self.folder = os.path.join(folder, str(number))
        self.arguments = arguments
        self.paths = paths
        self.source = os.path.join(self.folder, "unit.cpp")
        self.lines = []  # of the unit: (path, number)

    def write(self):
        """Not by #include: the analyzer follows paths in a main file only."""
        os.makedirs(self.folder, exist_ok=True)
        self.lines = []
        included = set()
        with open(self.source, "w", encoding="utf-8") as file:
            for path in self.paths:
                text = repository.lines(path)
                for line in text:
                    # A header that two sources include is not included twice by either.
                    file.write(("" if line in included else line) + "\n")
                included.update(line for line in text if line.startswith("#include"))
                self.lines += [(path, number + 1) for number in range(len(text))]
        command = {"directory": self.folder, "file": self.source,
                   "arguments": [*self.arguments, "-w", "-c", self.source]}
        with open(os.path.join(self.folder, "compile_commands.json"), "w") as file:
            json.dump([command], file)

    def in_sources(self, text):
        """The text with the places in the unit as those in its sources."""
        def place(found):
            return "{}:{}:".format(*self.lines[int(found[1]) - 1])

        text = re.sub(re.escape(self.source) + r":(\d+):", place, text)
        return text.replace(repository.ROOT + os.sep, "")

    def separate(self):
        """Leaves what compiles together; the paths of the others, whose names are there twice."""
        others = []
        self.write()
        while len(self.paths) > 1:
            result = ended([*self.arguments, "-w", "-ferror-limit=0", "-fsyntax-only", self.source])
            if not result.returncode:
                break
            text = self.in_sources(result.stderr)
            places = set(re.findall(r"^(\S+?):\d+:\d+: (?:fatal )?error: ", text, flags=re.M))
            clash = [path for path in self.paths[1:] if path in places] or self.paths[1:]
            self.paths = [path for path in self.paths if path not in clash]
            others += clash
            self.write()
        return others

    def findings(self, program):
        """What clang-tidy says of the sources and of the headers that they include."""
        result = ended([program, "-p", self.folder, "--quiet",
                        "--config-file=" + os.path.join(repository.ROOT, ".clang-tidy"),
                        self.source])
        text = self.in_sources(result.stdout)
        if result.returncode and not FINDING.search(text):
            return "{}: clang-tidy failed\n{}".format(self.paths[0], result.stderr)
        return text


def ended(command):
    return subprocess.run(command, cwd=repository.ROOT, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, universal_newlines=True)


def units(sources, folder, pool):
    """The sources in as few units as compile, those of a room together."""
    waiting = [list(sources)]
    made = []
    while waiting:
        round_ = []
        for paths in waiting:
            for arguments, same in itertools.groupby(
                    paths, lambda path: arguments_of(sources[path])):
                same = list(same)
                for first in range(0, len(same), MOST_TOGETHER):
                    part = same[first : first + MOST_TOGETHER]
                    round_.append(Unit(folder, len(made) + len(round_), arguments, part))
        waiting = [others for others in pool.map(Unit.separate, round_) if others]
        made += round_
    return made


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-j", type=int, dest="jobs", default=os.cpu_count() or 1)
    parser.add_argument("places", nargs="*", metavar="PATH", default=ROOMS)
    arguments = parser.parse_args()

    program, why_not = repository.clang_tool("clang-tidy", CLANG_TIDY)
    if program is None:
        print("skipped: " + why_not)
        print("0 passed, 0 failed")
        return 0
    database = os.path.join(repository.BUILD, "compile_commands.json")
    if not os.path.exists(database):
        print("there is no {}: build first, or say in VANTOR_BUILD where".format(database))
        return 1
    with open(database, encoding="utf-8") as file:
        places = [place.rstrip("/") for place in arguments.places]
        sources = compiled(json.load(file), places)
    if not sources:
        print("the build compiles no source in {}".format(" ".join(places)))
        return 1

    findings = {}
    with tempfile.TemporaryDirectory() as folder:
        with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
            made = units(dict(sorted(sources.items())), folder, pool)
            for text in pool.map(lambda unit: unit.findings(program), made):
                # One finding in a header comes up with every unit that includes it.
                for finding in re.split(r"^(?=\S+:\d+:\d+: (?:warning|error): )", text, flags=re.M):
                    if finding:
                        findings.setdefault(finding.splitlines()[0], finding)
    print("".join(finding for _, finding in sorted(findings.items())), end="")
    print("{} sources in {} units, {} findings".format(len(sources), len(made), len(findings)))
    clean = set(sources) - {finding.split(":")[0] for finding in findings}
    print("{} passed, {} failed".format(len(clean), len(findings)))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
