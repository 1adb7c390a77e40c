// Closed rooms, whose radiance is known: emission over one minus reflectance, everywhere and in all directions.
#include "libvantor/scattering/dielectric.h"
#include "tests/libvantor/scripted_scene.h"

namespace {

using scripted::Scene;

constexpr double pi = 3.14159265358979;

TEST(Furnace, ClosedRoomHasEmissionOverOneMinusReflectance) {
    for (const double reflectance : {0.2, 0.5, 0.8}) {
        Scene scene;
        scene.camera({0.1, 0.2, -0.3}, {0.3, 0.1, 1}, 60);
        scene.light("area", "radiance", 1.0);
        scene.LightBegin();
        scene.MaterialBegin(scene.diffuse(reflectance));
        scene.AddObject(scene.room());
        scene.MaterialEnd();
        scene.LightEnd();
        const scripted::Pixels pixels = scene.render(32, 32, 64);
        // 65536 paths; the standard deviation of one is below the radiance itself, so that of the mean is below 0.4 %.
        const double wanted = 1 / (1 - reflectance);
        EXPECT_NEAR(pixels.mean(), wanted, 0.012 * wanted) << "reflectance " << reflectance;
    }
}

TEST(Furnace, SphereAroundAPointLight) {
    // A light of intensity I in the middle of a closed sphere of radius r gives it the irradiance I / r^2; with all
    // reflections the radiance is a I / (pi r^2 (1 - a)).
    constexpr double reflectance = 0.6;
    constexpr double intensity = 5;
    constexpr double radius = 2;
    Scene scene;
    scene.camera({1, 0.5, 0}, {-1, 0, 0.2}, 60);
    scene.light("point", "intensity", intensity);
    scene.MaterialBegin(scene.diffuse(reflectance));
    scene.AddObject(scene.object("sphere", "radius", radius));
    scene.MaterialEnd();
    const double wanted = reflectance * intensity / (pi * radius * radius * (1 - reflectance));
    // As above, with 0.4 % of the mean as one standard error.
    EXPECT_NEAR(scene.render(32, 32, 64).mean(), wanted, 0.012 * wanted);
}

TEST(Furnace, ReflectanceOneInAClosedRoomEnds) {
    // Nothing is absorbed; only roulette ends the paths.
    Scene scene;
    scene.camera({0, 0, 0}, {0, 0, 1}, 60);
    scene.light("area");
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(1.0));
    scene.AddObject(scene.room());
    scene.MaterialEnd();
    scene.LightEnd();
    for (const scripted::Rgb &pixel : scene.render(8, 8, 4).values)
        EXPECT_TRUE(std::isfinite(pixel[0]) && pixel[0] >= 1);
}

// A room from -3 to 3 that shines with radiance 1 and reflects nothing, with a sphere in the middle that is seen from
// outside: whatever the sphere scatters without loss is invisible.
template <class... Values> scripted::Pixels sphere_in_shining_room(const char *interface, const Values &...values) {
    Scene scene;
    scene.camera({0.2, 0.3, 2.5}, {0, 0, 0}, 50);
    scene.light("area", "radiance", 1.0);
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(0.0));
    VtTransform larger;
    larger.Scaling({3, 3, 3});
    scene.TransformBegin(larger);
    scene.AddObject(scene.room());
    scene.TransformEnd();
    scene.MaterialEnd();
    scene.LightEnd();
    scene.MaterialBegin(scene.surface(interface, values...));
    scene.AddObject(scene.object("sphere"));
    scene.MaterialEnd();
    return scene.render(24, 24, 64);
}

TEST(Furnace, ASphereOfGlassIsInvisible) {
    // Inside, the radiance is ior^2 as large, which roulette makes noise of: the standard deviation of a path is
    // below 3.
    for (const double ior : {0.7, 1.0, 1.5, 2.4}) {
        const scripted::Pixels pixels = sphere_in_shining_room("dielectric", "ior", ior);
        EXPECT_NEAR(pixels.mean(), 1, 4 * 3 / std::sqrt(24.0 * 24 * 64)) << "ior " << ior;
    }
}

TEST(Furnace, ASphereOfRoughGlassLosesLittle) {
    const double mean = sphere_in_shining_room("dielectric", "roughness", 0.3).mean();
    // The sphere covers about half of the picture. Of alpha 0.09, single scattering loses less than 5 % at each of a
    // few passages.
    EXPECT_GT(mean, 0.9);
    EXPECT_LT(mean, 1.02);
}

TEST(Furnace, ASphereOfMirrorIsInvisible) {
    // An imaginary index reflects everything; there is nothing to be uncertain of.
    for (const scripted::Rgb &pixel : sphere_in_shining_room("conductor", "eta", 0.0, "k", 1.0).values)
        EXPECT_NEAR(pixel[1], 1, 1e-4);
    const scripted::Pixels half = sphere_in_shining_room("conductor", "eta", 0.0, "k", 1.0, "color", 0.5);
    EXPECT_NEAR(half.at(12, 12)[1], 0.5, 1e-4);
}

TEST(Furnace, ASphereOfRoughMetalIsInvisible) {
    // The table of albedos is exact to 0.002.
    for (const double roughness : {0.1, 0.3, 0.6, 1.0}) {
        SCOPED_TRACE(testing::Message() << "roughness " << roughness);
        const auto expect_invisible = [&](const char *interface, const auto &...values) {
            EXPECT_NEAR(sphere_in_shining_room(interface, values..., "roughness", roughness).mean(), 1, 4e-3);
        };
        expect_invisible("conductor", "eta", 0.0, "k", 1.0);
        expect_invisible("principled", "base_color", 1.0, "metallic", 1.0);
    }
    const double half =
        sphere_in_shining_room("conductor", "eta", 0.0, "k", 1.0, "color", 0.5, "roughness", 0.8).at(12, 12)[1];
    EXPECT_NEAR(half, 0.5, 0.05);
}

TEST(Furnace, ASphereOfWhitePlasticIsInvisible) {
    // The standard deviation of a path is below 0.5.
    const double tolerance = 4 * 0.5 / std::sqrt(24.0 * 24 * 64);
    EXPECT_NEAR(sphere_in_shining_room("plastic", "color", 1.0).mean(), 1, tolerance);
    EXPECT_NEAR(sphere_in_shining_room("plastic", "color", 1.0, "roughness", 0.4).mean(), 1, tolerance + 1e-3);
}

TEST(Furnace, PrincipledSpheresAreNoLights) {
    const auto expect_dark = [](double lowest, const auto &...values) {
        const double mean = sphere_in_shining_room("principled", "base_color", 1.0, values...).mean();
        EXPECT_GT(mean, lowest);
        EXPECT_LT(mean, 1.01);
    };
    // The sphere covers two thirds of the picture; a body of the default roughness reflects somewhat over 0.75.
    expect_dark(0.83);
    expect_dark(0.95, "metallic", 1.0, "roughness", 0.2);
    expect_dark(0.78, "clearcoat", 1.0, "sheen", 1.0);
    expect_dark(0.9, "transmission", 1.0, "roughness", 0.2);
    // Inside, light meets the mixture several times before it finds its way out.
    expect_dark(0.75, "metallic", 0.3, "transmission", 0.5, "clearcoat", 0.5, "specular", 1.0);
}

TEST(Furnace, GoldLooksLikeGold) {
    const scripted::Pixels pixels = sphere_in_shining_room("conductor", "metal", "gold");
    // ((eta - 1)^2 + k^2) / ((eta + 1)^2 + k^2) in the middle, where the sphere is seen from straight above.
    const scripted::Rgb middle = pixels.at(12, 12);
    EXPECT_NEAR(middle[0], 0.956, 0.002);
    EXPECT_NEAR(middle[1], 0.793, 0.002);
    EXPECT_NEAR(middle[2], 0.410, 0.002);
}

TEST(Furnace, LightComesThroughARoughBoundary) {
    // A point light straight behind the boundary of rough glass: a path finds it only by sampling it from the other
    // side.
    vantor::Dielectric glass{1.5f};
    glass.set_roughness(0.5f);
    for (const double facing : {1.0, -1.0}) {
        Scene scene;
        scene.camera({0, 0, 3}, {0, 0, 0}, 0.1);
        scene.light("point", "position", VtVector3(0, 0, -3), "intensity", 9.0);
        scene.MaterialBegin(scene.surface("dielectric", "roughness", 0.5));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-facing, -1, 0), "edge_u", VtVector3(2 * facing, 0, 0),
                                     "edge_v", VtVector3(0, 2, 0)));
        scene.MaterialEnd();
        const float side = static_cast<float>(facing);
        const float wanted = vantor::DielectricBsdf(glass, {0, 0, side}).evaluate({0, 0, -side}).value.g;
        EXPECT_GT(wanted, 0.1);
        EXPECT_NEAR(scene.render(2, 2, 4).mean(), wanted, 1e-3 * wanted) << "facing " << facing;
    }
}

} // namespace
