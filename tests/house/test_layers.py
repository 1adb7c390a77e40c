"""Includes run downwards only, nothing goes round in a circle, and each library stays in its room.

An include that has to break a rule says why on its line: #include "x.h" // layers: the reason
"""

import re
import unittest

import repository

# Each room: its files, and the rooms that it may include besides itself. The first match counts.
ROOMS = [
    ("values", r"algebra/vt_\w+\.(h|cpp)|arrays/vt_instance_array\.h", []),
    ("renderer", r"renderer/.*", ["values"]),
    ("interpreter", r"interpreter/.*", []),
    ("algebra", r"algebra/.*", ["interpreter", "values"]),
    ("arrays", r"arrays/.*", ["algebra", "interpreter", "values"]),
    ("scene", r"scene/.*", ["arrays", "algebra", "interpreter", "renderer", "values"]),
    ("module", r"module/.*", ["scene", "arrays", "algebra", "interpreter", "renderer", "values"]),

    ("base", r"libvantor/base/.*", ["values"]),
    ("images", r"libvantor/images/.*", ["base"]),
    ("parameters", r"libvantor/parameters/.*", ["base", "renderer", "values"]),
    ("scattering", r"libvantor/scattering/.*", ["base"]),
    ("patterns", r"libvantor/patterns/.*", ["images", "base"]),
    ("shapes", r"libvantor/shapes/.*", ["parameters", "base", "renderer", "values"]),
    ("lights", r"libvantor/lights/.*", ["shapes", "images", "base", "values"]),
    ("description", r"libvantor/description/.*",
     ["lights", "shapes", "patterns", "scattering", "images", "parameters", "base", "renderer",
      "values"]),
    ("embree", r"libvantor/embree/.*", ["description", "shapes", "base", "values"]),
    ("world", r"libvantor/world/.*",
     ["lights", "embree", "description", "shapes", "patterns", "scattering", "base", "values"]),
    ("film", r"libvantor/film/.*", ["world", "description", "images", "base"]),
    ("denoising", r"libvantor/denoising/.*", ["film", "images", "base"]),
    ("integrators", r"libvantor/integrators/.*",
     ["film", "world", "lights", "embree", "description", "shapes", "patterns", "scattering",
      "images", "base"]),
    ("radiosity", r"libvantor/radiosity/.*",
     ["integrators", "world", "lights", "embree", "description", "shapes", "patterns", "scattering",
      "base"]),
    ("passes", r"libvantor/passes/.*",
     ["integrators", "denoising", "film", "world", "description", "images", "base"]),
    ("api", r"libvantor/api/.*",
     ["passes", "radiosity", "integrators", "denoising", "film", "world", "lights", "embree",
      "description", "shapes", "patterns", "scattering", "images", "parameters", "base", "renderer",
      "values"]),

    ("package", r"vantor/native/.*",
     ["arrays", "algebra", "interpreter", "images", "base", "renderer", "values"]),

    # Built from what another maker of a renderer gets, and nothing else.
    ("recording library", r"tests/recording/.*", ["renderer", "values"]),
    ("conformance", r"tests/conformance/.*", ["recording library", "renderer", "values"]),
    ("example renderer", r"examples/.*", ["renderer", "values"]),
    ("counting library", r"bench/counting_renderer/.*", ["renderer", "values"]),

    ("native tests", r"tests/native/.*", ["renderer", "values"]),
    ("renderer tests", r"tests/libvantor/.*",
     ["api", "passes", "radiosity", "integrators", "denoising", "film", "world", "lights", "embree",
      "description", "shapes", "patterns", "scattering", "images", "parameters", "base", "renderer",
      "values"]),
    ("probes", r"tests/probe/.*",
     ["module", "scene", "arrays", "algebra", "interpreter", "renderer", "values"]),
    ("peers", r"bench/.*", ["arrays", "renderer", "values"]),
]
OUTSIDE = r"(tests|bench|examples)/.*"

# Headers of other libraries: the only places that see them.
FOREIGN = [
    (r"Python\.h|pybind11/.*|structmember\.h",
     r"(interpreter|scene|module|vantor/native|tests/probe|bench)/.*|(algebra|arrays)/(?!vt_).*"),
    (r"embree\d/.*|rtcore.*", r"libvantor/embree/.*"),
    (r"png\.h|tiffio\.h|Imf.*|OpenEXR/.*|Imath/.*|Imath\w+\.h|half\.h|jpeglib\.h|turbojpeg\.h",
     r"libvantor/images/.*|vantor/native/tiff_reading.*|tests/libvantor/.*"),
    (r"assimp/.*", r"vantor/native/assimp_(reading|materials).*"),
    (r"(oneapi/)?tbb/.*", r"libvantor/base/.*|tests/libvantor/.*"),
]

INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)(.*)')
EXCUSED = re.compile(r"\s*// layers: \S.*")


def includes(lines):
    """(line number, own header or None, other header or None) of each include not excused."""
    for number, line in enumerate(lines, 1):
        found = INCLUDE.fullmatch(line)
        if found and not EXCUSED.fullmatch(found[3]):
            yield number, found[1], found[2]


def room_of(path):
    for name, pattern, below in ROOMS:
        if re.fullmatch(pattern, path):
            return name, below
    return None, []


def resolved(path, own, sources):
    """The path that a quoted include means. The product names its headers from the root; a program
    outside may name its own, and those of a library that it tests, by their bare names."""
    if own in sources or not re.fullmatch(OUTSIDE, path):
        return own
    beside = path.rpartition("/")[0] + "/" + own
    named_so = [other for other in sources
                if other.endswith("/" + own) and re.fullmatch(OUTSIDE, other)]
    return beside if beside in sources else named_so[0] if len(named_so) == 1 else own


def room_offences(sources):
    """The includes that go where they may not; sources are the lines of each path."""
    offences = []
    for path, lines in sources.items():
        room, below = room_of(path)
        if room is None:
            offences.append("{}: is in no room of the table".format(path))
            continue
        for number, own, _ in includes(lines):
            if own is None:
                continue
            header = resolved(path, own, sources)
            other_room = room_of(header)[0]
            if header not in sources:
                offences.append('{}:{}: no file "{}"'.format(path, number, own))
            elif other_room not in [room, *below]:
                offences.append("{}:{}: {} may not include {} ({})".format(
                    path, number, room, other_room, header))
    return offences


def foreign_offences(sources):
    """The headers of other libraries that are included outside their places."""
    offences = []
    for path, lines in sources.items():
        for number, own, other in includes(lines):
            name = other or own
            for header, places in FOREIGN:
                if re.fullmatch(header, name) and not re.fullmatch(places, path):
                    offences.append("{}:{}: {} has no place here".format(path, number, name))
    return offences


def cycle(sources):
    """The paths of one circle of includes, first and last the same; empty if there is none. Excuses
    do not count."""
    graph = {}
    for path, lines in sources.items():
        found = [line[1] for line in map(INCLUDE.fullmatch, lines) if line and line[1]]
        graph[path] = [header for header in (resolved(path, own, sources) for own in found)
                       if header in sources]
    finished = set()

    def walk(path, way):
        if path in way:
            return way[way.index(path):] + [path]
        if path in finished:
            return []
        for below in graph[path]:
            found = walk(below, way + [path])
            if found:
                return found
        finished.add(path)
        return []

    for start in graph:
        found = walk(start, [])
        if found:
            return found
    return []


class LayersTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sources = {path: repository.lines(path) for path in repository.cpp_files()}

    def test_there_are_sources_in_every_room_of_the_product(self):
        rooms = {room_of(path)[0] for path in self.sources}
        for name, pattern, _ in ROOMS:
            if not re.match(OUTSIDE, pattern):
                self.assertIn(name, rooms)

    def test_includes_run_downwards(self):
        self.assertEqual(room_offences(self.sources), [])

    def test_headers_of_other_libraries_stay_in_their_rooms(self):
        self.assertEqual(foreign_offences(self.sources), [])

    def test_no_circle_of_includes(self):
        self.assertEqual(cycle(self.sources), [])

    def test_every_header_is_guarded_by_pragma_once(self):
        for path, lines in self.sources.items():
            if path.endswith(".h"):
                self.assertIn("#pragma once", lines, path)

    def test_the_table_itself_has_no_circle(self):
        done = set()
        waiting = {name: set(below) for name, _, below in ROOMS}
        while waiting:
            free = [name for name, below in waiting.items() if below <= done]
            self.assertTrue(free, waiting)
            done.update(free)
            for name in free:
                del waiting[name]


class CheckerTest(unittest.TestCase):
    """What the checks above would find."""

    def assert_found(self, offences, *patterns):
        self.assertEqual(len(offences), len(patterns), offences)
        for offence, pattern in zip(offences, patterns):
            self.assertRegex(offence, pattern)

    def test_an_include_upwards_is_found(self):
        sources = {
            "algebra/vt_vector.h": ['#include "renderer/vt_bases.h"'],
            "renderer/vt_bases.h": ['#include "algebra/vt_vector.h"'],
            "libvantor/base/color.h": ['#include "libvantor/parameters/reader.h"'],
            "libvantor/parameters/reader.h": ['  #  include "interpreter/text.h"'],
            "interpreter/text.h": ['#include "interpreter/nothing.h"'],
            "attic/old.cpp": [],
            "tests/recording/call.cpp": ['#include "call.h"'],
            "tests/recording/call.h": ['#include "scene/scene_type.h"'],
            "scene/scene_type.h": ['#include "arglist.h"'],
            "scene/arglist.h": [],
        }
        self.assert_found(
            room_offences(sources), "values may not include renderer",
            "base may not include parameters", "parameters may not include interpreter",
            "no file .interpreter/nothing.h", "attic/old.cpp: is in no room",
            "recording library may not include scene", "no file .arglist.h")

    def test_an_excuse_needs_a_reason(self):
        include = '#include "scene/scene_type.h"'
        for comment, count in [("", 1), (" // layers: the reason", 0), (" // layers: ", 1),
                               (" // why not", 1)]:
            sources = {"scene/scene_type.h": [], "arrays/arrays.h": [include + comment]}
            self.assertEqual(len(room_offences(sources)), count, comment)

    def test_a_foreign_header_is_found(self):
        sources = {
            "algebra/vt_vector.h": ["#include <Python.h>"],
            "algebra/vectors.h": ["#include <Python.h>"],
            "libvantor/radiosity/path.cpp": ["#include <embree3/rtcore.h>",
                                          "#include <tbb/parallel_for.h>"],
            "libvantor/description/imager.cpp": ["#include <png.h>", "#include <ImfHeader.h>"],
            "libvantor/images/files.cpp": ["#include <png.h>", "#include <ImfHeader.h>"],
        }
        self.assert_found(foreign_offences(sources), r"vt_vector.h:1: Python.h", "rtcore.h",
                          "parallel_for.h", "png.h", "ImfHeader.h")

    def test_a_circle_is_found(self):
        sources = {
            "a.h": ['#include "b.h"'],
            "b.h": ["#include <vector>", '#include "c.h" // layers: an excuse does not help'],
            "c.h": ['#include "b.h"'],
        }
        self.assertEqual(cycle(sources), ["b.h", "c.h", "b.h"])
        self.assertEqual(cycle(dict(sources, **{"c.h": []})), [])


if __name__ == "__main__":
    unittest.main()
