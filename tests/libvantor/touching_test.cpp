// Touching: bodies that share faces, surfaces one behind the other, and media at every scale.
#include "tests/libvantor/scripted_scene.h"

#include <cmath>

namespace {

using scripted::List;
using scripted::Scene;

VtLong interior(Scene &scene, double absorption, double scattering) {
    List list("sigma_a", absorption, "sigma_s", scattering);
    return scene.NewInterior("homogeneous", list);
}

// A surface that lets the fraction of light pass that opacity leaves; black otherwise.
VtLong sheet_material(Scene &scene, double opacity) {
    List diffuse("reflectance", 0.0);
    List surface("interface", scene.NewInterface("diffuse", diffuse), "opacity", opacity);
    return scene.NewMaterial("surface", surface);
}

void orthographic(Scene &scene, double height, const VtVector3 &position, const VtVector3 &target) {
    List camera("height", height, "position", position, "target", target);
    scene.NewCamera("orthographic", camera);
}

// A box with its middle there, turned so that no face lies along an axis if that is asked for.
void add_box(Scene &scene, double width, double bottom, double thickness, const VtVector3 &at, bool is_turned) {
    VtTransform turn;
    for (int i = 0; i < 4; ++i)
        turn[i][i] = 1;
    if (is_turned)
        turn.RotationAroundAxis({0, 0, 0}, {1, 2, 3}, 20.0);
    turn[3] = {at[0], at[1], at[2], 1};
    scene.TransformBegin(turn);
    scene.AddObject(scene.object("box", "min", VtVector3(-width / 2, bottom, -width / 2), "max",
                                 VtVector3(width / 2, bottom + thickness, width / 2)));
    scene.TransformEnd();
}

VtVector3 up_of(bool is_turned) {
    if (!is_turned)
        return {0, 1, 0};
    VtTransform turn;
    turn.RotationAroundAxis({0, 0, 0}, {1, 2, 3}, 20.0);
    return {turn[1][0], turn[1][1], turn[1][2]};
}

// What comes through a pile of absorbing slices, each of one optical depth, in light of radiance 1.
struct Pile {
    int slices = 2;
    double thickness = 0.5;
    double gap = 0;
    double width = 2;
    double away = 4;
    VtVector3 at{0, 0, 0};
    bool is_turned = false;
    bool from_below = false;
    bool is_orthographic = false;
};
double through(const Pile &pile, double depth_of_slice) {
    Scene scene;
    scene.light("environment", "radiance", 1.0);
    scene.MaterialBegin(sheet_material(scene, 0.0));
    for (int i = 0; i < pile.slices; ++i) {
        scene.InteriorBegin(interior(scene, depth_of_slice / pile.thickness, 0));
        add_box(scene, pile.width, i * (pile.thickness + pile.gap), pile.thickness, pile.at, pile.is_turned);
        scene.InteriorEnd();
    }
    scene.MaterialEnd();
    const VtVector3 up = up_of(pile.is_turned);
    const double side = pile.from_below ? -pile.away : pile.away;
    const VtVector3 eye(pile.at[0] + side * up[0], pile.at[1] + side * up[1],
                        pile.at[2] + side * up[2] + 1e-3 * pile.away);
    // Never aslant by more than a thousandth: the way is right to a millionth.
    if (pile.is_orthographic)
        orthographic(scene, 0.01 * pile.width, eye, pile.at);
    else {
        List camera("position", eye, "target", pile.at, "fov", 0.1, "up", VtVector3(1, 0, 0));
        scene.NewCamera("perspective", camera);
    }
    return scene.render(16, 16, 4).mean();
}

TEST(Touching, AbsorbingBoxesThatShareAFace) {
    for (const bool is_turned : {false, true})
        for (const bool from_below : {false, true})
            for (const double gap : {0.0, 1e-6, 1e-4})
                EXPECT_NEAR(through({.gap = gap, .is_turned = is_turned, .from_below = from_below}, 0.75),
                            std::exp(-1.5), 1e-3)
                    << is_turned << ' ' << from_below << ' ' << gap;
}

TEST(Touching, SlicesOfABlock) {
    for (const double size : {1e-3, 1.0, 1e5})
        for (const bool is_turned : {false, true})
            EXPECT_NEAR(through({.slices = 10,
                                 .thickness = 0.1 * size,
                                 .width = 2 * size,
                                 .away = 3 * size,
                                 .is_turned = is_turned},
                                0.11),
                        std::exp(-1.1), 1e-3)
                << size << ' ' << is_turned;
}

TEST(Touching, ThinAbsorbingSheets) {
    for (const bool is_turned : {false, true}) {
        const Pile sheet{.slices = 1, .thickness = 1e-3, .width = 1, .is_turned = is_turned};
        Pile far = sheet;
        far.away = 100;
        EXPECT_NEAR(through(far, 1), std::exp(-1), 2e-3) << is_turned;
        Pile moved = sheet;
        moved.at = {50, 50, 50};
        moved.away = 1;
        EXPECT_NEAR(through(moved, 1), std::exp(-1), 2e-3) << is_turned;
        Pile farther = sheet;
        farther.away = 1000;
        farther.is_orthographic = true;
        EXPECT_NEAR(through(farther, 1), std::exp(-1), 5e-3) << is_turned;
    }
}

// Panes of clear glass between environments of radiance 1, which nothing can change.
double panes(int count, double thickness, double gap, double away, bool is_turned, bool is_orthographic) {
    Scene scene;
    scene.light("environment", "radiance", 1.0);
    scene.MaterialBegin(scene.surface("dielectric", "ior", 1.5));
    for (int i = 0; i < count; ++i)
        add_box(scene, 1, i * (thickness + gap), thickness, {0, 0, 0}, is_turned);
    scene.MaterialEnd();
    const VtVector3 eye(0.5 * away, 0.7 * away, 0.5 * away);
    if (is_orthographic)
        orthographic(scene, 0.2, eye, {0, 0, 0});
    else
        scene.camera(eye, {0, 0, 0}, 2);
    return scene.render(16, 16, 64).mean();
}

TEST(Touching, PanesOfClearGlassAreInvisible) {
    for (const bool is_turned : {false, true})
        for (const double gap : {0.0, 1e-6, 1e-3})
            EXPECT_NEAR(panes(3, 0.01, gap, 4, is_turned, false), 1, 0.01) << is_turned << ' ' << gap;
    EXPECT_NEAR(panes(1, 0.003, 0, 1000, false, true), 1, 0.01);
    EXPECT_NEAR(panes(1, 0.003, 0, 1000, true, true), 1, 0.01);
}

// Light behind sheets that let half of it pass: the ratio to what arrives without them.
double behind_sheets(const char *light, int sheets, double distance, double opacity) {
    const auto lit = [&](int count) {
        Scene scene;
        const double d = distance;
        scene.camera({0, 0.02 * d, 0.05 * d}, {0, 0, 0}, 5);
        scene.light("area", "radiance", 10.0);
        scene.LightBegin();
        scene.MaterialBegin(scene.diffuse(0.0));
        if (std::string(light) == "disk")
            scene.AddObject(scene.object("disk", "center", VtVector3(0, 2 * d, 0), "normal", VtVector3(0, -1, 0),
                                         "radius", 0.5 * d));
        else if (std::string(light) == "quad")
            scene.AddObject(scene.object("quad", "origin", VtVector3(-0.5 * d, 2 * d, -0.5 * d), "edge_u",
                                         VtVector3(d, 0, 0), "edge_v", VtVector3(0, 0, d)));
        else
            scene.AddObject(scene.object("sphere", "center", VtVector3(0, 2 * d, 0), "radius", 0.5 * d));
        scene.MaterialEnd();
        scene.LightEnd();
        scene.MaterialBegin(scene.diffuse(1.0));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-d, 0, d), "edge_u", VtVector3(2 * d, 0, 0), "edge_v",
                                     VtVector3(0, 0, -2 * d)));
        scene.MaterialEnd();
        scene.MaterialBegin(sheet_material(scene, opacity));
        for (int i = 0; i < count; ++i)
            scene.AddObject(scene.object("quad", "origin", VtVector3(-2 * d, (0.3 + 0.1 * i) * d, 2 * d), "edge_u",
                                         VtVector3(4 * d, 0, 0), "edge_v", VtVector3(0, 0, -4 * d)));
        scene.MaterialEnd();
        return scene.render(8, 8, 256).mean();
    };
    return lit(sheets) / lit(0);
}

TEST(Touching, LightComesThroughSheets) {
    for (const double distance : {1e-3, 1.0, 1000.0, 1e5})
        for (const char *light : {"disk", "quad", "sphere"})
            EXPECT_NEAR(behind_sheets(light, 5, distance, 0.5) * 32, 1, 0.03) << light << ' ' << distance;
    EXPECT_NEAR(behind_sheets("sphere", 6, 1, 0.5) * 64, 1, 0.04);
}

// H of Chandrasekhar, "Radiative Transfer", 1960, for isotropic scattering, by iteration.
double h_function(double albedo, double cosine) {
    constexpr int n = 2000;
    std::vector<double> h(n, 1.0);
    const auto sum = [&](double mu) {
        double s = 0;
        for (int i = 0; i < n; ++i) {
            const double x = (i + 0.5) / n;
            s += x * h[static_cast<std::size_t>(i)] / (mu + x) / n;
        }
        return s;
    };
    const double root = std::sqrt(1 - albedo);
    for (int pass = 0; pass < 30; ++pass) {
        std::vector<double> next(n);
        for (int i = 0; i < n; ++i)
            next[static_cast<std::size_t>(i)] = 1 / (root + 0.5 * albedo * sum((i + 0.5) / n));
        h = next;
    }
    return 1 / (root + 0.5 * albedo * sum(cosine));
}

// A half space that scatters, in light of radiance 1 from everywhere: 1 - sqrt(1 - albedo) H(cosine).
double dense(double extinction, const VtVector3 &at, double away) {
    Scene scene;
    scene.light("environment", "radiance", 1.0);
    scene.MaterialBegin(sheet_material(scene, 0.0));
    scene.InteriorBegin(interior(scene, 0.5 * extinction, 0.5 * extinction));
    add_box(scene, 2000 / extinction, -100 / extinction, 100 / extinction, at, false);
    scene.InteriorEnd();
    scene.MaterialEnd();
    scene.camera({at[0], at[1] + 0.8 * away, at[2] + 0.6 * away}, at, 0.1);
    return scene.render(16, 16, 64).mean();
}

TEST(Touching, DenseMediaReflectAsTheoryHasIt) {
    const double expected = 1 - std::sqrt(0.5) * h_function(0.5, 0.8);
    for (const double extinction : {1e-3, 1.0, 2000.0})
        EXPECT_NEAR(dense(extinction, {0, 0, 0}, 10 / extinction), expected, 0.004) << extinction;
    EXPECT_NEAR(dense(2000, {50, 0, 0}, 1), expected, 0.004);
    EXPECT_NEAR(dense(2000, {30, 30, 30}, 1), expected, 0.004);
}

double white_ball(double sigma_s, int samples) {
    Scene scene;
    scene.camera({0, 0, 4}, {0, 0, 0}, 20);
    scene.light("environment", "radiance", 1.0);
    scene.MaterialBegin(sheet_material(scene, 0.0));
    scene.InteriorBegin(interior(scene, 0, sigma_s));
    scene.AddObject(scene.object("sphere", "radius", 1.0));
    scene.InteriorEnd();
    scene.MaterialEnd();
    return scene.render(4, 4, samples).mean();
}

TEST(Touching, WhiteBallsAreInvisible) {
    for (const double sigma_s : {20.0, 50.0, 200.0})
        EXPECT_NEAR(white_ball(sigma_s, 512), 1, 0.01) << sigma_s;
}

} // namespace
