// Emitters: the lights of an object that shines.
#include "libvantor/lights/emitters.h"

#include "algebra/vt_transform_algebra.h"

namespace vantor {

namespace {

// One overload for each shape, so that a new one does not compile before it is decided how its light is sampled.
struct Appending {
    const VtTransform &world_from_object;
    Color radiance;
    std::vector<Light> &lights;

    EmitterRange one_for_all(const Light &light) const {
        lights.push_back(light);
        return {static_cast<int>(lights.size()) - 1, 0};
    }

    EmitterRange operator()(const TriangleMesh &mesh) const {
        const EmitterRange result{static_cast<int>(lights.size()), 1};
        const Affine map = to_float(world_from_object);
        for (const TriangleMesh::Triangle &t : mesh.triangles)
            lights.push_back(flat_emitter(map, mesh.points[t[0]], mesh.points[t[1]], mesh.points[t[2]],
                                          FlatEmitter::Outline::Triangle, radiance));
        return result;
    }

    EmitterRange operator()(const Quads &quads) const {
        const EmitterRange result{static_cast<int>(lights.size()), 1};
        const Affine map = to_float(world_from_object);
        for (const Quads::Corners &c : quads.corners)
            lights.push_back(flat_emitter(map, c[0], c[1], c[3], FlatEmitter::Outline::Parallelogram, radiance));
        return result;
    }

    Affine world_from_unit(Vec3 center, float radius) const {
        VtTransform sphere_from_unit = identity();
        for (int i = 0; i < 3; ++i)
            sphere_from_unit[i][i] = radius;
        sphere_from_unit[3] = {center.x, center.y, center.z, 1.0};
        return to_float(Compose(sphere_from_unit, world_from_object));
    }

    EmitterRange operator()(const Sphere &sphere) const {
        return one_for_all(
            SphereEmitter{std::make_shared<const Affine>(world_from_unit(sphere.center, sphere.radius)), radiance});
    }

    EmitterRange operator()(const Points &points) const {
        const EmitterRange result{static_cast<int>(lights.size()), 1};
        // One piece of memory for all their maps.
        const auto maps = std::make_shared<std::vector<Affine>>();
        maps->reserve(points.balls.size());
        for (const auto &[x, y, z, radius] : points.balls) {
            maps->push_back(world_from_unit({x, y, z}, radius));
            lights.push_back(SphereEmitter{std::shared_ptr<const Affine>(maps, &maps->back()), radiance});
        }
        return result;
    }

    EmitterRange operator()(const Disk &disk) const {
        return one_for_all(disk_emitter(to_float(world_from_object), disk, radiance));
    }

    EmitterRange operator()(const Cone &) const { return append_unsampled_emitter(radiance, lights); }
    EmitterRange operator()(const Torus &) const { return append_unsampled_emitter(radiance, lights); }
    EmitterRange operator()(const Curves &) const { return append_unsampled_emitter(radiance, lights); }
};

} // namespace

EmitterRange append_emitters(const Shape &shape, const VtTransform &world_from_object, Color radiance,
                             std::vector<Light> &lights) {
    return std::visit(Appending{world_from_object, radiance, lights}, shape);
}

EmitterRange append_unsampled_emitter(Color radiance, std::vector<Light> &lights) {
    lights.push_back(UnsampledEmitter{radiance});
    return {static_cast<int>(lights.size()) - 1, 0};
}

} // namespace vantor
