// Subdivision: limits that are known, creases, borders, and bad input.
#include "renderer/vt_bases.h"
#include "tests/libvantor/made_shape.h"

namespace {

using namespace vantor;
using scripted::Indices;
using scripted::List;
using scripted::made;
using scripted::Points;

const std::vector<VtVector3> cube_points{{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                         {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
const std::vector<VtLong> cube_indices{0, 3, 2, 1, 4, 5, 6, 7, 0, 1, 5, 4, 1, 2, 6, 5, 2, 3, 7, 6, 3, 0, 4, 7};
const std::vector<VtLong> cube_edges{0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6, 6, 7, 7, 4, 0, 4, 1, 5, 2, 6, 3, 7};
const std::vector<VtLong> top_edges{4, 5, 5, 6, 6, 7, 7, 4};

template <class... Values> std::optional<TriangleMesh>
subdivided(const std::vector<VtVector3> &points, const std::vector<VtLong> &indices, const Values &...values) {
    Points point_array;
    Indices index_array;
    scripted::fill(point_array, points);
    scripted::fill(index_array, indices);
    return made<TriangleMesh>("subdivision", "points", point_array, "indices", index_array, values...);
}
template <class... Values> TriangleMesh cube(const Values &...values) {
    return *subdivided(cube_points, cube_indices, values...);
}
TriangleMesh creased_cube(const std::vector<VtLong> &edges, double weight, int levels) {
    Indices creases;
    scripted::fill(creases, edges);
    VtInstanceArray<double> weights;
    for (std::size_t i = 0; i < edges.size() / 2; ++i)
        weights.Add(weight);
    return cube("crease_edges", creases, "crease_weights", weights, "levels", levels);
}

// The index of the point that is nearest.
std::size_t nearest(const TriangleMesh &mesh, Vec3 p) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < mesh.points.size(); ++i)
        if (length(mesh.points[i] - p) < length(mesh.points[found] - p))
            found = i;
    return found;
}
float distance(const TriangleMesh &mesh, Vec3 p) { return length(mesh.points[nearest(mesh, p)] - p); }

TEST(Subdivision, CornersOfACubeGoToTheirLimit) {
    // Three edges meet: (9 P + 4 (sum of the edges' other ends) + (sum of the faces' opposite corners)) / 24, which for
    // the corner (1, 1, 1) is (9 + 4 - 1) / 24 of it.
    for (const int levels : {1, 2, 4}) {
        const TriangleMesh mesh = cube("levels", levels);
        EXPECT_EQ(mesh.triangles.size(), 2u * 6 << (2 * levels));
        EXPECT_EQ(scripted::open_edges(mesh), 0u);
        for (const VtVector3 &corner : cube_points) {
            const Vec3 limit = to_float(corner) * 0.5f;
            const std::size_t i = nearest(mesh, limit);
            EXPECT_LT(length(mesh.points[i] - limit), 1e-6);
            EXPECT_GT(dot(mesh.normals[i], normalized(limit)), 1 - 1e-6f);
        }
    }
}

TEST(Subdivision, PointsLieOnOneLimitSurfaceAtAnyLevel) {
    const TriangleMesh fine = cube("levels", 4);
    for (const int levels : {1, 2, 3}) {
        const TriangleMesh coarse = cube("levels", levels);
        for (std::size_t i = 0; i < coarse.points.size(); ++i) {
            const std::size_t same = nearest(fine, coarse.points[i]);
            EXPECT_LT(length(fine.points[same] - coarse.points[i]), 1e-6);
            EXPECT_GT(dot(fine.normals[same], coarse.normals[i]), 1 - 1e-6f);
        }
    }
    // Volumes converge with the square of the edges' length.
    const double v2 = scripted::volume(cube("levels", 2)), v3 = scripted::volume(cube("levels", 3));
    const double v4 = scripted::volume(fine);
    EXPECT_NEAR((v3 - v2) / (v4 - v3), 4, 0.4);
    EXPECT_GT(v4, v3);
}

TEST(Subdivision, RegularFacesAreBSplines) {
    // Inside a grid of quads the limit is the bicubic B-spline of its points, normals and all.
    constexpr int side = 6;
    std::vector<VtVector3> grid;
    std::vector<VtLong> quads;
    Points points;
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i)
            grid.push_back({i + 0.1 * (j % 3), j - 0.1 * (i % 2), 0.2 * ((i * i + 3 * j) % 5)});
    for (VtLong j = 0; j + 1 < side; ++j)
        for (VtLong i = 0; i + 1 < side; ++i)
            quads.insert(quads.end(), {j * side + i, j * side + i + 1, (j + 1) * side + i + 1, (j + 1) * side + i});
    scripted::fill(points, grid);
    const auto patches =
        made<TriangleMesh>("patches", "points", points, "columns", side, "basis", VtBSplineBasis(), "divisions", 8);
    const auto surface = subdivided(grid, quads, "levels", 3);
    ASSERT_TRUE(patches && surface);
    for (std::size_t i = 0; i < patches->points.size(); ++i) {
        const std::size_t same = nearest(*surface, patches->points[i]);
        EXPECT_LT(length(surface->points[same] - patches->points[i]), 3e-6);
        EXPECT_GT(dot(surface->normals[same], patches->normals[i]), 1 - 1e-6f);
    }
}

TEST(Subdivision, AnyPolygonsMakeClosedSurfaces) {
    // A prism of two triangles and three quads; a tetrahedron.
    Indices counts, threes;
    scripted::fill(counts, {3, 3, 4, 4, 4});
    scripted::fill(threes, {3, 3, 3, 3});
    const auto prism = subdivided({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}},
                                  {0, 2, 1, 3, 4, 5, 0, 1, 4, 3, 1, 2, 5, 4, 2, 0, 3, 5}, "counts", counts);
    const auto tetrahedron = subdivided({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                        {0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3}, "counts", threes);
    for (const auto &mesh : {prism, tetrahedron}) {
        ASSERT_TRUE(mesh);
        EXPECT_EQ(scripted::open_edges(*mesh), 0u);
        EXPECT_GT(scripted::volume(*mesh), 0.01);
        for (const TriangleMesh::Triangle &t : mesh->triangles) {
            const Vec3 flat = cross(mesh->points[t[1]] - mesh->points[t[0]], mesh->points[t[2]] - mesh->points[t[0]]);
            for (const std::uint32_t corner : t)
                EXPECT_GT(dot(normalized(flat), mesh->normals[corner]), 0.8f);
        }
    }
    EXPECT_EQ(prism->triangles.size(), 2u * 18 * 16);
}

TEST(Subdivision, ACubeOfCreasesStaysACube) {
    const TriangleMesh mesh = creased_cube(cube_edges, 100, 3);
    EXPECT_EQ(scripted::open_edges(mesh), 0u);
    EXPECT_NEAR(scripted::volume(mesh), 8, 1e-5);
    EXPECT_NEAR(scripted::area(mesh), 24, 1e-4);
    for (std::size_t i = 0; i < mesh.points.size(); ++i) {
        EXPECT_NEAR(largest_coordinate(mesh.normals[i]), 1, 1e-6);
        EXPECT_NEAR(dot(mesh.points[i], mesh.normals[i]), 1, 1e-6);
    }
}

TEST(Subdivision, ACreaseIsABSplineCurve) {
    // The upper face keeps its plane, and its corners go to (P' + 4 P + P'') / 6: (2/3, 2/3) in it.
    Indices creases;
    scripted::fill(creases, top_edges);
    const TriangleMesh mesh = cube("crease_edges", creases, "levels", 4);
    EXPECT_EQ(scripted::open_edges(mesh), 0u);
    EXPECT_LT(distance(mesh, {2 / 3.0f, 2 / 3.0f, 1}), 1e-6);
    std::size_t on_top = 0;
    for (std::size_t i = 0; i < mesh.points.size(); ++i)
        if (mesh.normals[i].z > 0.999f) {
            EXPECT_NEAR(mesh.points[i].z, 1, 1e-6);
            ++on_top;
        }
    EXPECT_EQ(on_top, 17u * 17);
    // Below, nothing is a crease: the point is that of the smooth cube's lower half, about (0.5, 0.5, -0.5).
    EXPECT_LT(distance(mesh, {0.5f, 0.5f, -0.5f}), 1e-6);
}

TEST(Subdivision, SharpnessGoesFromSmoothToSharp) {
    double previous = scripted::volume(cube("levels", 4));
    EXPECT_NEAR(scripted::volume(creased_cube(cube_edges, 0, 4)), previous, 1e-6);
    for (const double weight : {0.3, 0.7, 1.0, 1.5, 2.0, 3.0, 5.0}) {
        const double volume = scripted::volume(creased_cube(cube_edges, weight, 4));
        EXPECT_GT(volume, previous) << weight;
        previous = volume;
    }
    EXPECT_NEAR(previous, 8, 1e-4);
    // There are no leaps on the way.
    EXPECT_NEAR(scripted::volume(creased_cube(cube_edges, 0.999, 4)), scripted::volume(creased_cube(cube_edges, 1, 4)),
                0.01);
    EXPECT_NEAR(scripted::volume(creased_cube(cube_edges, 1.001, 4)), scripted::volume(creased_cube(cube_edges, 1, 4)),
                0.01);
}

TEST(Subdivision, BordersAndCorners) {
    const std::vector<VtVector3> square{{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
    const auto smooth = subdivided(square, {0, 1, 2, 3}, "levels", 4);
    EXPECT_LT(distance(*smooth, {2 / 3.0f, 2 / 3.0f, 0}), 1e-6);
    EXPECT_LT(scripted::area(*smooth), 3.5);
    const auto sharp = subdivided(square, {0, 1, 2, 3}, "boundary", "sharp");
    EXPECT_NEAR(scripted::area(*sharp), 4, 1e-5);
    for (const auto &mesh : {smooth, sharp})
        for (const Vec3 &n : mesh->normals)
            EXPECT_NEAR(n.z, 1, 1e-6);
    // One corner alone, named.
    Indices corner;
    scripted::fill(corner, {2});
    const auto pointed = subdivided(square, {0, 1, 2, 3}, "corner_points", corner);
    EXPECT_LT(distance(*pointed, {1, 1, 0}), 1e-6);
    EXPECT_LT(distance(*pointed, {-2 / 3.0f, -2 / 3.0f, 0}), 1e-6);
    // So it is inside a surface.
    Indices top_corner;
    scripted::fill(top_corner, {6});
    EXPECT_LT(distance(cube("corner_points", top_corner), {1, 1, 1}), 1e-6);
}

TEST(Subdivision, TextureCoordinatesAreLinearOverFaces) {
    VtInstanceArray<VtVector2> uvs;
    for (const VtVector2 &uv : {VtVector2(0, 0), VtVector2(1, 0), VtVector2(1, 1), VtVector2(0, 1)})
        uvs.Add(uv);
    const auto mesh = subdivided({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, {0, 1, 2, 3}, "uvs", uvs, "boundary",
                                 "sharp", "levels", 2);
    ASSERT_EQ(mesh->uvs.size(), 25u);
    for (std::size_t i = 0; i < 25; ++i) {
        EXPECT_FLOAT_EQ(mesh->uvs[i].u * 4, std::round(mesh->uvs[i].u * 4));
        EXPECT_FLOAT_EQ(mesh->uvs[i].v * 4, std::round(mesh->uvs[i].v * 4));
    }
    const std::size_t middle = nearest(*mesh, {2, 2, 0});
    EXPECT_FLOAT_EQ(mesh->uvs[middle].u, 0.5f);
    EXPECT_FLOAT_EQ(mesh->uvs[middle].v, 0.5f);
}

TEST(Subdivision, FacesThatCannotBeNeighboursHaveBorders) {
    // Three quads along one edge, as the pages of a book.
    const auto book =
        subdivided({{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, 0, 1}, {0, 1, 0}, {0, 1, 1}, {-1, 0, 0}, {-1, 0, 1}},
                   {0, 2, 3, 1, 0, 4, 5, 1, 0, 6, 7, 1});
    ASSERT_TRUE(book);
    EXPECT_EQ(book->triangles.size(), 3u * 2 * 64);
}

TEST(Subdivision, BadInputIsOneLineEach) {
    const std::string head = "vantor: newObject \"subdivision\": ";
    const std::string unseen = "; nothing of the object will be seen\n";
    Indices counts, few, many, small, odd, strange, wild;
    scripted::fill(counts, {4, 4, 4, 4, 4, 4});
    scripted::fill(few, {4, 4});
    for (int i = 0; i < 25; ++i)
        many.Add(4);
    scripted::fill(small, {4, 4, 4, 4, 4, 2, 2});
    scripted::fill(odd, {0, 1, 2});
    scripted::fill(strange, {0, 1, 0, 6, -5, 99});
    scripted::fill(wild, {2, 8, -1});
    VtInstanceArray<double> weights;
    weights.Add(-1);
    const auto refused = [&](const std::vector<VtLong> &indices, const auto &...values) {
        return scripted::errors_of([&] { EXPECT_FALSE(subdivided(cube_points, indices, values...)); });
    };
    const auto accepted = [&](const std::vector<VtLong> &indices, const auto &...values) {
        return scripted::errors_of([&] { EXPECT_TRUE(subdivided(cube_points, indices, values...)); });
    };
    EXPECT_EQ(refused({0, 1, 2}),
              head +
                  "item 3: parameter \"indices\" has 3 elements (expected four for each face, as all are quads without "
                  "\"counts\")" +
                  unseen);
    EXPECT_EQ(refused(cube_indices, "counts", few),
              head +
                  "item 5: parameter \"counts\" adds up to 8 corners (expected as many "
                  "as there are indices, 24)" +
                  unseen);
    EXPECT_EQ(refused(cube_indices, "counts", many),
              head +
                  "item 5: parameter \"counts\" has 25 elements (expected at most as many as there are indices, 24)" +
                  unseen);
    EXPECT_EQ(refused(cube_indices, "counts", small),
              head + "item 5: parameter \"counts\" has 2 as element 5 (expected 3 or more corners)" + unseen);
    EXPECT_EQ(refused({0, 1, 2, 8}),
              head + "item 3: parameter \"indices\" leaves out face 0 (expected indices from 0 to 7)\n");
    EXPECT_EQ(
        accepted({0, 1, 2, 3, 4, 5, 5, 6, 4, -5, 6, 7}),
        head +
            "item 3: parameter \"indices\" leaves out 2 faces, the first of them 1 (expected indices from 0 to 7)\n");
    EXPECT_EQ(accepted({0, 1, 2, 3, 4, 5, 5, 6}),
              head + "item 3: parameter \"indices\" leaves out face 1 (expected corners that differ from "
                     "the next one)\n");
    EXPECT_EQ(refused({0, 1, 2, 0}),
              head + "item 3: parameter \"indices\" leaves out face 0 (expected corners that differ from "
                     "the next one)\n");
    EXPECT_EQ(accepted(cube_indices, "crease_edges", odd),
              head + "item 5: parameter \"crease_edges\" has an odd number of indices (expected two for each edge); it "
                     "is left out\n");
    EXPECT_EQ(
        accepted(cube_indices, "crease_edges", strange),
        head +
            "item 5: parameter \"crease_edges\" leaves out 2 edges, the first of them 1 (expected edges of faces)\n");
    EXPECT_EQ(
        accepted(cube_indices, "crease_edges", strange, "crease_weights", weights),
        head +
            "item 7: parameter \"crease_weights\" has 1 element (expected one for each of the 3 "
            "crease edges); it is left out\n" +
            head +
            "item 5: parameter \"crease_edges\" leaves out 2 edges, the first of them 1 (expected edges of faces)\n");
    EXPECT_EQ(accepted(cube_indices, "crease_weights", weights),
              head + "item 5: parameter \"crease_weights\" has no effect without \"crease_edges\"\n");
    EXPECT_EQ(accepted(cube_indices, "corner_points", wild),
              head + "item 5: parameter \"corner_points\" leaves out 2 elements, the first of them 1 (expected indices "
                     "from 0 to 7)\n");
    Indices huge; // not to be copied
    huge.SetSize(2147483647);
    for (const char *name : {"crease_edges", "corner_points"}) {
        const std::string line = accepted(cube_indices, name, huge);
        EXPECT_NE(line.find(" has 2147483647 elements (expected at most "), std::string::npos) << line;
    }
    EXPECT_EQ(accepted(cube_indices, "counts", counts), "");
    EXPECT_EQ(scripted::errors_of([&] {
                  EXPECT_FALSE(subdivided({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}, {0, 1, 2, 3}));
              }),
              head + "the object has no usable area; nothing of it will be seen\n");
}

} // namespace
