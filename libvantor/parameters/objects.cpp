// Objects: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr Parameter trimmers_parameter = {"trimmers",
                                          ValueKind::TrimmerIds,
                                          any,
                                          Presence::Optional,
                                          none,
                                          "",
                                          "what cuts parts of it away: a point stays if every one of them keeps it"};

constexpr Parameter box_parameters[] = {
    {"min", ValueKind::Vector3, any, Presence::Default, value(-1, -1, -1), "length",
     "the corner with the least coordinates"},
    {"max", ValueKind::Vector3, any, Presence::Default, value(1, 1, 1), "length",
     "the corner with the greatest coordinates"},
    trimmers_parameter,
};
constexpr Parameter cone_parameters[] = {
    {"from", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "the middle of its base"},
    {"to", ValueKind::Vector3, coordinate, Presence::Default, value(0, 1, 0), "length", "the middle of its tip"},
    {"radius", ValueKind::Number, size, Presence::Default, value(1), "length", "the radius of its base"},
    {"tip_radius", ValueKind::Number, not_negative_length, Presence::Default, value(0), "length",
     "the radius of its tip, where it is cut off; 0 for a point"},
    {"caps", ValueKind::Switch, off_or_on, Presence::Default, value(1), "", "whether it is closed"},
    trimmers_parameter,
};
constexpr Parameter cylinder_parameters[] = {
    {"from", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "the middle of one end"},
    {"to", ValueKind::Vector3, coordinate, Presence::Default, value(0, 1, 0), "length", "the middle of the other end"},
    {"radius", ValueKind::Number, size, Presence::Default, value(1), "length", "its radius"},
    {"caps", ValueKind::Switch, off_or_on, Presence::Default, value(1), "", "whether it is closed"},
    trimmers_parameter,
};
constexpr Parameter disk_parameters[] = {
    {"center", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "its centre"},
    {"normal", ValueKind::Vector3, direction, Presence::Default, value(0, 0, 1), "",
     "where its front faces, of any length"},
    {"radius", ValueKind::Number, size, Presence::Default, value(1), "length", "its radius"},
    {"inner_radius", ValueKind::Number, not_negative_length, Presence::Default, value(0), "length",
     "the radius of a hole in its middle, below \"radius\"; 0 for none"},
    trimmers_parameter,
};
constexpr Parameter instances_parameters[] = {
    {"object", ValueKind::ObjectId, any, Presence::Required, none, "", "the object; no instances itself"},
    {"places", ValueKind::TransformArray, any, Presence::Required, none, "", "a transform for each instance"},
    {"colors", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a colour for each instance, components from 0, which the material's colour is multiplied with"},
};
constexpr Parameter mesh_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length", "the corners of the faces"},
    {"triangles", ValueKind::LongArray, any, Presence::Optional, none, "",
     "three indices of points, from 0, for each triangle; may be left out if there are quads"},
    {"quads", ValueKind::LongArray, any, Presence::Optional, none, "",
     "four indices of points, counter-clockwise, for each quad; may be left out if there are triangles"},
    {"normals", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a normal for each point; left out, triangles are flat"},
    {"uvs", ValueKind::Vector2Array, any, Presence::Optional, none, "",
     "a texture coordinate for each point; left out, each triangle has 0 to 1 along its first and last edge"},
    {"colors", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a colour for each point, components from 0, which the material's colour is multiplied with"},
    trimmers_parameter,
};
constexpr Parameter patches_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length",
     "the grid of control points, row after row; u runs along the rows, v from row to row"},
    {"columns", ValueKind::Integer, column_count, Presence::Required, none, "", "how many points a row has"},
    {"basis", ValueKind::Matrix4, any, Presence::Optional, none, "",
     "the basis of the cubics both ways, as a spline function of the module gives it; left out, Bezier"},
    {"basis_u", ValueKind::Matrix4, any, Presence::Optional, none, "", "the basis along u alone"},
    {"basis_v", ValueKind::Matrix4, any, Presence::Optional, none, "", "the basis along v alone"},
    {"step", ValueKind::Integer, spline_step, Presence::Optional, none, "",
     "how many points further the next patch begins; left out, what the module has for the basis, or else 3"},
    {"step_u", ValueKind::Integer, spline_step, Presence::Optional, none, "", "the step along u alone"},
    {"step_v", ValueKind::Integer, spline_step, Presence::Optional, none, "", "the step along v alone"},
    {"wrap_u", ValueKind::Switch, off_or_on, Presence::Default, value(0), "",
     "whether each row goes on from its last point to its first"},
    {"wrap_v", ValueKind::Switch, off_or_on, Presence::Default, value(0), "",
     "whether the last row is followed by the first"},
    {"divisions", ValueKind::Integer, division_count, Presence::Default, value(16), "",
     "into how many strips each patch is cut, both ways"},
    trimmers_parameter,
};
constexpr Parameter points_parameters[] = {
    {"positions", ValueKind::Vector3Array, any, Presence::Required, none, "length", "the centre of each"},
    {"radius", ValueKind::Number, size, Presence::Default, value(0.01), "length", "the radius of all"},
    {"radii", ValueKind::DoubleArray, any, Presence::Optional, none, "length",
     "a radius for each, from 1e-9 to 1e9, in place of \"radius\""},
    {"colors", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a colour for each, components from 0, which the material's colour is multiplied with"},
};
constexpr Parameter quad_parameters[] = {
    {"origin", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length",
     "one corner of a parallelogram"},
    {"edge_u", ValueKind::Vector3, direction, Presence::Default, value(1, 0, 0), "length",
     "from the origin to the next corner"},
    {"edge_v", ValueKind::Vector3, direction, Presence::Default, value(0, 1, 0), "length",
     "from the origin to the other neighbour; edge_u x edge_v points to the front"},
    {"corners", ValueKind::Vector3Array, any, Presence::Optional, none, "length",
     "four corners in place of origin and edges, counter-clockwise when seen from the front"},
    trimmers_parameter,
};
constexpr Parameter sphere_parameters[] = {
    {"center", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "its centre"},
    {"radius", ValueKind::Number, size, Presence::Default, value(1), "length", "its radius"},
    trimmers_parameter,
};
constexpr std::string_view subdivision_boundaries[] = {"smooth", "sharp"};
constexpr Parameter subdivision_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length", "the corners of the faces"},
    {"counts", ValueKind::LongArray, any, Presence::Optional, none, "",
     "how many corners each face has; left out, all have four"},
    {"indices", ValueKind::LongArray, any, Presence::Required, none, "",
     "the indices of points, from 0, of each face, counter-clockwise"},
    {"crease_edges", ValueKind::LongArray, any, Presence::Optional, none, "",
     "two indices of points for each edge that is a crease"},
    {"crease_weights", ValueKind::DoubleArray, any, Presence::Optional, none, "",
     "how sharp each crease is: for so many subdivisions it is one; left out, for all of them"},
    {"corner_points", ValueKind::LongArray, any, Presence::Optional, none, "",
     "indices of points that stay where they are"},
    {"uvs", ValueKind::Vector2Array, any, Presence::Optional, none, "",
     "a texture coordinate for each point, linear over the faces; left out, as for a mesh"},
    {"levels", ValueKind::Integer, subdivision_levels, Presence::Default, value(3), "",
     "how often each face is subdivided, before its points go where infinitely many would put them"},
    {"boundary", ValueKind::Choice, any, Presence::Default, none, "",
     "whether the border of an open surface goes round its corners smoothly", subdivision_boundaries},
};
constexpr Parameter torus_parameters[] = {
    {"center", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "its centre"},
    {"axis", ValueKind::Vector3, direction, Presence::Default, value(0, 1, 0), "",
     "the axis of the ring, of any length"},
    {"major_radius", ValueKind::Number, size, Presence::Default, value(1), "length",
     "from the centre to the middle of the tube"},
    {"minor_radius", ValueKind::Number, size, Presence::Default, value(0.25), "length",
     "the radius of the tube, from a millionth of \"major_radius\" to all of it"},
    trimmers_parameter,
};
constexpr std::string_view curve_kinds[] = {"ribbon", "tube"};
constexpr Parameter curves_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length",
     "the control points, curve after curve"},
    {"counts", ValueKind::LongArray, any, Presence::Optional, none, "",
     "how many control points each curve has; left out, there is one curve"},
    {"basis", ValueKind::Matrix4, any, Presence::Optional, none, "",
     "the basis of the cubics, as a spline function of the module gives it; left out, B-spline"},
    {"step", ValueKind::Integer, spline_step, Presence::Optional, none, "",
     "how many points further the next cubic begins; left out, what the module has for the basis, or else 3"},
    {"radius", ValueKind::Number, size, Presence::Default, value(0.01), "length", "half the width, everywhere"},
    {"radii", ValueKind::DoubleArray, any, Presence::Optional, none, "length",
     "a radius for each control point, along the same splines"},
    {"kind", ValueKind::Choice, any, Presence::Default, none, "",
     "flat ribbons that face whoever looks, or round tubes, open at their ends", curve_kinds},
};
constexpr Type objects_table[] = {
    {"box", "A box along the axes; its front is outside.", box_parameters},
    {"cone", "A cone, to its point or cut off; its front is outside.", cone_parameters},
    {"curves", "Ribbons or tubes along cubic splines: hair, grass, wires.", curves_parameters},
    {"cylinder", "A cylinder; its front is outside.", cylinder_parameters},
    {"disk", "A disk, with or without a hole.", disk_parameters},
    {"instances", "Another object, at many places.", instances_parameters},
    {"mesh", "Triangles and quads; the front is where their corners appear counter-clockwise.", mesh_parameters},
    {"patches", "A grid of bicubic patches; its front is where u, v and the normal are right-handed.",
     patches_parameters},
    {"points", "A cloud of points: spheres, by the million; their fronts are outside.", points_parameters},
    {"quad", "A parallelogram, or any four corners.", quad_parameters},
    {"sphere", "A sphere; its front is outside.", sphere_parameters},
    {"subdivision", "The smooth surface of a polygon mesh (Catmull, Clark).", subdivision_parameters},
    {"torus", "A ring; its front is outside.", torus_parameters},
};

} // namespace

std::span<const Type> tables::object_types() { return objects_table; }

} // namespace vantor
