// Registry: everything that a script has described so far, and the blocks that are open.
#include "libvantor/description/registry.h"

namespace vantor {

namespace {

template <class Entities> int appended(Entities &all, typename Entities::value_type entity) {
    all.push_back(std::move(entity));
    return static_cast<int>(all.size()) - 1;
}

// Closes the innermost block, or reports that there is none.
template <class Block> void close(std::vector<Block> &blocks, Report &report, const char *call, const char *begin) {
    if (blocks.empty())
        CallReport(report, call).diagnostic(joined({"no block is open (", begin, " opens one)"}));
    else
        blocks.pop_back();
}

// The imager of that kind that was made last; null if there is none.
template <class Kind> const Kind *last_of(const std::vector<Imager> &imagers) {
    for (auto imager = imagers.rbegin(); imager != imagers.rend(); ++imager)
        if (const auto *found = std::get_if<Kind>(&*imager))
            return found;
    return nullptr;
}

} // namespace

void Registry::create(VtLong id, EntityKind kind, const char *type_name, const VtArgList &list) {
    const CallReport call(report, names_of(kind).call, type_name);
    // Only now is there something to be named: nothing is made of itself.
    const int index = made(id, kind, type_name, list, call);
    entries.insert_or_assign(id, Entry{kind, index});
    usage.note_made(kind, index, id);
}

int Registry::made(VtLong id, EntityKind kind, const char *type_name, const VtArgList &list, const CallReport &call) {
    // The one kind that has no types: its name is that of a file.
    if (kind == EntityKind::Texture) {
        if (type_name)
            return appended(textures, texture_files.open(type_name, call));
        call.diagnostic("no picture file is named");
        return -1;
    }

    const Type *type = find_type(kind, type_name, call);
    if (!type)
        return -1;
    const Parameters parameters = read_parameters(*type, list, call);
    if (!parameters.is_complete())
        return -1;

    switch (kind) {
    case EntityKind::Camera:
        if (check_reach(parameters, call))
            if (std::optional<Camera> camera = make_camera(*type, parameters, current_transform(), call))
                current_camera = camera;
        break;
    case EntityKind::Imager:
        if (std::optional<Imager> imager = make_imager(*type, parameters, call))
            return appended(imagers, std::move(*imager));
        break;
    case EntityKind::Interface:
        return appended(interfaces, make_bsdf(*type, parameters, call));
    case EntityKind::Light: {
        if (is_placed(*type) && !is_placeable())
            break;
        if (parameters.knows("position") && !check_reach(parameters, call))
            break;
        ++light_changes;
        DescribedLight light = make_light(*type, parameters, current_transform(), call);
        if (parameters.knows("pattern") && parameters.is_given("pattern"))
            light.pattern = find_pattern(parameters, "pattern", call);
        const int index = appended(all_lights, std::move(light));
        if (all_lights.back().is_area())
            current_area_light = index;
        return index;
    }
    case EntityKind::Material:
        if (std::optional<Material> material = find_material(*type, parameters, call))
            return appended(materials, std::move(*material));
        break;
    case EntityKind::Object:
        if (std::optional<Object> object = find_object(id, *type, parameters, call)) {
            if (object->prototype)
                usage.note_used(kind, entries.at(object->prototype->id).index);
            return appended(objects, std::move(*object));
        }
        break;
    case EntityKind::Pattern: {
        const auto find_used = [&](std::string_view name) { return find_pattern(parameters, name, call); };
        const auto find_texture = [&](std::string_view name) -> TextureFile * {
            const int index = find(parameters.id(name), EntityKind::Texture, parameters, name, call);
            return index < 0 ? nullptr : textures[static_cast<std::size_t>(index)];
        };
        if (std::optional<Pattern> pattern = make_pattern(*type, parameters, {find_used, find_texture}, call))
            return appended(patterns, std::move(*pattern));
        break;
    }
    case EntityKind::Interior:
        if (interiors.size() < most_interiors)
            return appended(interiors, make_medium(*type, parameters, call));
        call.diagnostic(
            joined({"there are ", std::to_string(most_interiors), " interiors already, which is the most"}));
        break;
    case EntityKind::Trimmer:
        if (std::optional<Trimmer> trimmer = make_trimmer(*type, parameters, call))
            return appended(trimmers, std::move(*trimmer));
        break;
    case EntityKind::Texture:
        break;
    }
    return -1;
}

bool Registry::check_reach(const Parameters &parameters, const CallReport &call) const {
    if (!is_placeable())
        return false;
    const VtVector3 position = transformed_point(parameters.vector("position"), current_transform());
    const bool is_near = largest_coordinate(to_float(position)) <= largest_reach;
    if (!is_near)
        call.diagnostic(joined({"the position lies beyond ", text_of(largest_reach), " in the world; it is left out"}));
    return is_near;
}

std::optional<Material> Registry::find_material(const Type &type, const Parameters &parameters,
                                                const CallReport &call) const {
    const auto find_interface = [&](std::string_view name) -> const BsdfDescription * {
        const int index = find(parameters.id(name), EntityKind::Interface, parameters, name, call);
        return index < 0 ? nullptr : &interfaces[static_cast<std::size_t>(index)];
    };
    const auto find_used = [&](std::string_view name) { return find_pattern(parameters, name, call); };
    return make_material(type, parameters, {find_interface, find_used}, call);
}

std::optional<Object> Registry::find_object(VtLong id, const Type &type, const Parameters &parameters,
                                            const CallReport &call) const {
    if (type.name == instances_type) {
        const int index = find(parameters.id("object"), EntityKind::Object, parameters, "object", call);
        if (index < 0)
            return {};
        return make_instances(id, objects[static_cast<std::size_t>(index)], parameters, call);
    }
    std::optional<Shape> shape = make_shape(type, parameters, call);
    if (!shape)
        return {};
    const float reach = reach_of(*shape);
    const bool are_colored = has_colors(*shape);
    Object object{id, std::move(*shape), reach, are_colored};
    if (parameters.knows("trimmers") && parameters.is_given("trimmers"))
        for (const VtLong trimmer : parameters.ids("trimmers"))
            if (const int index = find(trimmer, EntityKind::Trimmer, parameters, "trimmers", call); index >= 0)
                object.trimmers.push_back(&trimmers[static_cast<std::size_t>(index)]);
    return object;
}

const Pattern *Registry::find_pattern(const Parameters &parameters, std::string_view name,
                                      const CallReport &call) const {
    const VtLong id = parameters.id(name);
    if (const std::string why = why_wrong(id, EntityKind::Pattern); !why.empty()) {
        const std::string number = std::to_string(id);
        const bool may_be_a_number = parameters.kind(name) != ValueKind::PatternId;
        const std::string hint = may_be_a_number ? joined({"; a number has a decimal point: ", number, ".0"}) : "";
        parameters.complain(name, joined({"is ", number, ", but ", why, " (expected the id of a pattern", hint, ")"}),
                            call);
        return nullptr;
    }
    const int index = entries.at(id).index;
    return index < 0 ? nullptr : &patterns[static_cast<std::size_t>(index)];
}

std::string Registry::why_wrong(VtLong id, EntityKind kind) const {
    const auto found = entries.find(id);
    if (found == entries.end())
        return joined({"no entity has the id ", std::to_string(id)});
    if (found->second.kind != kind)
        return joined({"id ", std::to_string(id), " is ", names_of(found->second.kind).noun});
    return {};
}

int Registry::find(VtLong id, EntityKind kind, const CallReport &call) const {
    if (const std::string why = why_wrong(id, kind); !why.empty()) {
        call.diagnostic(joined({why, " (expected the id of ", names_of(kind).noun, ")"}));
        return -1;
    }
    return entries.at(id).index;
}

int Registry::find(VtLong id, EntityKind kind, const Parameters &parameters, std::string_view name,
                   const CallReport &call) const {
    if (const std::string why = why_wrong(id, kind); !why.empty()) {
        parameters.complain(
            name, joined({"is ", std::to_string(id), ", but ", why, " (expected the id of ", names_of(kind).noun, ")"}),
            call);
        return -1;
    }
    return entries.at(id).index;
}

void Registry::begin_imager(VtLong id) {
    imager_blocks.push_back(find(id, EntityKind::Imager, CallReport(report, "imagerBegin")));
}
void Registry::end_imager() { close(imager_blocks, report, "imagerEnd", "imagerBegin"); }

void Registry::begin_interior(VtLong id) {
    interior_blocks.push_back(find(id, EntityKind::Interior, CallReport(report, "interiorBegin")));
}
void Registry::end_interior() { close(interior_blocks, report, "interiorEnd", "interiorBegin"); }

void Registry::switch_light(VtLong id, bool on) {
    const int index = find(id, EntityKind::Light, CallReport(report, on ? "lightOn" : "lightOff"));
    if (index < 0)
        return;
    DescribedLight &light = all_lights[static_cast<std::size_t>(index)];
    if (light.is_on != on)
        ++light_changes;
    light.is_on = on;
    if (on && light.is_area())
        current_area_light = index;
}

void Registry::begin_light() {
    if (current_area_light < 0)
        CallReport(report, "lightBegin").diagnostic("there is no area light (newLight(\"area\", ...) makes one)");
    light_blocks.push_back(current_area_light);
}
void Registry::end_light() { close(light_blocks, report, "lightEnd", "lightBegin"); }

void Registry::begin_material(VtLong id) {
    material_blocks.push_back(find(id, EntityKind::Material, CallReport(report, "materialBegin")));
}
void Registry::end_material() { close(material_blocks, report, "materialEnd", "materialBegin"); }

void Registry::add_object(VtLong id) {
    const CallReport call(report, "addObject");
    const int index = find(id, EntityKind::Object, call);
    if (index < 0 || !is_placeable())
        return;
    const Object &object = objects[static_cast<std::size_t>(index)];
    const VtTransform world_from_object = current_transform();
    if (!(outer_reach(object.reach, world_from_object) <= largest_reach)) {
        call.diagnostic(
            joined({"the object reaches beyond ", text_of(largest_reach), " in the world; it is left out"}));
        return;
    }
    // Rays from anywhere in the world are followed into the object's space, where their coordinates must not get beyond
    // what Embree can take, 1.8e18.
    if (!(to_float(world_from_object).least_scale() * object.least_scale >= 5e-9f)) {
        call.diagnostic("transforms make the object smaller than rays can follow (scales from 1e-8 up are "
                        "possible); it is left out");
        return;
    }

    const int material_index = material_blocks.empty() ? -1 : material_blocks.back();
    const Material &material =
        material_index < 0 ? material_of_others : materials[static_cast<std::size_t>(material_index)];
    const int light = light_blocks.empty() ? -1 : light_blocks.back();
    int interior = interior_blocks.empty() ? -1 : interior_blocks.back();
    const Object &shown = object.prototype ? *object.prototype : object;
    if (const auto *curves = std::get_if<Curves>(&shown.shape); curves && !curves->are_tubes && interior >= 0) {
        call.diagnostic("ribbons have no inside, so that the interior has no effect on them (tubes have one)");
        interior = -1;
    }
    usage.note_used(EntityKind::Object, index);
    usage.note_used(EntityKind::Light, light);
    usage.note_added(shown, material_index, material);
    const bool is_hidden = light >= 0 && !all_lights[static_cast<std::size_t>(light)].is_visible;
    placed.push_back({&shown, world_from_object, &material, interior, light,
                      object.prototype ? &object.instances : nullptr,
                      object.instance_colors.empty() ? nullptr : &object.instance_colors, is_hidden});
}

void Registry::begin_transform(const VtTransform &transform) {
    const TransformBlock outer = transforms.empty() ? TransformBlock{identity(), true} : transforms.back();
    TransformBlock inner{Compose(transform, outer.world_from_local), outer.is_usable};
    if (outer.is_usable) {
        // First the script's own value, about which a message can say most.
        const char *why = why_unusable(transform);
        if (!why)
            why = why_unusable(inner.world_from_local);
        if (why) {
            CallReport(report, "transformBegin")
                .diagnostic(
                    joined({"the transform ", why, "; cameras, placed lights and objects of its block are left out"}));
            inner.is_usable = false;
        }
    }
    transforms.push_back(inner);
}
void Registry::end_transform() { close(transforms, report, "transformEnd", "transformBegin"); }

VtTransform Registry::current_transform() const {
    return transforms.empty() ? identity() : transforms.back().world_from_local;
}

std::vector<FileImager> Registry::writing_imagers() const {
    std::vector<FileImager> result;
    bool has_block = false;
    for (const int index : imager_blocks) {
        const Imager *imager = index < 0 ? nullptr : &imagers[static_cast<std::size_t>(index)];
        has_block |= !imager || std::holds_alternative<FileImager>(*imager);
        if (imager && std::holds_alternative<FileImager>(*imager))
            result.push_back(std::get<FileImager>(*imager));
    }
    if (!has_block)
        if (const FileImager *last = last_of<FileImager>(imagers))
            result.push_back(*last);
    return result;
}

Settings Registry::settings() const {
    for (auto index = imager_blocks.rbegin(); index != imager_blocks.rend(); ++index)
        if (*index >= 0)
            if (const auto *open = std::get_if<Settings>(&imagers[static_cast<std::size_t>(*index)]))
                return *open;
    const Settings *last = last_of<Settings>(imagers);
    return last ? *last : Settings();
}

void Registry::report_open_blocks(const CallReport &call) const {
    const auto check = [&](std::size_t open, const char *end) {
        if (open == 1)
            call.diagnostic(joined({"a block is still open (", end, " is missing)"}));
        else if (open > 1)
            call.diagnostic(joined({std::to_string(open), " blocks are still open (", end, " is missing)"}));
    };
    check(interior_blocks.size(), "interiorEnd");
    check(light_blocks.size(), "lightEnd");
    check(material_blocks.size(), "materialEnd");
    check(transforms.size(), "transformEnd");
}

} // namespace vantor
