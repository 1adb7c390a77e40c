// A libVantor that draws nothing: it counts what a scene is made of, and prints the counts when asked to render.
#include "renderer/vt_bases.h"
#include "renderer/vt_local_scene_proxy.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <new>
#include <numbers>
#include <string>
#include <variant>
#include <vector>

// Values, in the room that the header reserves for them. The tag is the alternative's place in the variant, from 1.

template <class T> using Array = const VtInstanceArray<T> *;
using Value = std::variant<VtLong, double, const char *, VtVector2, VtVector3, VtVector4, VtMatrix2, VtMatrix3,
                           VtMatrix4, VtTransform, Array<VtLong>, Array<double>, Array<VtVector2>, Array<VtVector3>,
                           Array<VtVector4>, Array<VtMatrix2>, Array<VtMatrix3>, Array<VtMatrix4>, Array<VtTransform>>;
static_assert(sizeof(Value) <= sizeof(VtArgType) && std::is_trivially_destructible_v<Value>);

static const Value &value_of(const VtArgType &argument) { return *reinterpret_cast<const Value *>(&argument); }

#define BY_VALUE(type, result, name)                                                                                   \
    VtArgType::VtArgType(type value) { new (inside) Value(value); }                                                    \
    result VtArgType::name() const { return std::get<std::decay_t<result>>(value_of(*this)); }
#define BY_REFERENCE(type, name)                                                                                       \
    VtArgType::VtArgType(const VtInstanceArray<type> &array) { new (inside) Value(&array); }                           \
    const VtInstanceArray<type> &VtArgType::name() const { return *std::get<Array<type>>(value_of(*this)); }

BY_VALUE(VtLong, VtLong, Long)
BY_VALUE(double, double, Double)
BY_VALUE(char *, const char *, Text)
BY_VALUE(VtVector2, const VtVector2 &, Vector2)
BY_VALUE(VtVector3, const VtVector3 &, Vector3)
BY_VALUE(VtVector4, const VtVector4 &, Vector4)
BY_VALUE(VtMatrix2, const VtMatrix2 &, Matrix2)
BY_VALUE(VtMatrix3, const VtMatrix3 &, Matrix3)
BY_VALUE(VtMatrix4, const VtMatrix4 &, Matrix4)
BY_VALUE(VtTransform, const VtTransform &, Transform)
BY_REFERENCE(VtLong, LongArray)
BY_REFERENCE(double, DoubleArray)
BY_REFERENCE(VtVector2, Vector2Array)
BY_REFERENCE(VtVector3, Vector3Array)
BY_REFERENCE(VtVector4, Vector4Array)
BY_REFERENCE(VtMatrix2, Matrix2Array)
BY_REFERENCE(VtMatrix3, Matrix3Array)
BY_REFERENCE(VtMatrix4, Matrix4Array)
BY_REFERENCE(VtTransform, TransformArray)

VtArgType::VtArgType(const VtArgType &other) { new (inside) Value(value_of(other)); }
VtArgType::~VtArgType() = default;
VtArgTag VtArgType::Tag() const { return static_cast<VtArgTag>(value_of(*this).index() + 1); }

// Lists: a vector of copies, in the room of the VtArgList.

using Values = std::vector<VtArgType>;
static_assert(sizeof(Values) <= sizeof(VtArgList));
static Values &values_of(const VtArgList &list) { return *reinterpret_cast<Values *>(const_cast<VtArgList *>(&list)); }

VtArgList::VtArgList(VtLong, VtLong) { new (inside) Values; }
VtArgList::~VtArgList() { values_of(*this).~Values(); }
void VtArgList::Add(const VtArgType &value) { values_of(*this).push_back(value); }
VtLong VtArgList::Count() const { return static_cast<VtLong>(values_of(*this).size()); }
const VtArgType &VtArgList::At(VtLong i) const { return values_of(*this)[static_cast<std::size_t>(i)]; }

// The scene: a count for each kind of call. Ids go from 1.

struct Scene {
    std::map<std::string, VtLong> counts;
    VtLong last_id = 0;
};

static void count(void *record, const char *what, VtLong more = 1) {
    static_cast<Scene *>(record)->counts[what] += more;
}
static VtLong create(void *record, const char *what) {
    count(record, what);
    return ++static_cast<Scene *>(record)->last_id;
}

VtLocalSceneProxy::VtLocalSceneProxy(VtLong) : record(new Scene) {}
VtLocalSceneProxy::~VtLocalSceneProxy() { delete static_cast<Scene *>(record); }
VtLong VtLocalSceneProxy::NewCamera(const char *, VtArgList &) { return create(record, "NewCamera"); }
VtLong VtLocalSceneProxy::NewImager(const char *, VtArgList &) { return create(record, "NewImager"); }
VtLong VtLocalSceneProxy::NewInterface(const char *, VtArgList &) { return create(record, "NewInterface"); }
VtLong VtLocalSceneProxy::NewInterior(const char *, VtArgList &) { return create(record, "NewInterior"); }
VtLong VtLocalSceneProxy::NewLight(const char *, VtArgList &) { return create(record, "NewLight"); }
VtLong VtLocalSceneProxy::NewMaterial(const char *, VtArgList &) { return create(record, "NewMaterial"); }
VtLong VtLocalSceneProxy::NewObject(const char *, VtArgList &parameters) {
    // Arrays are read now: the script may change them as soon as this call has returned.
    for (VtLong i = 0; i < parameters.Count(); ++i)
        if (parameters.At(i).Tag() == VtArgTag::Vector3Array)
            parameters.At(i).Vector3Array().ForEachBlock(
                [&](const VtVector3 *, VtLong points) { count(record, "points of objects", points); });
    return create(record, "NewObject");
}
VtLong VtLocalSceneProxy::NewPattern(const char *, VtArgList &) { return create(record, "NewPattern"); }
VtLong VtLocalSceneProxy::NewTexture(const char *) { return create(record, "NewTexture"); }
VtLong VtLocalSceneProxy::NewTrimmer(const char *, VtArgList &) { return create(record, "NewTrimmer"); }
void VtLocalSceneProxy::ImagerBegin(VtLong) { count(record, "ImagerBegin"); }
void VtLocalSceneProxy::ImagerEnd() { count(record, "ImagerEnd"); }
void VtLocalSceneProxy::InteriorBegin(VtLong) { count(record, "InteriorBegin"); }
void VtLocalSceneProxy::InteriorEnd() { count(record, "InteriorEnd"); }
void VtLocalSceneProxy::LightOn(VtLong) { count(record, "LightOn"); }
void VtLocalSceneProxy::LightOff(VtLong) { count(record, "LightOff"); }
void VtLocalSceneProxy::LightBegin() { count(record, "LightBegin"); }
void VtLocalSceneProxy::LightEnd() { count(record, "LightEnd"); }
void VtLocalSceneProxy::MaterialBegin(VtLong) { count(record, "MaterialBegin"); }
void VtLocalSceneProxy::MaterialEnd() { count(record, "MaterialEnd"); }
void VtLocalSceneProxy::AddObject(VtLong) { count(record, "AddObject"); }
void VtLocalSceneProxy::TransformBegin(const VtTransform &) { count(record, "TransformBegin"); }
void VtLocalSceneProxy::TransformEnd() { count(record, "TransformEnd"); }
void VtLocalSceneProxy::Radiosity() { count(record, "Radiosity"); }
void VtLocalSceneProxy::Render(VtLong width, VtLong height, VtLong samples, double, double, double, double) {
    std::printf("Render %d x %d, %d samples\n", width, height, samples);
    for (const auto &[what, number] : static_cast<Scene *>(record)->counts)
        std::printf("%6d %s\n", number, what.c_str());
    std::fflush(stdout);
}

// Transforms. Every operation sets all sixteen entries. Points are rows, and angles are in degrees.

static VtTransform diagonal(const VtVector3 &d) {
    VtTransform t;
    for (int i = 0; i < 4; ++i)
        t[i][i] = i < 3 ? d[i] : 1;
    return t;
}

// Rodrigues' formula, about a line through the origin; the identity if the direction is zero.
static VtTransform rotation(VtVector3 k, double degrees) {
    VtTransform t = diagonal({1, 1, 1});
    k.Normalize();
    if (k.SqLength() == 0)
        return t;
    const double angle = degrees * (std::numbers::pi / 180);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int l = (i + 2) % 3;
        t[i][i] = c + (1 - c) * k[i] * k[i];
        t[i][j] = (1 - c) * k[i] * k[j] + s * k[l];
        t[i][l] = (1 - c) * k[i] * k[l] - s * k[j];
    }
    return t;
}

void VtTransform::Zero() { *this = {}; }
void VtTransform::Identity() { *this = diagonal({1, 1, 1}); }
void VtTransform::Scaling(const VtVector3 &factors) { *this = diagonal(factors); }
void VtTransform::Translation(const VtVector3 &offset) {
    Identity();
    matrix[3] = {offset[0], offset[1], offset[2], 1};
}
// What an alignment is, each library decides. Nothing is drawn, so that here it may be the identity.
void VtTransform::AlignmentToZ(const VtVector3 &) { Identity(); }
void VtTransform::AlignmentTo(const VtVector3 &, const VtVector3 &) { Identity(); }
void VtTransform::RotationAroundX(double degrees) { *this = rotation({1, 0, 0}, degrees); }
void VtTransform::RotationAroundY(double degrees) { *this = rotation({0, 1, 0}, degrees); }
void VtTransform::RotationAroundZ(double degrees) { *this = rotation({0, 0, 1}, degrees); }
void VtTransform::RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double degrees) {
    *this = rotation(direction, degrees);
    VtVector4 &offset = matrix[3]; // the point stays where it is
    for (int j = 0; j < 3; ++j)
        offset[j] = point[j] - (point[0] * matrix[0][j] + point[1] * matrix[1][j] + point[2] * matrix[2][j]);
}
void VtTransform::ReflectionOnXY() { *this = diagonal({1, 1, -1}); }

// Bases: whatever this library would expect to get back as a parameter.

VtMatrix4 VtBezierBasis() { return {{-1, 3, -3, 1}, {3, -6, 3, 0}, {-3, 3, 0, 0}, {1, 0, 0, 0}}; }
VtMatrix4 VtBSplineBasis() { return {{-1, 3, -3, 1}, {3, -6, 3, 0}, {-3, 0, 3, 0}, {1, 4, 1, 0}}; } // times 1/6
VtMatrix4 VtCatmullRomBasis() { return {{-0.5, 1.5, -1.5, 0.5}, {1, -2.5, 2, -0.5}, {-0.5, 0, 0.5, 0}, {0, 1, 0, 0}}; }
VtMatrix4 VtHermiteBasis() { return {{2, 1, -2, 1}, {-3, -2, 3, -1}, {0, 1, 0, 0}, {1, 0, 0, 0}}; }
