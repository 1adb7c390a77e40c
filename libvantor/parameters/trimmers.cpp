// Trimmers: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr std::string_view sides[] = {"inside", "outside"};

constexpr Parameter box_parameters[] = {
    {"min", ValueKind::Vector3, coordinate, Presence::Default, value(-1, -1, -1), "length",
     "the corner with the least coordinates"},
    {"max", ValueKind::Vector3, coordinate, Presence::Default, value(1, 1, 1), "length",
     "the corner with the greatest coordinates"},
    {"keep", ValueKind::Choice, any, Presence::Default, none, "", "which part stays", sides},
};
constexpr Parameter curve_parameters[] = {
    {"points", ValueKind::Vector2Array, any, Presence::Required, none, "",
     "the corners of a polygon in (u, v), or the control points of a curve; the last goes on to the first"},
    {"basis", ValueKind::Matrix4, any, Presence::Optional, none, "",
     "the basis of the curve; left out, straight lines join the points"},
    {"step", ValueKind::Integer, spline_step, Presence::Optional, none, "",
     "how many points further the next segment begins; left out, what the module has for the basis, or else 3"},
    {"keep", ValueKind::Choice, any, Presence::Default, none, "", "which part stays", sides},
};
constexpr Parameter plane_parameters[] = {
    {"point", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "a point of the plane"},
    {"normal", ValueKind::Vector3, direction, Presence::Default, value(0, 1, 0), "",
     "the side that is cut away, of any length"},
};
constexpr Type trimmers_table[] = {
    {"box", "Cuts along the sides of a box in the object's space.", box_parameters},
    {"curve", "Cuts along a closed curve in the texture coordinates of the object.", curve_parameters},
    {"plane", "Cuts one side of a plane away, in the object's space.", plane_parameters},
};

} // namespace

std::span<const Type> tables::trimmer_types() { return trimmers_table; }

} // namespace vantor
