"""What the site needs of every type and document, so that "make docs" finds it when it is made."""

import os
import subprocess
import sys
import tempfile
import unittest

import repository

TYPES = """
import vocabulary_pictures as pictures
print(*sorted(set(pictures.types()) ^ set(pictures.SCENES)))
"""

PAGES = """
import os, sys
import staging
source = staging.Source(sys.argv[1])
source.take_documents(lambda path, text: text)
print(*staging.documents(), sep="\\n")
"""


class SiteTest(unittest.TestCase):
    def output_of(self, script, *arguments):
        """What a script prints that has the site's own scripts, and the package, on its path."""
        paths = [os.path.join(repository.ROOT, "docs", "site"), repository.IMPORT_FOLDER]
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run(
                [sys.executable, "-c", script, *arguments], cwd=folder, text=True,
                env=dict(os.environ, PYTHONPATH=os.pathsep.join(paths)),
                stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.split("\n")[:-1]

    def test_every_type_of_the_vocabulary_has_a_scene_for_its_picture(self):
        self.assertEqual(self.output_of(TYPES), [""])

    def test_documents_are_pages_and_their_links_lead_to_something_there(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertGreater(len(self.output_of(PAGES, folder)), 15)
            with open(os.path.join(folder, "index.md"), encoding="utf-8") as file:
                text = file.read()
        for path in repository.files(".md"):
            if path.startswith("docs/how-to/"):
                self.assertIn("how-to/" + os.path.basename(path)[:-3], text)


if __name__ == "__main__":
    unittest.main()
