// Materials: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr Parameter surface_parameters[] = {
    {"interface", ValueKind::InterfaceId, any, Presence::Required, none, "", "how the surface scatters light"},
    {"color", ValueKind::ColorOrPattern, fraction, Presence::Optional, none, "",
     "in place of the interface's own colour; left out, that stands"},
    {"roughness", ValueKind::NumberOrPattern, fraction, Presence::Optional, none, "",
     "in place of the interface's own roughness; left out, that stands"},
    {"metallic", ValueKind::NumberOrPattern, fraction, Presence::Optional, none, "",
     "in place of a \"principled\" interface's own fraction of metal; others have none, and stay as they are"},
    {"opacity", ValueKind::NumberOrPattern, fraction, Presence::Default, value(1), "",
     "the fraction of light that meets the surface; the rest passes straight through"},
    {"bump", ValueKind::PatternId, any, Presence::Optional, none, "",
     "a pattern whose luminance is a height above the surface, which its normals follow"},
    {"bump_height", ValueKind::Number, coordinate, Presence::Default, value(1), "length",
     "the height of the luminance 1, in the object's space"},
    {"normal_map", ValueKind::PatternId, any, Presence::Optional, none, "",
     "normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image"},
    {"two_sided", ValueKind::Switch, off_or_on, Presence::Default, value(1, 1, 1), "",
     "0: seen from behind, the surface is not there"},
};

} // namespace

std::span<const Type> tables::material_types() {
    static const Type table[] = {
        {"diffuse", "A surface with a diffuse interface, in one step.", diffuse_words()},
        {"surface", "A surface with an interface of its own.", surface_parameters},
    };
    return table;
}

} // namespace vantor
