// Objects under transforms: copies and instances, mirrored ones, normals.
#include "tests/libvantor/scripted_scene.h"

namespace {

using scripted::Pixels;
using scripted::Scene;

VtTransform translation(double x, double y, double z) {
    VtTransform m;
    m.Translation({x, y, z});
    return m;
}

VtTransform scaling(double x, double y, double z) {
    VtTransform m;
    m.Scaling({x, y, z});
    return m;
}

// A wavy sheet with more triangles than are copied for each placement.
VtLong add_sheet(Scene &scene) {
    constexpr int side = 120;
    std::vector<VtVector3> points;
    std::vector<VtLong> triangles;
    for (int j = 0; j <= side; ++j)
        for (int i = 0; i <= side; ++i)
            points.push_back({2.0 * i / side - 1, 2.0 * j / side - 1, 0.1 * ((i * 7 + j * 3) % 5)});
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const VtLong a = j * (side + 1) + i;
            triangles.insert(triangles.end(), {a, a + 1, a + side + 2, a, a + side + 2, a + side + 1});
        }
    return scene.mesh(points, triangles);
}

void expect_like(const Pixels &a, const Pixels &b, double tolerance) {
    ASSERT_EQ(a.values.size(), b.values.size());
    double difference = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        difference += std::fabs(a.values[i][1] - b.values[i][1]);
    EXPECT_GT(b.mean(), 0.01);
    EXPECT_LT(difference / static_cast<double>(a.values.size()), tolerance * b.mean());
}

TEST(Placement, InstancesLookLikeCopies) {
    // The same object four times, against four objects of one placement each, which are copied.
    const auto build = [](Scene &scene, bool is_shared) {
        scene.camera({0, 0, 6}, {0, 0, 0}, 40);
        scene.light("point", "position", VtVector3(2, 3, 5), "intensity", 60.0);
        VtLong sheet = 0;
        for (int i = 0; i < 4; ++i) {
            scene.TransformBegin(translation(i % 2 ? 1.1 : -1.1, i / 2 ? 1.1 : -1.1, 0));
            // One of them mirrored, one stretched.
            scene.TransformBegin(i == 1 ? scaling(-1, 1, 1) : scaling(1, 1, i == 2 ? 3 : 1));
            if (i == 0 || !is_shared)
                sheet = add_sheet(scene);
            scene.AddObject(sheet);
            scene.TransformEnd();
            scene.TransformEnd();
        }
        return scene.render(48, 48, 16);
    };
    Scene shared;
    Scene copied;
    const Pixels expected = build(copied, false);
    // Equal but for rounding, which sends the odd path another way.
    expect_like(build(shared, true), expected, 0.01);
}

TEST(Placement, InnermostTransformActsFirst) {
    // Scaled, then moved: a sphere of radius 2 at x = 3. The other order would put it at x = 6.
    Scene scene;
    scene.camera({3, 0, 20}, {3, 0, 0}, 20);
    scene.light("area");
    scene.LightBegin();
    scene.TransformBegin(translation(3, 0, 0));
    scene.TransformBegin(scaling(2, 2, 2));
    scene.AddObject(scene.object("sphere"));
    scene.TransformEnd();
    scene.TransformEnd();
    scene.LightEnd();
    const Pixels pixels = scene.render(64, 64, 16);
    EXPECT_EQ(pixels.at(32, 32)[1], 1);
    EXPECT_EQ(pixels.at(1, 1)[1], 0);
    // The picture is 2 * 20 tan(10 degrees) = 7.05 high. The silhouette, seen from 20, has the radius
    // 2 / sqrt(1 - 0.01) = 2.01, so it takes pi 2.01^2 / 7.05^2 = 25.5 % of the picture.
    EXPECT_NEAR(pixels.mean(), 0.255, 0.003);
}

TEST(Placement, MirroredObjectsKeepTheirOutside) {
    const auto seen = [](const char *type, bool is_mirrored, bool is_repeated) {
        Scene scene;
        scene.camera({0, 0, 5}, {0, 0, 0}, 10);
        scene.light("area");
        const VtLong object = scene.object(type);
        scene.LightBegin();
        scene.TransformBegin(scaling(is_mirrored ? -1 : 1, 1, 1));
        // 4000 boxes are too many to copy; they are instances then, behind the camera.
        for (int i = 0; i < (is_repeated ? 4000 : 1); ++i) {
            scene.TransformBegin(translation(0, 0, i == 0 ? 0 : 100.0 + i));
            scene.AddObject(object);
            scene.TransformEnd();
        }
        scene.TransformEnd();
        scene.LightEnd();
        return scene.render(64, 64, 1).at(40, 20)[1];
    };
    for (const char *type : {"box", "sphere", "quad"})
        for (const bool is_mirrored : {false, true})
            for (const bool is_repeated : {false, true}) {
                // A unit quad would be mirrored out of the middle of the picture.
                if (std::string(type) == "quad" && is_mirrored)
                    continue;
                EXPECT_EQ(seen(type, is_mirrored, is_repeated), 1) << type << is_mirrored << is_repeated;
            }
}

TEST(Placement, MirroredLightsLightTheirFront) {
    // The front of a quad that faces +Z still does after mirroring x: a floor in front of it is lit, behind it is not.
    const auto lit = [](double z) {
        Scene scene;
        scene.camera({0, 0, 0.5 * z}, {0, 0, z}, 10);
        scene.MaterialBegin(scene.diffuse(0.5));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-5, -5, z), "edge_u", VtVector3(10, 0, 0), "edge_v",
                                     VtVector3(0, 10, 0)));
        scene.MaterialEnd();
        scene.light("area");
        scene.LightBegin();
        scene.TransformBegin(scaling(-1, 1, 1));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                     VtVector3(0, 2, 0)));
        scene.TransformEnd();
        scene.LightEnd();
        return scene.render(4, 4, 64).mean();
    };
    EXPECT_GT(lit(2), 0.05);
    EXPECT_EQ(lit(-2), 0);
}

TEST(Placement, MeshNormalsAreInterpolatedAndFollowTheTransform) {
    // One triangle whose normals all lean by 45 degrees towards +X is lit as a surface that leans. Stretched 2 times
    // along x, normals lean less: (1, 0, 1) becomes (1/2, 0, 1).
    const auto lit = [](double stretch) {
        Scene scene;
        scene.camera({0, 0, 3}, {0, 0, 0}, 5);
        scene.light("distant", "irradiance", 3.14159265358979);
        scripted::Points points;
        scripted::Points normals;
        scripted::Indices triangles;
        scripted::fill(points, {{-9, -9, 0}, {9, -9, 0}, {0, 9, 0}});
        scripted::fill(normals, {{1, 0, 1}, {1, 0, 1}, {1, 0, 1}});
        scripted::fill(triangles, {0, 1, 2});
        scene.TransformBegin(scaling(stretch, 1, 1));
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("mesh", "points", points, "triangles", triangles, "normals", normals));
        scene.MaterialEnd();
        scene.TransformEnd();
        return scene.render(4, 4, 1).at(1, 1)[1];
    };
    EXPECT_NEAR(lit(1), std::sqrt(0.5), 1e-5);
    EXPECT_NEAR(lit(2), 1 / std::sqrt(1.25), 1e-5);
    EXPECT_NEAR(lit(-2), 1 / std::sqrt(1.25), 1e-5);
}

TEST(Placement, ObjectsMayReachUpToTheLimit) {
    // As far as coordinates may go, 1e9, whatever the sum of several of them.
    const auto seen = [](auto add) {
        Scene scene;
        scene.camera({0, 0, 9e8}, {0, 0, 0}, 10);
        scene.light("area");
        scene.LightBegin();
        const std::string errors = scripted::errors_of([&] { scene.AddObject(add(scene)); });
        scene.LightEnd();
        EXPECT_EQ(errors, "");
        return scene.render(4, 4, 1).at(1, 1)[1];
    };
    EXPECT_EQ(seen([](Scene &scene) { return scene.object("sphere", "radius", 5e8); }), 1);
    EXPECT_EQ(seen([](Scene &scene) {
                  return scene.object("quad", "origin", VtVector3(-4e8, -4e8, 0), "edge_u", VtVector3(8e8, 0, 0),
                                      "edge_v", VtVector3(0, 8e8, 0));
              }),
              1);

    const auto is_refused = [](double radius, const VtTransform &transform) {
        Scene scene;
        scene.TransformBegin(transform);
        const VtLong sphere = scene.object("sphere", "radius", radius);
        const std::string errors = scripted::errors_of([&] { scene.AddObject(sphere); });
        scene.TransformEnd();
        return errors.find("reaches beyond") != std::string::npos;
    };
    EXPECT_FALSE(is_refused(9e8, translation(0, 9e7, 0)));
    EXPECT_TRUE(is_refused(9e8, translation(0, 2e8, 0)));
    EXPECT_FALSE(is_refused(9e5, scaling(1, 1, 1e3)));
    EXPECT_TRUE(is_refused(2e6, scaling(1, 1, 1e3)));
}

TEST(Placement, MaterialsNest) {
    const auto seen = [](int depth) {
        Scene scene;
        scene.camera({0, 0, 3}, {0, 0, 0}, 5);
        scene.light("distant", "irradiance", 3.14159265358979);
        const VtLong quad = scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                         VtVector3(0, 2, 0));
        scripted::List reflectance("reflectance", 0.25);
        scripted::List interface("interface", scene.NewInterface("diffuse", reflectance));
        const VtLong inner = scene.NewMaterial("surface", interface);
        scene.MaterialBegin(scene.diffuse(0.75));
        scene.MaterialBegin(inner);
        if (depth == 2)
            scene.AddObject(quad);
        scene.MaterialEnd();
        if (depth == 1)
            scene.AddObject(quad);
        scene.MaterialEnd();
        if (depth == 0)
            scene.AddObject(quad);
        return scene.render(4, 4, 1).at(1, 1)[1];
    };
    EXPECT_NEAR(seen(2), 0.25, 1e-6);
    EXPECT_NEAR(seen(1), 0.75, 1e-6);
    EXPECT_NEAR(seen(0), 0.5, 1e-6);
}

TEST(Placement, CamerasAndLightsTakeTheTransform) {
    Scene scene;
    scene.TransformBegin(translation(100, 0, 3));
    scripted::List none;
    scene.NewCamera("perspective", none);
    scene.light("point", "intensity", 9 * 3.14159265358979);
    scene.TransformEnd();
    scene.MaterialBegin(scene.diffuse(1.0));
    scene.AddObject(scene.object("quad", "origin", VtVector3(90, -10, 0), "edge_u", VtVector3(20, 0, 0), "edge_v",
                                 VtVector3(0, 20, 0)));
    scene.MaterialEnd();
    // Straight ahead, at distance 3: E = I / 9.
    const Pixels pixels = scene.render(65, 65, 4);
    EXPECT_NEAR(pixels.at(32, 32)[1], 1, 1e-3);
}

TEST(Placement, AreaLightsHaveNoPlaceThatATransformCouldSpoil) {
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 10);
    scene.light("area", "radiance", 1.0);
    scripted::errors_of([&] { scene.TransformBegin(scaling(1, 1, 0)); });
    scene.light("area", "radiance", 2.0);
    scene.light("distant");
    scene.TransformEnd();
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.LightEnd();
    // The light's own radiance; nothing is reflected, as the distant light was left out.
    EXPECT_EQ(scene.render(4, 4, 4).at(1, 1)[1], 2);
}

} // namespace
