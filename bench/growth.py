"""How the arrays grow: the cost of an element in arrays of a thousand to ten million.

Run by run.py in a process of its own with the counting library behind the module; prints JSON.
"""

import json
import random
import re
import sys

import stopwatch

ARRAYS = ("floatarray", "vector3array")
ROWS = ("add", "get, random index", "for, each", "str, each",
        "newObject, [the array], a call")

INDEXES = 1000


def statements(module, kind, size, wanted):
    """The statements by row. The arrays are made only if one of them is wanted."""
    chosen = [row for row in ROWS if re.search(wanted, "growth/{}: {}".format(kind, row))]
    if not chosen:
        return {}
    value = 1.5 if kind == "floatarray" else module.vector3(1.5, 2.5, 3.5)
    make = getattr(module, kind)
    full = make()
    for i in range(size):
        full.add(i / 7 if kind == "floatarray" else module.vector3(i / 7, i / 9, i / 11))
    names = {"make": make, "x": value, "f": full, "s": module.scene(), "parameters": [full],
             "indexes": random.Random(1).choices(range(size), k=INDEXES)}
    texts = {
        "add": ("a.add(x)", {"fresh": "make()", "turns": size // stopwatch.COPIES}),
        "get, random index": ("for i in indexes:\n    f.get(i)", {"per": INDEXES}),
        "for, each": ("for e in f:\n    pass", {"per": size}),
        "str, each": ("str(f)", {"per": size}),
        "newObject, [the array], a call": ("s.newObject('mesh', parameters)", {}),
    }
    return {row: stopwatch.Statement(texts[row][0], names, **texts[row][1]) for row in chosen}


def measure(sizes, wanted, samples):
    """Nanoseconds by array and row, in the order of the sizes."""
    import vantorPM

    results = {}
    for kind in ARRAYS:
        of_sizes = [statements(vantorPM, kind, size, wanted) for size in sizes]
        for row in of_sizes[0]:
            taking = [of_size[row] for of_size in of_sizes]
            stopwatch.take_turns(taking, samples)
            results["{}: {}".format(kind, row)] = [one.nanoseconds for one in taking]
    return results


if __name__ == "__main__":
    settings = json.loads(sys.argv[1])
    sys.path[:0] = settings["paths"]
    stopwatch.settle()
    json.dump(measure(settings["sizes"], settings["only"], settings["samples"]), sys.stdout)
