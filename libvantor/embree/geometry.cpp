// Geometry: a shape as one of Embree's geometries.
#include "libvantor/embree/geometry.h"

#include "libvantor/embree/analytic.h"
#include "libvantor/embree/trimming.h"

namespace vantor {

namespace {

template <class Element>
Element *new_buffer(RTCDevice device, RTCGeometry geometry, RTCBufferType type, RTCFormat format, std::size_t count) {
    void *buffer = rtcSetNewGeometryBuffer(geometry, type, 0, format, sizeof(Element), count);
    check_handle(device, buffer);
    return static_cast<Element *>(buffer);
}

// A geometry_of() for each kind of shape. A kind without one does not compile.

struct MappedPoints {
    OwnedGeometry geometry;
    const Vec3 *points;
};
MappedPoints geometry_of_points(RTCDevice device, std::span<const Vec3> points, const Affine &map) {
    OwnedGeometry geometry = begin_geometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    Vec3 *mapped = new_buffer<Vec3>(device, geometry.get(), RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT3, points.size());
    std::ranges::transform(points, mapped, [&](const Vec3 &p) { return map.point(p); });
    return {std::move(geometry), mapped};
}

// All that is said of triangles beside Embree's buffers.
Geometry triangles_of(OwnedGeometry geometry, const Vec3 *points, std::span<const TriangleMesh::Triangle> triangles) {
    auto errors = std::make_shared<std::vector<CompactBound>>();
    errors->reserve(triangles.size());
    for (const auto &[a, b, c] : triangles)
        errors->emplace_back(triangle_error(points[b] - points[a], points[c] - points[a]));
    const TriangleBuffers buffers{points, triangles.data(), errors->data()};
    return {std::move(geometry), {.primitives = buffers, .has_winding = true}, std::move(errors)};
}

Geometry geometry_of(RTCDevice device, const TriangleMesh &mesh, const Object &, const Affine &map) {
    auto [geometry, points] = geometry_of_points(device, mesh.points, map);
    rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, mesh.triangles.data(), 0,
                               sizeof(TriangleMesh::Triangle), mesh.triangles.size());
    Geometry made = triangles_of(std::move(geometry), points, mesh.triangles);
    made.format.smooth = mesh.normals.empty() ? nullptr : &mesh;
    return made;
}

// Two triangles each: in packets, they trace faster than Embree's quads.
Geometry geometry_of(RTCDevice device, const Quads &quads, const Object &, const Affine &map) {
    std::vector<Vec3> points;
    std::vector<TriangleMesh::Triangle> triangles;
    for (const Quads::Corners &corners : quads.corners) {
        const auto first = static_cast<std::uint32_t>(points.size());
        points.insert(points.end(), corners.begin(), corners.end());
        triangles.push_back({first, first + 1, first + 2});
        triangles.push_back({first, first + 2, first + 3});
    }
    auto [geometry, mapped] = geometry_of_points(device, points, map);
    auto *copied = new_buffer<TriangleMesh::Triangle>(device, geometry.get(), RTC_BUFFER_TYPE_INDEX, RTC_FORMAT_UINT3,
                                                      triangles.size());
    std::ranges::copy(triangles, copied);
    Geometry made = triangles_of(std::move(geometry), mapped, {copied, triangles.size()});
    made.format.triangles_per_primitive = 2;
    return made;
}

Geometry geometry_of(RTCDevice device, const Sphere &sphere, const Object &, const Affine &map) {
    OwnedGeometry geometry = begin_geometry(device, RTC_GEOMETRY_TYPE_SPHERE_POINT);
    const Vec3 center = map.point(sphere.center);
    auto *buffer =
        new_buffer<std::array<float, 4>>(device, geometry.get(), RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT4, 1);
    *buffer = {center.x, center.y, center.z, sphere.radius * map.uniform_scale()};
    return {std::move(geometry), {.primitives = SphereBuffer{buffer}}};
}

// So many are copied under a map, which traces faster. Of more, Embree reads what the shape has, which is not mapped.
constexpr std::size_t most_mapped_points = 20000;

Geometry geometry_of(RTCDevice device, const Points &points, const Object &, const Affine &map) {
    OwnedGeometry geometry = begin_geometry(device, RTC_GEOMETRY_TYPE_SPHERE_POINT);
    const std::vector<Points::Ball> &balls = points.balls;
    HitFormat format{.primitives = SphereBuffer{balls.data()}, .has_bodies = true};
    if (balls.size() > most_mapped_points) {
        rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT4, balls.data(), 0,
                                   sizeof(Points::Ball), balls.size());
        return {std::move(geometry), format};
    }
    auto *mapped =
        new_buffer<Points::Ball>(device, geometry.get(), RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT4, balls.size());
    const float scale = map.uniform_scale();
    std::ranges::transform(balls, mapped, [&](const Points::Ball &ball) {
        const Vec3 center = map.point({ball[0], ball[1], ball[2]});
        return Points::Ball{center.x, center.y, center.z, ball[3] * scale};
    });
    format.primitives = SphereBuffer{mapped};
    return {std::move(geometry), format};
}

// Never mapped, so that Embree reads their points where they are.
Geometry geometry_of(RTCDevice device, const Curves &curves, const Object &, const Affine &) {
    OwnedGeometry geometry = begin_geometry(device, curves.are_tubes ? RTC_GEOMETRY_TYPE_ROUND_BEZIER_CURVE
                                                                     : RTC_GEOMETRY_TYPE_FLAT_BEZIER_CURVE);
    rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT4, curves.points.data(), 0,
                               sizeof(Curves::ControlPoint), curves.points.size());
    rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT, curves.firsts.data(), 0,
                               sizeof(std::uint32_t), curves.firsts.size());
    // Ribbons are cut into straight pieces; with Embree's own 4, a cubic that turns much has corners to be seen.
    rtcSetGeometryTessellationRate(geometry.get(), 16);
    return {std::move(geometry), {.primitives = CurveSegments{&curves}, .faces_rays = !curves.are_tubes}};
}

// By the shape's own formulas, which hold under any transform.
template <Analytic Kind>
Geometry geometry_of(RTCDevice device, const Kind &kind, const Object &object, const Affine &map) {
    OwnedGeometry geometry = begin_geometry(device, RTC_GEOMETRY_TYPE_USER);
    const Object *trimmed = object.trimmers.empty() ? nullptr : &object;
    auto placed = std::make_shared<const PlacedShape<Kind>>(PlacedShape<Kind>{&kind, kind.map.then(map), trimmed});
    set_callbacks(geometry.get(), *placed);
    // A quartic's roots are known to some thousands of a double's last places.
    const auto [low, high] = bounds_of(kind, placed->map);
    const float error = 1e-12f * std::max(largest_coordinate(to_float(low)), largest_coordinate(to_float(high)));
    const HitFormat format{.primitives = AnalyticSurface{placed.get(), nearest_on_surface<Kind>, error}};
    return {std::move(geometry), format, std::move(placed)};
}

// Analytic shapes ask their trimmers themselves; for the others Embree does.
template <Analytic Kind> void trim(const Kind &, const Object &, Geometry &) {}
template <class Kind> void trim(const Kind &, const Object &object, Geometry &geometry) {
    auto trimmed =
        std::make_shared<const TrimmedObject>(TrimmedObject{&object, geometry.format, geometry.callback_data});
    set_filters(geometry.handle.get(), *trimmed);
    geometry.callback_data = std::move(trimmed);
}

// A can_map() for each kind, likewise.

bool can_map(const TriangleMesh &, const VtTransform &) { return true; }
bool can_map(const Quads &, const VtTransform &) { return true; }
bool can_map(const Sphere &, const VtTransform &map) { return to_float(map).uniform_scale() > 0; }
bool can_map(const Points &points, const VtTransform &map) {
    return points.balls.size() <= most_mapped_points && to_float(map).uniform_scale() > 0;
}
bool can_map(const Curves &, const VtTransform &) { return false; }
template <Analytic Kind> bool can_map(const Kind &, const VtTransform &) { return true; }

} // namespace

OwnedGeometry begin_geometry(RTCDevice device, RTCGeometryType type) {
    OwnedGeometry geometry(rtcNewGeometry(device, type));
    check_handle(device, geometry.get());
    return geometry;
}

bool can_be_mapped(const Shape &shape, const VtTransform &map) {
    return std::visit([&](const auto &kind) { return can_map(kind, map); }, shape);
}

Geometry make_geometry(RTCDevice device, const Object &object, const Affine &map) {
    return std::visit(
        [&](const auto &kind) {
            Geometry geometry = geometry_of(device, kind, object, map);
            if (!object.trimmers.empty())
                trim(kind, object, geometry);
            rtcCommitGeometry(geometry.handle.get());
            return geometry;
        },
        object.shape);
}

} // namespace vantor
