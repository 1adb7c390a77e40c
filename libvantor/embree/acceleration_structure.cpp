// Acceleration structure: placed objects as Embree scenes.
#include "libvantor/embree/acceleration_structure.h"

#include "libvantor/embree/instancer.h"

namespace vantor {

namespace {

// An object that is placed more than once, with more primitives than this over all its placements, is instanced: its
// geometry is there once. Of the others, copies in world space trace faster.
constexpr std::size_t most_copied_primitives = 20000;

// From so many primitives on, a copy has a scene of its own. Larger: whenever an object is added, more is built again.
// Smaller: rays pass from scene to scene more often, which takes time.
constexpr std::size_t least_primitives_of_own_scene = 20000;

RTCSceneFlags flags_for(std::span<const Placement> placements) {
    std::size_t bodies = 0;
    for (const Placement &placement : placements)
        if (placement.interior >= 0)
            bodies += placement.instances ? placement.instances->size() : 1;
    // A ray that slips between two triangles of a body never leaves its medium. Without media, it is one sample among
    // many, and not worth a seventh more time.
    int flags = bodies > 0 ? RTC_SCENE_FLAG_ROBUST : RTC_SCENE_FLAG_NONE;
    // What rays have crossed is refused by a filter.
    if (std::ranges::any_of(placements, [](const Placement &placement) { return placement.may_be_crossed(); }))
        flags |= calls_query_filters;
    return static_cast<RTCSceneFlags>(flags);
}

} // namespace

void AccelerationStructure::update(std::span<const Placement> placements, const Interrupt &interrupt) {
    // Embree has to know before it builds.
    if (const RTCSceneFlags now = flags_for(placements); now != flags) {
        forget_all();
        flags = now;
    }

    for (; counted < placements.size(); ++counted)
        ++uses[placements[counted].object];
    placed.reserve(placements.size());
    for (std::size_t i = 0; i < placements.size(); ++i) {
        interrupt.check();
        // One use more may make an instance of what was a copy.
        const Form form = form_of(placements[i]);
        if (i < placed.size() && placed[i].form == form)
            continue;
        top.reset();
        Placed made = place(i, placements[i], form, interrupt);
        if (i < placed.size())
            placed[i] = std::move(made);
        else
            placed.push_back(std::move(made));
    }
    if (top)
        return;

    OwnedScene scene = new_scene();
    for (std::size_t i = 0; i < placed.size(); ++i)
        rtcAttachGeometryByID(scene.get(), placed[i].geometry.get(), static_cast<unsigned>(i));
    commit(scene.get(), interrupt);
    top = std::move(scene);
    ++counts.top_levels;
}

AccelerationStructure::Form AccelerationStructure::form_of(const Placement &placement) const {
    if (placement.instances)
        return Form::ManyInstances;
    const Object &object = *placement.object;
    const std::size_t primitives = primitives_of(object.shape);
    const std::size_t use_count = uses.at(&object);
    if ((use_count > 1 && use_count * primitives > most_copied_primitives) || !object.trimmers.empty() ||
        !can_be_mapped(object.shape, placement.world_from_object))
        return Form::Instance;
    return primitives < least_primitives_of_own_scene ? Form::Copy : Form::CopyInOwnScene;
}

AccelerationStructure::Placed AccelerationStructure::place(std::size_t index, const Placement &placement, Form form,
                                                           const Interrupt &interrupt) {
    const Affine map = to_float(placement.world_from_object);
    const bool is_instance = form == Form::Instance || form == Form::ManyInstances;
    Placed result{form, {}, {{}, map, 1, is_instance, placement.may_be_crossed(), nullptr}};
    HitDecoding &decoding = result.decoding;
    if (is_instance) {
        const SharedScene &object = shared_scene(*placement.object, interrupt);
        decoding.format = object.format;
        result.geometry = form == Form::Instance
                              ? instance(object.scene.get(), map)
                              : many_instances(index, placement, object.scene.get(), decoding.instancer);
    } else {
        result.geometry = copy(index, placement, decoding.format);
        if (decoding.format.has_winding && map.determinant < 0)
            decoding.front = -1;
        if (form == Form::CopyInOwnScene)
            // The instance keeps the scene.
            result.geometry = instance(scene_of_one(result.geometry.get(), interrupt).get(), Affine());
    }
    if (placement.is_hidden)
        hide(result.geometry.get());
    return result;
}

// From rays that have the camera's mask.
void AccelerationStructure::hide(RTCGeometry geometry) const {
    if (rtcGetDeviceProperty(device.get(), RTC_DEVICE_PROPERTY_RAY_MASK_SUPPORTED) == 0)
        throw EmbreeError("Embree was built without ray masks, which \"visible\" 0 of an area light needs");
    rtcSetGeometryMask(geometry, mask_of_hidden);
    rtcCommitGeometry(geometry);
}

OwnedGeometry AccelerationStructure::copy(std::size_t index, const Placement &placement, HitFormat &format) {
    Geometry geometry = make_geometry(device.get(), *placement.object, to_float(placement.world_from_object));
    format = geometry.format;
    if (geometry.callback_data)
        callback_data[index] = std::move(geometry.callback_data);
    return std::move(geometry.handle);
}

const AccelerationStructure::SharedScene &AccelerationStructure::shared_scene(const Object &object,
                                                                              const Interrupt &interrupt) {
    if (const auto found = shared.find(&object); found != shared.end())
        return found->second;
    Geometry geometry = make_geometry(device.get(), object, Affine());
    OwnedScene scene = scene_of_one(geometry.handle.get(), interrupt);
    return shared.emplace(&object, SharedScene{std::move(geometry.callback_data), geometry.format, std::move(scene)})
        .first->second;
}

OwnedGeometry AccelerationStructure::instance(RTCScene of, const Affine &map) const {
    OwnedGeometry geometry = begin_geometry(device.get(), RTC_GEOMETRY_TYPE_INSTANCE);
    rtcSetGeometryInstancedScene(geometry.get(), of);
    // Columns of Embree's matrix are the images of the axes, as rows are here.
    const Vec3 columns[4] = {map.linear.row0, map.linear.row1, map.linear.row2, map.offset};
    rtcSetGeometryTransform(geometry.get(), 0, RTC_FORMAT_FLOAT3X4_COLUMN_MAJOR, columns);
    rtcCommitGeometry(geometry.get());
    return geometry;
}

OwnedGeometry AccelerationStructure::many_instances(std::size_t index, const Placement &placement, RTCScene of,
                                                    const Instancer *&made) {
    RTCBounds bounds;
    rtcGetSceneBounds(of, &bounds);
    const auto instancer = std::make_shared<Instancer>(Instancer{of,
                                                                 {bounds.lower_x, bounds.lower_y, bounds.lower_z},
                                                                 {bounds.upper_x, bounds.upper_y, bounds.upper_z},
                                                                 placement.instances,
                                                                 placement.world_from_object});
    instancer->inverses.reserve(placement.instances->size());
    for (std::size_t i = 0; i < placement.instances->size(); ++i) {
        const Affine map = placement.map(static_cast<std::uint32_t>(i));
        instancer->inverses.push_back({map.inverse, map.offset});
    }
    made = instancer.get();
    callback_data[index] = instancer;
    OwnedGeometry geometry = begin_geometry(device.get(), RTC_GEOMETRY_TYPE_USER);
    set_callbacks(geometry.get(), *instancer);
    rtcCommitGeometry(geometry.get());
    return geometry;
}

OwnedScene AccelerationStructure::scene_of_one(RTCGeometry geometry, const Interrupt &interrupt) {
    OwnedScene scene = new_scene();
    rtcAttachGeometryByID(scene.get(), geometry, 0);
    commit(scene.get(), interrupt);
    ++counts.objects;
    return scene;
}

OwnedScene AccelerationStructure::new_scene() const {
    OwnedScene scene(rtcNewScene(device.get()));
    check_handle(device.get(), scene.get());
    rtcSetSceneFlags(scene.get(), flags);
    return scene;
}

void AccelerationStructure::commit(RTCScene scene, const Interrupt &interrupt) const {
    const auto goes_on = [](void *stop, double) { return !static_cast<const Interrupt *>(stop)->requested(); };
    rtcSetSceneProgressMonitorFunction(scene, goes_on, const_cast<Interrupt *>(&interrupt));
    rtcCommitScene(scene);
    rtcSetSceneProgressMonitorFunction(scene, nullptr, nullptr);
    throw_device_error(device.get());
    // A build that was cancelled is no error, but has left nothing to trace.
    interrupt.check();
}

void AccelerationStructure::forget_all() {
    top.reset();
    placed.clear();
    shared.clear();
    callback_data.clear();
}

} // namespace vantor
