"""Lists that stand in two places agree: documents and files, sources and builds, packages."""

import glob
import os
import re
import unittest

import repository


def exists(path):
    return os.path.exists(os.path.join(repository.ROOT, path))


def folders():
    """The folders at the root that hold files of the repository."""
    return {path.split("/")[0] for path in repository.files("") if "/" in path}


def prose(path):
    """A document without its code blocks."""
    return re.sub(r"^```.*?^```", "", repository.text(path), flags=re.S | re.M)


def anchors(path):
    """The names that a link can give to the headings of a document."""
    headings = re.findall(r"^#+ (.*)", prose(path), re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


class DocumentsTest(unittest.TestCase):
    def test_the_documents_are_there(self):
        for path in ["README.md", "CHANGELOG.md", "LICENSE", "libvantor/README.md"]:
            self.assertTrue(exists(path), path)

    def test_links_lead_to_files_and_headings(self):
        for path in repository.files(".md"):
            for link in re.findall(r"\]\(([^)\s]+)\)", prose(path)):
                if re.match(r"\w+:", link):
                    continue
                name, _, anchor = link.partition("#")
                target = path
                if name:
                    target = os.path.normpath(os.path.join(os.path.dirname(path), name))
                with self.subTest(path, link=link):
                    self.assertTrue(exists(target))
                    if anchor:
                        self.assertIn(anchor, anchors(target))

    def test_paths_in_documents_and_comments_exist(self):
        # In documents whatever is marked as code and begins with one of our folders; in sources the
        # documents that they refer to.
        first = "|".join(sorted(map(re.escape, folders())))
        for path in repository.files(".md"):
            for name in re.findall(r"`((?:{})/[\w./*-]*)`".format(first), prose(path)):
                with self.subTest(path, name=name):
                    self.assertTrue(glob.glob(os.path.join(repository.ROOT, name)))
        for path in repository.files(".h", ".cpp", ".py", ".pyi"):
            for name in re.findall(r"\bdocs/[\w-]+\.md\b", repository.text(path)):
                with self.subTest(path, name=name):
                    self.assertTrue(exists(name))

    def test_the_readme_names_every_folder(self):
        named = set(re.findall(r"`([\w.-]+)/`", prose("README.md"))) | {".ci", "docs"}
        self.assertEqual(folders() - named, set())

    def test_scripts_in_the_readme_are_those_of_the_files(self):
        text = repository.text("README.md")
        shown = re.findall(r"`(examples/[\w/]+\.py)`[^`]*```python\n(.*?)```", text, re.S)
        self.assertEqual(len(shown), len(re.findall(r"^```python$", text, re.M)))
        for name, script in shown:
            self.assertTrue(script.strip(), name)
            self.assertIn(script, repository.text(name))

    def test_the_change_log_begins_with_the_version_that_is_built(self):
        version = re.search(r"project\(\w+ VERSION ([\d.]+)", repository.text("CMakeLists.txt"))[1]
        entries = re.findall(r"^## ([\d.]+)", repository.text("CHANGELOG.md"), re.M)
        self.assertEqual(entries[0], version)


class BuildTest(unittest.TestCase):
    def test_every_source_is_built(self):
        # Named in its own folder's list or one above it, or with its folder in any list.
        lists = {os.path.dirname(path): repository.text(path)
                 for path in repository.files("CMakeLists.txt")}
        for path in repository.files(".cpp"):
            is_listed = False
            for place, text in lists.items():
                is_above = path.startswith(place + "/") or not place
                name = os.path.basename(path) if is_above else path
                if re.search(r"(?<![\w-])" + re.escape(name), text):
                    is_listed = True
            self.assertTrue(is_listed, path)

    def test_every_package_that_a_message_names_is_in_the_list(self):
        named = set()
        for path in repository.files("CMakeLists.txt", ".cmake"):
            named.update(re.findall(r"Debian: ([\w.+-]+[\w+])", repository.text(path)))
        self.assertGreater(len(named), 4)
        self.assertEqual(named - set(packages()), set())

    def test_every_package_has_a_purpose_a_test_and_a_reason(self):
        for name, (purpose, present, reason) in packages().items():
            with self.subTest(name):
                self.assertTrue(purpose)
                self.assertLessEqual(set(purpose.split()), {"build", "test", "docs", "bench",
                                                            "fresh", "pip", "wheel"})
                self.assertTrue(present)
                self.assertTrue(reason)


def packages():
    """The rows of the list of packages: name: (purpose, test, reason)."""
    rows = {}
    for line in repository.lines("tools/packages.txt"):
        if line.strip() and not line.startswith("#"):
            name, purpose, present, reason = [field.strip() for field in line.split("|", 3)]
            rows[name] = (purpose, present, reason)
    return rows


if __name__ == "__main__":
    unittest.main()
