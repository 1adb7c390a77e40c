// Trimmer: what cuts away parts of a surface.
#pragma once

#include "libvantor/parameters/type_maker.h"
#include "libvantor/shapes/arrays.h"
#include "libvantor/shapes/surface_parameters.h"

#include <cstdint>
#include <optional>
#include <span>
#include <variant>

namespace vantor {

/// A closed curve in the (u, v) of a surface, as straight pieces.
class CurveTrimmer {
  public:
    /// There are three corners or more.
    CurveTrimmer(std::span<const VtVector2> corners, bool keeps_the_inside);

    bool keeps(Point2f uv, Vec3) const { return contains(uv) == keeps_inside; }

  private:
    struct Piece {
        Point2f from;
        Point2f to;
    };

    // Whether a line from there towards greater u crosses the curve an odd number of times.
    bool contains(Point2f uv) const;

    std::size_t row_of(float v) const;

    bool keeps_inside;
    std::vector<Piece> pieces;             // row after row of v; a piece stands in all rows that it reaches
    std::vector<std::uint32_t> row_starts; // of the pieces of each row, and the end of the last
    float low_v;
    float high_v;
    float rows_per_v;
};

/// Keeps the side that the normal points away from.
struct PlaneTrimmer {
    Vec3 point;
    Vec3 normal;

    bool keeps(Point2f, Vec3 p) const { return dot(p - point, normal) <= 0; }
};

struct BoxTrimmer {
    Vec3 low;
    Vec3 high;
    bool keeps_inside;

    bool keeps(Point2f, Vec3 p) const {
        const bool is_inside =
            p.x >= low.x && p.x <= high.x && p.y >= low.y && p.y <= high.y && p.z >= low.z && p.z <= high.z;
        return is_inside == keeps_inside;
    }
};

/// Planes and boxes lie in the object's space.
using Trimmer = std::variant<CurveTrimmer, PlaneTrimmer, BoxTrimmer>;

using TrimmerMaker = TypeMaker<std::optional<Trimmer>(const Parameters &, const CallReport &)>;

/// One for each type of trimmer.
std::span<const TrimmerMaker> trimmer_makers();

/// Nothing, after a diagnostic, if it can cut nothing.
std::optional<Trimmer> make_trimmer(const Type &type, const Parameters &parameters, const CallReport &report);

/// Whether the point of a surface stays.
bool keeps(const Trimmer &trimmer, Point2f uv, Vec3 point);

} // namespace vantor
