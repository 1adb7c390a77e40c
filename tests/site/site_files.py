"""The files of the site, for its tests."""

import html.parser
import os
import posixpath
import urllib.parse

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SITE = os.path.join(ROOT, "build", "site")
HTML = os.path.join(SITE, "html")

NO_SITE = "there is no site in {}: make docs makes it".format(HTML)


def files(suffix):
    """The paths of all files with the suffix, from the site's folder, in order."""
    return sorted(os.path.relpath(os.path.join(folder, name), HTML)
                  for folder, _, names in os.walk(HTML) for name in names if name.endswith(suffix))


def pages():
    return files(".html")


def text(path):
    with open(os.path.join(HTML, path), encoding="utf-8") as file:
        return file.read()


def beside(path, address):
    """The path of what a page calls by a relative address."""
    return posixpath.normpath(posixpath.join(posixpath.dirname(path),
                                             urllib.parse.unquote(address)))


class Page(html.parser.HTMLParser):
    """A page: its elements with their attributes, its links, the places that a link can name."""

    def __init__(self, path):
        super().__init__()
        self.elements = []
        self.text = text(path)
        self.feed(self.text)
        self.links = [facts["href"] for element, facts in self.elements
                      if element == "a" and facts.get("href")]
        self.ids = {""} | {facts["id"] for _, facts in self.elements if facts.get("id")}

    def handle_starttag(self, tag, attrs):
        self.elements.append((tag, {name: value or "" for name, value in attrs}))
