// Every kind of diagnostic, as the text that a script's author reads.
#include "tests/libvantor/scripted_scene.h"

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

TEST(Diagnostics, Types) {
    EXPECT_EQ(light_errors("pont"), "vantor: newLight \"pont\": unknown type (did you mean \"point\"?)\n");
    EXPECT_EQ(light_errors("candle"), "vantor: newLight \"candle\": unknown type (known: \"area\", \"distant\", "
                                      "\"environment\", \"point\", \"sky\", \"spot\")\n");
    EXPECT_EQ(light_errors(nullptr), "vantor: newLight: no type given (known: \"area\", \"distant\", \"environment\", "
                                     "\"point\", \"sky\", \"spot\")\n");
    EXPECT_EQ(camera_errors(""),
              "vantor: newCamera \"\": unknown type (known: \"orthographic\", \"panorama\", \"perspective\")\n");

    Scene scene;
    List list;
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewTexture("wood"), 1); }),
              "vantor: newTexture \"wood\": cannot read the picture: No such file or directory; it is grey\n");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewPattern("wood", list), 2); }),
              "vantor: newPattern \"wood\": unknown type (known: \"checker\", \"gradient\", \"image\", \"mix\", "
              "\"noise\")\n");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewTrimmer("knife", list), 3); }),
              "vantor: newTrimmer \"knife\": unknown type (known: \"box\", \"curve\", \"plane\")\n");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewInterior(nullptr, list), 4); }),
              "vantor: newInterior: no type given (known: \"homogeneous\")\n");
}

TEST(Diagnostics, ParameterNames) {
    EXPECT_EQ(camera_errors("perspective", "position", zero, "fo", 45.0),
              "vantor: newCamera \"perspective\": item 2: unknown parameter \"fo\" (did you mean \"fov\"?)\n");
    // What begins or ends like a name is nearer than what has some letters of it.
    EXPECT_EQ(camera_errors("perspective", "pos", zero),
              "vantor: newCamera \"perspective\": item 0: unknown parameter \"pos\" (did you mean \"position\"?)\n");
    EXPECT_EQ(camera_errors("perspective", "camera_target", zero),
              "vantor: newCamera \"perspective\": item 0: unknown parameter \"camera_target\" (did you mean "
              "\"target\"?)\n");
    EXPECT_EQ(camera_errors("perspective", "lens", 45.0, "fov", 30),
              "vantor: newCamera \"perspective\": item 0: unknown parameter \"lens\" (known: \"position\", \"target\", "
              "\"up\", \"fov\", \"fov_axis\", \"aperture_radius\", \"focus_distance\")\n");
    EXPECT_EQ(camera_errors("perspective", 5, "fov", 30, zero),
              "vantor: newCamera \"perspective\": item 0: an integer where a parameter name should be\n"
              "vantor: newCamera \"perspective\": item 3: a vector3 where a parameter name should be\n");
    EXPECT_EQ(camera_errors("perspective", "fov"),
              "vantor: newCamera \"perspective\": item 0: parameter \"fov\" has no value (expected number)\n");
    EXPECT_EQ(camera_errors("perspective", "fov", 30, "fov", 40),
              "vantor: newCamera \"perspective\": item 3: parameter \"fov\" is given twice (the later value counts)\n");
}

TEST(Diagnostics, ParameterValues) {
    EXPECT_EQ(camera_errors("perspective", "fov", zero),
              "vantor: newCamera \"perspective\": item 1: parameter \"fov\" is a vector3 (expected number)\n");
    EXPECT_EQ(light_errors("point", "position", 1.0),
              "vantor: newLight \"point\": item 1: parameter \"position\" is a number (expected vector3)\n");
    EXPECT_EQ(light_errors("point", "intensity", "bright"),
              "vantor: newLight \"point\": item 1: parameter \"intensity\" is a text (expected colour (vector3 or "
              "number))\n");
    EXPECT_EQ(camera_errors("perspective", "fov", 190.0),
              "vantor: newCamera \"perspective\": item 1: parameter \"fov\" is 190, which is out of range (0.001 to "
              "179)\n");
    EXPECT_EQ(
        camera_errors("perspective", "fov", std::nan("")),
        "vantor: newCamera \"perspective\": item 1: parameter \"fov\" is nan, which is not usable (finite numbers "
        "up to 1e18 are)\n");
    EXPECT_EQ(light_errors("distant", "direction", zero),
              "vantor: newLight \"distant\": item 1: parameter \"direction\" is (0, 0, 0), which is out of range (-1e9 "
              "to 1e9, not all 0)\n");
    EXPECT_EQ(light_errors("area", "radiance", VtVector3(1, -0.5, 1)),
              "vantor: newLight \"area\": item 1: parameter \"radiance\" is (1, -0.5, 1), which is out of range (0 or "
              "more)\n");
    EXPECT_EQ(object_errors("mesh"), "vantor: newObject \"mesh\": parameter \"points\" is missing (vector3array: the "
                                     "corners of the faces)\n");
}

TEST(Diagnostics, TextsOfScriptsStayOnOneLine) {
    EXPECT_EQ(camera_errors("a\nb\x1b"),
              "vantor: newCamera \"a?b?\": unknown type (known: \"orthographic\", \"panorama\", \"perspective\")\n");
    const std::string name(1000, 'x');
    EXPECT_EQ(camera_errors("perspective", name.c_str(), 1),
              "vantor: newCamera \"perspective\": item 0: unknown parameter \"" + std::string(60, 'x') +
                  "...\" (known: \"position\", \"target\", \"up\", \"fov\", \"fov_axis\", \"aperture_radius\", "
                  "\"focus_distance\")\n");
    // Not cut inside a character.
    std::string euros;
    for (int i = 0; i < 40; ++i)
        euros += "\u20ac";
    EXPECT_EQ(camera_errors(("a" + euros).c_str()).find("\xe2\x82..."), std::string::npos);
    // Bytes that no character begins with.
    EXPECT_EQ(camera_errors(std::string(61, '\x80').c_str()),
              "vantor: newCamera \"...\": unknown type (known: \"orthographic\", \"panorama\", \"perspective\")\n");
}

TEST(Diagnostics, Cameras) {
    EXPECT_EQ(camera_errors("perspective", "target", zero),
              "vantor: newCamera \"perspective\": item 1: parameter \"target\" is the camera's position (the camera "
              "looks along -Z)\n");
    EXPECT_EQ(
        camera_errors("perspective", "up", VtVector3(0, 0, 2)),
        "vantor: newCamera \"perspective\": item 1: parameter \"up\" is along the line of sight (another direction "
        "is up)\n");
    EXPECT_EQ(camera_errors("perspective", "target", VtVector3(0, 1, 0)),
              "vantor: newCamera \"perspective\": the line of sight is along the default \"up\" (0, 1, 0) (another "
              "direction is up)\n");
    EXPECT_EQ(camera_errors("perspective", "fov_axis", "hor"),
              "vantor: newCamera \"perspective\": item 1: parameter \"fov_axis\" is \"hor\", which is no known word "
              "(did you mean \"horizontal\"?)\n");
    VtTransform large;
    large.Scaling({1e6, 1e6, 1e6});
    Scene scene;
    scene.TransformBegin(large);
    EXPECT_EQ(
        errors_of([&] {
            List list("aperture_radius", 1e4);
            scene.NewCamera("perspective", list);
        }),
        "vantor: newCamera \"perspective\": the lens reaches beyond 1e+09 in the world; the camera is left out\n");
    EXPECT_EQ(
        errors_of([&] {
            List list("height", 1e4);
            scene.NewCamera("orthographic", list);
        }),
        "vantor: newCamera \"orthographic\": the picture reaches beyond 1e+09 in the world; the camera is left out\n");
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
    EXPECT_EQ(errors({0, 1, 2, 0, 1, 5, 0, 1, -1}),
              "vantor: newObject \"mesh\": item 3: parameter \"triangles\" leaves out 2 triangles, the first of them 1 "
              "(expected indices from 0 to 4)\n");
    EXPECT_EQ(errors({0, 1, 2, 0, 1, 3}),
              "vantor: newObject \"mesh\": item 1: parameter \"points\" leaves out triangle 1 "
              "(expected finite coordinates up to 1e9)\n");
    EXPECT_EQ(errors({0, 1, 4, 0, 1, 2}),
              "vantor: newObject \"mesh\": item 3: parameter \"triangles\" leaves out triangle 0 "
              "(expected corners that span an area)\n");
    EXPECT_EQ(errors({0, 1, 2, 0, 1}), "vantor: newObject \"mesh\": item 3: parameter \"triangles\" has 5 indices "
                                       "(expected three for each triangle); the rest is left out\n");
    EXPECT_EQ(errors({}), "vantor: newObject \"mesh\": the mesh has no triangle; nothing of it will be seen\n");

    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 2});
    scripted::Points normals;
    scripted::fill(normals, {{0, 0, 1}, {0, 0, 1}});
    VtInstanceArray<VtVector2> uvs;
    EXPECT_EQ(object_errors("mesh", "points", points, "triangles", triangles, "normals", normals, "uvs", uvs),
              "vantor: newObject \"mesh\": item 5: parameter \"normals\" has 2 elements (expected one for each of the "
              "5 points); it is left out\n"
              "vantor: newObject \"mesh\": item 7: parameter \"uvs\" has 0 elements (expected one for each of the 5 "
              "points); it is left out\n");
    scripted::fill(normals, {{0, 0, 1}, {0, 0, 0}, {0, 0, 1}});
    EXPECT_EQ(object_errors("mesh", "points", points, "triangles", triangles, "normals", normals),
              "vantor: newObject \"mesh\": item 5: parameter \"normals\" has zero or unusable vectors (expected "
              "directions); it is left out\n");
}

TEST(Diagnostics, OneMistakeIsOneLine) {
    const VtMatrix4 matrix;
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    // A required parameter that is given wrongly is not missing besides; one that is not named at all is.
    EXPECT_EQ(object_errors("mesh", "points", matrix),
              "vantor: newObject \"mesh\": item 1: parameter \"points\" is a matrix4 (expected vector3array)\n");
    EXPECT_EQ(object_errors("mesh", "pionts", points),
              "vantor: newObject \"mesh\": item 0: unknown parameter \"pionts\" (did you mean \"points\"?)\n");
    EXPECT_EQ(object_errors("mesh"), "vantor: newObject \"mesh\": parameter \"points\" is missing (vector3array: the "
                                     "corners of the faces)\n");
    EXPECT_EQ(camera_errors("perspective", "focus_distance", 3.0),
              "vantor: newCamera \"perspective\": item 1: parameter \"focus_distance\" has no effect without "
              "\"aperture_radius\"\n");
    Scene scene;
    EXPECT_EQ(
        errors_of([&] { scene.diffuse(8); }),
        "vantor: newMaterial \"diffuse\": item 1: parameter \"reflectance\" is 8, which is out of range (0 to 1; no "
        "pattern can stand here)\n");
}

TEST(Diagnostics, ValuesThatOthersMakeUseless) {
    Scene scene;
    scripted::List metal("metal", "gold", "k", 3.0);
    EXPECT_EQ(errors_of([&] { scene.NewInterface("conductor", metal); }),
              "vantor: newInterface \"conductor\": item 3: parameter \"k\" has no effect beside \"metal\"\n");
    scripted::List custom("metal", "custom", "k", 3.0);
    EXPECT_EQ(errors_of([&] { scene.NewInterface("conductor", custom); }), "");
    scripted::List matt;
    scripted::List flat("interface", static_cast<int>(scene.NewInterface("diffuse", matt)), "bump_height", 0.5);
    EXPECT_EQ(errors_of([&] { scene.NewMaterial("surface", flat); }),
              "vantor: newMaterial \"surface\": item 3: parameter \"bump_height\" has no effect without \"bump\"\n");
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    VtInstanceArray<double> radii;
    for (int i = 0; i < 4; ++i)
        radii.Add(0.1);
    EXPECT_EQ(object_errors("curves", "points", points, "radii", radii, "radius", 0.2),
              "vantor: newObject \"curves\": item 5: parameter \"radius\" has no effect beside \"radii\"\n");
}

TEST(Diagnostics, MeshWithoutPoints) {
    const scripted::Points none;
    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 2});
    EXPECT_EQ(object_errors("mesh", "points", none, "triangles", triangles),
              "vantor: newObject \"mesh\": item 3: parameter \"triangles\" leaves out triangle 0 "
              "(there are no points)\n");
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
        const auto expected = [&](const char *type, int item, const char *name) {
            return "vantor: newObject \"" + std::string(type) + "\": item " + std::to_string(item) + ": parameter \"" +
                   name + "\" has " + std::to_string(claimed) + " elements, of which " + std::to_string(stored) +
                   " have storage; nothing of the object will be seen\n";
        };
        EXPECT_EQ(object_errors("mesh", "points", vectors.array(), "triangles", triangles),
                  expected("mesh", 1, "points"));
        EXPECT_EQ(object_errors("mesh", "points", points, "triangles", numbers.array()),
                  expected("mesh", 3, "triangles"));
        EXPECT_EQ(object_errors("mesh", "points", points, "triangles", triangles, "normals", vectors.array()),
                  expected("mesh", 5, "normals"));
        EXPECT_EQ(object_errors("mesh", "points", points, "triangles", triangles, "uvs", pairs.array()),
                  expected("mesh", 5, "uvs"));
        EXPECT_EQ(object_errors("quad", "corners", vectors.array()), expected("quad", 1, "corners"));
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
    EXPECT_EQ(object_errors("quad", "corners", three),
              "vantor: newObject \"quad\": item 1: parameter \"corners\" has 3 elements (expected four); nothing of "
              "the quad will be seen\n");
    scripted::Points four;
    scripted::fill(four, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    EXPECT_EQ(object_errors("quad", "corners", four, "edge_u", VtVector3(1, 0, 0)),
              "vantor: newObject \"quad\": item 3: parameter \"edge_u\" has no effect beside \"corners\"\n");
    EXPECT_EQ(object_errors("quad", "edge_u", VtVector3(0, 2, 0)),
              "vantor: newObject \"quad\": the quad has no area, or corners beyond 1e9; nothing of it will be seen\n");
    EXPECT_EQ(object_errors("box", "min", VtVector3(2, 0, 0)),
              "vantor: newObject \"box\": the box has no inside, as \"min\" is not below \"max\" everywhere, or it "
              "reaches beyond 1e9; nothing of it will be seen\n");
    EXPECT_EQ(object_errors("sphere", "radius", 0),
              "vantor: newObject \"sphere\": item 1: parameter \"radius\" is 0, which is out of range (1e-9 to 1e9)\n");
}

TEST(Diagnostics, Imagers) {
    Scene scene;
    List list("name", "picture.gif");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewImager("file", list), 1); }),
              "vantor: newImager \"file\": item 1: parameter \"name\" \"picture.gif\" has no known ending (.png, .jpg, "
              ".jpeg, .tif, .tiff and .exr are known); nothing will be written\n");
}

TEST(Diagnostics, Ids) {
    Scene scene;
    const VtLong light = scene.light("point");
    EXPECT_EQ(errors_of([&] { scene.AddObject(77); }),
              "vantor: addObject: no entity has the id 77 (expected the id of an object)\n");
    EXPECT_EQ(errors_of([&] { scene.AddObject(light); }),
              "vantor: addObject: id 1 is a light (expected the id of an object)\n");
    EXPECT_EQ(errors_of([&] { scene.MaterialBegin(0); }),
              "vantor: materialBegin: no entity has the id 0 (expected the id of a material)\n");
    EXPECT_EQ(errors_of([&] { scene.ImagerBegin(-1); }),
              "vantor: imagerBegin: no entity has the id -1 (expected the id of an imager)\n");
    EXPECT_EQ(errors_of([&] { scene.InteriorBegin(light); }),
              "vantor: interiorBegin: id 1 is a light (expected the id of an interior)\n");
    EXPECT_EQ(errors_of([&] { scene.LightOn(5); }),
              "vantor: lightOn: no entity has the id 5 (expected the id of a light)\n");
    EXPECT_EQ(errors_of([&] { scene.LightOff(5); }),
              "vantor: lightOff: no entity has the id 5 (expected the id of a light)\n");
    List list("interface", light);
    EXPECT_EQ(errors_of([&] { scene.NewMaterial("surface", list); }),
              "vantor: newMaterial \"surface\": item 1: parameter \"interface\" is 1, but id 1 is a light (expected "
              "the id of an "
              "interface)\n");
}

TEST(Diagnostics, AnEntityOfUnknownTypeIsReportedOnce) {
    Scene scene;
    VtLong teapot = 0;
    errors_of([&] { teapot = scene.object("teapot"); });
    EXPECT_EQ(errors_of([&] { scene.AddObject(teapot); }), "");
}

TEST(Diagnostics, Blocks) {
    Scene scene;
    EXPECT_EQ(errors_of([&] { scene.ImagerEnd(); }), "vantor: imagerEnd: no block is open (imagerBegin opens one)\n");
    EXPECT_EQ(errors_of([&] { scene.InteriorEnd(); }),
              "vantor: interiorEnd: no block is open (interiorBegin opens one)\n");
    EXPECT_EQ(errors_of([&] { scene.LightEnd(); }), "vantor: lightEnd: no block is open (lightBegin opens one)\n");
    EXPECT_EQ(errors_of([&] { scene.MaterialEnd(); }),
              "vantor: materialEnd: no block is open (materialBegin opens one)\n");
    EXPECT_EQ(errors_of([&] { scene.TransformEnd(); }),
              "vantor: transformEnd: no block is open (transformBegin opens one)\n");
    EXPECT_EQ(errors_of([&] { scene.LightBegin(); }),
              "vantor: lightBegin: there is no area light (newLight(\"area\", ...) makes one)\n");

    // An unknown id opens a block all the same, so that the end that follows is none too many.
    errors_of([&] { scene.MaterialBegin(99); });
    EXPECT_EQ(errors_of([&] { scene.MaterialEnd(); }), "");
}

TEST(Diagnostics, OpenBlocksAtRender) {
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    scene.MaterialBegin(scene.diffuse(0.5));
    VtTransform identity;
    identity.Identity();
    scene.TransformBegin(identity);
    scene.TransformBegin(identity);
    EXPECT_EQ(errors_of([&] { EXPECT_FALSE(scene.render(4, 4, 1).values.empty()); }),
              "vantor: render: a block is still open (materialEnd is missing)\n"
              "vantor: render: 2 blocks are still open (transformEnd is missing)\n");
}

TEST(Diagnostics, Transforms) {
    Scene scene;
    const auto errors = [&](const VtTransform &transform) {
        return errors_of([&] {
            scene.TransformBegin(transform);
            // Silent: the block has been reported.
            scene.AddObject(scene.object("sphere"));
            scene.camera({0, 0, 3}, {0, 0, 0}, 40);
            scene.light("point");
            scene.TransformEnd();
        });
    };
    const std::string end = "; cameras, placed lights and objects of its block are left out\n";
    VtTransform transform;
    EXPECT_EQ(errors(transform),
              "vantor: transformBegin: the transform is all zeros, as a new transform is (identity() "
              "and the other operations set it)" +
                  end);
    transform.Scaling({1, 0, 1});
    EXPECT_EQ(errors(transform),
              "vantor: transformBegin: the transform is singular (its determinant is 0 or nearly so)" + end);
    // The square of the second underflows.
    for (const double scale : {1e-12, 1e-300}) {
        transform.Scaling({1, scale, 1});
        EXPECT_EQ(errors(transform), "vantor: transformBegin: the transform makes things smaller than floats can "
                                     "follow (scales from 1e-9 up are possible)" +
                                         end);
    }
    transform.Scaling({1, INFINITY, 1});
    EXPECT_EQ(errors(transform),
              "vantor: transformBegin: the transform has entries that are not usable (finite numbers "
              "up to 1e9 are)" +
                  end);
    transform.Identity();
    transform[0][3] = 5;
    EXPECT_EQ(errors(transform), "vantor: transformBegin: the transform has a last column other than 0 0 0 1 (points "
                                 "are rows: a translation stands in row 3)" +
                                     end);
    // Nothing came of the camera.
    EXPECT_EQ(errors_of([&] { EXPECT_TRUE(scene.render(4, 4, 1).values.empty()); }),
              "vantor: render: there is no camera (newCamera makes one); nothing is rendered\n");
}

TEST(Diagnostics, TooFarAway) {
    Scene scene;
    VtTransform far;
    far.Translation({9e8, 0, 0});
    scene.TransformBegin(far);
    EXPECT_EQ(errors_of([&] { scene.AddObject(scene.object("sphere", "radius", 2e8)); }),
              "vantor: addObject: the object reaches beyond 1e+09 in the world; it is left out\n");
    EXPECT_EQ(errors_of([&] { scene.light("point", "position", VtVector3(2e8, 0, 0)); }),
              "vantor: newLight \"point\": the position lies beyond 1e+09 in the world; it is left out\n");
}

TEST(Diagnostics, TooSmall) {
    Scene scene;
    VtTransform small;
    small.Scaling({1, 9e-9, 1});
    scene.TransformBegin(small);
    EXPECT_EQ(errors_of([&] { scene.AddObject(scene.object("sphere")); }), "");
    small.Scaling({1, 0.3, 1});
    scene.TransformBegin(small);
    const std::string expected = "vantor: addObject: transforms make the object smaller than rays can follow (scales "
                                 "from 1e-8 up are possible); it is left out\n";
    EXPECT_EQ(errors_of([&] { scene.AddObject(scene.object("sphere")); }), expected);
    scene.TransformEnd();
    VtInstanceArray<VtTransform> instances;
    instances.Add(small);
    EXPECT_EQ(errors_of([&] {
                  scene.AddObject(scene.object("instances", "object", scene.object("sphere"), "places", instances));
              }),
              expected);
}

TEST(Diagnostics, Render) {
    Scene scene;
    EXPECT_EQ(
        errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); }),
        "vantor: render: there is no camera (newCamera makes one); nothing is rendered\n"
        "vantor: render: there is no usable imager, so nothing would be written (newImager makes one); nothing is "
        "rendered\n");
    scene.camera({0, 0, 3}, {0, 0, 0}, 40);
    const auto errors = [&](int width, int height, int samples, double x0, double y0, double x1, double y1) {
        return errors_of([&] { EXPECT_TRUE(scene.render(width, height, samples, x0, y0, x1, y1).values.empty()); });
    };
    EXPECT_EQ(errors(0, 4, 1, 0, 0, 1, 1),
              "vantor: render: the width is 0 (1 to 65536 is possible); nothing is rendered\n");
    EXPECT_EQ(errors(4, -4, 1, 0, 0, 1, 1),
              "vantor: render: the height is -4 (1 to 65536 is possible); nothing is rendered\n");
    EXPECT_EQ(errors(4, 4, 0, 0, 0, 1, 1),
              "vantor: render: the number of samples is 0 (1 to 16777216 is possible); nothing is rendered\n");
    EXPECT_EQ(
        errors(4, 4, 1, 0.5, 0, 0.5, 1),
        "vantor: render: the window (0.5, 0, 0.5, 1) is no part of the picture (0 <= x0 < x1 <= 1 and 0 <= y0 < y1 "
        "<= 1 is one); nothing is rendered\n");
    EXPECT_EQ(errors(4, 4, 1, 0, std::nan(""), 1, 1),
              "vantor: render: the window (0, nan, 1, 1) is no part of the picture (0 <= x0 < x1 <= 1 and 0 <= y0 < y1 "
              "<= 1 is one); nothing is rendered\n");
    EXPECT_EQ(errors(4, 4, 1, 0.2, 0, 0.3, 1),
              "vantor: render: the window (0.2, 0, 0.3, 1) has no pixel's centre in it; nothing is rendered\n");
    EXPECT_EQ(errors(65536, 65536, 1, 0, 0, 1, 1),
              "vantor: render: the window has more than 268435456 pixels; nothing is rendered\n");
}

TEST(Diagnostics, Radiosity) {
    Scene scene;
    EXPECT_EQ(errors_of([&] { scene.Radiosity(); }),
              "vantor: radiosity: there is nothing to do (opaque diffuse meshes, quads, boxes and spheres have "
              "patches)\n");
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
    // A note is no diagnostic.
    errors_of([&] { scene.Radiosity(); });
    EXPECT_EQ(errors_of([&] { EXPECT_FALSE(scene.render(4, 4, 1).values.empty()); }), "");
    EXPECT_EQ(errors_of([&] {
                  scene.AddObject(7);
                  scene.AddObject(8);
              }),
              "vantor: addObject: no entity has the id 7 (expected the id of an object)\n"
              "vantor: addObject: no entity has the id 8 (expected the id of an object)\n");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(errors_of([&] { EXPECT_TRUE(scene.render(4, 4, 1).values.empty()); }),
                  "vantor: render: no picture is written: 2 diagnostics so far, and VANTOR_DIAGNOSTICS is strict\n");
}

TEST(Diagnostics, UnknownMode) {
    const Mode mode("loud");
    EXPECT_EQ(errors_of([] { const Scene scene; }),
              "vantor: VANTOR_DIAGNOSTICS is \"loud\" (silent, warn and strict are known); warn is used\n");
}

TEST(Diagnostics, NothingNamesItself) {
    Scene scene;
    List list("a", 1);
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewPattern("checker", list), 1); }),
              "vantor: newPattern \"checker\": item 1: parameter \"a\" is 1, but no entity has the id 1 (expected the "
              "id of a "
              "pattern; a number has a decimal point: 1.0)\n");
}

} // namespace
