// Objects: their types and parameters.
#include "libvantor/words/ranges.h"
#include "libvantor/words/tables.h"

namespace vantor {

using namespace words;

namespace {

constexpr Parameter box_parameters[] = {
    {"min",
     ValueKind::Vector3,
     any,
     Presence::Default,
     {-1, -1, -1},
     "length",
     "the corner with the least coordinates"},
    {"max",
     ValueKind::Vector3,
     any,
     Presence::Default,
     {1, 1, 1},
     "length",
     "the corner with the greatest coordinates"},
};
constexpr Parameter mesh_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length", "the corners of the triangles"},
    {"triangles", ValueKind::LongArray, any, Presence::Required, none, "",
     "three indices of points, from 0, for each triangle"},
    {"normals", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a normal for each point; left out, triangles are flat"},
    {"uvs", ValueKind::Vector2Array, any, Presence::Optional, none, "",
     "a texture coordinate for each point; counted, but nothing reads it yet"},
};
constexpr Parameter quad_parameters[] = {
    {"origin", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "one corner of a parallelogram"},
    {"edge_u",
     ValueKind::Vector3,
     direction,
     Presence::Default,
     {1, 0, 0},
     "length",
     "from the origin to the next corner"},
    {"edge_v",
     ValueKind::Vector3,
     direction,
     Presence::Default,
     {0, 1, 0},
     "length",
     "from the origin to the other neighbour; edge_u x edge_v points to the front"},
    {"corners", ValueKind::Vector3Array, any, Presence::Optional, none, "length",
     "four corners in place of origin and edges, counter-clockwise when seen from the front"},
};
constexpr Parameter sphere_parameters[] = {
    {"center", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "its centre"},
    {"radius", ValueKind::Number, size, Presence::Default, {1}, "length", "its radius"},
};
constexpr Type objects_table[] = {
    {"box", "A box along the axes; its front is outside.", box_parameters},
    {"mesh", "Triangles; the front is where their corners appear counter-clockwise.", mesh_parameters},
    {"quad", "A parallelogram, or any four corners.", quad_parameters},
    {"sphere", "A sphere; its front is outside.", sphere_parameters},
};

} // namespace

std::span<const Type> words::object_types() { return objects_table; }

} // namespace vantor
