"""What elements and objects hold in memory: the growth of a process that makes a million of them.

Run by run.py in a fresh process for each figure; prints bytes for each element as JSON.
"""

import ctypes
import gc
import json
import sys

import operations

COUNT = 1000000

# Of each row: what exists before the first count (places for the objects, which do not count), and
# for each peer what is made and what is then done for each i.
ROWS = {
    "an element of a floatarray of 1e6": ("", {
        "vantorPM": ("a = module.floatarray()", "a.add(i / 7)"),
        "pybind11": ("a = module.floatarray()", "a.add(i / 7)"),
        "imath": ("a = module.DoubleArray(COUNT)", "a[i] = i / 7"),
        "numpy": ("a = module.empty(COUNT)", "a[i] = i / 7"),
        "array": ("a = module.array('d')", "a.append(i / 7)"),
        "list": ("a = []", "a.append(i / 7)"),
    }),
    "an element of a vector3array of 1e6": ("", {
        "vantorPM": ("a = module.vector3array()", "a.add(module.vector3(i / 7, i / 9, i / 11))"),
        "pybind11": ("a = module.vector3array()", "a.add(module.vector3(i / 7, i / 9, i / 11))"),
        "imath": ("a = module.V3dArray(COUNT)", "a[i] = module.V3d(i / 7, i / 9, i / 11)"),
        "numpy": ("a = module.empty((COUNT, 3))", "a[i] = i / 7, i / 9, i / 11"),
        "list": ("a = []", "a.append([i / 7, i / 9, i / 11])"),
    }),
    "a vector3 object, 1e6 of them": ("a = [None] * COUNT", {
        "vantorPM": ("", "a[i] = module.vector3(i / 7, i / 9, i / 11)"),
        "pybind11": ("", "a[i] = module.vector3(i / 7, i / 9, i / 11)"),
        "imath": ("", "a[i] = module.V3d(i / 7, i / 9, i / 11)"),
        "numpy": ("", "a[i] = module.array([i / 7, i / 9, i / 11])"),
        "array": ("", "a[i] = module.array('d', (i / 7, i / 9, i / 11))"),
        "list": ("", "a[i] = [i / 7, i / 9, i / 11]"),
    }),
}


def resident_bytes():
    """The pages of this process that are in memory. VmRSS would be off by up to 64 pages."""
    with open("/proc/self/smaps_rollup") as rollup:
        for line in rollup:
            if line.startswith("Rss:"):
                return int(line.split()[1]) * 1024
    raise OSError("no Rss in /proc/self/smaps_rollup")


def measure(row, peer):
    """Bytes for each element, or None if the peer is missing."""
    try:
        module = operations.import_peer(peer)
    except ImportError:
        return None
    before, statements = ROWS[row]
    program = "{}\nfor i in range(COUNT):\n    {}".format(*statements[peer])

    # A small one first, which is kept: it takes what the interpreter's allocator has left over from
    # the start. The C library's is told to give back what it has.
    small = {"module": module, "COUNT": COUNT // 10}
    names = {"module": module, "COUNT": COUNT}
    for space in (small, names):
        exec(before, space)
    exec(program, small)
    gc.collect()
    getattr(ctypes.CDLL(None), "malloc_trim", lambda _: None)(0)

    empty = resident_bytes()
    exec(program, names)
    return (resident_bytes() - empty) / COUNT


if __name__ == "__main__":
    settings = json.loads(sys.argv[1])
    sys.path[:0] = settings["paths"]
    json.dump(measure(settings["row"], settings["peer"]), sys.stdout)
