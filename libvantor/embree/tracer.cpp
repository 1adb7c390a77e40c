// Tracer: rays against everything that is placed.
#include "libvantor/embree/tracer.h"

#include "libvantor/embree/acceleration_structure.h"
#include "libvantor/embree/all_hits.h"

#include <limits>
#include <type_traits>

namespace vantor {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

// Rays go to Embree in packets, as wide as the processor takes at once: 16, or else 8. Narrower ones are not worth it.
template <class Rays> constexpr std::size_t width_of = std::extent_v<decltype(Rays::tfar)>;

template <class Rays>
void set_ray(Rays &packet, std::size_t lane, Vec3 from, Vec3 direction, float reach, RayMask mask = mask_of_all) {
    packet.org_x[lane] = from.x;
    packet.org_y[lane] = from.y;
    packet.org_z[lane] = from.z;
    packet.dir_x[lane] = direction.x;
    packet.dir_y[lane] = direction.y;
    packet.dir_z[lane] = direction.z;
    packet.tnear[lane] = 0;
    packet.tfar[lane] = reach;
    packet.time[lane] = 0;
    packet.mask[lane] = mask;
    packet.id[lane] = static_cast<unsigned>(lane);
    packet.flags[lane] = 0;
}

// Lanes that are not in use are looked at all the same, so they hold the first ray.
std::size_t in_use(std::size_t lane, std::size_t used) { return lane < used ? lane : 0; }

// Which lanes of a packet are in use: -1 if so, 0 if not. Embree wants it aligned like the packet.
template <std::size_t width> struct alignas(4 * width) Mask {
    int lanes[width];

    explicit Mask(std::size_t used) {
        for (std::size_t i = 0; i < width; ++i)
            lanes[i] = i < used ? -1 : 0;
    }
};

// What the rays of a packet have crossed where they start.
template <std::size_t width> class CrossedInPacket {
  public:
    CrossedInPacket(RayQuery &for_query, const AccelerationStructure &structure) : query(for_query) {
        query.query.structure = &structure;
    }

    // The filter is called only if there is anything to refuse.
    void set(std::span<const RayStart> starts) {
        if (std::ranges::any_of(starts, [](const RayStart &start) { return !start.crossed.is_empty(); }))
            set_all(starts);
        else
            query.set_crossed(nullptr);
    }
    void set_all(std::span<const RayStart> starts) {
        for (std::size_t lane = 0; lane < starts.size(); ++lane)
            lists[lane] = &starts[lane].crossed;
        query.set_crossed(lists);
    }

  private:
    RayQuery &query;
    const CrossedSurfaces *lists[width]{};
};

} // namespace

Tracer::Tracer()
    : structure(std::make_unique<AccelerationStructure>()),
      has_wide_packets(rtcGetDeviceProperty(structure->of_device(), RTC_DEVICE_PROPERTY_NATIVE_RAY16_SUPPORTED) != 0) {}

void Tracer::update(std::span<const Placement> placements, const Interrupt &interrupt) {
    structure->update(placements, interrupt);
    may_cross = structure->can_filter_hits();
}

const BuildCounts &Tracer::builds() const { return structure->builds(); }

Tracer::~Tracer() = default;
Tracer::Tracer(Tracer &&) noexcept = default;

void Tracer::intersect(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const {
    intersect(rays, {}, are_coherent, hits);
}

namespace {

RayMask mask_of(std::span<const RayMask> masks, std::size_t ray) { return masks.empty() ? mask_of_all : masks[ray]; }

} // namespace

void Tracer::intersect(std::span<const Ray> rays, std::span<const RayStart> starts, bool are_coherent,
                       std::span<Hit> hits, std::span<const RayMask> masks) const {
    if (has_wide_packets)
        intersect_in_packets<RTCRayHit16>(rays, starts, are_coherent, hits, masks);
    else
        intersect_in_packets<RTCRayHit8>(rays, starts, are_coherent, hits, masks);
}

template <class Packet> void Tracer::intersect_in_packets(std::span<const Ray> rays, std::span<const RayStart> starts,
                                                          bool are_coherent, std::span<Hit> hits,
                                                          std::span<const RayMask> masks) const {
    constexpr std::size_t width = width_of<decltype(Packet::ray)>;
    RayQuery query(are_coherent);
    CrossedInPacket<width> crossed(query, *structure);

    Packet packet;
    for (std::size_t first = 0; first < rays.size(); first += width) {
        const std::size_t used = std::min(width, rays.size() - first);
        for (std::size_t lane = 0; lane < width; ++lane) {
            const std::size_t i = first + in_use(lane, used);
            set_ray(packet.ray, lane, rays[i].origin, rays[i].direction, infinity, mask_of(masks, i));
            packet.hit.geomID[lane] = RTC_INVALID_GEOMETRY_ID;
            packet.hit.instID[0][lane] = RTC_INVALID_GEOMETRY_ID;
        }
        if (!starts.empty())
            crossed.set(starts.subspan(first, used));
        query.intersect(Mask<width>(used).lanes, structure->top_level(), packet);
        for (std::size_t lane = 0; lane < used; ++lane)
            decode(packet, lane, rays[first + lane], hits[first + lane]);
    }
    if (!starts.empty())
        leave_before_entering<Packet>(rays, starts, hits, masks);
}

// Where a ray enters a body, another one may end that it is in, within rounding at the same place: that comes first.
template <class Packet> void Tracer::leave_before_entering(std::span<const Ray> rays, std::span<const RayStart> starts,
                                                           std::span<Hit> hits, std::span<const RayMask> masks) const {
    constexpr std::size_t width = width_of<decltype(Packet::ray)>;
    RayQuery query(false);
    CrossedInPacket<width> crossed(query, *structure);
    query.query.finds_only_left = true;

    Packet packet{};
    std::array<std::size_t, width> indexes;
    std::array<Ray, width> short_rays;
    std::array<RayStart, width> of_lanes;
    std::size_t used = 0;
    const auto trace = [&] {
        crossed.set_all(std::span(of_lanes).first(used));
        query.intersect(Mask<width>(used).lanes, structure->top_level(), packet);
        for (std::size_t lane = 0; lane < used; ++lane) {
            Hit found;
            decode(packet, lane, short_rays[lane], found);
            if (!found.exists)
                continue;
            Hit &hit = hits[indexes[lane]];
            found.distance = hit.distance + dot(found.point - hit.point, short_rays[lane].direction);
            hit = found;
        }
        used = 0;
    };
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const Hit &hit = hits[i];
        const Vec3 direction = rays[i].direction;
        if (!hit.exists || dot(hit.geometric_normal, direction) >= 0 ||
            !structure->decoding(hit.placement).may_be_crossed)
            continue;
        // From just before the hit, where the ray starts far away: its lengths are too rough there. What it has crossed
        // counts next to its start.
        const float margin = 2 * margin_of(hit, direction);
        const bool is_near = hit.distance <= 2 * starts[i].crossed.reach();
        short_rays[used] = {is_near ? rays[i].origin : hit.point - direction * margin, direction};
        of_lanes[used] = is_near ? starts[i] : RayStart{short_rays[used].origin};
        const float reach = (is_near ? hit.distance : margin) + margin;
        // Its own other side comes after it, however thin it is.
        of_lanes[used].crossed.add(hit, true, reach);
        set_ray(packet.ray, used, short_rays[used].origin, direction, reach, mask_of(masks, i));
        packet.hit.geomID[used] = RTC_INVALID_GEOMETRY_ID;
        packet.hit.instID[0][used] = RTC_INVALID_GEOMETRY_ID;
        indexes[used] = i;
        if (++used == width)
            trace();
    }
    if (used > 0)
        trace();
}

void Tracer::occluded(std::span<const Segment> segments, std::span<char> are_occluded) const {
    occluded(segments, {}, are_occluded);
}

void Tracer::occluded(std::span<const Segment> segments, std::span<const RayStart> starts,
                      std::span<char> are_occluded) const {
    if (has_wide_packets)
        occluded_in_packets<RTCRay16>(segments, starts, are_occluded);
    else
        occluded_in_packets<RTCRay8>(segments, starts, are_occluded);
}

template <class Packet> void Tracer::occluded_in_packets(std::span<const Segment> segments,
                                                         std::span<const RayStart> starts,
                                                         std::span<char> are_occluded) const {
    constexpr std::size_t width = width_of<Packet>;
    RayQuery query(false);
    CrossedInPacket<width> crossed(query, *structure);

    Packet packet;
    for (std::size_t first = 0; first < segments.size(); first += width) {
        const std::size_t used = std::min(width, segments.size() - first);
        for (std::size_t lane = 0; lane < width; ++lane) {
            const Segment &segment = segments[first + in_use(lane, used)];
            set_ray(packet, lane, segment.from, segment.direction, segment.reach);
        }
        if (!starts.empty())
            crossed.set(starts.subspan(first, used));
        query.occlude(Mask<width>(used).lanes, structure->top_level(), packet);
        // Embree marks an occluded ray by a negative end.
        for (std::size_t lane = 0; lane < used; ++lane)
            are_occluded[first + lane] = packet.tfar[lane] < 0 ? 1 : 0;
    }
}

bool Tracer::can_intersect_all() const { return may_cross; }

std::vector<Hit> Tracer::intersect_all(const Ray &ray) const {
    RTCRayHit query{};
    query.ray.org_x = ray.origin.x;
    query.ray.org_y = ray.origin.y;
    query.ray.org_z = ray.origin.z;
    query.ray.dir_x = ray.direction.x;
    query.ray.dir_y = ray.direction.y;
    query.ray.dir_z = ray.direction.z;
    query.ray.tfar = infinity;
    query.ray.mask = mask_of_all;
    query.ray.id = collecting_ray;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    all_hits.found.clear();
    collect_hits(structure->top_level(), query);

    std::vector<Hit> hits;
    RTCRayHit8 packet{};
    for (const EmbreeHit &found : all_hits.found) {
        packet.ray.tfar[0] = found.distance;
        packet.hit.Ng_x[0] = found.normal[0];
        packet.hit.Ng_y[0] = found.normal[1];
        packet.hit.Ng_z[0] = found.normal[2];
        packet.hit.u[0] = found.on_primitive[0];
        packet.hit.v[0] = found.on_primitive[1];
        packet.hit.primID[0] = found.primitive;
        packet.hit.geomID[0] = found.geometry;
        packet.hit.instID[0][0] = found.instance;
        decode(packet, 0, ray, hits.emplace_back());
        if (!hits.back().exists)
            hits.pop_back();
    }
    std::ranges::sort(hits, [](const Hit &a, const Hit &b) { return a.distance < b.distance; });
    return hits;
}

float Tracer::radius() const {
    RTCBounds bounds;
    rtcGetSceneBounds(structure->top_level(), &bounds);
    const Vec3 diagonal{bounds.upper_x - bounds.lower_x, bounds.upper_y - bounds.lower_y,
                        bounds.upper_z - bounds.lower_z};
    // The bounds of an empty scene are inside out.
    return diagonal.x >= 0 ? 0.5f * length(diagonal) : 0.0f;
}

} // namespace vantor
