// Bump and normal mapping: normals that follow patterns, by closed form.
#include "libvantor/world/bump_mapping.h"

#include "libvantor/shapes/shape.h"
#include "tests/libvantor/scripted_scene.h"

namespace {

using namespace vantor;
using scripted::errors_of;
using scripted::List;

constexpr Vec3 up{0, 0, 1};

Pattern ramp(PatternSpace space, Vec3 direction) {
    return {Gradient{{{-8, {-8, -8, -8}}, {8, {8, 8, 8}}}, space, {0, 0, 0}, direction}};
}

Pattern constant(Color color) { return {Gradient{{{0, color}}, PatternSpace::Uv, {0, 0, 0}, {1, 0, 0}}}; }

// A point of the plane z = 0, where u grows by 1 over a length of 2, and v over one of 4.
BumpPoint plane(const VtTransform &transform = identity()) {
    const SurfaceParameters parameters{{0.3f, 0.4f}, {2, 0, 0}, {0, 4, 0}};
    return {to_float(transform), parameters, {{0.3f, 0.4f}, {0.6f, 1.6f, 0}}, up, 1.0f / 64};
}

Vec3 bumped(const BumpPoint &point, const Pattern &heights, float height) {
    Variation variation;
    variation.bump = &heights;
    variation.bump_height = height;
    return bent_normal(point, variation, up);
}

Vec3 mapped(const BumpPoint &point, Color color) {
    const Pattern map = constant(color);
    Variation variation;
    variation.normal_map = &map;
    return bent_normal(point, variation, up);
}

void expect_direction(Vec3 found, Vec3 wanted, float tolerance = 1e-3f) {
    const Vec3 direction = normalized(wanted);
    EXPECT_NEAR(found.x, direction.x, tolerance);
    EXPECT_NEAR(found.y, direction.y, tolerance);
    EXPECT_NEAR(found.z, direction.z, tolerance);
}

TEST(BumpMapping, ANormalLeansAgainstTheSlope) {
    // The height is 0.5 u, which is 0.25 x; 0.5 v, which is 0.125 y; and 0.5 y.
    expect_direction(bumped(plane(), ramp(PatternSpace::Uv, {1, 0, 0}), 0.5f), {-0.25f, 0, 1});
    expect_direction(bumped(plane(), ramp(PatternSpace::Uv, {0, 1, 0}), 0.5f), {0, -0.125f, 1});
    expect_direction(bumped(plane(), ramp(PatternSpace::Object, {0, 1, 0}), 0.5f), {0, -0.5f, 1});
    expect_direction(bumped(plane(), constant({7, 7, 7}), 0.5f), up);
}

TEST(BumpMapping, ABumpIsTransformedWithItsObject) {
    // The surface z = 0.25 x of the object, stretched to twice its length along x and to thrice its height.
    VtTransform stretched;
    stretched.Scaling({2, 1, 3});
    expect_direction(bumped(plane(stretched), ramp(PatternSpace::Uv, {1, 0, 0}), 0.5f), {-0.375f, 0, 1});
    // Mirrored along x, the slope falls where it rose.
    VtTransform mirrored;
    mirrored.Scaling({-1, 1, 1});
    expect_direction(bumped(plane(mirrored), ramp(PatternSpace::Uv, {1, 0, 0}), 0.5f), {0.25f, 0, 1});
}

TEST(BumpMapping, UAndVMayHaveAnyAngle) {
    BumpPoint point = plane();
    point.parameters.along_v = {1, 1, 0}; // v = y, and u = (x - y) / 2
    expect_direction(bumped(point, ramp(PatternSpace::Uv, {1, 0, 0}), 0.5f), {-0.25f, 0.25f, 1});
    expect_direction(bumped(point, ramp(PatternSpace::Uv, {0, 1, 0}), 0.5f), {0, -0.5f, 1});
    // A shape that does not tell: across u, as far.
    point.parameters.along_v = {};
    expect_direction(bumped(point, ramp(PatternSpace::Uv, {0, 1, 0}), 0.5f), {0, -0.25f, 1});
}

TEST(BumpMapping, NormalMapsSpeakOfUVAndTheNormal) {
    expect_direction(mapped(plane(), {0.5f, 0.5f, 1}), up, 1e-6f);
    expect_direction(mapped(plane(), {0.8f, 0.5f, 0.9f}), {0.6f, 0, 0.8f}, 1e-6f);
    expect_direction(mapped(plane(), {0.5f, 0.8f, 0.9f}), {0, 0.6f, 0.8f}, 1e-6f);
    BumpPoint point = plane();
    point.parameters.along_v = {0, -4, 0};
    expect_direction(mapped(point, {0.5f, 0.8f, 0.9f}), {0, -0.6f, 0.8f}, 1e-6f);
    point.parameters.along_u = {};
    expect_direction(mapped(point, {0.5f, 0.8f, 0.9f}), up, 1e-6f);
}

TEST(BumpMapping, NormalsStayInFront) {
    for (const Color color : {Color{1, 0.5f, 0.5f}, Color{0, 0, 0}, Color{0.5f, 0.5f, 0.5f}, Color{1e18f, 0, 0}}) {
        const Vec3 normal = mapped(plane(), color);
        EXPECT_NEAR(length(normal), 1, 1e-4f);
        EXPECT_GT(normal.z, 0);
    }
    EXPECT_GT(bumped(plane(), ramp(PatternSpace::Object, {1, 0, 0}), 1e9f).z, 0);
}

// How (u, v) change on a short way along the surface is what along_u and along_v say.
template <class Kind>
void expect_consistent(const Kind &shape, Vec3 point, Vec3 moved, Point2f weights = {}, Point2f moved_weights = {}) {
    const SurfaceParameters here = parameters_at(shape, 0, weights, point);
    const SurfaceParameters there = parameters_at(shape, 0, moved_weights, moved);
    const Vec3 predicted = here.along_u * (there.uv.u - here.uv.u) + here.along_v * (there.uv.v - here.uv.v);
    const Vec3 way = moved - point;
    EXPECT_LT(length(predicted - way), 0.01f * length(way) + 2e-6f);
}

TEST(BumpMapping, ShapesTellHowPointsMoveWithUAndV) {
    const Sphere sphere{{1, 2, 3}, 2};
    const Vec3 from_center = normalized({0.3f, 0.5f, -0.7f});
    for (const Vec3 step : {Vec3{0.01f, 0, 0}, Vec3{0, 0.01f, 0}, Vec3{0, 0, 0.01f}})
        expect_consistent(sphere, sphere.center + from_center * 2, sphere.center + normalized(from_center + step) * 2);

    const Quads quads{{{{{0, 0, 0}, {2, 0, 1}, {3, 3, 1}, {1, 3, 0}}}}};
    expect_consistent(quads, {1, 1, 0.4f}, Vec3{1, 1, 0.4f} + Vec3{2, 0, 1} * 0.01f + Vec3{1, 3, 0} * -0.02f);

    TriangleMesh mesh;
    mesh.points = {{0, 0, 0}, {2, 0, 1}, {1, 3, 0}};
    mesh.triangles = {{0, 1, 2}};
    const auto at = [&](Point2f w) { return mesh.points[1] * w.u + mesh.points[2] * w.v; };
    for (const bool has_uvs : {false, true}) {
        if (has_uvs)
            mesh.uvs = {{0.1f, 0.2f}, {0.9f, 0.3f}, {0.4f, 0.8f}};
        expect_consistent(mesh, at({0.2f, 0.3f}), at({0.21f, 0.28f}), {0.2f, 0.3f}, {0.21f, 0.28f});
    }
}

TEST(BumpMapping, RoundShapesTellItToo) {
    Report report;
    const List list;
    constexpr float little = 1e-3f;
    for (const char *name : {"disk", "cone", "cylinder", "torus"}) {
        const CallReport call(report, "newObject", name);
        const Type *type = find_type(EntityKind::Object, name, call);
        ASSERT_TRUE(type);
        const std::optional<Shape> shape = make_shape(*type, read_parameters(*type, list, call), call);
        ASSERT_TRUE(shape);
        for (std::uint32_t part = 0; part < primitives_of(*shape); ++part) {
            const Vec3 point{0.4f, 0.3f, 0.6f};
            const SurfaceParameters here = parameters_at(*shape, part, {}, point);
            if (!std::isfinite(here.uv.v))
                continue; // the cap of a pointed tip, which nothing can hit
            const Point2f by_u = parameters_at(*shape, part, {}, point + here.along_u * little).uv;
            const Point2f by_v = parameters_at(*shape, part, {}, point + here.along_v * little).uv;
            EXPECT_NEAR(by_u.u - here.uv.u, little, 0.05f * little) << name << part;
            EXPECT_NEAR(by_u.v - here.uv.v, 0, 0.05f * little) << name << part;
            EXPECT_NEAR(by_v.u - here.uv.u, 0, 0.05f * little) << name << part;
            EXPECT_NEAR(by_v.v - here.uv.v, little, 0.05f * little) << name << part;
        }
    }
}

TEST(BumpMapping, APatternsIdIsWanted) {
    scripted::Scene scene;
    List interface;
    scene.NewInterface("diffuse", interface);
    List list("interface", 1, "bump", 1);
    EXPECT_EQ(errors_of([&] { scene.NewMaterial("surface", list); }),
              "vantor: newMaterial \"surface\": item 3: parameter \"bump\" is 1, but id 1 is an interface (expected "
              "the id of a "
              "pattern)\n");
}

} // namespace
