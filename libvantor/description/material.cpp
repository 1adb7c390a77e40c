// Material: what the surfaces of objects are made of.
#include "libvantor/description/material.h"

namespace vantor {

Material make_surface(Bsdf bsdf, const Parameters &parameters, const PatternFinder &find, const CallReport &report) {
    parameters.complain_without("bump", {"bump_height"}, report);

    // What is the same everywhere is settled here; the rest is asked at every hit.
    if (parameters.is_given("color") && !parameters.is_pattern("color"))
        set_color(bsdf, parameters.color("color"));
    if (parameters.is_given("roughness") && !parameters.is_pattern("roughness"))
        set_roughness(bsdf, static_cast<float>(parameters.number("roughness")));

    Variation variation;
    variation.color = pattern_in(parameters, "color", find);
    variation.roughness = pattern_in(parameters, "roughness", find);
    variation.opacity = number_or_pattern(parameters, "opacity", find);
    variation.bump = pattern_in(parameters, "bump", find);
    variation.bump_height = static_cast<float>(parameters.number("bump_height"));
    variation.normal_map = pattern_in(parameters, "normal_map", find);
    variation.is_two_sided = parameters.is_on("two_sided");
    const bool is_plain = !variation.color && !variation.roughness && !variation.bump && !variation.normal_map &&
                          !variation.opacity.pattern && variation.opacity.number >= 1 && variation.is_two_sided;
    return {bsdf, is_plain ? nullptr : std::make_unique<const Variation>(variation)};
}

Material default_material() {
    const Type &diffuse = names_of(EntityKind::Material).types[0];
    return {Diffuse{Parameters(diffuse).color("reflectance")}, nullptr};
}

} // namespace vantor
