"""Plain text, as of doc strings, in reStructuredText."""

import itertools
import re
import textwrap


def escaped(text):
    """The text with nothing in it that is markup."""
    return re.sub(r"[\\*`|]|_(?!\w)", lambda found: "\\" + found[0], text)


def paragraphs(text):
    """Paragraphs of plain text; lines that are indented are code, with the blank lines in them."""
    made = []
    lines = [line.rstrip() for line in text.strip("\n").rstrip().split("\n")]
    for is_code, run in itertools.groupby(range(len(lines)), lambda i: _is_code(lines, i)):
        part = "\n".join(lines[i] for i in run).strip("\n")
        made.append("::\n\n" + textwrap.indent(textwrap.dedent(part), "    ") if is_code
                    else escaped(part))
    return "\n\n".join(made) + "\n"


def _is_code(lines, i):
    """Whether the line is indented; of a blank one, whether those before and after it are."""
    if lines[i]:
        return lines[i][0] == " "
    after = next(filter(None, lines[i:]), "")
    return i > 0 and _is_code(lines, i - 1) and after[:1] == " "


def title(text, underline="="):
    return "{}\n{}\n\n".format(escaped(text), underline * len(escaped(text)))
