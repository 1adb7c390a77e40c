// Lights that the camera does not see: they light, and are seen in mirrors and through glass.
#include "tests/libvantor/scripted_scene.h"

#include <functional>

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Points;
using scripted::Rgb;
using scripted::Scene;

constexpr int side = 16;

void add_quad(Scene &scene, const VtVector3 &origin, const VtVector3 &edge_u, const VtVector3 &edge_v) {
    scene.AddObject(scene.object("quad", "origin", origin, "edge_u", edge_u, "edge_v", edge_v));
}

// A wall, and a camera straight before it that sees 2 of it.
void add_wall(Scene &scene) {
    List camera("position", VtVector3(0, 0, 4), "target", VtVector3(0, 0, 0), "height", 2.0);
    scene.NewCamera("orthographic", camera);
    add_quad(scene, {-4, -4, 0}, {8, 0, 0}, {0, 8, 0});
}

template <class... Values> Pixels drawn(Scene &scene, const Values &...values) {
    const std::string path = scripted::path_of("visible.exr");
    List list("name", path, values...);
    scene.ImagerBegin(scene.NewImager("file", list));
    scene.Render(side, side, 16, 0, 0, 1, 1);
    scene.ImagerEnd();
    return scripted::read_exr(path);
}

// Objects in front of the wall's middle, each in another form of what rays are traced in; all of them leave the edge of
// the picture free.
struct Lamp {
    const char *name;
    std::function<VtLong(Scene &)> make;
};
const Lamp lamps[] = {
    {"quad",
     [](Scene &scene) {
         return scene.object("quad", "origin", VtVector3(0.4, -0.4, 1), "edge_u", VtVector3(-0.8, 0, 0), "edge_v",
                             VtVector3(0, 0.8, 0));
     }},
    {"sphere", [](Scene &scene) { return scene.object("sphere", "center", VtVector3(0, 0, 1), "radius", 0.4); }},
    {"trimmed",
     [](Scene &scene) {
         List plane("point", VtVector3(0, 0, 1.1), "normal", VtVector3(0, 0, 1));
         return scene.object("sphere", "center", VtVector3(0, 0, 1), "radius", 0.4, "trimmers",
                             scene.NewTrimmer("plane", plane));
     }},
    {"large",
     [](Scene &scene) {
         Points points;
         scripted::Indices triangles;
         scripted::fill_with_sheet(120, points, triangles);
         VtVector3 *const point = points.FirstBlock()->data;
         for (int i = 0; i < 121 * 121; ++i)
             point[i] = {0.8 * point[i][1] - 0.4, 0.8 * point[i][0] - 0.4, 1 + point[i][2]};
         return scene.object("mesh", "points", points, "triangles", triangles);
     }},
    {"instances",
     [](Scene &scene) {
         const VtLong ball = scene.object("sphere", "radius", 0.1);
         VtInstanceArray<VtTransform> places;
         for (const double x : {-0.2, 0.2}) {
             VtTransform place;
             place.Identity();
             place[3] = {x, 0, 1, 1};
             places.Add(place);
         }
         return scene.object("instances", "object", ball, "places", places);
     }},
};

struct Seen {
    Pixels color, depth;
};

Seen seen(const Lamp &lamp, int visible) {
    Scene scene;
    add_wall(scene);
    scene.light("area", "radiance", 3.0, "visible", visible);
    scene.LightBegin();
    scene.AddObject(lamp.make(scene));
    scene.LightEnd();
    return {drawn(scene), drawn(scene, "what", "depth")};
}

TEST(Visible, TheWallBehindALampIsSeenWithItsLight) {
    constexpr float wall = 4; // from the camera
    for (const Lamp &lamp : lamps) {
        const Seen hidden = seen(lamp, 0);
        const Seen shown = seen(lamp, 1);
        // What is beside the lamp has the same bits, and so has the same light.
        int different = 0;
        for (std::size_t i = 0; i < hidden.color.values.size(); ++i) {
            EXPECT_EQ(hidden.depth.values[i][0], wall) << lamp.name;
            if (shown.depth.values[i][0] == wall)
                EXPECT_EQ(hidden.color.values[i], shown.color.values[i]) << lamp.name;
            else
                ++different;
        }
        EXPECT_GT(different, 2) << lamp.name;
        EXPECT_EQ(hidden.color.at(0, 0), shown.color.at(0, 0)) << lamp.name;
        EXPECT_GT(hidden.color.at(side / 2, side / 2)[0], 0) << lamp.name;
    }
}

// A lamp before nothing: the camera sees through it, and so does whoever looks at its alpha.
TEST(Visible, AlphaAgrees) {
    const auto alpha = [](int visible) {
        Scene scene;
        scene.camera({0, 0, 4}, {0, 0, 0}, 20);
        scene.light("area", "visible", visible);
        scene.LightBegin();
        scene.AddObject(scene.object("sphere"));
        scene.LightEnd();
        EXPECT_EQ(drawn(scene, "background", 0).at(8, 8)[0], visible);
        return drawn(scene, "what", "alpha").at(8, 8)[0];
    };
    EXPECT_EQ(alpha(1), 1);
    EXPECT_EQ(alpha(0), 0);
}

// What stands between the camera and a light that it does not see.
double seen_by_way_of(const std::function<void(Scene &)> &add_things, const char *light, int visible) {
    Scene scene;
    List camera("position", VtVector3(0, 0, 4), "target", VtVector3(0, 0, 0), "height", 0.1);
    scene.NewCamera("orthographic", camera);
    scene.light(light, "radiance", 2.0, "visible", visible);
    if (std::string_view(light) == "area") {
        scene.MaterialBegin(scene.diffuse(0.0));
        scene.LightBegin();
        // Behind the things and behind the camera.
        for (const double z : {-3.0, 6.0})
            add_quad(scene, {z > 0 ? 9.0 : -9.0, -9, z}, {z > 0 ? -18.0 : 18.0, 0, 0}, {0, 18, 0});
        scene.LightEnd();
        scene.MaterialEnd();
    }
    add_things(scene);
    return drawn(scene).mean();
}

TEST(Visible, MirrorsAndGlassShowWhatTheCameraDoesNotSee) {
    const auto wall_of = [](VtLong material, Scene &scene) {
        scene.MaterialBegin(material);
        add_quad(scene, {-5, -5, 0}, {10, 0, 0}, {0, 10, 0});
        scene.MaterialEnd();
    };
    const auto nothing = [](Scene &) {};
    const auto mirror = [&](Scene &scene) { wall_of(scene.surface("conductor", "eta", 0.0, "k", 100.0), scene); };
    const auto glass = [&](Scene &scene) {
        scene.MaterialBegin(scene.surface("dielectric", "ior", 1.5));
        scene.AddObject(scene.object("box", "min", VtVector3(-5, -5, -1), "max", VtVector3(5, 5, 0)));
        scene.MaterialEnd();
    };
    // A sheet that half of the camera's rays pass as if it were not there.
    const auto veil = [&](Scene &scene) {
        List none;
        List sheet("interface", static_cast<int>(scene.NewInterface("diffuse", none)), "color", 0.0, "opacity", 0.5);
        wall_of(scene.NewMaterial("surface", sheet), scene);
    };
    for (const char *light : {"area", "environment"}) {
        EXPECT_EQ(seen_by_way_of(nothing, light, 1), 2) << light;
        EXPECT_EQ(seen_by_way_of(nothing, light, 0), 0) << light;
        EXPECT_EQ(seen_by_way_of(mirror, light, 0), seen_by_way_of(mirror, light, 1)) << light;
        EXPECT_GT(seen_by_way_of(mirror, light, 0), 1.9) << light;
        EXPECT_EQ(seen_by_way_of(glass, light, 0), seen_by_way_of(glass, light, 1)) << light;
        EXPECT_GT(seen_by_way_of(glass, light, 0), 1.5) << light;
        EXPECT_EQ(seen_by_way_of(veil, light, 0), 0) << light;
        EXPECT_NEAR(seen_by_way_of(veil, light, 1), 1, 0.05) << light;
    }
}

// The sky, and the sun as a disk.
TEST(Visible, WhatIsFarAwayLightsAllTheSame) {
    for (const char *light : {"environment", "sky", "distant"}) {
        const auto drawn_with = [&](int visible) {
            Scene scene;
            scene.camera({0, 1, 4}, {0, 1, 0}, 60);
            add_quad(scene, {-9, 0, 9}, {18, 0, 0}, {0, 0, -18});
            if (std::string_view(light) == "distant")
                scene.light(light, "direction", VtVector3(0, -1, 1), "angle", 40.0, "visible", visible);
            else
                scene.light(light, "visible", visible);
            return drawn(scene);
        };
        const Pixels hidden = drawn_with(0);
        const Pixels shown = drawn_with(1);
        EXPECT_EQ(hidden.at(8, 0), (Rgb{})) << light;
        EXPECT_GT(shown.at(8, 0)[2], 0) << light;
        EXPECT_EQ(hidden.at(8, side - 1), shown.at(8, side - 1)) << light;
        EXPECT_GT(hidden.at(8, side - 1)[2], 0) << light;
    }
}

// Patches look for light as surfaces do, not as the camera does.
TEST(Visible, RadiosityKnowsTheLight) {
    const auto drawn_with = [](int visible) {
        Scene scene(200);
        scene.camera({0, 0, 0.9}, {0, 0, -1}, 60);
        scene.AddObject(scene.room());
        scene.light("area", "radiance", 5.0, "visible", visible);
        scene.LightBegin();
        scene.AddObject(scene.object("sphere", "center", VtVector3(0, 0.9, 0), "radius", 0.05));
        scene.LightEnd();
        scene.Radiosity();
        return drawn(scene);
    };
    EXPECT_EQ(drawn_with(0).at(8, 15), drawn_with(1).at(8, 15));
}

// A hidden lamp that is filled: the camera stands in it, and does not see what fills it either.
TEST(Visible, TheInsideOfALampIsNotSeen) {
    Scene scene;
    add_wall(scene);
    scene.light("environment");
    List fog("sigma_a", 5.0);
    scene.light("area", "radiance", 1.0, "visible", 0);
    scene.LightBegin();
    scene.InteriorBegin(scene.NewInterior("homogeneous", fog));
    scene.AddObject(scene.object("sphere", "center", VtVector3(0, 0, 4), "radius", 0.5));
    scene.InteriorEnd();
    scene.LightEnd();
    const Pixels filled = drawn(scene);
    EXPECT_GT(filled.at(8, 8)[0], 0.3);
}

} // namespace
