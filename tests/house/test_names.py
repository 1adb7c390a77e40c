"""The names of functions, types and methods: in the stubs, in the module, and those of handlers."""

import ast
import os
import re
import sys
import unittest

import repository
from names import FUNCTIONS, METHODS, SEQUENCES, TYPES

STUB = "module/vantorPM.pyi"


def code(path):
    """The text of a source file without its comments."""
    return re.sub(r"//.*", "", repository.text(path))


def plain(name):
    """A name as its handler has it: in small letters; underscores are put where words begin."""
    return name.replace("_", "").lower()


class HandlersTest(unittest.TestCase):
    """A script cannot see which function of the module answers it; who debugs the module does."""

    @classmethod
    def setUpClass(cls):
        cls.sources = {path: code(path) for path in repository.cpp_files()
                       if re.match("algebra/|arrays/|scene/|module/", path)}

    def test_each_handler_of_a_function_is_named_after_it(self):
        entries = re.findall(r'\{"(\w+)", (\w+), METH_VARARGS', self.sources["module/vantorPM.cpp"])
        self.assertEqual([name for name, _ in entries], FUNCTIONS)
        for name, handler in entries:
            made = name + ("new" if name in TYPES else "")
            self.assertEqual(plain(handler), plain(made))

    def test_each_handler_of_a_method_is_named_after_the_type_and_the_method(self):
        found = {}
        for source in self.sources.values():
            tables = re.findall(r"PyMethodDef (\w+)methods\[\] = \{(.*?)\n\};", source, re.S)
            for name, body in tables:
                found[name] = re.findall(r'METHOD\("(\w+)", (\w+)\)', body)
        found.pop("vantor_", None)
        self.assertEqual(sorted(found), sorted(TYPES))
        for name, entries in found.items():
            self.assertEqual([method for method, _ in entries], METHODS[name])
            for method, handler in entries:
                self.assertTrue(handler.startswith(name + "_"), handler)
                self.assertEqual(plain(handler), plain(name + method))


class Stub:
    """What the stub file declares. A type stands there under its name with an underscore, as only
    the function that makes its objects is in the module."""

    def __init__(self):
        self.tree = ast.parse(repository.text(STUB), feature_version=(3, 9))
        self.classes = {node.name: node for node in self.tree.body
                        if isinstance(node, ast.ClassDef)}
        self.functions = {node.name: node for node in self.tree.body
                          if isinstance(node, ast.FunctionDef)}

    def methods(self, name):
        """The methods of a class and then of its bases, as name: node, in the order of the file."""
        node = self.classes[name]
        found = {}
        for base in node.bases:
            base = base.value if isinstance(base, ast.Subscript) else base
            if base.id in self.classes:
                found.update(self.methods(base.id))
        found.update({child.name: child for child in node.body
                      if isinstance(child, ast.FunctionDef)})
        return found


class StubTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.stub = Stub()

    def test_it_declares_the_functions_in_their_order(self):
        declared = [node.name for node in self.stub.tree.body
                    if isinstance(node, (ast.ClassDef, ast.FunctionDef))]
        self.assertEqual([name for name in declared if not name.startswith("_")],
                         ["error"] + FUNCTIONS)

    def test_each_type_has_its_methods_in_their_order(self):
        for name in TYPES:
            with self.subTest(name):
                declared = list(self.stub.methods("_" + name))
                self.assertEqual([method for method in declared if not method.startswith("_")],
                                 METHODS[name])
                special = ["__repr__"] if name != "scene" else []
                if name in SEQUENCES:
                    special += ["__len__", "__getitem__", "__setitem__", "__iter__"]
                self.assertEqual(sorted(method for method in declared if method.startswith("_")),
                                 sorted(special))

    def test_everything_is_documented(self):
        self.assertTrue(ast.get_docstring(self.stub.tree))
        for name, node in [*self.stub.classes.items(), *self.stub.functions.items()]:
            self.assertTrue(ast.get_docstring(node), name)
        for name in self.stub.classes:
            for method, node in self.stub.methods(name).items():
                self.assertTrue(ast.get_docstring(node), name + "." + method)

    def test_no_keyword_is_offered(self):
        nodes = list(self.stub.functions.values())
        for name in self.stub.classes:
            nodes += self.stub.methods(name).values()
        for node in nodes:
            names = [argument.arg for argument in node.args.args if argument.arg != "self"]
            if not node.name.startswith("__"):
                self.assertEqual((names, node.args.kwonlyargs, node.args.kwarg), ([], [], None),
                                 node.name)


class RunTimeTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        repository.built(r"vantorPM\..*\.so")
        # The scene is given nonsense below.
        os.environ["VANTOR_DIAGNOSTICS"] = "silent"
        sys.path.insert(0, repository.IMPORT_FOLDER)
        try:
            import vantorPM
            import samples
        finally:
            sys.path.remove(repository.IMPORT_FOLDER)
        cls.module = vantorPM
        cls.stub = Stub()
        cls.objects = samples.one_of_each()

    def test_the_module_has_what_the_stub_declares(self):
        public = [name for name in vars(self.module) if not name.startswith("__")]
        declared = [*self.stub.classes, *self.stub.functions]
        self.assertEqual(sorted(public),
                         sorted(name for name in declared if not name.startswith("_")))

    def test_each_type_has_the_methods_that_the_stub_declares(self):
        self.assertEqual(list(self.objects), TYPES)
        for name, value in self.objects.items():
            with self.subTest(name):
                self.assertEqual(type(value).__name__, name)
                present = [method for method in vars(type(value)) if not method.startswith("__")]
                declared = self.stub.methods("_" + name)
                self.assertEqual(present,
                                 [method for method in declared if not method.startswith("_")])
                for method in declared:
                    if method != "__iter__":
                        self.assertIn(method, vars(type(value)))

    def test_calls_take_as_many_arguments_as_the_stub_says(self):
        calls = [(name, getattr(self.module, name), node)
                 for name, node in self.stub.functions.items()]
        for name, value in self.objects.items():
            calls += [(name + "." + method, getattr(value, method), node)
                      for method, node in self.stub.methods("_" + name).items()
                      if not method.startswith("_")]
        self.assertEqual(len(calls), len(FUNCTIONS) + sum(map(len, METHODS.values())))
        for name, call, node in calls:
            with self.subTest(name):
                if node.args.vararg:
                    self.assertEqual(node.args.vararg.arg, "ignored")
                    call()
                    call("ignored")
                    call(None, [], "ignored")
                    continue
                most = len([each for each in node.args.posonlyargs if each.arg != "self"])
                least = most - len(node.args.defaults)
                for count in {least - 1, most + 1} - {-1}:
                    with self.assertRaises(TypeError):
                        call(*[0] * count)


if __name__ == "__main__":
    unittest.main()
