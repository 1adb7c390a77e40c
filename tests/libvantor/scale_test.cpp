// Scale: what is far away, huge or tiny looks like what is near and of middling size.
#include "tests/libvantor/scripted_scene.h"

#include <cmath>

namespace {

using scripted::List;
using scripted::Scene;

VtLong add(Scene &scene, VtLong object, VtLong material) {
    scene.MaterialBegin(material);
    scene.AddObject(object);
    scene.MaterialEnd();
    return object;
}

VtLong box(Scene &scene, const VtVector3 &low, const VtVector3 &high) {
    return scene.object("box", "min", low, "max", high);
}

void sun(Scene &scene) { scene.light("distant", "direction", VtVector3(0, -1, 0), "irradiance", M_PI); }

void orthographic(Scene &scene, double height, const VtVector3 &position, const VtVector3 &target) {
    List camera("height", height, "position", position, "target", target);
    scene.NewCamera("orthographic", camera);
}

// A convex body under the sun does not shadow itself: white, it has the radiance 1 where it faces the sun.

TEST(Scale, GroundSpheresAreLit) {
    for (const double radius : {1e-3, 1.0, 1000.0, 1e5})
        for (const double away : {1.0, 6.0}) {
            const double distance = away * std::min(radius, 1.0);
            Scene scene;
            sun(scene);
            scene.camera({0, 0.6 * distance, 0.8 * distance}, {0, 0, 0}, 1);
            add(scene, scene.object("sphere", "center", VtVector3(0, -radius, 0), "radius", radius),
                scene.diffuse(1.0));
            EXPECT_NEAR(scene.render(16, 16, 4).mean(), 1, 2e-3) << radius << ' ' << away;
        }
}

// The ratio of its radiance to that of a slope: a sheet, or a body whose upper side is tilted.
double slope(const char *what, double width, double away) {
    constexpr double tilt = 28.3576; // degrees
    const double cosine = std::cos(tilt * M_PI / 180);
    const double sine = std::sin(tilt * M_PI / 180);
    const double w = width;
    Scene scene;
    sun(scene);
    scene.camera({0.3 * away, 0.8 * away, 0.52 * away}, {0, 0, 0}, 1);
    VtTransform turn;
    for (int i = 0; i < 4; ++i)
        turn[i][i] = 1;
    turn[1] = {0, cosine, sine, 0};
    turn[2] = {0, -sine, cosine, 0};
    scene.TransformBegin(turn);
    scene.MaterialBegin(scene.diffuse(1.0));
    const std::string kind = what;
    if (kind == "quad")
        scene.AddObject(scene.object("quad", "origin", VtVector3(-0.4 * w, 0, 0.6 * w), "edge_u", VtVector3(w, 0, 0),
                                     "edge_v", VtVector3(0, 0, -w)));
    else if (kind == "box")
        scene.AddObject(box(scene, {-0.4 * w, -w, -0.7 * w}, {0.6 * w, 0, 0.3 * w}));
    else if (kind == "cylinder")
        scene.AddObject(scene.object("cylinder", "from", VtVector3(-0.4 * w, -w / 2, 0), "to",
                                     VtVector3(0.6 * w, -w / 2, 0), "radius", w / 2));
    else if (kind == "torus")
        scene.AddObject(scene.object("torus", "center", VtVector3(0.0, -w / 2, 0), "major_radius", 2 * w,
                                     "minor_radius", w / 2, "axis", VtVector3(0, 1, 0)));
    else if (kind == "mesh")
        scene.AddObject(
            scene.mesh({{-0.4 * w, 0, 0.6 * w}, {0.8 * w, 0, 0.1 * w}, {-0.1 * w, 0, -0.9 * w}}, {0, 1, 2}));
    else if (kind == "disk")
        scene.AddObject(
            scene.object("disk", "center", VtVector3(0.1 * w, 0, -0.2 * w), "normal", VtVector3(0, 1, 0), "radius", w));
    else {
        scripted::Points points;
        scripted::fill(points,
                       {{-0.9 * w, -w / 2, 0}, {-0.4 * w, -w / 2, 0}, {0.4 * w, -w / 2, 0}, {0.9 * w, -w / 2, 0}});
        scene.AddObject(scene.object("curves", "points", points, "kind", "tube", "radius", w / 2));
    }
    scene.MaterialEnd();
    scene.TransformEnd();
    return scene.render(16, 16, 4).mean() / cosine;
}

TEST(Scale, SlopesAreLit) {
    for (const char *kind : {"quad", "box", "mesh", "disk", "cylinder", "curve"})
        for (const double width : {1e-3, 1.0, 1000.0, 1e5})
            for (const double away : {0.3, 2.0})
                EXPECT_NEAR(slope(kind, width, away * std::min(width, 1.0)), 1, 4e-3)
                    << kind << ' ' << width << ' ' << away;
}

// A sphere light over a floor: E = pi L (r / d)^2 below it.
double under_sphere_light(double radius, double gap) {
    Scene scene;
    const double near = std::min(gap, radius);
    scene.camera({0, 0.3 * near, 0.2 * near}, {0, 0, 0}, 1);
    scene.light("area", "radiance", M_PI);
    scene.LightBegin();
    add(scene, scene.object("sphere", "center", VtVector3(0, radius + gap, 0), "radius", radius), scene.diffuse(0.0));
    scene.LightEnd();
    add(scene,
        scene.object("quad", "origin", VtVector3(-3 * radius, 0, 3 * radius), "edge_u", VtVector3(6 * radius, 0, 0),
                     "edge_v", VtVector3(0, 0, -6 * radius)),
        scene.diffuse(1.0));
    return scene.render(16, 16, 64).mean();
}

TEST(Scale, SphereLightsLightWhatIsNearThem) {
    for (const double radius : {1e-3, 1.0, 1000.0, 1e5})
        for (const double part : {0.002, 0.01, 0.3}) {
            const double sine = 1 / (1 + part);
            EXPECT_NEAR(under_sphere_light(radius, part * radius), M_PI * sine * sine, 0.01) << radius << ' ' << part;
        }
}

double contact_shadow(double away, double ball, double ground) {
    Scene scene;
    sun(scene);
    scene.light("environment", "radiance", 0.2);
    orthographic(scene, 6 * ball, {0, 0.6 * away, 0.8 * away}, {0, 0, 0});
    add(scene,
        scene.object("quad", "origin", VtVector3(-ground, 0, ground), "edge_u", VtVector3(2 * ground, 0, 0), "edge_v",
                     VtVector3(0, 0, -2 * ground)),
        scene.diffuse(1.0));
    add(scene, scene.object("sphere", "center", VtVector3(0, ball, 0), "radius", ball), scene.diffuse(0.0));
    return scene.render(32, 32, 64).mean();
}

TEST(Scale, ContactShadowsDoNotDependOnTheCamerasDistance) {
    const double expected = contact_shadow(100, 1, 100);
    for (const double away : {1.0, 30.0, 1000.0})
        EXPECT_NEAR(contact_shadow(away, 0.01, 1), expected, 0.005) << away;
    EXPECT_NEAR(contact_shadow(1, 0.01, 1000), expected, 0.005);
}

// A room with a bit of everything, under a transform that its lengths are multiplied by `size` in.
scripted::Pixels still_life(const VtTransform &place, double size) {
    Scene scene;
    scene.TransformBegin(place);
    scene.camera({0.3, 0.9, 2.9}, {0, 0.4, 0}, 40);
    scene.light("environment", "radiance", 0.3);
    scene.light("area", "radiance", 20.0);
    scene.LightBegin();
    add(scene, scene.object("sphere", "center", VtVector3(-0.8, 2, 0.6), "radius", 0.2), scene.diffuse(0.0));
    scene.LightEnd();
    add(scene,
        scene.object("quad", "origin", VtVector3(-3, 0, 3), "edge_u", VtVector3(6, 0, 0), "edge_v",
                     VtVector3(0, 0, -6)),
        scene.diffuse(0.7));
    add(scene, scene.object("sphere", "center", VtVector3(-0.7, 0.35, 0), "radius", 0.35),
        scene.surface("dielectric", "ior", 1.5));
    add(scene,
        scene.object("cylinder", "from", VtVector3(0.7, 0, -0.3), "to", VtVector3(0.7, 0.8, -0.3), "radius", 0.25),
        scene.surface("conductor", "roughness", 0.3));
    List black("reflectance", 0.0);
    List clear("interface", scene.NewInterface("diffuse", black), "opacity", 0.0);
    List medium("sigma_a", VtVector3(0.3 / size, 1 / size, 2 / size), "sigma_s", 1.5 / size);
    scene.InteriorBegin(scene.NewInterior("homogeneous", medium));
    // It stands on the floor and touches the sheet.
    add(scene, box(scene, {-0.2, 0, -0.3}, {0.3, 0.5, 0.2}), scene.NewMaterial("surface", clear));
    scene.InteriorEnd();
    List half("interface", scene.NewInterface("diffuse", black), "opacity", 0.5);
    add(scene,
        scene.object("quad", "origin", VtVector3(-0.2, 0.5, 0.2), "edge_u", VtVector3(0.5, 0, 0), "edge_v",
                     VtVector3(0, 0, -0.5)),
        scene.NewMaterial("surface", half));
    scene.TransformEnd();
    return scene.render(32, 32, 64);
}

TEST(Scale, ScaledMovedAndTurnedScenesLookTheSame) {
    VtTransform start;
    start.Scaling({1, 1, 1});
    const scripted::Pixels expected = still_life(start, 1);
    const auto compare = [&](const VtTransform &place, double size, const char *what) {
        const scripted::Pixels found = still_life(place, size);
        EXPECT_NEAR(found.mean() / expected.mean(), 1, 0.01) << what << ' ' << size;
        // The same numbers are drawn, so that most pixels are the same, too; but paths that rounding leads elsewhere.
        double difference = 0;
        for (std::size_t i = 0; i < expected.values.size(); ++i)
            difference += std::fabs(found.values[i][1] - expected.values[i][1]);
        EXPECT_LT(difference / static_cast<double>(expected.values.size()), 0.03 * expected.mean())
            << what << ' ' << size;
    };
    for (const double size : {1e-3, 30.0, 1e5}) {
        VtTransform scaled;
        scaled.Scaling({size, size, size});
        compare(scaled, size, "scaled");
        scaled[3] = {50 * size, -20 * size, 30 * size, 1};
        compare(scaled, size, "moved");
    }
    VtTransform turned;
    turned.RotationAroundAxis({0, 0, 0}, {1, 2, 3}, 70.0);
    compare(turned, 1, "turned");
}

} // namespace
