// Lights: their types and parameters.
#include "libvantor/words/ranges.h"
#include "libvantor/words/tables.h"

namespace vantor {

using namespace words;

namespace {

constexpr Parameter area_parameters[] = {
    {"radiance",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / (area * solid angle)",
     "the radiance that leaves the front of every object in its light block"},
};
constexpr Parameter distant_parameters[] = {
    {"direction", ValueKind::Vector3, direction, Presence::Default, {0, 0, -1}, "", "the way the light travels"},
    {"irradiance",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / area",
     "the irradiance of a surface that faces the light"},
};
constexpr Parameter point_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "where the light stands"},
    {"intensity",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / solid angle",
     "the same in all directions"},
};
constexpr Type lights_table[] = {
    {"area", "Shines from the objects that are added in a light block.", area_parameters},
    {"distant", "Parallel light from far away.", distant_parameters},
    {"point", "Shines from one point in all directions.", point_parameters},
};

} // namespace

std::span<const Type> words::light_types() { return lights_table; }

} // namespace vantor
