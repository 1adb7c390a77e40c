// Trimmer: what cuts away parts of a surface.
#include "libvantor/shapes/trimmer.h"

#include "libvantor/shapes/spline.h"

namespace vantor {

namespace {

// Rows beyond this cost more memory than they save time.
constexpr std::size_t most_rows = 256;

// The curve leaves its straight pieces by no more than this, of its own size.
constexpr double flatness = 1e-4;
constexpr std::size_t most_pieces = 1000; // of a segment

// The longer side of a box around the points.
double size_of(std::span<const VtVector2> points) {
    double size = 0;
    for (int c = 0; c < 2; ++c) {
        const auto by_coordinate = [c](const VtVector2 &a, const VtVector2 &b) { return a[c] < b[c]; };
        const auto [least, greatest] = std::ranges::minmax_element(points, by_coordinate);
        size = std::max(size, (*greatest)[c] - (*least)[c]);
    }
    return size;
}

// How many equal steps of t follow a cubic to within the tolerance: Wang, "The subdivision method for finding the
// intersection between two Bezier curves or surfaces", 1984: sqrt(3 * 2 / 8 * the greatest second difference / it).
std::size_t piece_count(const std::array<VtVector2, 4> &bezier, double tolerance) {
    double bend = 0;
    for (std::size_t i = 0; i + 2 < 4; ++i) {
        const VtVector2 difference{bezier[i][0] - 2 * bezier[i + 1][0] + bezier[i + 2][0],
                                   bezier[i][1] - 2 * bezier[i + 1][1] + bezier[i + 2][1]};
        bend = std::max(bend, difference.Length());
    }
    const double count = std::ceil(std::sqrt(0.75 * bend / tolerance));
    return count >= 1 ? static_cast<std::size_t>(std::min(count, static_cast<double>(most_pieces))) : 1;
}

std::vector<VtVector2> flattened(const Spline &spline, std::span<const VtVector2> points) {
    const std::size_t segments = spline.segments_of(points.size(), true);
    std::vector<std::array<VtVector2, 4>> controls(segments);
    std::vector<VtVector2> ends;
    for (std::size_t i = 0; i < segments; ++i) {
        for (std::size_t k = 0; k < 4; ++k)
            controls[i][k] = points[(i * static_cast<std::size_t>(spline.step) + k) % points.size()];
        for (const VtVector2 &point : spline.bezier(controls[i]))
            ends.push_back(point);
    }
    const double tolerance = flatness * size_of(ends);
    std::vector<VtVector2> corners;
    for (const std::array<VtVector2, 4> &control : controls) {
        const std::size_t count = piece_count(spline.bezier(control), tolerance);
        for (std::size_t i = 0; i < count; ++i)
            corners.push_back(spline.point(control, static_cast<double>(i) / static_cast<double>(count)));
    }
    return corners;
}

std::optional<Trimmer> make_curve(const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<VtVector2> &given = parameters.vector2_array("points");
    const std::vector<VtVector2> points = copied(given);
    const auto is_near = [](double value) { return std::fabs(value) <= largest_reach; };
    if (static_cast<long>(points.size()) != given.Size() ||
        !std::ranges::all_of(points, [&](const VtVector2 &p) { return is_near(p[0]) && is_near(p[1]); })) {
        parameters.complain("points", "has unusable elements (expected finite coordinates up to 1e9); it cuts nothing",
                            report);
        return {};
    }

    std::vector<VtVector2> corners = points;
    if (parameters.is_given("basis")) {
        const Spline spline = make_spline(parameters, VtBezierBasis(), report);
        if (spline.segments_of(points.size(), true) == 0) {
            parameters.complain(
                "points",
                joined({"has ", counted(static_cast<long>(points.size()), "element"), " (", spline.fitting_counts(true),
                        " make a closed curve of this basis and step); it cuts nothing"}),
                report);
            return {};
        }
        corners = flattened(spline, points);
    } else {
        parameters.complain_without("basis", {"step"}, report);
    }
    if (corners.size() < 3) {
        parameters.complain("points",
                            joined({"makes ", std::to_string(corners.size()),
                                    " corners (three or more enclose something); it cuts nothing"}),
                            report);
        return {};
    }
    return CurveTrimmer(corners, parameters.choice("keep") == "inside");
}

std::optional<Trimmer> make_box_trimmer(const Parameters &parameters, const CallReport &report) {
    const Vec3 low = to_float(parameters.vector("min"));
    const Vec3 high = to_float(parameters.vector("max"));
    if (!(low.x <= high.x && low.y <= high.y && low.z <= high.z)) {
        report.diagnostic("the box is empty, as \"min\" is above \"max\" somewhere; it cuts nothing");
        return {};
    }
    return BoxTrimmer{low, high, parameters.choice("keep") == "inside"};
}

std::optional<Trimmer> make_plane(const Parameters &parameters, const CallReport &) {
    VtVector3 normal = parameters.vector("normal");
    normal.Normalize();
    return PlaneTrimmer{to_float(parameters.vector("point")), to_float(normal)};
}

constexpr TrimmerMaker makers[] = {
    {"box", make_box_trimmer},
    {"curve", make_curve},
    {"plane", make_plane},
};

} // namespace

CurveTrimmer::CurveTrimmer(std::span<const VtVector2> corners, bool keeps_the_inside) : keeps_inside(keeps_the_inside) {
    std::vector<Piece> all;
    all.reserve(corners.size());
    const auto pair_of = [](const VtVector2 &p) { return Point2f{static_cast<float>(p[0]), static_cast<float>(p[1])}; };
    low_v = high_v = pair_of(corners[0]).v;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        all.push_back({pair_of(corners[i]), pair_of(corners[(i + 1) % corners.size()])});
        low_v = std::min(low_v, all.back().from.v);
        high_v = std::max(high_v, all.back().from.v);
    }
    const std::size_t rows = std::min(corners.size(), most_rows);
    const float per_v = static_cast<float>(rows) / (high_v - low_v);
    rows_per_v = std::isfinite(per_v) ? per_v : 0.0f; // lower than any float can tell, it has one row

    std::vector<std::vector<Piece>> by_row(rows);
    row_starts.assign(rows + 1, 0);
    for (const Piece &piece : all) {
        const auto [least, greatest] = std::minmax(piece.from.v, piece.to.v);
        for (std::size_t row = row_of(least); row <= row_of(greatest); ++row)
            by_row[row].push_back(piece);
    }
    for (std::size_t row = 0; row < rows; ++row) {
        pieces.insert(pieces.end(), by_row[row].begin(), by_row[row].end());
        row_starts[row + 1] = static_cast<std::uint32_t>(pieces.size());
    }
}

std::size_t CurveTrimmer::row_of(float v) const {
    const auto rows = static_cast<float>(row_starts.size() - 1);
    return static_cast<std::size_t>(std::clamp((v - low_v) * rows_per_v, 0.0f, rows - 1));
}

// Shimrat, "Algorithm 112: Position of point relative to polygon", 1962.
bool CurveTrimmer::contains(Point2f uv) const {
    if (!(uv.v >= low_v && uv.v <= high_v))
        return false;
    const std::size_t row = row_of(uv.v);
    bool is_inside = false;
    for (std::uint32_t i = row_starts[row]; i < row_starts[row + 1]; ++i) {
        const auto [from, to] = pieces[i];
        // Where two pieces meet, one of them has the corner.
        if ((from.v <= uv.v) == (to.v <= uv.v))
            continue;
        const float u = from.u + (to.u - from.u) * ((uv.v - from.v) / (to.v - from.v));
        is_inside ^= u > uv.u;
    }
    return is_inside;
}

std::span<const TrimmerMaker> trimmer_makers() { return makers; }

std::optional<Trimmer> make_trimmer(const Type &type, const Parameters &parameters, const CallReport &report) {
    return maker_of(trimmer_makers(), type).make(parameters, report);
}

bool keeps(const Trimmer &trimmer, Point2f uv, Vec3 point) {
    return std::visit([&](const auto &kind) { return kind.keeps(uv, point); }, trimmer);
}

} // namespace vantor
