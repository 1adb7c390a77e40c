// Interior: what fills the bodies of an interior block.
#include "libvantor/description/interior.h"

namespace vantor {

namespace {

Medium make_homogeneous(const Parameters &parameters, const CallReport &report) {
    Medium medium{
        parameters.color("sigma_a"), parameters.color("sigma_s"), {static_cast<float>(parameters.number("g"))}};
    parameters.complain_beside("sigma_t", {"sigma_a", "sigma_s"}, report);
    parameters.complain_without("sigma_t", {"albedo"}, report);
    if (parameters.is_given("sigma_t")) {
        const Color sum = parameters.color("sigma_t");
        const Color albedo = parameters.color("albedo");
        medium.sigma_s = sum * albedo;
        medium.sigma_a = sum * Color{1 - albedo.r, 1 - albedo.g, 1 - albedo.b};
    }
    return medium;
}

constexpr InteriorMaker makers[] = {
    {"homogeneous", make_homogeneous},
};

} // namespace

std::span<const InteriorMaker> interior_makers() { return makers; }

Medium make_medium(const Type &type, const Parameters &parameters, const CallReport &report) {
    return maker_of(interior_makers(), type).make(parameters, report);
}

} // namespace vantor
