"""What single operations cost: the module beside its peers, in one process.

Run by run.py in a process of its own with the counting library behind the module; prints JSON.
"""

import importlib
import json
import re
import sys

import stopwatch

# The order of the columns. The module and the pybind11 peer have the same interface.
PEERS = ("vantorPM", "pybind11", "imath", "numpy", "array", "list")
MODULES = {"pybind11": "pybind11_peer"}

MANY = 1000000
PRINTED = 100000

EACH = "for e in {}:\n    pass"


class Operation:
    """A row of the table.

    bound     the statement for the module and the pybind11 peer
    peers     the same for the others, by name
    group     rows of one group are sampled in turn, so that they can be compared with one another
    The rest is as for a Statement.
    """

    def __init__(self, name, bound, peers=(), group=None, fresh=(), **keywords):
        self.name = name
        self.statements = dict(peers, vantorPM=bound, pybind11=bound)
        self.group = group or name
        self.fresh = dict(fresh)
        self.keywords = keywords

    def statement(self, peer, names):
        return stopwatch.Statement(self.statements[peer], names, fresh=self.fresh.get(peer),
                                   **self.keywords)


def everywhere(statement, *but):
    return {peer: statement for peer in ("imath", "numpy", "array", "list") if peer not in but}


def caught(statement):
    return "try:\n    {}\nexcept IndexError:\n    pass".format(statement)


def adding(name, value, fresh, peers):
    """A row for appending: whole arrays of MANY elements, each begun empty."""
    return Operation(name, "a.add({})".format(value),
                     {peer: "a.append({})".format(value) for peer in peers},
                     fresh=dict(peers, vantorPM=fresh, pybind11=fresh),
                     turns=MANY // stopwatch.COPIES)


OPERATIONS = [
    Operation("vector3(1.5, 2.5, 3.5)", "vector3(x, y, z)",
              {"imath": "V3d(x, y, z)", "numpy": "array([x, y, z])",
               "array": "array('d', (x, y, z))", "list": "[x, y, z]"}),
    Operation("vector3(1, 2, 3)", "vector3(i, j, k)",
              {"imath": "V3d(i, j, k)", "numpy": "array([i, j, k], float)",
               "array": "array('d', (i, j, k))"}),
    Operation("v.get(1)", "v.get(1)", {"numpy": "v.item(1)"}),
    Operation("v.set(1, 1.5)", "v.set(1, x)"),
    Operation("v[1]", "v[1]", everywhere("v[1]")),
    Operation("v[1] = 1.5", "v[1] = x", everywhere("v[1] = x")),
    Operation("v[7], IndexError caught", caught("v[7]"), everywhere(caught("v[7]"))),
    Operation("len(v)", "len(v)", everywhere("len(v)")),
    Operation("v.length()", "v.length()", {"imath": "v.length()", "numpy": "norm(v)"}),
    Operation("v.sqlength()", "v.sqlength()", {"imath": "v.length2()", "numpy": "v.dot(v)"}),
    Operation("v.normalize()", "v.normalize()",
              {"imath": "v.normalize()", "numpy": "v /= norm(v)"}),
    Operation("list(v)", "list(v)", dict(everywhere("list(v)"), numpy="v.tolist()")),
    Operation("str(v)", "str(v)", everywhere("str(v)")),
    Operation("matrix4(4 rows)", "matrix4(row, row, row, row)",
              {"imath": "M44d(row, row, row, row)", "numpy": "array([row, row, row, row])"}),
    Operation("m.get(2)", "m.get(2)", {"imath": "m[2]", "numpy": "m[2]"}),
    Operation("m.set(2, vector4)", "m.set(2, row)", {"numpy": "m[2] = row"}),
    Operation("str(m)", "str(m)", {"imath": "str(m)", "numpy": "str(m)"}),
    Operation("t.compose(u)", "t.compose(u)", {"imath": "t *= u", "numpy": "matmul(t, u, out=t)"}),
    Operation("t.invert()", "t.invert()", {"imath": "t.invert()"}),
    Operation("compose(t, u)", "compose(t, u)", {"imath": "t * u", "numpy": "t @ u"}),
    Operation("invert(t)", "invert(t)", {"imath": "t.inverse()", "numpy": "inv(t)"}),

    adding("floatarray: add, 1e6 times", "x", "floatarray()",
           {"array": "array('d')", "list": "[]"}),
    Operation("floatarray: get(10)", "f.get(10)", {"numpy": "f.item(10)"}),
    Operation("floatarray: get(999999)", "f.get(999999)", {"numpy": "f.item(999999)"}),
    Operation("floatarray: f[10]", "f[10]", everywhere("f[10]")),
    Operation("floatarray: f[999999]", "f[999999]", everywhere("f[999999]")),
    Operation("floatarray: set(500000, 1.5)", "f.set(500000, x)"),
    # The module makes an integer of what it is given here; a float takes the longer way.
    Operation("floatarray: f[500000] = 1", "f[500000] = i", everywhere("f[500000] = i")),
    Operation("floatarray: f[500000] = 1.5", "f[500000] = x", everywhere("f[500000] = x")),
    Operation("floatarray: len(f)", "len(f)", everywhere("len(f)")),
    Operation("floatarray: for, each", EACH.format("f"), everywhere(EACH.format("f")), per=MANY),
    # Not imath and numpy: they print an address, or a few elements of many.
    Operation("floatarray: str, each", "str(g)", everywhere("str(g)", "imath", "numpy"),
              per=PRINTED),

    adding("vector3array: add, 1e6 times", "v", "vector3array()", {"list": "[]"}),
    Operation("vector3array: get(10)", "w.get(10)"),
    Operation("vector3array: get(999999)", "w.get(999999)"),
    Operation("vector3array: w[10]", "w[10]", everywhere("w[10]", "array")),
    Operation("vector3array: w[999999]", "w[999999]", everywhere("w[999999]", "array")),
    Operation("vector3array: w[500000] = v", "w[500000] = v",
              everywhere("w[500000] = v", "array")),
    Operation("vector3array: for, each", EACH.format("w"), everywhere(EACH.format("w"), "array"),
              per=MANY),
    Operation("vector3array: str, each", "str(h)", {"list": "str(h)"},
              per=PRINTED),

    Operation("newObject, []", "s.newObject('mesh', [])", group="newObject"),
    Operation("newObject, 16 mixed", "s.newObject('mesh', mixed)", group="newObject"),
    Operation("newObject, [array of 1]", "s.newObject('mesh', one)", group="newObject"),
    Operation("newObject, [array of 1e6]", "s.newObject('mesh', million)", group="newObject"),
]

NUMBERS = {"x": 1.5, "y": 2.5, "z": 3.5, "i": 1, "j": 2, "k": 3}


def element(i):
    """Element i of the arrays: numbers of many digits, no two alike."""
    return i / 7


def vector_element(i):
    return i / 7, i / 9, i / 11


def bound_names(module):
    """What the statements use, made with the module or with the pybind11 peer."""
    def floats(count):
        array = module.floatarray()
        for i in range(count):
            array.add(element(i))
        return array

    def vectors(count):
        array = module.vector3array()
        for i in range(count):
            array.add(module.vector3(*vector_element(i)))
        return array

    vector = module.vector3(1.5, 2.5, 3.5)
    row = module.vector4(1.5, 2.5, 3.5, 4.5)
    matrix = module.matrix4(row, row, row, row)
    # Of determinant 1, so that composing again and again neither grows nor vanishes.
    transform = module.transform().scaling(module.vector3(-1.0, 1.0, -1.0))
    names = dict(NUMBERS)
    for name in ("vector3", "matrix4", "compose", "invert", "floatarray", "vector3array"):
        names[name] = getattr(module, name)
    names.update(
        v=vector, row=row, m=matrix, t=module.compose(transform, transform), u=transform,
        f=floats(MANY), g=floats(PRINTED), w=vectors(MANY), h=vectors(PRINTED), s=module.scene(),
        mixed=["resolution", 3, "radius", 0.5, "center", vector, "plane", row, "basis", matrix,
               "placement", transform, "weights", floats(1), "points", vectors(1)],
        one=[vectors(1)], million=[vectors(MANY)])
    return names


def imath_names(imath):
    row = (1.5, 2.5, 3.5, 4.5)
    flip = imath.M44d()
    flip.setScale(imath.V3d(-1.0, 1.0, -1.0))
    floats, vectors = imath.DoubleArray(MANY), imath.V3dArray(MANY)
    for i in range(MANY):
        floats[i] = element(i)
        vectors[i] = imath.V3d(*vector_element(i))
    return dict(NUMBERS, V3d=imath.V3d, M44d=imath.M44d, v=imath.V3d(1.5, 2.5, 3.5), row=row,
                m=imath.M44d(row, row, row, row), t=flip * flip, u=flip, f=floats, w=vectors)


def numpy_names(numpy):
    row = (1.5, 2.5, 3.5, 4.5)
    flip = numpy.diag([-1.0, 1.0, -1.0, 1.0])
    return dict(NUMBERS, array=numpy.array, matmul=numpy.matmul, norm=numpy.linalg.norm,
                inv=numpy.linalg.inv, v=numpy.array([1.5, 2.5, 3.5]), row=row,
                m=numpy.array([row, row, row, row]), t=flip @ flip, u=flip,
                f=numpy.array([element(i) for i in range(MANY)]),
                w=numpy.array([vector_element(i) for i in range(MANY)]))


def array_names(array):
    return dict(NUMBERS, array=array.array, v=array.array("d", (1.5, 2.5, 3.5)),
                f=array.array("d", map(element, range(MANY))),
                g=array.array("d", map(element, range(PRINTED))))


def list_names(_):
    floats = [element(i) for i in range(MANY)]
    vectors = [list(vector_element(i)) for i in range(MANY)]
    return dict(NUMBERS, v=[1.5, 2.5, 3.5], f=floats, g=floats[:PRINTED], w=vectors,
                h=vectors[:PRINTED])


MAKE_NAMES = {"vantorPM": bound_names, "pybind11": bound_names, "imath": imath_names,
              "numpy": numpy_names, "array": array_names, "list": list_names}


def import_peer(peer):
    """The peer's module, None for the built-in list. ImportError if it is not installed."""
    return None if peer == "list" else importlib.import_module(MODULES.get(peer, peer))


def measure(wanted, samples):
    """Nanoseconds by row and peer, and the peers that are missing."""
    chosen = [operation for operation in OPERATIONS
              if re.search(wanted, "operations/" + operation.name)]
    names, missing = {}, []
    for peer in PEERS if chosen else ():
        try:
            names[peer] = MAKE_NAMES[peer](import_peer(peer))
        except ImportError:
            if peer == "vantorPM":
                raise
            missing.append(peer)

    groups = {}
    for operation in chosen:
        groups.setdefault(operation.group, []).append(operation)
    results = {}
    for operations in groups.values():
        statements = {}
        for operation in operations:
            for peer in names:
                if peer in operation.statements:
                    statements[operation.name, peer] = operation.statement(peer, names[peer])
        stopwatch.take_turns(list(statements.values()), samples)
        for (name, peer), statement in statements.items():
            results.setdefault(name, {})[peer] = statement.nanoseconds
    return {"nanoseconds": results, "missing": missing}


if __name__ == "__main__":
    settings = json.loads(sys.argv[1])
    sys.path[:0] = settings["paths"]
    stopwatch.settle()
    json.dump(measure(settings["only"], settings["samples"]), sys.stdout)
