// Lights, frozen for a pass: what shines, and how to sample it.
#include "libvantor/lights/light_set.h"

namespace vantor {

namespace {

// From its corner and the neighbours of that, in the order that the front sees as counter-clockwise.
FlatEmitter flat_emitter(const Affine &map, Vec3 a, Vec3 b, Vec3 d, bool is_triangle, Color radiance) {
    const Vec3 corner = map.point(a);
    const Vec3 edge_u = map.point(b) - corner;
    const Vec3 edge_v = map.point(d) - corner;
    const Vec3 normal = cross(edge_u, edge_v);
    const float area = length(normal);
    // A mirroring transform turns the winding round, but not the side that shines.
    const float front = std::copysign(1.0f, map.determinant);
    const auto outline = is_triangle ? FlatEmitter::Outline::Triangle : FlatEmitter::Outline::Parallelogram;
    return {corner, edge_u, edge_v, normal * (front / area), is_triangle ? 0.5f * area : area, outline, 0, radiance};
}

// The image of a disk is an ellipse, whose points are as dense as the disk's.
FlatEmitter flat_emitter(const Affine &map, const Disk &disk, Color radiance) {
    const CanonicalMap world_from_disk = disk.map.then(map);
    const Vec3 edge_u = to_float(world_from_disk.image_z);
    const Vec3 edge_v = to_float(world_from_disk.image_x);
    const Vec3 normal = to_float(unit(world_from_disk.normal({0, 1, 0})));
    const auto squared_hole = static_cast<float>(disk.hole * disk.hole);
    const float area = pi * (1 - squared_hole) * length(cross(edge_u, edge_v));
    return {to_float(world_from_disk.offset), edge_u,       edge_v,  normal, area,
            FlatEmitter::Outline::Ring,       squared_hole, radiance};
}

// A point on it, uniform in area.
Point2f point_on(const FlatEmitter &emitter, Point2f numbers) {
    if (emitter.outline == FlatEmitter::Outline::Triangle)
        return warp::triangle(numbers);
    if (emitter.outline == FlatEmitter::Outline::Parallelogram)
        return numbers;
    // A disk's squared radius is uniform, and so is a ring's.
    const Vec3 p = warp::disk({emitter.squared_hole + (1 - emitter.squared_hole) * numbers.u, numbers.v});
    return {p.x, p.y};
}

float power(const FlatEmitter &emitter) { return pi * emitter.area * luminance(emitter.radiance); }

// Of an ellipsoid roughly: the area of a sphere of the same volume.
float power_of_sphere(const Affine &world_from_unit, Color radiance) {
    const float squared_radius = std::pow(std::fabs(world_from_unit.determinant), 2 / 3.0f);
    return pi * 4 * pi * squared_radius * luminance(radiance);
}

// One minus the cosine of the angle under which the unit sphere is seen, from a point outside it.
float one_minus_cos_theta(float squared_distance) {
    const float squared_sine = 1 / squared_distance;
    return squared_sine / (1 + std::sqrt(1 - squared_sine));
}

// The light of an emitter at the sampled point; false where its front does not face the reference.
bool sample_source(const FlatEmitter &emitter, Vec3 reference, Point2f numbers, LightSample &result) {
    const Point2f uv = point_on(emitter, numbers);
    const Vec3 point = emitter.corner + emitter.edge_u * uv.u + emitter.edge_v * uv.v;
    const Vec3 difference = point - reference;
    const float squared_distance = dot(difference, difference);
    const float distance = std::sqrt(squared_distance);
    const float cosine = -dot(difference, emitter.normal) / distance;
    if (!(cosine > 0))
        return false;

    // From area to solid angle: dw = cos dA / r^2.
    result.to_light = difference * (1 / distance);
    result.end = point + emitter.normal * clearance_of(point, distance);
    result.has_extent = true;
    result.pdf = squared_distance / (cosine * emitter.area);
    result.contribution = emitter.radiance;
    return true;
}

float pdf_of(const FlatEmitter &emitter, Vec3 reference, Vec3 direction, const Hit &hit) {
    const Vec3 difference = hit.point - reference;
    const float cosine = -dot(direction, emitter.normal);
    return cosine > 0 ? dot(difference, difference) / (cosine * emitter.area) : 0.0f;
}

// The solid angle of a linear map: a cone around the unit direction d of the unit sphere's space has, in world space,
// |det M| / |d M|^3 of its solid angle. With w the unit direction d M / |d M| of the world, |d M| is 1 / |w M^-1|.
float pdf_of(const SphereEmitter &emitter, Vec3 reference, Vec3 direction, const Hit &) {
    const Vec3 from = emitter.world_from_unit->point_back(reference);
    const float squared_distance = dot(from, from);
    if (!(squared_distance > 1))
        return 0;
    const float inverse_stretch = length(emitter.world_from_unit->inverse(direction));
    const float determinant = std::fabs(emitter.world_from_unit->determinant);
    return warp::cone_pdf(one_minus_cos_theta(squared_distance)) /
           (inverse_stretch * inverse_stretch * inverse_stretch * determinant);
}

// Uniform over the cone of the unit sphere, as the reference point sees it in the unit sphere's space.
bool sample_source(const SphereEmitter &emitter, Vec3 reference, Point2f numbers, LightSample &result) {
    const Affine &map = *emitter.world_from_unit;
    const Vec3 from = map.point_back(reference);
    const float squared_distance = dot(from, from);
    if (!(squared_distance > 1))
        return false;
    const float distance = std::sqrt(squared_distance);
    const Frame frame(from * (-1 / distance));
    const Vec3 local = warp::cone(numbers, one_minus_cos_theta(squared_distance));
    const Vec3 direction = frame.world_from_local(local);

    // The nearer crossing of the sphere, in the frame around its centre: from + direction * t would cancel far away.
    const float squared_sine = local.x * local.x + local.y * local.y;
    const float half_chord = std::sqrt(std::max(0.0f, 1 - squared_distance * squared_sine));
    const float t = distance * local.z - half_chord;
    const float towards_reference = distance * squared_sine + local.z * half_chord;
    const Vec3 on_sphere = frame.world_from_local({local.x * t, local.y * t, -towards_reference});
    const Vec3 point = map.point(on_sphere);

    result.to_light = normalized(map.linear(direction));
    result.end = point + normalized(map.normals(on_sphere)) * clearance_of(point, length(point - reference));
    result.has_extent = true;
    result.pdf = pdf_of(emitter, reference, result.to_light, Hit());
    result.contribution = emitter.radiance;
    return true;
}

bool sample_source(const PointLight &light, Vec3 reference, Point2f, LightSample &result) {
    const Vec3 difference = light.position - reference;
    const float squared_distance = dot(difference, difference);
    if (!(squared_distance > 0))
        return false;
    result.to_light = difference * (1 / std::sqrt(squared_distance));
    result.end = light.position;
    result.has_extent = false;
    result.contribution = light.intensity * (1 / squared_distance);
    return true;
}

bool sample_source(const SpotLight &light, Vec3 reference, Point2f numbers, LightSample &result) {
    if (!sample_source(PointLight{light.position, light.intensity}, reference, numbers, result))
        return false;
    const float share = light.falloff(-result.to_light);
    result.contribution = result.contribution * share;
    return share > 0;
}

bool sample_source(const DistantLight &light, Vec3, Point2f, LightSample &result) {
    result.to_light = light.to_light;
    result.is_distant = true;
    result.has_extent = false;
    result.contribution = light.irradiance;
    return true;
}

bool sample_source(const DiskSource &disk, Vec3, Point2f numbers, LightSample &result) {
    result.to_light = Frame(disk.to_light).world_from_local(warp::cone(numbers, disk.one_minus_cos_theta));
    result.is_distant = true;
    result.has_extent = true;
    result.pdf = warp::cone_pdf(disk.one_minus_cos_theta);
    result.contribution = disk.radiance;
    return true;
}

bool sample_source(const EnvironmentSource &source, Vec3, Point2f numbers, LightSample &result) {
    result.to_light = source.environment->sample(numbers, result.pdf);
    result.is_distant = true;
    result.has_extent = true;
    result.contribution = source.environment->radiance(result.to_light);
    return true;
}

// Never chosen, as it has no power.
bool sample_source(const UnsampledEmitter &, Vec3, Point2f, LightSample &) { return false; }

// A disk of radiance L has the irradiance pi L sin^2, with the angle from its middle to its edge.
DiskSource disk_of(const DistantLight &light) {
    const float squared_sine = light.one_minus_cos_theta * (2 - light.one_minus_cos_theta);
    return {light.to_light, light.one_minus_cos_theta, light.irradiance * (inverse_pi / squared_sine)};
}

bool contains(const DiskSource &disk, Vec3 direction) {
    return one_minus_cos_between(direction, disk.to_light) <= disk.one_minus_cos_theta;
}

} // namespace

LightSet::LightSet(std::span<const Light> lights, std::span<const Placement> placements, float scene_radius)
    : shares_up_to{0.0} {
    std::vector<std::size_t> firsts; // the first source of each light, or of each object that shines
    emitters_of.reserve(placements.size());
    for (const Placement &placement : placements) {
        Emitters emitters{-1, 0};
        if (placement.light >= 0) {
            const Light &light = lights[static_cast<std::size_t>(placement.light)];
            const Color radiance = std::get<AreaLight>(light.kind).radiance;
            firsts.push_back(sources.size());
            if (light.is_on && !is_black(radiance))
                emitters = add_emitters(placement, radiance);
        }
        emitters_of.push_back(emitters);
    }
    for (const Light &light : lights) {
        firsts.push_back(sources.size());
        if (light.is_on)
            add_light(light, scene_radius);
    }
    firsts.push_back(sources.size());
    share_out(firsts);
}

// Most of the choice goes by power, the rest evenly: the power of a light at infinity grows with the scene, and must
// not leave a lamp in its middle without samples.
void LightSet::share_out(std::span<const std::size_t> firsts) {
    constexpr double even_part = 0.25;
    const std::vector<double> power_up_to = shares_up_to;
    const auto power_between = [&](std::size_t first, std::size_t end) {
        return power_up_to[end] - power_up_to[first];
    };
    std::size_t shining = 0;
    for (std::size_t i = 0; i + 1 < firsts.size(); ++i)
        shining += power_between(firsts[i], firsts[i + 1]) > 0;
    if (shining == 0)
        return;

    const double total = power_up_to.back();
    for (std::size_t i = 0; i + 1 < firsts.size(); ++i) {
        const double power = power_between(firsts[i], firsts[i + 1]);
        const double factor =
            power > 0 ? (1 - even_part) / total + even_part / (static_cast<double>(shining) * power) : 0.0;
        for (std::size_t source = firsts[i]; source < firsts[i + 1]; ++source)
            shares_up_to[source + 1] = shares_up_to[source] + power_between(source, source + 1) * factor;
    }
    // Up to 1, whatever rounding says.
    const double sum = shares_up_to.back();
    for (double &share : shares_up_to)
        share /= sum;
}

void LightSet::add_light(const Light &light, float scene_radius) {
    if (const auto *point = std::get_if<PointLight>(&light.kind)) {
        add(*point, 4 * pi * luminance(point->intensity));
    } else if (const auto *spot = std::get_if<SpotLight>(&light.kind)) {
        // The whole cone inside, and half of the ring around it: the mean of 3x^2 - 2x^3.
        const float solid_angle = pi * (spot->one_minus_cos_beam + spot->one_minus_cos_cutoff);
        add(*spot, solid_angle * luminance(spot->intensity));
    } else if (const auto *distant = std::get_if<DistantLight>(&light.kind)) {
        add_distant(*distant, scene_radius);
    } else if (const auto *environment = std::get_if<EnvironmentLight>(&light.kind)) {
        add_environment(*environment, scene_radius);
    } else if (const auto *daylight = std::get_if<SkyLight>(&light.kind)) {
        add_environment(daylight->sky, scene_radius);
        if (daylight->sun)
            add_distant(*daylight->sun, scene_radius);
    }
}

void LightSet::add_distant(const DistantLight &light, float scene_radius) {
    const float power = pi * scene_radius * scene_radius * luminance(light.irradiance);
    if (light.one_minus_cos_theta > 0) {
        infinite_lights.push_back(sources.size());
        add(disk_of(light), power);
    } else {
        add(light, power);
    }
}

void LightSet::add_environment(const EnvironmentLight &light, float scene_radius) {
    auto environment = std::make_unique<const Environment>(light);
    if (environment->is_black())
        return;
    const float power = pi * scene_radius * scene_radius * environment->flux();
    infinite_lights.push_back(sources.size());
    add(EnvironmentSource{std::move(environment)}, power);
}

void LightSet::add(Source source, float its_power) {
    sources.push_back(std::move(source));
    shares_up_to.push_back(shares_up_to.back() + (std::isfinite(its_power) ? its_power : 0.0f));
}

LightSet::Emitters LightSet::add_emitters(const Placement &placement, Color radiance) {
    const Emitters one_for_each{static_cast<int>(sources.size()), 1};
    const Emitters one_for_all{one_for_each.first, 0};
    // Which points of it there are, or how many times, nothing here knows.
    if (placement.instances || !placement.object->trimmers.empty()) {
        add(UnsampledEmitter{radiance}, 0);
        return one_for_all;
    }
    const Affine map = to_float(placement.world_from_object);
    const auto add_flat = [&](Vec3 a, Vec3 b, Vec3 d, bool is_triangle) {
        const FlatEmitter emitter = flat_emitter(map, a, b, d, is_triangle, radiance);
        add(emitter, power(emitter));
    };
    if (const auto *mesh = std::get_if<TriangleMesh>(&placement.object->shape)) {
        for (const TriangleMesh::Triangle &t : mesh->triangles)
            add_flat(mesh->points[t[0]], mesh->points[t[1]], mesh->points[t[2]], true);
    } else if (const auto *quads = std::get_if<Quads>(&placement.object->shape)) {
        for (const Quads::Corners &c : quads->corners)
            add_flat(c[0], c[1], c[3], false);
    } else if (const auto *sphere = std::get_if<Sphere>(&placement.object->shape)) {
        VtTransform unit_to_sphere = identity();
        for (int i = 0; i < 3; ++i)
            unit_to_sphere[i][i] = sphere->radius;
        unit_to_sphere[3] = {sphere->center.x, sphere->center.y, sphere->center.z, 1.0};
        auto world_from_unit =
            std::make_unique<const Affine>(to_float(Compose(unit_to_sphere, placement.world_from_object)));
        const float power = power_of_sphere(*world_from_unit, radiance);
        add(SphereEmitter{std::move(world_from_unit), radiance}, power);
        return one_for_all;
    } else if (const auto *disk = std::get_if<Disk>(&placement.object->shape)) {
        const FlatEmitter emitter = flat_emitter(map, *disk, radiance);
        add(emitter, power(emitter));
        return one_for_all;
    } else {
        add(UnsampledEmitter{radiance}, 0);
        return one_for_all;
    }
    return one_for_each;
}

int LightSet::chosen_source(double choice) const {
    if (!has_choice())
        return is_empty() ? -1 : 0;
    // The first share above the number. Sources without power have an empty share and are never found.
    const auto above = std::upper_bound(shares_up_to.begin(), shares_up_to.end(), choice);
    return above == shares_up_to.end() ? -1 : static_cast<int>(above - shares_up_to.begin()) - 1;
}

const Vec3 *LightSet::position_of(double choice) const {
    const int chosen = chosen_source(choice);
    if (chosen < 0)
        return nullptr;
    const Source &source = sources[static_cast<std::size_t>(chosen)];
    if (const auto *point = std::get_if<PointLight>(&source))
        return &point->position;
    if (const auto *spot = std::get_if<SpotLight>(&source))
        return &spot->position;
    return nullptr;
}

bool LightSet::sample(Vec3 reference, double choice, Point2f numbers, LightSample &result) const {
    const int found = chosen_source(choice);
    if (found < 0)
        return false;
    const auto index = static_cast<std::size_t>(found);
    const auto chosen = static_cast<float>(choice_pmf(index));

    result.is_distant = false;
    const bool arrives = std::visit(
        [&](const auto &source) { return sample_source(source, reference, numbers, result); }, sources[index]);
    if (!arrives)
        return false;

    if (!result.has_extent) {
        result.contribution = result.contribution * (1 / chosen);
        return true;
    }
    result.pdf *= chosen;
    if (!(result.pdf > 0 && std::isfinite(result.pdf)))
        return false;
    result.contribution = result.contribution * (1 / result.pdf);
    return true;
}

Color LightSet::radiance(int emitter) const {
    const Source &source = sources[static_cast<std::size_t>(emitter)];
    if (const auto *flat = std::get_if<FlatEmitter>(&source))
        return flat->radiance;
    if (const auto *sphere = std::get_if<SphereEmitter>(&source))
        return sphere->radiance;
    return std::get<UnsampledEmitter>(source).radiance;
}

float LightSet::pdf(int emitter, Vec3 reference, Vec3 direction, const Hit &hit) const {
    const auto index = static_cast<std::size_t>(emitter);
    const auto chosen = static_cast<float>(choice_pmf(index));
    if (const auto *flat = std::get_if<FlatEmitter>(&sources[index]))
        return chosen * pdf_of(*flat, reference, direction, hit);
    if (const auto *sphere = std::get_if<SphereEmitter>(&sources[index]))
        return chosen * pdf_of(*sphere, reference, direction, hit);
    return 0;
}

float LightSet::seen_at_infinity(std::size_t source, Vec3 direction, Color &radiance) const {
    const auto chosen = static_cast<float>(choice_pmf(source));
    if (const auto *disk = std::get_if<DiskSource>(&sources[source])) {
        if (!contains(*disk, direction))
            return 0;
        radiance = disk->radiance;
        return chosen * warp::cone_pdf(disk->one_minus_cos_theta);
    }
    const Environment::Seen seen = std::get<EnvironmentSource>(sources[source]).environment->seen(direction);
    radiance = seen.radiance;
    return chosen * seen.pdf;
}

} // namespace vantor
