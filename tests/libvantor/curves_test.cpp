// Curves: silhouettes, normals, (u, v), all bases, light on hair, and bad input.
#include "libvantor/shapes/spline.h"
#include "tests/libvantor/made_shape.h"

namespace {

using namespace vantor;
using scripted::Indices;
using scripted::made;
using scripted::Points;
using scripted::Scene;

constexpr double circle = 3.14159265358979;

// Control points of the straight line from -1 to 1 along x.
std::vector<VtVector3> line(const char *basis) {
    if (std::string(basis) == "hermite")
        return {{-1, 0, 0}, {2, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    if (std::string(basis) == "bezier")
        return {{-1, 0, 0}, {-1 / 3.0, 0, 0}, {1 / 3.0, 0, 0}, {1, 0, 0}};
    return {{-3, 0, 0}, {-1, 0, 0}, {1, 0, 0}, {3, 0, 0}};
}

// How much of the picture shining curves cover, seen along -Z by a window of 4 x 4 at the distance 400: as good as
// parallel rays.
double covered(const char *kind, const std::vector<VtVector3> &control, const VtMatrix4 &basis, double radius,
               const VtTransform &transform = identity()) {
    Scene scene;
    scene.camera({0, 0, 400}, {0, 0, 0}, 2 * std::atan(2 / 400.0) * 180 / circle);
    Points points;
    scripted::fill(points, control);
    scene.light("area");
    scene.LightBegin();
    scene.TransformBegin(transform);
    scene.AddObject(scene.object("curves", "points", points, "basis", basis, "radius", radius, "kind", kind));
    scene.TransformEnd();
    scene.LightEnd();
    return 16 * scene.render(64, 64, 16).mean();
}

TEST(Curves, SilhouettesAreLengthTimesDiameter) {
    // 65536 stratified paths; of an area of 0.8 in 16 the standard error is below 16 sqrt(0.05 / 65536) = 0.014. An
    // exact edge makes it far less: pixels on the edge alone vary.
    const struct {
        const char *name;
        VtMatrix4 basis;
    } families[] = {{"bezier", VtBezierBasis()},
                    {"b-spline", VtBSplineBasis()},
                    {"catmull-rom", VtCatmullRomBasis()},
                    {"hermite", VtHermiteBasis()}};
    for (const char *kind : {"ribbon", "tube"})
        for (const auto &family : families)
            EXPECT_NEAR(covered(kind, line(family.name), family.basis, 0.2), 2 * 0.4, 0.008) << kind << family.name;
}

TEST(Curves, FollowTheirTransform) {
    VtTransform turned, stretched, mirrored;
    turned.RotationAroundZ(30);
    stretched.Scaling({1.5, 0.5, 2});
    mirrored.Scaling({-1, 1, 1});
    const std::vector<VtVector3> along_x = line("bezier");
    for (const char *kind : {"ribbon", "tube"}) {
        EXPECT_NEAR(covered(kind, along_x, VtBezierBasis(), 0.2, turned), 0.8, 0.01) << kind;
        EXPECT_NEAR(covered(kind, along_x, VtBezierBasis(), 0.2, stretched), 0.6, 0.01) << kind;
        EXPECT_NEAR(covered(kind, along_x, VtBezierBasis(), 0.2, mirrored), 0.8, 0.008) << kind;
    }
}

// The same of ribbons along x, by radii of their control points.
double covered_by_ribbon(const std::vector<VtVector3> &control, const VtMatrix4 &basis,
                         std::initializer_list<double> given) {
    Scene scene;
    scene.camera({0, 0, 400}, {0, 0, 0}, 2 * std::atan(2 / 400.0) * 180 / circle);
    Points points;
    VtInstanceArray<double> radii;
    scripted::fill(points, control);
    for (const double radius : given)
        radii.Add(radius);
    scene.light("area");
    scene.LightBegin();
    scene.AddObject(scene.object("curves", "points", points, "basis", basis, "radii", radii));
    scene.LightEnd();
    return 16 * scene.render(64, 64, 16).mean();
}

TEST(Curves, RadiiGoAlongTheSpline) {
    // From 0.1 to 0.3 at constant rate: a trapezium of 2 x (0.2 + 0.6) / 2.
    EXPECT_NEAR(covered_by_ribbon(line("bezier"), VtBezierBasis(), {0.1, 0.1 + 0.2 / 3, 0.3 - 0.2 / 3, 0.3}), 0.8,
                0.008);
    // (1 - 2t)^2 is nowhere negative, but two of its Bezier points are.
    EXPECT_NEAR(covered_by_ribbon(line("hermite"), VtHermiteBasis(), {1, -4, 1, 4}), 4 / 3.0, 0.008);
    // 1 - 2t is, from the middle on, where there is no ribbon.
    EXPECT_NEAR(covered_by_ribbon(line("hermite"), VtHermiteBasis(), {1, -2, -1, -2}), 1, 0.008);
}

TEST(Curves, AreLitAsTheyStand) {
    // Under a distant light along the view, a ribbon faces both and is lit in full; a tube, as a cylinder: at the
    // height y of its radius by the cosine sqrt(1 - y^2), whose mean is pi / 4. Each fills half of the picture.
    const auto lit = [](const char *kind, double scale) {
        Scene scene;
        scene.camera({0, 0, 400}, {0, 0, 0}, 2 * std::atan(0.2 / 400.0) * 180 / circle);
        scene.light("distant", "irradiance", circle);
        Points points;
        scripted::fill(points, line("b-spline"));
        VtTransform stretched;
        stretched.Scaling({-scale, 1, scale});
        scene.TransformBegin(stretched);
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("curves", "points", points, "radius", 0.1, "kind", kind));
        scene.MaterialEnd();
        scene.TransformEnd();
        return 2 * scene.render(16, 16, 16).mean();
    };
    EXPECT_NEAR(lit("ribbon", 1), 1, 2e-3);
    EXPECT_NEAR(lit("ribbon", 3), 1, 2e-3);
    EXPECT_NEAR(lit("tube", 1), circle / 4, 2e-3);
    // An ellipse z^2 / 9 + y^2 = 1 in section: its normal (z / 9, y) has the cosine c / sqrt(c^2 + 9 y^2) along z, with
    // c = sqrt(1 - y^2). Its mean is the integral of sqrt((1 - y^2) / (1 + 8 y^2)) over y from 0 to 1.
    double wanted = 0;
    for (int i = 0; i < 10000; ++i) {
        const double y = (i + 0.5) / 10000;
        wanted += std::sqrt((1 - y * y) / (1 + 8 * y * y)) / 10000;
    }
    EXPECT_NEAR(lit("tube", 3), wanted, 2e-3);
}

TEST(Curves, DoNotShadowThemselves) {
    // In light that is the same from everywhere, a straight curve alone reflects half of it, if half is reflected: each
    // way out is free. Where rays started inside, they would be dark.
    for (const char *kind : {"ribbon", "tube"})
        for (const double size : {1e-4, 1.0, 1e4}) {
            Scene scene;
            scene.camera({0.1 * size, 0.2 * size, 4 * size}, {0, 0, 0}, 2);
            scene.light("environment");
            Points points;
            for (const VtVector3 &p : line("b-spline"))
                points.Add({p[0] * size, p[1] * size, p[2] * size});
            scene.MaterialBegin(scene.diffuse(0.5));
            scene.AddObject(scene.object("curves", "points", points, "radius", 0.2 * size, "kind", kind));
            scene.MaterialEnd();
            EXPECT_NEAR(scene.render(16, 16, 64).mean(), 0.5, 0.002) << kind << size;
        }
}

TEST(Curves, HairInAFurnaceLosesNoLight) {
    // A tangle that reflects everything, in light that is the same from everywhere, cannot be told from it: no path
    // gets stuck, nor brighter. 16384 paths, whose roulette alone has a deviation below 0.3: three standard errors.
    for (const char *kind : {"ribbon", "tube"}) {
        Scene scene;
        scene.camera({0, 0, 4}, {0, 0, 0}, 25);
        scene.light("environment");
        Points points;
        Indices counts;
        for (int i = 0; i < 60; ++i) {
            for (int k = 0; k < 6; ++k)
                points.Add({std::sin(1.0 + 3.7 * i + k), std::cos(2.3 * i + 1.9 * k), std::sin(5.1 * i - 0.8 * k)});
            counts.Add(6);
        }
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("curves", "points", points, "counts", counts, "radius", 0.05, "kind", kind));
        scene.MaterialEnd();
        EXPECT_NEAR(scene.render(16, 16, 64).mean(), 1, 0.01) << kind;
    }
}

TEST(Curves, ParametersRunAlongTheWholeCurve) {
    // Two curves, of three and of two segments.
    Points points;
    Indices counts;
    for (int i = 0; i < 11; ++i)
        points.Add({static_cast<double>(i), 0, 0});
    counts.Add(6);
    counts.Add(5);
    const auto curves = made<Curves>("curves", "points", points, "counts", counts);
    ASSERT_TRUE(curves);
    ASSERT_EQ(primitives_of(*curves), 5u);
    // B-splines keep the pace of even points: from 1 to 4, and from 7 to 9.
    EXPECT_FLOAT_EQ(parameters_at(*curves, 1, {0.5f, 0}, {}).uv.u, 0.5f);
    EXPECT_FLOAT_EQ(parameters_at(*curves, 1, {0.5f, 0}, {}).uv.v, 0.5f);
    EXPECT_FLOAT_EQ(parameters_at(*curves, 4, {0.5f, -1}, {}).uv.u, 0.75f);
    EXPECT_FLOAT_EQ(parameters_at(*curves, 4, {0.5f, -1}, {}).uv.v, 0);
    EXPECT_NEAR(parameters_at(*curves, 0, {0.3f, 0}, {}).along_u.x, 3, 1e-5);
    EXPECT_NEAR(parameters_at(*curves, 3, {0.3f, 0}, {}).along_u.x, 2, 1e-5);
    EXPECT_NEAR(reach_of(*curves), 9.01, 1e-5);
}

TEST(Curves, BadInputIsOneLineEach) {
    const std::string head = "vantor: newObject \"curves\": ";
    Points points, unusable, still;
    for (int i = 0; i < 9; ++i) {
        points.Add({static_cast<double>(i), 0, 0});
        unusable.Add({i == 0 ? std::numeric_limits<double>::infinity() : i, 0, 0});
        still.Add({1, 1, 1});
    }
    Indices few, many, odd, negative;
    scripted::fill(few, {4, 4});
    scripted::fill(many, {9, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    scripted::fill(odd, {4, 3, 2});
    scripted::fill(negative, {9, -4});
    VtInstanceArray<double> radii;
    radii.Add(1);
    const auto refused = [&](const Points &given, const auto &...values) {
        return scripted::errors_of([&] { EXPECT_FALSE(made<Curves>("curves", "points", given, values...)); });
    };
    const auto accepted = [&](const Points &given, const auto &...values) {
        return scripted::errors_of([&] { EXPECT_TRUE(made<Curves>("curves", "points", given, values...)); });
    };
    EXPECT_EQ(refused(points, "counts", few),
              head + "item 3: parameter \"counts\" adds up to 8 points (expected as many as there "
                     "are, 9); nothing of the curves will be seen\n");
    EXPECT_EQ(refused(points, "counts", many),
              head + "item 3: parameter \"counts\" has 10 elements (expected at most as many as there are points, 9); "
                     "nothing of the curves will be seen\n");
    EXPECT_EQ(accepted(points, "counts", odd), head + "item 3: parameter \"counts\" leaves out 2 curves, the first of "
                                                      "them 1 (with the step 1, 4, 5, 6 ... points come out even)\n");
    EXPECT_EQ(accepted(points, "counts", negative),
              head + "item 3: parameter \"counts\" leaves out curve 1 (with the step 1, 4, 5, 6 "
                     "... points come out even)\n");
    EXPECT_EQ(accepted(points, "radii", radii), head + "item 3: parameter \"radii\" has 1 element (expected one for "
                                                       "each of the 9 points); \"radius\" counts instead\n");
    for (int i = 0; i < 8; ++i)
        radii.Add(i == 3 ? INFINITY : 1.0);
    EXPECT_EQ(accepted(points, "radii", radii),
              head + "item 3: parameter \"radii\" has unusable elements (expected numbers up to 1e9); \"radius\" "
                     "counts instead\n");
    EXPECT_EQ(accepted(unusable),
              head + "leaves out 1 segment (expected finite coordinates up to 1e9, some length and a radius "
                     "above 0)\n");
    EXPECT_EQ(refused(still),
              head + "leaves out 6 segments (expected finite coordinates up to 1e9, some length and a radius above "
                     "0)\n");
    EXPECT_EQ(refused(points, "basis", VtBezierBasis()),
              head + "item 1: parameter \"points\" leaves out curve 0 (with the step 3, 4, 7, 10 "
                     "... points come out even)\n");
    EXPECT_EQ(accepted(points, "kind", "wire"), head + "item 3: parameter \"kind\": unknown word \"wire\" "
                                                       "(known: \"ribbon\", \"tube\")\n");
}

} // namespace
