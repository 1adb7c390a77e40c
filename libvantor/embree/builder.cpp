// Builder: placed objects as Embree scenes.
#include "libvantor/embree/builder.h"

#include "libvantor/embree/analytic.h"
#include "libvantor/embree/instancer.h"
#include "libvantor/embree/trimming.h"

#include <new>

namespace vantor {

namespace {

// An object that is placed more than once, with more primitives than this over all its placements, is instanced: its
// geometry is there once. Of the others, copies in world space trace faster.
constexpr std::size_t most_copied_primitives = 20000;

class Builder {
  public:
    Builder(BuiltScene &into, const Interrupt &stop) : built(into), interrupt(stop) {}

    void build(std::span<const Placement> placements) {
        std::unordered_map<const Shape *, std::size_t> uses;
        for (const Placement &placement : placements)
            ++uses[&placement.object->shape];
        has_bodies = std::ranges::any_of(placements, [](const Placement &p) { return p.interior >= 0; });

        built.top = new_scene();
        built.is_instance.reserve(placements.size());
        built.instancer.reserve(placements.size());
        for (const Placement &placement : placements) {
            interrupt.check();
            OwnedGeometry geometry = geometry_of(placement, uses[&placement.object->shape]);
            rtcCommitGeometry(geometry.get());
            rtcAttachGeometryByID(built.top.get(), geometry.get(), static_cast<unsigned>(built.is_instance.size() - 1));
        }
        commit(built.top.get());
    }

  private:
    // Also notes how the placement's hits are to be read.
    OwnedGeometry geometry_of(const Placement &placement, std::size_t use_count) {
        const Object &object = *placement.object;
        built.is_instance.push_back(true);
        built.instancer.push_back(nullptr);
        if (placement.instances)
            return new_repeated(placement);

        const Affine world_from_object = to_float(placement.world_from_object);
        const bool is_round = std::holds_alternative<Sphere>(object.shape);
        const bool are_curves = std::holds_alternative<Curves>(object.shape);
        const bool may_copy = !are_curves && (!is_round || world_from_object.uniform_scale() > 0);
        // Trimmers speak of the object's space.
        const bool copies = may_copy && object.trimmers.empty() &&
                            (use_count == 1 || use_count * primitives_of(object.shape) <= most_copied_primitives);
        if (!copies)
            return new_instance(shared_scene(object), world_from_object);
        built.is_instance.back() = false;
        return new_geometry(object.shape, world_from_object);
    }

    OwnedScene new_scene() {
        OwnedScene scene(rtcNewScene(built.device.get()));
        check(scene.get());
        // A ray that slips between two triangles of a body never leaves its medium. Without media, it is one sample
        // among many, and not worth a seventh more time.
        if (has_bodies)
            rtcSetSceneFlags(scene.get(), RTC_SCENE_FLAG_ROBUST);
        return scene;
    }

    template <class Handle> void check(Handle handle) {
        if (!handle) {
            throw_device_error(built.device.get());
            throw std::bad_alloc();
        }
    }

    template <class Element>
    Element *new_buffer(RTCGeometry geometry, RTCBufferType type, RTCFormat format, std::size_t count) {
        void *buffer = rtcSetNewGeometryBuffer(geometry, type, 0, format, sizeof(Element), count);
        check(buffer);
        return static_cast<Element *>(buffer);
    }

    OwnedGeometry begin_geometry(RTCGeometryType type) {
        OwnedGeometry geometry(rtcNewGeometry(built.device.get(), type));
        check(geometry.get());
        return geometry;
    }

    OwnedGeometry new_geometry(const Shape &shape, const Affine &map) {
        return std::visit([&](const auto &kind) { return geometry_of(kind, map); }, shape);
    }

    // The object outlives the scene and does not change: Embree may read its triangles where they are.
    OwnedGeometry geometry_of(const TriangleMesh &mesh, const Affine &map) {
        OwnedGeometry geometry = geometry_of_points(mesh, map);
        rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, mesh.triangles.data(), 0,
                                   sizeof(TriangleMesh::Triangle), mesh.triangles.size());
        return geometry;
    }

    OwnedGeometry geometry_of_points(const TriangleMesh &mesh, const Affine &map) {
        OwnedGeometry geometry = begin_geometry(RTC_GEOMETRY_TYPE_TRIANGLE);
        Vec3 *points = new_buffer<Vec3>(geometry.get(), RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT3, mesh.points.size());
        for (const Vec3 &p : mesh.points)
            *points++ = map.point(p);
        return geometry;
    }

    // Two triangles each: in packets, they trace faster than Embree's quads.
    OwnedGeometry geometry_of(const Quads &quads, const Affine &map) {
        TriangleMesh mesh;
        for (const Quads::Corners &corners : quads.corners) {
            const auto first = static_cast<std::uint32_t>(mesh.points.size());
            mesh.points.insert(mesh.points.end(), corners.begin(), corners.end());
            mesh.triangles.push_back({first, first + 1, first + 2});
            mesh.triangles.push_back({first, first + 2, first + 3});
        }
        OwnedGeometry geometry = geometry_of_points(mesh, map);
        auto *triangles = new_buffer<TriangleMesh::Triangle>(geometry.get(), RTC_BUFFER_TYPE_INDEX, RTC_FORMAT_UINT3,
                                                             mesh.triangles.size());
        std::ranges::copy(mesh.triangles, triangles);
        return geometry;
    }

    OwnedGeometry geometry_of(const Sphere &sphere, const Affine &map) {
        OwnedGeometry geometry = begin_geometry(RTC_GEOMETRY_TYPE_SPHERE_POINT);
        const Vec3 center = map.point(sphere.center);
        auto *buffer = new_buffer<std::array<float, 4>>(geometry.get(), RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT4, 1);
        *buffer = {center.x, center.y, center.z, sphere.radius * map.uniform_scale()};
        return geometry;
    }

    // Curves are always instanced, so that Embree reads their points where they are.
    OwnedGeometry geometry_of(const Curves &curves, const Affine &) {
        OwnedGeometry geometry = begin_geometry(curves.are_tubes ? RTC_GEOMETRY_TYPE_ROUND_BEZIER_CURVE
                                                                 : RTC_GEOMETRY_TYPE_FLAT_BEZIER_CURVE);
        rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT4, curves.points.data(),
                                   0, sizeof(Curves::ControlPoint), curves.points.size());
        rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT, curves.firsts.data(), 0,
                                   sizeof(std::uint32_t), curves.firsts.size());
        // Ribbons are cut into straight pieces; with Embree's own 4, a cubic that turns much has corners to be seen.
        rtcSetGeometryTessellationRate(geometry.get(), 16);
        return geometry;
    }

    // By the shape's own formulas, which hold under any transform.
    template <Analytic Kind> OwnedGeometry geometry_of(const Kind &kind, const Affine &map) {
        OwnedGeometry geometry = begin_geometry(RTC_GEOMETRY_TYPE_USER);
        const auto placed =
            std::make_shared<const PlacedShape<Kind>>(PlacedShape<Kind>{&kind, kind.map.then(map), trimmed});
        built.for_callbacks.push_back(placed);
        set_callbacks(geometry.get(), *placed);
        return geometry;
    }

    // Round shapes look after their trimmers themselves; of the others Embree asks.
    template <Analytic Kind> void trim(RTCGeometry, const Kind &) {}
    template <class Kind> void trim(RTCGeometry geometry, const Kind &) {
        const auto shown = std::make_shared<const TrimmedObject>(TrimmedObject{trimmed, halvings_of<Kind>});
        built.for_callbacks.push_back(shown);
        set_filters(geometry, *shown);
    }

    RTCScene shared_scene(const Object &object) {
        const auto found = shared.find(&object.shape);
        if (found != shared.end())
            return found->second;
        built.shared.push_back(new_scene());
        RTCScene scene = built.shared.back().get();
        trimmed = object.trimmers.empty() ? nullptr : &object;
        OwnedGeometry geometry = new_geometry(object.shape, Affine());
        if (trimmed)
            std::visit([&](const auto &kind) { trim(geometry.get(), kind); }, object.shape);
        trimmed = nullptr;
        rtcCommitGeometry(geometry.get());
        rtcAttachGeometryByID(scene, geometry.get(), 0);
        commit(scene);
        shared.emplace(&object.shape, scene);
        return scene;
    }

    OwnedGeometry new_repeated(const Placement &placement) {
        RTCScene scene = shared_scene(*placement.object);
        RTCBounds bounds;
        rtcGetSceneBounds(scene, &bounds);
        const auto instancer = std::make_shared<Instancer>(Instancer{scene,
                                                                     {bounds.lower_x, bounds.lower_y, bounds.lower_z},
                                                                     {bounds.upper_x, bounds.upper_y, bounds.upper_z},
                                                                     placement.instances,
                                                                     placement.world_from_object});
        instancer->inverses.reserve(placement.instances->size());
        for (std::size_t i = 0; i < placement.instances->size(); ++i) {
            const Affine map = placement.map(static_cast<std::uint32_t>(i));
            instancer->inverses.push_back({map.inverse, map.offset});
        }
        built.for_callbacks.push_back(instancer);
        built.instancer.back() = instancer.get();
        OwnedGeometry geometry = begin_geometry(RTC_GEOMETRY_TYPE_USER);
        set_callbacks(geometry.get(), *instancer);
        return geometry;
    }

    OwnedGeometry new_instance(RTCScene of, const Affine &map) {
        OwnedGeometry geometry = begin_geometry(RTC_GEOMETRY_TYPE_INSTANCE);
        rtcSetGeometryInstancedScene(geometry.get(), of);
        // Columns of Embree's matrix are the images of the axes, as rows are here.
        const Vec3 columns[4] = {map.linear.row0, map.linear.row1, map.linear.row2, map.offset};
        rtcSetGeometryTransform(geometry.get(), 0, RTC_FORMAT_FLOAT3X4_COLUMN_MAJOR, columns);
        return geometry;
    }

    void commit(RTCScene scene) {
        const auto goes_on = [](void *stop, double) { return !static_cast<const Interrupt *>(stop)->requested(); };
        rtcSetSceneProgressMonitorFunction(scene, goes_on, const_cast<Interrupt *>(&interrupt));
        rtcCommitScene(scene);
        throw_device_error(built.device.get());
        // A build that was cancelled is no error, but has left nothing.
        interrupt.check();
    }

    BuiltScene &built;
    const Interrupt &interrupt;
    std::unordered_map<const Shape *, RTCScene> shared;
    bool has_bodies = false;         // with media inside
    const Object *trimmed = nullptr; // whose geometry is being made, if it is trimmed
};

} // namespace

std::unique_ptr<BuiltScene> build_scene(std::span<const Placement> placements, const Interrupt &interrupt) {
    auto built = std::make_unique<BuiltScene>();
    built->device = make_device();
    Builder(*built, interrupt).build(placements);
    return built;
}

} // namespace vantor
