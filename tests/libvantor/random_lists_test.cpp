// Random calls with random parameter lists: nothing crashes, every id is a new one.
#include "tests/libvantor/scripted_scene.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <set>

namespace {

using scripted::List;
using scripted::Scene;

// Mostly words of the vocabulary, so that values reach the entities, with numbers from the edges of what they can be.
class Dice {
  public:
    explicit Dice(unsigned seed) : engine(seed) {}

    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }

    double number() {
        const double edges[] = {0,   -0.0, 1,    -1,    0.5,      45,        1e-9, 1e-300,
                                1e9, -1e9, 1e18, 1e300, INFINITY, -INFINITY, NAN};
        return below(3) ? below(2000) / 100.0 - 10 : edges[below(std::size(edges))];
    }
    VtVector3 vector() { return {number(), number(), number()}; }

    const char *text() {
        static const char *const texts[] = {"position",
                                            "target",
                                            "up",
                                            "fov",
                                            "name",
                                            "exposure",
                                            "reflectance",
                                            "interface",
                                            "radiance",
                                            "direction",
                                            "irradiance",
                                            "intensity",
                                            "min",
                                            "max",
                                            "points",
                                            "triangles",
                                            "normals",
                                            "uvs",
                                            "origin",
                                            "edge_u",
                                            "edge_v",
                                            "corners",
                                            "center",
                                            "radius",
                                            "",
                                            "fo",
                                            "\xff\xfe",
                                            "height",
                                            "fov_axis",
                                            "smaller",
                                            "aperture_radius",
                                            "focus_distance",
                                            "angle",
                                            "cutoff_angle",
                                            "beam_width",
                                            "sun_direction",
                                            "turbidity",
                                            "sun",
                                            "scale",
                                            "target"};
        return texts[below(std::size(texts))];
    }
    const char *type() {
        static const char *const types[] = {
            "perspective", "orthographic", "panorama", "environment", "sky",  "spot", "file",   "diffuse", "surface",
            "area",        "distant",      "point",    "box",         "mesh", "quad", "sphere", "unknown"};
        const int i = below(std::size(types) + 1);
        return i == std::size(types) ? nullptr : types[i];
    }

  private:
    std::mt19937 engine;
};

// The arrays that a list refers to.
struct Arrays {
    scripted::Points points;
    scripted::Indices indices;
    VtInstanceArray<VtVector2> vector2s;

    explicit Arrays(Dice &dice) {
        for (int i = dice.below(12); i > 0; --i)
            points.Add(dice.vector());
        for (int i = dice.below(12); i > 0; --i)
            indices.Add(dice.below(14) - 1);
        vector2s.SetSize(dice.below(4) - 1);
    }
};

void fill(List &list, Dice &dice, const Arrays &arrays) {
    for (int i = dice.below(9); i > 0; --i) {
        if (dice.below(8))
            list.add(dice.text());
        switch (dice.below(9)) {
        case 0:
            list.add(dice.below(40) - 2);
            break;
        case 1:
            list.add(dice.text());
            break;
        case 2:
            list.add(arrays.points);
            break;
        case 3:
            list.add(arrays.indices);
            break;
        case 4:
            list.add(arrays.vector2s);
            break;
        case 5:
            list.add(dice.number());
            break;
        case 6:
            list.add(VtMatrix4());
            break;
        default:
            list.add(dice.vector());
        }
    }
}

VtTransform random_transform(Dice &dice) {
    VtTransform transform;
    switch (dice.below(4)) {
    case 0:
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                transform[r][c] = dice.number();
        break;
    case 1:
        transform.Scaling(dice.vector());
        break;
    case 2:
        transform.RotationAroundAxis(dice.vector(), dice.vector(), dice.number());
        break;
    default:
        transform.Translation(dice.vector());
    }
    return transform;
}

TEST(RandomLists, NothingCrashes) {
    setenv("VANTOR_DIAGNOSTICS", "silent", 1);
    using Create = VtLong (VtLocalSceneProxy::*)(const char *, VtArgList &);
    const Create creations[] = {
        &VtLocalSceneProxy::NewCamera,   &VtLocalSceneProxy::NewImager,  &VtLocalSceneProxy::NewInterface,
        &VtLocalSceneProxy::NewInterior, &VtLocalSceneProxy::NewLight,   &VtLocalSceneProxy::NewMaterial,
        &VtLocalSceneProxy::NewObject,   &VtLocalSceneProxy::NewPattern, &VtLocalSceneProxy::NewTrimmer};
    for (unsigned seed = 0; seed < 60; ++seed) {
        Dice dice(seed);
        Scene scene;
        std::set<VtLong> ids;
        scene.camera({0, 0, 9}, {0, 0, 0}, 60);
        ids.insert(1);
        for (int step = 0; step < 150; ++step) {
            const VtLong id = dice.below(60) - 2;
            switch (dice.below(16)) {
            case 0:
                scene.MaterialBegin(id);
                break;
            case 1:
                scene.MaterialEnd();
                break;
            case 2:
                scene.LightBegin();
                break;
            case 3:
                scene.LightEnd();
                break;
            case 4:
                scene.TransformBegin(random_transform(dice));
                break;
            case 5:
                scene.TransformEnd();
                break;
            case 6:
                scene.InteriorBegin(id);
                scene.InteriorEnd();
                break;
            case 7:
                dice.below(2) ? scene.LightOn(id) : scene.LightOff(id);
                break;
            case 8:
            case 9:
            case 10:
                scene.AddObject(id);
                break;
            default: {
                const Arrays arrays(dice);
                List list;
                fill(list, dice, arrays);
                EXPECT_TRUE(ids.insert((scene.*creations[dice.below(std::size(creations))])(dice.type(), list)).second);
            }
            }
        }
        for (const scripted::Rgb &pixel : scene.render(12, 12, 2).values)
            EXPECT_TRUE(std::isfinite(pixel[0]) && std::isfinite(pixel[1]) && std::isfinite(pixel[2]));
        scene.Render(dice.below(20) - 2, dice.below(20) - 2, dice.below(4) - 1, dice.number(), dice.number(),
                     dice.number(), dice.number());
    }
    unsetenv("VANTOR_DIAGNOSTICS");
}

} // namespace
