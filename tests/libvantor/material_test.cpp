// Materials: what their surfaces do with patterns.
#include "libvantor/images/formats.h"

#include "tests/libvantor/scripted_scene.h"

#include <fstream>

namespace {

using scripted::errors_of;
using scripted::List;
using scripted::Rgb;
using scripted::Scene;

constexpr double pi = 3.14159265358979;

// A square from -1 to 1 that faces the camera, and nothing else; u and v run from 0 to 1. A distant light that shines
// straight at it with the irradiance pi makes a diffuse surface as bright as its reflectance.
class Square : public Scene {
  public:
    Square() {
        camera({0, 0, 2}, {0, 0, 0}, 53.13010235415598); // the square fills the picture
        light("distant", "irradiance", pi);
    }
    VtLong interface(double reflectance) {
        List list("reflectance", reflectance);
        return NewInterface("diffuse", list);
    }
    template <class... Values> VtLong pattern(const char *type, const Values &...values) {
        List list(values...);
        return NewPattern(type, list);
    }
    template <class... Values> VtLong surface(const Values &...values) {
        List list("interface", static_cast<int>(interface(0.5)), values...);
        return NewMaterial("surface", list);
    }
    void add(VtLong material) {
        MaterialBegin(material);
        AddObject(
            object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v", VtVector3(0, 2, 0)));
        MaterialEnd();
    }
};

// The square has this colour. The outermost pixels also see what is beside it.
void expect_color(const scripted::Pixels &pixels, const Rgb &wanted, double tolerance = 1e-5) {
    for (int y = 1; y < pixels.height - 1; ++y)
        for (int x = 1; x < pixels.width - 1; ++x)
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(pixels.at(x, y)[i], wanted[i], tolerance) << x << " " << y;
}

TEST(Material, AColorOrARoughnessTakesThePlaceOfTheInterfaces) {
    Square scene;
    scene.add(scene.surface("color", VtVector3(0.2, 0.4, 0.6), "roughness", 0.3));
    expect_color(scene.render(4, 4, 4), {0.2f, 0.4f, 0.6f});
}

// Straight on, ((n - 1)^2 + k^2) / ((n + 1)^2 + k^2) of the measured indices at 650, 550 and 450 nm, which a mirror
// shows in an even sky. An orthographic camera sees all of it straight on.
TEST(Material, MetalsReflectAsMeasured) {
    struct Case {
        const char *metal;
        Rgb reflectance;
    };
    for (const Case &one : {Case{"copper", {0.935f, 0.622f, 0.538f}}, Case{"gold", {0.955f, 0.793f, 0.410f}},
                            Case{"silver", {0.990f, 0.983f, 0.980f}}, Case{"aluminium", {0.912f, 0.920f, 0.924f}}}) {
        SCOPED_TRACE(one.metal);
        Scene scene;
        scene.light("environment", "radiance", 1.0);
        List camera("position", VtVector3(0, 0, 2), "target", VtVector3(0, 0, 0), "height", 0.5);
        scene.NewCamera("orthographic", camera);
        List interface("metal", one.metal);
        List surface("interface", static_cast<int>(scene.NewInterface("conductor", interface)));
        scene.MaterialBegin(scene.NewMaterial("surface", surface));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                     VtVector3(0, 2, 0)));
        scene.MaterialEnd();
        expect_color(scene.render(4, 4, 1), one.reflectance, 2e-3);
    }
}

// Which a pattern may give, too, and which only "principled" has.
TEST(Material, AMetallicTakesThePlaceOfThePrincipledsOwn) {
    const auto picture_of = [](double own, const auto &...values) {
        Square scene;
        List principled("base_color", VtVector3(0.9, 0.5, 0.2), "metallic", own, "roughness", 0.4);
        List surface("interface", static_cast<int>(scene.NewInterface("principled", principled)), values...);
        scene.add(scene.NewMaterial("surface", surface));
        return scene.render(4, 4, 16).values;
    };
    const auto metal = picture_of(0.75);
    EXPECT_NE(metal, picture_of(0.0));
    EXPECT_EQ(metal, picture_of(0.0, "metallic", 0.75));
    const auto by_pattern = [&] {
        Square scene;
        List principled("base_color", VtVector3(0.9, 0.5, 0.2), "roughness", 0.4);
        const int pattern = static_cast<int>(scene.pattern("checker", "a", 0.75, "b", 0.75));
        List surface("interface", static_cast<int>(scene.NewInterface("principled", principled)), "metallic", pattern);
        scene.add(scene.NewMaterial("surface", surface));
        return scene.render(4, 4, 16).values;
    }();
    EXPECT_EQ(metal, by_pattern);
    Square scene;
    scene.add(scene.surface("color", 0.5, "metallic", 1.0));
    expect_color(scene.render(4, 4, 4), {0.5f, 0.5f, 0.5f});
}

TEST(Material, PatternsLieInTheTextureCoordinates) {
    Square scene;
    const VtLong checker = scene.pattern("checker", "a", 0.25, "b", VtVector3(0.5, 0.75, 1), "scale", VtVector2(4, 4));
    scene.add(scene.surface("color", static_cast<int>(checker)));
    const scripted::Pixels pixels = scene.render(12, 12, 16);
    // Each square is three pixels wide, of which the film takes nothing from other squares into the middle one.
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const bool is_a = (i + j) % 2 == 0; // j counts from below
            const Rgb &pixel = pixels.at(3 * i + 1, 3 * (3 - j) + 1);
            EXPECT_NEAR(pixel[0], is_a ? 0.25 : 0.5, 1e-5);
            EXPECT_NEAR(pixel[1], is_a ? 0.25 : 0.75, 1e-5);
            EXPECT_NEAR(pixel[2], is_a ? 0.25 : 1, 1e-5);
        }
}

TEST(Material, PatternsOfTheObjectsSpaceGoWithTheObject) {
    // The object's plane x = 0 parts the colours; the transform puts it at y = 0.5 and the object's x upwards.
    Square scene;
    scripted::Points colors;
    scripted::fill(colors, {{0.2, 0.2, 0.2}, {0.8, 0.8, 0.8}});
    VtInstanceArray<double> positions;
    positions.Add(0.0);
    positions.Add(0.0);
    const VtLong gradient = scene.pattern("gradient", "colors", colors, "positions", positions, "space", "object");
    VtTransform turn, shift;
    turn.RotationAroundZ(90);
    shift.Translation({0, 0.5, 0});
    scene.TransformBegin(shift);
    scene.TransformBegin(turn);
    scene.MaterialBegin(scene.surface("color", static_cast<int>(gradient)));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-3, -3, 0), "edge_u", VtVector3(6, 0, 0), "edge_v",
                                 VtVector3(0, 6, 0)));
    scene.MaterialEnd();
    scene.TransformEnd();
    scene.TransformEnd();
    const scripted::Pixels pixels = scene.render(8, 16, 4);
    for (int x = 0; x < 8; ++x) {
        EXPECT_NEAR(pixels.at(x, 2)[1], 0.8, 1e-5);
        EXPECT_NEAR(pixels.at(x, 5)[1], 0.2, 1e-5);
    }
}

TEST(Material, ImagesBeginInTheLowerLeftCorner) {
    const std::string path = scripted::path_of("corners.png");
    std::ofstream(path, std::ios::binary)
        << vantor::png_file(vantor::BytePicture{2, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}}, "");
    Square scene;
    const VtLong texture = scene.NewTexture(path.c_str());
    const VtLong image = scene.pattern("image", "texture", static_cast<int>(texture), "filter", "nearest");
    scene.add(scene.surface("color", static_cast<int>(image)));
    const scripted::Pixels pixels = scene.render(8, 8, 4);
    EXPECT_NEAR(pixels.at(1, 1)[0], 1, 1e-5);
    EXPECT_NEAR(pixels.at(1, 1)[1], 0, 1e-5);
    EXPECT_NEAR(pixels.at(6, 1)[0], 0, 1e-5);
    EXPECT_NEAR(pixels.at(6, 1)[1], 1, 1e-5);
    EXPECT_NEAR(pixels.at(1, 6)[1], 0, 1e-5);
    EXPECT_NEAR(pixels.at(1, 6)[2], 1, 1e-5);
    EXPECT_NEAR(pixels.at(6, 6)[0], 1, 1e-5);
}

TEST(Material, ABumpTurnsTheSurfaceAwayFromTheLight) {
    Square scene;
    scripted::Points colors;
    scripted::fill(colors, {{0, 0, 0}, {1, 1, 1}});
    const VtLong ramp = scene.pattern("gradient", "colors", colors);
    scene.add(scene.surface("color", 0.8, "bump", static_cast<int>(ramp), "bump_height", 1.0));
    // The height is u, which is half of x: the cosine to the light is that of the slope 1/2.
    const auto wanted = static_cast<float>(0.8 / std::sqrt(1.25));
    expect_color(scene.render(8, 8, 4), {wanted, wanted, wanted}, 1e-3);
}

TEST(Material, ColorsOfAMeshMultiplyTheSurfaces) {
    scripted::Points points, colors;
    scripted::fill(points, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
    scripted::fill(colors, {{0.5, 1, 0.25}, {0.5, 1, 0.25}, {0.5, 1, 0.25}, {0.5, 1, 0.25}});
    scripted::Indices quads;
    scripted::fill(quads, {0, 1, 2, 3});
    for (const bool has_pattern : {false, true}) {
        Square scene;
        const VtLong pattern = scene.pattern("mix", "a", 0.6, "b", 0.6);
        scene.MaterialBegin(has_pattern ? scene.surface("color", static_cast<int>(pattern)) : scene.diffuse(0.6));
        scene.AddObject(scene.object("mesh", "points", points, "quads", quads, "colors", colors));
        scene.MaterialEnd();
        expect_color(scene.render(6, 6, 4), {0.3f, 0.6f, 0.15f});
    }
}

TEST(Material, NoPatternMakesASurfaceReflectMoreThanArrives) {
    Square scene;
    const VtLong bright = scene.pattern("mix", "a", 50.0, "b", 50.0);
    scene.add(scene.surface("color", static_cast<int>(bright)));
    expect_color(scene.render(4, 4, 1), {1, 1, 1});
}

TEST(Material, LightPassesStraightThroughWhatIsNotOpaque) {
    // A black sheet before a white square.
    Square scene;
    List black("reflectance", 0.0);
    const VtLong interface = scene.NewInterface("diffuse", black);
    List sheet("interface", static_cast<int>(interface), "opacity", 0.5);
    scene.add(scene.diffuse(1.0));
    VtTransform before;
    before.Translation({0, 0, 0.01});
    scene.TransformBegin(before);
    scene.add(scene.NewMaterial("surface", sheet));
    scene.TransformEnd();
    // Half of the light arrives at the square, and half of that comes back. 30 x 30 pixels with 64 paths of mean 0.25
    // and a standard deviation below 0.5: the mean's error is below 0.002.
    const scripted::Pixels pixels = scene.render(32, 32, 64);
    double sum = 0;
    for (int y = 1; y < 31; ++y)
        for (int x = 1; x < 31; ++x)
            sum += pixels.at(x, y)[1];
    EXPECT_NEAR(sum / 900, 0.25, 0.008);
}

TEST(Material, OneSidedSurfacesAreNotThereFromBehind) {
    for (const int two_sided : {0, 1}) {
        // Before a lamp that reflects nothing, a sheet that turns its back to the camera.
        Square scene;
        scene.light("area", "radiance", 0.8);
        scene.LightBegin();
        scene.add(scene.diffuse(0.0));
        scene.LightEnd();
        VtTransform turned;
        turned.RotationAroundY(180);
        turned[3][2] = 0.01;
        scene.TransformBegin(turned);
        scene.add(scene.surface("color", 0.3, "two_sided", two_sided));
        scene.TransformEnd();
        // The choice between the lights makes a little noise.
        const float wanted = two_sided ? 0.3f : 0.8f;
        expect_color(scene.render(8, 8, 16), {wanted, wanted, wanted}, 0.1);
    }
}

TEST(Material, WrongIdsAreReportedAndTheInterfacesOwnValuesStand) {
    Square scene;
    EXPECT_EQ(
        errors_of([&] { scene.add(scene.surface("color", 1, "roughness", 99)); }),
        "vantor: newMaterial \"surface\": item 3: parameter \"color\" is 1, but id 1 is a camera (expected the id of a "
        "pattern; a number has a decimal point: 1.0)\n"
        "vantor: newMaterial \"surface\": item 5: parameter \"roughness\" is 99, but no entity has the id 99 (expected "
        "the "
        "id of a pattern; a number has a decimal point: 99.0)\n");
    expect_color(scene.render(4, 4, 1), {0.5f, 0.5f, 0.5f});
}

} // namespace
