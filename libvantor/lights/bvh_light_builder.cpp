// BVH light builder: puts finite lights into the nodes of a tree.
#include "libvantor/lights/bvh_light_builder.h"

#include "libvantor/base/threads.h"

#include <algorithm>

namespace vantor {

namespace {

using FiniteLight = BvhLightSampler::FiniteLight;
using Node = BvhLightSampler::Node;
using Range = std::span<FiniteLight>;
constexpr std::size_t width = BvhLightSampler::width;

// What lights are like, as far as sums and extremes of theirs tell.
struct Summary {
    Vec3 low{INFINITY, INFINITY, INFINITY};
    Vec3 high{-INFINITY, -INFINITY, -INFINITY};
    Vec3 axes;
    float intensity = 0;
    std::size_t count = 0;

    void include(const Summary &other) {
        low = {std::min(low.x, other.low.x), std::min(low.y, other.low.y), std::min(low.z, other.low.z)};
        high = {std::max(high.x, other.high.x), std::max(high.y, other.high.y), std::max(high.z, other.high.z)};
        axes = axes + other.axes;
        intensity += other.intensity;
        count += other.count;
    }

    float cost() const {
        if (count == 0)
            return 0;
        const Vec3 size = high - low;
        // The mean of unit vectors that fill a cone evenly is (1 + cos) / 2 long. The measure of Conty Estevez and
        // Kulla goes from pi, if all are the same, to 4 pi, if they are everywhere.
        const float spread = 4 - 3 * length(axes) / static_cast<float>(count);
        return intensity * dot(size, size) * spread;
    }
};

Summary summary_of(const LightBounds &bounds) {
    // What shines in all directions adds no axis.
    return {bounds.center - bounds.half_extent, bounds.center + bounds.half_extent,
            bounds.cos_normals > -1 ? bounds.axis : Vec3(), bounds.intensity, 1};
}

constexpr float Vec3::*coordinates[] = {&Vec3::x, &Vec3::y, &Vec3::z};

// A number of a light by which a range is divided, from least to most.
struct Key {
    Vec3 LightBounds::*vector;
    float Vec3::*coordinate;
    float least;
    float most;

    float of(const FiniteLight &light) const { return light.bounds.*vector.*coordinate; }
};

// The coordinate in which the lights differ most: that of the centres, or if these are all in one point, of the axes.
Key widest_key(Range lights) {
    Key widest{};
    for (Vec3 LightBounds::*vector : {&LightBounds::center, &LightBounds::axis}) {
        Vec3 low{INFINITY, INFINITY, INFINITY};
        Vec3 high = -low;
        for (const FiniteLight &light : lights) {
            const Vec3 v = light.bounds.*vector;
            low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
            high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
        }
        for (float Vec3::*coordinate : coordinates)
            if (high.*coordinate - low.*coordinate > widest.most - widest.least)
                widest = {vector, coordinate, low.*coordinate, high.*coordinate};
        if (widest.most > widest.least)
            break;
    }
    return widest;
}

constexpr std::size_t bins = 16;

struct Part {
    Range lights;
    float cost;
};

// In two, neither empty, so that each side is likely to bring a point either much or nothing. The cost of a side is its
// intensity, times the square of its extent, times how far its normals spread: the orientation heuristic of Conty
// Estevez and Kulla, 2018, section 4.4, with measures that sums over bins tell.
std::array<Part, 2> split(Range lights) {
    const auto parts = [&](std::size_t first, float cost_of_first, float cost_of_rest) {
        return std::array<Part, 2>{{{lights.first(first), cost_of_first}, {lights.subspan(first), cost_of_rest}}};
    };
    const Key key = widest_key(lights);
    const float scale = static_cast<float>(bins) / (key.most - key.least);
    if (!(key.most > key.least) || !std::isfinite(scale))
        return parts(lights.size() / 2, 0, 0);
    const auto bin_of = [&](const FiniteLight &light) {
        return std::min(static_cast<std::size_t>((key.of(light) - key.least) * scale), bins - 1);
    };
    std::array<Summary, bins> sums;
    for (const FiniteLight &light : lights)
        sums[bin_of(light)].include(summary_of(light.bounds));

    // Of what is from each bin on; there is something in the first bin, and in the last.
    std::array<float, bins> costs_after{};
    Summary after;
    for (std::size_t i = bins - 1; i > 0; --i) {
        after.include(sums[i]);
        costs_after[i] = after.cost();
    }
    Summary before;
    std::size_t best = 1;
    float best_before = 0;
    float least_cost = INFINITY;
    for (std::size_t i = 1; i < bins; ++i) {
        before.include(sums[i - 1]);
        const float cost = before.cost();
        if (cost + costs_after[i] < least_cost) {
            least_cost = cost + costs_after[i];
            best_before = cost;
            best = i;
        }
    }
    const auto middle =
        std::partition(lights.begin(), lights.end(), [&](const FiniteLight &light) { return bin_of(light) < best; });
    return parts(static_cast<std::size_t>(middle - lights.begin()), best_before, costs_after[best]);
}

// Into at most `width` parts, the most costly of those that do not fit into one node first. What free lanes can hold is
// then taken apart into single lights.
std::size_t divide(Range lights, std::array<Range, width> &ranges) {
    std::array<Part, width> parts;
    parts[0] = {lights, 0};
    std::size_t count = 1;
    while (count < width) {
        Part *next = nullptr;
        for (Part &part : std::span(parts).first(count))
            if (part.lights.size() > width && (!next || part.cost > next->cost))
                next = &part;
        if (!next)
            break;
        const std::array<Part, 2> halves = split(next->lights);
        *next = halves[0];
        parts[count++] = halves[1];
    }
    for (std::size_t i = 0; i < count; ++i)
        ranges[i] = parts[i].lights;
    for (std::size_t i = 0, before = count; i < before; ++i)
        if (ranges[i].size() > 1 && count + ranges[i].size() - 1 <= width) {
            const Range whole = ranges[i];
            ranges[i] = whole.first(1);
            for (std::size_t j = 1; j < whole.size(); ++j)
                ranges[count++] = whole.subspan(j, 1);
        }
    return count;
}

class Builder {
  public:
    std::vector<Node> nodes;

    // Adds the node of a range, and those below it. Returns what bounds it.
    LightBounds add(Range lights, std::uint32_t parent) {
        std::array<Range, width> parts;
        const std::size_t count = divide(lights, parts);
        const std::size_t index = nodes.size();
        nodes.push_back({});
        nodes[index].parent = parent;
        std::array<LightBounds, width> bounds;
        // Large subtrees are built side by side, each with nodes of its own.
        constexpr std::size_t large = 20000;
        std::array<Builder, width> builders;
        for_each_in_parallel(lights.size() > large ? count : 0, [&](std::size_t i) {
            if (parts[i].size() > large)
                bounds[i] = builders[i].add(parts[i], BvhLightSampler::nowhere);
        });
        for (std::size_t i = 0; i < count; ++i) {
            const auto slot = static_cast<std::uint32_t>(index * width + i);
            if (parts[i].size() == 1) {
                bounds[i] = parts[i].front().bounds;
                nodes[index].children[i] = BvhLightSampler::is_light + parts[i].front().light;
            } else {
                nodes[index].children[i] = static_cast<std::uint32_t>(nodes.size());
                if (builders[i].nodes.empty())
                    bounds[i] = add(parts[i], slot);
                else
                    append(builders[i].nodes, slot);
            }
            set_lane(nodes[index], i, bounds[i]);
        }
        return united(std::span(bounds).first(count));
    }

  private:
    // The first is the root of the others.
    void append(std::vector<Node> &subtree, std::uint32_t parent) {
        const auto offset = static_cast<std::uint32_t>(nodes.size());
        const auto slot_offset = static_cast<std::uint32_t>(offset * width);
        for (Node &node : subtree) {
            node.parent = node.parent == BvhLightSampler::nowhere ? parent : node.parent + slot_offset;
            for (std::size_t i = 0; i < width; ++i)
                if (node.intensity[i] > 0 && node.children[i] < BvhLightSampler::is_light)
                    node.children[i] += offset;
        }
        nodes.insert(nodes.end(), subtree.begin(), subtree.end());
        std::vector<Node>().swap(subtree);
    }

    static void set_lane(Node &node, std::size_t i, const LightBounds &bounds) {
        node.center_x[i] = bounds.center.x;
        node.center_y[i] = bounds.center.y;
        node.center_z[i] = bounds.center.z;
        node.half_x[i] = bounds.half_extent.x;
        node.half_y[i] = bounds.half_extent.y;
        node.half_z[i] = bounds.half_extent.z;
        node.axis_x[i] = bounds.axis.x;
        node.axis_y[i] = bounds.axis.y;
        node.axis_z[i] = bounds.axis.z;
        node.cos_normals[i] = bounds.cos_normals;
        node.cos_emission[i] = bounds.cos_emission;
        node.intensity[i] = bounds.intensity;
    }
};

} // namespace

std::vector<Node> build_light_nodes(Range lights) {
    Builder builder;
    if (!lights.empty())
        builder.add(lights, BvhLightSampler::nowhere);
    return std::move(builder.nodes);
}

BvhLightSampler::BvhLightSampler(std::span<FiniteLight> finite, std::span<const InfiniteLight> infinite,
                                 std::size_t lights)
    : slots(lights, nowhere) {
    const auto shines = [](float power) { return power > 0 && std::isfinite(power); };
    for (const InfiniteLight &light : infinite)
        if (shines(light.bounds.fluence)) {
            slots[light.light] = is_light + static_cast<std::uint32_t>(infinite_lights.size());
            infinite_lights.push_back(light);
        }
    const auto end = std::partition(finite.begin(), finite.end(),
                                    [&](const FiniteLight &light) { return shines(light.bounds.intensity); });
    finite = finite.first(static_cast<std::size_t>(end - finite.begin()));

    // Intensities as parts of the largest are far from the ends of the floats' range.
    float most = 0;
    for (const FiniteLight &light : finite)
        most = std::max(most, light.bounds.intensity);
    for (FiniteLight &light : finite)
        light.bounds.intensity /= most;
    if (most > 0)
        intensity_scale = 1 / most;
    if (finite.size() + infinite_lights.size() == 1)
        only_light = finite.empty() ? infinite_lights.front().light : finite.front().light;

    nodes = build_light_nodes(finite);
    for (std::size_t i = 0; i < nodes.size(); ++i)
        for (std::size_t lane = 0; lane < width; ++lane)
            if (nodes[i].intensity[lane] > 0 && nodes[i].children[lane] >= is_light)
                slots[nodes[i].children[lane] - is_light] = static_cast<std::uint32_t>(i * width + lane);
}

} // namespace vantor
