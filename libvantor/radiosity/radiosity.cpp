// Radiosity: the exchange of light between diffuse surfaces, before any picture is made. Goral, Torrance, Greenberg,
// Battaile, "Modeling the Interaction of Light Between Diffuse Surfaces", 1984.
//
// The patches gather indirect light only. Direct light, which is where shadows have their edges, is sampled anew when a
// picture is made: the first of two passes as in Jensen, "Global Illumination Using Photon Maps", 1996, and the other
// way to treat small lights, gathering them by chance, would take many times the rays for the same error.
#include "libvantor/radiosity/radiosity.h"

#include "libvantor/base/progress.h"
#include "libvantor/base/tiles.h"
#include "libvantor/radiosity/patch_maker.h"

#include <unistd.h>

namespace vantor {

namespace {

constexpr VtLong most_patches = 1000000;

// More rays for each patch, or more patches for the same rays, make no better picture of a room than this.
constexpr int most_rays_of_side = 256;
// Of all sides together; it bounds time and memory.
constexpr std::size_t most_rays = std::size_t{1} << 26;
// The rays that find out whether any light comes to a side.
constexpr int probing_rays = 32;

constexpr float wanted_residual = 1e-4f;
constexpr int most_sweeps = 500;

// The sides to which light comes, directly or not, as far as their rows tell.
std::vector<char> reached_by_light(const Exchange &exchange, const Interrupt &interrupt) {
    const std::size_t count = exchange.rows.size();
    std::vector<char> are_reached(count);
    for (std::size_t i = 0; i < count; ++i)
        are_reached[i] = !is_black(exchange.lights[i].direct) || !is_black(exchange.rows[i].followed) ? 1 : 0;
    for (bool has_changed = true; has_changed;) {
        has_changed = false;
        for (std::size_t i = 0; i < count; ++i) {
            interrupt.check();
            if (are_reached[i])
                continue;
            const bool is_reached = std::ranges::any_of(exchange.rows[i].seen, [&](std::uint32_t seen) {
                return are_reached[seen] && !is_black(exchange.lights[seen].reflectance);
            });
            are_reached[i] = is_reached ? 1 : 0;
            has_changed |= are_reached[i] != 0;
        }
    }
    return are_reached;
}

// Of all sides together, shot or spared.
long ray_count(std::size_t side_count) { return static_cast<long>(side_count) * rays_of_side(side_count); }

} // namespace

int rays_of_side(std::size_t side_count) {
    const std::size_t affordable = most_rays / std::max<std::size_t>(side_count, 1);
    int rays = most_rays_of_side;
    while (rays > probing_rays && static_cast<std::size_t>(rays) > affordable)
        rays /= 2;
    return rays;
}

Exchange gather_all(const Gathering &gathering, std::size_t side_count, const Interrupt &interrupt,
                    Progress &progress) {
    Exchange exchange{std::vector<Row>(side_count), std::vector<SideLight>(side_count)};
    for_each_stretch(side_count, interrupt, [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            interrupt.check();
            const auto side = static_cast<std::uint32_t>(i);
            exchange.lights[i] = gathering.light_of(side);
            gathering.see(side, 0, probing_rays, exchange.rows[i]);
            progress.done(probing_rays);
        }
    });

    // The insides of closed bodies, and what lies in the dark otherwise, need no more.
    if (gathering.rays() == probing_rays)
        return exchange;
    const std::vector<char> are_reached = reached_by_light(exchange, interrupt);
    for_each_stretch(side_count, interrupt, [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            interrupt.check();
            if (are_reached[i])
                gathering.see(static_cast<std::uint32_t>(i), probing_rays, gathering.rays(), exchange.rows[i]);
            progress.done(gathering.rays() - probing_rays);
        }
    });
    return exchange;
}

// Sweeps of Gauss and Seidel: each side takes what the others have by now. As every surface absorbs some light, and
// rows add up to 1 at most, every sweep shrinks the error by the largest reflectance at least, usually to half: a dozen
// sweeps over a few million numbers, for which a library of linear algebra has nothing better. (Cohen, Wallace, 5.3.)
// They go in the order of the sides, on one thread, so that the result does not depend on the threads.
Balance balance_of(std::span<const Row> rows, std::span<const SideLight> lights, const Interrupt &interrupt) {
    Balance balance;
    balance.indirect.resize(rows.size());
    std::vector<Color> radiosities(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        radiosities[i] = lights[i].reflectance * lights[i].direct;

    do {
        float largest = 0;
        float largest_change = 0;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (i % 4096 == 0)
                interrupt.check();
            const Row &row = rows[i];
            Color sum = row.followed;
            for (const std::uint32_t seen : row.seen)
                sum += radiosities[seen];
            const Color indirect = row.rays > 0 ? sum * (1 / static_cast<float>(row.rays)) : Color{};
            const Color radiosity = lights[i].reflectance * (lights[i].direct + indirect);
            const Color before = radiosities[i];
            largest = std::max(largest, largest_component(radiosity));
            largest_change = std::max({largest_change, std::fabs(radiosity.r - before.r),
                                       std::fabs(radiosity.g - before.g), std::fabs(radiosity.b - before.b)});
            radiosities[i] = radiosity;
            balance.indirect[i] = indirect;
        }
        balance.residual = largest > 0 ? largest_change / largest : 0.0f;
    } while (++balance.sweeps < most_sweeps && balance.residual > wanted_residual);
    return balance;
}

Radiosity::Radiosity(VtLong patches)
    : asked_for(patches), budget(static_cast<std::size_t>(std::clamp<VtLong>(patches, 1, most_patches))) {}

void Radiosity::pass(const Registry &registry, WorldCache &worlds, Report &report) {
    const Interrupt interrupt; // listens from the first check on
    light.reset();
    const CallReport call(report, "radiosity");
    registry.report_open_blocks(call);
    if (asked_for != static_cast<VtLong>(budget))
        call.diagnostic(joined({"the scene was made for ", std::to_string(asked_for), " patches (expected 1 to ",
                                std::to_string(most_patches), "); ", std::to_string(budget), " counts"}));
    try {
        solve(registry, worlds.current(registry, interrupt), report, interrupt);
    } catch (const Interrupted &) {
        report.note("radiosity: interrupted; nothing is kept");
    }
}

void Radiosity::solve(const Registry &registry, const World &world, const Report &report, const Interrupt &interrupt) {
    // The steps of gathering are known only when the patches are made; until then they are what the budget allows.
    const long rays_expected = ray_count(2 * budget);
    Progress progress("radiosity", rays_expected);
    const auto patches =
        std::make_shared<const Patches>(divide_into_patches(registry.placements(), budget, interrupt, progress));
    if (patches->size() == 0) {
        report.note("radiosity: there is nothing to do (opaque diffuse meshes, quads, boxes and spheres have patches)");
        return;
    }
    const std::size_t side_count = 2 * patches->size();
    progress.expect(ray_count(side_count) - rays_expected);
    const Gathering gathering(world, *patches, rays_of_side(side_count), interrupt);
    const Exchange exchange = gather_all(gathering, side_count, interrupt, progress);
    const Balance balance = balance_of(exchange.rows, exchange.lights, interrupt);

    std::vector<SideColors> indirect;
    long rays = 0;
    for (std::size_t side = 0; side < side_count; side += 2) {
        indirect.push_back({balance.indirect[side], balance.indirect[side + 1]});
        rays += exchange.rows[side].rays + exchange.rows[side + 1].rays;
    }
    light.emplace(patches, indirect, interrupt);
    revision = registry.revision();
    if (isatty(STDERR_FILENO) == 1)
        report.note(joined({"radiosity: ", std::to_string(patches->size()), " patches, ", std::to_string(rays),
                            " rays, ", std::to_string(balance.sweeps), " sweeps to a residual of ",
                            text_of(static_cast<double>(balance.residual))}));
}

const PatchIrradiance *Radiosity::result(const Registry &registry, const Report &report) const {
    if (!light)
        return nullptr;
    if (registry.revision() == revision)
        return &*light;
    report.note("render: the scene has changed since radiosity(), whose result is not used (radiosity() makes a new "
                "one)");
    return nullptr;
}

} // namespace vantor
