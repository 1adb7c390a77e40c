"""Runs the Python tests: unittest's usual output, the skipped tests, and "N passed, N failed".

The exit code is 1 if a test failed, or if there was none.

usage: run.py [-v] [NAME...]    NAME is a test file, class or test: test_vectors.Vector3Test
PYTHONPATH says where the module lies.
"""

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


def main(arguments):
    folder = os.path.dirname(os.path.abspath(__file__))
    sys.path.insert(0, folder)
    names = [argument for argument in arguments if not argument.startswith("-")]
    loader = unittest.TestLoader()
    if names:
        tests = loader.loadTestsFromNames(names)
    else:
        tests = loader.discover(folder, top_level_dir=folder)
    runner = unittest.TextTestRunner(
        resultclass=CountingResult, verbosity=2 if "-v" in arguments else 1
    )
    result = runner.run(tests)

    sys.stderr.flush()
    for test, reason in result.skipped:
        print("skipped: {}: {}".format(test, reason))
    failed = result.count("failed")
    print("{} passed, {} failed".format(result.count("passed"), failed), flush=True)
    return 1 if failed or result.testsRun == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
