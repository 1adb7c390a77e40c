// Patches: points and normals against direct evaluation, areas in closed form, no cracks, collapsed edges, bad input.
#include "libvantor/shapes/spline.h"
#include "tests/libvantor/made_shape.h"

#include <random>

namespace {

using namespace vantor;
using scripted::made;
using scripted::Points;
using scripted::Scene;

// A sheet of points that is nowhere flat.
std::vector<VtVector3> wavy_grid(int columns, int rows) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> offset(-0.3, 0.3);
    std::vector<VtVector3> points;
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < columns; ++i)
            points.push_back({i + offset(random), j + offset(random), 2 * offset(random)});
    return points;
}

std::array<VtVector3, 4> four(const std::vector<VtVector3> &points, std::size_t first, std::size_t stride) {
    return {points[first], points[first + stride], points[first + 2 * stride], points[first + 3 * stride]};
}

// The point at (u, v) of the whole grid, in doubles.
VtVector3 point_at(const std::vector<VtVector3> &points, std::size_t columns, const Spline &u_spline,
                   const Spline &v_spline, double u, double v) {
    const auto place = [](const Spline &spline, std::size_t count, double at) {
        const auto segments = static_cast<double>(spline.segments_of(count, false));
        const double segment = std::min(std::floor(at * segments), segments - 1);
        return std::pair(static_cast<std::size_t>(segment) * static_cast<std::size_t>(spline.step),
                         at * segments - segment);
    };
    const auto [column, t_u] = place(u_spline, columns, u);
    const auto [row, t_v] = place(v_spline, points.size() / columns, v);
    std::array<VtVector3, 4> curve;
    for (std::size_t j = 0; j < 4; ++j)
        curve[j] = u_spline.point(four(points, (row + j) * columns + column, 1), t_u);
    return v_spline.point(curve, t_v);
}

void expect_evaluated(const std::vector<VtVector3> &grid, int columns, const Spline &u_spline, const Spline &v_spline,
                      const TriangleMesh &mesh) {
    const auto at = [&](double u, double v) {
        return to_float(point_at(grid, static_cast<std::size_t>(columns), u_spline, v_spline, u, v));
    };
    ASSERT_EQ(mesh.points.size(), mesh.normals.size());
    ASSERT_EQ(mesh.points.size(), mesh.uvs.size());
    for (std::size_t i = 0; i < mesh.points.size(); ++i) {
        const auto [u, v] = mesh.uvs[i];
        // The coordinates are below 10, (u, v) is rounded to 6e-8 and the slopes are below 40.
        EXPECT_LT(length(mesh.points[i] - at(u, v)), 1e-5);
        // Inside the patches, differences over 2e-3 give the directions to about 1e-3.
        constexpr double h = 1e-3;
        if (u < h || v < h || u > 1 - h || v > 1 - h || std::fabs(u - 0.5) < h || std::fabs(v - 0.5) < h)
            continue;
        const Vec3 normal = cross(at(u + h, v) - at(u - h, v), at(u, v + h) - at(u, v - h));
        EXPECT_GT(dot(normalized(normal), mesh.normals[i]), 1 - 1e-4f);
        EXPECT_NEAR(length(mesh.normals[i]), 1, 1e-6);
    }
}

TEST(Patches, PointsAndNormalsAreThoseOfTheSplines) {
    const struct {
        VtMatrix4 basis;
        VtLong step;
        int count; // of control points for two segments
    } families[] = {
        {VtBezierBasis(), 3, 7}, {VtBSplineBasis(), 1, 5}, {VtCatmullRomBasis(), 1, 5}, {VtHermiteBasis(), 2, 6}};
    for (const auto &family : families) {
        SCOPED_TRACE(family.count);
        const std::vector<VtVector3> grid = wavy_grid(family.count, family.count);
        Points points;
        scripted::fill(points, grid);
        const auto mesh = made<TriangleMesh>("patches", "points", points, "columns", family.count, "basis",
                                             family.basis, "divisions", 5);
        ASSERT_TRUE(mesh);
        EXPECT_EQ(mesh->triangles.size(), 2u * 4 * 25);
        const Spline spline{family.basis, family.step};
        expect_evaluated(grid, family.count, spline, spline, *mesh);
    }
}

TEST(Patches, EachSideMayHaveItsOwnBasisAndStep) {
    const std::vector<VtVector3> grid = wavy_grid(5, 8);
    Points points;
    scripted::fill(points, grid);
    // Rows are Catmull-Rom. Columns are Bezier with the step 4, so that the two patches do not touch.
    const auto mesh = made<TriangleMesh>("patches", "points", points, "columns", 5, "basis", VtBezierBasis(), "step_v",
                                         4, "basis_u", VtCatmullRomBasis(), "divisions", 3);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->triangles.size(), 2u * 4 * 9);
    // At the gap (u, v) says two things; all else is one point each.
    TriangleMesh upper = *mesh;
    for (std::size_t i = 0; i < upper.uvs.size(); ++i)
        if (upper.uvs[i].v == 0.5f)
            upper.uvs[i].v = i < upper.uvs.size() / 2 ? 0.5f - 1e-7f : 0.5f;
    expect_evaluated(grid, 5, {VtCatmullRomBasis(), 1}, {VtBezierBasis(), 4}, upper);
}

TEST(Patches, APlaneIsFlat) {
    // B-splines reproduce what is linear: points one apart span as many squares as there are patches.
    Points points;
    for (int j = 0; j < 6; ++j)
        for (int i = 0; i < 7; ++i)
            points.Add({static_cast<double>(i), static_cast<double>(j), 0.5});
    const auto mesh = made<TriangleMesh>("patches", "points", points, "columns", 7, "basis", VtBSplineBasis());
    ASSERT_TRUE(mesh);
    EXPECT_NEAR(scripted::area(*mesh), 4 * 3, 1e-5);
    for (std::size_t i = 0; i < mesh->points.size(); ++i) {
        EXPECT_NEAR(mesh->points[i].z, 0.5, 1e-6);
        EXPECT_NEAR(mesh->normals[i].z, 1, 1e-6);
    }
}

TEST(Patches, ASaddleHasItsArea) {
    // z = x y over the unit square: the area is (sqrt 3 + 4 arsinh(1 / sqrt 2) - pi / 6) / 3 = 1.28079. Chords are
    // short of it by a part that falls with the square of the divisions, from about 1e-3 at 8 (measured: 6e-4).
    Points points;
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            points.Add({i / 3.0, j / 3.0, i * j / 9.0});
    const double wanted = (std::sqrt(3) + 4 * std::asinh(std::sqrt(0.5)) - 3.14159265358979 / 6) / 3;
    const auto error = [&](int divisions) {
        const auto mesh = made<TriangleMesh>("patches", "points", points, "columns", 4, "divisions", divisions);
        return std::fabs(scripted::area(*mesh) - wanted);
    };
    EXPECT_LT(error(8), 3e-3);
    EXPECT_LT(error(64), error(8) / 30);
}

TEST(Patches, NeighboursLeaveNoCracks) {
    // A ring, wrapped both ways: any edge has two triangles, bit by bit.
    Points ring;
    for (int j = 0; j < 6; ++j)
        for (int i = 0; i < 9; ++i) {
            const double around = 2 * 3.14159265358979 * i / 9, across = 2 * 3.14159265358979 * j / 6;
            const double radius = 2 + 0.7 * std::cos(across);
            ring.Add({radius * std::cos(around), radius * std::sin(around), 0.7 * std::sin(across)});
        }
    for (const VtMatrix4 &basis : {VtBSplineBasis(), VtCatmullRomBasis(), VtBezierBasis()}) {
        const auto mesh = made<TriangleMesh>("patches", "points", ring, "columns", 9, "basis", basis, "wrap_u", 1,
                                             "wrap_v", 1, "divisions", 7);
        ASSERT_TRUE(mesh);
        EXPECT_EQ(scripted::open_edges(*mesh), 0u);
        EXPECT_GT(scripted::volume(*mesh), 1); // the front is outside
    }
    // Open, the border is left: 9 - 3 patches along the rows and 6 - 3 across, 7 edges each.
    const auto open =
        made<TriangleMesh>("patches", "points", ring, "columns", 9, "basis", VtBSplineBasis(), "divisions", 7);
    EXPECT_EQ(scripted::open_edges(*open), 2u * (6 + 3) * 7);
}

TEST(Patches, CollapsedEdgesHaveNormals) {
    // A Bezier patch whose last row is one point, the pole of a dome.
    Points points;
    const double profile[4][2] = {{1, 0}, {1, 0.5523}, {0.5523, 1}, {0, 1}}; // radius and height
    for (const auto &[radius, height] : profile)
        for (const auto &[x, z] : {std::pair(0.0, 1.0), {0.5523, 1.0}, {1.0, 0.5523}, {1.0, 0.0}})
            points.Add({radius * x, height, radius * z});
    const auto mesh = made<TriangleMesh>("patches", "points", points, "columns", 4, "divisions", 8);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->triangles.size(), 2u * 64 - 8);
    // A quarter circle as a Bezier curve is round to 3e-4, and its normals to about 1e-3.
    for (std::size_t i = 0; i < mesh->points.size(); ++i)
        EXPECT_GT(dot(mesh->points[i], mesh->normals[i]), 0.999f) << i;
}

TEST(Patches, ShineLikeAnyMesh) {
    Scene scene;
    scene.camera({0, 0, 2}, {0, 0, 0}, 20);
    Points points;
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            points.Add({2.0 * i - 3, 2.0 * j - 3, 0});
    scene.light("area", "radiance", 0.75);
    scene.LightBegin();
    scene.AddObject(scene.object("patches", "points", points, "columns", 4));
    scene.LightEnd();
    EXPECT_NEAR(scene.render(4, 4, 4).at(1, 1)[1], 0.75, 1e-6);
}

TEST(Patches, BadInputIsOneLineEach) {
    Points points, unusable, flat;
    scripted::fill(points, wavy_grid(5, 4));
    scripted::fill(unusable, wavy_grid(4, 4));
    unusable.Store(7, {0, std::numeric_limits<double>::quiet_NaN(), 0});
    scripted::fill(flat, std::vector<VtVector3>(16));
    const auto line_of = [](const auto &...values) {
        return scripted::errors_of([&] { EXPECT_FALSE(made<TriangleMesh>("patches", values...)); });
    };
    const std::string head = "vantor: newObject \"patches\": ";
    EXPECT_EQ(line_of("points", points, "columns", 6),
              head + "item 1: parameter \"points\" has 20 elements (expected whole rows "
                     "of 6); nothing of the patches will be seen\n");
    EXPECT_EQ(line_of("points", points, "columns", 5),
              head + "item 3: parameter \"columns\" makes rows of 5 points (with the step 3, 4, 7, 10 ... come out "
                     "even); nothing of the patches will be seen\n");
    EXPECT_EQ(line_of("points", points, "columns", 4),
              head + "item 1: parameter \"points\" makes columns of 5 points (with the step 3, 4, 7, 10 ... come out "
                     "even); nothing of the patches will be seen\n");
    EXPECT_EQ(line_of("points", unusable, "columns", 4),
              head + "item 1: parameter \"points\" has an unusable element 7 (expected finite coordinates up to 1e9); "
                     "nothing of the patches will be seen\n");
    EXPECT_EQ(line_of("points", flat, "columns", 4),
              head + "the patches have no usable area; nothing of them will be seen\n");
    EXPECT_EQ(line_of("points", Points(), "columns", 4),
              head + "item 1: parameter \"points\" makes columns of 0 points (with the step 3, 4, 7, 10 ... come out "
                     "even); nothing of the patches will be seen\n");

    // An unusable basis counts as left out.
    VtMatrix4 broken = VtBSplineBasis();
    broken[2][1] = std::numeric_limits<double>::infinity();
    Points good;
    scripted::fill(good, wavy_grid(4, 4));
    EXPECT_EQ(scripted::errors_of(
                  [&] { EXPECT_TRUE(made<TriangleMesh>("patches", "points", good, "columns", 4, "basis", broken)); }),
              head + "item 5: parameter \"basis\" has unusable elements (expected finite numbers up to 1e9); it is "
                     "left out\n");
}

} // namespace
