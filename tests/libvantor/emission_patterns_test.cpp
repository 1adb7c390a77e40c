// Area lights whose radiance is a pattern: what is seen of them, and what they light.
#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/scripted_scene.h"

#include <cmath>
#include <functional>

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Points;
using scripted::Rgb;
using scripted::Scene;

using MakeObject = std::function<VtLong(Scene &)>;

void add_floor(Scene &scene) {
    scene.AddObject(scene.object("quad", "origin", VtVector3(-2, 0, 2), "edge_u", VtVector3(4, 0, 0), "edge_v",
                                 VtVector3(0, 0, -4)));
}

// Of the texture coordinates, 0 or the given colour by turns.
VtLong checker(Scene &scene, const VtVector3 &bright, const VtVector2 &squares) {
    List list("a", bright, "b", 0.0, "scale", squares);
    return scene.NewPattern("checker", list);
}

// A quad 1 above the floor that faces down; u goes along X, v along Z.
VtLong ceiling(Scene &scene, double from = -1, double to = 1) {
    return scene.object("quad", "origin", VtVector3(from, 1, -1), "edge_u", VtVector3(to - from, 0, 0), "edge_v",
                        VtVector3(0, 0, 2));
}

void add_light(Scene &scene, const MakeObject &make, const std::function<VtLong(Scene &)> &pattern) {
    if (pattern)
        scene.light("area", "radiance", 3.0, "pattern", static_cast<int>(pattern(scene)));
    else
        scene.light("area", "radiance", 3.0);
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(0.0));
    scene.AddObject(make(scene));
    scene.MaterialEnd();
    scene.LightEnd();
}

// The floor from above the light, which does not face there.
Pixels floor_under(Scene &scene, int samples) {
    List camera("position", VtVector3(0, 0.5, 0), "target", VtVector3(0, 0, 0), "up", VtVector3(0, 0, -1), "height",
                2.0);
    scene.NewCamera("orthographic", camera);
    return scene.render(16, 16, samples);
}

TEST(EmissionPattern, HalfOfALampIsALampOfHalfTheSize) {
    Scene patterned;
    add_floor(patterned);
    add_light(
        patterned, [](Scene &scene) { return ceiling(scene); },
        [](Scene &scene) {
            return checker(scene, {1, 0.5, 0.25}, {2, 1});
        });
    Scene half;
    add_floor(half);
    add_light(half, [](Scene &scene) { return ceiling(scene, -1, 0); }, {});
    const Pixels got = floor_under(patterned, 256);
    const Pixels wanted = floor_under(half, 256);
    for (int x = 0; x < 16; x += 3)
        for (int y = 0; y < 16; y += 5)
            for (std::size_t c = 0; c < 3; ++c) {
                const float factor = c == 0 ? 1.0f : c == 1 ? 0.5f : 0.25f;
                const float expected = factor * wanted.at(x, y)[c];
                EXPECT_NEAR(got.at(x, y)[c], expected, 0.05f * expected) << x << " " << y;
            }
}

TEST(EmissionPattern, TheCameraSeesIt) {
    Scene scene;
    List camera("position", VtVector3(0, 0, 0), "target", VtVector3(0, 1, 0), "up", VtVector3(0, 0, 1), "height", 2.0);
    scene.NewCamera("orthographic", camera);
    add_light(
        scene, [](Scene &in) { return ceiling(in); },
        [](Scene &in) {
            return checker(in, {1, 0.5, 0.25}, {2, 1});
        });
    const std::string path = scripted::path_of("seen.exr");
    List list("name", path, "filter", "box");
    scene.ImagerBegin(scene.NewImager("file", list));
    scene.Render(8, 8, 4, 0, 0, 1, 1);
    scene.ImagerEnd();
    const Pixels seen = scripted::read_exr(path);
    // +X is to the right, where the second square lies.
    EXPECT_EQ(seen.at(1, 4), (Rgb{3, 1.5, 0.75}));
    EXPECT_EQ(seen.at(6, 4), (Rgb{0, 0, 0}));
}

// With one light there is nothing to choose, and so nothing that a mean changes.
TEST(EmissionPattern, AWhiteOneChangesNothing) {
    const auto drawn = [](bool has_pattern) {
        Scene scene;
        add_floor(scene);
        std::function<VtLong(Scene &)> white;
        if (has_pattern)
            white = [](Scene &in) {
                List list("a", 1.0, "b", 1.0);
                return in.NewPattern("checker", list);
            };
        add_light(
            scene, [](Scene &in) { return ceiling(in); }, white);
        return floor_under(scene, 16).values;
    };
    EXPECT_EQ(drawn(true), drawn(false));
}

// Points of a trimmed object are not sampled: its light is found by paths alone, which know nothing of means, texture
// coordinates of samples, or choices. So both ways have to find the same light.
TEST(EmissionPattern, SamplesOfEveryShapeFindWhatPathsFind) {
    struct Shape {
        const char *name;
        std::function<VtLong(Scene &, VtLong trimmer)> make;
    };
    const auto mesh_of = [](Scene &scene, VtLong trimmer, bool has_uvs) {
        Points points;
        scripted::fill(points, {{-1, 1, -1}, {1, 1, -1}, {1, 1, 1}, {-1, 1, 1}, {0, 1.2, 0}});
        scripted::Indices triangles;
        scripted::fill(triangles, {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4});
        VtInstanceArray<VtVector2> uvs;
        for (const VtVector2 &uv :
             {VtVector2(0, 0), VtVector2(1, 0), VtVector2(1, 1), VtVector2(0, 1), VtVector2(0.5, 0.5)})
            uvs.Add(uv);
        List list("points", points, "triangles", triangles);
        if (has_uvs) {
            list.add("uvs");
            list.add(uvs);
        }
        if (trimmer) {
            list.add("trimmers");
            list.add(static_cast<int>(trimmer));
        }
        return scene.NewObject("mesh", list);
    };
    const auto with = [](Scene &scene, VtLong trimmer, const char *type, auto... values) {
        List list(values...);
        if (trimmer) {
            list.add("trimmers");
            list.add(static_cast<int>(trimmer));
        }
        return scene.NewObject(type, list);
    };
    const Shape shapes[] = {
        {"mesh", [&](Scene &scene, VtLong trimmer) { return mesh_of(scene, trimmer, true); }},
        {"mesh without uvs", [&](Scene &scene, VtLong trimmer) { return mesh_of(scene, trimmer, false); }},
        {"quad",
         [&](Scene &scene, VtLong trimmer) {
             return with(scene, trimmer, "quad", "origin", VtVector3(-1, 1, -1), "edge_u", VtVector3(2, 0, 0.5),
                         "edge_v", VtVector3(0, 0, 2));
         }},
        {"box",
         [&](Scene &scene, VtLong trimmer) {
             return with(scene, trimmer, "box", "min", VtVector3(-0.5, 1, -0.5), "max", VtVector3(0.5, 1.5, 0.5));
         }},
        {"disk",
         [&](Scene &scene, VtLong trimmer) {
             return with(scene, trimmer, "disk", "center", VtVector3(0, 1, 0), "normal", VtVector3(0.2, -1, 0),
                         "inner_radius", 0.3);
         }},
        {"sphere",
         [&](Scene &scene, VtLong trimmer) {
             return with(scene, trimmer, "sphere", "center", VtVector3(0, 1.4, 0), "radius", 0.6);
         }},
    };
    for (const Shape &shape : shapes) {
        const auto drawn = [&](bool is_sampled) {
            Scene scene;
            add_floor(scene);
            VtLong trimmer = 0;
            if (!is_sampled) {
                List everything("min", VtVector3(-9, -9, -9), "max", VtVector3(9, 9, 9));
                trimmer = scene.NewTrimmer("box", everything);
            }
            // Stretched and mirrored, so that object and world differ.
            VtTransform transform;
            transform.Identity();
            transform[0][0] = -1.25;
            scene.TransformBegin(transform);
            add_light(
                scene, [&](Scene &in) { return shape.make(in, trimmer); },
                [](Scene &in) {
                    return checker(in, {1, 0.75, 0.5}, {3, 2});
                });
            scene.TransformEnd();
            return floor_under(scene, is_sampled ? 64 : 256);
        };
        const Pixels sampled = drawn(true);
        const Pixels found = drawn(false);
        EXPECT_GT(found.mean(), 0.01) << shape.name;
        EXPECT_NEAR(sampled.mean(), found.mean(), 0.03 * found.mean()) << shape.name;
    }
}

// One of 64 tiles shines. If it were not chosen for that, a sample would find it once in 64 times.
TEST(EmissionPattern, LightsAreChosenByTheirMeans) {
    Scene scene;
    add_floor(scene);
    add_light(
        scene,
        [](Scene &in) {
            Points points;
            scripted::Indices quads;
            VtInstanceArray<VtVector2> uvs;
            for (int j = 0; j <= 8; ++j)
                for (int i = 0; i <= 8; ++i) {
                    points.Add(VtVector3(-1 + i / 4.0, 1, -1 + j / 4.0));
                    uvs.Add(VtVector2(i / 8.0, j / 8.0));
                }
            for (int j = 0; j < 8; ++j)
                for (int i = 0; i < 8; ++i)
                    for (const int corner : {j * 9 + i, j * 9 + i + 1, j * 9 + i + 10, j * 9 + i + 9})
                        quads.Add(corner);
            return in.object("mesh", "points", points, "quads", quads, "uvs", uvs);
        },
        [](Scene &in) {
            // White in the first eighth along u, and of that in the first eighth along v.
            const auto stripe = [&](const VtVector3 &direction) {
                Points colors;
                scripted::fill(colors, {{1, 1, 1}, {1, 1, 1}, {0, 0, 0}});
                VtInstanceArray<double> positions;
                for (const double position : {0.0, 0.12499, 0.125})
                    positions.Add(position);
                List list("colors", colors, "positions", positions, "direction", direction);
                return in.NewPattern("gradient", list);
            };
            List list("a", static_cast<int>(stripe({1, 0, 0})), "b", static_cast<int>(stripe({0, 1, 0})), "amount", 1.0,
                      "mode", "multiply");
            return in.NewPattern("mix", list);
        });
    const Pixels pixels = floor_under(scene, 16);
    // Neighbours see about the same light: what differs between them is noise.
    double difference = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x + 1 < 16; ++x)
            difference += std::fabs(pixels.at(x, y)[1] - pixels.at(x + 1, y)[1]);
    EXPECT_GT(pixels.mean(), 0);
    EXPECT_LT(difference / (15 * 16), 0.3 * pixels.mean());
}

// Instances shine, found by paths, each with the pattern of the object.
TEST(EmissionPattern, InstancesHaveIt) {
    Scene scene;
    List camera("position", VtVector3(0, 0, 5), "height", 4.0);
    scene.NewCamera("orthographic", camera);
    add_light(
        scene,
        [](Scene &in) {
            const VtLong quad = in.object("quad", "origin", VtVector3(-0.5, -0.5, 0));
            VtInstanceArray<VtTransform> places;
            for (const double x : {-1.0, 1.0}) {
                VtTransform place;
                place.Identity();
                place[3] = {x, 0, 0, 1};
                places.Add(place);
            }
            return in.object("instances", "object", quad, "places", places);
        },
        [](Scene &in) {
            return checker(in, {1, 1, 1}, {1, 2});
        });
    const Pixels pixels = scene.render(16, 16, 4);
    for (const int x : {3, 11}) {
        EXPECT_EQ(pixels.at(x, 9)[0], 3) << x;
        EXPECT_EQ(pixels.at(x, 6)[0], 0) << x;
    }
}

TEST(EmissionPattern, AWrongIdIsReported) {
    Scene scene;
    const VtLong quad = scene.object("quad");
    expect_diagnostics(scripted::errors_of([&] { scene.light("area", "pattern", static_cast<int>(quad)); }),
                       {{.call = "newLight", .type = "area", .item = 1, .parameter = "pattern"}});
    expect_diagnostics(scripted::errors_of([&] { scene.light("area", "pattern", 1.5); }),
                       {{.call = "newLight", .type = "area", .item = 1, .parameter = "pattern"}});
}

} // namespace
