// Meshes: quads, colours, and what is left out.
#include "tests/libvantor/made_shape.h"

namespace {

using namespace vantor;
using scripted::Indices;
using scripted::made;
using scripted::Points;

const std::string head = "vantor: newObject \"mesh\": ";

Points &filled(Points &points, const std::vector<VtVector3> &values) {
    scripted::fill(points, values);
    return points;
}
Indices &filled(Indices &indices, const std::vector<VtLong> &values) {
    scripted::fill(indices, values);
    return indices;
}

TEST(Mesh, QuadsAreTwoTrianglesEach) {
    Points points;
    Indices quads, triangles;
    filled(points, {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}, {1, 3, 0}});
    filled(quads, {0, 1, 2, 3});
    filled(triangles, {3, 2, 4});
    const auto mesh = made<TriangleMesh>("mesh", "points", points, "quads", quads, "triangles", triangles);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->triangles.size(), 3u);
    EXPECT_NEAR(scripted::area(*mesh), 2 + 2, 1e-6);
    EXPECT_EQ(scripted::open_edges(*mesh), 5u);
}

TEST(Mesh, QuadsAreCutWhereBothHalvesAreInside) {
    // An arrow head, whose corner 2 points inwards, begun at each of its corners. Its area is by the shoelace formula.
    const std::vector<VtVector3> head_points{{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}};
    for (std::size_t first = 0; first < 4; ++first) {
        Points points;
        for (std::size_t i = 0; i < 4; ++i)
            points.Add(head_points[(first + i) % 4]);
        Indices quads;
        const auto mesh = made<TriangleMesh>("mesh", "points", points, "quads", filled(quads, {0, 1, 2, 3}));
        ASSERT_TRUE(mesh);
        EXPECT_NEAR(scripted::area(*mesh), 4, 1e-6) << first;
        for (const TriangleMesh::Triangle &t : mesh->triangles)
            EXPECT_GT(cross(mesh->points[t[1]] - mesh->points[t[0]], mesh->points[t[2]] - mesh->points[t[0]]).z, 0);
    }
    // Two corners in one place leave one triangle.
    Points points;
    Indices quads;
    filled(points, {{0, 0, 0}, {2, 0, 0}, {2, 0, 0}, {0, 1, 0}});
    const auto mesh = made<TriangleMesh>("mesh", "points", points, "quads", filled(quads, {0, 1, 2, 3}));
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->triangles.size(), 1u);
}

TEST(Mesh, FacesMayLieAcrossTheBlocksOfAnArray) {
    // Added one by one, an array has blocks of 1, 2, 4 ... elements; at once it has one.
    Points points;
    filled(points, {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}});
    Indices one_by_one, at_once;
    filled(one_by_one, {0, 1, 2, 2, 3, 0, 0, 1, 3});
    at_once.SetSize(9);
    for (VtLong i = 0; i < 9; ++i)
        at_once.Store(i, one_by_one.At(i));
    const auto a = made<TriangleMesh>("mesh", "points", points, "triangles", one_by_one);
    const auto b = made<TriangleMesh>("mesh", "points", points, "triangles", at_once);
    EXPECT_EQ(a->triangles, b->triangles);
    EXPECT_EQ(a->triangles[1], (TriangleMesh::Triangle{2, 3, 0}));
}

TEST(Mesh, ColorsAreInterpolated) {
    Points points, colors;
    Indices triangles;
    filled(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {5, 5, 5}});
    filled(colors, {{1, 0, 0}, {0, 2, 0}, {0, 0, 4}, {9, 9, 9}});
    filled(triangles, {0, 1, 2});
    const auto mesh = made<TriangleMesh>("mesh", "points", points, "triangles", triangles, "colors", colors);
    ASSERT_TRUE(mesh);
    const Color color = color_at(*mesh, 0, {0.25f, 0.5f});
    EXPECT_FLOAT_EQ(color.r, 0.25f);
    EXPECT_FLOAT_EQ(color.g, 0.5f);
    EXPECT_FLOAT_EQ(color.b, 2);
    const auto plain = made<TriangleMesh>("mesh", "points", points, "triangles", triangles);
    EXPECT_TRUE(vantor::has_colors(Shape(*mesh)));
    EXPECT_FALSE(vantor::has_colors(Shape(*plain)));
}

TEST(Mesh, TextureCoordinatesAndTheirDirection) {
    // (u, v) = (2x + y, 3y) over a triangle in the plane: u grows, at constant v, by 2 for each step along x.
    Points points;
    Indices triangles;
    filled(points, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    filled(triangles, {0, 1, 2});
    VtInstanceArray<VtVector2> uvs;
    for (const VtVector2 &uv : {VtVector2(0, 0), VtVector2(2, 0), VtVector2(1, 3)})
        uvs.Add(uv);
    const auto mesh = made<TriangleMesh>("mesh", "points", points, "triangles", triangles, "uvs", uvs);
    ASSERT_TRUE(mesh);
    const SurfaceParameters found = parameters_at(*mesh, 0, {0.25f, 0.5f}, {});
    EXPECT_FLOAT_EQ(found.uv.u, 2 * 0.25f + 0.5f);
    EXPECT_FLOAT_EQ(found.uv.v, 3 * 0.5f);
    EXPECT_FLOAT_EQ(found.along_u.x, 0.5f);
    EXPECT_FLOAT_EQ(found.along_u.y, 0);
}

TEST(Mesh, BadInputIsOneLineEach) {
    Points points, few, negative;
    filled(points, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    filled(few, {{1, 1, 1}});
    filled(negative, {{1, 1, 1}, {1, -1, 1}, {1, 1, 1}, {1, 1, 1}});
    Indices quad, odd, wild, flat;
    filled(quad, {0, 1, 2, 3});
    filled(odd, {0, 1, 2, 3, 0});
    filled(wild, {0, 1, 2, 3, 0, 1, 2, 4, 0, -1, 2, 3});
    filled(flat, {0, 1, 2, 3, 0, 0, 1, 1});
    const auto line_of = [&](const auto &...values) {
        return scripted::errors_of([&] { EXPECT_TRUE(made<TriangleMesh>("mesh", "points", points, values...)); });
    };
    EXPECT_EQ(line_of("quads", odd),
              head + "item 3: parameter \"quads\" has 5 indices (expected four for each quad); the rest is left out\n");
    EXPECT_EQ(line_of("quads", wild), head + "item 3: parameter \"quads\" leaves out 2 quads, the first of them 1 "
                                             "(expected indices from 0 to 3)\n");
    EXPECT_EQ(line_of("quads", flat), head + "item 3: parameter \"quads\" leaves out quad 1 "
                                             "(expected corners that span an area)\n");
    EXPECT_EQ(line_of("quads", quad, "colors", few),
              head + "item 5: parameter \"colors\" has 1 element (expected one for each "
                     "of the 4 points); it is left out\n");
    EXPECT_EQ(line_of("quads", quad, "colors", negative),
              head + "item 5: parameter \"colors\" has unusable elements (expected components from 0 to 1e9); it is "
                     "left out\n");
    EXPECT_EQ(scripted::errors_of([&] { EXPECT_FALSE(made<TriangleMesh>("mesh", "points", points)); }),
              head + "neither \"triangles\" nor \"quads\" is given (an intarray: three or four indices of points, from "
                     "0, for each face)\n");
}

} // namespace
