// Tracer: rays against everything that is placed. Written for Embree 3: the intersection context is what Embree 4
// passes in another way.
#include "libvantor/geometry/tracer.h"

#include "libvantor/geometry/builder.h"

#include <limits>

namespace vantor {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

void set_ray(RTCRay &ray, Vec3 from, Vec3 direction, float reach) {
    ray.org_x = from.x;
    ray.org_y = from.y;
    ray.org_z = from.z;
    ray.dir_x = direction.x;
    ray.dir_y = direction.y;
    ray.dir_z = direction.z;
    ray.tnear = 0;
    ray.tfar = reach;
    ray.time = 0;
    ray.mask = ~0u;
    ray.id = 0;
    ray.flags = 0;
}

Vec3 interpolated_normal(const TriangleMesh &mesh, std::uint32_t triangle, float u, float v) {
    const TriangleMesh::Triangle &corners = mesh.triangles[triangle];
    return mesh.normals[corners[0]] * (1 - u - v) + mesh.normals[corners[1]] * u + mesh.normals[corners[2]] * v;
}

} // namespace

Tracer::Tracer(std::unique_ptr<const BuiltScene> scene, std::span<const Placement> placements)
    : built(std::move(scene)) {
    decodings.reserve(placements.size());
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const Placement &placement = placements[i];
        const Affine world_from_object = to_float(placement.world_from_object);
        const auto *mesh = std::get_if<TriangleMesh>(placement.shape);
        const bool is_instance = built->is_instance[i];
        const bool has_winding = !std::holds_alternative<Sphere>(*placement.shape);
        const bool is_turned = !is_instance && has_winding && world_from_object.determinant < 0;
        decodings.push_back({mesh && !mesh->normals.empty() ? mesh : nullptr, world_from_object.normals,
                             is_turned ? -1.0f : 1.0f, is_instance});
    }
}

Tracer::~Tracer() = default;
Tracer::Tracer(Tracer &&) noexcept = default;

bool Tracer::nearest(const Ray &ray, Hit &hit) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit found;
    set_ray(found.ray, ray.origin, ray.direction, infinity);
    found.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    found.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(built->top.get(), &context, &found);
    if (found.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return false;

    hit.primitive = found.hit.primID;
    hit.placement = found.hit.instID[0] != RTC_INVALID_GEOMETRY_ID ? found.hit.instID[0] : found.hit.geomID;
    hit.point = ray.origin + ray.direction * found.ray.tfar;
    hit.clearance = clearance_of(hit.point, found.ray.tfar);

    // Embree's normal follows the winding and has any length.
    const Decoding &decoding = decodings[hit.placement];
    Vec3 normal{found.hit.Ng_x, found.hit.Ng_y, found.hit.Ng_z};
    if (decoding.is_instance)
        normal = decoding.normals(normal);
    const float square = dot(normal, normal);
    // A triangle that a transform has shrunk to nothing has no side.
    if (!(square >= std::numeric_limits<float>::min() && square <= std::numeric_limits<float>::max()))
        return false;
    hit.geometric_normal = normal * (decoding.front / std::sqrt(square));
    hit.shading_normal = hit.geometric_normal;

    if (decoding.smooth) {
        const Vec3 smooth =
            decoding.normals(interpolated_normal(*decoding.smooth, hit.primitive, found.hit.u, found.hit.v));
        const float squared_length = dot(smooth, smooth);
        // Opposite normals at the corners may cancel; the flat normal then stands.
        if (squared_length > std::numeric_limits<float>::min() && std::isfinite(squared_length)) {
            const float side = std::copysign(1.0f, dot(smooth, hit.geometric_normal));
            hit.shading_normal = smooth * (side / std::sqrt(squared_length));
        }
    }
    return true;
}

bool Tracer::is_occluded(Vec3 from, Vec3 direction, float reach) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRay ray;
    set_ray(ray, from, direction, reach);
    rtcOccluded1(built->top.get(), &context, &ray);
    // Embree marks an occluded ray by a negative end.
    return ray.tfar < 0;
}

float Tracer::radius() const {
    RTCBounds bounds;
    rtcGetSceneBounds(built->top.get(), &bounds);
    const Vec3 diagonal{bounds.upper_x - bounds.lower_x, bounds.upper_y - bounds.lower_y,
                        bounds.upper_z - bounds.lower_z};
    // The bounds of an empty scene are inside out.
    return diagonal.x >= 0 ? 0.5f * length(diagonal) : 0.0f;
}

} // namespace vantor
