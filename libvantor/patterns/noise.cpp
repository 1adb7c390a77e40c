// Noise: a fractal sum of gradient noise.
#include "libvantor/patterns/noise.h"

namespace vantor {

namespace {

// A coordinate as the lattice sees it: the lattice point below, modulo its period, and how far beyond it lies.
struct LatticePlace {
    std::uint32_t below;
    float beyond;

    explicit LatticePlace(float x) {
        // Octaves may lie beyond what floats can count.
        if (!(std::fabs(x) <= 1e18f))
            x = 0;
        constexpr float period = 65536;
        const float whole = std::floor(x);
        below = static_cast<std::uint32_t>(whole - period * std::floor(whole / period)) & 0xffffu;
        beyond = x - whole;
    }
};

// A layer of lattice points, all of one z.
class LatticeLayer {
  public:
    explicit LatticeLayer(std::uint32_t z) : layer_hash(sobol::hash((z & 0xffffu) + 1)) {}

    // The product of an offset with the gradient at a lattice point, which is one of the twelve directions from the
    // middle of a cube to those of its edges; four of them count twice.
    float gradient_product(std::uint32_t x, std::uint32_t y, Vec3 offset) const {
        const std::uint32_t cell = (x & 0xffffu) | (y & 0xffffu) << 16;
        const std::uint32_t h = sobol::hash(cell ^ layer_hash) & 15u;
        const float u = h < 8 ? offset.x : offset.y;
        const float v = h < 4 ? offset.y : h == 12 || h == 14 ? offset.x : offset.z;
        return ((h & 1u) ? -u : u) + ((h & 2u) ? -v : v);
    }

  private:
    std::uint32_t layer_hash;
};

// Its first and second derivative are 0 at both ends.
float fade(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }

float between(float a, float b, float t) { return a + (b - a) * t; }

} // namespace

float gradient_noise(Vec3 p) {
    const LatticePlace x(p.x), y(p.y), z(p.z);
    const float faded_x = fade(x.beyond);
    const float faded_y = fade(y.beyond);
    const auto in_layer = [&](std::uint32_t up_z) {
        const LatticeLayer layer(z.below + up_z);
        const float offset_z = z.beyond - static_cast<float>(up_z);
        const auto along_x = [&](std::uint32_t up_y) {
            const float offset_y = y.beyond - static_cast<float>(up_y);
            const float left = layer.gradient_product(x.below, y.below + up_y, {x.beyond, offset_y, offset_z});
            const float right = layer.gradient_product(x.below + 1, y.below + up_y, {x.beyond - 1, offset_y, offset_z});
            return between(left, right, faded_x);
        };
        return between(along_x(0), along_x(1), faded_y);
    };
    return between(in_layer(0), in_layer(1), fade(z.beyond));
}

float Noise::value(Vec3 p) const {
    float sum = 0;
    float weights = 0;
    float weight = 1;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * gradient_noise(p);
        weights += weight;
        weight *= gain;
        p = p * lacunarity;
    }
    return sum / weights;
}

Color Noise::evaluate(const PatternPoint &at) const {
    const float amount = 0.5f + 0.5f * value(scaled(place_in(space, at), scale));
    return mixed(vantor::evaluate(a, at), vantor::evaluate(b, at), std::clamp(amount, 0.0f, 1.0f));
}

} // namespace vantor
