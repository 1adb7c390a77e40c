"""Sphinx's configuration of the site; make.py runs it."""

import os
import re
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import examples
import staging

project = "vantorPM"
author = "the vantorPM developers"
version = re.search(r"project\(\w+ VERSION ([\d.]+)", staging.text_of("CMakeLists.txt"))[1]
release = version
html_title = "vantorPM " + version

extensions = ["myst_parser", "sphinx_gallery.gen_gallery"]
source_suffix = {".md": "markdown", ".rst": "restructuredtext"}
exclude_patterns = ["pictures", "files", "notebook", "**/sg_execution_times.rst"]
myst_heading_anchors = 4
highlight_language = "none"
python_use_unqualified_type_names = True
add_module_names = False
toc_object_entries_show_parents = "hide"

html_theme = "furo"
html_static_path = [os.path.join(staging.ROOT, "docs", "site", "static")]
html_favicon = os.path.join(os.environ["VANTOR_SITE_SOURCE"], "pictures", "icon.png")
html_css_files = ["site.css"]
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False

_folders = [os.path.dirname(name) for name in staging.SCRIPTS.values()]
_scripts, _pages = os.environ["VANTOR_SITE_SCRIPTS"], os.environ["VANTOR_SITE_SOURCE"]
# As for a script that is run by itself, its folder comes first.
sys.path.insert(0, os.path.join(_scripts, _folders[0]))
sphinx_gallery_conf = {
    "examples_dirs": [os.path.join(_scripts, name) for name in _folders],
    "gallery_dirs": [os.path.join(_pages, name) for name in _folders],
    "filename_pattern": "",  # all are run
    "abort_on_example_error": True,
    "reset_argv": examples.Arguments("VANTOR_SITE_QUICK" in os.environ),
    "image_scrapers": (examples.Scraper(),),
    "reset_modules": (),
    "show_signature": False,
    "show_memory": False,
    "download_all_examples": False,
    "min_reported_time": 1e9,
}


def _without_place(_, name, text):
    """Where this site was made says nothing to its readers; a script prints it."""
    text[0] = text[0].replace(os.path.join(_scripts, os.path.dirname(name), ""), "")


def _without_empty_contents(_, name, template, context, tree):
    """The theme counts the pages that a page lists, but shows only its own headings."""
    if context.get("toc", "").count('href="#') < 2:
        context["furo_hide_toc"] = True


def setup(app):
    app.connect("source-read", _without_place)
    app.connect("html-page-context", _without_empty_contents, priority=900)  # after the theme
