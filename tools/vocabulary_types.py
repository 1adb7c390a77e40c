"""Writes what checkers and editors are told of the vocabulary, from the renderer's own table.

usage: PYTHONPATH=build/release/python python3 tools/vocabulary_types.py [--check]

With --check it writes nothing, names the files that would change, and fails if there are any.
vantor/_vocabulary.pyi is all made here; in vantor/__init__.pyi and module/vantorPM.pyi it is what
stands between the lines "# vocabulary" and "# end of vocabulary".
"""

import keyword
import os
import sys
import textwrap

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

BEGIN, END = "# vocabulary\n", "# end of vocabulary\n"

HEAD = '''"""What each type of the vocabulary takes, for checkers and editors.

These types are no objects at run time, where the renderer that is loaded decides; they are imported
"if TYPE_CHECKING:".

    from vantor._vocabulary import _PerspectiveCamera

    view: "_PerspectiveCamera" = {"position": (0, 2, 6), "fov": 35}
    scene.camera("perspective", **view)

Made by tools/vocabulary_types.py from the table of the renderer that ships with the package.
"""

import array
import os
from typing import Any, Literal, Optional, Protocol, Sequence, SupportsFloat, SupportsIndex
from typing import TypedDict, Union

import vantorPM

from . import Interface, Object, Pattern, Picture, Texture, Transform, Trimmer

def __getattr__(name: str) -> Any: ...

class _HasArray(Protocol):
    """numpy's arrays, and what can be made one."""

    def __array__(self) -> Any: ...

_Buffer = Union[_HasArray, memoryview, array.array[Any]]

_Integer = SupportsIndex
_Switch = Union[bool, SupportsIndex]
_Number = Union[SupportsFloat, SupportsIndex]
_Text = Union[str, os.PathLike[str]]

_Vector2 = Union[Sequence[_Number], _Buffer, vantorPM._vector2]
_Vector3 = Union[Sequence[_Number], _Buffer, vantorPM._vector3]
_Color = Union[_Number, _Vector3]
_Scale = Union[_Number, _Vector2, _Vector3]
_Rows = Union[Sequence[Sequence[_Number]], _Buffer]
_Matrix4 = Union[_Rows, Transform, vantorPM._matrix4, vantorPM._transform]

_IntArray = Union[Sequence[_Integer], Sequence[Sequence[_Integer]], _Buffer, vantorPM._intarray]
_FloatArray = Union[Sequence[_Number], _Buffer, vantorPM._floatarray]
_Vector2Array = Union[Sequence[_Vector2], _Buffer, vantorPM._vector2array]
_Vector3Array = Union[Sequence[_Vector3], _Buffer, vantorPM._vector3array]
_TransformArray = Union[Sequence[_Matrix4], _Buffer, vantorPM._transformarray]
_PictureSource = Union[_Text, Picture, _HasArray]

'''

# Choices of the imager "file" that Scene.render() and Picture.save() take, too.
FILE_CHOICES = {"what": "_Aov", "display": "_Display", "filter": "_Filter"}

KINDS = {
    "number": "_Number",
    "integer": "_Integer",
    "switch": "_Switch",
    "text": "_Text",
    "color": "_Color",
    "scale": "_Scale",
    "vector2": "_Vector2",
    "vector3": "_Vector3",
    "matrix4": "_Matrix4",
    "intarray": "_IntArray",
    "floatarray": "_FloatArray",
    "vector2array": "_Vector2Array",
    "vector3array": "_Vector3Array",
    "transformarray": "_TransformArray",
}


def words(call):
    """("camera", "Camera") of "newCamera"."""
    return call[3:].lower(), call[3:]


def class_name(type):
    name = "".join(part.capitalize() for part in type.name.split("_"))
    return "_{}{}".format(name, words(type.call)[1])


def value_type(parameter):
    """The annotation of a parameter's value."""
    kind, _, id = parameter.kind.partition("|id:")
    if parameter.choices:
        return "Literal[{}]".format(", ".join('"{}"'.format(word) for word in parameter.choices))
    if kind == "id:texture":
        return "Union[Texture, _PictureSource]"
    if kind.startswith("id:"):
        return kind[3:].capitalize()
    if kind.startswith("ids:"):
        return "Union[{0}, Sequence[{0}]]".format(kind[4:].capitalize())
    return "Union[{}, {}]".format(KINDS[kind], id.capitalize()) if id else KINDS[kind]


def fields(type):
    """The parameters of a type: [name in Python, annotation, whether it is required, facts]."""
    rows = []
    for parameter in type.parameters.values():
        is_word = keyword.iskeyword(parameter.name)
        annotation = value_type(parameter)
        if (type.call, type.name, parameter.name) == ("newLight", "environment", "name"):
            annotation = "_PictureSource"
        facts = "; ".join(filter(None, (parameter.meaning, parameter.unit, parameter.range)))
        rows.append([parameter.name + "_" * is_word, annotation, parameter.default == "required",
                     facts])
    return rows


def material_fields(interface, surface):
    """Those of Scene.material() with the name of an interface: its own, and the surface's."""
    rows = {row[0]: row for row in fields(interface)}
    for row in fields(surface):
        if row[0] == "interface":
            continue
        if row[0] in rows:
            row = [row[0], "Union[{}, {}]".format(rows[row[0]][1], row[1]), False, rows[row[0]][3]]
        rows[row[0]] = row
    for name in ("reflectance", "base_color"):  # a pattern there is the surface's colour
        if name in rows:
            rows[name][1] = "Union[{}, Pattern]".format(rows[name][1])
    return list(rows.values())


def typed_dict(name, about, rows):
    required = [row for row in rows if row[2]]
    optional = [row for row in rows if not row[2]]
    text, base = "", "TypedDict"
    if required:
        base = name + "Required"
        text += "\nclass {}(TypedDict):\n".format(base) + "".join(map(field, required))
    text += "\nclass {}({}, total=False):\n".format(name, base)
    text += quoted(about)
    for row in optional:
        text += field([row[0], "Optional[{}]".format(row[1]), *row[2:]])
    return text


def quoted(about):
    lines = textwrap.wrap(about, 92)
    if len(lines) == 1 and len(about) <= 90:
        return '    """{}"""\n\n'.format(about)
    return '    """{}\n    """\n\n'.format("\n    ".join(lines))


def field(row):
    name, annotation, _, facts = row
    text = "".join("    # {}\n".format(line) for line in textwrap.wrap(facts, 93))
    return text + annotated("    ", "{}: ".format(name), annotation)


def annotated(indent, start, annotation):
    """A line, or its brackets broken until each line has at most 100 columns, and a default."""
    line = indent + start + annotation
    if len(line) <= 93:
        return line + "\n"
    head, _, inside = annotation.partition("[")
    inside = inside[:-1]
    if head == "Literal":
        parts = textwrap.wrap(inside, 95 - len(indent))
        return "{}{}Literal[\n{}{}]\n".format(
            indent, start, "".join("{}    {}\n".format(indent, part) for part in parts), indent)
    return "{}{}{}[\n{}{}]\n".format(
        indent, start, head, annotated(indent + "    ", "", inside), indent)


def literal(name, types):
    names = ", ".join('"{}"'.format(type.name) for type in types)
    return annotated("", name + " = ", "Literal[{}]".format(names))


def by_call(types):
    found = {}
    for type in types:
        found.setdefault(type.call, []).append(type)
    return found


def vocabulary_stub(calls):
    text = HEAD
    surface, = [type for type in calls["newMaterial"] if type.name == "surface"]
    imager, = [type for type in calls["newImager"] if type.name == "file"]
    for call, types in calls.items():
        also = calls["newInterface"] if call == "newMaterial" else []
        text += literal("_{}Type".format(words(call)[1]), unique(types + also))
    for name, alias in FILE_CHOICES.items():
        text += annotated("", alias + " = ", value_type(imager.parameters[name]))
    for call, types in calls.items():
        for type in types:
            text += typed_dict(class_name(type), type.meaning, fields(type))
    own = {type.name for type in calls["newMaterial"]}
    for type in calls["newInterface"]:
        if type.name not in own:
            text += typed_dict(material_of(type), "A surface: " + type.meaning,
                               material_fields(type, surface))
    return text


def unique(types):
    return list({type.name: type for type in types}.values())


def material_of(interface):
    return class_name(interface).replace("Interface", "Material")


def creation_methods(calls):
    """The methods of Scene that make something by the name of a type, overloaded for each."""
    places = ["transform: Optional[_Matrix4] = ...", "scale: Optional[_Scale] = ..."]
    text = "".join(overload("add", "what", type.name, places, fields(type), "Object", 2)
                   for type in calls["newObject"])  # first, behind those that are written by hand
    surface, = [type for type in calls["newMaterial"] if type.name == "surface"]
    for call, types in calls.items():
        variants = [(type.name, fields(type)) for type in types]
        if call == "newMaterial":
            own = {type.name for type in types}
            variants += [(type.name, material_fields(type, surface))
                         for type in calls["newInterface"] if type.name not in own]
        method, result = words(call)
        for name, rows in variants:
            text += overload(method, "type", name, [], rows, result, len(variants))
    return text


# Of an overloaded function, stubtest takes arguments for positional only by their underscores.
def overload(method, argument, name, options, rows, result, count):
    text = "    @overload\n" if count > 1 else ""
    text += '    def {}(\n        self,\n        __{}: Literal["{}"],\n'.format(
        method, argument, name)
    lines = ["        {},\n".format(option) for option in options]
    for name, annotation, is_required, _ in rows:
        annotation = annotation if is_required else "Optional[{}]".format(annotation)
        ending = "," if is_required else " = ...,"
        line = annotated("        ", name + ": ", annotation)
        lines.append(line[:-1] + ending + "\n")
    text += "        *,\n" + "".join(lines) if lines else ""
    return text + "    ) -> {}: ...\n".format(result)


def module_types(calls):
    return "".join(literal("_{}Type".format(words(call)[1]), types)
                   for call, types in calls.items())


def replaced(path, made):
    """The file with the part between the two lines made anew."""
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        text = file.read()
    before, begin, rest = text.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise SystemExit("{} has no lines {!r} and {!r}".format(path, BEGIN, END))
    indent = before[before.rfind("\n") + 1 :]
    return before + BEGIN + made + indent + END + after


def made_files(types):
    """The text of each file, by its path."""
    calls = by_call(types)
    return {
        "vantor/_vocabulary.pyi": vocabulary_stub(calls),
        "vantor/__init__.pyi": replaced("vantor/__init__.pyi", creation_methods(calls)),
        "module/vantorPM.pyi": replaced("module/vantorPM.pyi", module_types(calls)),
    }


def main():
    import vantor

    stale = {path: text for path, text in made_files(vantor.vocabulary().types.values()).items()
             if not is_up_to_date(path, text)}
    if sys.argv[1:] == ["--check"]:
        for path in stale:
            print("{} is stale: tools/vocabulary_types.py writes it anew".format(path))
        return 1 if stale else 0
    for path, text in stale.items():
        with open(os.path.join(ROOT, path), "w", encoding="utf-8") as file:
            file.write(text)
    return 0


def is_up_to_date(path, text):
    path = os.path.join(ROOT, path)
    if not os.path.exists(path):
        return False
    with open(path, encoding="utf-8") as file:
        return file.read() == text


if __name__ == "__main__":
    sys.exit(main())
