// Cameras: their types and parameters.
#include "libvantor/words/ranges.h"
#include "libvantor/words/tables.h"

namespace vantor {

using namespace words;

namespace {

constexpr Parameter perspective_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "where the camera stands"},
    {"target", ValueKind::Vector3, coordinate, Presence::Optional, none, "length",
     "the point that it looks at; left out, it looks along -Z"},
    {"up", ValueKind::Vector3, direction, Presence::Default, {0, 1, 0}, "", "the direction that is up in the picture"},
    {"fov", ValueKind::Number, field_of_view, Presence::Default, {45}, "degrees", "vertical field of view"},
};
constexpr Type cameras_table[] = {
    {"perspective", "A pinhole camera.", perspective_parameters},
};

} // namespace

std::span<const Type> words::camera_types() { return cameras_table; }

} // namespace vantor
