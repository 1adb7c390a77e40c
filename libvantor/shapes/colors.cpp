// Colors: those that a script gives to the primitives of a shape, or to instances.
#include "libvantor/shapes/colors.h"

namespace vantor {

bool check_one_for_each(std::size_t count, std::string_view of, std::string_view name, VtLong elements,
                        const Parameters &parameters, const CallReport &report) {
    const bool is_good = static_cast<std::size_t>(elements) == count;
    if (!is_good)
        parameters.complain(name,
                            joined({"has ", counted(elements, "element"), " (expected one for each of the ",
                                    std::to_string(count), " ", of, "); it is left out"}),
                            report);
    return is_good;
}

std::vector<Color> read_colors(std::size_t count, std::string_view of, const Parameters &parameters,
                               const CallReport &report) {
    const VtInstanceArray<VtVector3> &given = parameters.vector3_array("colors");
    if (!check_one_for_each(count, of, "colors", given.Size(), parameters, report))
        return {};
    std::vector<Color> colors = copied(given, [](const VtVector3 &v) { return to_color(v); });
    const auto is_usable_component = [](float c) { return c >= 0 && c <= 1e9f; };
    const auto is_usable_color = [&](Color c) {
        return is_usable_component(c.r) && is_usable_component(c.g) && is_usable_component(c.b);
    };
    if (std::ranges::all_of(colors, is_usable_color))
        return colors;
    parameters.complain("colors", "has unusable elements (expected components from 0 to 1e9); it is left out", report);
    return {};
}

} // namespace vantor
