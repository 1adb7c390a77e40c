// Light lanes: lights that are sampled for several points at once.
#pragma once

#include "libvantor/base/lanes.h"
#include "libvantor/base/random.h"
#include "libvantor/lights/flat_emitter.h"
#include "libvantor/lights/light_sampler.h"

namespace vantor {

/// Light that may arrive at a point, if nothing is in the way.
struct LightSample {
    Vec3 to_light;      ///< Unit length.
    Vec3 end;           ///< The point that it comes from, clear of its surface; unset if is_infinite.
    bool is_infinite;   ///< Comes from infinitely far away.
    bool is_delta;      ///< No ray can find the light: it is a point or parallel light.
    Color contribution; ///< Radiance over pdf; of a delta light its irradiance over the probability of the choice.
    float pdf;          ///< Per solid angle, choice included; above 0 and finite. Unset if is_delta.
    LightChoice choice; ///< Of the light.
};

/// A LightSample for each lane, but for the choice.
struct LightSampleLanes {
    Mask may_arrive{}; ///< Otherwise the rest is meaningless.
    Vec3Lanes to_light;
    Vec3Lanes end;
    Mask is_infinite{};
    Mask is_delta{};
    ColorLanes contribution;
    Lanes<float> pdf{};

    LightSample at(std::size_t lane, LightChoice choice) const {
        return {to_light[lane], end[lane], is_infinite[lane] != 0, is_delta[lane] != 0, contribution[lane],
                pdf[lane],      choice};
    }
    void set(std::size_t lane, const LightSample &light) {
        to_light.set(lane, light.to_light);
        end.set(lane, light.end);
        is_infinite[lane] = light.is_infinite;
        is_delta[lane] = light.is_delta;
        contribution.set(lane, light.contribution);
        pdf[lane] = light.pdf;
    }
};

/// A flat emitter for each lane. Rings are not among them.
struct FlatEmitterLanes {
    Mask are_set{};
    Vec3Lanes corner;
    Vec3Lanes edge_u;
    Vec3Lanes edge_v;
    Vec3Lanes normal;
    Lanes<float> area{};
    Lanes<FlatEmitter::Outline> outline{};
    ColorLanes emitted;

    FlatEmitter operator[](std::size_t lane) const {
        return {corner[lane], edge_u[lane], edge_v[lane], normal[lane], area[lane], outline[lane], 0, emitted[lane]};
    }
    void set(std::size_t lane, const FlatEmitter &emitter) {
        are_set[lane] = true;
        corner.set(lane, emitter.corner);
        edge_u.set(lane, emitter.edge_u);
        edge_v.set(lane, emitter.edge_v);
        normal.set(lane, emitter.normal);
        area[lane] = emitter.area;
        outline[lane] = emitter.outline;
        emitted.set(lane, emitter.emitted);
    }
};

/// Points, one for each lane, and the lights that are sampled for them: see LightSet::choose().
struct LightLanes {
    Lanes<LightChoice> choices{}; ///< Nothing is sampled where the pmf is 0.
    Vec3Lanes points;
    FlatEmitterLanes emitters; ///< Those that have been chosen.
    LightSampleLanes samples;

    /// Forgets the choices.
    void clear() {
        choices = {};
        emitters.are_set = {};
    }
};

/// Samples emitters by area; nothing arrives in the other lanes. Those that are near should be sampled by solid angle.
void sample_by_area(const FlatEmitterLanes &emitters, const Lanes<LightChoice> &choices, const Vec3Lanes &points,
                    const Lanes<Point2f> &numbers, LightSampleLanes &result, Mask &are_near);

} // namespace vantor
