"""Every check that a change passes, in one run: builds, native tests, Python tests, house rules.

Closes with one line, "N passed, N failed", and fails if anything did. What a step printed stands
in build/log.
"""

import glob
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LOG = os.path.join(ROOT, "build", "log")
JOBS = str(os.cpu_count() or 1)

FACTS = (
    "import sys, sysconfig as s; "
    "print('%d.%d.%d' % sys.version_info[:3], s.get_config_var('EXT_SUFFIX'), sys.executable,"
    " s.get_path('include'), int(hasattr(sys, 'gettotalrefcount')), sep='|')"
)


class Tally:
    """Counts what passed and failed, and prints a line for each step."""

    def __init__(self):
        self.passed = self.failed = 0

    def step(self, name, passed, failed, seconds, log=None):
        self.passed += passed
        self.failed += failed
        outcome = "%d passed, %d failed" % (passed, failed)
        print("%-62s %-24s %5.0f s" % (name, outcome, seconds), flush=True)
        if failed and log:
            with open(log, errors="replace") as text:
                print("".join(text.readlines()[-60:]), flush=True)

    def run(self, name, command, count=None, **environment):
        """Runs a command as one step. `count` reads (passed, failed) from what it printed; without
        it, the command itself is one check. A command that counts no failure and still fails, or
        counts nothing and skips nothing, is a failure."""
        log = os.path.join(LOG, re.sub(r"\W+", "-", name) + ".log")
        started = time.monotonic()
        with open(log, "w") as out:
            status = subprocess.run(
                command,
                cwd=ROOT,
                stdout=out,
                stderr=subprocess.STDOUT,
                stdin=subprocess.DEVNULL,
                env=dict(os.environ, **environment),
            ).returncode
        passed, failed = (int(status == 0), int(status != 0))
        if count:
            with open(log, errors="replace") as text:
                text_of_log = text.read()
            passed, failed = count(text_of_log)
            skipped = "skipped" in text_of_log
            if not failed and (status or not passed and not skipped):
                failed = 1
        self.step(name, passed, failed, time.monotonic() - started, log)
        return not failed


def plain_line(text):
    """The last "N passed, N failed" of a program's output."""
    found = re.findall(r"^(\d+) passed, (\d+) failed", text, re.M)
    return (int(found[-1][0]), int(found[-1][1])) if found else (0, 1)


def unittest_lines(text):
    """The counts of unittest's closing lines."""
    ran = re.search(r"^Ran (\d+) tests?", text, re.M)
    bad = re.search(r"^FAILED \((.*)\)", text, re.M)
    failed = (
        sum(int(n) for n in re.findall(r"(?:failures|errors|unexpected successes)=(\d+)", bad[1]))
        if bad
        else 0
    )
    skipped = sum(int(n) for n in re.findall(r"skipped=(\d+)", text))
    return (int(ran[1]) - failed - skipped, failed) if ran else (0, 1)


def interpreters():
    """Every CPython from 3.9 on that is here and has its headers: (version, suffix, path, is a
    debug build)."""
    candidates = [shutil.which("python3"), "/usr/bin/python3", shutil.which("python3-dbg")]
    candidates += [shutil.which("python3.%d" % minor) for minor in range(9, 20)]
    candidates += sorted(glob.glob(os.path.expanduser("~/.pyenv/versions/*/bin/python3")))
    found = {}
    for candidate in filter(None, candidates):
        answer = subprocess.run([candidate, "-c", FACTS], capture_output=True, text=True)
        if answer.returncode:
            continue
        version, suffix, path, include, debug = answer.stdout.strip().split("|")
        new_enough = tuple(map(int, version.split(".")[:2])) >= (3, 9)
        if new_enough and os.path.exists(os.path.join(include, "Python.h")):
            found.setdefault((version, suffix), (version, suffix, path, debug == "1"))
    return list(found.values())


def build(tally, preset, *settings):
    configured = tally.run("configure " + preset, ["cmake", "--preset", preset, *settings])
    return configured and tally.run(
        "build %s, warnings as errors" % preset,
        ["cmake", "--build", "--preset", preset, "-j" + JOBS],
    )


def native_tests(tally, preset, **environment):
    folder = os.path.join(ROOT, "build", preset)
    report = os.path.join(LOG, "native-%s.xml" % preset)

    def count(_):
        try:
            suite = ElementTree.parse(report).getroot()
        except (OSError, ElementTree.ParseError):
            return 0, 1
        failed = int(suite.get("failures"))
        return int(suite.get("tests")) - failed - int(suite.get("skipped")), failed

    if os.path.exists(report):
        os.remove(report)
    tally.run(
        "native tests, " + preset,
        [
            "ctest",
            "--test-dir",
            folder,
            "--output-on-failure",
            "-j" + JOBS,
            "--output-junit",
            report,
        ],
        count,
        **environment
    )


def python_tests(tally, preset, name, interpreter, **environment):
    folder = os.path.join(ROOT, "build", preset)
    tally.run(
        "Python tests, %s, %s" % (preset, name),
        [interpreter, "tests/python/run.py"],
        plain_line,
        PYTHONPATH=os.path.join(folder, "python"),
        VANTOR_BUILD=folder,
        PYTHONDONTWRITEBYTECODE="1",
        **environment
    )


def sanitizer_environment():
    """What an interpreter built without the sanitizers needs to load a module built with them."""
    runtime = [
        subprocess.run(
            ["g++", "-print-file-name=" + name], capture_output=True, text=True
        ).stdout.strip()
        for name in ("libasan.so", "libubsan.so")
    ]
    return {
        # The interpreter frees nothing at exit; reference counts find what the module leaks.
        "ASAN_OPTIONS": "detect_leaks=0:allocator_may_return_null=1",
        "UBSAN_OPTIONS": "print_stacktrace=1",
        "LD_PRELOAD": ":".join(runtime),
    }


def installation(tally):
    """Installs into an empty folder and imports from there."""
    with tempfile.TemporaryDirectory() as target:
        if tally.run("install", ["cmake", "--install", "build/test"], DESTDIR=target):
            modules = list(pathlib.Path(target).rglob("vantorPM.*.so"))
            tally.run(
                "import what was installed",
                ["python3", "-c", "import vantorPM; print(vantorPM.transform().identity())"],
                PYTHONPATH=str(modules[0].parent) if modules else target,
            )


def main():
    os.makedirs(LOG, exist_ok=True)
    tally = Tally()
    found = interpreters()
    others = ";".join(path for _, _, path, _ in found)

    if build(tally, "test", "-DVANTOR_ALSO_FOR=" + others):
        native_tests(tally, "test")
        for version, _, path, debug in found:
            python_tests(tally, "test", version + (" debug" if debug else ""), path)
        tally.run(
            "house rules",
            ["python3", "-m", "unittest", "discover", "-v", "-s", "tests/house"],
            unittest_lines,
            VANTOR_BUILD=os.path.join(ROOT, "build", "test"),
            PYTHONDONTWRITEBYTECODE="1",
        )
        installation(tally)

    if build(tally, "clang"):
        native_tests(tally, "clang")
        python_tests(tally, "clang", "python3", "python3")
        tally.run(
            "clang-tidy",
            ["python3", "tests/house/tidy.py"],
            plain_line,
            VANTOR_BUILD=os.path.join(ROOT, "build", "clang"),
        )

    if build(tally, "sanitize"):
        native_tests(tally, "sanitize", ASAN_OPTIONS="allocator_may_return_null=1")
        python_tests(tally, "sanitize", "python3", sys.executable, **sanitizer_environment())

    print("%d passed, %d failed" % (tally.passed, tally.failed))
    return 1 if tally.failed else 0


if __name__ == "__main__":
    sys.exit(main())
