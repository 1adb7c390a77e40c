// Checker: squares or cubes of two colours in turn.
#include "libvantor/patterns/checker.h"

namespace vantor {

Color Checker::evaluate(const PatternPoint &at) const {
    const Vec3 place = scaled(place_in(space, at), scale);
    // Odd or even; no integer holds coordinates that are large enough.
    const auto parity = [](float x) {
        const float whole = std::floor(x);
        return whole - 2 * std::floor(0.5f * whole);
    };
    const float odd_ones = parity(place.x) + parity(place.y) + parity(place.z);
    return vantor::evaluate(parity(odd_ones) == 0 ? a : b, at);
}

} // namespace vantor
