// Material: what the surfaces of objects are made of.
#include "libvantor/description/material.h"

namespace vantor {

namespace {

std::optional<Material> make_plain(const Parameters &parameters, const MaterialFinders &, const CallReport &report) {
    return Material{make_diffuse(parameters, report), nullptr};
}

std::optional<Material> make_surface(const Parameters &parameters, const MaterialFinders &find,
                                     const CallReport &report) {
    const BsdfDescription *interface = find.interface("interface");
    if (!interface)
        return {};
    parameters.complain_without("bump", {"bump_height"}, report);

    // Constants are set here, once; patterns are evaluated at every hit.
    BsdfDescription bsdf = *interface;
    if (parameters.is_given("color") && !parameters.is_pattern("color"))
        set_color(bsdf, parameters.color("color"));
    if (parameters.is_given("roughness") && !parameters.is_pattern("roughness"))
        set_roughness(bsdf, static_cast<float>(parameters.number("roughness")));
    if (parameters.is_given("metallic") && !parameters.is_pattern("metallic"))
        set_metallic(bsdf, static_cast<float>(parameters.number("metallic")));

    Variation variation;
    variation.color = pattern_in(parameters, "color", find.pattern);
    variation.roughness = pattern_in(parameters, "roughness", find.pattern);
    variation.metallic = pattern_in(parameters, "metallic", find.pattern);
    variation.opacity = number_or_pattern(parameters, "opacity", find.pattern);
    variation.bump = pattern_in(parameters, "bump", find.pattern);
    variation.bump_height = static_cast<float>(parameters.number("bump_height"));
    variation.normal_map = pattern_in(parameters, "normal_map", find.pattern);
    variation.is_two_sided = parameters.is_on("two_sided");
    const bool is_plain = !variation.color && !variation.roughness && !variation.metallic && !variation.bump &&
                          !variation.normal_map && !variation.opacity.pattern && variation.opacity.number >= 1 &&
                          variation.is_two_sided;
    return Material{bsdf, is_plain ? nullptr : std::make_unique<const Variation>(variation)};
}

constexpr MaterialMaker makers[] = {
    {"diffuse", make_plain},
    {"surface", make_surface},
};

} // namespace

std::span<const MaterialMaker> material_makers() { return makers; }

std::optional<Material> make_material(const Type &type, const Parameters &parameters, const MaterialFinders &find,
                                      const CallReport &report) {
    return maker_of(material_makers(), type).make(parameters, find, report);
}

Material default_material() {
    const Type &diffuse = names_of(EntityKind::Material).types[0];
    return {Diffuse{Parameters(diffuse).color("reflectance")}, nullptr};
}

} // namespace vantor
