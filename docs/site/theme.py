"""What Debian's package of the theme furo leaves to a web server of Debian's, put into the site."""

import os
import re
import shutil

# Where Debian's web servers find what pages name by /javascript/.
JAVASCRIPT = "/usr/share/javascript"

ROOT_IMPORT = re.compile(r"@import url\((/javascript/(\S+?))\);")
MODULE_IMPORT = re.compile(r'^import Gumshoe from "\./(gumshoe[\w-]*\.js)";\n')


def complete(html):
    """Makes style and script of the theme work from any folder, and from files without a server.
    A theme that is complete stays as it is."""
    static = os.path.join(html, "_static")
    _complete_style(os.path.join(static, "styles", "furo.css"))
    _complete_script(os.path.join(static, "scripts", "furo.js"))


def _complete_style(path):
    text = _text(path)
    for _, name in ROOT_IMPORT.findall(text):
        shutil.copyfile(os.path.join(JAVASCRIPT, name),
                        os.path.join(os.path.dirname(path), os.path.basename(name)))
    _write(path, ROOT_IMPORT.sub(
        lambda found: '@import url("{}");'.format(os.path.basename(found[2])), text))


def _complete_script(path):
    """Pages load it as a plain script, which cannot import; what it imports makes a global name."""
    text = _text(path)
    found = MODULE_IMPORT.match(text)
    if found:
        imported = _text(os.path.join(os.path.dirname(path), found[1]))
        _write(path, imported + "\n" + text[found.end() :])


def _text(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def _write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
