// Shapes made from a script's parameters, without a scene; and what can be measured of their triangles.
#pragma once

#include "libvantor/shapes/shape.h"
#include "tests/libvantor/scripted_scene.h"

#include <map>

namespace scripted {

/// The shape, which has to be of that kind; nothing if there is nothing to see.
template <class Kind, class... Values> std::optional<Kind> made(const char *type_name, const Values &...values) {
    vantor::Report report;
    const vantor::CallReport call(report, "newObject", type_name);
    const vantor::Type *type = vantor::find_type(vantor::EntityKind::Object, type_name, call);
    const List list(values...);
    const vantor::Parameters parameters = vantor::read_parameters(*type, list, call);
    if (!parameters.is_complete())
        return {};
    std::optional<vantor::Shape> shape = vantor::make_shape(*type, parameters, call);
    if (!shape)
        return {};
    return std::get<Kind>(std::move(*shape));
}

inline double area(const vantor::TriangleMesh &mesh) {
    double sum = 0;
    for (const auto &t : mesh.triangles)
        sum += 0.5 * length(cross(mesh.points[t[1]] - mesh.points[t[0]], mesh.points[t[2]] - mesh.points[t[0]]));
    return sum;
}

/// Of the space inside a closed mesh: the sum of the tetrahedra from the origin.
inline double volume(const vantor::TriangleMesh &mesh) {
    double sum = 0;
    for (const auto &t : mesh.triangles)
        sum += dot(mesh.points[t[0]], cross(mesh.points[t[1]], mesh.points[t[2]])) / 6.0;
    return sum;
}

/// How many edges have no triangle on their other side that runs the other way. Points count as one if they are equal.
inline std::size_t open_edges(const vantor::TriangleMesh &mesh) {
    using Place = std::array<float, 3>;
    const auto place_of = [&](std::uint32_t i) {
        return Place{mesh.points[i].x + 0.0f, mesh.points[i].y + 0.0f, mesh.points[i].z + 0.0f};
    };
    std::map<std::pair<Place, Place>, int> balance;
    for (const auto &t : mesh.triangles)
        for (std::size_t i = 0; i < 3; ++i) {
            const Place from = place_of(t[i]), to = place_of(t[(i + 1) % 3]);
            if (from < to)
                ++balance[{from, to}];
            else
                --balance[{to, from}];
        }
    std::size_t open = 0;
    for (const auto &[edge, count] : balance)
        open += count != 0 ? 1 : 0;
    return open;
}

} // namespace scripted
