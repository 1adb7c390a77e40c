// Instances: one object at many instances, against the same objects added one by one.
#include "scripted_scene.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using scripted::Pixels;
using scripted::Scene;
using Transforms = VtInstanceArray<VtTransform>;

// Eight instances in a ring: turned, stretched, sheared, and every other one mirrored.
std::vector<VtTransform> ring() {
    std::vector<VtTransform> instances;
    for (int i = 0; i < 8; ++i) {
        VtTransform place;
        place.RotationAroundAxis({0, 0, 0}, {1, 2, 3}, 70.0 * i);
        const double turn = 2 * 3.14159265358979 * i / 8;
        for (int c = 0; c < 3; ++c)
            place[0][c] *= i % 2 == 0 ? 0.4 : -0.5;
        for (int c = 0; c < 3; ++c)
            place[1][c] = 0.3 * place[1][c] + 0.1 * place[0][c];
        for (int c = 0; c < 3; ++c)
            place[2][c] *= 0.5;
        place[3] = {1.5 * std::cos(turn), 1.5 * std::sin(turn), 0.2 * i, 1};
        instances.push_back(place);
    }
    return instances;
}

VtLong instances_of(Scene &scene, VtLong object, const std::vector<VtTransform> &instances) {
    Transforms array;
    for (const VtTransform &place : instances)
        array.Add(place);
    return scene.object("instances", "object", object, "places", array);
}

VtTransform outer() {
    VtTransform transform;
    transform.RotationAroundX(20);
    transform[0][0] *= -1.2;
    transform[3] = {0.1, -0.2, 0.3, 1};
    return transform;
}

// A picture of an object at all instances, either way, with a pattern in the object's space on it.
Pixels picture(const std::function<VtLong(Scene &)> &make, bool by_instances, bool shines) {
    Scene scene;
    scene.camera({0, 0, 8}, {0, 0, 0}, 35);
    scene.light("distant", "direction", VtVector3(-0.3, -0.5, -1), "irradiance", 3.0);
    scene.light("area", "radiance", 2.0);
    // No border of the checks lies on a side of the box.
    scripted::List checks("scale", 3.1, "space", "object");
    scripted::List interface("reflectance", 0.8);
    scripted::List surface("interface", scene.NewInterface("diffuse", interface), "color",
                           scene.NewPattern("checker", checks));
    scene.MaterialBegin(scene.NewMaterial("surface", surface));
    if (shines)
        scene.LightBegin();
    const VtLong object = make(scene);
    scene.TransformBegin(outer());
    if (by_instances) {
        scene.AddObject(instances_of(scene, object, ring()));
    } else {
        for (const VtTransform &place : ring()) {
            scene.TransformBegin(place);
            scene.AddObject(object);
            scene.TransformEnd();
        }
    }
    scene.TransformEnd();
    if (shines)
        scene.LightEnd();
    scene.MaterialEnd();
    return scene.render(48, 48, 4);
}

// How many pixels differ by more than rounding. Where a ray passes an edge or a check's border by less than rounding,
// its whole path may be another one.
int different_pixels(const Pixels &a, const Pixels &b) {
    int count = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        count += std::fabs(a.values[i][1] - b.values[i][1]) > 1e-3f * (1 + a.values[i][1]) ? 1 : 0;
    return count;
}

VtLong smooth_mesh(Scene &scene) {
    scripted::Points points;
    scripted::Points normals;
    scripted::Indices triangles;
    const std::vector<VtVector3> corners{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
    scripted::fill(points, corners);
    scripted::fill(normals, corners);
    scripted::fill(triangles, {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5});
    return scene.object("mesh", "points", points, "triangles", triangles, "normals", normals);
}

TEST(Instances, LookLikeObjectsAddedOneByOne) {
    const std::vector<std::function<VtLong(Scene &)>> makes{
        [](Scene &scene) { return scene.object("box"); },
        [](Scene &scene) { return scene.object("sphere"); },
        [](Scene &scene) { return scene.object("torus"); },
        [](Scene &scene) { return scene.object("cone"); },
        smooth_mesh,
    };
    for (std::size_t i = 0; i < makes.size(); ++i) {
        const Pixels instances = picture(makes[i], true, false);
        EXPECT_GT(instances.mean(), 0.02) << i;
        EXPECT_LE(different_pixels(instances, picture(makes[i], false, false)), 12) << i;
    }
}

TEST(Instances, ShineLikeObjectsAddedOneByOne) {
    // Found by paths alone, with more noise, but to the camera the same: the shining fronts have the light's radiance.
    const Pixels instances = picture([](Scene &scene) { return scene.object("box"); }, true, true);
    const Pixels copies = picture([](Scene &scene) { return scene.object("box"); }, false, true);
    int bright = 0;
    int alike = 0;
    for (std::size_t i = 0; i < instances.values.size(); ++i) {
        bright += copies.values[i][1] >= 2 ? 1 : 0;
        alike += copies.values[i][1] >= 2 && instances.values[i][1] >= 2 ? 1 : 0;
    }
    EXPECT_GT(bright, 200);
    // Pixels at edges, which shine in part, differ by the noise of what they reflect.
    EXPECT_GE(alike, 0.97 * bright);
    EXPECT_NEAR(instances.mean(), copies.mean(), 0.05 * copies.mean());
}

TEST(Instances, CarryColorsLikeMaterialsOfTheirOwn) {
    const std::vector<VtTransform> places = ring();
    const auto color_of = [](std::size_t i) { return VtVector3(0.1 * static_cast<double>(i), 0.5, 1); };
    const auto picture_of = [&](bool by_instances) {
        Scene scene;
        scene.camera({0, 0, 8}, {0, 0, 0}, 35);
        scene.light("distant", "direction", VtVector3(-0.3, -0.5, -1), "irradiance", 3.0);
        const VtLong box = scene.object("box");
        scene.TransformBegin(outer());
        if (by_instances) {
            Transforms array;
            scripted::Points colors;
            for (std::size_t i = 0; i < places.size(); ++i) {
                array.Add(places[i]);
                colors.Add(color_of(i));
            }
            scene.MaterialBegin(scene.diffuse(0.8));
            scene.AddObject(scene.object("instances", "object", box, "places", array, "colors", colors));
            scene.MaterialEnd();
        } else {
            for (std::size_t i = 0; i < places.size(); ++i) {
                const VtVector3 color = color_of(i);
                scene.MaterialBegin(scene.diffuse(VtVector3(0.8 * color[0], 0.8 * color[1], 0.8 * color[2])));
                scene.AddObject(instances_of(scene, box, {places[i]}));
                scene.MaterialEnd();
            }
        }
        scene.TransformEnd();
        return scene.render(48, 48, 4);
    };
    const Pixels carried = picture_of(true);
    const Pixels of_materials = picture_of(false);
    EXPECT_LE(different_pixels(carried, of_materials), 12);
    double red = 0;
    for (std::size_t i = 0; i < carried.values.size(); ++i) {
        EXPECT_NEAR(carried.values[i][0], of_materials.values[i][0], 0.5);
        red += carried.values[i][0];
    }
    EXPECT_GT(red, 1);
}

TEST(Instances, ColorsThatDoNotFitAreLeftOut) {
    Scene scene;
    const VtLong box = scene.object("box");
    Transforms places;
    for (const VtTransform &place : ring())
        places.Add(place);
    scripted::Points few, negative;
    few.Add({1, 1, 1});
    for (int i = 0; i < 8; ++i)
        negative.Add({1, i == 5 ? -1.0 : 1.0, 1});
    const auto errors_with = [&](const scripted::Points &colors) {
        return scripted::errors_of(
            [&] { scene.object("instances", "object", box, "places", places, "colors", colors); });
    };
    EXPECT_EQ(errors_with(few),
              "vantor: newObject \"instances\": item 5: parameter \"colors\" has 1 element (expected one "
              "for each of the 8 places); it is left out\n");
    EXPECT_EQ(errors_with(negative),
              "vantor: newObject \"instances\": item 5: parameter \"colors\" has unusable elements "
              "(expected components from 0 to 1e9); it is left out\n");
}

TEST(Instances, UnusablePlacesAreLeftOutInOneLine) {
    Scene scene;
    scene.camera({0, 0, 5}, {0, 0, 0}, 40);
    scene.light("area");
    const VtLong sphere = scene.object("sphere");
    VtTransform good;
    good.Identity();
    VtTransform far = good;
    far[3][0] = 1e9;
    VtTransform broken = good;
    broken[1][1] = std::nan("");
    VtLong id = 0;
    EXPECT_EQ(
        scripted::errors_of([&] {
            id = instances_of(scene, sphere, {good, VtTransform(), broken, far});
        }),
        "vantor: newObject \"instances\": item 3: parameter \"places\" leaves out 3 transforms, the first of them "
        "1, which is all zeros, as a new transform is (identity() and the other operations set it)\n");
    scene.LightBegin();
    scene.AddObject(id);
    scene.LightEnd();
    EXPECT_EQ(scene.render(8, 8, 1).at(4, 4)[1], 1);

    const auto line_of = [&](const std::vector<VtTransform> &instances, VtLong object) {
        const std::string errors =
            scripted::errors_of([&] { scene.AddObject(instances_of(scene, object, instances)); });
        EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
        return errors;
    };
    EXPECT_NE(line_of({far}, sphere).find("leaves out transform 0"), std::string::npos);
    EXPECT_NE(line_of({}, sphere).find("is empty"), std::string::npos);
    EXPECT_NE(line_of({good}, id).find("has instances itself"), std::string::npos);
    EXPECT_NE(line_of({good}, 999).find("no entity has the id 999"), std::string::npos);
}

} // namespace
