// Geometry: a shape as one of Embree's geometries.
#pragma once

#include "libvantor/description/object.h"
#include "libvantor/embree/device.h"
#include "libvantor/embree/hit_point.h"

namespace vantor {

/// How Embree's hits on a geometry are to be read.
struct HitFormat {
    Primitives primitives{};              ///< In the space of the geometry.
    const TriangleMesh *smooth = nullptr; ///< A mesh with normals; null otherwise.
    unsigned triangles_per_primitive = 1; ///< Of Embree's, for each primitive of the shape.
    bool has_winding = false; ///< Embree's normal follows the order of the corners, which a mirroring map turns round.
    bool has_bodies = false;  ///< Each primitive is a body of its own, which others may overlap.
    bool faces_rays = false;  ///< A ribbon, of which Embree gives the tangent instead of the normal.

    /// The primitive of the shape that one of Embree's is part of.
    std::uint32_t primitive_of(unsigned embree_primitive) const {
        return triangles_per_primitive == 1 ? embree_primitive : embree_primitive / triangles_per_primitive;
    }
};

struct Geometry {
    OwnedGeometry handle; ///< Committed.
    HitFormat format;
    std::shared_ptr<const void> callback_data{}; ///< What Embree hands to callbacks; has to outlive the geometry.
};

/// Whether the geometry of a shape can be made under that map. It can always be made without one.
bool can_be_mapped(const Shape &shape, const VtTransform &map);

/// The object under a map. If it is trimmed, the map has to be the identity: trimmers speak of the object's space. The
/// object has to outlive the geometry, as Embree reads some arrays where they are.
Geometry make_geometry(RTCDevice device, const Object &object, const Affine &map);

/// There is a handle, or an exception.
template <class Handle> void check_handle(RTCDevice device, Handle handle) {
    if (!handle) {
        throw_device_error(device);
        throw std::bad_alloc();
    }
}

/// A geometry of that type, without anything in it.
OwnedGeometry begin_geometry(RTCDevice device, RTCGeometryType type);

} // namespace vantor
