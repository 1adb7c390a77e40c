// Cameras: their rays against closed forms, and what lenses leave sharp.
#include "libvantor/description/camera.h"

#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/scripted_scene.h"

#include <cmath>
#include <numbers>

namespace {

using scripted::List;
using scripted::Scene;
using vantor::Camera;
using vantor::normalized;
using vantor::Point2f;
using vantor::Ray;
using vantor::Vec3;

VtTransform identity() {
    VtTransform transform;
    transform.Identity();
    return transform;
}

double radians(double degrees) { return degrees * std::numbers::pi / 180; }

template <class... Values> Camera camera(const char *name, const VtTransform &transform, const Values &...values) {
    vantor::Report report;
    const vantor::CallReport call(report, "newCamera", name);
    const scripted::List list(values...);
    const vantor::Type &type = *vantor::find_type(vantor::EntityKind::Camera, name, call);
    const std::optional<Camera> made =
        vantor::make_camera(type, vantor::read_parameters(type, list, call), transform, call);
    EXPECT_EQ(report.diagnostics(), 0);
    return made.value();
}

// Of a picture, 200 by 100 unless said otherwise, without a lens.
Ray ray(const Camera &camera, float x, float y, int width = 200, int height = 100) {
    return camera.ray(x, y, width, height, {});
}

void expect_near(Vec3 got, Vec3 wanted, float tolerance = 1e-6f) {
    EXPECT_LE(vantor::largest_coordinate(got - wanted), tolerance)
        << got.x << " " << got.y << " " << got.z << " where " << wanted.x << " " << wanted.y << " " << wanted.z;
}

// Looks along -X, so that -Z is to its right.
const VtVector3 position(1, 2, 3);
const VtVector3 target(-4, 2, 3);

TEST(Camera, PerspectiveRaysGoThroughThePicture) {
    const Camera plain = camera("perspective", identity(), "position", position, "target", target, "fov", 90.0);
    EXPECT_FALSE(plain.has_lens());
    expect_near(plain.position(), {1, 2, 3}, 0);
    expect_near(ray(plain, 0, 0).origin, {1, 2, 3}, 0);
    expect_near(ray(plain, 100, 50).direction, {-1, 0, 0});
    expect_near(ray(plain, 0, 0).direction, normalized({-1, 1, 2}));
    expect_near(ray(plain, 200, 100).direction, normalized({-1, -1, -2}));
    expect_near(ray(plain, 200, 25).direction, normalized({-1, 0.5f, -2}));
}

TEST(Camera, FieldOfViewSpansTheSideThatItNames) {
    // The tangent of the angle at the right edge and at the upper edge, of a wide and of a tall picture.
    const auto expect_tangents = [](const char *axis, float wide_right, float wide_up, float tall_right,
                                    float tall_up) {
        const Camera with_axis = camera("perspective", identity(), "fov", 90.0, "fov_axis", axis);
        const auto tangent = [](Vec3 d) { return std::hypot(d.x, d.y) / -d.z; };
        EXPECT_NEAR(tangent(ray(with_axis, 200, 50).direction), wide_right, 1e-6) << axis;
        EXPECT_NEAR(tangent(ray(with_axis, 100, 0).direction), wide_up, 1e-6) << axis;
        EXPECT_NEAR(tangent(ray(with_axis, 100, 100, 100, 200).direction), tall_right, 1e-6) << axis;
        EXPECT_NEAR(tangent(ray(with_axis, 50, 0, 100, 200).direction), tall_up, 1e-6) << axis;
    };
    expect_tangents("vertical", 2, 1, 0.5f, 1);
    expect_tangents("horizontal", 1, 0.5f, 1, 2);
    expect_tangents("smaller", 2, 1, 1, 2);
    expect_tangents("larger", 1, 0.5f, 0.5f, 1);
}

// Scripts count pixels from the middle of the first one, the film from its corner: (x, y) of a script is (x + 0.5,
// y + 0.5) there.
TEST(Camera, IntrinsicsProjectAsTheirMatrixDoes) {
    const double fx = 310, fy = 295, cx = 101.25, cy = 43.5;
    const Camera calibrated =
        camera("perspective", identity(), "focal_lengths", VtVector2(fx, fy), "principal_point", VtVector2(cx, cy));
    // X to the right, Y down and Z ahead, as in the matrix (fx 0 cx, 0 fy cy, 0 0 1).
    for (const VtVector3 &point : {VtVector3(0, 0, 1), VtVector3(0.2, -0.1, 3), VtVector3(-7, 4, 20)}) {
        const double x = fx * point[0] / point[2] + cx;
        const double y = fy * point[1] / point[2] + cy;
        const Vec3 wanted =
            normalized({static_cast<float>(point[0]), static_cast<float>(-point[1]), static_cast<float>(-point[2])});
        expect_near(ray(calibrated, static_cast<float>(x + 0.5), static_cast<float>(y + 0.5)).direction, wanted);
    }
    // Without a point the axis meets the middle of the picture, of 200 by 100 pixels at (99.5, 49.5).
    const Camera centred = camera("perspective", identity(), "focal_lengths", VtVector2(fx, fy));
    const Camera same =
        camera("perspective", identity(), "focal_lengths", VtVector2(fx, fy), "principal_point", VtVector2(99.5, 49.5));
    for (const Point2f at : {Point2f{0, 0}, Point2f{100, 50}, Point2f{170, 20}})
        expect_near(ray(centred, at.u, at.v).direction, ray(same, at.u, at.v).direction, 0);
}

TEST(Camera, IntrinsicsAreAFieldOfView) {
    // Half of 100 pixels at tan(30 degrees).
    const double focal = 50 / std::tan(radians(30));
    const Camera by_pixels = camera("perspective", identity(), "position", position, "target", target, "focal_lengths",
                                    VtVector2(focal, focal), "aperture_radius", 0.25, "focus_distance", 4.0);
    const Camera by_angle = camera("perspective", identity(), "position", position, "target", target, "fov", 60.0,
                                   "aperture_radius", 0.25, "focus_distance", 4.0);
    for (const Point2f at : {Point2f{0, 0}, Point2f{100, 50}, Point2f{170, 20}}) {
        const Ray r = by_pixels.ray(at.u, at.v, 200, 100, {0.3f, 0.8f});
        const Ray wanted = by_angle.ray(at.u, at.v, 200, 100, {0.3f, 0.8f});
        expect_near(r.direction, wanted.direction);
        expect_near(r.origin, wanted.origin, 1e-6f);
    }
}

TEST(Camera, IntrinsicsAndAFieldOfViewContradict) {
    Scene scene;
    const auto errors_of = [&](const auto &...values) {
        return scripted::errors_of([&] {
            List list(values...);
            scene.NewCamera("perspective", list);
        });
    };
    expect_diagnostics(errors_of("fov", 40.0, "focal_lengths", VtVector2(300, 300)),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "fov"}});
    expect_diagnostics(errors_of("principal_point", VtVector2(3, 3)),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "principal_point"}});
    expect_diagnostics(errors_of("focal_lengths", VtVector2(300, 0)),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "focal_lengths"}});
    expect_diagnostics(errors_of("focal_lengths", 300.0),
                       {{.call = "newCamera", .type = "perspective", .item = 1, .parameter = "focal_lengths"}});
}

TEST(Camera, TheAxisIsAcrossThePicture) {
    for (const char *name : {"perspective", "orthographic", "panorama"}) {
        expect_near(camera(name, identity(), "position", position, "target", target).axis(), {-1, 0, 0});
        // Mirrored and sheared: what is ahead moves aside as well, but the picture's plane stays.
        VtTransform sheared = identity();
        sheared[0][0] = -2;
        sheared[2][1] = 0.5;
        expect_near(camera(name, sheared).axis(), {0, 0, -1});
    }
}

// Where a ray meets the plane that many lengths along an axis from the ray's own place.
Vec3 point_at(const Ray &r, float depth, Vec3 ahead, Vec3 place) {
    const float t = (depth - dot(r.origin - place, ahead)) / dot(r.direction, ahead);
    return r.origin + r.direction * t;
}

TEST(Camera, AllRaysOfALensMeetOnTheSharpPlane) {
    const Camera lens = camera("perspective", identity(), "position", position, "target", target, "fov", 90.0,
                               "aperture_radius", 0.25, "focus_distance", 4.0);
    EXPECT_TRUE(lens.has_lens());
    const Vec3 ahead{-1, 0, 0};
    const Vec3 place = lens.position();
    for (const Point2f picture : {Point2f{100, 50}, Point2f{0, 0}, Point2f{180, 70}}) {
        // Where the pinhole's ray meets the plane at distance 4: half the picture's height is 4 there.
        const Vec3 sharp =
            place + ahead * 4 + Vec3{0, (50 - picture.v) / 50 * 4, 0} + Vec3{0, 0, (100 - picture.u) / 50 * 4};
        float widest = 0;
        for (int i = 0; i < 64; ++i) {
            const Point2f numbers{static_cast<float>(i % 8) / 8, static_cast<float>(i / 8) / 8};
            const Ray r = lens.ray(picture.u, picture.v, 200, 100, numbers);
            EXPECT_NEAR(length(r.direction), 1, 1e-6);
            EXPECT_NEAR(dot(r.origin - place, ahead), 0, 1e-6);
            expect_near(point_at(r, 4, ahead, place), sharp, 1e-5f);
            // Twice as far away, the pencil is as wide as the lens again.
            const Vec3 beyond = point_at(r, 8, ahead, place) - (sharp + (sharp - place));
            EXPECT_NEAR(length(beyond), length(r.origin - place), 1e-5);
            widest = std::max(widest, length(r.origin - place));
        }
        EXPECT_NEAR(widest, 0.25 * std::sqrt(7 / 8.0), 1e-6);
    }
}

TEST(Camera, TheSharpPlaneGoesThroughTheTarget) {
    const auto meeting_depth = [](const Camera &lens) {
        // The two rays of opposite points of the lens, on the axis.
        const Ray r = lens.ray(100, 50, 200, 100, {0.5f, 0});
        const Vec3 aside = r.origin - lens.position();
        return -dot(aside, aside) / dot(aside, r.direction) * -r.direction.z;
    };
    const VtVector3 below(0, 0, -7);
    EXPECT_NEAR(meeting_depth(camera("perspective", identity(), "aperture_radius", 0.1, "target", below)), 7, 1e-4);
    EXPECT_NEAR(meeting_depth(camera("perspective", identity(), "aperture_radius", 0.1)), 1, 1e-5);
    EXPECT_NEAR(meeting_depth(
                    camera("perspective", identity(), "aperture_radius", 0.1, "target", below, "focus_distance", 3.0)),
                3, 1e-4);
}

TEST(Camera, OrthographicRaysAreParallel) {
    const Camera flat = camera("orthographic", identity(), "position", position, "target", target, "height", 3.0);
    EXPECT_FALSE(flat.has_lens());
    expect_near(flat.position(), {1, 2, 3}, 0);
    for (const Point2f picture : {Point2f{0, 0}, Point2f{200, 0}, Point2f{100, 50}, Point2f{50, 100}}) {
        const Ray r = ray(flat, picture.u, picture.v);
        expect_near(r.direction, {-1, 0, 0});
        expect_near(r.origin, {1, 2 + 1.5f - 3 * picture.v / 100, 3 + 3 - 3 * picture.u / 100});
    }
}

TEST(Camera, PanoramaGoesRoundToTheRight) {
    const Camera round = camera("panorama", identity(), "position", position, "target", target);
    EXPECT_FALSE(round.has_lens());
    expect_near(round.position(), {1, 2, 3}, 0);
    expect_near(ray(round, 100, 50).origin, {1, 2, 3}, 0);
    expect_near(ray(round, 100, 50).direction, {-1, 0, 0});
    expect_near(ray(round, 150, 50).direction, {0, 0, -1}); // a quarter turn to the right
    expect_near(ray(round, 50, 50).direction, {0, 0, 1});
    expect_near(ray(round, 0, 50).direction, {1, 0, 0}); // behind
    expect_near(ray(round, 200, 50).direction, {1, 0, 0});
    expect_near(ray(round, 70, 0).direction, {0, 1, 0}); // up
    expect_near(ray(round, 70, 100).direction, {0, -1, 0});
    expect_near(ray(round, 100, 25).direction, normalized({-1, 1, 0}));
    expect_near(ray(round, 125, 75).direction, normalized({-1, -std::sqrt(2.0f), -1}));
}

// A camera under a transform sees the world as the camera without it sees what the transform takes there.
TEST(Camera, TakesTheTransform) {
    VtTransform transform; // mirrors, scales differently along each axis, shears and moves
    transform.Identity();
    transform[0][0] = -2;
    transform[1][1] = 3;
    transform[2][2] = 0.5;
    transform[2][0] = 0.25;
    transform[3][0] = 10;
    transform[3][2] = -20;
    const vantor::Affine map = vantor::to_float(transform);
    const auto check = [&](const Camera &plain, const Camera &moved) {
        expect_near(moved.position(), map.point(plain.position()), 1e-5f);
        for (const Point2f picture : {Point2f{100, 50}, Point2f{0, 0}, Point2f{30, 80}, Point2f{190, 10}})
            for (const Point2f lens : {Point2f{0, 0}, Point2f{0.5f, 0.1f}, Point2f{0.9f, 0.6f}}) {
                const Ray a = plain.ray(picture.u, picture.v, 200, 100, lens);
                const Ray b = moved.ray(picture.u, picture.v, 200, 100, lens);
                expect_near(b.origin, map.point(a.origin), 1e-5f);
                expect_near(b.direction, normalized(map.linear(a.direction)), 1e-5f);
            }
    };
    check(camera("perspective", identity(), "position", position, "target", target, "aperture_radius", 0.3),
          camera("perspective", transform, "position", position, "target", target, "aperture_radius", 0.3));
    check(camera("orthographic", identity(), "position", position, "target", target),
          camera("orthographic", transform, "position", position, "target", target));
    check(camera("panorama", identity(), "position", position, "target", target),
          camera("panorama", transform, "position", position, "target", target));
}

TEST(Camera, RaysAreDirectionsWhateverTheLengths) {
    VtTransform thin;
    thin.Scaling({1e9, 1e-9, 1});
    for (const double fov : {1e-3, 179.0})
        for (const double aperture : {0.0, 1e-9, 1.0})
            for (const double focus : {1e-9, 1e9})
                for (const float u : {0.0f, 0.7f}) {
                    const Camera odd = camera("perspective", thin, "fov", fov, "aperture_radius", aperture,
                                              "focus_distance", focus, "up", VtVector3(1, 1, 0.5));
                    EXPECT_NEAR(length(odd.ray(100, 50, 200, 100, {u, 0.3f}).direction), 1, 1e-5);
                    EXPECT_NEAR(length(odd.ray(17, 3, 65536, 1, {u, 0.3f}).direction), 1, 1e-5);
                }
}

// A bright quad, 2 by 2, seen from a distance of 4 by a camera that shows 4 by 4 there: how bright pixels are along the
// middle row.
std::vector<float> row_of_quad(double aperture, double focus) {
    Scene scene;
    scripted::List list("position", VtVector3(0, 0, 4), "target", VtVector3(0, 0, 0), "fov",
                        2 * std::atan(0.5) * 180 / M_PI, "aperture_radius", aperture, "focus_distance", focus);
    scene.NewCamera("perspective", list);
    scene.light("area");
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.LightEnd();
    const scripted::Pixels pixels = scene.render(32, 32, 256);
    std::vector<float> row;
    for (int x = 0; x < 32; ++x)
        row.push_back(pixels.at(x, 16)[1]);
    return row;
}

TEST(Camera, PicturesAreSharpWhereTheLensIsFocused) {
    // The edges are at 8 and 24. In focus a pixel further away than the filter's one is the quad's own or black.
    const std::vector<float> sharp = row_of_quad(0.5, 4);
    EXPECT_EQ(sharp[6], 0);
    EXPECT_EQ(sharp[9], 1);
    EXPECT_EQ(sharp[22], 1);
    EXPECT_EQ(sharp[25], 0);

    // Focused at twice the distance, the lens of radius 0.5 casts a disk of 0.25 = 2 pixels on the quad's plane. An
    // edge that cuts a disk of radius r at distance d from its middle leaves (acos(d/r) - d/r sqrt(1 - d^2/r^2)) / pi.
    // The tent of the filter is integrated over.
    const auto beyond = [](double d) {
        const double q = std::clamp(d / 2, -1.0, 1.0);
        return (std::acos(q) - q * std::sqrt(1 - q * q)) / M_PI;
    };
    const std::vector<float> blurred = row_of_quad(0.5, 8);
    for (int x = 4; x < 12; ++x) {
        double wanted = 0;
        constexpr int steps = 1000;
        for (int i = 0; i < steps; ++i) {
            const double offset = (i + 0.5) / steps * 2 - 1;
            wanted += (1 - std::fabs(offset)) * 2 / steps * beyond(8 - (x + 0.5 + offset));
        }
        // 256 paths of zero or one: the standard deviation of the mean is at most 0.03, and far less when stratified.
        EXPECT_NEAR(blurred[static_cast<std::size_t>(x)], wanted, 0.06) << x;
    }
}

TEST(Camera, RaysFromTooFarAwayAreDark) {
    // Embree with assertions would end the process: in the sphere's space the rays start beyond 1.8e18.
    Scene scene;
    scene.light("environment");
    VtTransform small;
    small.Scaling({1, 2e-8, 1});
    scene.TransformBegin(small);
    scene.AddObject(scene.object("sphere"));
    scene.TransformEnd();
    List list("position", VtVector3(0, 0, 1e9), "height", 1e9);
    scene.NewCamera("orthographic", list);
    const scripted::Pixels pixels = scene.render(64, 1, 1);
    EXPECT_EQ(pixels.at(0, 0)[0], 0);
    EXPECT_EQ(pixels.at(32, 0)[0], 1);
}

} // namespace
