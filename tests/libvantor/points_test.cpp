// Points: a cloud of spheres against the same spheres one by one; at every scale, touching and overlapping; bad input.
#include "libvantor/embree/ray_start.h"
#include "libvantor/shapes/points.h"
#include "libvantor/shapes/sphere.h"
#include "tests/libvantor/made_shape.h"

#include <functional>
#include <tbb/global_control.h>

namespace {

using scripted::List;
using scripted::made;
using scripted::Pixels;
using scripted::Scene;
using Numbers = VtInstanceArray<double>;
using vantor::identity;

struct Ball {
    VtVector3 center;
    double radius;
    VtVector3 color{1, 1, 1};
};

// Of which some overlap, some touch, one lies within another, and one is there twice.
const std::vector<Ball> some_balls{
    {{-0.9, -0.2, 0.1}, 0.5, {0.9, 0.2, 0.1}},  {{-0.3, 0.1, 0.3}, 0.4, {0.1, 0.8, 0.2}},
    {{0.5, -0.1, 0}, 0.3, {0.2, 0.3, 1}},       {{1.1, -0.1, 0}, 0.3, {1, 1, 0.3}},
    {{0.5, 0.7, -0.2}, 0.35, {0.7, 0.7, 0.7}},  {{0.5, 0.7, -0.2}, 0.15, {1, 0, 0}},
    {{-0.4, -0.8, 0.4}, 0.25, {0.3, 0.9, 0.9}}, {{-0.4, -0.8, 0.4}, 0.25, {0.3, 0.9, 0.9}},
};

// More than are copied under a map. All but the first are out of sight, each in front of the next.
std::vector<Ball> among_many(std::vector<Ball> balls) {
    for (int i = 0; i < 20001; ++i)
        balls.push_back({{40.0 + 0.01 * i, 80.0, 40.0}, 1e-3, {1, 1, 1}});
    return balls;
}

VtLong points_of(Scene &scene, const std::vector<Ball> &balls, bool are_colored = false) {
    scripted::Points positions, colors;
    Numbers radii;
    for (const Ball &ball : balls) {
        positions.Add(ball.center);
        radii.Add(ball.radius);
        colors.Add(ball.color);
    }
    return are_colored ? scene.object("points", "positions", positions, "radii", radii, "colors", colors)
                       : scene.object("points", "positions", positions, "radii", radii);
}

void add_spheres(Scene &scene, const std::vector<Ball> &balls) {
    for (const Ball &ball : balls)
        scene.AddObject(scene.object("sphere", "center", ball.center, "radius", ball.radius));
}

VtTransform scaled(double x, double y, double z) {
    VtTransform transform;
    transform.Scaling({x, y, z});
    return transform;
}

VtTransform sheared() {
    VtTransform transform;
    transform.RotationAroundAxis({0, 0, 0}, {1, 2, 3}, 50.0);
    for (int c = 0; c < 3; ++c) {
        transform[0][c] *= -1.3;
        transform[1][c] = 0.8 * transform[1][c] + 0.2 * transform[0][c];
    }
    transform[3] = {0.1, -0.1, 0.2, 1};
    return transform;
}

// How many pixels differ by more than rounding. Where a ray passes an edge by less, its whole path may be another one.
int different_pixels(const Pixels &a, const Pixels &b) {
    int count = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            if (std::fabs(a.values[i][c] - b.values[i][c]) > 1e-3f * (1 + std::fabs(a.values[i][c]))) {
                ++count;
                break;
            }
    return count;
}

void look(Scene &scene) {
    scene.camera({0.3, 0.4, 6}, {0, 0, 0}, 32);
    scene.light("distant", "direction", VtVector3(-0.3, -0.5, -1), "irradiance", 2.0);
    scene.light("environment", "radiance", 0.3);
}

// What is added within has a surface of that kind.
class Within {
  public:
    enum Kind { Nothing, CheckedAndBumped, GlassWithAMedium, Shining };

    Within(Scene &of, Kind is) : scene(of), kind(is) {
        if (kind == CheckedAndBumped) {
            List checks("scale", 6.0), noise("scale", 5.0), diffuse("reflectance", 0.8);
            List surface("interface", scene.NewInterface("diffuse", diffuse), "color",
                         scene.NewPattern("checker", checks), "bump", scene.NewPattern("noise", noise), "bump_height",
                         0.05);
            scene.MaterialBegin(scene.NewMaterial("surface", surface));
        } else if (kind == GlassWithAMedium) {
            List medium("sigma_a", VtVector3(1, 2, 3), "sigma_s", 0.5);
            scene.InteriorBegin(scene.NewInterior("homogeneous", medium));
            scene.MaterialBegin(scene.surface("dielectric", "ior", 1.3));
        } else if (kind == Shining) {
            scene.light("area", "radiance", 0.7);
            scene.LightBegin();
            scene.MaterialBegin(scene.diffuse(0.5));
        }
    }
    ~Within() {
        if (kind != Nothing)
            scene.MaterialEnd();
        if (kind == GlassWithAMedium)
            scene.InteriorEnd();
        if (kind == Shining)
            scene.LightEnd();
    }
    Within(const Within &) = delete;
    Within &operator=(const Within &) = delete;

  private:
    Scene &scene;
    Kind kind;
};

Pixels drawn(Within::Kind kind, const VtTransform &transform, const std::function<void(Scene &)> &add) {
    Scene scene;
    look(scene);
    {
        const Within within(scene, kind);
        scene.TransformBegin(transform);
        add(scene);
        scene.TransformEnd();
    }
    return scene.render(40, 40, 16);
}

// Paths within glass that rounding leads elsewhere are more.
void expect_alike(const Pixels &found, const Pixels &expected, Within::Kind kind) {
    EXPECT_GT(expected.mean(), 0.1) << kind;
    EXPECT_NEAR(found.mean(), expected.mean(), 0.01 * expected.mean()) << kind;
    EXPECT_LE(different_pixels(found, expected), kind == Within::GlassWithAMedium ? 60 : 8) << kind;
}

TEST(Points, LookLikeSpheresOneByOne) {
    for (const auto kind : {Within::CheckedAndBumped, Within::GlassWithAMedium, Within::Shining})
        for (const VtTransform &transform : {identity(), scaled(0.9, 0.9, -0.9), sheared()})
            expect_alike(drawn(kind, transform, [](Scene &scene) { scene.AddObject(points_of(scene, some_balls)); }),
                         drawn(kind, transform, [](Scene &scene) { add_spheres(scene, some_balls); }), kind);
}

TEST(Points, LookAlikeAmongMany) {
    const auto few = [](Scene &scene) { scene.AddObject(points_of(scene, some_balls)); };
    const auto many = [](Scene &scene) { scene.AddObject(points_of(scene, among_many(some_balls))); };
    for (const auto kind : {Within::CheckedAndBumped, Within::GlassWithAMedium})
        for (const VtTransform &transform : {identity(), scaled(0.9, 0.9, -0.9), sheared()})
            expect_alike(drawn(kind, transform, many), drawn(kind, transform, few), kind);
}

TEST(Points, ColorsAreThoseOfMaterialsForEach) {
    const auto one_by_one = [](Scene &scene) {
        for (const Ball &ball : some_balls) {
            scene.MaterialBegin(scene.surface("plastic", "color", ball.color));
            add_spheres(scene, {ball});
            scene.MaterialEnd();
        }
    };
    const auto together = [](Scene &scene) {
        scene.MaterialBegin(scene.surface("plastic", "color", 1.0));
        scene.AddObject(points_of(scene, some_balls, true));
        scene.MaterialEnd();
    };
    for (const VtTransform &transform : {identity(), sheared()})
        expect_alike(drawn(Within::Nothing, transform, together), drawn(Within::Nothing, transform, one_by_one),
                     Within::Nothing);
}

TEST(Points, ColorsMultiplyThoseOfPatternsAndInstances) {
    // The albedo of one point that fills the picture.
    Scene scene;
    scene.camera({0, 0, 5}, {0, 0, 0}, 5);
    scene.light("environment");
    List stops("a", VtVector3(0.5, 0.5, 0.5), "b", VtVector3(0.5, 0.5, 0.5)), diffuse("reflectance", 1.0);
    List surface("interface", scene.NewInterface("diffuse", diffuse), "color", scene.NewPattern("checker", stops));
    scene.MaterialBegin(scene.NewMaterial("surface", surface));
    VtInstanceArray<VtTransform> places;
    places.Add(VtTransform()); // is left out, with its colour
    places.Add(identity());
    scripted::Points colors;
    scripted::fill(colors, {{1, 0, 0}, {0.5, 1, 1}});
    VtLong id = 0;
    const std::string errors = scripted::errors_of([&] {
        const VtLong points = points_of(scene, {{{0, 0, 0}, 1, {0.8, 0.4, 0.2}}}, true);
        id = scene.object("instances", "object", points, "places", places, "colors", colors);
    });
    EXPECT_NE(errors.find("leaves out transform 0"), std::string::npos);
    scene.AddObject(id);
    scene.MaterialEnd();
    const std::string path = scripted::path_of("albedo.exr");
    List imager("name", path, "what", "albedo");
    scene.NewImager("file", imager);
    scene.Render(4, 4, 1, 0, 0, 1, 1);
    const Pixels albedo = scripted::read_exr(path);
    EXPECT_FLOAT_EQ(albedo.at(1, 1)[0], 0.5f * 0.8f * 0.5f);
    EXPECT_FLOAT_EQ(albedo.at(1, 1)[1], 0.5f * 0.4f);
    EXPECT_FLOAT_EQ(albedo.at(1, 1)[2], 0.5f * 0.2f);
}

// Balls that fill a cube, each touching its neighbours.
std::vector<Ball> lattice(int side, double radius) {
    std::vector<Ball> balls;
    const auto at = [&](int i) { return (2 * i + 1 - side) * radius; };
    for (int x = 0; x < side; ++x)
        for (int y = 0; y < side; ++y)
            for (int z = 0; z < side; ++z)
                balls.push_back({{at(x), at(y), at(z)}, radius});
    return balls;
}

// The mean of a picture of a cloud in light of radiance 1 from everywhere.
double in_furnace(const std::vector<Ball> &balls, double size, const VtVector3 &at, const char *interface,
                  const char *parameter, double value) {
    Scene scene;
    scene.camera({at[0] + 0.4 * size, at[1] + 0.7 * size, at[2] + 5 * size}, at, 30);
    scene.light("environment", "radiance", 1.0);
    VtTransform moved;
    moved.Translation(at);
    scene.MaterialBegin(scene.surface(interface, parameter, value));
    scene.TransformBegin(moved);
    scene.AddObject(points_of(scene, balls));
    scene.TransformEnd();
    scene.MaterialEnd();
    return scene.render(16, 16, 64).mean();
}

TEST(Points, WhatLosesNoLightCannotBeSeenInAFurnace) {
    for (const double size : {1e-3, 1.0, 1e4}) {
        std::vector<Ball> balls = some_balls;
        for (Ball &ball : balls) {
            ball.radius *= size;
            for (int c = 0; c < 3; ++c)
                ball.center[c] *= size;
        }
        // 16384 paths, whose standard deviation is below 1 between balls, where roulette ends some, and below 3 within
        // glass.
        EXPECT_NEAR(in_furnace(balls, size, {0, 0, 0}, "diffuse", "reflectance", 1), 1, 4.0 / 128) << size;
        EXPECT_NEAR(in_furnace(lattice(5, 0.25 * size), size, {0, 0, 0}, "diffuse", "reflectance", 1), 1, 4.0 / 128)
            << size;
        EXPECT_NEAR(in_furnace(lattice(3, 0.3 * size), size, {0, 0, 0}, "dielectric", "ior", 1.5), 1, 12.0 / 128)
            << size;
        EXPECT_NEAR(in_furnace(balls, size, {50 * size, -20 * size, 30 * size}, "dielectric", "ior", 1), 1, 1e-3)
            << size;
    }
}

TEST(Points, AreLitAtEveryScale) {
    // Under the sun a white one has the radiance 1 where it faces it, and does not shadow itself.
    for (const double radius : {1e-3, 1.0, 1000.0, 1e5})
        for (const bool are_many : {false, true}) {
            Scene scene;
            scene.light("distant", "direction", VtVector3(0, -1, 0), "irradiance", M_PI);
            const double away = std::min(radius, 1.0);
            scene.camera({0, 0.6 * away, 0.8 * away}, {0, 0, 0}, 1);
            scene.MaterialBegin(scene.diffuse(1.0));
            const std::vector<Ball> ground{{{0, -radius, 0}, radius}};
            const std::vector<Ball> many = among_many(ground);
            // Of a ground that large, the others would stand on it.
            scene.AddObject(points_of(scene, are_many && radius <= 1 ? many : ground));
            scene.MaterialEnd();
            EXPECT_NEAR(scene.render(16, 16, 4).mean(), 1, 2e-3) << radius;
        }
}

// What comes through absorbing balls along the ray, in light of radiance 1.
double through(const std::vector<Ball> &balls, double absorption, const VtVector3 &at, const VtVector3 &eye) {
    Scene scene;
    List camera("position", VtVector3(at[0] + eye[0], at[1] + eye[1], at[2] + eye[2]), "target",
                VtVector3(at[0], at[1], at[2]), "fov", 0.01, "up", VtVector3(0, 1, 0));
    scene.NewCamera("perspective", camera);
    scene.light("environment", "radiance", 1.0);
    List black("reflectance", 0.0), medium("sigma_a", absorption, "sigma_s", 0.0);
    List clear("interface", scene.NewInterface("diffuse", black), "opacity", 0.0);
    scene.MaterialBegin(scene.NewMaterial("surface", clear));
    scene.InteriorBegin(scene.NewInterior("homogeneous", medium));
    VtTransform moved;
    moved.Translation(at);
    scene.TransformBegin(moved);
    scene.AddObject(points_of(scene, balls));
    scene.TransformEnd();
    scene.InteriorEnd();
    scene.MaterialEnd();
    return scene.render(4, 4, 4).mean();
}

TEST(Points, BodiesOfOneObjectMayTouchOverlapAndCoincide) {
    const VtVector3 eye(0, 0, 20);
    for (const VtVector3 &at : {VtVector3(0, 0, 0), VtVector3(50, 30, -20)}) {
        // In a row, each touching the next.
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 1}, 0.5}, {{0, 0, 2}, 0.5}, {{0, 0, -1}, 0.5}}, 0.3, at, eye),
                    std::exp(-0.3 * 4), 1e-3);
        // What two enclose counts once.
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 0.6}, 0.5}}, 1, at, eye), std::exp(-1.6), 1e-3);
        // By less than the rounding that rays are kept off surfaces.
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 2e-7}, 0.5}, {{0, 0, 4e-7}, 0.5}}, 1, at, eye), std::exp(-1),
                    1e-3);
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 0}, 0.5}, {{0, 0, 0}, 0.5}}, 1, at, eye), std::exp(-1), 1e-3);
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 0.1}, 0.4}}, 1, at, eye), std::exp(-1), 1e-3);
        // From within one, and from within two of them.
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}}, 1, at, {0, 0, 0.25}), std::exp(-0.75), 1e-3);
        EXPECT_NEAR(through({{{0, 0, 0}, 0.5}, {{0, 0, 0.3}, 0.5}}, 1, at, {0, 0, 0.25}), std::exp(-0.75), 1e-3);
    }
}

TEST(Points, CrossedSurfacesAreThoseOfThePrimitiveWhereItIsABody) {
    vantor::Hit hit{};
    hit.placement = 3;
    hit.instance = 2;
    hit.primitive = 7;
    vantor::CrossedSurfaces crossed;
    crossed.add(hit, false, 1);
    vantor::MetSurface met{3, 2, 7, false, true, true};
    EXPECT_TRUE(crossed.holds(met, 0.5f));
    EXPECT_FALSE(crossed.holds(met, 1.5f));
    met.primitive = 8;
    EXPECT_FALSE(crossed.holds(met, 0.5f));
    met.is_body = false;
    EXPECT_TRUE(crossed.holds(met, 0.5f));
    met.is_left = true;
    EXPECT_FALSE(crossed.holds(met, 0.5f));
    met.has_sides = false;
    EXPECT_TRUE(crossed.holds(met, 0.5f));
    met.instance = 1;
    EXPECT_FALSE(crossed.holds(met, 0.5f));
}

TEST(Points, WindowsAndThreadsMakeNoDifference) {
    Scene scene;
    look(scene);
    scene.light("area", "radiance", 0.5);
    scene.LightBegin();
    scene.MaterialBegin(scene.surface("plastic", "color", 0.9));
    scene.AddObject(points_of(scene, lattice(4, 0.2), true));
    scene.MaterialEnd();
    scene.LightEnd();
    scene.MaterialBegin(scene.surface("dielectric"));
    scene.AddObject(points_of(scene, among_many(some_balls), true));
    scene.MaterialEnd();
    const Pixels whole = scene.render(32, 32, 4);
    const Pixels part = scene.render(32, 32, 4, 0.25, 0.25, 0.75, 0.75);
    for (int y = 8; y < 24; ++y)
        for (int x = 8; x < 24; ++x)
            ASSERT_EQ(part.at(x, y), whole.at(x, y)) << x << ' ' << y;
    const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
    EXPECT_EQ(scene.render(32, 32, 4).values, whole.values);
}

TEST(Points, AreLitByPatchesThoughTheyHaveNone) {
    // A grey point in the middle of a closed room that shines: its colour counts as in a pass without patches.
    const auto mean_with = [](bool has_patches) {
        Scene scene;
        scene.camera({0, 0, 0.95}, {0, 0, 0}, 40);
        scene.light("area", "radiance", 0.5);
        scene.LightBegin();
        scene.MaterialBegin(scene.diffuse(0.5));
        scene.AddObject(scene.room());
        scene.LightEnd();
        scene.AddObject(points_of(scene, {{{0, 0, 0}, 0.3, {0.5, 0.25, 1}}}, true));
        scene.MaterialEnd();
        if (has_patches)
            scene.Radiosity();
        return scene.render(16, 16, 64).mean();
    };
    const double by_paths = mean_with(false);
    EXPECT_NEAR(mean_with(true), by_paths, 0.03 * by_paths);
}

TEST(Points, HaveTheParametersOfASphere) {
    scripted::Points positions, colors;
    Numbers radii;
    for (int i = 0; i < 3; ++i) {
        positions.Add({1.0 * i, 2, 3});
        radii.Add(0.5 + i);
        colors.Add({0.1 * i, 1, 2});
    }
    const auto points = made<vantor::Points>("points", "positions", positions, "radii", radii, "colors", colors);
    ASSERT_TRUE(points);
    EXPECT_EQ(primitives_of(*points), 3u);
    EXPECT_FLOAT_EQ(reach_of(*points), 3 + 2.5f);
    EXPECT_FLOAT_EQ(color_at(*points, 2, {}).r, 0.2f);
    const vantor::Vec3 point{2 + 2.5f * 0.6f, 2 + 2.5f * 0.8f, 3};
    const vantor::SurfaceParameters found = parameters_at(*points, 2, {}, point);
    const vantor::SurfaceParameters expected = parameters_at(vantor::Sphere{{2, 2, 3}, 2.5f}, 0, {}, point);
    EXPECT_EQ(found.uv.u, expected.uv.u);
    EXPECT_EQ(found.uv.v, expected.uv.v);
    EXPECT_EQ(found.along_u.z, expected.along_u.z);
    EXPECT_EQ(found.along_v.y, expected.along_v.y);
}

TEST(Points, BadInputIsOneLineEach) {
    const std::string head = "vantor: newObject \"points\": ";
    scripted::Points positions, none, holes, black;
    Numbers few, wrong;
    for (int i = 0; i < 4; ++i) {
        positions.Add({static_cast<double>(i), 0, 0});
        holes.Add({i % 2 == 1 ? std::nan("") : i, 0, 0});
        black.Add({0, i == 2 ? -1.0 : 0, 0});
        wrong.Add(i == 1 ? -0.5 : i == 3 ? std::nan("") : 1);
    }
    few.Add(1);
    scripted::Points few_colors;
    few_colors.Add({1, 1, 1});
    const auto refused = [&](const auto &...values) {
        return scripted::errors_of([&] { EXPECT_FALSE(made<vantor::Points>("points", values...)); });
    };
    std::optional<vantor::Points> points;
    const auto accepted = [&](const auto &...values) {
        const std::string errors = scripted::errors_of([&] { points = made<vantor::Points>("points", values...); });
        EXPECT_TRUE(points);
        return errors;
    };
    EXPECT_EQ(refused("positions", none),
              head + "item 1: parameter \"positions\" is empty; nothing of the points will be seen\n");
    EXPECT_EQ(refused("positions", positions, "radii", few),
              head + "item 3: parameter \"radii\" has 1 element (expected one for each of the 4 positions); nothing of "
                     "the points will be seen\n");
    EXPECT_EQ(refused("positions", positions, "radii", wrong),
              head + "item 3: parameter \"radii\" has 2 unusable elements, the first of them 1 (expected radii from "
                     "1e-9 to 1e9); nothing of the points will be seen\n");
    EXPECT_EQ(accepted("positions", positions, "radius", -1.0),
              head + "item 3: parameter \"radius\" is out of range: expected 1e-9 to 1e9, got -1\n");
    EXPECT_EQ(accepted("positions", holes),
              head + "item 1: parameter \"positions\" leaves out 2 points, the first of them 1 (expected finite "
                     "coordinates up to 1e9)\n");
    EXPECT_EQ(points->balls.size(), 2u);
    EXPECT_EQ(points->balls[1][0], 2);
    EXPECT_EQ(points->balls[1][3], 0.01f);
    EXPECT_EQ(accepted("positions", positions, "colors", few_colors),
              head +
                  "item 3: parameter \"colors\" has 1 element (expected one for each of the 4 positions); it is left "
                  "out\n");
    EXPECT_EQ(accepted("positions", positions, "colors", black),
              head + "item 3: parameter \"colors\" has unusable elements (expected components from 0 to 1e9); it is "
                     "left out\n");
    EXPECT_TRUE(points->colors.empty());
    Numbers good;
    for (int i = 0; i < 4; ++i)
        good.Add(1 + i);
    EXPECT_EQ(accepted("positions", positions, "radii", good, "radius", 0.5),
              head + "item 5: parameter \"radius\" has no effect beside \"radii\"\n");
    EXPECT_EQ(points->balls[3][3], 4);
    EXPECT_NE(refused("radius", 1.0).find("\"positions\""), std::string::npos);
}

} // namespace
