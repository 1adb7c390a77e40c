// Object: a shape that can be placed.
#include "libvantor/description/object.h"

#include "libvantor/shapes/colors.h"

namespace vantor {

double outer_reach(double reach, const VtTransform &outer_from_inner) {
    const VtTransform &m = outer_from_inner;
    double largest = 0;
    for (int c = 0; c < 3; ++c) {
        const double stretch = std::fabs(m[0][c]) + std::fabs(m[1][c]) + std::fabs(m[2][c]);
        largest = std::max(largest, reach * stretch + std::fabs(m[3][c]));
    }
    return largest;
}

std::optional<Object> make_instances(VtLong id, const Object &prototype, const Parameters &parameters,
                                     const CallReport &report) {
    if (prototype.prototype) {
        parameters.complain("object",
                            "has instances itself (expected an object of any other type); nothing of them "
                            "will be seen",
                            report);
        return {};
    }
    const VtInstanceArray<VtTransform> &given = parameters.transform_array("places");
    if (!check_storage(given, "places", parameters, report))
        return {};
    std::vector<Color> colors;
    if (parameters.is_given("colors") &&
        check_storage(parameters.vector3_array("colors"), "colors", parameters, report))
        colors = read_colors(static_cast<std::size_t>(given.Size()), "places", parameters, report);

    Object result{id, {}, 0, prototype.has_colors};
    result.prototype = &prototype;
    result.instances.reserve(static_cast<std::size_t>(std::max<VtLong>(given.Size(), 0)));
    double reach = 0;
    std::size_t index = 0, unusable = 0, first_unusable = 0;
    const char *why_first = nullptr;
    given.ForEachBlock([&](const VtTransform *transforms, VtLong count) {
        for (VtLong i = 0; i < count; ++i, ++index) {
            const char *why = why_unusable(transforms[i]);
            const double its_reach = outer_reach(prototype.reach, transforms[i]);
            if (!why && !(its_reach <= largest_reach))
                why = "reaches beyond 1e9";
            if (!why) {
                result.instances.emplace_back(transforms[i]);
                // Stays with its instance where others are left out.
                if (!colors.empty())
                    colors[result.instances.size() - 1] = colors[index];
                result.least_scale = std::min(result.least_scale, to_float(transforms[i]).least_scale());
                reach = std::max(reach, its_reach);
            } else if (unusable++ == 0) {
                first_unusable = index;
                why_first = why;
            }
        }
    });
    if (unusable > 0)
        parameters.complain("places", joined({left_out(unusable, "transform", first_unusable), ", which ", why_first}),
                            report);
    if (result.instances.empty()) {
        if (unusable == 0)
            parameters.complain("places", "is empty; nothing of the instances will be seen", report);
        return {};
    }
    if (!colors.empty())
        colors.resize(result.instances.size());
    result.instance_colors = std::move(colors);
    result.reach = static_cast<float>(reach);
    return result;
}

} // namespace vantor
