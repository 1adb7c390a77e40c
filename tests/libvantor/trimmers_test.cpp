// Trimmers: the areas that they leave, against closed forms.
#include "renderer/vt_bases.h"
#include "scripted_scene.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using scripted::Scene;
using Pairs = VtInstanceArray<VtVector2>;

constexpr double pi = 3.14159265358979323846;

void fill(Pairs &array, const std::vector<VtVector2> &values) {
    for (const VtVector2 &value : values)
        array.Add(value);
}

template <class... Values> VtLong trimmer(Scene &scene, const char *type, const Values &...values) {
    scripted::List list(values...);
    return scene.NewTrimmer(type, list);
}

template <class... Values> VtLong curve(Scene &scene, const std::vector<VtVector2> &points, const Values &...values) {
    Pairs array;
    fill(array, points);
    return trimmer(scene, "curve", "points", array, values...);
}

// How much of a picture 3 high an object covers that shines, as seen along -Z.
double covered(const std::function<VtLong(Scene &)> &make) {
    Scene scene;
    scripted::List camera("position", VtVector3(0, 0, 9), "target", VtVector3(0, 0, 0), "height", 3.0);
    scene.NewCamera("orthographic", camera);
    scene.light("area");
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(0.0));
    scene.AddObject(make(scene));
    scene.MaterialEnd();
    scene.LightEnd();
    return scene.render(32, 32, 256).mean() * 9;
}

// A unit square, in whose (u, v) areas are as in the picture.
double left_of_square(const std::function<VtLong(Scene &)> &make) {
    return covered([&](Scene &scene) { return scene.object("quad", "trimmers", make(scene)); });
}

// The error of a closed form: some 60 pixels of 1/114 unit at the border, each to 0.01.
constexpr double tolerance = 0.003;

TEST(Trimmers, PolygonsLeaveTheirArea) {
    // A concave one, by the shoelace formula.
    const std::vector<VtVector2> corners{{0.1, 0.1}, {0.9, 0.2}, {0.8, 0.9}, {0.5, 0.4}, {0.2, 0.8}};
    double area = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const VtVector2 &a = corners[i], &b = corners[(i + 1) % corners.size()];
        area += 0.5 * (a[0] * b[1] - a[1] * b[0]);
    }
    EXPECT_NEAR(left_of_square([&](Scene &scene) { return curve(scene, corners); }), area, tolerance);
    EXPECT_NEAR(left_of_square([&](Scene &scene) { return curve(scene, corners, "keep", "outside"); }), 1 - area,
                tolerance);
}

TEST(Trimmers, CurvesOfAllBasesLeaveTheirArea) {
    // By Green's theorem over a fine polygon of the curves, each evaluated from its basis: (t^3 t^2 t 1) B P.
    const auto area_of = [](const VtMatrix4 &basis, std::size_t step, const std::vector<VtVector2> &points) {
        double area = 0;
        for (std::size_t i = 0; i < points.size(); i += step) {
            const auto at = [&](double t) {
                VtVector2 p;
                for (std::size_t k = 0; k < 4; ++k) {
                    const int c = static_cast<int>(k);
                    const double weight = ((basis[0][c] * t + basis[1][c]) * t + basis[2][c]) * t + basis[3][c];
                    for (int d = 0; d < 2; ++d)
                        p[d] += weight * points[(i + k) % points.size()][d];
                }
                return p;
            };
            for (int s = 0; s < 1000; ++s) {
                const VtVector2 a = at(s / 1000.0), b = at((s + 1) / 1000.0);
                area += 0.5 * (a[0] * b[1] - a[1] * b[0]);
            }
        }
        return std::fabs(area);
    };
    const std::vector<VtVector2> ring{{0.1, 0.2}, {0.5, 0.1}, {0.9, 0.3}, {0.8, 0.9}, {0.4, 0.6}, {0.2, 0.9}};
    const std::vector<VtVector2> hermite{{0.2, 0.2}, {0.8, -0.4}, {0.8, 0.2}, {0.4, 0.8}, {0.5, 0.8}, {-0.8, 0.3}};
    struct Case {
        VtMatrix4 basis;
        std::size_t step;
        const std::vector<VtVector2> &points;
    };
    for (const Case &c : {Case{VtBezierBasis(), 3, ring}, Case{VtBSplineBasis(), 1, ring},
                          Case{VtCatmullRomBasis(), 1, ring}, Case{VtHermiteBasis(), 2, hermite}}) {
        const double area = area_of(c.basis, c.step, c.points);
        EXPECT_GT(area, 0.1);
        EXPECT_NEAR(left_of_square([&](Scene &scene) {
                        return curve(scene, c.points, "basis", c.basis, "step", static_cast<int>(c.step));
                    }),
                    area, tolerance);
        // The step that goes with the basis.
        EXPECT_NEAR(left_of_square([&](Scene &scene) { return curve(scene, c.points, "basis", c.basis); }), area,
                    tolerance);
    }
}

TEST(Trimmers, BezierCircleLeavesACircle) {
    // Four cubics; with this handle the area is that of the circle to 3e-4.
    const double r = 0.4, h = 0.5522847498 * r;
    std::vector<VtVector2> points;
    for (int i = 0; i < 4; ++i) {
        const double c = std::cos(pi / 2 * i), s = std::sin(pi / 2 * i);
        const auto turned = [&](double x, double y) { return VtVector2(0.5 + c * x - s * y, 0.5 + s * x + c * y); };
        points.insert(points.end(), {turned(r, 0), turned(r, h), turned(h, r)});
    }
    EXPECT_NEAR(left_of_square([&](Scene &scene) { return curve(scene, points, "basis", VtBezierBasis()); }),
                pi * r * r, tolerance);
}

TEST(Trimmers, ManyCornersAreLikeFew) {
    std::vector<VtVector2> points;
    for (int i = 0; i < 10000; ++i) {
        const double turn = 2 * pi * i / 10000;
        const double r = 0.3 + 0.1 * std::sin(40 * turn);
        points.emplace_back(0.5 + r * std::cos(turn), 0.5 + r * std::sin(turn));
    }
    // The area of a polar curve: the integral of r^2 / 2.
    EXPECT_NEAR(left_of_square([&](Scene &scene) { return curve(scene, points); }), pi * (0.09 + 0.005), tolerance);
}

TEST(Trimmers, ShapesAreCutInTheirParameters) {
    // A quarter of the turns of round things, or of their rim, and lower halves.
    const std::vector<VtVector2> quarter{{0.25, -1}, {0.5, -1}, {0.5, 2}, {0.25, 2}};
    const auto left_of = [&](const char *type, auto... values) {
        return covered([&](Scene &scene) { return scene.object(type, "trimmers", curve(scene, quarter), values...); });
    };
    EXPECT_NEAR(left_of("disk"), pi / 4, tolerance);
    // From +X by -Z: behind the axis. What faces the camera is open, and the back of the far side does not shine.
    EXPECT_EQ(left_of("cylinder", "caps", 0), 0);
    EXPECT_EQ(left_of("sphere"), 0);
    const std::vector<VtVector2> front{{0.0, -1}, {0.25, -1}, {0.25, 2}, {0.0, 2}};
    const auto front_of = [&](const char *type, auto... values) {
        return covered([&](Scene &scene) { return scene.object(type, "trimmers", curve(scene, front), values...); });
    };
    EXPECT_NEAR(front_of("cylinder", "caps", 0), 1, 2 * tolerance);
    EXPECT_NEAR(front_of("sphere"), pi / 2, 2 * tolerance);
    EXPECT_NEAR(front_of("cone", "caps", 0), 0.5, 2 * tolerance);
}

TEST(Trimmers, MeshesAreCutInTheirCoordinates) {
    const double area = covered([](Scene &scene) {
        scripted::Points points;
        scripted::Indices triangles;
        Pairs uvs;
        scripted::fill(points, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
        scripted::fill(triangles, {0, 1, 2, 0, 2, 3});
        fill(uvs, {{0, 0}, {4, 0}, {4, 4}, {0, 4}});
        return scene.object("mesh", "points", points, "triangles", triangles, "uvs", uvs, "trimmers",
                            curve(scene, {{1, 1}, {3, 1}, {2, 3}}));
    });
    EXPECT_NEAR(area, 2.0 / 4, tolerance);
}

TEST(Trimmers, PlanesAndBoxesCut) {
    // Half of a sphere, from the side; and from below the plane, where the dome's inside does not shine.
    const auto left_of_sphere = [](auto... values) {
        return covered([&](Scene &scene) { return scene.object("sphere", "trimmers", trimmer(scene, values...)); });
    };
    EXPECT_NEAR(left_of_sphere("plane"), pi / 2, 2 * tolerance);
    EXPECT_NEAR(left_of_sphere("plane", "normal", VtVector3(0, 0, -3)), pi, 2 * tolerance);
    EXPECT_EQ(left_of_sphere("plane", "normal", VtVector3(0, 0, 3)), 0);
    EXPECT_NEAR(left_of_sphere("box", "min", VtVector3(-0.5, -0.5, -2), "max", VtVector3(0.5, 0.5, 2)), 1, tolerance);
    EXPECT_NEAR(
        left_of_sphere("box", "min", VtVector3(-0.5, -0.5, -2), "max", VtVector3(0.5, 0.5, 2), "keep", "outside"),
        pi - 1, 2 * tolerance);
}

TEST(Trimmers, AllOfAListHaveToKeepAPoint) {
    const double area = covered([](Scene &scene) {
        scripted::Indices ids;
        scripted::fill(ids, {trimmer(scene, "plane"), trimmer(scene, "plane", "normal", VtVector3(1, 0, 0))});
        return scene.object("sphere", "trimmers", ids);
    });
    EXPECT_NEAR(area, pi / 4, 2 * tolerance);
}

TEST(Trimmers, GoWithTheObjectIntoItsPlaces) {
    // Two halves side by side, one of them upside down; each half as large.
    const double area = covered([](Scene &scene) {
        VtInstanceArray<VtTransform> instances;
        for (const double scale : {0.5, -0.5}) {
            VtTransform place;
            place.Scaling({0.5, scale, 0.5});
            place[3] = {scale, 0, 0, 1};
            instances.Add(place);
        }
        const VtLong half = scene.object("sphere", "trimmers", trimmer(scene, "plane"));
        return scene.object("instances", "object", half, "places", instances);
    });
    EXPECT_NEAR(area, 2 * pi / 8, 2 * tolerance);
}

TEST(Trimmers, LetLightThroughWhereTheyCut) {
    // A white floor under a quad that hides the light, but for a hole: the floor's light arrives through it.
    const auto seen = [](bool has_hole) {
        Scene scene;
        scene.camera({0.5, 0.5, 1}, {0.5, 0.5, 0}, 20);
        scene.light("distant", "direction", VtVector3(0, 0, -1), "irradiance", pi);
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("quad"));
        VtTransform up;
        up.Translation({0, 0, 2});
        scene.TransformBegin(up);
        if (has_hole)
            scene.AddObject(scene.object(
                "quad", "trimmers", curve(scene, {{0.3, 0.3}, {0.7, 0.3}, {0.7, 0.7}, {0.3, 0.7}}, "keep", "outside")));
        else
            scene.AddObject(scene.object("quad"));
        scene.TransformEnd();
        scene.MaterialEnd();
        return scene.render(8, 8, 4).mean();
    };
    EXPECT_GT(seen(true), 0.99);
    EXPECT_LT(seen(false), 0.01);
}

TEST(Trimmers, MistakesAreReportedInOneLine) {
    Scene scene;
    const auto line_of = [&](const std::function<void()> &work) {
        const std::string errors = scripted::errors_of(work);
        EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
        return errors;
    };
    EXPECT_NE(line_of([&] { curve(scene, {{0, 0}, {1, 1}}); }).find("three or more enclose"), std::string::npos);
    EXPECT_NE(line_of([&] { curve(scene, {}); }).find("three or more enclose"), std::string::npos);
    EXPECT_NE(line_of([&] { curve(scene, {{0, 0}, {1, std::nan("")}, {1, 1}}); }).find("unusable"), std::string::npos);
    EXPECT_NE(line_of([&] {
                  curve(scene, {{0, 0}, {1, 1}, {1, 2}, {0, 1}}, "basis", VtBezierBasis());
              }).find("3, 6, 9"),
              std::string::npos);
    EXPECT_NE(line_of([&] { curve(scene, {{0, 0}, {1, 0}, {1, 1}}, "step", 1); }).find("no effect"), std::string::npos);
    EXPECT_NE(line_of([&] { trimmer(scene, "box", "min", VtVector3(2, 0, 0)); }).find("the box is empty"),
              std::string::npos);
    EXPECT_NE(line_of([&] { scene.object("sphere", "trimmers", 4711); }).find("no entity has the id 4711"),
              std::string::npos);
}

} // namespace
