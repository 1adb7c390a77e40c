// Light: one of all types of light that are sampled, or found by rays.
#pragma once

#include "libvantor/lights/distant_disk_light.h"
#include "libvantor/lights/distant_light.h"
#include "libvantor/lights/environment.h"
#include "libvantor/lights/flat_emitter.h"
#include "libvantor/lights/sphere_emitter.h"
#include "libvantor/lights/spot_light.h"
#include "libvantor/lights/unsampled_emitter.h"

#include <variant>

namespace vantor {

template <LightType... Kinds> using AnyLightOf = std::variant<Kinds...>;

/// Whoever tells the types apart visits them all, by what the concepts ask of them.
using Light = AnyLightOf<FlatEmitter, SphereEmitter, UnsampledEmitter, PointLight, SpotLight, DistantLight,
                         DistantDiskLight, EnvironmentLight>;

/// Calls `work` with the light as the type that it is. What most scenes are lit by is tested first and inline.
template <class Work> decltype(auto) visit_light(const Work &work, const Light &light) {
    if (const auto *flat = std::get_if<FlatEmitter>(&light)) [[likely]]
        return work(*flat);
    return std::visit(work, light);
}

static_assert(sizeof(Light) <= 80, "a mesh that shines has one for each triangle, maybe millions");

} // namespace vantor
