// Pattern: what varies over surfaces, as the script described it.
#include "libvantor/description/pattern.h"

#include <cmath>

namespace vantor {

namespace {

// How many patterns a kind is made of, each use counted.
int parts_of(const Pattern *used) { return used ? used->parts : 0; }
int parts_of(const Checker &checker) { return 1 + parts_of(checker.a.pattern) + parts_of(checker.b.pattern); }
int parts_of(const Gradient &) { return 1; }
int parts_of(const Image &) { return 1; }
int parts_of(const Mix &mix) {
    return 1 + parts_of(mix.a.pattern) + parts_of(mix.b.pattern) + parts_of(mix.amount.pattern);
}
int parts_of(const Noise &noise) { return 1 + parts_of(noise.a.pattern) + parts_of(noise.b.pattern); }

template <class Kind> std::optional<Pattern> as_pattern(Kind kind, const CallReport &report) {
    const int parts = parts_of(kind);
    if (parts > most_parts) {
        report.diagnostic(
            joined({"the pattern is made of ", std::to_string(parts), " patterns, counting each use (up to ",
                    std::to_string(most_parts), " are possible); it is left out"}));
        return {};
    }
    return Pattern{std::move(kind), parts};
}

Vec3 factors_in(const Parameters &parameters, std::string_view name) { return to_float(parameters.vector(name)); }

PatternSpace space_in(const Parameters &parameters) {
    return parameters.choice("space") == "uv" ? PatternSpace::Uv : PatternSpace::Object;
}

std::optional<Pattern> make_checker(const Parameters &parameters, const PatternFinders &find,
                                    const CallReport &report) {
    return as_pattern(Checker{color_or_pattern(parameters, "a", find.pattern),
                              color_or_pattern(parameters, "b", find.pattern), space_in(parameters),
                              factors_in(parameters, "scale")},
                      report);
}

Image::Channel channel_in(const Parameters &parameters) {
    const std::string_view name = parameters.choice("channel");
    return name == "red"     ? Image::Channel::Red
           : name == "green" ? Image::Channel::Green
           : name == "blue"  ? Image::Channel::Blue
           : name == "alpha" ? Image::Channel::Alpha
                             : Image::Channel::Color;
}

std::optional<Pattern> make_image(const Parameters &parameters, const PatternFinders &find, const CallReport &report) {
    TextureFile *file = find.texture("texture");
    if (!file)
        return {};
    const std::string_view space = parameters.choice("color_space");
    const std::string_view wrap = parameters.choice("wrap");
    const std::string_view filter = parameters.choice("filter");
    const Vec3 scale = factors_in(parameters, "scale");
    const Vec3 offset = to_float(parameters.vector("offset"));
    return as_pattern(Image{file->texture(space == "srgb"     ? ColorSpace::Srgb
                                          : space == "linear" ? ColorSpace::Linear
                                                              : ColorSpace::AsFile,
                                          filter == "trilinear", report),
                            wrap == "clamp"    ? Image::Wrap::Clamp
                            : wrap == "mirror" ? Image::Wrap::Mirror
                            : wrap == "black"  ? Image::Wrap::Black
                                               : Image::Wrap::Repeat,
                            filter == "nearest"     ? Image::Filter::Nearest
                            : filter == "trilinear" ? Image::Filter::Trilinear
                                                    : Image::Filter::Bilinear,
                            channel_in(parameters),
                            {scale.x, scale.y},
                            {offset.x, offset.y}},
                      report);
}

std::optional<Pattern> make_noise(const Parameters &parameters, const PatternFinders &find, const CallReport &report) {
    return as_pattern(
        Noise{color_or_pattern(parameters, "a", find.pattern), color_or_pattern(parameters, "b", find.pattern),
              space_in(parameters), factors_in(parameters, "scale"), parameters.integer("octaves"),
              static_cast<float>(parameters.number("lacunarity")), static_cast<float>(parameters.number("gain"))},
        report);
}

std::optional<Pattern> make_mix(const Parameters &parameters, const PatternFinders &find, const CallReport &report) {
    const std::string_view mode = parameters.choice("mode");
    return as_pattern(Mix{color_or_pattern(parameters, "a", find.pattern),
                          color_or_pattern(parameters, "b", find.pattern),
                          number_or_pattern(parameters, "amount", find.pattern),
                          mode == "multiply" ? Mix::Mode::Multiply
                          : mode == "add"    ? Mix::Mode::Add
                                             : Mix::Mode::Mix},
                      report);
}

// The positions of so many colours: those that are given, if they can be used, or even ones from 0 to 1.
std::vector<float> positions_in(const Parameters &parameters, std::size_t count, const CallReport &report) {
    std::vector<float> positions;
    if (parameters.is_given("positions")) {
        positions = copied(parameters.double_array("positions"), [](double p) { return static_cast<float>(p); });
        const auto is_usable = [](float p) { return std::fabs(p) <= 1e9f; };
        if (positions.size() == count && std::ranges::all_of(positions, is_usable) && std::ranges::is_sorted(positions))
            return positions;
        parameters.complain("positions",
                            joined({"is left out (expected ", std::to_string(count),
                                    " numbers, one for each colour, none below the one before)"}),
                            report);
        positions.clear();
    }
    const float steps = static_cast<float>(std::max<std::size_t>(count, 2) - 1);
    for (std::size_t i = 0; i < count; ++i)
        positions.push_back(static_cast<float>(i) / steps);
    return positions;
}

std::optional<Pattern> make_gradient(const Parameters &parameters, const PatternFinders &, const CallReport &report) {
    const std::vector<Color> colors = copied(parameters.vector3_array("colors"), to_color);
    const auto is_usable = [](Color c) {
        return c.r >= 0 && c.g >= 0 && c.b >= 0 && largest_component(c) <= 1e18f && is_finite(c);
    };
    if (colors.empty() || !std::ranges::all_of(colors, is_usable)) {
        parameters.complain("colors", "has no or unusable elements (expected colours, 0 or more)", report);
        return {};
    }

    const std::vector<float> positions = positions_in(parameters, colors.size(), report);
    Gradient gradient{
        {}, space_in(parameters), to_float(parameters.vector("origin")), to_float(parameters.vector("direction"))};
    for (std::size_t i = 0; i < colors.size(); ++i)
        gradient.stops.push_back({positions[i], colors[i]});
    return as_pattern(std::move(gradient), report);
}

constexpr PatternMaker makers[] = {
    {"checker", make_checker}, {"gradient", make_gradient}, {"image", make_image},
    {"mix", make_mix},         {"noise", make_noise},
};

} // namespace

const Pattern *pattern_in(const Parameters &parameters, std::string_view name, const PatternFinder &find) {
    return parameters.is_pattern(name) ? find(name) : nullptr;
}

ColorOrPattern color_or_pattern(const Parameters &parameters, std::string_view name, const PatternFinder &find) {
    const bool is_pattern = parameters.is_pattern(name);
    return {to_color(is_pattern ? parameters.fallback(name) : parameters.vector(name)),
            pattern_in(parameters, name, find)};
}

NumberOrPattern number_or_pattern(const Parameters &parameters, std::string_view name, const PatternFinder &find) {
    const bool is_pattern = parameters.is_pattern(name);
    return {static_cast<float>(is_pattern ? parameters.fallback(name)[0] : parameters.number(name)),
            pattern_in(parameters, name, find)};
}

std::span<const PatternMaker> pattern_makers() { return makers; }

std::optional<Pattern> make_pattern(const Type &type, const Parameters &parameters, const PatternFinders &find,
                                    const CallReport &report) {
    return maker_of(pattern_makers(), type).make(parameters, find, report);
}

} // namespace vantor
