// Checks of the transform operations.
#include "checks.h"
#include "objects.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <tuple>
#include <utility>

namespace {

using Entries = std::array<double, 16>;
using Vector = VtVector3;

double at(const Entries &m, int row, int column) { return m[static_cast<std::size_t>(4 * row + column)]; }

/// How a transform operation takes its argument: a vector by reference, an angle by value.
template <class Argument> using Parameter = std::conditional_t<std::is_class_v<Argument>, const Argument &, Argument>;

// What the operation makes of old entries that begin with `old` and go up by 1.
template <class... Arguments>
Entries applied_to(double old, const Library &library, const std::string &symbol, const Arguments &...arguments) {
    Room<Entries> room;
    auto *entries = new (room.place()) Entries;
    for (std::size_t i = 0; i < 16; ++i)
        (*entries)[i] = old + static_cast<double>(i);
    library.function<void(void *, Parameter<Arguments>...)>(symbol)(room.place(), arguments...);
    room.require_untouched_surroundings("it");
    return *entries;
}

/// One operation, by its name.
struct Operation {
    std::string symbol;

    template <class... Arguments> Entries operator()(const Library &library, const Arguments &...arguments) const {
        return applied_to(-7777.25, library, symbol, arguments...);
    }
    std::string name() const { return readable(symbol).substr(0, readable(symbol).find('(')); }
};
const Operation zero{symbols::transform_zero}, identity{symbols::transform_identity};
const Operation scaling{symbols::transform_scaling}, translation{symbols::transform_translation};
const Operation alignment_to_z{symbols::transform_alignment_to_z}, alignment_to{symbols::transform_alignment_to};
const Operation rotation_x{symbols::transform_rotation_x}, rotation_y{symbols::transform_rotation_y};
const Operation rotation_z{symbols::transform_rotation_z};
const Operation rotation_around_axis{symbols::transform_rotation_around_axis};
const Operation reflection{symbols::transform_reflection};

std::string text(double number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", number);
    return digits;
}

void require_near(const Entries &found, const Entries &expected, double tolerance, const std::string &what) {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            require(std::fabs(at(found, r, c) - at(expected, r, c)) <= tolerance,
                    what + "entry (" + std::to_string(r) + ", " + std::to_string(c) + ") is " + text(at(found, r, c)) +
                        ", expected " + text(at(expected, r, c)));
}

Entries diagonal(double a, double b, double c, double d) { return {a, 0, 0, 0, 0, b, 0, 0, 0, 0, c, 0, 0, 0, 0, d}; }

Entries product(const Entries &a, const Entries &b) {
    Entries c = {};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t k = 0; k < 4; ++k)
                c[4 * i + j] += a[4 * i + k] * b[4 * k + j];
    return c;
}

// For every operation, with each of the argument lists: all entries are set, and none is read.
template <class... Arguments> void add_setting_checks(Group &group, const Operation &operation,
                                                      const std::vector<std::tuple<Arguments...>> &argument_lists) {
    const auto result = [=](double old, const Library &library, const std::tuple<Arguments...> &arguments) {
        return std::apply([&](const Arguments &...each) { return applied_to(old, library, operation.symbol, each...); },
                          arguments);
    };
    constexpr double old = -7777.25;
    group.push_back({operation.name() + " sets all sixteen entries, to finite numbers", [=](const Library &library) {
                         for (const auto &arguments : argument_lists) {
                             const Entries entries = result(old, library, arguments);
                             for (std::size_t i = 0; i < 16; ++i) {
                                 require(entries[i] != old + static_cast<double>(i),
                                         "entry " + std::to_string(i) + " is still the old one");
                                 require(std::isfinite(entries[i]),
                                         "entry " + std::to_string(i) + " is " + text(entries[i]));
                             }
                         }
                     }});
    group.push_back({operation.name() + " does not read the old entries", [=](const Library &library) {
                         for (const auto &arguments : argument_lists)
                             require(same_bits(result(old, library, arguments),
                                               result(std::numeric_limits<double>::quiet_NaN(), library, arguments)),
                                     "other old entries give another result");
                     }});
}

// A rotation is rigid: rows of unit length at right angles, determinant 1, nothing projective.
void require_rigid(const Entries &m, bool may_move) {
    const auto dot = [&](int a, int b) {
        return at(m, a, 0) * at(m, b, 0) + at(m, a, 1) * at(m, b, 1) + at(m, a, 2) * at(m, b, 2);
    };
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b)
            require(std::fabs(dot(a, b) - (a == b ? 1 : 0)) < 1e-9, "rows " + std::to_string(a) + " and " +
                                                                        std::to_string(b) + " have the dot product " +
                                                                        text(dot(a, b)));
    const double determinant = at(m, 0, 0) * (at(m, 1, 1) * at(m, 2, 2) - at(m, 1, 2) * at(m, 2, 1)) -
                               at(m, 0, 1) * (at(m, 1, 0) * at(m, 2, 2) - at(m, 1, 2) * at(m, 2, 0)) +
                               at(m, 0, 2) * (at(m, 1, 0) * at(m, 2, 1) - at(m, 1, 1) * at(m, 2, 0));
    require(std::fabs(determinant - 1) < 1e-9, "the determinant is " + text(determinant));
    const bool moves_row = at(m, 3, 0) != 0 || at(m, 3, 1) != 0 || at(m, 3, 2) != 0;
    const bool moves_column = at(m, 0, 3) != 0 || at(m, 1, 3) != 0 || at(m, 2, 3) != 0;
    require(at(m, 3, 3) == 1, "entry (3, 3) is " + text(at(m, 3, 3)) + ", expected 1");
    require(may_move ? !(moves_row && moves_column) : !(moves_row || moves_column),
            "row 3 or column 3 are not those of a rotation");
}

void check_rotation(const Library &library, int axis, const Operation &rotation) {
    const std::vector<double> angles = {0.3, 30, -90, 200};
    for (const double angle : angles) {
        const Entries m = rotation(library, angle);
        const std::string at_angle = "at " + text(angle) + " ";
        require_rigid(m, false);
        require(std::fabs(at(m, axis, axis) - 1) < 1e-9, at_angle + "the axis does not stay");
        for (const double more : angles)
            require_near(product(m, rotation(library, more)), rotation(library, angle + more), 1e-9,
                         "turned by " + text(angle) + " and by " + text(more) + " is not turned by the sum: ");
        // Y is to Z as X is to Y, and Z to X as Y to Z: one sense of turning for all three.
        const Entries x = rotation_x(library, angle);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                require(std::fabs(at(m, (i + axis) % 3, (j + axis) % 3) - at(x, i, j)) < 1e-9,
                        at_angle + "it turns otherwise than RotationAroundX");
    }
    require_near(rotation(library, 0.0), diagonal(1, 1, 1, 1), 1e-12, "an angle of 0 is not the identity: ");
    require(std::fabs(at(rotation(library, 0.3), (axis + 1) % 3, (axis + 2) % 3)) > 1e-6, "it does not turn");
}

void check_axis_rotation(const Library &library) {
    const std::vector<std::pair<Vector, Vector>> axes = {
        {{0, 0, 0}, {1, 0, 0}}, {{1, -2, 0.5}, {0, 0, 2}}, {{3, 1, 1}, {1, -2, 0.5}}};
    const auto trace = [](const Entries &m) { return at(m, 0, 0) + at(m, 1, 1) + at(m, 2, 2); };
    for (const auto &[first, second] : axes) {
        // Between the origin and a point, "point, direction" and "point, point" are the same line.
        for (const double angle : {0.3, 30.0, -90.0, 200.0}) {
            const Entries m = rotation_around_axis(library, first, second, angle);
            require_rigid(m, true);
            require(std::fabs(trace(m) - trace(rotation_x(library, angle))) < 1e-9,
                    "at " + text(angle) + " it turns by another angle than RotationAroundX");
        }
        require_near(rotation_around_axis(library, first, second, 0.0), diagonal(1, 1, 1, 1), 1e-9,
                     "an angle of 0 is not the identity: ");
    }
    require_near(rotation_around_axis(library, Vector(0, 0, 0), Vector(0, 1, 0), 30.0), rotation_y(library, 30.0), 1e-9,
                 "about the origin and (0, 1, 0) it is not RotationAroundY: ");
}

void check_translation(const Library &library) {
    const Vector offset(1, -2, 0.5);
    const Entries found = translation(library, offset);
    Entries in_row = diagonal(1, 1, 1, 1);
    Entries in_column = in_row;
    for (int i = 0; i < 3; ++i) {
        in_row[static_cast<std::size_t>(12 + i)] = offset[i];
        in_column[static_cast<std::size_t>(4 * i + 3)] = offset[i];
    }
    if (!std::ranges::equal(found, in_column))
        require_near(found, in_row, 0, "");
}

// Whatever the numbers are: the operation returns.
void check_strange_arguments(const Library &library) {
    using Limits = std::numeric_limits<double>;
    for (const double number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300, 1e-300}) {
        const Vector vector(number, number, number);
        for (const Operation &operation : {scaling, translation, alignment_to_z})
            operation(library, vector);
        alignment_to(library, vector, vector);
        for (const Operation &operation : {rotation_x, rotation_y, rotation_z})
            operation(library, number);
        rotation_around_axis(library, vector, vector, number);
    }
}

void add_meaning_checks(Group &group) {
    group.push_back({zero.name() + " gives the zero matrix",
                     [](const Library &library) { require_near(zero(library), Entries{}, 0, ""); }});
    group.push_back({identity.name() + " gives the identity",
                     [](const Library &library) { require_near(identity(library), diagonal(1, 1, 1, 1), 0, ""); }});
    group.push_back({scaling.name() + " gives the factors on the diagonal, and 1", [](const Library &library) {
                         require_near(scaling(library, Vector(2, -3, 0.5)), diagonal(2, -3, 0.5, 1), 0, "");
                     }});
    group.push_back(
        {translation.name() + " gives the identity with the offset in row 3 or column 3", check_translation});
    int axis = 0;
    for (const Operation &rotation : {rotation_x, rotation_y, rotation_z}) {
        group.push_back({rotation.name() + " gives a rotation about its axis",
                         [axis, rotation](const Library &library) { check_rotation(library, axis, rotation); }});
        ++axis;
    }
    group.push_back({rotation_around_axis.name() + " gives a rotation", check_axis_rotation});
    group.push_back({reflection.name() + " gives the diagonal 1, 1, -1, 1",
                     [](const Library &library) { require_near(reflection(library), diagonal(1, 1, -1, 1), 0, ""); }});
    group.push_back({"the transform operations return for any numbers", check_strange_arguments});
}

} // namespace

Group transform_checks() {
    using None = std::tuple<>;
    using One = std::tuple<Vector>;
    using Two = std::tuple<Vector, Vector>;
    using Angle = std::tuple<double>;
    using Axis = std::tuple<Vector, Vector, double>;
    const Vector nothing, x(1, 0, 0), z(0, 0, 1), down(0, 0, -1), any(1, -2, 0.5);
    const std::vector<Angle> angles = {0.0, 30.0, -90.0, 180.0, 720.0, 1e6};

    Group group;
    add_setting_checks(group, zero, std::vector{None()});
    add_setting_checks(group, identity, std::vector{None()});
    add_setting_checks(group, scaling, std::vector{One(any), One(nothing)});
    add_setting_checks(group, translation, std::vector{One(any), One(nothing)});
    add_setting_checks(group, alignment_to_z, std::vector{One(any), One(nothing), One(x), One(z), One(down)});
    add_setting_checks(group, alignment_to,
                       std::vector{Two(any, x), Two(x, x), Two(z, down), Two(z, z), Two(nothing, x), Two(x, nothing)});
    add_setting_checks(group, rotation_x, angles);
    add_setting_checks(group, rotation_y, angles);
    add_setting_checks(group, rotation_z, angles);
    add_setting_checks(group, rotation_around_axis,
                       std::vector{Axis(any, x, 30), Axis(nothing, any, -90), Axis(any, nothing, 30)});
    add_setting_checks(group, reflection, std::vector{None()});
    add_meaning_checks(group);
    return group;
}
