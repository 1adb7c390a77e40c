"""The notebook of the examples, executed, for the page that is about it."""

import os
import re

import nbformat
import staging
from nbconvert import MarkdownExporter
from nbconvert.preprocessors import ExecutePreprocessor

NOTEBOOK = "examples/package/notebook.ipynb"


def execute(source):
    """Executes it and puts its cells and what they show into the folder "notebook" of the site."""
    cells = nbformat.reads(staging.text_of(NOTEBOOK), as_version=4)
    folder = os.path.dirname(source.path("notebook/cells.md"))
    executing = ExecutePreprocessor(timeout=600, kernel_name="python3")
    executing.preprocess(cells, {"metadata": {"path": folder}})
    # The page that shows it has a heading of its own.
    cells.cells[0].source = re.sub(r"\A# .*\n", "", cells.cells[0].source)
    text, resources = MarkdownExporter().from_notebook_node(
        cells, {"output_files_dir": "/notebook"})
    for name, data in resources["outputs"].items():
        with open(source.path(name.lstrip("/")), "wb") as file:
            file.write(data)
    text = re.sub(r"/tmp/ipykernel_\d+/\d+\.py", "cell.py", text)
    text = text.replace("![png]", "![What the cell shows]")
    # The bar is text here: the page says what is needed for another one.
    text = re.sub(r".*TqdmWarning: IProgress not found.*\n.*\n", "", text)
    source.write("notebook/cells.md", text)
