"""The vocabulary of the renderer that is loaded: what a script can name."""

import difflib

from . import _native
from ._handles import with_article


class Parameter:
    """One parameter of a type; the fields are texts, as the renderer states them."""

    def __init__(self, name, kind, unit, range, default, meaning):
        self.name = name
        self.kind = kind
        self.unit = unit
        self.range = range
        self.default = default
        self.meaning = meaning

    def __repr__(self):
        return "<parameter {}: {}>".format(self.name, self.kind)

    @property
    def choices(self):
        """The words that it takes; empty if it takes another kind of value."""
        return self.kind[7:].split(",") if self.kind.startswith("choice:") else []


def _in_words(kind):
    """What a parameter of that kind takes."""
    kind, _, beside = kind.partition("|id:")
    what, _, of = kind.partition(":")
    if what == "choice":
        words = "one of " + ", ".join('"{}"'.format(word) for word in of.split(","))
    elif what in ("id", "ids"):
        words = with_article(of) + (" or several" if what == "ids" else "")
    else:
        words = kind
    return "{} or {}".format(words, with_article(beside)) if beside else words


class Type:
    """A type of the vocabulary, such as the camera "perspective". Printing it explains it."""

    def __init__(self, call, name, meaning):
        self.call = call
        self.name = name
        self.meaning = meaning
        self.parameters = {}

    def __repr__(self):
        lines = ['{} "{}": {}'.format(self.call, self.name, self.meaning)]
        for parameter in self.parameters.values():
            default = parameter.default
            facts = [_in_words(parameter.kind)]
            facts += [part for part in (parameter.unit, parameter.range) if part]
            facts += [default if default == "required" else "default " + default] if default else []
            lines.append("    {}: {}".format(parameter.name, "; ".join(facts)))
            lines.append("        {}".format(parameter.meaning))
        return "\n".join(lines)


class Vocabulary:
    """All types. Printing it lists them."""

    def __init__(self, text):
        self.is_known = text is not None
        self.types = {}
        for line in (text or "").splitlines():
            fields = line.split("\t")
            if len(fields) == 3:
                self.types[fields[0], fields[1]] = Type(*fields)
            elif len(fields) == 8:
                self.types[fields[0], fields[1]].parameters[fields[2]] = Parameter(*fields[2:])

    def __repr__(self):
        calls = {}
        for call, name in self.types:
            calls.setdefault(call, []).append(name)
        return "\n".join("{}: {}".format(call, ", ".join(names)) for call, names in calls.items())

    def find(self, call, name):
        """The type, or None."""
        return self.types.get((call, name))

    def parameter(self, call, type_name, name):
        """The parameter, or None."""
        found = self.find(call, type_name)
        return found.parameters.get(name) if found else None


# From which on two words count as one misspelt; "cube" and "curve" have 0.67.
_LIKENESS = 0.7

# A parameter such as "radius" belongs to many types.
_MOST_NAMED = 4

ALL = Vocabulary(_native.vocabulary())


def vocabulary(*words):
    """What the renderer knows: vocabulary() lists all types, vocabulary("perspective") explains a
    type with its parameters, vocabulary("newLight") or vocabulary("light") all types of a kind,
    vocabulary("light", "spot") one type of one kind. The result prints as text."""
    for word in words:
        if not isinstance(word, str):
            raise TypeError("vocabulary expects names, got {!r}".format(word))
    if not ALL.is_known:
        raise LookupError("{} does not tell its vocabulary".format(_native.library()))
    found = [type for type in ALL.types.values() if all(_is_meant(type, word) for word in words)]
    if not words:
        return ALL
    if not found:
        known = {type.name for type in ALL.types.values()} | {call for call, _ in ALL.types}
        near = difflib.get_close_matches(words[-1], sorted(known), 1, _LIKENESS)
        hint = ' (did you mean "{}"?)'.format(near[0]) if near else ""
        having = ['{} "{}"'.format(type.call, type.name) for type in ALL.types.values()
                  if words[-1] in type.parameters]
        if having:
            hint = " (it is a parameter of {})".format(", ".join(having[:_MOST_NAMED]) +
                                                       " ..." * (len(having) > _MOST_NAMED))
        raise LookupError('nothing is called "{}"{}'.format('" "'.join(words), hint))
    return found[0] if len(found) == 1 else _Types(found)


def _is_meant(type, word):
    return word in (type.name, type.call) or type.call.lower() == "new" + word.lower()


class _Types(list):
    def __repr__(self):
        return "\n\n".join(map(repr, self))
