"""Runs the Python tests: unittest's usual output, the skipped tests, and "N passed, N failed".

The exit code is 1 if a test failed, or if there was none.

usage: run.py [-v] [--in FOLDER] [NAME...]
NAME is a test file, class or test: test_vectors.Vector3Test; without it all files of the folder are
run. PYTHONPATH says where the module lies.
"""

import argparse
import os
import sys
import unittest


class CountingResult(unittest.TextTestResult):
    """Counts tests, not failures: a test with three failed subtests is one failed test."""

    def __init__(self, *arguments, **keywords):
        super().__init__(*arguments, **keywords)
        self.outcomes = {}

    def startTest(self, test):
        super().startTest(test)
        self.outcomes[test] = "passed"

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        if self.outcomes.get(test) != "failed":
            self.outcomes[test] = "skipped"

    def addError(self, test, err):
        super().addError(test, err)
        self.outcomes[test] = "failed"

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self.outcomes[test] = "failed"

    def addUnexpectedSuccess(self, test):
        super().addUnexpectedSuccess(test)
        self.outcomes[test] = "failed"

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self.outcomes[test] = "failed"

    def count(self, outcome):
        return list(self.outcomes.values()).count(outcome)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-v", action="store_true", dest="is_verbose", help="a line for each test")
    parser.add_argument("--in", dest="folder", default=os.path.dirname(os.path.abspath(__file__)))
    parser.add_argument("names", nargs="*", metavar="NAME")
    arguments = parser.parse_args()
    sys.path.insert(0, arguments.folder)
    loader = unittest.TestLoader()
    if arguments.names:
        tests = loader.loadTestsFromNames(arguments.names)
    else:
        tests = loader.discover(arguments.folder, top_level_dir=arguments.folder)
    runner = unittest.TextTestRunner(
        resultclass=CountingResult, verbosity=2 if arguments.is_verbose else 1
    )
    result = runner.run(tests)

    sys.stderr.flush()
    for test, reason in result.skipped:
        print("skipped: {}: {}".format(test, reason))
    failed = result.count("failed")
    print("{} passed, {} failed".format(result.count("passed"), failed), flush=True)
    return 1 if failed or not (result.testsRun or result.skipped) else 0


if __name__ == "__main__":
    sys.exit(main())
