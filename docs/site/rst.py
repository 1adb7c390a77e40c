"""Plain text, as of doc strings, in reStructuredText."""

import itertools
import re
import textwrap


def escaped(text):
    """The text with nothing in it that is markup."""
    return re.sub(r"[\\*`|]|_(?!\w)", lambda found: "\\" + found[0], text)


def paragraphs(text):
    """Paragraphs of plain text; lines that are indented are code."""
    made = []
    for part in re.split(r"\n\s*\n", text.strip("\n").rstrip()):
        for is_code, lines in itertools.groupby(part.splitlines(), lambda line: line[:1] == " "):
            run = "\n".join(lines)
            made.append("::\n\n" + textwrap.indent(textwrap.dedent(run), "    ") if is_code
                        else escaped(run))
    return "\n\n".join(made) + "\n"


def title(text, underline="="):
    return "{}\n{}\n\n".format(escaped(text), underline * len(escaped(text)))
