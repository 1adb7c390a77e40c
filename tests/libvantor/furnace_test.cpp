// Closed rooms, whose radiance is known: emission over one minus reflectance, everywhere and in all directions.
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

} // namespace
