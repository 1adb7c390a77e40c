"""Makes the site of the documentation: build/site/html, without asking another host for anything.

usage: PYTHONPATH=build/release/python /usr/bin/python3 docs/site/make.py [--quick] [--keep]

The pages are the documents of the repository, and what is made here: the pictures of the
vocabulary, of the tutorial and of the how-to pages, whose scripts are run; the notebook, executed;
the examples, which sphinx-gallery runs; the API, from the stubs. A warning of Sphinx is an error.
For who writes a page: with --quick pictures have a few samples for each pixel; with --keep those
of the last run stay, and only text is made anew.
"""

import argparse
import os
import shutil
import subprocess
import sys

import api_pages
import examples
import notebook
import page_scripts
import staging
import theme
import vocabulary_pictures

SITE = os.path.join(staging.ROOT, "build", "site")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quick", action="store_true", help="a few samples for each pixel")
    parser.add_argument("--keep", action="store_true", help="keep the pictures of the last run")
    arguments = parser.parse_args()
    is_quick, is_new = arguments.quick, not arguments.keep

    # Scripts run in folders of their own, and the notebook's kernel in its own process.
    paths = filter(None, os.environ.get("PYTHONPATH", "").split(os.pathsep))
    os.environ["PYTHONPATH"] = os.pathsep.join(map(os.path.abspath, paths))
    if is_new:
        shutil.rmtree(SITE, ignore_errors=True)
    source = staging.Source(os.path.join(SITE, "source"))

    def run_and_change(path, text):
        name = os.path.splitext(os.path.basename(path))[0]
        if is_new:
            page_scripts.run(path, text, source.path(os.path.join("pictures", name)))
        if path == "docs/vocabulary.md":
            return vocabulary_pictures.with_pictures(text, "/pictures/vocabulary")
        return text

    scripts = os.path.join(SITE, "scripts")
    if is_new:
        report("the pictures of the vocabulary")
        vocabulary_pictures.draw(source.path("pictures/vocabulary"), is_quick)
        vocabulary_pictures.draw_icon(source.path("pictures/icon.png"))
        report("the notebook")
        notebook.execute(source)
        examples.take(scripts)
    report("the tutorial and the how-to pages")
    source.take_documents(run_and_change)
    api_pages.write(source)
    report("the examples, and all pages")
    return sphinx(source.folder, scripts, is_quick)


def report(what):
    print("Site: {}".format(what), flush=True)


def sphinx(source, scripts, is_quick):
    """Runs Sphinx, and returns its status."""
    environment = dict(os.environ, VANTOR_SITE_SCRIPTS=scripts, VANTOR_SITE_SOURCE=source)
    if is_quick:
        environment["VANTOR_SITE_QUICK"] = "1"
    html = os.path.join(SITE, "html")
    status = subprocess.run(
        [sys.executable, "-m", "sphinx", "-W", "--keep-going", "-q", "-b", "html",
         "-d", os.path.join(SITE, "doctrees"), "-c", os.path.dirname(os.path.abspath(__file__)),
         source, html],
        env=environment, cwd=SITE).returncode  # not where the sources of vantor are
    if not status:
        theme.complete(html)
        print("The site is in", os.path.join(html, "index.html"))
    return status


if __name__ == "__main__":
    sys.exit(main())
