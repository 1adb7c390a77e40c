// Object: a shape that can be placed.
#pragma once

#include "libvantor/description/instance.h"
#include "libvantor/shapes/shape.h"
#include "libvantor/shapes/trimmer.h"

#include <vector>

namespace vantor {

struct Object {
    VtLong id; ///< As the script knows it.
    Shape shape;
    float reach;                             ///< The largest coordinate of any of its points.
    bool has_colors;                         ///< Its primitives carry colours.
    std::vector<const Trimmer *> trimmers{}; ///< A point stays if all of them keep it.

    /// Instances of another object, which then has the shape. Null for an object of its own.
    const Object *prototype = nullptr;
    std::vector<Instance> instances{};
    std::vector<Color> instance_colors{}; ///< Which each of them carries; empty if they carry none.
    float least_scale = 1;                ///< Of any instance.

    /// Whether a point of a primitive stays, given by Embree's coordinates on that and in the object's space.
    bool keeps(std::uint32_t primitive, Point2f on_primitive, Vec3 point) const {
        const Point2f uv = parameters_at(shape, primitive, on_primitive, point).uv;
        return std::ranges::all_of(trimmers,
                                   [&](const Trimmer *trimmer) { return vantor::keeps(*trimmer, uv, point); });
    }
};

/// The largest coordinate outside that a point may have whose coordinates are at most `reach` inside.
double outer_reach(double reach, const VtTransform &outer_from_inner);

/// The type of object that has no shape of its own.
inline constexpr std::string_view instances_type = "instances";

/// The object at all the instances; reports those that cannot be used.
std::optional<Object> make_instances(VtLong id, const Object &prototype, const Parameters &parameters,
                                     const CallReport &report);

} // namespace vantor
