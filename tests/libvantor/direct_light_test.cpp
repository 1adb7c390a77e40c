// Direct light against closed forms, on a floor that the camera sees from above.
#include "tests/libvantor/scripted_scene.h"

#include <cmath>

namespace {

using scripted::Pixels;
using scripted::Scene;

constexpr double pi = 3.14159265358979;
constexpr double reflectance = 0.5;

// A floor at height y that faces up, and a camera that sees a spot of 2 mm around x = z = 0 from between it and the
// light. There is nothing else for the floor's light to be reflected by.
void add_floor(Scene &scene, double y = 0) {
    scene.camera({0.3, y + 0.5, 0}, {0, y, 0}, 0.2);
    scene.MaterialBegin(scene.diffuse(reflectance));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-5, y, 5), "edge_u", VtVector3(10, 0, 0), "edge_v",
                                 VtVector3(0, 0, -10)));
    scene.MaterialEnd();
}

// A light that reflects nothing, so that no light comes back to the floor.
template <class Add> void add_area_light(Scene &scene, double radiance, Add add) {
    scene.light("area", "radiance", radiance);
    scene.MaterialBegin(scene.diffuse(0.0));
    scene.LightBegin();
    add();
    scene.LightEnd();
    scene.MaterialEnd();
}

double floor_radiance(Scene &scene, int samples = 256) { return scene.render(8, 8, samples).mean(); }

TEST(DirectLight, PointLightFallsWithTheSquareAndTheCosine) {
    Scene scene;
    add_floor(scene);
    scene.light("point", "position", VtVector3(0, 2, 1.5), "intensity", 7.0);
    // E = I cos / r^2, with r = 2.5 and cos = 0.8. No noise but that of the spot's size, far below a thousandth.
    EXPECT_NEAR(floor_radiance(scene), reflectance / pi * 7 * 0.8 / 6.25, 2e-4);
}

TEST(DirectLight, DistantLightGivesItsIrradianceTimesTheCosine) {
    Scene scene;
    add_floor(scene);
    scene.light("distant", "direction", VtVector3(3, -4, 0), "irradiance", 2.0);
    EXPECT_NEAR(floor_radiance(scene), reflectance / pi * 2 * 0.8, 1e-5);
}

// The form factor from a spot to a parallel rectangle, one of whose corners is above it: sides a and b, at distance h.
double corner_form_factor(double a, double b, double h) {
    const double x = a / h;
    const double y = b / h;
    const double p = std::sqrt(1 + x * x);
    const double q = std::sqrt(1 + y * y);
    return (x / p * std::atan(y / p) + y / q * std::atan(x / q)) / (2 * pi);
}

TEST(DirectLight, RectangleHasItsFormFactor) {
    Scene scene;
    add_floor(scene);
    // 2 by 1, centred 1.5 above the spot, facing down.
    add_area_light(scene, 3, [&] {
        scene.AddObject(scene.object("quad", "origin", VtVector3(-1, 1.5, -0.5), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                     VtVector3(0, 0, 1)));
    });
    const double wanted = reflectance * 3 * 4 * corner_form_factor(1, 0.5, 1.5);
    // 16384 stratified samples; the standard error measured over seeds is below a thousandth.
    EXPECT_NEAR(floor_radiance(scene), wanted, 0.003 * wanted);
}

TEST(DirectLight, TwoTrianglesShineLikeTheirRectangle) {
    Scene scene;
    add_floor(scene);
    add_area_light(scene, 3, [&] {
        scene.AddObject(
            scene.mesh({{-1, 1.5, -0.5}, {1, 1.5, -0.5}, {1, 1.5, 0.5}, {-1, 1.5, 0.5}}, {0, 1, 2, 0, 2, 3}));
    });
    const double wanted = reflectance * 3 * 4 * corner_form_factor(1, 0.5, 1.5);
    EXPECT_NEAR(floor_radiance(scene), wanted, 0.005 * wanted);
}

TEST(DirectLight, SphereHasItsFormFactor) {
    // A sphere of radius R whose centre is at distance d, seen under the angle theta from the normal and wholly above
    // the floor: E = pi L (R/d)^2 cos(theta).
    Scene scene;
    add_floor(scene);
    add_area_light(scene, 2,
                   [&] { scene.AddObject(scene.object("sphere", "center", VtVector3(-1.2, 1.6, 0), "radius", 0.7)); });
    const double wanted = reflectance * 2 * 0.49 / 4 * 0.8;
    EXPECT_NEAR(floor_radiance(scene), wanted, 0.003 * wanted);
}

// The radiance of a floor that much below a square of radiance 1, or a sphere that fits into it.
double lit_by_square(double side, double distance) {
    return reflectance * 4 * corner_form_factor(side / 2, side / 2, distance);
}
double lit_by_sphere(double radius, double distance) { return reflectance * (radius / distance) * (radius / distance); }

VtLong square_facing_down(Scene &scene, double side, double y) {
    return scene.object("quad", "origin", VtVector3(-side / 2, y, -side / 2), "edge_u", VtVector3(side, 0, 0), "edge_v",
                        VtVector3(0, 0, side));
}

TEST(DirectLight, LightsAtTheOriginDoNotHideThemselves) {
    // The nearer a light is to the origin, the smaller is the rounding of its own coordinates; that of the ray which
    // looks for it goes with the distance.
    for (const double distance : {3.0, 30.0, 1000.0})
        for (const double side : {1.0, 0.01}) {
            const auto lit_by = [&](auto add) {
                Scene scene;
                add_floor(scene, -distance);
                add_area_light(scene, 1, [&] { scene.AddObject(add(scene)); });
                return floor_radiance(scene, 64);
            };
            const double quad = lit_by([&](Scene &scene) { return square_facing_down(scene, side, 0); });
            const double mesh = lit_by([&](Scene &scene) {
                const double a = side / 2;
                return scene.mesh({{-a, 0, -a}, {a, 0, -a}, {a, 0, a}, {-a, 0, a}}, {0, 1, 2, 0, 2, 3});
            });
            const double sphere = lit_by([&](Scene &scene) { return scene.object("sphere", "radius", side / 2); });

            // 4096 samples of a light that is small from there: the standard error is below a thousandth.
            const double square = lit_by_square(side, distance);
            EXPECT_NEAR(quad, square, 0.005 * square) << side << " from " << distance;
            EXPECT_NEAR(mesh, square, 0.005 * square) << side << " from " << distance;
            const double round = lit_by_sphere(side / 2, distance);
            EXPECT_NEAR(sphere, round, 0.005 * round) << side << " from " << distance;
        }
}

TEST(DirectLight, TinyLightsFarAwayShine) {
    // The pdfs of their directions are so large that their squares are beyond floats.
    const auto lit_by = [](auto add) {
        Scene scene;
        add_floor(scene);
        add_area_light(scene, 1, [&] { scene.AddObject(add(scene)); });
        return floor_radiance(scene, 4);
    };
    for (const auto &[radius, distance] : {std::pair(1e-6, 1e4), std::pair(1e-9, 100.0), std::pair(1e-3, 1e8)}) {
        const VtVector3 center(0, distance, 0);
        const double sphere =
            lit_by([&, r = radius](Scene &scene) { return scene.object("sphere", "center", center, "radius", r); });
        const double wanted = lit_by_sphere(radius, distance);
        EXPECT_NEAR(sphere, wanted, 1e-4 * wanted) << radius << " from " << distance;
    }
    // Seen under so small an angle, the form factor is the area over pi r^2.
    const double quad = lit_by([](Scene &scene) { return square_facing_down(scene, 1e-6, 1e4); });
    const double wanted = reflectance * 1e-12 / (pi * 1e8);
    EXPECT_NEAR(quad, wanted, 1e-4 * wanted);
}

TEST(DirectLight, EllipsoidIsTheSameLightByBothWaysOfSampling) {
    // As a stretched sphere, sampled by solid angle, and as a mesh of many triangles, sampled by area.
    const auto build = [](Scene &scene, bool is_mesh) {
        add_floor(scene);
        scene.light("area", "radiance", 2.0);
        VtTransform stretch;
        stretch.Scaling({1, 0.5, 0.3});
        VtTransform move;
        move.Translation({-0.5, 1.5, 0.2});
        scene.LightBegin();
        scene.TransformBegin(move);
        scene.TransformBegin(stretch);
        if (is_mesh) {
            constexpr int rings = 64;
            std::vector<VtVector3> points;
            std::vector<VtLong> triangles;
            for (int i = 0; i <= rings; ++i)
                for (int j = 0; j < 2 * rings; ++j) {
                    const double theta = pi * i / rings;
                    const double phi = pi * j / rings;
                    points.push_back(
                        {std::sin(theta) * std::cos(phi), std::cos(theta), -std::sin(theta) * std::sin(phi)});
                }
            for (int i = 0; i < rings; ++i)
                for (int j = 0; j < 2 * rings; ++j) {
                    const VtLong a = i * 2 * rings + j;
                    const VtLong b = i * 2 * rings + (j + 1) % (2 * rings);
                    if (i > 0)
                        triangles.insert(triangles.end(), {a, a + 2 * rings, b});
                    if (i < rings - 1)
                        triangles.insert(triangles.end(), {b, a + 2 * rings, b + 2 * rings});
                }
            scene.AddObject(scene.mesh(points, triangles));
        } else {
            scene.AddObject(scene.object("sphere"));
        }
        scene.TransformEnd();
        scene.TransformEnd();
        scene.LightEnd();
    };
    Scene sphere;
    Scene mesh;
    build(sphere, false);
    build(mesh, true);
    const double wanted = floor_radiance(sphere);
    EXPECT_GT(wanted, 0.01);
    // The mesh lies inside the ellipsoid and has 0.2 % less area.
    EXPECT_NEAR(floor_radiance(mesh), wanted, 0.01 * wanted);
}

TEST(DirectLight, LightsAddUp) {
    const auto lit_by = [](bool with_point, bool with_distant) {
        Scene scene;
        add_floor(scene);
        const VtLong point = scene.light("point", "position", VtVector3(0, 2, 1.5), "intensity", 7.0);
        const VtLong distant = scene.light("distant", "direction", VtVector3(3, -4, 0));
        if (!with_point)
            scene.LightOff(point);
        if (!with_distant)
            scene.LightOff(distant);
        return floor_radiance(scene);
    };
    const double wanted = lit_by(true, false) + lit_by(false, true);
    // The choice between two lights is a coin of 16384 throws, of which Sobol's points leave little noise.
    EXPECT_NEAR(lit_by(true, true), wanted, 0.005 * wanted);
    EXPECT_EQ(lit_by(false, false), 0);
}

TEST(DirectLight, AreaLightsShineForwardsAndCanBeSwitchedOff) {
    const auto looking_at_light = [](double z, bool on) {
        Scene scene;
        scene.camera({0, 0, z}, {0, 0, 0}, 10);
        const VtLong light = scene.light("area", "radiance", VtVector3(1, 2, 3));
        scene.LightBegin();
        scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                     VtVector3(0, 2, 0)));
        scene.LightEnd();
        if (!on)
            scene.LightOff(light);
        return scene.render(4, 4, 4).at(1, 1);
    };
    EXPECT_EQ(looking_at_light(3, true), (scripted::Rgb{1, 2, 3}));
    EXPECT_EQ(looking_at_light(-3, true), (scripted::Rgb{0, 0, 0}));
    EXPECT_EQ(looking_at_light(3, false), (scripted::Rgb{0, 0, 0}));
}

TEST(DirectLight, TheLastAreaLightShines) {
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 10);
    const VtLong first = scene.light("area", "radiance", 1.0);
    scene.light("area", "radiance", 2.0);
    scene.LightOn(first);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.LightEnd();
    EXPECT_EQ(scene.render(4, 4, 4).at(1, 1)[0], 1);
}

} // namespace
