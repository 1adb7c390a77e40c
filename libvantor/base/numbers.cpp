// Affine maps: from the script's doubles to floats.
#include "libvantor/base/numbers.h"

namespace vantor {

namespace {

VtVector3 row_of(const VtTransform &m, int r) { return {m[r][0], m[r][1], m[r][2]}; }

VtVector3 divided(const VtVector3 &v, double by) { return {v[0] / by, v[1] / by, v[2] / by}; }

double determinant_of(const VtTransform &m) { return dot(row_of(m, 0), cross(row_of(m, 1), row_of(m, 2))); }

} // namespace

VtVector3 difference(const VtVector3 &a, const VtVector3 &b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

Color to_color(const VtVector3 &components) {
    const Vec3 c = to_float(components);
    return {c.x, c.y, c.z};
}

Vec3 to_float(const VtVector3 &v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

Affine to_float(const VtTransform &m) {
    const double determinant = determinant_of(m);
    const VtVector3 normals[3] = {
        divided(cross(row_of(m, 1), row_of(m, 2)), determinant),
        divided(cross(row_of(m, 2), row_of(m, 0)), determinant),
        divided(cross(row_of(m, 0), row_of(m, 1)), determinant),
    };

    Affine result;
    result.linear = {to_float(row_of(m, 0)), to_float(row_of(m, 1)), to_float(row_of(m, 2))};
    result.offset = to_float(row_of(m, 3));
    result.normals = {to_float(normals[0]), to_float(normals[1]), to_float(normals[2])};
    const auto column = [&](int c) { return to_float({normals[0][c], normals[1][c], normals[2][c]}); };
    result.inverse = {column(0), column(1), column(2)};
    result.determinant = static_cast<float>(determinant);
    return result;
}

float Affine::uniform_scale() const {
    constexpr float tolerance = 1e-5f;
    const float square = dot(linear.row0, linear.row0);
    const auto equals = [&](float value, float wanted) { return std::fabs(value - wanted) <= tolerance * square; };
    const bool is_similarity = equals(dot(linear.row1, linear.row1), square) &&
                               equals(dot(linear.row2, linear.row2), square) &&
                               equals(dot(linear.row0, linear.row1), 0) && equals(dot(linear.row0, linear.row2), 0) &&
                               equals(dot(linear.row1, linear.row2), 0);
    return is_similarity ? std::sqrt(square) : 0.0f;
}

float Affine::least_scale() const {
    // The rows of `normals` are the columns of the inverse. The sum of the sizes of a column's components is the most
    // that it makes of a vector whose components are at most 1.
    const auto sum = [](Vec3 v) { return std::fabs(v.x) + std::fabs(v.y) + std::fabs(v.z); };
    return 1 / std::max({sum(normals.row0), sum(normals.row1), sum(normals.row2)});
}

const char *why_unusable(const VtTransform &m) {
    bool is_zero = true;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            // Beyond this, floats overflow when areas are squared.
            if (!(std::fabs(m[r][c]) <= 1e9))
                return "has unusable entries (expected finite numbers up to 1e9)";
            is_zero &= m[r][c] == 0.0;
        }
    if (is_zero)
        return "is all zeros, as a new transform is (identity() and the other operations set it)";
    if (m[0][3] != 0.0 || m[1][3] != 0.0 || m[2][3] != 0.0 || m[3][3] != 1.0)
        return "has a last column other than 0 0 0 1 (points are rows: a translation stands in row 3)";

    // Relative to the lengths of its rows, so that a small scale is no singularity.
    double lengths = 1;
    for (int r = 0; r < 3; ++r) {
        const VtVector3 row = row_of(m, r);
        const double length = row.Length();
        // The length of a row may be 0 though the row is not.
        if (length < 1e-9 && (row[0] != 0.0 || row[1] != 0.0 || row[2] != 0.0))
            return "makes things smaller than floats can follow (scales from 1e-9 up are possible)";
        lengths *= length;
    }
    if (!(std::fabs(determinant_of(m)) > 1e-12 * lengths))
        return "is singular (its determinant is 0 or nearly so)";
    return nullptr;
}

VtTransform identity() {
    VtTransform result;
    for (int i = 0; i < 4; ++i)
        result[i][i] = 1.0;
    return result;
}

VtVector3 transformed_point(const VtVector3 &p, const VtTransform &m) {
    const VtVector3 d = transformed_direction(p, m);
    return {d[0] + m[3][0], d[1] + m[3][1], d[2] + m[3][2]};
}

VtVector3 transformed_direction(const VtVector3 &d, const VtTransform &m) {
    VtVector3 result;
    for (int c = 0; c < 3; ++c)
        result[c] = d[0] * m[0][c] + d[1] * m[1][c] + d[2] * m[2][c];
    return result;
}

} // namespace vantor
