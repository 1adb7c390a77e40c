// Disks, cones, cylinders and rings: against closed forms, against marching along rays, and against meshes.
#include "libvantor/shapes/shape.h"
#include "scripted_scene.h"

#include <cmath>
#include <functional>
#include <random>

namespace {

using scripted::Scene;
using vantor::CanonicalMap;
using vantor::CanonicalRay;
using vantor::Cone;
using vantor::Crossing;
using vantor::Crossings;
using vantor::Disk;
using vantor::Double3;
using vantor::Torus;
using vantor::Vec3;

constexpr double pi = 3.14159265358979323846;

double length(Double3 a) { return std::sqrt(dot(a, a)); }

const VtVector3 center(0.3, -0.2, 0.1);
const VtVector3 axis(0.4, -0.8, 0.5); // of a length other than 1, leaning, and downwards

class Random {
  public:
    double uniform(double low, double high) { return low + (high - low) * numbers(engine); }
    Double3 direction() {
        const double z = uniform(-1, 1);
        const double turn = uniform(0, 2 * pi);
        const double r = std::sqrt(1 - z * z);
        return {r * std::cos(turn), r * std::sin(turn), z};
    }

  private:
    std::mt19937 engine{1};
    std::uniform_real_distribution<double> numbers{0, 1};
};

// How far a point is from being on a shape in canonical space: 0 on it, below inside.
double implicit(const Torus &torus, Double3 p, std::uint32_t) {
    return std::hypot(std::hypot(p.x, p.z) - 1, p.y) - torus.tube;
}
double implicit(const Cone &cone, Double3 p, std::uint32_t part) {
    if (part == Cone::base_cap)
        return -p.y;
    return part == Cone::tip_cap ? p.y - 1 : std::hypot(p.x, p.z) - cone.radius_at(p.y);
}
double implicit(const Disk &, Double3 p, std::uint32_t) { return p.y; }

// The points that the documents say have (u, v), in canonical space.
Double3 point_of(double u, double height, double radius) {
    return {radius * std::sin(2 * pi * u), height, radius * std::cos(2 * pi * u)};
}
Double3 point_at(const Torus &torus, double u, double v, std::uint32_t) {
    return point_of(u, torus.tube * std::sin(2 * pi * v), 1 + torus.tube * std::cos(2 * pi * v));
}
Double3 point_at(const Cone &cone, double u, double v, std::uint32_t part) {
    if (part == Cone::side)
        return point_of(u, v, cone.radius_at(v));
    return part == Cone::base_cap ? point_of(u, 0, cone.base * (1 - v)) : point_of(u, 1, cone.tip * (1 - v));
}
Double3 point_at(const Disk &, double u, double v, std::uint32_t) { return point_of(u, 0, 1 - v); }

// Every crossing of random rays lies on the surface, its normal is the gradient, and its (u, v) and the direction of u
// are the documented ones. Returns how many crossings there were.
template <class Kind> int check_crossings(const Kind &kind) {
    Random random;
    int count = 0;
    for (int i = 0; i < 3000; ++i) {
        const Double3 target = random.direction() * random.uniform(0, 1.2);
        const Double3 direction = random.direction() * random.uniform(0.1, 10);
        const CanonicalRay ray{target - direction * random.uniform(-20, 20), direction};
        double last = -1e30;
        for (const Crossing &crossing : crossings(kind, ray)) {
            ++count;
            EXPECT_GE(crossing.t, last);
            last = crossing.t;
            const Double3 p = ray.at(crossing.t);
            EXPECT_NEAR(implicit(kind, p, crossing.part), 0, 1e-9);

            constexpr double step = 1e-7;
            const auto slope = [&](Double3 along) {
                return implicit(kind, p + along * step, crossing.part) -
                       implicit(kind, p - along * step, crossing.part);
            };
            const Double3 gradient = unit(Double3{slope({1, 0, 0}), slope({0, 1, 0}), slope({0, 0, 1})});
            // At the tip of a cone and in the middle of a ring without a hole there is none.
            const double from_axis = std::hypot(p.x, p.z);
            EXPECT_TRUE(from_axis < 1e-3 || length(unit(crossing.normal) - gradient) < 1e-6);

            const Double3 outside = kind.map.direction(p) + kind.map.offset;
            const vantor::SurfaceParameters found = parameters_at(kind, crossing.part, {}, to_float(outside));
            // Floats of a point, near the middle of a disk or the tip of a cone, leave u little accuracy.
            if (from_axis < 0.05)
                continue;
            const auto at = [&](double u) { return point_at(kind, u, found.uv.v, crossing.part); };
            EXPECT_LT(length(at(found.uv.u) - p), 1e-5);
            EXPECT_TRUE(found.uv.u >= 0 && found.uv.u <= 1 && found.uv.v >= -1e-6f && found.uv.v <= 1 + 1e-6f);
            const Double3 along_u = (at(found.uv.u + step) - at(found.uv.u - step)) * (0.5 / step);
            EXPECT_LT(length(kind.map.direction(along_u) - Double3(found.along_u)), 1e-4);
        }
    }
    return count;
}

TEST(Shapes, CrossingsLieOnTheSurfaceWithItsNormalAndParameters) {
    const CanonicalMap map(center, axis, 0.7);
    // Of 3000 rays that aim into a ball, a good share has to arrive.
    EXPECT_GT(check_crossings(Disk{map, 0}), 500);
    EXPECT_GT(check_crossings(Disk{map, 0.5}), 300);
    EXPECT_GT(check_crossings(Cone{map, 1, 0, true}), 2000);
    EXPECT_GT(check_crossings(Cone{map, 0.4, 1, false}), 1000);
    EXPECT_GT(check_crossings(Cone{map, 1, 1, true}), 2000);
    EXPECT_GT(check_crossings(Torus{map, 0.25}), 1000);
    EXPECT_GT(check_crossings(Torus{map, 1}), 1000);
    EXPECT_GT(check_crossings(Torus{map, 1e-3}), 5);
}

TEST(Shapes, AxisAlongYTurnsNothing) {
    const CanonicalMap map({0, 0, 0}, {0, 2, 0}, 3);
    const auto expect_same = [&](Double3 from, Double3 to) { EXPECT_EQ(length(map.direction(from) - to), 0); };
    expect_same({1, 0, 0}, {3, 0, 0});
    expect_same({0, 1, 0}, {0, 2, 0});
    expect_same({0, 0, 1}, {0, 0, 3});
    const CanonicalMap down({0, 0, 0}, {0, -1, 0}, 1);
    EXPECT_LT(length(cross(down.image_z, down.image_x) - down.image_y), 1e-15);
}

// The first crossing by steps as long as the distance from the surface.
double marched(const Torus &torus, const CanonicalRay &ray, double end) {
    double t = 0;
    while (t < end) {
        const double distance = implicit(torus, ray.at(t), 0);
        if (distance < 1e-12)
            return t;
        t += distance;
    }
    return end;
}

TEST(Shapes, TorusIsWhereMarchingFindsIt) {
    Random random;
    for (const double tube : {0.02, 0.3, 0.999}) {
        const Torus torus{CanonicalMap({0, 0, 0}, {0, 1, 0}, 1), tube};
        int hits = 0;
        for (int i = 0; i < 2000; ++i) {
            // At a point near the tube, from outside.
            const Double3 near = point_at(torus, random.uniform(0, 1), random.uniform(0, 1), 0);
            const Double3 direction = random.direction();
            const CanonicalRay ray{near + random.direction() * (0.1 * tube) - direction * 5, direction};
            const Crossings found = crossings(torus, ray);
            const double expected = marched(torus, ray, 10);
            hits += expected < 10 ? 1 : 0;
            if (found.begin() == found.end())
                EXPECT_EQ(expected, 10);
            else
                EXPECT_NEAR(found.begin()->t, expected, 1e-6);
        }
        EXPECT_GT(hits, 1000);
    }
}

TEST(Shapes, TorusMissesNoGrazingRay) {
    Random random;
    for (const double tube : {1e-3, 0.3}) {
        const Torus torus{CanonicalMap({0, 0, 0}, {0, 1, 0}, 1), tube};
        for (int i = 0; i < 1000; ++i) {
            // Along a tangent across the tube, on its outer half, a billionth of the tube inside of it or outside.
            const double u = random.uniform(0, 1);
            const double v = random.uniform(-0.2, 0.2);
            const double turn = 2 * pi * v;
            const Double3 normal = point_of(u, std::sin(turn), std::cos(turn));
            const Double3 tangent = point_of(u, std::cos(turn), -std::sin(turn));
            const Double3 on = point_at(torus, u, v, 0);
            for (const double depth : {1e-9, -1e-9}) {
                const Double3 through = on - normal * (depth * tube);
                const Crossings found = crossings(torus, {through - tangent * 3, tangent});
                int near = 0;
                for (const Crossing &crossing : found)
                    near += std::fabs(crossing.t - 3) < 0.01 * tube ? 1 : 0;
                EXPECT_EQ(near, depth > 0 ? 2 : 0);
            }
        }
    }
}

// How much of a square of that height an object covers, as seen along -Z.
template <class... Values> double covered(double height, const VtTransform &place, const char *type, Values... values) {
    Scene scene;
    scripted::List camera("position", VtVector3(0, 0, 50), "target", VtVector3(0, 0, 0), "height", height);
    scene.NewCamera("orthographic", camera);
    scene.light("area");
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(0.0));
    scene.TransformBegin(place);
    scene.AddObject(scene.object(type, values...));
    scene.TransformEnd();
    scene.MaterialEnd();
    scene.LightEnd();
    return scene.render(48, 48, 256).mean() * height * height;
}

TEST(Shapes, SilhouettesHaveTheirArea) {
    VtTransform upright;
    upright.Identity();
    VtTransform stretched; // and mirrored, and off the middle
    stretched.Identity();
    stretched[0][0] = -1.5;
    stretched[1][1] = 0.5;
    stretched[3] = {0.2, -0.1, 0, 1};
    VtTransform sheared = stretched;
    sheared[1][0] = 0.7; // areas in the picture do not change
    VtTransform tipped;
    tipped.RotationAroundX(90);
    // Edges cross some 200 pixels of 1/64 unit each; the error of one, with 256 samples, is about 0.01 of it.
    for (const VtTransform *place : {&upright, &stretched, &sheared}) {
        const double scale = place == &upright ? 1 : 0.75;
        const auto expect_area = [&](double expected, auto... values) {
            EXPECT_NEAR(covered(6, *place, values...), expected * scale, 0.01);
        };
        expect_area(pi, "disk");
        expect_area(pi * (1 - 0.36), "disk", "inner_radius", 0.6);
        expect_area(pi * 0.6, "disk", "normal", VtVector3(0.8, 0, 0.6));
        expect_area(1.2, "cylinder", "radius", 0.6);
        expect_area(0.9, "cone", "radius", 0.9);
        expect_area(1.1, "cone", "radius", 0.9, "tip_radius", 0.2);
        expect_area(pi * (1.25 * 1.25 - 0.75 * 0.75), "torus", "axis", VtVector3(0, 0, 2));
        // From the side: a rectangle between two half circles.
        expect_area(4 * 0.25 + pi * 0.0625, "torus");
    }
    // Seen along its axis, the front of a cap alone.
    EXPECT_NEAR(covered(6, tipped, "cylinder"), pi, 0.01);
    EXPECT_EQ(covered(6, tipped, "cylinder", "caps", 0), 0);
}

// A mesh of any surface.
VtLong tessellated(Scene &scene, const std::function<Double3(double u, double v)> &point, int columns, int rows) {
    std::vector<VtVector3> points;
    std::vector<VtLong> triangles;
    for (int r = 0; r <= rows; ++r)
        for (int c = 0; c < columns; ++c) {
            const Double3 p = point(static_cast<double>(c) / columns, static_cast<double>(r) / rows);
            points.emplace_back(p.x, p.y, p.z);
        }
    for (VtLong r = 0; r < rows; ++r)
        for (VtLong c = 0; c < columns; ++c) {
            const VtLong a = r * columns + c, b = r * columns + (c + 1) % columns;
            for (const VtLong index : {a, b, b + columns, a, b + columns, a + columns})
                triangles.push_back(index);
        }
    return scene.mesh(points, triangles);
}

TEST(Shapes, ShadeLikeTheirMeshesUnderAnyTransform) {
    VtTransform instances[2];
    instances[0].RotationAroundX(35);
    instances[1].Identity();
    instances[1][0] = {-1.3, 0.2, 0.1, 0}; // mirrored and sheared
    instances[1][1] = {0.6, 0.7, -0.3, 0};
    instances[1][3] = {0.1, -0.2, 0.3, 1};
    const auto mean = [](const VtTransform &place, const std::function<VtLong(Scene &)> &make) {
        Scene scene;
        scripted::List camera("position", VtVector3(0, 0, 9), "target", VtVector3(0, 0, 0), "height", 4.0);
        scene.NewCamera("orthographic", camera);
        scene.light("distant", "direction", VtVector3(-0.5, -0.6, -0.8), "irradiance", pi);
        scene.MaterialBegin(scene.diffuse(0.9));
        scene.TransformBegin(place);
        scene.AddObject(make(scene));
        scene.TransformEnd();
        scene.MaterialEnd();
        return scene.render(24, 24, 64).mean();
    };
    const CanonicalMap unit_map({0, 0, 0}, {0, 1, 0}, 1);
    const Torus torus{unit_map, 0.25};
    const Cone cone{unit_map, 0.9, 0.2, false};
    for (const VtTransform &place : instances) {
        // Light goes on inside of the open ones and around the ring: all normals, all sides and all shadows count. The
        // mesh's facets and the noise of the bounces make less than 0.4 %.
        const double ring = mean(place, [](Scene &scene) { return scene.object("torus"); });
        const double ring_mesh = mean(place, [&](Scene &scene) {
            return tessellated(
                scene, [&](double u, double v) { return point_at(torus, u, v, 0); }, 128, 64);
        });
        EXPECT_NEAR(ring, ring_mesh, 0.004 * ring_mesh);
        const double open =
            mean(place, [](Scene &scene) { return scene.object("cone", "radius", 0.9, "tip_radius", 0.2, "caps", 0); });
        const double open_mesh = mean(place, [&](Scene &scene) {
            return tessellated(
                scene, [&](double u, double v) { return point_at(cone, u, v, Cone::side); }, 256, 1);
        });
        EXPECT_NEAR(open, open_mesh, 0.004 * open_mesh);
    }
}

TEST(Shapes, SurfacesDoNotShadowThemselves) {
    // Light comes along the camera's rays, so that whatever is seen is lit: as many pixels as if the shape itself
    // shone.
    const auto bright_pixels = [](const char *type, double away, bool shines) {
        Scene scene;
        scripted::List camera("position", VtVector3(away, 4, 3), "target", VtVector3(away, 0, 0), "height", 3.0);
        scene.NewCamera("orthographic", camera);
        scene.light("area");
        if (!shines)
            scene.light("distant", "direction", VtVector3(0, -4, -3), "irradiance", pi);
        VtTransform place;
        place.Translation({away, 0, 0});
        if (shines)
            scene.LightBegin();
        scene.TransformBegin(place);
        scene.AddObject(scene.object(type));
        scene.TransformEnd();
        if (shines)
            scene.LightEnd();
        int bright = 0;
        for (const scripted::Rgb &value : scene.render(48, 48, 1).values)
            bright += value[1] > 0 ? 1 : 0;
        return bright;
    };
    for (const char *type : {"disk", "cylinder", "cone", "torus"})
        for (const double away : {0.0, 1000.0}) {
            const int hits = bright_pixels(type, away, true);
            EXPECT_GT(hits, 200) << type;
            EXPECT_EQ(bright_pixels(type, away, false), hits) << type << " at " << away;
        }
}

TEST(Shapes, DiskShinesByItsArea) {
    // Below the middle of a disk of radius R at height h the irradiance is pi L R^2 / (R^2 + h^2); a hole takes its own
    // part away. The picture shows E / pi of a white floor.
    const auto seen = [](const VtTransform &place, double inner) {
        Scene scene;
        scene.camera({0, 0.01, 0}, {0, 0, 0.00001}, 1);
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-1, 0, 1), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                     VtVector3(0, 0, -2)));
        scene.MaterialEnd();
        scene.light("area");
        scene.LightBegin();
        scene.MaterialBegin(scene.diffuse(0.0));
        scene.TransformBegin(place);
        scene.AddObject(
            scene.object("disk", "center", VtVector3(0, 2, 0), "normal", VtVector3(0, -1, 0), "inner_radius", inner));
        scene.TransformEnd();
        scene.MaterialEnd();
        scene.LightEnd();
        return scene.render(8, 8, 256).mean();
    };
    VtTransform place;
    place.Identity();
    EXPECT_NEAR(seen(place, 0), 0.2, 1e-3);
    EXPECT_NEAR(seen(place, 0.5), 0.2 - 0.25 / 4.25, 1e-3);
    place.Scaling({-3, 1, 3});
    EXPECT_NEAR(seen(place, 0), 9 / 13.0, 2e-3);
    place.Scaling({1, 1, -1});
    EXPECT_NEAR(seen(place, 0), 0.2, 1e-3);
}

TEST(Shapes, MistakesAreReportedInOneLine) {
    const auto report_of = [](const char *type, auto... values) {
        Scene scene;
        const std::string errors = scripted::errors_of([&] { scene.AddObject(scene.object(type, values...)); });
        EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
        return errors;
    };
    EXPECT_NE(report_of("disk", "inner_radius", 1.0).find("the disk has no area"), std::string::npos);
    EXPECT_NE(report_of("cylinder", "to", VtVector3(0, 0, 0)).find("the same point"), std::string::npos);
    EXPECT_NE(report_of("cone", "from", VtVector3(0, 1, 0)).find("the same point"), std::string::npos);
    EXPECT_NE(report_of("torus", "minor_radius", 2.0).find("a millionth"), std::string::npos);
    EXPECT_NE(report_of("torus", "minor_radius", 1e-7).find("a millionth"), std::string::npos);
    EXPECT_NE(report_of("disk", "radius", std::nan("")).find("finite"), std::string::npos);
    EXPECT_NE(report_of("torus", "axis", VtVector3(0, 0, 0)).find("out of range"), std::string::npos);
    EXPECT_NE(report_of("cylinder", "radius", 0.0).find("out of range"), std::string::npos);
    EXPECT_NE(report_of("cone", "tip_radius", -1.0).find("out of range"), std::string::npos);
    EXPECT_NE(report_of("disk", "radius", 1e9, "center", VtVector3(1e9, 0, 0)).find("reaches beyond"),
              std::string::npos);
}

} // namespace
