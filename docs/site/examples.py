"""The examples, as sphinx-gallery runs them: small, and each picture that they write is shown."""

import ast
import glob
import os
import shutil

import rst
import staging
from sphinx_gallery.scrapers import figure_rst

# Width in pixels and samples for each pixel, where the script takes them.
SIZE = ("320", "48")
QUICK_SIZE = ("80", "4")
SIZES = {
    "cornell_box": ("240", "64"),
    "denoiser": ("320", "16"),
    "imagers": ("240", "64"),
    "media": ("320", "96"),
    "million_instances": ("320", "32"),
    "million_points": ("320", "32"),
    "sky": ("180", "48"),
    "thousand_lights": ("320", "32"),
}

TITLES = {
    "examples": ("Examples of the module", """\
The scripts of the folder "examples". Their pictures have been drawn when this site was made,
smaller and with fewer samples than a script takes by itself; the gallery has the full size."""),
    "examples/package": ("Examples of the package", """\
The scripts of the folder "examples/package", with their pictures."""),
}


def take(folder):
    """Puts the scripts into a folder for sphinx-gallery, which wants a title in each."""
    for scripts, pages in staging.SCRIPTS.items():
        place = os.path.join(folder, os.path.dirname(pages))
        os.makedirs(place)
        with open(os.path.join(place, "README.rst"), "w", encoding="utf-8") as file:
            title, text = TITLES[scripts]
            file.write(rst.title(title) + rst.paragraphs(text))
    for path, name in staging.scripts().items():
        with open(os.path.join(folder, name + ".py"), "w", encoding="utf-8") as file:
            file.write(with_title(path, staging.text_of(path)))
    # One of them shows a picture of the repository.
    os.symlink(os.path.join(staging.ROOT, "docs"), os.path.join(folder, "docs"))


def with_title(path, text):
    """The script with a title in its doc string."""
    name = os.path.splitext(os.path.basename(path))[0]
    about = ast.parse(text).body[0]
    code = text.splitlines(keepends=True)[about.end_lineno :]
    title = rst.title(name.replace("_", " ").capitalize())
    return 'r"""\n{}{}"""\n{}'.format(title, rst.paragraphs(ast.literal_eval(about.value)),
                                      "".join(code))


class Arguments:
    """What a script is called with."""

    def __init__(self, is_quick):
        self._is_quick = is_quick

    def __call__(self, _, script):
        name = os.path.splitext(os.path.basename(script["src_file"]))[0]
        return list(QUICK_SIZE if self._is_quick else SIZES.get(name, SIZE))

    def __repr__(self):
        return "Arguments({}, {}, {})".format(self._is_quick, SIZE, SIZES)


class Scraper:
    """Shows the pictures that a script has written beside itself."""

    def __call__(self, block, block_vars, gallery_conf):
        folder = os.path.dirname(block_vars["src_file"])
        shown = []
        for path in sorted(found for ending in staging.PICTURES
                           for found in glob.glob(os.path.join(folder, "*" + ending))):
            place = next(block_vars["image_path_iterator"])
            place = os.path.splitext(place)[0] + os.path.splitext(path)[1]
            shutil.move(path, place)
            shown.append(place)
        return figure_rst(shown, gallery_conf["src_dir"])

    def __repr__(self):
        return "Scraper()"
