// Noisy scenes: what tests measure noise in, and how.
#pragma once

#include "tests/libvantor/scripted_scene.h"

#include <cmath>

namespace scripted {

inline double rmse(const Pixels &picture, const Pixels &reference) {
    double squares = 0;
    for (std::size_t i = 0; i < picture.values.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            const double difference = picture.values[i][c] - reference.values[i][c];
            squares += difference * difference;
        }
    return std::sqrt(squares / (3.0 * static_cast<double>(picture.values.size())));
}

// A white room, lit by a panel in front of one wall; the camera sees three walls that indirect light brightens.
inline void make_room(Scene &scene) {
    scene.camera({0.9, 0.5, 0.9}, {-1, -0.6, -1}, 60);
    scene.MaterialBegin(scene.diffuse(0.7));
    scene.AddObject(scene.room());
    scene.MaterialEnd();
    scene.light("area", "radiance", 4.0);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-0.3, 0.95, -0.3), "edge_u", VtVector3(0.6, 0, 0),
                                 "edge_v", VtVector3(0, 0, 0.6)));
    scene.LightEnd();
}

// A ball of glass or metal on a floor, beside a small lamp: bright paths are rare, and where they meet is sharp.
inline void make_caustics(Scene &scene) {
    scene.camera({0, 4, 6}, {0, 0.3, 0}, 30);
    scene.light("area", "radiance", 60.0);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-2.5, 5, -0.4), "edge_u", VtVector3(0.7, 0, 0), "edge_v",
                                 VtVector3(0, 0, 0.7)));
    scene.LightEnd();
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-6, 0, 6), "edge_u", VtVector3(12, 0, 0), "edge_v",
                                 VtVector3(0, 0, -12)));
    scene.MaterialEnd();
    scene.MaterialBegin(scene.surface("dielectric", "ior", 1.5));
    scene.AddObject(scene.object("sphere", "center", VtVector3(-0.9, 0.8, 0), "radius", 0.8));
    scene.MaterialEnd();
    scene.MaterialBegin(scene.surface("conductor", "metal", "gold"));
    scene.AddObject(scene.object("sphere", "center", VtVector3(0.9, 0.8, 0), "radius", 0.8));
    scene.MaterialEnd();
}

// A ball in front of nothing.
inline void make_ball(Scene &scene) {
    scene.camera({0, 0, 4}, {0, 0, 0}, 40);
    scene.light("point", "position", VtVector3(2, 3, 4), "intensity", 40.0);
    scene.MaterialBegin(scene.diffuse(VtVector3(0.6, 0.3, 0.2)));
    scene.AddObject(scene.object("sphere", "radius", 1.0));
    scene.MaterialEnd();
}

inline double mean(const Pixels &picture) {
    double sum = 0;
    for (const scripted::Rgb &value : picture.values)
        sum += value[0] + value[1] + value[2];
    return sum / (3.0 * static_cast<double>(picture.values.size()));
}

} // namespace scripted
