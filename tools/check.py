"""Every check that a change passes, in one run: builds, and in each what CTest has for it.

usage: check.py [PRESET...]

The presets are those of CMakePresets.json: quick, test, sanitize. Without one, all are run but
quick, which is a part of test. Closes with one line, "N passed, N failed", and fails if
anything did; before it stand what was skipped, and why, and last the names of what failed. A Python
test or a source that clang-tidy looks at counts like a native test. What a step printed stands in
build/log.
"""

import glob
import os
import re
import shutil
import subprocess
import sys
import time
import xml.etree.ElementTree as ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LOG = os.path.join(ROOT, "build", "log")
JOBS = str(os.cpu_count() or 1)

FACTS = (
    "import sys, sysconfig as s; "
    "print('%d.%d.%d' % sys.version_info[:3], s.get_config_var('EXT_SUFFIX'), sys.executable,"
    " s.get_path('include'), sep='|')"
)


class Tally:
    """Counts what passed, failed and was skipped, and prints a line for each step."""

    def __init__(self):
        self.passed = self.failed = 0
        self.skipped = {}
        self.failures = []

    def step(self, name, passed, failed, seconds, details="", failures=()):
        self.passed += passed
        self.failed += failed
        self.failures += list(failures) or [name] * bool(failed)
        outcome = "%d passed, %d failed" % (passed, failed)
        print("%-50s %-24s %5.0f s" % (name, outcome, seconds), flush=True)
        if failed and details:
            print(details, flush=True)

    def skip(self, group, name, reason):
        self.skipped.setdefault((name.split(".")[0], reason), []).append((group, name))

    def close(self):
        for (file, reason), skipped in sorted(self.skipped.items()):
            groups, tests = (sorted(set(column)) for column in zip(*skipped))
            name = file if len(tests) > 1 else tests[0]
            count = " (%d tests)" % len(tests) if len(tests) > 1 else ""
            print("skipped: %s%s: %s [%s]" % (name, count, reason, ", ".join(groups)))
        for failure in self.failures:
            print("failed: " + failure)
        print("%d passed, %d failed" % (self.passed, self.failed))


def run(name, command):
    """Runs a command with its output in a log: (whether it succeeded, seconds, the log's end)."""
    log = os.path.join(LOG, re.sub(r"\W+", "-", name) + ".log")
    started = time.monotonic()
    with open(log, "w") as out:
        status = subprocess.run(
            command, cwd=ROOT, stdout=out, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL
        ).returncode
    with open(log, errors="replace") as text:
        return status == 0, time.monotonic() - started, end_of(text.read())


def end_of(text):
    return "\n".join(text.splitlines()[-60:])


def interpreters():
    """Every CPython from 3.9 on that is here and has its headers."""
    candidates = [shutil.which("python3"), "/usr/bin/python3", shutil.which("python3-dbg")]
    candidates += [shutil.which("python3.%d" % minor) for minor in range(9, 20)]
    candidates += sorted(glob.glob(os.path.expanduser("~/.pyenv/versions/*/bin/python3")))
    found = {}
    for candidate in filter(None, candidates):
        answer = subprocess.run([candidate, "-c", FACTS], capture_output=True, text=True)
        if answer.returncode:
            continue
        version, suffix, path, include = answer.stdout.strip().split("|")
        new_enough = tuple(map(int, version.split(".")[:2])) >= (3, 9)
        if new_enough and os.path.exists(os.path.join(include, "Python.h")):
            found.setdefault((version, suffix), path)
    return list(found.values())


def build(tally, preset, *settings):
    for name, command in [
        ("configure " + preset, ["cmake", "--preset", preset, *settings]),
        ("build " + preset, ["cmake", "--build", "--preset", preset, "-j" + JOBS]),
    ]:
        succeeded, seconds, text = run(name, command)
        tally.step(name, int(succeeded), int(not succeeded), seconds, text)
        if not succeeded:
            return False
    return True


class Case:
    """One test of CTest's report."""

    def __init__(self, node):
        self.name = node.get("name")
        self.seconds = float(node.get("time"))
        self.text = node.findtext("system-out") or ""
        failure = node.find("failure")
        self.outcome = failure.get("message") if failure is not None else ""
        skipped = node.find("skipped")
        why = skipped.get("message") if skipped is not None else ""
        self.was_skipped = why.startswith(("SKIP_", "Disabled"))
        self.has_run = node.get("status") == "run"

    def group(self):
        """What the test is counted with: the first part of its name."""
        return re.match(r"(python|package)-\d+\.\d+\.\d+(-debug)?|[^._]+", self.name)[0]

    def counts(self):
        """How many passed and failed. Programs with many tests close with a plain line."""
        if self.was_skipped:
            return 0, 0
        lines = re.findall(r"^(\d+) passed, (\d+) failed", self.text, re.M)
        if not lines or self.name.startswith("conformance"):
            return int(self.has_run), int(not self.has_run)
        passed, failed = map(int, lines[-1])
        counts_nothing = not passed and not self.reasons()
        return passed, max(failed, int(not self.has_run or counts_nothing))

    def own_name(self):
        """The name without the group's."""
        return self.name[len(self.group()) :].lstrip("._") or self.name

    def reasons(self):
        """The (name, reason) of each test that was skipped."""
        name = self.own_name()
        if self.was_skipped:  # GoogleTest puts the reason below the place
            found = re.search(r": Skipped\n(.+)", self.text)
            return [(name, found[1] if found else "no reason given")]
        return [
            (name + ("." + test if test else ""), reason)
            for test, reason in re.findall(r"^skipped: (?:(test_\w+)[^:]*: )?(.+)", self.text, re.M)
        ]

    def failures(self):
        """The names of the tests in it that failed; its own where it says no other."""
        tests = re.findall(
            r"^(?:FAIL|ERROR): (\S+)|^fail  ([^:]+)|^(\S+:\d+:\d+: (?:warning|error): .+)",
            self.text,
            re.M,
        )
        names = dict.fromkeys("".join(test) for test in tests)
        return ["%s, %s" % (self.name, name) for name in names] or [
            "%s (%s)" % (self.name, self.outcome or "no test was counted")
        ]


def run_tests(tally, preset):
    """Runs what CTest has for the preset; a step for each group of tests."""
    report = os.path.join(LOG, "ctest-%s.xml" % preset)
    if os.path.exists(report):
        os.remove(report)
    name = "ctest " + preset
    command = ["ctest", "--preset", preset, "-j" + JOBS, "--output-junit", report]
    succeeded, seconds, text = run(name, command)
    try:
        cases = [Case(node) for node in ElementTree.parse(report).getroot().iter("testcase")]
    except (OSError, ElementTree.ParseError):
        cases = []
    groups = {}
    for case in cases:
        groups.setdefault(case.group(), []).append(case)
    total = 0
    for group, members in groups.items():
        counts = [case.counts() for case in members]
        passed, failed = (sum(column) for column in zip(*counts))
        total += failed
        details = [
            "----- %s\n%s" % (case.name, end_of(case.text))
            for case, (_, failures) in zip(members, counts)
            if failures
        ]
        failures = [
            "%s, %s" % (preset, failure)
            for case, (_, failures) in zip(members, counts)
            if failures
            for failure in case.failures()
        ]
        spent = sum(case.seconds for case in members)
        step = "%s, %s" % (preset, group)
        tally.step(step, passed, failed, spent, "\n".join(details), failures)
        for case in members:
            for skipped in case.reasons():
                tally.skip(group, *skipped)
    if not total and (not succeeded or not cases):
        tally.step(name, 0, 1, seconds, text)


def main(presets):
    os.makedirs(LOG, exist_ok=True)
    tally = Tally()
    for preset in presets or ["test", "sanitize"]:
        if preset == "quick":
            done = build(tally, "test")
        elif preset == "test":
            done = build(tally, preset, "-DVANTOR_ALSO_FOR=" + ";".join(interpreters()))
        else:
            done = build(tally, preset)
        if done:
            run_tests(tally, preset)
    tally.close()
    return 1 if tally.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
