// Lights: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr Parameter visible{"visible",
                            ValueKind::Switch,
                            off_or_on,
                            Presence::Default,
                            value(1),
                            "",
                            "0: the camera does not see it; mirrors, glass and everything that it lights do"};

constexpr Parameter area_parameters[] = {
    {"radiance", ValueKind::Color, not_negative, Presence::Default, value(1, 1, 1), "power / (area * solid angle)",
     "the radiance that leaves the front of every object in its light block"},
    {"pattern", ValueKind::PatternId, any, Presence::Optional, none, "",
     "what the radiance is multiplied by from point to point; left out, it is the same everywhere"},
    visible,
};
constexpr Parameter distant_parameters[] = {
    {"direction", ValueKind::Vector3, direction, Presence::Default, value(0, 0, -1), "", "the way the light travels"},
    {"irradiance", ValueKind::Color, not_negative, Presence::Default, value(1, 1, 1), "power / area",
     "the irradiance of a surface that faces the light"},
    {"angle", ValueKind::Number, half_turn, Presence::Default, value(0), "degrees",
     "the diameter of its disk in the sky (the sun's is 0.53); below 0.001 it is parallel light, and not seen"},
    visible,
};
constexpr Parameter environment_parameters[] = {
    {"name", ValueKind::Text, any, Presence::Optional, none, "",
     "a PNG, JPEG, OpenEXR or Radiance picture of all directions, longitude across and latitude upwards; left out, all "
     "are "
     "alike"},
    {"radiance", ValueKind::Color, not_negative, Presence::Default, value(1, 1, 1), "power / (area * solid angle)",
     "the radiance from all directions; a picture is multiplied by it"},
    visible,
};
constexpr Parameter point_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "where the light stands"},
    {"intensity", ValueKind::Color, not_negative, Presence::Default, value(1, 1, 1), "power / solid angle",
     "the same in all directions"},
};
constexpr Parameter sky_parameters[] = {
    {"sun_direction", ValueKind::Vector3, direction, Presence::Default, value(1, 1, 1), "",
     "towards the sun; +Y is the zenith"},
    {"turbidity", ValueKind::Number, turbidity, Presence::Default, value(3), "",
     "haze: 2 is a very clear sky, 10 a hazy one"},
    {"scale", ValueKind::Number, not_negative, Presence::Default, value(1), "",
     "the light is multiplied by it; with 1 a radiance of 1 is 10 kcd/m^2"},
    {"sun", ValueKind::Switch, off_or_on, Presence::Default, value(1), "", "whether the sun shines, too"},
    {"ground_albedo", ValueKind::Color, fraction, Presence::Default, value(0.2, 0.2, 0.2), "",
     "the fraction of light that the ground below the horizon reflects"},
    visible,
};
constexpr Parameter spot_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "where the light stands"},
    {"direction", ValueKind::Vector3, direction, Presence::Default, value(0, 0, -1), "", "the way the light travels"},
    {"target", ValueKind::Vector3, coordinate, Presence::Optional, none, "length",
     "the point that it shines at; left out, \"direction\" counts"},
    {"intensity", ValueKind::Color, not_negative, Presence::Default, value(1, 1, 1), "power / solid angle",
     "along the axis"},
    {"cutoff_angle", ValueKind::Number, cone, Presence::Default, value(30), "degrees",
     "from the axis to where there is no light any more"},
    {"beam_width", ValueKind::Number, half_turn, Presence::Optional, none, "degrees",
     "from the axis to where the light begins to fall; left out, 3/4 of the cutoff_angle"},
};
constexpr Type lights_table[] = {
    {"area", "Shines from the objects that are added in a light block.", area_parameters},
    {"distant", "Light from far away, parallel or from a disk.", distant_parameters},
    {"environment", "Light from all directions.", environment_parameters},
    {"point", "Shines from one point in all directions.", point_parameters},
    {"sky", "Daylight of a clear sky, with the sun.", sky_parameters},
    {"spot", "Shines from one point into a cone.", spot_parameters},
};

} // namespace

std::span<const Type> tables::light_types() { return lights_table; }

} // namespace vantor
