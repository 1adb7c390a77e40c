// Source: what a pattern is asked about, and the values that may come from one.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"

namespace vantor {

struct Pattern;

/// A point of a surface, as patterns see it.
struct PatternPoint {
    Point2f uv;             ///< Texture coordinates, v upwards.
    Vec3 point;             ///< In the object's space.
    Point2f footprint = {}; ///< The extent in u and v of what the pixel sees; 0 if unknown.
};

/// The colour of the pattern there, linear Rec. 709.
Color evaluate(const Pattern &pattern, const PatternPoint &at);

/// A colour, or a pattern of them. The pattern has to outlive it.
struct ColorOrPattern {
    Color color;
    const Pattern *pattern = nullptr; ///< Null if it is the colour.
};

/// A number, or a pattern whose luminance is the number. The pattern has to outlive it.
struct NumberOrPattern {
    float number;
    const Pattern *pattern = nullptr; ///< Null if it is the number.
};

inline Color evaluate(const ColorOrPattern &source, const PatternPoint &at) {
    return source.pattern ? evaluate(*source.pattern, at) : source.color;
}

inline float evaluate(const NumberOrPattern &source, const PatternPoint &at) {
    return source.pattern ? luminance(evaluate(*source.pattern, at)) : source.number;
}

inline Color mixed(Color a, Color b, float amount) { return a * (1 - amount) + b * amount; }

/// Where a pattern lies: in the texture coordinates, or in the object's space.
enum class PatternSpace { Uv, Object };

inline Vec3 place_in(PatternSpace space, const PatternPoint &at) {
    return space == PatternSpace::Uv ? Vec3{at.uv.u, at.uv.v, 0} : at.point;
}

constexpr Vec3 scaled(Vec3 a, Vec3 by) { return {a.x * by.x, a.y * by.y, a.z * by.z}; }

} // namespace vantor
