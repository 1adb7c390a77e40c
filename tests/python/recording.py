"""Runs a script against the recording renderer and reads what it recorded.

The environment variable VANTOR_BUILD names the build folder: the module is in its "python", the
recording libVantor.so in its "recording".
"""

import json
import os
import subprocess
import sys
import tempfile
import textwrap


def build_folder():
    folder = os.environ.get("VANTOR_BUILD")
    if not folder:
        raise RuntimeError("VANTOR_BUILD must name the build folder (built with VANTOR_TESTS=ON)")
    library = os.path.join(folder, "recording", "libVantor.so")
    if not os.path.exists(library):
        raise RuntimeError("there is no {}: build with VANTOR_TESTS=ON".format(library))
    return folder


class Run:
    """A finished script: how it ended, what it printed, and the renderer's calls."""

    def __init__(self, process, calls):
        self.code = process.returncode
        self.output = process.stdout
        self.errors = process.stderr
        self.calls = calls

    def lines(self):
        """The calls as text, in order."""
        return [line(call) for call in self.calls]

    def named(self, name):
        """The calls of that name, with everything that was recorded."""
        return [call for call in self.calls if call["call"] == name]


def line(call):
    """A call as one line of text; #1, #2 ... are the renderer's objects.

        #2 = VtArgList(0, 0)
        #3 = VtArgType(Vector2, [1.0, 2.0])
        #2.Add(#3)
        ~VtArgType #3
        #1.NewLight('point', #2) -> 1
        Scaling([1.0, 2.0, 3.0])

    Addresses are left out, and so are the elements of arrays that are recorded by checksum.
    """
    name = call["call"]
    owner = "#{}".format(call.get("object"))
    if name.startswith("~"):
        return "{} {}".format(name, owner)

    arguments = [call["tag"]] if "tag" in call else []
    for key, value in call.items():
        if key in ("list", "added"):
            arguments.append("#{}".format(value))
        elif key not in (
            "call",
            "object",
            "tag",
            "address",
            "size",
            "checksum",
            "count",
            "result",
            "throws",
        ):
            arguments.append(repr(value))
    text = "{}({})".format(name.split("::")[-1], ", ".join(arguments))

    if name in ("VtLocalSceneProxy", "VtArgList", "VtArgType"):
        text = "{} = {}".format(owner, text)
    elif "object" in call:
        text = "{}.{}".format(owner, text)
    if "result" in call:
        text += " -> {}".format(call["result"])
    if "throws" in call:
        text += " throws"
    return text


def run(script, library="recording", **variables):
    """Runs the script in an interpreter of its own, with vantorPM imported.

    `library` is the folder of the build in which the renderer is found; None leaves it to the
    module. Further keywords are environment variables.
    """
    folder = build_folder()
    record, path = tempfile.mkstemp(suffix=".jsonl")
    os.close(record)
    try:
        environment = dict(os.environ, VANTOR_RECORD=path, **variables)
        environment["PYTHONPATH"] = os.path.join(folder, "python")
        paths = [environment.get("LD_LIBRARY_PATH")]
        if library:
            paths.insert(0, os.path.join(folder, library))
        environment["LD_LIBRARY_PATH"] = os.pathsep.join(filter(None, paths))
        process = subprocess.run(
            [sys.executable, "-c", "import os, vantorPM\n" + textwrap.dedent(script)],
            env=environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            universal_newlines=True,
            timeout=120,
        )
        with open(path, encoding="utf-8") as lines:
            return Run(process, [json.loads(text) for text in lines])
    finally:
        os.remove(path)


def record(script, **variables):
    """As run(), for a script that must end well and without a word on the error stream."""
    finished = run(script, **variables)
    if finished.code or finished.errors:
        raise AssertionError("exit code {}\n{}".format(finished.code, finished.errors))
    return finished
