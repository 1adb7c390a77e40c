"""What "cmake --install" puts somewhere is complete: a script can import the module from there."""

import os
import subprocess
import sys
import tempfile
import unittest

import repository


class InstallationTest(unittest.TestCase):
    def test_the_module_is_imported_from_where_it_was_installed(self):
        with tempfile.TemporaryDirectory() as target:
            subprocess.run(["cmake", "--install", repository.BUILD], check=True,
                           stdout=subprocess.DEVNULL, env=dict(os.environ, DESTDIR=target))
            folders = [folder for folder, _, names in os.walk(target)
                       if any(name.startswith("vantorPM.") for name in names)]
            self.assertEqual(len(folders), 1)
            script = "import vantorPM; print(vantorPM.transform().identity(), vantorPM.__file__)"
            result = subprocess.run([sys.executable, "-c", script], check=True, text=True,
                                    stdout=subprocess.PIPE,
                                    env=dict(os.environ, PYTHONPATH=folders[0]))
            self.assertRegex(result.stdout, r"^transform\(.*\) " + target)


if __name__ == "__main__":
    unittest.main()
