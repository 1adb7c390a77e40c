// Cameras: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr Parameter position{"position", ValueKind::Vector3,       coordinate, Presence::Default, value(0, 0, 0),
                             "length",   "where the camera stands"};
constexpr Parameter target{"target",
                           ValueKind::Vector3,
                           coordinate,
                           Presence::Optional,
                           none,
                           "length",
                           "the point that it looks at; left out, it looks along -Z"};
constexpr Parameter up{"up",
                       ValueKind::Vector3,
                       direction,
                       Presence::Default,
                       value(0, 1, 0),
                       "",
                       "the direction that is up in the picture"};

constexpr Parameter orthographic_parameters[] = {
    position,
    target,
    up,
    {"height", ValueKind::Number, size, Presence::Default, value(1), "length", "how much the picture's height shows"},
};
constexpr Parameter panorama_parameters[] = {position, target, up};

constexpr Range pixel_lengths{.low = 1e-3, .high = 1e9, .text = "0.001 to 1e9"};
constexpr std::string_view fov_axes[] = {"vertical", "horizontal", "smaller", "larger"};
constexpr Parameter perspective_parameters[] = {
    position,
    target,
    up,
    {"fov", ValueKind::Number, field_of_view, Presence::Default, value(45), "degrees", "field of view"},
    {"fov_axis", ValueKind::Choice, any, Presence::Default, none, "",
     "the side of the picture that the field of view spans", fov_axes},
    {"focal_lengths", ValueKind::Vector2, pixel_lengths, Presence::Optional, none, "pixels",
     "across and down, in place of \"fov\": how far from the principal point lies what is as far aside as it is ahead"},
    {"principal_point", ValueKind::Vector2, coordinate, Presence::Optional, none, "pixels",
     "where the view axis meets the picture, (0, 0) being the middle of its upper left pixel; left out, in the middle"},
    {"aperture_radius", ValueKind::Number, aperture, Presence::Default, value(0), "length",
     "the radius of the lens; 0 is a pinhole, with which everything is sharp"},
    {"focus_distance", ValueKind::Number, size, Presence::Optional, none, "length",
     "how far along the view axis pictures are sharp; left out, at the target, or 1 without a target"},
};
constexpr Type cameras_table[] = {
    {"orthographic", "Parallel rays: things look as large from near as from far.", orthographic_parameters},
    {"panorama", "Sees in all directions: longitude across the picture, latitude upwards, each by equal angles.",
     panorama_parameters},
    {"perspective", "A pinhole camera, or one with a thin lens.", perspective_parameters},
};

} // namespace

std::span<const Type> tables::camera_types() { return cameras_table; }

} // namespace vantor
