// AOV table: what each AOV is made of, how samples become a pixel, and how that looks in 8 bits.
#include "libvantor/film/aov_table.h"

#include "libvantor/base/random.h"

namespace vantor {

namespace {

Color grey(float value) { return {value, value, value}; }
Color color_of(Vec3 v) { return {v.x, v.y, v.z}; }

Color albedo(const FirstHit &first) { return first.surface.albedo(); }
Color normal(const FirstHit &first) {
    const Vec3 front = first.surface.shading_normal();
    return color_of(first.surface.arrives_at_front() ? front : -front);
}
// Surfaces that the path passed straight through lie on the same line.
Color depth(const FirstHit &first) { return grey(length(first.hit.point - first.path_start)); }
Color depth_z(const FirstHit &first) { return grey(dot(first.hit.point - first.path_start, first.camera_axis)); }
Color position(const FirstHit &first) { return color_of(first.hit.point); }
Color object_id(const FirstHit &first) { return grey(static_cast<float>(first.placement.object->id)); }

Color alpha(const FirstHit &) { return grey(1); }

Color as_it_is(Color value, float) { return value; }
Color relative_to_largest(Color value, float largest) { return largest > 0 ? value * (1 / largest) : value; }
// -1 to 1 as 0 to 1.
Color shifted(Color value, float) { return {0.5f + 0.5f * value.r, 0.5f + 0.5f * value.g, 0.5f + 0.5f * value.b}; }
// A colour of its own for each object, well above the black of none.
Color distinct_color(Color id, float) {
    if (!(id.r > 0))
        return {};
    const std::uint32_t mixed = sobol::hash(static_cast<std::uint32_t>(static_cast<std::int64_t>(id.r)));
    const auto channel = [](std::uint32_t byte) { return 0.25f + 0.75f * static_cast<float>(byte & 255) / 255; };
    return {channel(mixed), channel(mixed >> 8), channel(mixed >> 16)};
}

constexpr AovRow rows[] = {
    {Aov::Color, nullptr, Reduction::Radiance, nullptr, Display::Srgb},
    {Aov::Albedo, albedo, Reduction::Mean, as_it_is, Display::Srgb},
    {Aov::Normal, normal, Reduction::Direction, shifted, Display::Linear},
    {Aov::Depth, depth, Reduction::MeanOfHits, relative_to_largest, Display::Linear},
    {Aov::Position, position, Reduction::MeanOfHits, as_it_is, Display::Linear},
    {Aov::ObjectId, object_id, Reduction::First, distinct_color, Display::Linear},
    {Aov::Variance, nullptr, Reduction::RadianceVariance, as_it_is, Display::Linear},
    {Aov::Alpha, alpha, Reduction::Mean, as_it_is, Display::Linear},
    {Aov::DepthZ, depth_z, Reduction::MeanOfHits, relative_to_largest, Display::Linear},
    {Aov::Foreground, nullptr, Reduction::RadianceOfHits, nullptr, Display::Srgb},
};

// A row that is missing, or at another place than its name, does not compile.
constexpr bool stand_in_order() {
    for (std::size_t i = 0; i < std::size(rows); ++i)
        if (index_of(rows[i].aov) != i)
            return false;
    return true;
}
static_assert(std::size(rows) == aov_count && stand_in_order());

// What is not reduced from radiance needs a value, and only that.
constexpr bool have_values() {
    for (const AovRow &row : rows)
        if ((row.value == nullptr) !=
            (row.reduction == Reduction::Radiance || row.reduction == Reduction::RadianceVariance ||
             row.reduction == Reduction::RadianceOfHits))
            return false;
    return true;
}
static_assert(have_values());

} // namespace

std::span<const AovRow, aov_count> aov_table() { return rows; }

void AovSample::record(const Hit &hit, const Surface &surface, const Placement &placement) {
    const FirstHit first{hit, surface, placement, start, axis};
    is_hit = true;
    for (std::size_t i = 0; i < aov_count; ++i)
        if (rows[i].value)
            values[i] = rows[i].value(first);
}

} // namespace vantor
