// Hit decoding: from Embree's record of a hit to what is known of it.
#include "libvantor/embree/acceleration_structure.h"
#include "libvantor/embree/instancer.h"
#include "libvantor/embree/tracer.h"

namespace vantor {

namespace {

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

template <class Packet> void Tracer::decode(const Packet &packet, std::size_t lane, const Ray &ray, Hit &hit) const {
    hit.exists = packet.hit.geomID[lane] != RTC_INVALID_GEOMETRY_ID;
    if (!hit.exists)
        return;
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
            return;
        }
    }
    hit.geometric_normal = normal * ((1 / length(normal)) * decoding.front);
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
}

template void Tracer::decode(const RTCRayHit8 &, std::size_t, const Ray &, Hit &) const;
template void Tracer::decode(const RTCRayHit16 &, std::size_t, const Ray &, Hit &) const;

} // namespace vantor
