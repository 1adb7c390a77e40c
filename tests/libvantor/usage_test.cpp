// Usage: what has no effect on the picture is said once a pass, and never of a good scene.
#include "tests/libvantor/scripted_scene.h"

#include <cstdlib>

namespace {

using scripted::errors_of;
using scripted::Indices;
using scripted::List;
using scripted::Points;
using scripted::Scene;

// A camera (1), and a light (2) from everywhere.
class Lit : public Scene {
  public:
    Lit() {
        camera({0, 0, 5}, {0, 0, 0}, 40);
        lamp = light("environment");
    }
    // On any object, in the block of a material of that type.
    template <class... Values> void add(VtLong material, const char *type, const Values &...values) {
        MaterialBegin(material);
        AddObject(object(type, values...));
        MaterialEnd();
    }
    std::string said() {
        return errors_of([&] { EXPECT_FALSE(render(2, 2, 1).values.empty()); });
    }
    VtLong lamp;
};

TEST(Usage, NothingIsSaidOfAGoodScene) {
    Lit scene;
    scene.LightOff(scene.lamp);
    scene.light("area");
    scene.LightBegin();
    scene.add(scene.diffuse(0.5), "quad");
    scene.LightEnd();
    scene.add(scene.surface("dielectric"), "sphere");
    scene.add(scene.surface("dielectric"), "cylinder");
    VtInstanceArray<VtTransform> places;
    VtTransform place;
    place.Identity();
    places.Add(place);
    // What is seen at the places of instances need not be added itself.
    const VtLong instances =
        scene.object("instances", "object", static_cast<int>(scene.object("box")), "places", places);
    scene.AddObject(instances);
    EXPECT_EQ(scene.said(), "");
}

TEST(Usage, WithoutLightOnlyBlackIsSeen) {
    const std::string black =
        "vantor: render: no light reaches anything, so that only black is seen (newLight makes a light)\n";
    Lit scene;
    scene.LightOff(scene.lamp);
    EXPECT_EQ(scene.said(), black);
    EXPECT_EQ(scene.said(), black); // once for each pass
    scene.light("area", "radiance", 0.0);
    scene.LightBegin();
    scene.AddObject(scene.object("sphere"));
    scene.LightEnd();
    EXPECT_EQ(scene.said(), black);
    scene.light("point");
    EXPECT_EQ(scene.said(), "");
}

TEST(Usage, APassThatShowsNoLightNeedsNone) {
    Lit scene;
    scene.LightOff(scene.lamp);
    const std::string path = scripted::path_of("depth.exr");
    List depth("name", path, "what", "depth");
    scene.ImagerBegin(scene.NewImager("file", depth));
    EXPECT_EQ(errors_of([&] { scene.Render(2, 2, 1, 0, 0, 1, 1); }), "");
    scene.ImagerEnd();
}

TEST(Usage, WhatIsNeverUsedIsNamed) {
    Lit scene;
    scene.object("sphere");
    scene.diffuse(0.5);
    scene.light("area");
    EXPECT_EQ(scene.said(), "vantor: render: object 3 is never added to the scene\n"
                            "vantor: render: material 4 is never used: nothing is added in its block\n"
                            "vantor: render: light 5 lights nothing: nothing is added in its block\n");
    scene.LightOff(5);
    scene.add(4, "box");
    scene.object("sphere");
    scene.object("sphere");
    EXPECT_EQ(scene.said(),
              "vantor: render: each of 3 objects is never added to the scene; the first of them is object 3\n");
}

TEST(Usage, GlassNeedsAClosedBody) {
    const auto said_of = [](const char *interface, const char *type, const auto &...values) {
        Lit scene;
        scene.add(scene.surface(interface, "ior", 1.4), type, values...);
        return scene.said();
    };
    const auto open = [](int object, int material) {
        return "vantor: render: material " + std::to_string(material) + " is glass, and needs a closed body; object " +
               std::to_string(object) + " is open\n";
    };
    EXPECT_EQ(said_of("dielectric", "quad"), open(5, 4));
    EXPECT_EQ(said_of("dielectric", "disk"), open(5, 4));
    EXPECT_EQ(said_of("dielectric", "cylinder", "caps", 0), open(5, 4));
    EXPECT_EQ(said_of("dielectric", "cylinder"), "");
    EXPECT_EQ(said_of("dielectric", "box"), "");
    EXPECT_EQ(said_of("principled", "quad"), ""); // no fraction of it is glass
    Lit scene;
    const VtLong glass = scene.surface("principled", "transmission", 1.0);
    scene.add(glass, "quad");
    scene.add(glass, "disk");
    EXPECT_EQ(scene.said(), "vantor: render: material 4 is glass, and needs a closed body; object 5 is open, and so "
                            "are 1 more that are made of glass\n");
}

// None of it is a mistake: a scene may be rendered while it grows.
TEST(Usage, PicturesAreMadeAllTheSame) {
    setenv("VANTOR_DIAGNOSTICS", "strict", 1);
    {
        Lit scene;
        scene.object("sphere");
        EXPECT_NE(scene.said(), "");
        EXPECT_NE(scene.said(), "");
    }
    setenv("VANTOR_DIAGNOSTICS", "silent", 1);
    {
        Lit scene;
        scene.object("sphere");
        EXPECT_EQ(scene.said(), "");
    }
    unsetenv("VANTOR_DIAGNOSTICS");
}

} // namespace
