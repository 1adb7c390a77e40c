"""Runs a script in an interpreter of its own: for tests of import, exit, limits, environment."""

import os
import subprocess
import sys
import textwrap

from module_under_test import vantorPM


def variables(**changes):
    """The environment of a script: it finds the module, and the files beside this one."""
    result = dict(os.environ)
    result["PYTHONPATH"] = os.pathsep.join(
        [
            os.path.dirname(os.path.abspath(vantorPM.__file__)),
            os.path.dirname(os.path.abspath(__file__)),
        ]
    )
    # Under the address sanitizer a failed allocation is to be a null pointer, as it is without.
    result["ASAN_OPTIONS"] = ":".join(
        filter(None, [result.get("ASAN_OPTIONS"), "allocator_may_return_null=1"])
    )
    result.update(changes)
    return result


def run(script, *options, **environment):
    """The finished process; a script that takes longer than a minute is a failure."""
    return subprocess.run(
        [sys.executable, *options, "-c", textwrap.dedent(script)],
        env=variables(**environment),
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        universal_newlines=True,
        timeout=60,
    )


class Scripts:
    """To be mixed into a TestCase."""

    def assert_script(self, script, output, *options, **environment):
        """The script ends well, prints exactly this, and nothing on the error stream."""
        process = run(script, *options, **environment)
        self.assertEqual((process.returncode, process.stderr, process.stdout), (0, "", output))
