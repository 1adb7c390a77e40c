// Tracer: rays against everything that is placed.
#include "libvantor/embree/tracer.h"

#include "libvantor/embree/acceleration_structure.h"
#include "libvantor/embree/all_hits.h"
#include "libvantor/embree/instancer.h"

#include <limits>
#include <type_traits>

namespace vantor {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

// Rays go to Embree in packets, as wide as the processor takes at once: 16, or else 8. Narrower ones are not worth it.
template <class Rays> constexpr std::size_t width_of = std::extent_v<decltype(Rays::tfar)>;

template <class Rays> void set_ray(Rays &packet, std::size_t lane, Vec3 from, Vec3 direction, float reach) {
    packet.org_x[lane] = from.x;
    packet.org_y[lane] = from.y;
    packet.org_z[lane] = from.z;
    packet.dir_x[lane] = direction.x;
    packet.dir_y[lane] = direction.y;
    packet.dir_z[lane] = direction.z;
    packet.tnear[lane] = 0;
    packet.tfar[lane] = reach;
    packet.time[lane] = 0;
    packet.mask[lane] = ~0u;
    packet.id[lane] = 0;
    packet.flags[lane] = 0;
}

// Which lanes of a packet are in use: -1 if so, 0 if not. Embree wants it aligned like the packet.
template <std::size_t width> struct alignas(4 * width) Mask {
    int lanes[width];

    explicit Mask(std::size_t used) {
        for (std::size_t i = 0; i < width; ++i)
            lanes[i] = i < used ? -1 : 0;
    }
};

Vec3 interpolated_normal(const TriangleMesh &mesh, std::uint32_t triangle, float u, float v) {
    const TriangleMesh::Triangle &corners = mesh.triangles[triangle];
    return mesh.normals[corners[0]] * (1 - u - v) + mesh.normals[corners[1]] * u + mesh.normals[corners[2]] * v;
}

// Of a ribbon that is turned towards the ray: across the tangent, in the plane of both. Tangents go by the map of
// directions, which is, but for its scale, that of the cofactors of the map of normals. The turn is one in the world;
// the normal is the one in the object that is mapped to it.
Vec3 facing_normal(const Linear &normals, Vec3 tangent, Vec3 direction) {
    const Linear directions{cross(normals.row1, normals.row2), cross(normals.row2, normals.row0),
                            cross(normals.row0, normals.row1)};
    const Vec3 any_length = directions(tangent);
    const Vec3 along = any_length * (1 / largest_coordinate(any_length));
    const Vec3 facing = along * dot(along, direction) - direction * dot(along, along);
    return Vec3{dot(directions.row0, facing), dot(directions.row1, facing), dot(directions.row2, facing)} *
           (1 / dot(directions.row0, normals.row0));
}

Double3 mapped_by(const Linear &map, Double3 v) {
    return Double3(map.row0) * v.x + Double3(map.row1) * v.y + Double3(map.row2) * v.z;
}

Vec3 sizes(Vec3 v) { return {std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)}; }

// Rays meet an instance in the space of its object, where coordinates may be far larger than in the world: how far
// along the normal of a hit, in the world, the rounding of a ray that starts there may reach, and the error with which
// the object is met. The normal is given in the object, and as it is mapped.
float error_in_world(const Linear &normals, Vec3 offset, Vec3 point, float error_in_object, Vec3 normal, Vec3 mapped) {
    const Vec3 from = sizes(point) + sizes(offset);
    // The map of normals is the transposed one of points back into the object: what is summed there for each
    // coordinate.
    const Vec3 in_object{dot(sizes(normals.row0), from), dot(sizes(normals.row1), from),
                         dot(sizes(normals.row2), from)};
    const float size = largest_coordinate(normal);
    const float along_normal =
        8 * unit_roundoff * dot(sizes(normal), in_object) + error_in_object * size * length(normal * (1 / size));
    const float mapped_size = largest_coordinate(mapped);
    return along_normal / (mapped_size * length(mapped * (1 / mapped_size)));
}

} // namespace

Tracer::Tracer()
    : structure(std::make_unique<AccelerationStructure>()),
      has_wide_packets(rtcGetDeviceProperty(structure->of_device(), RTC_DEVICE_PROPERTY_NATIVE_RAY16_SUPPORTED) != 0) {}

void Tracer::update(std::span<const Placement> placements, const Interrupt &interrupt) {
    structure->update(placements, interrupt);
}

const BuildCounts &Tracer::builds() const { return structure->builds(); }

Tracer::~Tracer() = default;
Tracer::Tracer(Tracer &&) noexcept = default;

template <class Packet> Hit Tracer::decoded(const Packet &packet, std::size_t lane, const Ray &ray) const {
    Hit hit;
    hit.exists = packet.hit.geomID[lane] != RTC_INVALID_GEOMETRY_ID;
    if (!hit.exists)
        return hit;
    hit.distance = packet.ray.tfar[lane];
    const unsigned instance = packet.hit.instID[0][lane];
    hit.placement = instance != RTC_INVALID_GEOMETRY_ID ? instance : packet.hit.geomID[lane];

    // Embree's normal follows the winding and has any length.
    const HitDecoding &decoding = structure->decoding(hit.placement);
    const unsigned primitive = packet.hit.primID[lane];
    hit.primitive = decoding.format.primitive_of(primitive);
    hit.on_primitive = {packet.hit.u[lane], packet.hit.v[lane]};
    const auto roughly = [&] { return Double3(ray.origin) + Double3(ray.direction) * hit.distance; };
    Vec3 normal{packet.hit.Ng_x[lane], packet.hit.Ng_y[lane], packet.hit.Ng_z[lane]};
    hit.instance = decoding.instancer ? packet.hit.geomID[lane] : 0;
    const Instancer::Inverse *inverse = decoding.instancer ? &decoding.instancer->inverses[hit.instance] : nullptr;
    const Primitives &primitives = decoding.format.primitives;
    if (decoding.is_instance) {
        const Linear normals = inverse ? inverse->normals() : decoding.map.normals;
        const Vec3 in_object = decoding.format.faces_rays ? facing_normal(normals, normal, ray.direction) : normal;
        const Vec3 offset = inverse ? inverse->offset : decoding.map.offset;
        const Linear back = transposed(normals);
        const auto roughly_in_object = [&] { return mapped_by(back, roughly() - Double3(offset)); };
        const PrimitivePoint found = rebuilt(primitives, primitive, hit.on_primitive, in_object, roughly_in_object);
        const Double3 point(found.point);
        hit.point = to_float(inverse ? decoding.instancer->point(hit.instance, point)
                                     : mapped_by(decoding.map.linear, point) + Double3(offset));
        normal = normals(in_object);
        hit.error = error_in_world(normals, offset, hit.point, found.error, in_object, normal);
    } else {
        const PrimitivePoint found = rebuilt(primitives, primitive, hit.on_primitive, normal, roughly);
        hit.point = found.point;
        hit.error = found.error;
    }
    if (!has_direction(normal)) {
        // Twice the area of a triangle: of one that a transform has made tiny or huge, floats cannot hold the square.
        normal = normal * (1 / largest_coordinate(normal));
        // What has shrunk to nothing has no side.
        if (!has_direction(normal)) {
            hit.exists = false;
            return hit;
        }
    }
    hit.geometric_normal = normal * (decoding.front / length(normal));
    hit.shading_normal = hit.geometric_normal;
    hit.error += rounding_along(hit.geometric_normal, hit.point);

    if (decoding.format.smooth) {
        const Linear normals = inverse ? inverse->normals() : decoding.map.normals;
        const Vec3 smooth = normals(
            interpolated_normal(*decoding.format.smooth, hit.primitive, packet.hit.u[lane], packet.hit.v[lane]));
        // Opposite normals at the corners may cancel; the flat normal then stands.
        if (has_direction(smooth))
            hit.shading_normal = normalized(smooth) * std::copysign(1.0f, dot(smooth, hit.geometric_normal));
    }
    return hit;
}

void Tracer::intersect(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const {
    if (has_wide_packets)
        intersect_in_packets<RTCRayHit16>(rays, are_coherent, hits);
    else
        intersect_in_packets<RTCRayHit8>(rays, are_coherent, hits);
}

template <class Packet>
void Tracer::intersect_in_packets(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const {
    constexpr std::size_t width = width_of<decltype(Packet::ray)>;
    RayQuery query(are_coherent);

    // Lanes that are not in use are looked at all the same, so they hold numbers.
    Packet packet{};
    for (std::size_t first = 0; first < rays.size(); first += width) {
        const std::size_t used = std::min(width, rays.size() - first);
        for (std::size_t lane = 0; lane < used; ++lane) {
            set_ray(packet.ray, lane, rays[first + lane].origin, rays[first + lane].direction, infinity);
            packet.hit.geomID[lane] = RTC_INVALID_GEOMETRY_ID;
            packet.hit.instID[0][lane] = RTC_INVALID_GEOMETRY_ID;
        }
        query.intersect(Mask<width>(used).lanes, structure->top_level(), packet);
        for (std::size_t lane = 0; lane < used; ++lane)
            hits[first + lane] = decoded(packet, lane, rays[first + lane]);
    }
}

void Tracer::occluded(std::span<const Segment> segments, std::span<char> are_occluded) const {
    if (has_wide_packets)
        occluded_in_packets<RTCRay16>(segments, are_occluded);
    else
        occluded_in_packets<RTCRay8>(segments, are_occluded);
}

template <class Packet>
void Tracer::occluded_in_packets(std::span<const Segment> segments, std::span<char> are_occluded) const {
    constexpr std::size_t width = width_of<Packet>;
    RayQuery query(false);

    Packet packet{};
    for (std::size_t first = 0; first < segments.size(); first += width) {
        const std::size_t used = std::min(width, segments.size() - first);
        for (std::size_t lane = 0; lane < used; ++lane) {
            const Segment &segment = segments[first + lane];
            set_ray(packet, lane, segment.from, segment.direction, segment.reach);
        }
        query.occlude(Mask<width>(used).lanes, structure->top_level(), packet);
        // Embree marks an occluded ray by a negative end.
        for (std::size_t lane = 0; lane < used; ++lane)
            are_occluded[first + lane] = packet.tfar[lane] < 0 ? 1 : 0;
    }
}

bool Tracer::can_intersect_all() const { return structure->can_collect_hits(); }

std::vector<Hit> Tracer::intersect_all(const Ray &ray) const {
    RTCRayHit query{};
    query.ray.org_x = ray.origin.x;
    query.ray.org_y = ray.origin.y;
    query.ray.org_z = ray.origin.z;
    query.ray.dir_x = ray.direction.x;
    query.ray.dir_y = ray.direction.y;
    query.ray.dir_z = ray.direction.z;
    query.ray.tfar = infinity;
    query.ray.mask = ~0u;
    query.ray.id = collecting_ray;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    all_hits.found.clear();
    collect_hits(structure->top_level(), query);

    std::vector<Hit> hits;
    RTCRayHit8 packet{};
    for (const EmbreeHit &found : all_hits.found) {
        packet.ray.tfar[0] = found.distance;
        packet.hit.Ng_x[0] = found.normal[0];
        packet.hit.Ng_y[0] = found.normal[1];
        packet.hit.Ng_z[0] = found.normal[2];
        packet.hit.primID[0] = found.primitive;
        packet.hit.geomID[0] = found.geometry;
        packet.hit.instID[0][0] = found.instance;
        if (const Hit hit = decoded(packet, 0, ray); hit.exists)
            hits.push_back(hit);
    }
    std::ranges::sort(hits, [](const Hit &a, const Hit &b) { return a.distance < b.distance; });
    return hits;
}

float Tracer::radius() const {
    RTCBounds bounds;
    rtcGetSceneBounds(structure->top_level(), &bounds);
    const Vec3 diagonal{bounds.upper_x - bounds.lower_x, bounds.upper_y - bounds.lower_y,
                        bounds.upper_z - bounds.lower_z};
    // The bounds of an empty scene are inside out.
    return diagonal.x >= 0 ? 0.5f * length(diagonal) : 0.0f;
}

} // namespace vantor
