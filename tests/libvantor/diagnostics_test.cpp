// Every diagnostic: the call, the place in its list, and what would be right; and the words of one of each kind.
#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/base/report.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

namespace {

using scripted::errors_of;
using scripted::List;
using scripted::Scene;

const VtVector3 zero(0, 0, 0);

template <class... Values> std::string camera_errors(const char *type, const Values &...values) {
    Scene scene;
    List list(values...);
    return errors_of([&] { EXPECT_EQ(scene.NewCamera(type, list), 1); });
}

template <class... Values> std::string object_errors(const char *type, const Values &...values) {
    Scene scene;
    List list(values...);
    return errors_of([&] { EXPECT_EQ(scene.NewObject(type, list), 1); });
}

template <class... Values> std::string light_errors(const char *type, const Values &...values) {
    Scene scene;
    List list(values...);
    return errors_of([&] { EXPECT_EQ(scene.NewLight(type, list), 1); });
}

TEST(Diagnostics, NothingToSay) {
    EXPECT_EQ(camera_errors("perspective", "position", VtVector3(0, 0, 3), "target", zero, "fov", 40.0), "");
    EXPECT_EQ(camera_errors("perspective", "fov", 40), "");
    EXPECT_EQ(light_errors("point", "intensity", VtVector3(1, 2, 3)), "");
    EXPECT_EQ(light_errors("point", "intensity", 3), "");
    EXPECT_EQ(object_errors("box"), "");
}

// The words of each kind of diagnostic, once. All other tests look at what a line is about.
TEST(Diagnostics, Wording) {
    EXPECT_EQ(light_errors("pont"), "vantor: newLight \"pont\": unknown type (did you mean \"point\"?)\n");
    EXPECT_EQ(camera_errors(""),
              "vantor: newCamera \"\": unknown type (known: \"orthographic\", \"panorama\", \"perspective\")\n");
    EXPECT_EQ(camera_errors("perspective", "fo", 45.0),
              "vantor: newCamera \"perspective\": item 0: unknown parameter \"fo\" (did you mean \"fov\"?)\n");
    EXPECT_EQ(camera_errors("perspective", 5),
              "vantor: newCamera \"perspective\": item 0: expected a parameter name, got an integer\n");
    EXPECT_EQ(camera_errors("perspective", "fov"),
              "vantor: newCamera \"perspective\": item 0: parameter \"fov\" has no value (expected a number)\n");
    EXPECT_EQ(light_errors("point", "intensity", "bright"),
              "vantor: newLight \"point\": item 1: parameter \"intensity\" "
              "expects a colour (vector3 or number), got a string\n");
    EXPECT_EQ(camera_errors("perspective", "fov", 190.0), "vantor: newCamera \"perspective\": item 1: parameter "
                                                          "\"fov\" is out of range: expected 0.001 to 179, got 190\n");
    EXPECT_EQ(camera_errors("perspective", "fov_axis", "hor"),
              "vantor: newCamera \"perspective\": item 1: parameter \"fov_axis\": unknown word \"hor\" (did you mean "
              "\"horizontal\"?)\n");
    EXPECT_EQ(object_errors("mesh"), "vantor: newObject \"mesh\": parameter \"points\" is missing (expected a "
                                     "vector3array: the corners of the faces)\n");
    Scene scene;
    EXPECT_EQ(errors_of([&] { scene.AddObject(77); }),
              "vantor: addObject: no entity has the id 77 (expected the id of an object)\n");
}

// A mistake in a loop is a line, and a count of how often it came again; the next pass says what is left to say.
TEST(Diagnostics, RepeatedMistakesAreCounted) {
    Scene scene;
    const std::string lines = errors_of([&] {
        for (int i = 0; i < 100000; ++i) {
            scene.AddObject(77);
            scene.AddObject(78);
        }
        scene.Radiosity();
    });
    long said = 0;
    std::istringstream stream(lines);
    static const std::regex more(R"(.*\((?:and )?(\d+) (?:more )?times?\b.*)");
    int count = 0;
    for (std::string line; std::getline(stream, line); ++count) {
        std::smatch found;
        if (std::regex_match(line, found, more))
            said += std::stol(found[1]);
        said += line.find(" more time") == std::string::npos && line.find("addObject") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(said, 200000);
    EXPECT_LT(count, 2000);
}

TEST(Diagnostics, LinesAreFitForATerminal) {
    using vantor::printable;
    EXPECT_EQ(printable("gr\u00fcn \u20ac \U0001f600"), "gr\u00fcn \u20ac \U0001f600");
    EXPECT_EQ(printable("a\nb\tc\x1b[2J\x7f"), "a b c?[2J?");
    EXPECT_EQ(printable("\xc2\x9b"), "??");                // a control character of two bytes
    EXPECT_EQ(printable("\xc0\xaf\xed\xa0\x80"), "?????"); // longer than need be; half of a pair
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "????");      // beyond the last character
    EXPECT_EQ(printable("cut \xe2\x82"), "cut ??");
}

// Words of other programs, whose letters are not those of the right one.
TEST(Diagnostics, HabitsAreUnderstood) {
    for (const auto &[wrong, right] : {std::pair{"cube", "box"},
                                       {"ball", "sphere"},
                                       {"plane", "quad"},
                                       {"point", "points"},
                                       {"particles", "points"},
                                       {"pointcloud", "points"},
                                       {"spheres", "points"}})
        expect_diagnostics(object_errors(wrong), {{.call = "newObject", .type = wrong, .suggestion = right}});
    Scene scene;
    List list;
    for (const auto &[wrong, right] :
         {std::pair{"glass", "dielectric"}, {"mirror", "conductor"}, {"metal", "conductor"}})
        expect_diagnostics(errors_of([&, type = wrong] { scene.NewInterface(type, list); }),
                           {{.call = "newInterface", .type = wrong, .suggestion = right}});
    expect_diagnostics(
        camera_errors("perspective", "look_at", zero),
        {{.call = "newCamera", .type = "perspective", .item = 0, .parameter = "look_at", .suggestion = "target"}});
    // Each light has its own quantity.
    for (const auto &[type, right] : {std::pair{"point", "intensity"}, {"area", "radiance"}, {"distant", "irradiance"}})
        expect_diagnostics(light_errors(type, "power", 5.0),
                           {{.call = "newLight", .type = type, .item = 0, .parameter = "power", .suggestion = right}});
    // What was meant is not missing as well.
    List file("file", "picture.png");
    expect_diagnostics(errors_of([&] { scene.NewImager("file", file); }),
                       {{.call = "newImager", .type = "file", .item = 0, .parameter = "file", .suggestion = "name"}});
}

TEST(Diagnostics, AnInterfaceIsNoMaterial) {
    Scene scene;
    List list;
    for (const auto &[wrong, right] : {std::pair{"dielectric", "dielectric"}, {"glass", "dielectric"}})
        EXPECT_EQ(errors_of([&, type = wrong] { scene.NewMaterial(type, list); }),
                  "vantor: newMaterial \"" + std::string(wrong) + "\": unknown type (did you mean newInterface \"" +
                      right + "\", as the interface of a material \"surface\"?)\n");
}

TEST(Diagnostics, Types) {
    expect_diagnostics(light_errors("pont"), {{.call = "newLight", .type = "pont", .suggestion = "point"}});
    expect_diagnostics(light_errors("candle"), {{.call = "newLight", .type = "candle", .says = "known: \"area\""}});
    expect_diagnostics(light_errors(nullptr), {{.call = "newLight", .says = "known: \"area\""}});
    expect_diagnostics(camera_errors(""), {{.call = "newCamera", .says = "known: \"orthographic\""}});

    Scene scene;
    List list;
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewTexture("wood"), 1); }),
                       {{.call = "newTexture", .type = "wood"}});
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewPattern("wood", list), 2); }),
                       {{.call = "newPattern", .type = "wood", .says = "known: \"checker\""}});
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewTrimmer("knife", list), 3); }),
                       {{.call = "newTrimmer", .type = "knife", .says = "known: \"box\""}});
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewInterior(nullptr, list), 4); }),
                       {{.call = "newInterior", .says = "known: \"homogeneous\""}});
}

TEST(Diagnostics, ParameterNames) {
    expect_diagnostics(
        camera_errors("perspective", "position", zero, "fo", 45.0),
        {{.call = "newCamera", .type = "perspective", .item = 2, .parameter = "fo", .suggestion = "fov"}});
    // What begins or ends like a name is nearer than what has some letters of it.
    expect_diagnostics(
        camera_errors("perspective", "pos", zero),
        {{.call = "newCamera", .type = "perspective", .item = 0, .parameter = "pos", .suggestion = "position"}});
    expect_diagnostics(camera_errors("perspective", "camera_target", zero), {{.call = "newCamera",
                                                                              .type = "perspective",
                                                                              .item = 0,
                                                                              .parameter = "camera_target",
                                                                              .suggestion = "target"}});
    expect_diagnostics(
        camera_errors("perspective", "lens", 45.0, "fov", 30),
        {{.call = "newCamera", .type = "perspective", .item = 0, .parameter = "lens", .says = "known: \"position\""}});
    expect_diagnostics(camera_errors("perspective", 5, "fov", 30, zero),
                       {{.call = "newCamera", .type = "perspective", .item = 0},
                        {.call = "newCamera", .type = "perspective", .item = 3}});
    expect_diagnostics(
        camera_errors("perspective", "fov"),
        {{.call = "newCamera", .type = "perspective", .item = 0, .parameter = "fov", .says = "no value"}});
    expect_diagnostics(
        camera_errors("perspective", "fov", 30, "fov", 40),
        {{.call = "newCamera", .type = "perspective", .item = 3, .parameter = "fov", .says = "given twice"}});
}

TEST(Diagnostics, ParameterValues) {
    expect_diagnostics(
        camera_errors("perspective", "fov", zero),
        {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "fov", .says = "vector3"}});
    expect_diagnostics(light_errors("point", "position", 1.0),
                       {{.call = "newLight", .type = "point", .item = 1, .parameter = "position", .says = "vector3"}});
    expect_diagnostics(light_errors("point", "intensity", "bright"),
                       {{.call = "newLight", .type = "point", .item = 1, .parameter = "intensity", .says = "string"}});
    expect_diagnostics(camera_errors("perspective", "fov", 190.0),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "fov", .says = "190"}});
    expect_diagnostics(camera_errors("perspective", "fov", std::nan("")),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "fov", .says = "nan"}});
    expect_diagnostics(
        light_errors("distant", "direction", zero),
        {{.call = "newLight", .type = "distant", .item = 1, .parameter = "direction", .says = "not all 0"}});
    expect_diagnostics(light_errors("area", "radiance", VtVector3(1, -0.5, 1)),
                       {{.call = "newLight", .type = "area", .item = 1, .parameter = "radiance", .says = "0 or more"}});
    expect_diagnostics(object_errors("mesh"),
                       {{.call = "newObject", .type = "mesh", .parameter = "points", .says = "is missing"}});
}

TEST(Diagnostics, TextsOfScriptsStayOnOneLine) {
    expect_diagnostics(camera_errors("a\nb\x1b"),
                       {{.call = "newCamera", .type = "a b?", .says = "known: \"orthographic\""}});
    const std::string name(1000, 'x');
    expect_diagnostics(camera_errors("perspective", name.c_str(), 1), {{.call = "newCamera",
                                                                        .type = "perspective",
                                                                        .item = 0,
                                                                        .parameter = std::string(60, 'x') + "...",
                                                                        .says = "known: \"position\""}});
    // Not cut inside a character.
    std::string euros;
    for (int i = 0; i < 40; ++i)
        euros += "\u20ac";
    EXPECT_EQ(camera_errors(("a" + euros).c_str()).find("\xe2\x82..."), std::string::npos);
    // Bytes that no character begins with.
    expect_diagnostics(camera_errors(std::string(61, '\x80').c_str()),
                       {{.call = "newCamera", .type = "...", .says = "known: \"orthographic\""}});
}

TEST(Diagnostics, Cameras) {
    expect_diagnostics(camera_errors("perspective", "target", zero),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "target"}});
    expect_diagnostics(camera_errors("perspective", "up", VtVector3(0, 0, 2)),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "up"}});
    expect_diagnostics(camera_errors("perspective", "target", VtVector3(0, 1, 0)),
                       {{.call = "newCamera", .type = "perspective"}});
    expect_diagnostics(
        camera_errors("perspective", "fov_axis", "hor"),
        {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "fov_axis", .suggestion = "horizontal"}});
    VtTransform large;
    large.Scaling({1e6, 1e6, 1e6});
    Scene scene;
    scene.TransformBegin(large);
    expect_diagnostics(errors_of([&] {
                           List list("aperture_radius", 1e4);
                           scene.NewCamera("perspective", list);
                       }),
                       {{.call = "newCamera", .type = "perspective", .says = "beyond 1e+09"}});
    expect_diagnostics(errors_of([&] {
                           List list("height", 1e4);
                           scene.NewCamera("orthographic", list);
                       }),
                       {{.call = "newCamera", .type = "orthographic", .says = "beyond 1e+09"}});
}

TEST(Diagnostics, Meshes) {
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {NAN, 0, 0}, {2, 0, 0}});
    const auto errors = [&](const std::vector<VtLong> &indices) {
        scripted::Indices triangles;
        scripted::fill(triangles, indices);
        return object_errors("mesh", "points", points, "triangles", triangles);
    };
    EXPECT_EQ(errors({0, 1, 2}), "");
    expect_diagnostics(errors({0, 1, 2, 0, 1, 5, 0, 1, -1}), {{.call = "newObject",
                                                               .type = "mesh",
                                                               .item = 3,
                                                               .parameter = "triangles",
                                                               .says = "leaves out 2 triangles, the first of them 1"}});
    expect_diagnostics(
        errors({0, 1, 2, 0, 1, 3}),
        {{.call = "newObject", .type = "mesh", .item = 1, .parameter = "points", .says = "leaves out triangle 1"}});
    expect_diagnostics(
        errors({0, 1, 4, 0, 1, 2}),
        {{.call = "newObject", .type = "mesh", .item = 3, .parameter = "triangles", .says = "leaves out triangle 0"}});
    expect_diagnostics(
        errors({0, 1, 2, 0, 1}),
        {{.call = "newObject", .type = "mesh", .item = 3, .parameter = "triangles", .says = "has 5 indices"}});
    expect_diagnostics(errors({}), {{.call = "newObject", .type = "mesh"}});

    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 2});
    scripted::Points normals;
    scripted::fill(normals, {{0, 0, 1}, {0, 0, 1}});
    VtInstanceArray<VtVector2> uvs;
    expect_diagnostics(
        object_errors("mesh", "points", points, "triangles", triangles, "normals", normals, "uvs", uvs),
        {{.call = "newObject", .type = "mesh", .item = 5, .parameter = "normals", .says = "has 2 elements"},
         {.call = "newObject", .type = "mesh", .item = 7, .parameter = "uvs", .says = "has 0 elements"}});
    scripted::fill(normals, {{0, 0, 1}, {0, 0, 0}, {0, 0, 1}});
    expect_diagnostics(
        object_errors("mesh", "points", points, "triangles", triangles, "normals", normals),
        {{.call = "newObject", .type = "mesh", .item = 5, .parameter = "normals", .says = "unusable vectors"}});
}

TEST(Diagnostics, OneMistakeIsOneLine) {
    const VtMatrix4 matrix;
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    // A required parameter that is given wrongly is not missing besides; one that is not named at all is.
    expect_diagnostics(object_errors("mesh", "points", matrix),
                       {{.call = "newObject", .type = "mesh", .item = 1, .parameter = "points"}});
    expect_diagnostics(
        object_errors("mesh", "pionts", points),
        {{.call = "newObject", .type = "mesh", .item = 0, .parameter = "pionts", .suggestion = "points"}});
    expect_diagnostics(object_errors("mesh"),
                       {{.call = "newObject", .type = "mesh", .parameter = "points", .says = "is missing"}});
    expect_diagnostics(camera_errors("perspective", "focus_distance", 3.0), {{.call = "newCamera",
                                                                              .type = "perspective",
                                                                              .item = 1,
                                                                              .parameter = "focus_distance",
                                                                              .says = "without \"aperture_radius\""}});
    Scene scene;
    expect_diagnostics(errors_of([&] { scene.diffuse(8); }),
                       {{.call = "newMaterial", .type = "diffuse", .item = 1, .parameter = "reflectance"}});
}

TEST(Diagnostics, ValuesThatOthersMakeUseless) {
    Scene scene;
    scripted::List metal("metal", "gold", "k", 3.0);
    expect_diagnostics(
        errors_of([&] { scene.NewInterface("conductor", metal); }),
        {{.call = "newInterface", .type = "conductor", .item = 3, .parameter = "k", .says = "beside \"metal\""}});
    scripted::List custom("metal", "custom", "k", 3.0);
    EXPECT_EQ(errors_of([&] { scene.NewInterface("conductor", custom); }), "");
    scripted::List matt;
    scripted::List flat("interface", static_cast<int>(scene.NewInterface("diffuse", matt)), "bump_height", 0.5);
    expect_diagnostics(errors_of([&] { scene.NewMaterial("surface", flat); }), {{.call = "newMaterial",
                                                                                 .type = "surface",
                                                                                 .item = 3,
                                                                                 .parameter = "bump_height",
                                                                                 .says = "without \"bump\""}});
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    VtInstanceArray<double> radii;
    for (int i = 0; i < 4; ++i)
        radii.Add(0.1);
    expect_diagnostics(
        object_errors("curves", "points", points, "radii", radii, "radius", 0.2),
        {{.call = "newObject", .type = "curves", .item = 5, .parameter = "radius", .says = "beside \"radii\""}});
}

TEST(Diagnostics, MeshWithoutPoints) {
    const scripted::Points none;
    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 2});
    expect_diagnostics(
        object_errors("mesh", "points", none, "triangles", triangles),
        {{.call = "newObject", .type = "mesh", .item = 3, .parameter = "triangles", .says = "leaves out triangle 0"}});
}

// An array whose growth has failed: the size is the new one all the same.
template <class Element> struct ShortArray : VtInstanceArray<Element> {
    ShortArray(VtLong stored, VtLong claimed) {
        this->SetSize(stored);
        this->size = claimed;
    }
    const VtInstanceArray<Element> &array() const { return *this; }
};

TEST(Diagnostics, ArraysWithLessStorageThanTheirSizeSays) {
    constexpr VtLong largest = std::numeric_limits<VtLong>::max();
    const std::pair<VtLong, VtLong> cases[] = {{0, largest}, {3, 1 << 30}, {3, 4}, {0, 4}, {0, -1}};
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 2});
    for (const auto &one : cases) {
        const VtLong stored = one.first;
        const VtLong claimed = one.second;
        const ShortArray<VtVector3> vectors(stored, claimed);
        const ShortArray<VtVector2> pairs(stored, claimed);
        const ShortArray<VtLong> numbers(stored, claimed);
        const auto expect_unseen = [&](const std::string &errors, const char *type, int item, const char *name) {
            expect_diagnostics(errors, {{.call = "newObject",
                                         .type = type,
                                         .item = item,
                                         .parameter = name,
                                         .says = "of which " + std::to_string(stored)}});
        };
        expect_unseen(object_errors("mesh", "points", vectors.array(), "triangles", triangles), "mesh", 1, "points");
        expect_unseen(object_errors("mesh", "points", points, "triangles", numbers.array()), "mesh", 3, "triangles");
        expect_unseen(object_errors("mesh", "points", points, "triangles", triangles, "normals", vectors.array()),
                      "mesh", 5, "normals");
        expect_unseen(object_errors("mesh", "points", points, "triangles", triangles, "uvs", pairs.array()), "mesh", 5,
                      "uvs");
        expect_unseen(object_errors("quad", "corners", vectors.array()), "quad", 1, "corners");
    }
}

TEST(Diagnostics, AnObjectOfAShortArrayIsNotSeen) {
    // The last corner would be read as the first: a triangle that fills the view.
    ShortArray<VtVector3> corners(3, 4);
    corners.Store(0, {-9, -9, 0});
    corners.Store(1, {9, -9, 0});
    corners.Store(2, {0, 9, 0});
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    scene.light("area", "radiance", 1);
    scene.LightBegin();
    errors_of([&] { scene.AddObject(scene.object("quad", "corners", corners.array())); });
    scene.LightEnd();
    EXPECT_EQ(scene.render(4, 4, 1).mean(), 0);
}

TEST(Diagnostics, OtherShapes) {
    scripted::Points three;
    scripted::fill(three, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    expect_diagnostics(
        object_errors("quad", "corners", three),
        {{.call = "newObject", .type = "quad", .item = 1, .parameter = "corners", .says = "has 3 elements"}});
    scripted::Points four;
    scripted::fill(four, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    expect_diagnostics(
        object_errors("quad", "corners", four, "edge_u", VtVector3(1, 0, 0)),
        {{.call = "newObject", .type = "quad", .item = 3, .parameter = "edge_u", .says = "beside \"corners\""}});
    expect_diagnostics(object_errors("quad", "edge_u", VtVector3(0, 2, 0)), {{.call = "newObject", .type = "quad"}});
    expect_diagnostics(object_errors("box", "min", VtVector3(2, 0, 0)), {{.call = "newObject", .type = "box"}});
    expect_diagnostics(object_errors("sphere", "radius", 0),
                       {{.call = "newObject", .type = "sphere", .item = 1, .parameter = "radius"}});
}

TEST(Diagnostics, Imagers) {
    Scene scene;
    List list("name", "picture.gif");
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewImager("file", list), 1); }),
                       {{.call = "newImager", .type = "file", .item = 1, .parameter = "name"}});
}

TEST(Diagnostics, Ids) {
    Scene scene;
    const VtLong light = scene.light("point");
    expect_diagnostics(errors_of([&] { scene.AddObject(77); }), {{.call = "addObject", .says = "id 77"}});
    expect_diagnostics(errors_of([&] { scene.AddObject(light); }), {{.call = "addObject", .says = "id 1"}});
    expect_diagnostics(errors_of([&] { scene.MaterialBegin(0); }), {{.call = "materialBegin", .says = "id 0"}});
    expect_diagnostics(errors_of([&] { scene.ImagerBegin(-1); }), {{.call = "imagerBegin", .says = "id -1"}});
    expect_diagnostics(errors_of([&] { scene.InteriorBegin(light); }), {{.call = "interiorBegin", .says = "id 1"}});
    expect_diagnostics(errors_of([&] { scene.LightOn(5); }), {{.call = "lightOn", .says = "id 5"}});
    expect_diagnostics(errors_of([&] { scene.LightOff(5); }), {{.call = "lightOff", .says = "id 5"}});
    List list("interface", light);
    expect_diagnostics(
        errors_of([&] { scene.NewMaterial("surface", list); }),
        {{.call = "newMaterial", .type = "surface", .item = 1, .parameter = "interface", .says = "id 1"}});
}

TEST(Diagnostics, AnEntityOfUnknownTypeIsReportedOnce) {
    Scene scene;
    VtLong teapot = 0;
    errors_of([&] { teapot = scene.object("teapot"); });
    EXPECT_EQ(errors_of([&] { scene.AddObject(teapot); }), "");
}

TEST(Diagnostics, Blocks) {
    Scene scene;
    expect_diagnostics(errors_of([&] { scene.ImagerEnd(); }), {{.call = "imagerEnd", .says = "imagerBegin opens one"}});
    expect_diagnostics(errors_of([&] { scene.InteriorEnd(); }),
                       {{.call = "interiorEnd", .says = "interiorBegin opens one"}});
    expect_diagnostics(errors_of([&] { scene.LightEnd(); }), {{.call = "lightEnd", .says = "lightBegin opens one"}});
    expect_diagnostics(errors_of([&] { scene.MaterialEnd(); }),
                       {{.call = "materialEnd", .says = "materialBegin opens one"}});
    expect_diagnostics(errors_of([&] { scene.TransformEnd(); }),
                       {{.call = "transformEnd", .says = "transformBegin opens one"}});
    expect_diagnostics(errors_of([&] { scene.LightBegin(); }), {{.call = "lightBegin"}});

    // An unknown id opens a block all the same, so that the end that follows is none too many.
    errors_of([&] { scene.MaterialBegin(99); });
    EXPECT_EQ(errors_of([&] { scene.MaterialEnd(); }), "");
}

TEST(Diagnostics, OpenBlocksAtRender) {
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    scene.light("point");
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.object("sphere"));
    VtTransform identity;
    identity.Identity();
    scene.TransformBegin(identity);
    scene.TransformBegin(identity);
    expect_diagnostics(
        errors_of([&] { EXPECT_FALSE(scene.render(4, 4, 1).values.empty()); }),
        {{.call = "render", .says = "materialEnd is missing"}, {.call = "render", .says = "transformEnd is missing"}});
}

TEST(Diagnostics, Transforms) {
    const auto errors = [](const VtTransform &transform) {
        Scene scene;
        return errors_of([&] {
            scene.TransformBegin(transform);
            // Silent: the block has been reported.
            scene.AddObject(scene.object("sphere"));
            scene.camera({0, 0, 3}, {0, 0, 0}, 40);
            scene.light("point");
            scene.TransformEnd();
        });
    };
    const auto expect = [&](const VtTransform &transform, const char *why) {
        expect_diagnostics(errors(transform), {{.call = "transformBegin", .says = why}});
    };
    VtTransform transform;
    expect(transform, "all zeros");
    transform.Scaling({1, 0, 1});
    expect(transform, "singular");
    // The square of the second underflows.
    for (const double scale : {1e-12, 1e-300}) {
        transform.Scaling({1, scale, 1});
        expect(transform, "1e-9");
    }
    transform.Scaling({1, INFINITY, 1});
    expect(transform, "unusable");
    transform.Identity();
    transform[0][3] = 5;
    expect(transform, "last column");
    // Nothing comes of the camera.
    Scene scene;
    errors_of([&] {
        scene.TransformBegin(VtTransform());
        scene.camera({0, 0, 3}, {0, 0, 0}, 40);
        scene.TransformEnd();
    });
    expect_diagnostics(errors_of([&] { EXPECT_TRUE(scene.render(4, 4, 1).values.empty()); }),
                       {{.call = "render", .says = "no camera"}});
}

TEST(Diagnostics, TooFarAway) {
    Scene scene;
    VtTransform far;
    far.Translation({9e8, 0, 0});
    scene.TransformBegin(far);
    expect_diagnostics(errors_of([&] { scene.AddObject(scene.object("sphere", "radius", 2e8)); }),
                       {{.call = "addObject", .says = "beyond 1e+09"}});
    expect_diagnostics(errors_of([&] { scene.light("point", "position", VtVector3(2e8, 0, 0)); }),
                       {{.call = "newLight", .type = "point", .says = "beyond 1e+09"}});
}

TEST(Diagnostics, TooSmall) {
    VtTransform small;
    small.Scaling({1, 9e-9, 1});
    VtTransform smaller;
    smaller.Scaling({1, 0.3, 1});
    const auto expect_too_small = [](const std::string &errors) {
        expect_diagnostics(errors, {{.call = "addObject", .says = "1e-8"}});
    };
    Scene scene;
    scene.TransformBegin(small);
    EXPECT_EQ(errors_of([&] { scene.AddObject(scene.object("sphere")); }), "");
    scene.TransformBegin(smaller);
    expect_too_small(errors_of([&] { scene.AddObject(scene.object("sphere")); }));

    Scene of_instances;
    of_instances.TransformBegin(small);
    VtInstanceArray<VtTransform> places;
    places.Add(smaller);
    expect_too_small(errors_of([&] {
        of_instances.AddObject(
            of_instances.object("instances", "object", of_instances.object("sphere"), "places", places));
    }));
}

TEST(Diagnostics, Render) {
    Scene scene;
    expect_diagnostics(errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); }),
                       {{.call = "render", .says = "no camera"}, {.call = "render", .says = "no usable imager"}});
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    const auto errors = [&](int width, int height, int samples, double x0, double y0, double x1, double y1) {
        return errors_of([&] { EXPECT_TRUE(scene.render(width, height, samples, x0, y0, x1, y1).values.empty()); });
    };
    expect_diagnostics(errors(0, 4, 1, 0, 0, 1, 1), {{.call = "render", .says = "the width is 0"}});
    expect_diagnostics(errors(4, -4, 1, 0, 0, 1, 1), {{.call = "render", .says = "the height is -4"}});
    expect_diagnostics(errors(4, 4, 0, 0, 0, 1, 1), {{.call = "render", .says = "the number of samples is 0"}});
    expect_diagnostics(errors(4, 4, 1, 0.5, 0, 0.5, 1), {{.call = "render", .says = "the window (0.5, 0, 0.5, 1)"}});
    expect_diagnostics(errors(4, 4, 1, 0, std::nan(""), 1, 1),
                       {{.call = "render", .says = "the window (0, nan, 1, 1)"}});
    expect_diagnostics(errors(4, 4, 1, 0.2, 0, 0.3, 1), {{.call = "render", .says = "the window (0.2, 0, 0.3, 1)"}});
    expect_diagnostics(errors(65536, 65536, 1, 0, 0, 1, 1), {{.call = "render", .says = "more than 268435456 pixels"}});
}

TEST(Diagnostics, Radiosity) {
    Scene scene;
    expect_diagnostics(errors_of([&] { scene.Radiosity(); }), {{.call = "radiosity", .says = "nothing to do"}});
}

// Sets VANTOR_DIAGNOSTICS for the scenes that are made while it lives.
class Mode {
  public:
    explicit Mode(const char *name) { setenv("VANTOR_DIAGNOSTICS", name, 1); }
    ~Mode() { unsetenv("VANTOR_DIAGNOSTICS"); }
};

TEST(Diagnostics, SilentPrintsNothing) {
    const Mode mode("silent");
    EXPECT_EQ(light_errors("candle"), "");
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    EXPECT_EQ(errors_of([&] {
                  scene.Radiosity();
                  scene.AddObject(7);
                  EXPECT_FALSE(scene.render(4, 4, 1).values.empty());
              }),
              "");
}

TEST(Diagnostics, StrictRefusesPicturesAfterTheFirst) {
    const Mode mode("strict");
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    scene.light("point");
    // A note is no diagnostic.
    errors_of([&] { scene.Radiosity(); });
    EXPECT_EQ(errors_of([&] { EXPECT_FALSE(scene.render(4, 4, 1).values.empty()); }), "");
    expect_diagnostics(errors_of([&] {
                           scene.AddObject(7);
                           scene.AddObject(8);
                       }),
                       {{.call = "addObject", .says = "id 7"}, {.call = "addObject", .says = "id 8"}});
    for (int i = 0; i < 2; ++i)
        expect_diagnostics(errors_of([&] { EXPECT_TRUE(scene.render(4, 4, 1).values.empty()); }), {{.call = "render"}});
}

TEST(Diagnostics, UnknownMode) {
    const Mode mode("loud");
    EXPECT_EQ(errors_of([] { const Scene scene; }),
              "vantor: VANTOR_DIAGNOSTICS is \"loud\" (silent, warn and strict are known); warn is used\n");
}

TEST(Diagnostics, NothingNamesItself) {
    Scene scene;
    List list("a", 1);
    expect_diagnostics(errors_of([&] { EXPECT_EQ(scene.NewPattern("checker", list), 1); }),
                       {{.call = "newPattern", .type = "checker", .item = 1, .parameter = "a", .says = "id 1"}});
}

} // namespace
