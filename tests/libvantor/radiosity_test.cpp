// Radiosity: form factors and balances that are known in closed form, and pictures made with the pass's result.
#include "libvantor/radiosity/patch_maker.h"
#include "libvantor/radiosity/radiosity.h"
#include "tests/libvantor/description.h"
#include "tests/libvantor/interrupted_report.h"
#include "tests/libvantor/interrupts.h"

#include <tbb/global_control.h>

namespace {

using scripted::Description;
using scripted::errors_of;
using scripted::expect_prompt;
using scripted::List;
using scripted::Scene;

vantor::Patches patches_of(const Description &description, std::size_t budget, const vantor::Interrupt &interrupt) {
    vantor::Progress progress("radiosity", 1);
    return vantor::divide_into_patches(description.registry.placements(), budget, interrupt, progress);
}

/// The part of the rays from the fronts of one placement that meet the fronts of another, by the areas of its patches.
double form_factor(const Description &description, std::uint32_t from, std::uint32_t to, int rays, long &all_rays) {
    const vantor::Interrupt interrupt;
    vantor::WorldCache worlds;
    const vantor::World &world = worlds.current(description.registry, interrupt);
    const vantor::Patches patches = patches_of(description, 200, interrupt);
    const vantor::Gathering gathering(world, patches, rays, interrupt);
    double sum = 0;
    double area = 0;
    all_rays = 0;
    for (std::uint32_t patch = 0; patch < patches.size(); ++patch) {
        if (patches.placement(patch) != from)
            continue;
        vantor::Row row;
        gathering.see(vantor::side_of_patch(patch, true), 0, rays, row);
        const auto met = std::ranges::count_if(
            row.seen, [&](std::uint32_t side) { return patches.placement(side / 2) == to && side % 2 == 0; });
        const auto patch_area = static_cast<double>(patches.area(patch));
        sum += patch_area * static_cast<double>(met) / row.rays;
        area += patch_area;
        all_rays += row.rays;
    }
    return sum / area;
}

// Unstratified, a share p of n rays has the standard error sqrt(p (1 - p) / n); stratified it has less.
double four_standard_errors(double p, long rays) { return 4 * std::sqrt(p * (1 - p) / static_cast<double>(rays)); }

TEST(Radiosity, FormFactorOfParallelSquares) {
    // Unit squares at a distance of 1: Howell, "A Catalog of Radiation Heat Transfer Configuration Factors", C-11.
    constexpr double wanted = 0.199824896;
    Description description;
    description.quad({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    description.quad({0, 0, 1}, {0, 1, 0}, {1, 0, 0});
    long rays = 0;
    const double found = form_factor(description, 0, 1, 1024, rays);
    EXPECT_GE(rays, 100 * 1024 / 2);
    EXPECT_NEAR(found, wanted, four_standard_errors(wanted, rays));
}

TEST(Radiosity, FormFactorOfPerpendicularSquares) {
    // With a common edge: Howell, C-14.
    constexpr double wanted = 0.200043776;
    Description description;
    description.quad({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    description.quad({0, 0, 0}, {0, 0, 1}, {1, 0, 0});
    // The first faces +Z, the second +Y: they see each other.
    long rays = 0;
    EXPECT_NEAR(form_factor(description, 0, 1, 1024, rays), wanted, four_standard_errors(wanted, rays));
}

TEST(Radiosity, RowsOfAClosedRoomAddUpToOne) {
    Description description;
    description.box();
    const vantor::Interrupt interrupt;
    vantor::WorldCache worlds;
    const vantor::World &world = worlds.current(description.registry, interrupt);
    const vantor::Patches patches = patches_of(description, 150, interrupt);
    EXPECT_EQ(patches.size(), 150u);
    const vantor::Gathering gathering(world, patches, 256, interrupt);
    for (std::uint32_t patch = 0; patch < patches.size(); ++patch) {
        vantor::Row row;
        gathering.see(vantor::side_of_patch(patch, false), 0, 256, row);
        EXPECT_EQ(row.seen.size(), 256u);
        EXPECT_EQ(row.rays, 256);
        for (const std::uint32_t side : row.seen)
            EXPECT_EQ(side % 2, 1u) << "the front of a patch, seen from inside";
    }
}

TEST(Radiosity, AllRaysTogetherAreBounded) {
    EXPECT_EQ(vantor::rays_of_side(1), 256);
    EXPECT_EQ(vantor::rays_of_side(2 * 131072), 256);
    EXPECT_EQ(vantor::rays_of_side(2 * 131072 + 2), 128);
    for (std::size_t sides = 2; sides <= 2000000; sides *= 2)
        EXPECT_LE(vantor::rays_of_side(sides) * sides, std::size_t{1} << 26) << sides;
}

TEST(Radiosity, ClosedRoomHasEmissionOverOneMinusReflectance) {
    for (const float reflectance : {0.2f, 0.5f, 0.8f}) {
        Description description;
        description.box();
        const vantor::Interrupt interrupt;
        vantor::WorldCache worlds;
        const vantor::World &world = worlds.current(description.registry, interrupt);
        const vantor::Patches patches = patches_of(description, 150, interrupt);
        const vantor::Gathering gathering(world, patches, 64, interrupt);
        // Every wall shines with emission 1, and so sends an irradiance of 1 everywhere.
        std::vector<vantor::Row> rows(patches.size() * 2);
        for (std::uint32_t patch = 0; patch < patches.size(); ++patch)
            gathering.see(vantor::side_of_patch(patch, false), 0, 64, rows[vantor::side_of_patch(patch, false)]);
        const vantor::Color rho{reflectance, reflectance, reflectance};
        const std::vector<vantor::SideLight> lights(rows.size(), {rho, {1, 1, 1}});
        const vantor::Balance balance = vantor::balance_of(rows, lights, interrupt);
        // The residual bounds the change of one sweep; all sweeps that would follow add up to a geometric series.
        EXPECT_LE(balance.residual, 1e-4f);
        const float wanted = 1 / (1 - reflectance);
        for (std::uint32_t patch = 0; patch < patches.size(); ++patch) {
            const float indirect = balance.indirect[vantor::side_of_patch(patch, false)].g;
            EXPECT_NEAR(1 + reflectance * (1 + indirect), wanted, 1e-4f * wanted / (1 - reflectance));
        }
    }
}

/// A white room with a lamp below its ceiling and a ball in it.
void describe_room(Scene &scene, bool has_meshes) {
    scene.camera({0, 0, 0.95}, {0.1, -0.2, -1}, 80);
    scene.MaterialBegin(scene.diffuse(VtVector3(0.7, 0.6, 0.5)));
    if (has_meshes) {
        scene.AddObject(scene.room());
    } else {
        scene.AddObject(scene.object("box"));
    }
    scene.AddObject(scene.object("sphere", "center", VtVector3(-0.3, -0.6, -0.3), "radius", 0.4));
    scene.MaterialEnd();
    scene.light("area", "radiance", 10.0);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-0.2, 0.99, -0.2), "edge_u", VtVector3(0.4, 0, 0),
                                 "edge_v", VtVector3(0, 0, 0.4)));
    scene.LightEnd();
}

double rms_difference(const scripted::Pixels &a, const scripted::Pixels &b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            sum += (a.values[i][c] - b.values[i][c]) * (a.values[i][c] - b.values[i][c]);
    return std::sqrt(sum / (3.0 * static_cast<double>(a.values.size())));
}

TEST(Radiosity, PictureAgreesWithThePathTracedOne) {
    for (const bool has_meshes : {false, true}) {
        Scene scene(1500);
        describe_room(scene, has_meshes);
        const scripted::Pixels traced = scene.render(24, 24, 256);
        const scripted::Pixels noisy = scene.render(24, 24, 16);
        scene.Radiosity();
        const scripted::Pixels solved = scene.render(24, 24, 16);
        // 147456 paths, whose radiances deviate by less than twice their mean: 0.5 % is one standard error.
        EXPECT_NEAR(solved.mean(), traced.mean(), 0.015 * traced.mean());
        // A quarter of the noise of the reference itself is in both differences.
        EXPECT_LT(rms_difference(solved, traced), 0.45 * rms_difference(noisy, traced));
    }
}

TEST(Radiosity, FinalGatherAgreesWithThePathTracedPicture) {
    Scene scene(100); // far too few patches to be looked at
    describe_room(scene, false);
    const scripted::Pixels traced = scene.render(24, 24, 256);
    scene.Radiosity();
    const scripted::Pixels solved = scene.render(24, 24, 64);
    scripted::List list("final_gather", 1);
    scene.ImagerBegin(scene.NewImager("settings", list));
    const scripted::Pixels gathered = scene.render(24, 24, 64);
    scene.ImagerEnd();
    // 36864 paths, whose radiances deviate by less than twice their mean: 1 % is one standard error.
    EXPECT_NEAR(gathered.mean(), traced.mean(), 0.025 * traced.mean());
    // Where the patches are seen themselves, their size shows.
    EXPECT_GT(rms_difference(gathered, solved), 0.02 * traced.mean());
}

TEST(Radiosity, ALimitOfDepthIsKeptByPaths) {
    Scene scene(100);
    describe_room(scene, false);
    List list("max_depth", 2);
    scene.ImagerBegin(scene.NewImager("settings", list));
    const scripted::Pixels traced = scene.render(8, 8, 4);
    scene.Radiosity();
    scripted::Pixels limited;
    EXPECT_EQ(
        errors_of([&] { limited = scene.render(8, 8, 4); }),
        "vantor: render: \"max_depth\" is given, which the result of radiosity() cannot keep; paths are followed\n");
    EXPECT_EQ(limited.values, traced.values);
    scene.ImagerEnd();
}

TEST(Radiosity, AWallOfTwoTrianglesIsSmooth) {
    // The same room of quads and of pairs of triangles: with the same solution on other cells, and no seam between the
    // two triangles of a wall, no pixel differs by more than the noise of the solutions.
    scripted::Pixels pictures[2];
    for (const bool has_meshes : {false, true}) {
        Scene scene(2000);
        describe_room(scene, has_meshes);
        scene.Radiosity();
        pictures[has_meshes] = scene.render(24, 24, 64);
    }
    EXPECT_LT(rms_difference(pictures[0], pictures[1]), 0.02 * pictures[0].mean());
}

TEST(Radiosity, IsUsedUntilTheSceneChanges) {
    const std::string note = "vantor: render: the scene has changed since radiosity(), whose result is not used "
                             "(radiosity() makes a new one)\n";
    Scene scene(100);
    describe_room(scene, false);
    const VtLong lamp = scene.light("point", "intensity", 0.1);
    scene.Radiosity();
    const auto render = [&] { return errors_of([&] { scene.render(8, 8, 4); }); };
    EXPECT_EQ(render(), "");
    // Neither cameras nor materials alone make a difference.
    scene.camera({0, 0, 0.9}, {0, 0, -1}, 70);
    scene.diffuse(0.3);
    const std::string unused = "vantor: render: material 10 is never used: nothing is added in its block\n";
    scene.LightOn(lamp);
    EXPECT_EQ(render(), unused);
    scene.LightOff(lamp);
    EXPECT_EQ(render(), note + unused);
    scene.Radiosity();
    EXPECT_EQ(render(), unused);
    scene.AddObject(scene.object("sphere", "radius", 0.1));
    EXPECT_EQ(render(), note + unused);
    scene.light("distant");
    scene.Radiosity();
    EXPECT_EQ(render(), unused);
}

TEST(Radiosity, TheSameBitsOnAnyNumberOfThreads) {
    scripted::Pixels pictures[2];
    for (const int threads : {1, 4}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                        static_cast<std::size_t>(threads));
        Scene scene(500);
        describe_room(scene, true);
        scene.Radiosity();
        pictures[threads > 1] = scene.render(16, 16, 4);
    }
    EXPECT_EQ(pictures[0].values, pictures[1].values);
}

TEST(Radiosity, AnyBudgetWorks) {
    for (const VtLong budget : {-5L, 0L, 1L, 30L}) {
        Scene scene(static_cast<VtLong>(budget));
        describe_room(scene, true);
        const double traced = scene.render(12, 12, 256).mean();
        const std::string wrong = "vantor: radiosity: the scene was made for " + std::to_string(budget) +
                                  " patches (expected 1 to 1000000); 1 counts\n";
        EXPECT_EQ(errors_of([&] { scene.Radiosity(); }), budget < 1 ? wrong : "");
        // A wall of one patch has no shadows of indirect light; the mean is still about right.
        EXPECT_NEAR(scene.render(12, 12, 64).mean(), traced, 0.1 * traced) << "budget " << budget;
    }
}

TEST(Radiosity, SceneWithoutLight) {
    Scene scene(100);
    scene.camera({0, 0, 0}, {0, 0, 1}, 60);
    scene.AddObject(scene.room());
    EXPECT_EQ(errors_of([&] { scene.Radiosity(); }), "");
    for (const scripted::Rgb &pixel : scene.render(8, 8, 4).values)
        EXPECT_EQ(pixel, (scripted::Rgb{0, 0, 0}));
}

TEST(Radiosity, InterruptStopsTheMakingOfPatches) {
    Description description;
    description.sheet(100);
    // Sizes, groups, corners, areas. First all triangles have patches of their own.
    constexpr long triangles = 20000;
    for (const std::size_t budget : {20000, 500})
        expect_prompt(3 * triangles, [&] {
            const vantor::Interrupt interrupt;
            const vantor::Patches patches = patches_of(description, budget, interrupt);
        });
}

TEST(Radiosity, InterruptStopsTheSpreadingOfLight) {
    Description description;
    description.sheet(100);
    const vantor::Interrupt none;
    const vantor::Patches patches = patches_of(description, 500, none);
    const std::vector<vantor::SideColors> light(patches.size());
    expect_prompt(static_cast<long>(patches.size()), [&] {
        const vantor::Interrupt interrupt;
        patches.at_vertices(light, interrupt);
    });
}

TEST(Radiosity, InterruptIsHeardFromTheFirstDiagnosticOn) {
    Scene scene(-1);
    describe_room(scene, false);
    const std::string errors = scripted::errors_when_interrupted_at_first_diagnostic([&] { scene.Radiosity(); });
    EXPECT_TRUE(errors.starts_with("vantor: radiosity: the scene was made for -1 patches")) << errors;
    EXPECT_TRUE(errors.ends_with("vantor: radiosity: interrupted; nothing is kept\n")) << errors;
}

TEST(Radiosity, InterruptedNothingIsKept) {
    Scene scene(2000);
    describe_room(scene, false);
    const scripted::Pixels traced = scene.render(8, 8, 4);
    const scripted::InterruptHandler handler;
    const long polls = scripted::polls_of([&] { scene.Radiosity(); });
    // A side is the least that is asked for.
    EXPECT_GT(polls, 4000);
    ASSERT_NE(scene.render(8, 8, 4).values, traced.values);
    // How many there are in all is not the same each time, as several threads ask.
    for (const long at : {1L, polls / 4, polls / 2, polls * 3 / 4, polls * 7 / 8}) {
        {
            const vantor::InterruptAtPoll interrupt(at);
            EXPECT_EQ(errors_of([&] { scene.Radiosity(); }), "vantor: radiosity: interrupted; nothing is kept\n")
                << at << " of " << polls;
        }
        EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.render(8, 8, 4).values, traced.values); }), "");
    }
    EXPECT_EQ(handler.count(), 5);
}

} // namespace
