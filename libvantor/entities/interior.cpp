// Interior: what fills the bodies of an interior block.
#include "libvantor/entities/interior.h"

namespace vantor {

Medium make_medium(const Parameters &parameters, const CallReport &report) {
    Medium medium{parameters.color("sigma_a"), parameters.color("sigma_s"), static_cast<float>(parameters.number("g"))};
    if (parameters.is_given("sigma_t")) {
        for (const char *name : {"sigma_a", "sigma_s"})
            if (parameters.is_given(name))
                parameters.complain(name, "has no effect beside \"sigma_t\"", report);
        const Color sum = parameters.color("sigma_t");
        const Color albedo = parameters.color("albedo");
        medium.scattering = sum * albedo;
        medium.absorption = sum * Color{1 - albedo.r, 1 - albedo.g, 1 - albedo.b};
    } else if (parameters.is_given("albedo")) {
        parameters.complain("albedo", "has no effect without \"sigma_t\"", report);
    }
    return medium;
}

} // namespace vantor
