"""Runs clang-tidy with the repository's .clang-tidy over the module and the renderer.

usage: tidy.py [-j JOBS] [PATH...]   PATH is a source or a folder; all rooms are checked without it
The commands are those of compile_commands.json in the build folder, which VANTOR_BUILD names.
Closes with one line, "N passed, N failed": sources without a finding, and findings. Where there is
no clang-tidy of the version that the tree follows, it says "skipped: " and why.
"""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys

import repository

CLANG_TIDY = "14"

ROOMS = ["algebra", "arrays", "interpreter", "libvantor", "module", "renderer", "scene", "vantor"]


def compiled(commands, places):
    """The sources in the places that the build compiles, each once, relative to the root."""
    found = set()
    for command in commands:
        path = os.path.join(command["directory"], command["file"])
        path = os.path.relpath(os.path.realpath(path), os.path.realpath(repository.ROOT))
        path = path.replace(os.sep, "/")
        if any(path == place or path.startswith(place + "/") for place in places):
            found.add(path)
    return sorted(found)


def checked(program, path):
    """The findings in one source and the headers that it includes."""
    result = subprocess.run([program, "-p", repository.BUILD, "--quiet", path], cwd=repository.ROOT,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True)
    if result.returncode and not re.search(r": (warning|error): ", result.stdout):
        return "{}: clang-tidy failed\n{}".format(path, result.stderr)
    return result.stdout


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
        paths = compiled(json.load(file), places)
    if not paths:
        print("the build compiles no source in {}".format(" ".join(places)))
        return 1

    findings = {}
    clean = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for text in pool.map(lambda path: checked(program, path), paths):
            clean += not text
            # One finding in a header comes up with every source that includes it.
            for finding in re.split(r"^(?=\S+:\d+:\d+: (?:warning|error): )", text, flags=re.M):
                if finding:
                    findings.setdefault(finding.splitlines()[0], finding)
    print("".join(finding for _, finding in sorted(findings.items())), end="")
    print("{} sources, {} findings".format(len(paths), len(findings)))
    print("{} passed, {} failed".format(clean, len(findings)))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
