// A renderer library that only counts: what stands behind the module when the module itself is measured.
#include "renderer/vt_bases.h"
#include "renderer/vt_local_scene_proxy.h"

namespace {

struct Counts {
    VtLong calls = 0;
    VtLong values = 0;
};

VtLong count(void *record, const VtArgList &list) {
    auto &counts = *static_cast<Counts *>(record);
    counts.values += list.Count();
    return ++counts.calls;
}

VtLong &size_of(void *list) { return *static_cast<VtLong *>(list); }
VtArgTag &tag_of(void *value) { return *static_cast<VtArgTag *>(value); }

} // namespace

VtLocalSceneProxy::VtLocalSceneProxy(VtLong) : record(new Counts) {}
VtLocalSceneProxy::~VtLocalSceneProxy() { delete static_cast<Counts *>(record); }
VtLong VtLocalSceneProxy::NewCamera(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewImager(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewInterface(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewInterior(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewLight(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewMaterial(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewObject(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewPattern(const char *, VtArgList &list) { return count(record, list); }
VtLong VtLocalSceneProxy::NewTexture(const char *) { return 0; }
VtLong VtLocalSceneProxy::NewTrimmer(const char *, VtArgList &list) { return count(record, list); }
void VtLocalSceneProxy::ImagerBegin(VtLong) {}
void VtLocalSceneProxy::ImagerEnd() {}
void VtLocalSceneProxy::InteriorBegin(VtLong) {}
void VtLocalSceneProxy::InteriorEnd() {}
void VtLocalSceneProxy::LightOn(VtLong) {}
void VtLocalSceneProxy::LightOff(VtLong) {}
void VtLocalSceneProxy::LightBegin() {}
void VtLocalSceneProxy::LightEnd() {}
void VtLocalSceneProxy::MaterialBegin(VtLong) {}
void VtLocalSceneProxy::MaterialEnd() {}
void VtLocalSceneProxy::AddObject(VtLong) {}
void VtLocalSceneProxy::TransformBegin(const VtTransform &) {}
void VtLocalSceneProxy::TransformEnd() {}
void VtLocalSceneProxy::Radiosity() {}
void VtLocalSceneProxy::Render(VtLong, VtLong, VtLong, double, double, double, double) {}

// A list is its number of values; a value is its tag.
VtArgList::VtArgList(VtLong, VtLong) { size_of(inside) = 0; }
VtArgList::~VtArgList() = default;
void VtArgList::Add(const VtArgType &) { ++size_of(inside); }
VtLong VtArgList::Count() const { return *reinterpret_cast<const VtLong *>(inside); }

VtArgType::VtArgType(VtLong) { tag_of(inside) = VtArgTag::Long; }
VtArgType::VtArgType(double) { tag_of(inside) = VtArgTag::Double; }
VtArgType::VtArgType(char *) { tag_of(inside) = VtArgTag::Text; }
VtArgType::VtArgType(VtVector2) { tag_of(inside) = VtArgTag::Vector2; }
VtArgType::VtArgType(VtVector3) { tag_of(inside) = VtArgTag::Vector3; }
VtArgType::VtArgType(VtVector4) { tag_of(inside) = VtArgTag::Vector4; }
VtArgType::VtArgType(VtMatrix2) { tag_of(inside) = VtArgTag::Matrix2; }
VtArgType::VtArgType(VtMatrix3) { tag_of(inside) = VtArgTag::Matrix3; }
VtArgType::VtArgType(VtMatrix4) { tag_of(inside) = VtArgTag::Matrix4; }
VtArgType::VtArgType(VtTransform) { tag_of(inside) = VtArgTag::Transform; }
VtArgType::VtArgType(const VtInstanceArray<VtLong> &) { tag_of(inside) = VtArgTag::LongArray; }
VtArgType::VtArgType(const VtInstanceArray<double> &) { tag_of(inside) = VtArgTag::DoubleArray; }
VtArgType::VtArgType(const VtInstanceArray<VtVector2> &) { tag_of(inside) = VtArgTag::Vector2Array; }
VtArgType::VtArgType(const VtInstanceArray<VtVector3> &) { tag_of(inside) = VtArgTag::Vector3Array; }
VtArgType::VtArgType(const VtInstanceArray<VtVector4> &) { tag_of(inside) = VtArgTag::Vector4Array; }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix2> &) { tag_of(inside) = VtArgTag::Matrix2Array; }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix3> &) { tag_of(inside) = VtArgTag::Matrix3Array; }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix4> &) { tag_of(inside) = VtArgTag::Matrix4Array; }
VtArgType::VtArgType(const VtInstanceArray<VtTransform> &) { tag_of(inside) = VtArgTag::TransformArray; }
VtArgType::~VtArgType() = default;

void VtTransform::Zero() { *this = {}; }
void VtTransform::Identity() { Scaling({1, 1, 1}); }
void VtTransform::Scaling(const VtVector3 &s) {
    *this = {};
    for (int i = 0; i < 3; ++i)
        matrix[i][i] = s[i];
    matrix[3][3] = 1;
}
void VtTransform::Translation(const VtVector3 &) { Identity(); }
void VtTransform::AlignmentToZ(const VtVector3 &) { Identity(); }
void VtTransform::AlignmentTo(const VtVector3 &, const VtVector3 &) { Identity(); }
void VtTransform::RotationAroundX(double) { Identity(); }
void VtTransform::RotationAroundY(double) { Identity(); }
void VtTransform::RotationAroundZ(double) { Identity(); }
void VtTransform::RotationAroundAxis(const VtVector3 &, const VtVector3 &, double) { Identity(); }
void VtTransform::ReflectionOnXY() { Scaling({1, 1, -1}); }

VtMatrix4 VtBezierBasis() { return {}; }
VtMatrix4 VtBSplineBasis() { return {}; }
VtMatrix4 VtCatmullRomBasis() { return {}; }
VtMatrix4 VtHermiteBasis() { return {}; }
