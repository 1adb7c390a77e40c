// A small picture with every type of the vocabulary, and whether it is as bright as it was, where it was.
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/parameters/vocabulary.h"
#include "renderer/vt_bases.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Points;
using scripted::Scene;

// What scenes are made of.

void look(Scene &scene) { scene.camera({0, 1, 4}, {0, 0.6, 0}, 40); }

void floor_and_light(Scene &scene) {
    scene.light("environment", "radiance", VtVector3(0.2, 0.25, 0.35));
    scene.light("point", "position", VtVector3(2, 3, 2), "intensity", VtVector3(14, 12, 10));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-3, 0, 3), "edge_u", VtVector3(6, 0, 0), "edge_v",
                                 VtVector3(0, 0, -6)));
}

template <class... Values> void add(Scene &scene, const char *type, const Values &...values) {
    scene.AddObject(scene.object(type, values...));
}

void add_ball(Scene &scene) { add(scene, "sphere", "center", VtVector3(0, 0.6, 0), "radius", 0.6); }

// A ball of that material on the floor.
void ball(Scene &scene, VtLong material) {
    look(scene);
    floor_and_light(scene);
    scene.MaterialBegin(material);
    add_ball(scene);
    scene.MaterialEnd();
}
template <class... Values> void ball_of(Scene &scene, const char *interface, const Values &...values) {
    List list(values...);
    List surface("interface", scene.NewInterface(interface, list));
    ball(scene, scene.NewMaterial("surface", surface));
}
template <class... Values> void ball_with(Scene &scene, const char *pattern, const Values &...values) {
    List list(values...);
    List none;
    List surface("interface", scene.NewInterface("diffuse", none), "color", scene.NewPattern(pattern, list));
    ball(scene, scene.NewMaterial("surface", surface));
}

// A ball on a dark floor, where no light is yet.
void unlit(Scene &scene) {
    look(scene);
    add_ball(scene);
    add(scene, "quad", "origin", VtVector3(-3, 0, 3), "edge_u", VtVector3(6, 0, 0), "edge_v", VtVector3(0, 0, -6));
}

template <class... Values> void object(Scene &scene, const char *type, const Values &...values) {
    look(scene);
    floor_and_light(scene);
    add(scene, type, values...);
}

// A picture of a sky, for what reads pictures.
const std::string &picture_of_a_sky() {
    static const std::string path = [] {
        Scene scene;
        List none;
        scene.NewCamera("panorama", none);
        scene.light("sky", "sun", 0);
        const std::string name = scripted::path_of("sky.exr");
        scene.draw(name, 32, 16, 4);
        return name;
    }();
    return path;
}

// A square of 4 x 4 points, with a hill in its middle.
void fill_hill(Points &points) {
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const bool is_inner = (row == 1 || row == 2) && (column == 1 || column == 2);
            points.Add({column - 1.5, is_inner ? 2.0 : 0.1, 1.5 - row});
        }
}

void mesh(Scene &scene) {
    Points points;
    scripted::fill(points, {{-0.8, 0, 0.5}, {0.8, 0, 0.5}, {0, 0, -0.9}, {0, 1.3, 0}});
    scripted::Indices triangles;
    scripted::fill(triangles, {0, 1, 3, 1, 2, 3, 2, 0, 3});
    Points colors;
    scripted::fill(colors, {{1, 0.2, 0.2}, {0.2, 1, 0.2}, {0.2, 0.2, 1}, {1, 1, 1}});
    object(scene, "mesh", "points", points, "triangles", triangles, "colors", colors);
}

void subdivision(Scene &scene) {
    Points points;
    scripted::fill(points, {{-0.7, 0, -0.7},
                            {0.7, 0, -0.7},
                            {0.7, 0, 0.7},
                            {-0.7, 0, 0.7},
                            {-0.7, 1.4, -0.7},
                            {0.7, 1.4, -0.7},
                            {0.7, 1.4, 0.7},
                            {-0.7, 1.4, 0.7}});
    scripted::Indices indices;
    scripted::fill(indices, {0, 1, 2, 3, 7, 6, 5, 4, 3, 2, 6, 7, 2, 1, 5, 6, 1, 0, 4, 5, 0, 3, 7, 4});
    object(scene, "subdivision", "points", points, "indices", indices);
}

void patches(Scene &scene) {
    Points points;
    fill_hill(points);
    object(scene, "patches", "points", points, "columns", 4);
}

void curves(Scene &scene) {
    Points points;
    scripted::fill(points, {{-1, 0, 0}, {-1.5, 2, 0}, {1.5, 2, 0}, {1, 0, 0}});
    object(scene, "curves", "points", points, "basis", VtBezierBasis(), "radius", 0.12, "kind", "tube");
}

void points(Scene &scene) {
    Points positions, colors;
    VtInstanceArray<double> radii;
    for (int i = 0; i < 60; ++i) {
        positions.Add({0.8 * std::sin(2.4 * i), 0.02 * i + 0.1, 0.8 * std::cos(2.4 * i)});
        radii.Add(0.08 + 0.06 * (i % 3));
        colors.Add({i % 2 == 0 ? 1.0 : 0.2, 0.5, i % 5 == 0 ? 1.0 : 0.1});
    }
    object(scene, "points", "positions", positions, "radii", radii, "colors", colors);
}

void instances(Scene &scene) {
    look(scene);
    floor_and_light(scene);
    VtInstanceArray<VtTransform> instances;
    for (int i = 0; i < 3; ++i) {
        VtTransform place;
        place.Translation({i - 1.0, 0.4, 0.5 * i});
        instances.Add(place);
    }
    add(scene, "instances", "object", scene.object("sphere", "radius", 0.4), "places", instances);
}

template <class... Values> void trimmed(Scene &scene, const char *type, const Values &...values) {
    List list(values...);
    const VtLong trimmer = scene.NewTrimmer(type, list);
    look(scene);
    floor_and_light(scene);
    add(scene, "sphere", "center", VtVector3(0, 0.6, 0), "radius", 0.6, "trimmers", trimmer);
}

void cut_by_a_curve(Scene &scene) {
    VtInstanceArray<VtVector2> points;
    for (const VtVector2 &point : {VtVector2(0.1, 0.2), VtVector2(0.9, 0.3), VtVector2(0.8, 0.7), VtVector2(0.2, 0.8)})
        points.Add(point);
    trimmed(scene, "curve", "points", points);
}

void settings(Scene &scene) {
    List list("max_depth", 2, "clamp", 3.0);
    scene.ImagerBegin(scene.NewImager("settings", list));
    ball(scene, scene.diffuse(0.8));
}

void medium(Scene &scene) {
    List boundary("ior", 1.0);
    List surface("interface", scene.NewInterface("dielectric", boundary));
    List list("sigma_t", VtVector3(2, 3, 4), "albedo", 0.8, "g", 0.3);
    scene.InteriorBegin(scene.NewInterior("homogeneous", list));
    ball(scene, scene.NewMaterial("surface", surface));
    scene.InteriorEnd();
}

void area_light(Scene &scene) {
    unlit(scene);
    scene.light("area", "radiance", VtVector3(5, 4, 3));
    scene.LightBegin();
    add(scene, "quad", "origin", VtVector3(-1, 2.5, -1), "edge_u", VtVector3(2, 0, 0), "edge_v", VtVector3(0, 0, 2));
    scene.LightEnd();
}

void image(Scene &scene) {
    ball_with(scene, "image", "texture", scene.NewTexture(picture_of_a_sky().c_str()), "scale", 2.0);
}

void gradient(Scene &scene) {
    Points colors;
    scripted::fill(colors, {{1, 0.1, 0}, {0, 0.8, 0.1}, {0, 0.1, 1}});
    ball_with(scene, "gradient", "colors", colors, "direction", VtVector3(0, 1, 0));
}

template <class... Values> void seen_by(Scene &scene, const char *camera, const Values &...values) {
    ball(scene, scene.diffuse(VtVector3(0.8, 0.5, 0.3)));
    List list(values...);
    scene.NewCamera(camera, list);
}

struct TypeScene {
    const char *call;
    const char *type;
    void (*make)(Scene &scene);
};
const TypeScene scenes[] = {
    {"newCamera", "orthographic",
     [](Scene &s) {
         seen_by(s, "orthographic", "position", VtVector3(0, 1, 4), "target", VtVector3(0, 0.6, 0), "height", 2.2);
     }},
    {"newCamera", "panorama", [](Scene &s) { seen_by(s, "panorama", "position", VtVector3(0, 0.7, 1.3)); }},
    {"newCamera", "perspective",
     [](Scene &s) {
         seen_by(s, "perspective", "position", VtVector3(0, 1, 4), "target", VtVector3(0, 0.6, 0), "aperture_radius",
                 0.2);
     }},
    {"newImager", "file", [](Scene &s) { ball(s, s.diffuse(0.8)); }},
    {"newImager", "settings", settings},
    {"newInterface", "conductor", [](Scene &s) { ball_of(s, "conductor", "metal", "gold", "roughness", 0.4); }},
    {"newInterface", "dielectric", [](Scene &s) { ball_of(s, "dielectric", "color", VtVector3(0.9, 1, 0.95)); }},
    {"newInterface", "diffuse", [](Scene &s) { ball_of(s, "diffuse", "reflectance", VtVector3(0.9, 0.3, 0.2)); }},
    {"newInterface", "plastic",
     [](Scene &s) { ball_of(s, "plastic", "color", VtVector3(0.1, 0.3, 0.8), "roughness", 0.3); }},
    {"newInterface", "principled",
     [](Scene &s) {
         ball_of(s, "principled", "base_color", VtVector3(0.8, 0.4, 0.1), "metallic", 0.5, "clearcoat", 1.0, "sheen",
                 0.5);
     }},
    {"newInterior", "homogeneous", medium},
    {"newLight", "area", area_light},
    {"newLight", "distant",
     [](Scene &s) {
         unlit(s);
         s.light("distant", "direction", VtVector3(-1, -2, -1), "irradiance", VtVector3(3, 2.5, 2), "angle", 10.0);
     }},
    {"newLight", "environment",
     [](Scene &s) {
         unlit(s);
         s.light("environment", "name", picture_of_a_sky());
     }},
    {"newLight", "point",
     [](Scene &s) {
         unlit(s);
         s.light("point", "position", VtVector3(-2, 3, 1), "intensity", VtVector3(15, 20, 10));
     }},
    {"newLight", "sky",
     [](Scene &s) {
         unlit(s);
         s.light("sky", "sun_direction", VtVector3(-1, 1, 0.5), "turbidity", 4.0);
     }},
    {"newLight", "spot",
     [](Scene &s) {
         unlit(s);
         s.light("spot", "position", VtVector3(1, 3, 1), "target", VtVector3(0, 0.5, 0), "intensity", 20.0);
     }},
    {"newMaterial", "diffuse", [](Scene &s) { ball(s, s.diffuse(VtVector3(0.2, 0.7, 0.3))); }},
    {"newMaterial", "surface",
     [](Scene &s) {
         List none;
         List list("interface", s.NewInterface("diffuse", none), "color", VtVector3(0.9, 0.6, 0.1), "opacity", 0.6);
         ball(s, s.NewMaterial("surface", list));
     }},
    {"newObject", "box",
     [](Scene &s) { object(s, "box", "min", VtVector3(-0.7, 0, -0.5), "max", VtVector3(0.5, 0.9, 0.6)); }},
    {"newObject", "cone", [](Scene &s) { object(s, "cone", "radius", 0.7, "tip_radius", 0.2); }},
    {"newObject", "curves", curves},
    {"newObject", "cylinder", [](Scene &s) { object(s, "cylinder", "radius", 0.5); }},
    {"newObject", "disk",
     [](Scene &s) {
         object(s, "disk", "center", VtVector3(0, 0.8, 0), "normal", VtVector3(1, 1, 2), "radius", 0.7, "inner_radius",
                0.3);
     }},
    {"newObject", "instances", instances},
    {"newObject", "mesh", mesh},
    {"newObject", "patches", patches},
    {"newObject", "points", points},
    {"newObject", "quad",
     [](Scene &s) {
         object(s, "quad", "origin", VtVector3(-0.8, 0.1, 0.3), "edge_u", VtVector3(1.4, 0.2, 0), "edge_v",
                VtVector3(0, 1.2, -0.5));
     }},
    {"newObject", "sphere", [](Scene &s) { object(s, "sphere", "center", VtVector3(0.2, 0.5, 0.3), "radius", 0.5); }},
    {"newObject", "subdivision", subdivision},
    {"newObject", "torus",
     [](Scene &s) {
         object(s, "torus", "center", VtVector3(0, 0.7, 0), "axis", VtVector3(0, 1, 1), "major_radius", 0.6,
                "minor_radius", 0.25);
     }},
    {"newPattern", "checker",
     [](Scene &s) {
         ball_with(s, "checker", "a", VtVector3(0.9, 0.1, 0.1), "b", VtVector3(0.8, 0.8, 0.8), "scale", 8.0);
     }},
    {"newPattern", "gradient", gradient},
    {"newPattern", "image", image},
    {"newPattern", "mix",
     [](Scene &s) { ball_with(s, "mix", "a", VtVector3(1, 0, 0), "b", VtVector3(0, 0.5, 1), "amount", 0.25); }},
    {"newPattern", "noise",
     [](Scene &s) { ball_with(s, "noise", "a", VtVector3(0.1, 0.1, 0.6), "b", VtVector3(1, 1, 0.4), "scale", 3.0); }},
    {"newTrimmer", "box",
     [](Scene &s) { trimmed(s, "box", "min", VtVector3(0, 0.6, 0), "max", VtVector3(2, 2, 2), "keep", "outside"); }},
    {"newTrimmer", "curve", cut_by_a_curve},
    {"newTrimmer", "plane",
     [](Scene &s) { trimmed(s, "plane", "point", VtVector3(0, 0.7, 0), "normal", VtVector3(0, 1, 1)); }},
};

// The means of a picture: of its channels, and the brightness of its quarters, from the upper left one row by row. They
// have been made with many samples, and looked at. The error is the standard error of a channel's mean in the test.
struct Means {
    std::array<double, 3> channels;
    std::array<double, 4> quarters;
};
struct Known {
    const char *call;
    const char *type;
    Means means;
    double error;
};
// clang-format off
const Known known[] = {
    {"newCamera", "orthographic", {{0.21794, 0.22221, 0.26920}, {0.24842, 0.27650, 0.19106, 0.22983}}, 0.000536},
    {"newCamera", "panorama", {{0.21626, 0.24040, 0.30383}, {0.26507, 0.26754, 0.22107, 0.26031}}, 0.000423},
    {"newCamera", "perspective", {{0.21495, 0.22958, 0.28299}, {0.25908, 0.27096, 0.19329, 0.24671}}, 0.000445},
    {"newImager", "file", {{0.21530, 0.24283, 0.30745}, {0.27157, 0.29349, 0.19956, 0.25614}}, 0.000520},
    {"newImager", "settings", {{0.21289, 0.24032, 0.30454}, {0.27150, 0.29340, 0.19516, 0.25028}}, 0.000522},
    {"newInterface", "conductor", {{0.21805, 0.23776, 0.28028}, {0.25664, 0.29004, 0.19199, 0.24278}}, 0.001881},
    {"newInterface", "dielectric", {{0.19530, 0.23262, 0.29945}, {0.25667, 0.25558, 0.20758, 0.24999}}, 0.000373},
    {"newInterface", "diffuse", {{0.22087, 0.21453, 0.26886}, {0.25318, 0.26704, 0.18389, 0.23491}}, 0.000568},
    {"newInterface", "plastic", {{0.17669, 0.20865, 0.29694}, {0.24740, 0.25579, 0.17997, 0.22654}}, 0.000812},
    {"newInterface", "principled", {{0.20694, 0.21808, 0.26638}, {0.24775, 0.26464, 0.18064, 0.22885}}, 0.000874},
    {"newInterior", "homogeneous", {{0.19224, 0.21944, 0.28198}, {0.25177, 0.25244, 0.18869, 0.23198}}, 0.000588},
    {"newLight", "area", {{0.11550, 0.09240, 0.06930}, {0.03171, 0.03181, 0.15314, 0.15294}}, 0.000586},
    {"newLight", "distant", {{0.18617, 0.15514, 0.12411}, {0.03015, 0.04691, 0.25577, 0.28772}}, 0.000344},
    {"newLight", "environment", {{0.37576, 0.46152, 0.66617}, {0.58729, 0.58845, 0.40401, 0.42485}}, 0.000891},
    {"newLight", "point", {{0.06483, 0.08643, 0.04322}, {0.03032, 0.00843, 0.15017, 0.07038}}, 0.000189},
    {"newLight", "sky", {{0.90050, 0.93198, 1.02561}, {0.83502, 0.72426, 1.21102, 1.04048}}, 0.002905},
    {"newLight", "spot", {{0.06751, 0.06751, 0.06751}, {0.02644, 0.05519, 0.08357, 0.10484}}, 0.000215},
    {"newMaterial", "diffuse", {{0.18249, 0.23710, 0.27521}, {0.25100, 0.26179, 0.18234, 0.23126}}, 0.000412},
    {"newMaterial", "surface", {{0.21463, 0.22823, 0.26843}, {0.25549, 0.26446, 0.19088, 0.23756}}, 0.000700},
    {"newObject", "box", {{0.19961, 0.22681, 0.28945}, {0.25769, 0.26267, 0.19356, 0.24058}}, 0.000361},
    {"newObject", "cone", {{0.20608, 0.23517, 0.30151}, {0.26226, 0.26759, 0.20412, 0.25638}}, 0.000311},
    {"newObject", "curves", {{0.20138, 0.22833, 0.29073}, {0.25198, 0.26153, 0.20577, 0.24130}}, 0.000455},
    {"newObject", "cylinder", {{0.20004, 0.22825, 0.29261}, {0.25563, 0.26519, 0.19360, 0.24679}}, 0.000355},
    {"newObject", "disk", {{0.20962, 0.23615, 0.29862}, {0.26643, 0.26925, 0.20597, 0.25087}}, 0.000440},
    {"newObject", "instances", {{0.18858, 0.21630, 0.27881}, {0.26289, 0.26879, 0.17657, 0.20333}}, 0.000447},
    {"newObject", "mesh", {{0.19811, 0.22694, 0.28007}, {0.26125, 0.26222, 0.18932, 0.22736}}, 0.000299},
    {"newObject", "patches", {{0.21343, 0.23561, 0.29130}, {0.25805, 0.27723, 0.19374, 0.25810}}, 0.000544},
    {"newObject", "points", {{0.16399, 0.17838, 0.21351}, {0.19793, 0.21511, 0.14208, 0.18605}}, 0.000441},
    {"newObject", "quad", {{0.20760, 0.23143, 0.28931}, {0.25451, 0.26686, 0.20274, 0.24701}}, 0.000388},
    {"newObject", "sphere", {{0.19939, 0.22798, 0.29290}, {0.26329, 0.26893, 0.19441, 0.23373}}, 0.000359},
    {"newObject", "subdivision", {{0.19811, 0.22473, 0.28631}, {0.25330, 0.26951, 0.18651, 0.23621}}, 0.000373},
    {"newObject", "torus", {{0.20142, 0.22633, 0.28539}, {0.25615, 0.26079, 0.19062, 0.24329}}, 0.000409},
    {"newPattern", "checker", {{0.21808, 0.22301, 0.28486}, {0.26047, 0.27534, 0.18872, 0.24340}}, 0.000546},
    {"newPattern", "gradient", {{0.17607, 0.23179, 0.27273}, {0.24769, 0.25589, 0.17823, 0.22565}}, 0.000354},
    {"newPattern", "image", {{0.18977, 0.22234, 0.29547}, {0.25044, 0.25479, 0.19596, 0.24224}}, 0.000433},
    {"newPattern", "mix", {{0.21253, 0.20479, 0.27203}, {0.24901, 0.26004, 0.18051, 0.22959}}, 0.000494},
    {"newPattern", "noise", {{0.20144, 0.22850, 0.28802}, {0.25753, 0.27192, 0.18734, 0.24049}}, 0.000386},
    {"newTrimmer", "box", {{0.18963, 0.21691, 0.27879}, {0.25532, 0.23816, 0.18642, 0.23387}}, 0.000308},
    {"newTrimmer", "curve", {{0.19302, 0.22080, 0.28379}, {0.25471, 0.24852, 0.19593, 0.23098}}, 0.000328},
    {"newTrimmer", "plane", {{0.19473, 0.22222, 0.28491}, {0.25624, 0.25066, 0.19622, 0.23269}}, 0.000337},
};
// clang-format on

constexpr int side = 24;
constexpr int samples = 16;

Means means_of(const Pixels &pixels) {
    Means means{};
    const double share = 1.0 / (side * side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            for (std::size_t c = 0; c < 3; ++c) {
                const double value = pixels.at(x, y)[c];
                means.channels[c] += share * value;
                means.quarters[2 * (y >= side / 2) + (x >= side / 2)] += share * 4 / 3 * value;
            }
    return means;
}

// What a new type needs above, or one after a change that is meant to be seen; and its picture in the folder
// "every_type", to be looked at first.
std::string as_known(const TypeScene &type) {
    Scene scene;
    type.make(scene);
    const Pixels few = scene.render(side, side, samples);
    const Pixels many = scene.render(side, side, 64 * samples);
    const Means means = means_of(many);
    double error = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        double squares = 0;
        for (std::size_t i = 0; i < few.values.size(); ++i)
            squares += std::pow(few.values[i][c] - many.values[i][c], 2);
        error = std::max(error, std::sqrt(squares) / (side * side));
    }

    std::filesystem::create_directory("every_type");
    const std::string path = std::string("every_type/") + type.call + "_" + type.type + ".png";
    scene.draw(path, 5 * side, 5 * side, 4 * samples);

    std::array<char, 256> row{};
    std::snprintf(row.data(), row.size(), R"({"%s", "%s", {{%.5f, %.5f, %.5f}, {%.5f, %.5f, %.5f, %.5f}}, %.6f},)",
                  type.call, type.type, means.channels[0], means.channels[1], means.channels[2], means.quarters[0],
                  means.quarters[1], means.quarters[2], means.quarters[3], error);
    return "the picture in " + path + " has " + row.data();
}

bool is(const char *call, const char *type, const vantor::EntityNames &words, const vantor::Type &of_words) {
    return words.call == call && of_words.name == type;
}

void expect_known_means(const TypeScene &type, const Known &expected) {
    Pixels pixels;
    EXPECT_EQ(scripted::errors_of([&] {
                  Scene scene;
                  type.make(scene);
                  pixels = scene.render(side, side, samples);
              }),
              "");
    ASSERT_EQ(pixels.values.size(), std::size_t{side * side});
    // Five standard errors. Pixels complete each other, so that the error of a mean is less than it would be of
    // independent ones; a quarter has a fourth of the pixels.
    const Means means = means_of(pixels);
    for (std::size_t c = 0; c < 3; ++c)
        EXPECT_NEAR(means.channels[c], expected.means.channels[c], 5 * expected.error) << "channel " << c;
    for (std::size_t q = 0; q < 4; ++q)
        EXPECT_NEAR(means.quarters[q], expected.means.quarters[q], 10 * expected.error) << "quarter " << q;
}

// Of the running test, so far: successes are not recorded.
int failures() { return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count(); }

TEST(EveryType, LooksAsItDid) {
    for (const vantor::EntityNames &words : vantor::vocabulary())
        for (const vantor::Type &type : words.types) {
            SCOPED_TRACE(testing::Message() << words.call << " \"" << type.name << '"');
            const auto is_it = [&](const auto &entry) { return is(entry.call, entry.type, words, type); };
            const auto scene = std::ranges::find_if(scenes, is_it);
            const auto expected = std::ranges::find_if(known, is_it);
            if (scene == std::end(scenes)) {
                ADD_FAILURE() << "the type has no scene here";
                continue;
            }
            const int failures_before = failures();
            if (expected == std::end(known))
                ADD_FAILURE() << "the type has no known means";
            else
                expect_known_means(*scene, *expected);
            if (failures() > failures_before)
                ADD_FAILURE() << as_known(*scene);
        }
}

} // namespace
