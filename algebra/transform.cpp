// The Python type transform, and the module functions compose and invert.
#include "algebra/matrix_types.h"
#include "algebra/printed_rows.h"
#include "algebra/transform_type.h"
#include "algebra/vector_types.h"
#include "algebra/vt_transform_algebra.h"
#include "interpreter/method.h"
#include "interpreter/parse.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

VtTransform *checked(PyObject *self) {
    VtTransform *transform = native<VtTransform>(self);
    if (!transform)
        errors::module_error(VantorError, "Transform object has not been initialized");
    return transform;
}

// The setters: each hands its arguments to an operation of the renderer library, which replaces the value.

template <void (VtTransform::*Operation)()> PyObject *set_plain(PyObject *self) {
    VtTransform *transform = checked(self);
    if (!transform)
        return nullptr;

    (transform->*Operation)();
    return itself(self);
}

template <void (VtTransform::*Operation)(const VtVector3 &)>
PyObject *set_from_vector(PyObject *self, Arguments arguments) {
    VtTransform *transform = checked(self);
    PyObject *vector;
    if (!transform || !parse::bare(arguments, parse::Object{Vector3type, vector}))
        return nullptr;

    (transform->*Operation)(*native<VtVector3>(vector));
    return itself(self);
}

template <void (VtTransform::*Operation)(double)> PyObject *set_from_angle(PyObject *self, Arguments arguments) {
    VtTransform *transform = checked(self);
    double angle;
    if (!transform || !parse::bare(arguments, parse::Real{angle}))
        return nullptr;

    (transform->*Operation)(angle);
    return itself(self);
}

PyObject *transform_get(PyObject *self, Arguments arguments) {
    const VtTransform *transform = checked(self);
    int row;
    if (!transform || !parse::bare(arguments, parse::Index{row}))
        return nullptr;
    if (row < 0 || row > 3)
        return errors::index_out_of_bounds();

    return newvector4object((*transform)[row]);
}

PyObject *transform_matrix(PyObject *self, Arguments) {
    const VtTransform *transform = checked(self);
    return transform ? newmatrix4object(transform->Matrix()) : nullptr;
}

PyObject *transform_zero(PyObject *self, Arguments) { return set_plain<&VtTransform::Zero>(self); }
PyObject *transform_identity(PyObject *self, Arguments) { return set_plain<&VtTransform::Identity>(self); }
PyObject *transform_scaling(PyObject *self, Arguments arguments) {
    return set_from_vector<&VtTransform::Scaling>(self, arguments);
}
PyObject *transform_translation(PyObject *self, Arguments arguments) {
    return set_from_vector<&VtTransform::Translation>(self, arguments);
}
PyObject *transform_alignment_to_z(PyObject *self, Arguments arguments) {
    return set_from_vector<&VtTransform::AlignmentToZ>(self, arguments);
}

PyObject *transform_alignment_to(PyObject *self, Arguments arguments) {
    VtTransform *transform = checked(self);
    PyObject *a, *b;
    if (!transform || !parse::tuple(arguments, parse::Object{Vector3type, a}, parse::Object{Vector3type, b}))
        return nullptr;

    transform->AlignmentTo(*native<VtVector3>(a), *native<VtVector3>(b));
    return itself(self);
}

PyObject *transform_rotation_around_x(PyObject *self, Arguments arguments) {
    return set_from_angle<&VtTransform::RotationAroundX>(self, arguments);
}
PyObject *transform_rotation_around_y(PyObject *self, Arguments arguments) {
    return set_from_angle<&VtTransform::RotationAroundY>(self, arguments);
}
PyObject *transform_rotation_around_z(PyObject *self, Arguments arguments) {
    return set_from_angle<&VtTransform::RotationAroundZ>(self, arguments);
}

PyObject *transform_rotation_around_axis(PyObject *self, Arguments arguments) {
    VtTransform *transform = checked(self);
    PyObject *a, *b;
    double angle;
    if (!transform ||
        !parse::tuple(arguments, parse::Object{Vector3type, a}, parse::Object{Vector3type, b}, parse::Real{angle}))
        return nullptr;

    transform->RotationAroundAxis(*native<VtVector3>(a), *native<VtVector3>(b), angle);
    return itself(self);
}

PyObject *transform_reflection_on_xy(PyObject *self, Arguments) {
    return set_plain<&VtTransform::ReflectionOnXY>(self);
}

PyObject *transform_compose(PyObject *self, Arguments arguments) {
    VtTransform *transform = checked(self);
    PyObject *other;
    if (!transform || !parse::bare(arguments, parse::Object{Transformtype, other}))
        return nullptr;

    *transform = Compose(*transform, *native<VtTransform>(other));
    return itself(self);
}

PyObject *transform_invert(PyObject *self, Arguments) {
    VtTransform *transform = checked(self);
    if (!transform)
        return nullptr;

    *transform = Invert(*transform);
    return itself(self);
}

PyObject *transform_print(PyObject *self) {
    Text text;
    text << "transform( ";
    write_rows(text, native<VtTransform>(self)->Matrix(), "(", ")");
    return (text << " )").finish();
}

void transform_dealloc(PyObject *self) { dealloc<VtTransform>(self); }

PyMethodDef transformmethods[] = {
    METHOD("get", transform_get),
    METHOD("matrix", transform_matrix),
    METHOD("zero", transform_zero),
    METHOD("identity", transform_identity),
    METHOD("scaling", transform_scaling),
    METHOD("translation", transform_translation),
    METHOD("alignmentToZ", transform_alignment_to_z),
    METHOD("alignmentTo", transform_alignment_to),
    METHOD("rotationAroundX", transform_rotation_around_x),
    METHOD("rotationAroundY", transform_rotation_around_y),
    METHOD("rotationAroundZ", transform_rotation_around_z),
    METHOD("rotationAroundAxis", transform_rotation_around_axis),
    METHOD("reflectionOnXY", transform_reflection_on_xy),
    METHOD("compose", transform_compose),
    METHOD("invert", transform_invert),
    METHOD_END,
};

} // namespace

PyTypeObject Transformtype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "transform",
    .tp_basicsize = sizeof(transformobject),
    .tp_dealloc = transform_dealloc,
    .tp_repr = transform_print,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = transformmethods,
};

PyObject *newtransformobject() { return newtransformobject(VtTransform()); }
PyObject *newtransformobject(VtTransform value) { return new_object<VtTransform>(Transformtype, VantorError, value); }

PyObject *transform_new(PyObject *, PyObject *) { return newtransformobject(); }

PyObject *compose(PyObject *, PyObject *arguments) {
    PyObject *a, *b;
    if (!parse::module_tuple(arguments, parse::Object{Transformtype, a}, parse::Object{Transformtype, b}))
        return nullptr;

    return newtransformobject(Compose(*native<VtTransform>(a), *native<VtTransform>(b)));
}

PyObject *invert(PyObject *, PyObject *arguments) {
    PyObject *transform;
    if (!parse::module_tuple(arguments, parse::Object{Transformtype, transform}))
        return nullptr;

    return newtransformobject(Invert(*native<VtTransform>(transform)));
}
