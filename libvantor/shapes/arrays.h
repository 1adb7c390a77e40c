// Arrays: what shapes have in common when they read a script's points, and what is wrong with those.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/parameters/reader.h"

#include <cstdint>
#include <string>

namespace vantor {

/// The largest coordinate that a point may have, in an object or in the world: squares of areas stay finite.
inline constexpr float largest_reach = 1e9f;

inline bool has_area(Vec3 a, Vec3 b, Vec3 c) {
    // The product of two short edges may underflow; such a triangle could not be hit reliably either.
    return has_direction(cross(b - a, c - a));
}

// NaN is checked apart, because largest_coordinate() may ignore one.
inline bool is_usable(Vec3 p) { return is_finite(p) && largest_coordinate(p) <= largest_reach; }

// Checks that the array has all the elements that its size says; reports if not.
template <class Element> bool check_storage(const VtInstanceArray<Element> &array, std::string_view name,
                                            const Parameters &parameters, const CallReport &report) {
    const VtLong stored = stored_count(array);
    const bool has_all = stored == array.Size();
    if (!has_all)
        parameters.complain(name,
                            joined({"has ", std::to_string(array.Size()), " elements, of which ",
                                    std::to_string(stored), " have storage; nothing of the object will be seen"}),
                            report);
    return has_all;
}

} // namespace vantor
