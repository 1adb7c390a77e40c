"""The names of handlers, tables and methods, in the sources, at run time and in the stubs."""

import ast
import os
import re
import sys
import unittest

import repository

STUB = "module/vantorPM.pyi"

FUNCTIONS = [
    ("scene", "scene_new"), ("vector2", "vector2_new"), ("vector3", "vector3_new"),
    ("vector4", "vector4_new"), ("matrix2", "matrix2_new"), ("matrix3", "matrix3_new"),
    ("matrix4", "matrix4_new"), ("transform", "transform_new"), ("compose", "compose"),
    ("invert", "invert"), ("BezierBasis", "bezier_basis"), ("BSplineBasis", "bspline_basis"),
    ("CatmullRomBasis", "catmullrom_basis"), ("HermiteBasis", "hermite_basis"),
    ("BezierStep", "bezier_step"), ("BSplineStep", "bspline_step"),
    ("CatmullRomStep", "catmullrom_step"), ("HermiteStep", "hermite_step"),
    ("intarray", "intarray_new"), ("floatarray", "floatarray_new"),
    ("vector2array", "vector2array_new"), ("vector3array", "vector3array_new"),
    ("vector4array", "vector4array_new"), ("matrix2array", "matrix2array_new"),
    ("matrix3array", "matrix3array_new"), ("matrix4array", "matrix4array_new"),
    ("transformarray", "transformarray_new"),
]

SCENE = [
    ("newCamera", "new_camera"), ("newImager", "new_imager"), ("newInterface", "new_interface"),
    ("newInterior", "new_interior"), ("newLight", "new_light"), ("newMaterial", "new_material"),
    ("newObject", "new_object"), ("newPattern", "new_pattern"), ("newTexture", "new_texture"),
    ("newTrimmer", "new_trimmer"), ("imagerBegin", "imager_begin"), ("imagerEnd", "imager_end"),
    ("interiorBegin", "interior_begin"), ("interiorEnd", "interior_end"), ("lightOn", "light_on"),
    ("lightOff", "light_off"), ("lightBegin", "light_begin"), ("lightEnd", "light_end"),
    ("materialBegin", "material_begin"), ("materialEnd", "material_end"),
    ("addObject", "add_object"), ("transformBegin", "transform_begin"),
    ("transformEnd", "transform_end"), ("radiosity", "radiosity"), ("render", "render"),
]
VECTOR = [
    ("get", "get"), ("set", "set"), ("length", "length"), ("sqlength", "sqlength"),
    ("normalize", "normalize"),
]
MATRIX = [("get", "get"), ("set", "set")]
TRANSFORM = [
    ("get", "get"), ("matrix", "matrix"), ("zero", "zero"), ("identity", "identity"),
    ("scaling", "scaling"), ("translation", "translation"), ("alignmentToZ", "alignment_to_z"),
    ("alignmentTo", "alignment_to"), ("rotationAroundX", "rotation_around_x"),
    ("rotationAroundY", "rotation_around_y"), ("rotationAroundZ", "rotation_around_z"),
    ("rotationAroundAxis", "rotation_around_axis"), ("reflectionOnXY", "reflection_on_xy"),
    ("compose", "compose"), ("invert", "invert"),
]
ARRAY = [
    ("get", "get"), ("set", "set"), ("add", "add"), ("getSize", "get_size"),
    ("setSize", "set_size"),
]

# The type's name, its file, its type object, its methods, and the handler of its length slot.
TYPES = [
    ("scene", "scene/scene.cpp", "scenetype", SCENE, None),
    ("vector2", "algebra/vector2.cpp", "Vector2type", VECTOR, "vector2_sequence_length"),
    ("vector3", "algebra/vector3.cpp", "Vector3type", VECTOR, "vector3_sequence_length"),
    ("vector4", "algebra/vector4.cpp", "Vector4type", VECTOR, "vector4_sequence_length"),
    ("matrix2", "algebra/matrix2.cpp", "Matrix2type", MATRIX, None),
    ("matrix3", "algebra/matrix3.cpp", "Matrix3type", MATRIX, None),
    ("matrix4", "algebra/matrix4.cpp", "Matrix4type", MATRIX, None),
    ("transform", "algebra/transform.cpp", "Transformtype", TRANSFORM, None),
    ("intarray", "arrays/intarray.cpp", "intarraytype", ARRAY, "intarray_length"),
    ("floatarray", "arrays/floatarray.cpp", "floatarraytype", ARRAY, "floatarray_length"),
    ("vector2array", "arrays/vector2array.cpp", "vector2arraytype", ARRAY, "vector2array_length"),
    ("vector3array", "arrays/vector3array.cpp", "vector3arraytype", ARRAY, "vector3array_length"),
    ("vector4array", "arrays/vector4array.cpp", "vector4arraytype", ARRAY, "vector4array_length"),
    ("matrix2array", "arrays/matrix2array.cpp", "matrix2arraytype", ARRAY, "matrix2array_length"),
    ("matrix3array", "arrays/matrix3array.cpp", "matrix3arraytype", ARRAY, "matrix3array_length"),
    ("matrix4array", "arrays/matrix4array.cpp", "matrix4arraytype", ARRAY, "matrix4array_length"),
    ("transformarray", "arrays/transformarray.cpp", "transformarraytype", ARRAY,
     "transformarray_length"),
]

# The types that a parameter list accepts, in the order of the tests for them.
PARAMETERS = [
    "PyLong_Type", "PyFloat_Type", "PyUnicode_Type", "Vector2type", "Vector3type", "Vector4type",
    "Matrix2type", "Matrix3type", "Matrix4type", "Transformtype", "intarraytype", "floatarraytype",
    "vector2arraytype", "vector3arraytype", "vector4arraytype", "matrix2arraytype",
    "matrix3arraytype", "matrix4arraytype", "transformarraytype",
]

DEFINITION = re.compile(r"^(?:PyObject \*|void |int |Py_ssize_t )(\w+)\([^;]*?\) \{", re.M)


def code(path):
    """The text of a source file without its comments."""
    return re.sub(r"//.*", "", repository.text(path))


def table(source, head):
    """What stands between the braces of the one table that the head introduces."""
    bodies = re.findall(re.escape(head) + r" = \{(.*?)\n\};", source, re.S)
    if len(bodies) != 1:
        raise AssertionError("{} tables {}".format(len(bodies), head))
    return bodies[0]


def members(source, head):
    """The (member, value) pairs of a record with designated initialisers."""
    return re.findall(r"\.(\w+) = &?([^,\n]+)", table(source, head))


class SourcesTest(unittest.TestCase):
    def test_the_module_table_has_the_27_functions_in_their_order(self):
        entries = re.findall(r'\{"(\w+)", (\w+), METH_VARARGS, nullptr\},\n',
                             table(code("module/vantorPM.cpp"), "PyMethodDef vantor_methods[]"))
        self.assertEqual(entries, FUNCTIONS)

    def test_each_method_table_has_the_types_methods_in_their_order(self):
        for name, path, _, methods, _ in TYPES:
            with self.subTest(name):
                body = table(code(path), "PyMethodDef {}methods[]".format(name))
                self.assertEqual(re.findall(r'METHOD\("(\w+)", (\w+)\)', body),
                                 [(method, name + "_" + stem) for method, stem in methods])
                self.assertRegex(body, r"METHOD_END,\s*\Z")

    def test_each_sequence_table_has_length_item_and_item_assignment(self):
        for name, path, _, _, length in TYPES:
            with self.subTest(name):
                source = code(path)
                if length is None:
                    self.assertNotIn("PySequenceMethods", source)
                else:
                    slots = members(source, "PySequenceMethods {}_as_sequence".format(name))
                    self.assertEqual(slots, [("sq_length", length), ("sq_item", name + "_item"),
                                             ("sq_ass_item", name + "_ass_item")])

    def test_each_type_object_fills_the_stated_slots_and_no_other(self):
        for name, path, type_object, _, length in TYPES:
            with self.subTest(name):
                expected = [("tp_name", '"{}"'.format(name)),
                            ("tp_basicsize", "sizeof({}object)".format(name)),
                            ("tp_dealloc", name + "_dealloc")]
                if name != "scene":
                    expected.append(("tp_repr", name + "_print"))
                if length is not None:
                    expected.append(("tp_as_sequence", name + "_as_sequence"))
                expected += [("tp_flags", "Py_TPFLAGS_DEFAULT"), ("tp_methods", name + "methods")]
                slots = members(code(path), "PyTypeObject {}".format(type_object))
                self.assertEqual([slot for slot in slots if slot[0] != "ob_base"], expected)

    def test_each_handler_is_defined_in_its_types_file_and_nowhere_else(self):
        defined = {}
        for path in repository.cpp_files():
            if re.match("algebra/|arrays/|scene/|module/", path):
                for name in DEFINITION.findall(code(path)):
                    defined.setdefault(name, []).append(path)
        handlers = [(handler, "module/splines.cpp") for _, handler in FUNCTIONS
                    if handler.endswith(("_basis", "_step"))]
        for name, path, _, methods, length in TYPES:
            stems = [stem for _, stem in methods] + ["dealloc", "new"]
            if name != "scene":
                stems.append("print")
            if length is not None:
                handlers.append((length, path))
                stems += ["item", "ass_item"]
            handlers += [(name + "_" + stem, path) for stem in stems]
        handlers += [("compose", "algebra/transform.cpp"), ("invert", "algebra/transform.cpp")]
        for handler, path in handlers:
            self.assertEqual(defined.get(handler), [path], handler)
        # And no type's file has a handler that no table knows.
        known = {handler for handler, _ in handlers}
        for name, path, _, _, _ in TYPES:
            own = [handler for handler, paths in defined.items()
                   if path in paths and handler.startswith(name + "_")]
            self.assertEqual([handler for handler in own if handler not in known], [])

    def test_each_handler_stands_once_in_the_tables(self):
        named = []
        for path in repository.cpp_files():
            if re.match("algebra/|arrays/|scene/|module/", path):
                source = code(path)
                named += re.findall(r'METHOD\("\w+", (\w+)\)', source)
                named += re.findall(r'\{"\w+", (\w+), METH_VARARGS', source)
                named += re.findall(r"\.(?:sq_\w+|tp_dealloc|tp_repr) = (\w+),", source)
        # Functions, methods, slots of the sequences, deallocation, printing.
        self.assertEqual(len(named), 27 + (25 + 3 * 5 + 3 * 2 + 15 + 9 * 5) + 12 * 3 + 17 + 16)
        self.assertEqual({name for name in named if named.count(name) > 1}, set())

    def test_each_type_has_its_factory(self):
        for name, path, _, _, _ in TYPES:
            self.assertIn("new{}object".format(name), DEFINITION.findall(code(path)))

    def test_each_type_is_made_ready(self):
        body = table(code("module/vantorPM.cpp"), "PyTypeObject *const types[]")
        self.assertEqual(re.findall(r"&(\w+)", body),
                         [type_object for _, _, type_object, _, _ in TYPES])

    def test_parameter_lists_accept_the_types_in_their_order(self):
        body = table(code("scene/arglist.cpp"), "const Row rows[]")
        self.assertEqual(re.findall(r"\{&(\w+),", body), PARAMETERS)

    def test_every_file_that_raises_has_a_module_error_object_of_its_own(self):
        for path in [path for _, path, _, _, _ in TYPES] + ["scene/arglist.cpp"]:
            self.assertEqual(code(path).count("PyObject *const VantorError = nullptr;"), 1, path)
        assigned = [path for path in repository.cpp_files()
                    if re.search(r"\bVantorError = (?!nullptr)", code(path))]
        self.assertEqual(assigned, ["module/vantorPM.cpp"])


class Stub:
    """What the stub file declares."""

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

    def test_it_declares_the_27_functions_in_their_order(self):
        declared = [node.name for node in self.stub.tree.body
                    if isinstance(node, (ast.ClassDef, ast.FunctionDef))]
        self.assertEqual([name for name in declared if not name.startswith("_")],
                         ["error"] + [name for name, _ in FUNCTIONS])

    def test_each_type_has_its_methods_in_their_order(self):
        for name, _, _, methods, length in TYPES:
            with self.subTest(name):
                declared = list(self.stub.methods(name))
                self.assertEqual([method for method in declared if not method.startswith("_")],
                                 [method for method, _ in methods])
                special = ["__init__"]
                if name != "scene":
                    special.append("__repr__")
                if length is not None:
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

    def test_every_type_can_be_a_parameter_or_is_the_scene(self):
        # The stub says "vector, matrix, transform or array of this module" of the elements.
        types = [type_object for _, _, type_object, _, _ in TYPES]
        self.assertEqual(types[1:], PARAMETERS[3:])

    def test_no_keyword_is_offered(self):
        nodes = list(self.stub.functions.values())
        for name in self.stub.classes:
            nodes += self.stub.methods(name).values()
        for node in nodes:
            names = [argument.arg for argument in node.args.args if argument.arg != "self"]
            if not node.name.startswith("__") or node.name == "__init__":
                self.assertEqual((names, node.args.kwonlyargs, node.args.kwarg), ([], [], None),
                                 node.name)


def one_of_each(module):
    """An object of each type, by the type's name."""
    vector2, vector3 = module.vector2(0, 0), module.vector3(0, 0, 0)
    vector4 = module.vector4(0, 0, 0, 0)
    found = {
        "vector2": vector2, "vector3": vector3, "vector4": vector4,
        "matrix2": module.matrix2(vector2, vector2),
        "matrix3": module.matrix3(vector3, vector3, vector3),
        "matrix4": module.matrix4(vector4, vector4, vector4, vector4),
    }
    for name, _, _, _, _ in TYPES:
        if name not in found:
            found[name] = getattr(module, name)()
    return found


class RunTimeTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        repository.built(r"vantorPM\..*\.so")
        # The scene is given nonsense below.
        os.environ["VANTOR_DIAGNOSTICS"] = "silent"
        sys.path.insert(0, repository.IMPORT_FOLDER)
        try:
            import vantorPM
        finally:
            sys.path.remove(repository.IMPORT_FOLDER)
        cls.module = vantorPM
        cls.stub = Stub()
        cls.objects = one_of_each(vantorPM)

    def test_the_module_has_what_the_stub_declares(self):
        public = [name for name in vars(self.module) if not name.startswith("__")]
        self.assertEqual(public, [name for name, _ in FUNCTIONS] + ["error"])

    def test_each_type_has_the_methods_that_the_stub_declares(self):
        for name, value in self.objects.items():
            with self.subTest(name):
                self.assertEqual(type(value).__name__, name)
                present = [method for method in vars(type(value)) if not method.startswith("__")]
                declared = [method for method in self.stub.methods(name)
                            if not method.startswith("_")]
                self.assertEqual(present, declared)
                for method in self.stub.methods(name):
                    if method not in ("__init__", "__iter__"):
                        self.assertIn(method, vars(type(value)))

    def test_calls_take_as_many_arguments_as_the_stub_says(self):
        calls = [(name, getattr(self.module, name), node)
                 for name, node in self.stub.functions.items()]
        for name, value in self.objects.items():
            calls.append((name, getattr(self.module, name), self.stub.methods(name)["__init__"]))
            calls += [(name + "." + method, getattr(value, method), node)
                      for method, node in self.stub.methods(name).items()
                      if not method.startswith("_")]
        self.assertEqual(len(calls), 27 + 25 + 3 * 5 + 3 * 2 + 15 + 9 * 5)
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
