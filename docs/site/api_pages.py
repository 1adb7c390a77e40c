"""The pages of the API: what the stubs declare, and what the doc strings say of it."""

import ast
import importlib
import inspect
import textwrap

import rst
import staging

# The stub of each module, what a reader should know first, and what stands before all others.
MODULES = {
    "vantor": ("vantor/__init__.pyi", """\
What a type such as ``_Vector3`` takes is told in :doc:`the package's page </guide/package>`:
numbers, sequences and arrays. The types that a scene's methods make, with their parameters, stand
in the :doc:`vocabulary </guide/vocabulary>`.

""", ["Scene", "Picture", "Job", "Model", "load", "Points", "points"]),
    "vantor.farm": ("vantor/farm.pyi", "", ["render", "animate"]),
    "vantorPM": ("module/vantorPM.pyi", "", ["scene", "_scene"]),
}


def write(source):
    """Writes a page for each module into the folder "api" of the site."""
    for name, (stub, head, first) in MODULES.items():
        tree = ast.parse(staging.text_of(stub))
        source.write("api/{}.rst".format(name), page(name, tree, head, first))


def page(name, tree, head, first):
    module = importlib.import_module(name)
    about = ast.get_docstring(tree) if name == "vantorPM" else inspect.getdoc(module)
    text = rst.title(name) + ".. py:module:: {}\n\n{}\n{}".format(
        name, rst.paragraphs(about), head)
    members = members_of(tree.body)
    for member in sorted(members, key=lambda key: first.index(key) if key in first else len(first)):
        nodes = members[member]
        if isinstance(nodes[0], ast.ClassDef):
            if name == "vantorPM" or not member.startswith("_"):
                text += class_text(nodes[0], getattr(module, member, None))
        elif not member.startswith("__"):
            text += function_text("function", nodes, getattr(module, member, None))
    return text


def members_of(body):
    """The declarations of each name, in order: one, or several of an overloaded function."""
    found = {}
    for node in body:
        if isinstance(node, (ast.ClassDef, ast.FunctionDef)):
            found.setdefault(node.name, []).append(node)
    return found


def class_text(node, value):
    bases = [ast.unparse(base) for base in node.bases]
    doc = text_of(node, value)
    if bases:
        doc += "\nBases: {}\n".format(rst.escaped(", ".join(bases)))
    made = ""
    for member in node.body:
        if isinstance(member, ast.AnnAssign) and member.target.id[0] != "_":
            made += directive("attribute", [member.target.id], "",
                              [":type: " + ast.unparse(member.annotation)])
    for name, nodes in members_of(node.body).items():
        if name.startswith("_") and not (name.startswith("__") and ast.get_docstring(nodes[0])):
            continue
        # What a base class says is told there.
        own = vars(value).get(name) if value else None
        if any(ast.unparse(mark) == "property" for mark in nodes[0].decorator_list):
            type = [":type: " + ast.unparse(nodes[0].returns)] if nodes[0].returns else []
            made += directive("property", [name], text_of(nodes[0], own), type)
        else:
            made += function_text("method", nodes, own)
    return directive("class", [node.name + constructor(node)], doc + "\n" + made)


def constructor(node):
    """The parameters of a class that scripts make objects of; others have some of no type."""
    nodes = members_of(node.body).get("__init__")
    if not nodes:
        return ""
    arguments = nodes[0].args
    named = (arguments.posonlyargs + arguments.args)[1:] + arguments.kwonlyargs
    if any(ast.unparse(argument.annotation) == "Any" for argument in named):
        return ""
    return signature(nodes[0], is_method=True).partition(" -> ")[0]


def function_text(kind, nodes, value):
    value = getattr(value, "__func__", value)
    marks = {ast.unparse(mark) for node in nodes for mark in node.decorator_list}
    if any(map(is_of_vocabulary, nodes)):
        returned = dict.fromkeys(ast.unparse(node.returns) for node in nodes)
        lines = ["{}{} -> {}".format(nodes[0].name, without_self(inspect.signature(value)),
                                     " | ".join(returned))]
    else:
        lines = [node.name + signature(node, kind == "method") for node in nodes]
    return directive(kind, lines, text_of(nodes[0], value),
                     [":classmethod:"] * ("classmethod" in marks))


def is_of_vocabulary(node):
    """Whether it is an overload that has been made for one type of the vocabulary."""
    arguments = node.args.args[1:]
    return bool(arguments) and arguments[0].arg.startswith("__")


def without_self(signature):
    parameters = list(signature.parameters.values())[1:]
    return str(signature.replace(parameters=parameters))


def signature(node, is_method):
    arguments = node.args
    if is_method:
        first = arguments.posonlyargs or arguments.args
        arguments = ast.parse("def f({}): ...".format(ast.unparse(arguments))).body[0].args
        del (arguments.posonlyargs or arguments.args)[: len(first[:1])]
    returned = " -> " + ast.unparse(node.returns) if node.returns else ""
    return "({}){}".format(ast.unparse(arguments), returned)


def text_of(node, value):
    """What its doc string says: the stub's, or else that of the thing itself."""
    text = ast.get_docstring(node)
    if not text and value is not None:
        text = inspect.getdoc(value) if value.__doc__ else ""
    return rst.paragraphs(text) if text else ""


def directive(kind, lines, text, options=()):
    head = ".. py:{}:: ".format(kind)
    made = head + ("\n" + " " * len(head)).join(lines) + "\n"
    made += "".join("   {}\n".format(option) for option in options)
    return made + "\n" + textwrap.indent(text, "   ") + "\n"
