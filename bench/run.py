"""Measures the module, single operations beside its peers, memory, import and growth; the renderer.

    python3 bench/run.py [--build DIR] [--quick] [--only REGEX] [--render] [--json FILE]

The build folder is one that was configured with VANTOR_BENCH=ON for this interpreter. README.md
says how to read the tables.
"""

import argparse
import json
import os
import platform
import re
import subprocess
import sys
import tempfile

import imports
import large_scenes
import memory
import operations
import render
import render_peers
import tables

HERE = os.path.dirname(os.path.abspath(__file__))


class Setting:
    """What all parts need: where things are built, how long to measure, and which rows."""

    def __init__(self, options):
        self.build = os.path.abspath(options.build)
        self.paths = [os.path.join(self.build, folder) for folder in ("python", "bench")]
        self.quick = options.quick
        self.only = options.only

    def wants(self, row):
        return re.search(self.only, row) is not None

    def environment(self, library):
        """For a child with the embedded library, which lies beside the module, or the other one."""
        variables = {name: value for name, value in os.environ.items() if name != "LD_LIBRARY_PATH"}
        if library == "counting":
            variables["LD_LIBRARY_PATH"] = os.path.join(self.build, "counting")
        # The clock reads the time of all threads; a peer's idle threads must not add to it.
        variables["OPENBLAS_NUM_THREADS"] = variables["OMP_NUM_THREADS"] = "1"
        return variables

    def child(self, program, library="counting", **settings):
        """What a program of this folder finds out in a process of its own."""
        settings["paths"] = self.paths
        output = subprocess.run(
            [sys.executable, "-B", os.path.join(HERE, program), json.dumps(settings)],
            env=self.environment(library), stdout=subprocess.PIPE, check=True).stdout
        return json.loads(output)


class Figures:
    """The figures to reach, and what was measured."""

    def __init__(self):
        self.rows = []

    def add(self, what, measured, limit, reached, unit=""):
        self.rows.append({"figure": what, "measured": measured, "limit": limit,
                          "reached": reached, "unit": unit})

    def at_most(self, what, measured, limit, unit=""):
        self.add(what, measured, limit, measured <= limit, unit)

    def at_least(self, what, measured, limit, unit=""):
        self.add(what, measured, limit, measured >= limit, unit)

    def show(self):
        print("Figures to reach\n")
        tables.show(
            ("figure", "measured", "to reach", ""),
            [(row["figure"], tables.number(row["measured"]) + row["unit"],
              "{:g}{}".format(row["limit"], row["unit"]), "yes" if row["reached"] else "NO")
             for row in self.rows])


def describe_machine():
    model = platform.processor() or platform.machine()
    try:
        with open("/proc/cpuinfo") as info:
            model = re.search(r"model name\s*: (.*)", info.read()).group(1)
    except (OSError, AttributeError):
        pass
    return "{} {}, {} x {}, load {:.1f}".format(
        platform.python_implementation(), platform.python_version(), os.cpu_count(), model,
        os.getloadavg()[0])


def show_operations(setting, figures):
    found = setting.child("operations.py", only=setting.only, samples=9 if setting.quick else 81)
    nanoseconds = found["nanoseconds"]
    if not nanoseconds:
        return found
    if found["missing"]:
        print("Not built or not installed for this interpreter: {}.\n"
              .format(", ".join(found["missing"])))
    peers = [peer for peer in operations.PEERS[1:]
             if any(peer in row for row in nanoseconds.values())]

    print("Operations: ns each, least of the samples; x: times the module's\n")
    rows = []
    for name, row in nanoseconds.items():
        cells = [name, tables.number(row["vantorPM"])]
        for peer in peers:
            if peer in row:
                ratio = row[peer] / row["vantorPM"]
                times = "{:.1f}".format(ratio) if ratio < 99 else "{:.0f}".format(ratio)
                cells.append("{} x{:<4}".format(tables.number(row[peer]), times))
            else:
                cells.append("-" + 6 * " ")
        rows.append(cells)
    tables.show(["operation", "vantorPM"] + [peer + 3 * " " for peer in peers], rows)

    shares = {name: row["vantorPM"] / row["pybind11"] for name, row in nanoseconds.items()
              if "pybind11" in row and not name.startswith("newObject")}
    for name in sorted(shares, key=shares.get, reverse=True):
        # All that miss it, or the one that comes nearest.
        if shares[name] > 0.25 or name == max(shares, key=shares.get):
            figures.at_most("of pybind11's time: " + name, shares[name], 0.25)
    one, million = "newObject, [array of 1]", "newObject, [array of 1e6]"
    if one in nanoseconds and million in nanoseconds:
        figures.at_most("newObject, array of 1e6 against array of 1",
                        nanoseconds[million]["vantorPM"] / nanoseconds[one]["vantorPM"], 1.05)
    return found


def show_memory(setting, figures):
    # An object takes 64 bytes; the allocators' own records add a few tenths.
    limits = dict(zip(memory.ROWS, (8.5, 25, 64.5)))
    found = {}
    for row, (_, statements) in memory.ROWS.items():
        if setting.wants("memory/" + row):
            found[row] = {peer: setting.child("memory.py", row=row, peer=peer)
                          for peer in operations.PEERS if peer in statements}
    if not found:
        return found

    print("Memory: bytes, as the process grows\n")
    peers = [peer for peer in operations.PEERS
             if any(by_peer.get(peer) for by_peer in found.values())]
    tables.show(["bytes for"] + peers,
                [[row] + [tables.number(by_peer.get(peer)) for peer in peers]
                 for row, by_peer in found.items()])
    for row, by_peer in found.items():
        figures.at_most("bytes for " + row, by_peer["vantorPM"], limits[row])
    return found


def show_imports(setting, figures):
    embedded, counting = setting.environment("embedded"), setting.environment("counting")
    candidates = {
        "vantorPM": ("vantorPM", setting.paths, embedded),
        "vantorPM, counting library": ("vantorPM", setting.paths, counting),
        "pybind11": ("pybind11_peer", setting.paths, counting),
        "imath": ("imath", [], embedded),
        "numpy": ("numpy", [], embedded),
        "array": ("array", [], embedded),
    }
    candidates = {name: candidate for name, candidate in candidates.items()
                  if setting.wants("import/" + name)}
    if not candidates:
        return {}
    found = imports.measure(candidates, 11 if setting.quick else 41)

    print("Import: ms of a fresh interpreter, more than without the import\n")
    columns = ("wall minimum", "wall median", "processor minimum", "processor median")
    tables.show(("import",) + columns,
                [[name or "(an empty interpreter)"]
                 + [tables.number(times[column]) for column in columns]
                 for name, times in found.items()])
    if "vantorPM" in found:
        figures.at_most("import with the embedded library, processor minimum",
                        found["vantorPM"]["processor minimum"], 5, " ms")
    return found


def show_growth(setting, figures):
    sizes = [10 ** power for power in range(3, 7 if setting.quick else 8)]
    found = setting.child("growth.py", sizes=sizes, only=setting.only,
                          samples=9 if setting.quick else 81)
    if found:
        print("Growth: ns an element, by the number of elements\n")
        tables.show(["elements"] + ["1e{}".format(len(str(size)) - 1) for size in sizes],
                    [[row] + [tables.number(value) for value in values]
                     for row, values in found.items()])
    return found


def to_noises(pictures):
    """Cells with the seconds to each noise: of a path tracer at its last picture, else of each
    picture that is as good."""
    if "settings" not in pictures[0]:
        rows = [["" for _ in render.NOISES] for _ in pictures]
        rows[-1] = [tables.number(render.seconds_to(noise, pictures)) for noise in render.NOISES]
        return rows
    return [[tables.number(picture["seconds"] if picture["rmse"] <= noise else None)
             for noise in render.NOISES] for picture in pictures]


def show_pictures(renderers):
    rows = []
    for name, pictures in renderers.items():
        for picture, cells in zip(pictures, to_noises(pictures)):
            settings = picture.get("settings", "{} samples".format(picture.get("samples")))
            rows.append(["{}, {}".format(name, settings), tables.number(picture["seconds"]),
                         "{:.4f}".format(picture["rmse"]), "{:.4f}".format(picture["mean"])]
                        + cells)
    tables.show(["renderer, settings or samples a pixel", "s", "rmse", "mean"]
                + ["s to rmse {}".format(noise) for noise in render.NOISES], rows)


def show_render(setting, figures):
    folder = setting.paths[1]
    if not os.path.exists(os.path.join(folder, "render_cornell")):
        print("render_cornell is not built: no figures of the renderer.\n")
        return {}
    with tempfile.TemporaryDirectory() as files:
        missing, peers = render_peers.draw(files, setting.quick)
        found = render.measure(folder, setting.environment("embedded"), setting.quick,
                               [picture for peer in peers.values() for picture in peer["pictures"]])
    found["peers"] = peers

    print("Render: a Cornell box, {0} x {0} pixels, {1} threads; s of processor time / threads;\n"
          "rmse and mean of radiance\n"
          .format(render.SIDE, found["threads"]))
    for name, package in missing.items():
        print("{}: not installed (apt-get install {})\n".format(name, package))
    show_pictures({"vantorPM": found["pictures"], "vantorPM by radiosity": found["after radiosity"],
                   **{name: peer["pictures"] for name, peer in peers.items()}})
    if peers:
        print("Not counted, the start of a process: {}.\n".format(", ".join(
            "{} {} s".format(name, tables.number(peer["start"])) for name, peer in peers.items())))
    tables.show(["vantorPM", "measured"],
                [["ms a sample of all pixels", tables.number(found["seconds a sample"] * 1000)],
                 ["rays a pixel and sample", tables.number(found["rays a pixel and sample"])],
                 ["million rays a second, shaded", tables.number(found["million rays a second"])],
                 ["a second thread, times faster by processor time",
                  tables.number(found["speed-up, processor"])],
                 ["a second thread, times faster by the wall clock",
                  tables.number(found["speed-up, wall"])]])
    figures.at_least("Cornell box, million rays a second", found["million rays a second"], 20)
    for noise, seconds, limit in zip(render.NOISES, found["seconds to noise"], (2.5, 9)):
        figures.at_most("Cornell box, to rmse {}".format(noise), seconds, limit, " s")
    for noise, limit in ((0.005, 0.5), (0.002, 1)):
        figures.at_most("Cornell box by radiosity, to rmse {}".format(noise),
                        render.seconds_until(noise, found["after radiosity"]), limit, " s")
    return found


def show_large_scenes(setting, figures):
    rows = large_scenes.QUICK if setting.quick else large_scenes.ROWS
    found = {}
    for row in rows:
        runs = [setting.child("large_scenes.py", "embedded", row=row)
                for _ in range(1 if setting.quick else 3)]
        found[row] = {figure: min(run[figure] for run in runs) for figure in runs[0]}
    print("Large scenes, from a script's arrays to the first ray: s of processor time / threads;\n"
          "the same of a second pass, and of one after a small box was added;\n"
          "bytes of each triangle, point, box or pixel, beyond the arrays, at the most\n")
    columns = ["seconds", "again", "one more", "bytes"]
    tables.show(["scene", "s", "again", "box added", "bytes"],
                [[row] + [tables.number(needed[column]) for column in columns]
                 for row, needed in found.items()])
    row, seconds = large_scenes.AGAIN
    if row in found:
        figures.at_most(row + ", a second pass to the first ray", found[row]["again"], seconds,
                        " s")
    for row, seconds, size in large_scenes.LIMITS:
        if row in found:
            figures.at_most(row + ", to the first ray", found[row]["seconds"], seconds, " s")
            figures.at_most(row + ", bytes of each", found[row]["bytes"], size)
    return found


PARTS = {"operations": show_operations, "memory": show_memory, "import": show_imports,
         "growth": show_growth}


def main():
    parser = argparse.ArgumentParser(description="Measures the module, beside its peers.")
    parser.add_argument("--build", default=os.path.join(HERE, "..", "build", "release"),
                        help="the build folder (default: build/release)")
    parser.add_argument("--quick", action="store_true", help="fewer samples, smaller arrays")
    parser.add_argument("--only", default="", metavar="REGEX",
                        help="rows whose PART/NAME matches; parts: " + ", ".join(PARTS))
    parser.add_argument("--render", action="store_true",
                        help="also the embedded renderer, which takes minutes")
    parser.add_argument("--json", metavar="FILE", help="also write all that was measured")
    options = parser.parse_args()
    setting = Setting(options)

    if not imports.can_import("vantorPM", setting.paths):
        sys.exit("no vantorPM for {} in {}: build it with -DVANTOR_BENCH=ON -DVANTOR_PYTHON={}"
                 .format(sys.executable, setting.build, sys.executable))
    # Without the renderer that counts, newObject would be timed with another one's work.
    if not os.path.isdir(os.path.join(setting.build, "counting")):
        sys.exit("no counting renderer in {}: configure it with -DVANTOR_BENCH=ON"
                 .format(setting.build))

    print(describe_machine() + "\n")
    figures = Figures()
    found = {name: show(setting, figures) for name, show in PARTS.items()}
    if options.render:
        found["render"] = show_render(setting, figures)
        found["large scenes"] = show_large_scenes(setting, figures)
    if figures.rows:
        figures.show()
    if options.json:
        found["machine"], found["figures"] = describe_machine(), figures.rows
        with open(options.json, "w") as file:
            json.dump(found, file, indent=2)


if __name__ == "__main__":
    main()
