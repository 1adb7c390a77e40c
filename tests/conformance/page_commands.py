"""Runs the commands of docs/another-renderer.md that build the example and the conformance program.

Then the program on the example. The folder has nothing but links to folders of this repository.
"""

import os
import re
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WANTED = ("mkdir ", "g++ ", "build/conformance build/")


def commands():
    with open(os.path.join(ROOT, "docs", "another-renderer.md"), encoding="utf-8") as page:
        blocks = re.findall(r"^```\n(.*?)^```", page.read(), re.S | re.M)
    lines = "".join(blocks).replace("\\\n", " ").splitlines()
    return [line for line in lines if line.startswith(WANTED)]


def main():
    found = commands()
    if [line.split()[0] for line in found] != ["mkdir", "g++", "g++", "build/conformance"]:
        sys.exit("the page has other commands: {}".format(found))
    with tempfile.TemporaryDirectory() as folder:
        for name in ("algebra", "arrays", "renderer", "examples", "tests"):
            os.symlink(os.path.join(ROOT, name), os.path.join(folder, name))
        for command in found:
            subprocess.run(command, shell=True, cwd=folder, check=True)


if __name__ == "__main__":
    main()
