"""What the tutorial and the how-to pages tell a reader to type is run, and draws their pictures.

The blocks "python" of a page are one script; a block "text" is a part of what it prints. A page
shows its pictures from /pictures/NAME, the folder in which it has run.
"""

import os
import re
import subprocess
import sys

RUN = re.compile(r"docs/(tutorial|how-to/.*)\.md")

FENCE = re.compile(r"^```([^\n]*)\n(.*?)^```$", re.S | re.M)


def blocks(text, language):
    """(the number of lines before it, the block) of each block in that language."""
    for found in FENCE.finditer(text):
        if found[1] == language:
            yield text.count("\n", 0, found.start(2)), found[2]


def script_of(text):
    """The script of a page; its lines stand in the page's own numbers."""
    lines = []
    for before, block in blocks(text, "python"):
        lines += [""] * (before - len(lines)) + block.splitlines()
    return "\n".join(lines) + "\n"


def run(path, text, folder):
    """Runs the script of a page in the folder; SystemExit tells what is wrong with it."""
    script = script_of(text)
    if not RUN.fullmatch(path) or not script.strip():
        return
    os.makedirs(folder, exist_ok=True)
    name = os.path.splitext(os.path.basename(path))[0].replace("-", "_") + ".py"
    with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
        file.write(script)
    done = subprocess.run([sys.executable, name], cwd=folder, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, universal_newlines=True)
    if done.returncode:
        raise SystemExit("{} does not run:\n{}".format(path, done.stdout))
    for _, told in blocks(text, "text"):
        for line in told.splitlines():
            if line.strip() not in done.stdout:
                raise SystemExit("{}: its script does not print\n{}\nbut\n{}".format(
                    path, line, done.stdout))
