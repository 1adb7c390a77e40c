"""The pages of the site: documents of the repository, with links that hold where they are there."""

import os
import re

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# Where a document stands in the site. The others of docs/ stand in "guide", those of docs/how-to
# in "how-to".
PLACES = {
    "docs/site/index.md": "index",
    "docs/tutorial.md": "tutorial",
    "README.md": "read-me",
    "docs/gallery.md": "gallery",
    "docs/farm.md": "how-to/farm",
    "docs/another-renderer.md": "project/another-renderer",
    "docs/architecture.md": "project/architecture",
    "docs/present-day-python.md": "project/present-day-python",
    "libvantor/README.md": "project/embedded-renderer",
    "bench/README.md": "project/benchmarks",
    "CONTRIBUTING.md": "project/contributing",
    "CHANGELOG.md": "project/changes",
}
FOLDERS = {"docs": "guide", "docs/how-to": "how-to"}

# Pages that are made, in place of files that a document links to.
MADE = {"module/vantorPM.pyi": "api/vantorPM"}

# The folders of scripts, and how the pages are called that sphinx-gallery makes of them. It wants
# different names in different folders.
SCRIPTS = {"examples": "examples/{}", "examples/package": "examples-package/package_{}"}

PICTURES = (".png", ".jpg")

LINK = re.compile(r"(`+).*?\1|(!?)\[([^\]]*)\]\(([^)\s]+)\)", re.S)


def documents():
    """The site's name of each document, by its path in the repository."""
    found = dict(PLACES)
    for folder, place in FOLDERS.items():
        for name in sorted(os.listdir(os.path.join(ROOT, folder))):
            path = folder + "/" + name
            if name.endswith(".md"):
                found.setdefault(path, place + "/" + name[:-3])
    return found


def scripts():
    """The site's name of each script that is run, by its path in the repository."""
    return {
        folder + "/" + name: place.format(name[:-3])
        for folder, place in SCRIPTS.items()
        for name in sorted(os.listdir(os.path.join(ROOT, folder)))
        if name.endswith(".py")
    }


def text_of(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


class Source:
    """The folder that Sphinx reads."""

    def __init__(self, folder):
        self.folder = folder
        self._documents = documents()
        self._pages = {**scripts(), **MADE}

    def path(self, name):
        """A path in the folder, whose own folder is made."""
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        return path

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def take_documents(self, change):
        """Puts all documents there; change(path, text) gives each its last form."""
        for path in scripts():
            self._file(path)
        for path, name in self._documents.items():
            text = self.with_links(path, text_of(path))
            if name == "index":
                text = self.with_others(text)
            self.write(name + ".md", change(path, text))

    def with_others(self, text):
        """The front page, where "guide/*" stands for the pages of that folder which it does not
        name. Sphinx's own pattern is a warning where there are none."""
        def others(found):
            names = [name for name in self._documents.values() if name.startswith(found[1])
                     and not re.search("^{0}$|<{0}>$".format(name), text, re.M)]
            return "".join(name + "\n" for name in names)

        return re.sub(r"^([\w-]+/)\*\n", others, text, flags=re.M)

    def with_links(self, path, text):
        """The text of a document, with the links of its place in the site; code stays."""
        parts = re.split(r"(^```.*?^```$)", text, flags=re.S | re.M)
        return "".join(part if part.startswith("```") else
                       LINK.sub(lambda found: self._link(path, found), part) for part in parts)

    def _link(self, path, found):
        _, bang, text, target = found.groups()
        if target is None or re.match(r"\w+:|#", target):
            return found[0]
        name, _, anchor = target.partition("#")
        file = os.path.normpath(os.path.join(os.path.dirname(path), name))
        here = os.path.dirname(self._documents[path])
        if file in self._documents:
            place = os.path.relpath(self._documents[file] + ".md", here or ".")
            if text.endswith(".md"):  # here it has no such name
                text = re.search(r"^# (.*)", text_of(file), re.M)[1]
            return "[{}]({}{})".format(text, place, anchor and "#" + anchor)
        if file in self._pages:
            return "{{doc}}`{} </{}>`".format(text, self._pages[file])
        place = self._file(file)
        if bang or file.endswith(PICTURES):
            return "{}[{}]({})".format(bang, text, os.path.relpath(place, here or "."))
        return "{{download}}`{} </{}>`".format(text, place)

    def _file(self, path):
        """Where a file of the repository that is no page stands."""
        original = os.path.join(ROOT, path)
        if not os.path.isfile(original):
            raise ValueError("{}: no file that a page could link to".format(path))
        place = "files/" + path
        if not os.path.exists(self.path(place)):
            os.symlink(original, self.path(place))
        return place
