// Tracer: what rays meet, where floats are at their limits.
#include "libvantor/base/interrupt.h"
#include "libvantor/entities/registry.h"
#include "libvantor/geometry/tracer.h"

#include <deque>
#include <gtest/gtest.h>

namespace {

using namespace vantor;

VtTransform scaling(double factor) {
    VtTransform m;
    m.Scaling({factor, factor, factor});
    return m;
}

/// Shapes in their places, without a script.
class Stage {
  public:
    void add(Shape shape, const VtTransform &world_from_object) {
        objects.push_back({1, std::move(shape), 0, false});
        placements.push_back({&objects.back(), world_from_object, &material, -1, -1, nullptr});
    }
    Tracer tracer() const { return std::move(*Tracer::build(placements, Interrupt())); }

  private:
    std::deque<Object> objects;
    const Material material = default_material();
    std::vector<Placement> placements;
};

// A square sheet around the origin that faces +Z, in squares of two triangles each.
TriangleMesh sheet(int side, float square) {
    TriangleMesh mesh;
    const auto at = [&](int i) { return (static_cast<float>(i) - 0.5f * static_cast<float>(side)) * square; };
    for (int j = 0; j <= side; ++j)
        for (int i = 0; i <= side; ++i)
            mesh.points.push_back({at(i), at(j), 0});
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const auto a = static_cast<std::uint32_t>(j * (side + 1) + i);
            const auto above = a + static_cast<std::uint32_t>(side) + 1;
            mesh.triangles.push_back({a, a + 1, above + 1});
            mesh.triangles.push_back({a, above + 1, above});
        }
    return mesh;
}

TEST(Tracer, TrianglesOfAnySizeAreMet) {
    // As small as transforms may make them: the squares of their areas are far below the smallest float.
    for (const double scale : {1.0, 1e-8}) {
        Stage stage;
        stage.add(sheet(100, 0.02f), scaling(scale));
        stage.add(Quads{{{Vec3{-9, -9, -1}, {9, -9, -1}, {9, 9, -1}, {-9, 9, -1}}}}, scaling(1));
        const Tracer tracer = stage.tracer();
        int missed = 0;
        for (int i = 0; i < 1000; ++i) {
            const float x = static_cast<float>(scale) * (-0.9f + 0.0018f * static_cast<float>(i));
            const Ray ray{{x, 0.3f * x, static_cast<float>(scale)}, {0, 0, -1}};
            Hit hit;
            tracer.nearest({&ray, 1}, false, {&hit, 1});
            missed += !hit.exists || hit.placement != 0 || !(hit.geometric_normal.z > 0.999f) ? 1 : 0;
        }
        EXPECT_EQ(missed, 0) << scale;
    }
}

} // namespace
