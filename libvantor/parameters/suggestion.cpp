// Suggestions: which known word is meant by an unknown one.
#include "libvantor/parameters/suggestion.h"

#include "libvantor/base/report.h"

#include <algorithm>

namespace vantor {

namespace {

// What people try by habit, and what it is called here; where there are several, the first that is known counts.
struct Habit {
    std::string_view word;
    std::array<std::string_view, 4> meant;
};
constexpr Habit habits[] = {
    {"cube", {"box"}},
    {"cuboid", {"box"}},
    {"ball", {"sphere"}},
    {"particles", {"points"}},
    {"pointcloud", {"points"}},
    {"point_cloud", {"points"}},
    {"spheres", {"points"}},
    {"balls", {"points"}},
    {"points", {"positions"}},
    {"positions", {"points"}},
    {"centers", {"positions"}},
    {"plane", {"quad"}},
    {"rectangle", {"quad"}},
    {"glass", {"dielectric"}},
    {"mirror", {"conductor"}},
    {"metal", {"conductor", "metallic"}},
    {"lambert", {"diffuse"}},
    {"matte", {"diffuse"}},
    {"sun", {"distant"}},
    {"directional", {"distant"}},
    {"envmap", {"environment"}},
    {"look_at", {"target"}},
    {"lookat", {"target"}},
    {"power", {"intensity", "radiance", "irradiance", "scale"}},
    {"energy", {"intensity", "radiance", "irradiance", "scale"}},
    {"file", {"name"}},
    {"filename", {"name"}},
    {"path", {"name"}},
};

// Empty if there is none.
std::string_view meant_by_habit(std::string_view wrong, const Words &known) {
    for (const Habit &habit : habits)
        if (habit.word == wrong)
            for (const std::string_view meant : habit.meant)
                if (!meant.empty() && std::ranges::find(known, meant) != known.end())
                    return meant;
    return {};
}

// The number of single-character changes that turn one word into the other (Levenshtein 1966).
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[b.size()];
}

// The known name that is most likely meant: within about one edit for every three letters; or one that begins with the
// word, or that the word ends with. Empty if there is none.
std::string_view nearest(std::string_view wrong, const Words &known) {
    // A longer word is no misspelling of any of these names.
    constexpr std::size_t longest = 40;
    if (wrong.size() > longest)
        return {};
    std::string_view nearest;
    std::size_t least = std::min<std::size_t>(3, wrong.size() / 3 + 1);
    for (const std::string_view name : known) {
        const std::size_t distance = edit_distance(wrong, name);
        if (distance < least) {
            nearest = name;
            least = distance;
        }
    }
    const auto is_part = [&](std::string_view name) {
        return (wrong.size() >= 2 && name.starts_with(wrong)) || (name.size() >= 4 && wrong.ends_with(name));
    };
    const auto part = std::ranges::find_if(known, is_part);
    return !nearest.empty() || part == known.end() ? nearest : *part;
}

bool is_in(std::string_view word, const Words &known) { return std::ranges::find(known, word) != known.end(); }

} // namespace

std::string_view word_meant(std::string_view wrong, const Words &known) {
    const std::string_view meant = meant_by_habit(wrong, known);
    return meant.empty() ? nearest(wrong, known) : meant;
}

std::string suggestion(std::string_view wrong, const Words &known) {
    if (const std::string_view meant = word_meant(wrong, known); !meant.empty())
        return joined({" (did you mean ", in_quotes(meant), "?)"});

    std::string text = " (known:";
    for (std::size_t i = 0; i < known.size(); ++i) {
        text += i == 0 ? " " : ", ";
        text += in_quotes(known[i]);
    }
    text += ')';
    return text;
}

std::string type_suggestion(EntityKind kind, std::string_view wrong) {
    // How a surface scatters light is an interface here, where other programs have materials.
    if (kind == EntityKind::Material) {
        const Words interfaces = names_in(names_of(EntityKind::Interface).types);
        const Words materials = names_in(names_of(kind).types);
        std::string_view meant = is_in(wrong, interfaces) ? wrong : meant_by_habit(wrong, interfaces);
        if (meant.empty() && word_meant(wrong, materials).empty())
            meant = nearest(wrong, interfaces);
        if (!meant.empty() && !is_in(meant, materials))
            return joined(
                {" (did you mean newInterface ", in_quotes(meant), ", as the interface of a material \"surface\"?)"});
    }
    return suggestion(wrong, names_in(names_of(kind).types));
}

} // namespace vantor
