// Interface: how light scatters at a surface, as the script described it.
#include "libvantor/description/interface.h"

namespace vantor {

namespace {

float number_of(const Parameters &parameters, std::string_view name) {
    return static_cast<float>(parameters.number(name));
}

struct Metal {
    std::string_view name;
    Color eta;
    Color k;
};

// Indices at 650, 550 and 450 nm for red, green and blue (closer ones would make gold and copper pale), interpolated
// between the neighbouring entries of the measured tables and rounded to two digits after the point. Copper, gold and
// silver: Johnson, Christy, "Optical Constants of the Noble Metals", Physical Review B 6, 1972. Aluminium: Smith,
// Shiles, Inokuti in Palik, "Handbook of Optical Constants of Solids", 1985.
constexpr Metal metals[] = {
    {"aluminium", {1.47f, 0.97f, 0.62f}, {7.80f, 6.69f, 5.48f}},
    {"copper", {0.24f, 1.01f, 1.24f}, {3.63f, 2.58f, 2.39f}},
    {"gold", {0.16f, 0.42f, 1.38f}, {3.61f, 2.47f, 1.92f}},
    {"silver", {0.05f, 0.06f, 0.04f}, {4.41f, 3.60f, 2.65f}},
};

BsdfDescription make_conductor(const Parameters &parameters, const CallReport &report) {
    if (parameters.choice("metal") != "custom")
        parameters.complain_beside("metal", {"eta", "k"}, report);
    Conductor conductor{parameters.color("eta"), parameters.color("k"), parameters.color("color")};
    for (const Metal &metal : metals)
        if (metal.name == parameters.choice("metal")) {
            conductor.eta = metal.eta;
            conductor.k = metal.k;
        }
    conductor.set_roughness(number_of(parameters, "roughness"));
    return conductor;
}

BsdfDescription make_dielectric(const Parameters &parameters, const CallReport &) {
    Dielectric dielectric{number_of(parameters, "ior"), parameters.color("color")};
    dielectric.set_roughness(number_of(parameters, "roughness"));
    return dielectric;
}

BsdfDescription make_plastic(const Parameters &parameters, const CallReport &) {
    Plastic plastic{parameters.color("color"), number_of(parameters, "ior")};
    plastic.set_roughness(number_of(parameters, "roughness"));
    return plastic;
}

BsdfDescription make_principled(const Parameters &parameters, const CallReport &) {
    return Principled{.base_color = parameters.color("base_color"),
                      .metallic = number_of(parameters, "metallic"),
                      .roughness = number_of(parameters, "roughness"),
                      .specular = number_of(parameters, "specular"),
                      .clearcoat = number_of(parameters, "clearcoat"),
                      .coat_roughness = number_of(parameters, "clearcoat_roughness"),
                      .sheen = number_of(parameters, "sheen"),
                      .transmission = number_of(parameters, "transmission"),
                      .ior = number_of(parameters, "ior")};
}

constexpr InterfaceMaker makers[] = {
    {"conductor", make_conductor}, {"dielectric", make_dielectric}, {"diffuse", make_diffuse},
    {"plastic", make_plastic},     {"principled", make_principled},
};

} // namespace

std::span<const InterfaceMaker> interface_makers() { return makers; }

BsdfDescription make_bsdf(const Type &type, const Parameters &parameters, const CallReport &report) {
    return maker_of(interface_makers(), type).make(parameters, report);
}

BsdfDescription make_diffuse(const Parameters &parameters, const CallReport &) {
    return Diffuse{parameters.color("reflectance")};
}

} // namespace vantor
