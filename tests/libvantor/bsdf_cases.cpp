// The BSDFs that tests go through: every one of the vocabulary, and special cases.
#include "tests/libvantor/bsdf_cases.h"

#include "libvantor/description/interface.h"
#include "tests/libvantor/chi_square.h"

namespace bsdf_cases {

using namespace vantor;

namespace {

// Reflects everything, because its index is imaginary.
const Conductor ideal_metal{{0, 0, 0}, white};
const Conductor gold{{0.19f, 0.56f, 1.33f}, {3.40f, 2.20f, 1.87f}};
const Dielectric glass{1.5f};

std::vector<Case> cases_of_vocabulary() {
    std::vector<Case> cases;
    Report report;
    const CallReport call(report, "newInterface");
    for (const Type &type : names_of(EntityKind::Interface).types) {
        const Parameters defaults(type);
        BsdfDescription bsdf = make_bsdf(type, defaults, call);
        set_color(bsdf, white);
        const std::string name(type.name);
        cases.push_back({name, bsdf});
        if (defaults.knows("roughness"))
            for (const float roughness : {0.2f, 0.5f, 1.0f})
                cases.push_back({name + " of roughness " + std::to_string(roughness), with_roughness(bsdf, roughness)});
    }
    return cases;
}

std::vector<Case> special_cases() {
    return {
        {"mirror", ideal_metal},
        {"gold mirror", gold},

        {"bubble", Dielectric{1 / 1.5f}},
        {"nothing", with_roughness(Dielectric{1}, 0.5f)},
        {"metal 0.2", with_roughness(ideal_metal, 0.2f)},
        {"metal 0.5", with_roughness(ideal_metal, 0.5f)},
        {"metal 1", with_roughness(ideal_metal, 1)},
        {"gold 0.4", with_roughness(gold, 0.4f)},
        {"gold 1", with_roughness(gold, 1)},
        {"glass 0.2", with_roughness(glass, 0.2f)},
        {"glass 0.5", with_roughness(glass, 0.5f)},
        {"glass 1", with_roughness(glass, 1)},
        {"diamond 0.3", with_roughness(Dielectric{2.4f}, 0.3f)},
        {"bubble 0.4", with_roughness(Dielectric{0.75f}, 0.4f)},
        {"black plastic", Plastic{{0, 0, 0}}},
        {"grey plastic", Plastic{{0.3f, 0.3f, 0.3f}, 1.8f}},
        {"plastic 0.3", with_roughness(Plastic{white}, 0.3f)},
        {"plastic 0.8", with_roughness(Plastic{white, 2.0f}, 0.8f)},
        {"rough", Principled{.base_color = white, .roughness = 1, .specular = 0}},
        {"gloss only", Principled{.base_color = {0, 0, 0}, .roughness = 0.3f, .specular = 1}},
        {"metal only", Principled{.base_color = {0.9f, 1, 0.3f}, .metallic = 1, .roughness = 0.3f}},
        {"rough metallic", Principled{.base_color = {1, 0.6f, 0.2f}, .metallic = 1, .roughness = 1}},
        {"half metallic", Principled{.base_color = white, .metallic = 0.5f, .roughness = 0.7f}},
        {"coated", Principled{.base_color = white, .clearcoat = 1, .coat_roughness = 0.2f}},
        {"coated metal",
         Principled{.base_color = white, .metallic = 1, .roughness = 0.4f, .clearcoat = 0.5f, .coat_roughness = 0.6f}},
        {"sheen", Principled{.base_color = white, .roughness = 0.8f, .specular = 0.2f, .sheen = 1}},
        {"black sheen", Principled{.base_color = {0, 0, 0}, .specular = 0, .sheen = 1}},
        {"principled glass", Principled{.base_color = white, .roughness = 0.3f, .transmission = 1}},
        {"everything", Principled{.base_color = white,
                                  .metallic = 0.2f,
                                  .roughness = 0.4f,
                                  .specular = 0.8f,
                                  .clearcoat = 0.7f,
                                  .coat_roughness = 0.3f,
                                  .sheen = 0.5f,
                                  .transmission = 0.4f,
                                  .ior = 1.8f}},
    };
}

} // namespace

BsdfDescription with_roughness(BsdfDescription bsdf, float roughness) {
    set_roughness(bsdf, roughness);
    return bsdf;
}

const std::vector<Case> &all() {
    static const std::vector<Case> cases = [] {
        std::vector<Case> made = cases_of_vocabulary();
        for (const Case &c : special_cases())
            made.push_back(c);
        return made;
    }();
    return cases;
}

std::vector<Case> specular() {
    std::vector<Case> cases;
    for (const Case &c : all())
        if (is_specular(c.bsdf))
            cases.push_back(c);
    return cases;
}

std::vector<Case> not_specular() {
    std::vector<Case> cases;
    for (const Case &c : all())
        if (!is_specular(c.bsdf))
            cases.push_back(c);
    return cases;
}

std::vector<Vec3> directions() {
    std::vector<Vec3> result;
    for (const double cosine : {0.95, 0.5, 0.15, -0.7, -0.25})
        result.push_back(chi_square::direction_at(cosine, 0.4));
    return result;
}

double radiance_scale(const BsdfDescription &bsdf, Vec3 wo, Vec3 wi) {
    if (wo.z * wi.z > 0)
        return 1;
    const double ior = std::visit(
        [](const auto &description) {
            if constexpr (requires { description.ior; })
                return description.ior;
            else
                return 1.0f;
        },
        bsdf);
    return wo.z > 0 ? 1 / (ior * ior) : ior * ior;
}

void Sums::add(double value) {
    sum += value;
    squares += value * value;
}

Mean Sums::mean(int count) const {
    const double mean = sum / count;
    return {mean, std::sqrt(std::max(0.0, squares / count - mean * mean) / count)};
}

Mean sampled_albedo(const BsdfDescription &description, Vec3 wo, int count, bool with_specular) {
    const Bsdf bsdf(description, wo);
    Numbers numbers;
    Sums sums;
    for (int n = 0; n < count; ++n) {
        BsdfSample found;
        const Point2f u = numbers.get_2d();
        if (!bsdf.sample(u, numbers.get_1d(), found) || (found.is_specular && !with_specular))
            continue;
        sums.add(found.weight.g / radiance_scale(description, wo, found.wi));
    }
    return sums.mean(count);
}

} // namespace bsdf_cases
