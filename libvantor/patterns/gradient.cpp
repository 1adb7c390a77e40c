// Gradient: colours that follow each other along a direction.
#include "libvantor/patterns/gradient.h"

#include <algorithm>

namespace vantor {

Color Gradient::evaluate(const PatternPoint &at) const {
    const float position = dot(place_in(space, at) - origin, direction) / dot(direction, direction);
    const auto after = std::ranges::upper_bound(stops, position, {}, &Stop::position);
    if (after == stops.begin())
        return stops.front().color;
    if (after == stops.end())
        return stops.back().color;
    const Stop &before = *(after - 1);
    return mixed(before.color, after->color, (position - before.position) / (after->position - before.position));
}

} // namespace vantor
