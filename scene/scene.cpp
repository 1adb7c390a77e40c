// The Python type scene: every method is one call of the renderer's scene proxy.
#include "algebra/transform_type.h"
#include "interpreter/method.h"
#include "interpreter/parse.h"
#include "scene/arglist.h"
#include "scene/scene_type.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

using Proxy = VtLocalSceneProxy;

Proxy *checked(PyObject *self) {
    Proxy *proxy = native<Proxy>(self);
    if (!proxy)
        errors::module_error(VantorError, "scene object has not been initialized");
    return proxy;
}

// The bodies of the methods. An exception of the renderer passes through them; the parameter list is destroyed on the
// way.

// A type and a parameter list into an id.
template <VtLong (Proxy::*Operation)(const char *, VtArgList &)> PyObject *create(PyObject *self, Arguments arguments) {
    Proxy *proxy = checked(self);
    const char *type;
    PyObject *elements;
    if (!proxy || !parse::tuple(arguments, parse::TextOrNone{type}, parse::Object{PyList_Type, elements}))
        return nullptr;

    VtArgList list(0, 0);
    if (!build_arglist(list, elements))
        return nullptr;
    return PyLong_FromLong((proxy->*Operation)(type, list));
}

// A call with an id.
template <void (Proxy::*Operation)(VtLong)> PyObject *call_with_id(PyObject *self, Arguments arguments) {
    Proxy *proxy = checked(self);
    VtLong id;
    if (!proxy || !parse::bare(arguments, parse::Long{id}))
        return nullptr;

    (proxy->*Operation)(id);
    Py_RETURN_NONE;
}

// A call that looks at no argument.
template <void (Proxy::*Operation)()> PyObject *call_plain(PyObject *self) {
    Proxy *proxy = checked(self);
    if (!proxy)
        return nullptr;

    (proxy->*Operation)();
    Py_RETURN_NONE;
}

PyObject *scene_new_camera(PyObject *self, Arguments arguments) { return create<&Proxy::NewCamera>(self, arguments); }
PyObject *scene_new_imager(PyObject *self, Arguments arguments) { return create<&Proxy::NewImager>(self, arguments); }
PyObject *scene_new_interface(PyObject *self, Arguments arguments) {
    return create<&Proxy::NewInterface>(self, arguments);
}
PyObject *scene_new_interior(PyObject *self, Arguments arguments) {
    return create<&Proxy::NewInterior>(self, arguments);
}
PyObject *scene_new_light(PyObject *self, Arguments arguments) { return create<&Proxy::NewLight>(self, arguments); }
PyObject *scene_new_material(PyObject *self, Arguments arguments) {
    return create<&Proxy::NewMaterial>(self, arguments);
}
PyObject *scene_new_object(PyObject *self, Arguments arguments) { return create<&Proxy::NewObject>(self, arguments); }
PyObject *scene_new_pattern(PyObject *self, Arguments arguments) { return create<&Proxy::NewPattern>(self, arguments); }
PyObject *scene_new_trimmer(PyObject *self, Arguments arguments) { return create<&Proxy::NewTrimmer>(self, arguments); }

// The odd one out: a type and no list.
PyObject *scene_new_texture(PyObject *self, Arguments arguments) {
    Proxy *proxy = checked(self);
    const char *type;
    if (!proxy || !parse::bare(arguments, parse::TextOrNone{type}))
        return nullptr;

    return PyLong_FromLong(proxy->NewTexture(type));
}

PyObject *scene_imager_begin(PyObject *self, Arguments arguments) {
    return call_with_id<&Proxy::ImagerBegin>(self, arguments);
}
PyObject *scene_imager_end(PyObject *self, Arguments) { return call_plain<&Proxy::ImagerEnd>(self); }
PyObject *scene_interior_begin(PyObject *self, Arguments arguments) {
    return call_with_id<&Proxy::InteriorBegin>(self, arguments);
}
PyObject *scene_interior_end(PyObject *self, Arguments) { return call_plain<&Proxy::InteriorEnd>(self); }
PyObject *scene_light_on(PyObject *self, Arguments arguments) { return call_with_id<&Proxy::LightOn>(self, arguments); }
PyObject *scene_light_off(PyObject *self, Arguments arguments) {
    return call_with_id<&Proxy::LightOff>(self, arguments);
}
PyObject *scene_light_begin(PyObject *self, Arguments) { return call_plain<&Proxy::LightBegin>(self); }
PyObject *scene_light_end(PyObject *self, Arguments) { return call_plain<&Proxy::LightEnd>(self); }
PyObject *scene_material_begin(PyObject *self, Arguments arguments) {
    return call_with_id<&Proxy::MaterialBegin>(self, arguments);
}
PyObject *scene_material_end(PyObject *self, Arguments) { return call_plain<&Proxy::MaterialEnd>(self); }
PyObject *scene_add_object(PyObject *self, Arguments arguments) {
    return call_with_id<&Proxy::AddObject>(self, arguments);
}

PyObject *scene_transform_begin(PyObject *self, Arguments arguments) {
    Proxy *proxy = checked(self);
    PyObject *transform;
    if (!proxy || !parse::bare(arguments, parse::Object{Transformtype, transform}))
        return nullptr;

    const VtTransform copy = *native<VtTransform>(transform);
    proxy->TransformBegin(copy);
    Py_RETURN_NONE;
}
PyObject *scene_transform_end(PyObject *self, Arguments) { return call_plain<&Proxy::TransformEnd>(self); }

PyObject *scene_radiosity(PyObject *self, Arguments) { return call_plain<&Proxy::Radiosity>(self); }

PyObject *scene_render(PyObject *self, Arguments arguments) {
    Proxy *proxy = checked(self);
    VtLong l1, l2, l3;
    double d1 = 0.0, d2 = 0.0, d3 = 1.0, d4 = 1.0;
    if (!proxy || !parse::tuple(arguments, parse::Long{l1}, parse::Long{l2}, parse::Long{l3}, parse::Optional{},
                                parse::Real{d1}, parse::Real{d2}, parse::Real{d3}, parse::Real{d4}))
        return nullptr;

    proxy->Render(l1, l2, l3, d1, d2, d3, d4);
    Py_RETURN_NONE;
}

void scene_dealloc(PyObject *self) { dealloc<Proxy>(self); }

PyMethodDef scenemethods[] = {
    METHOD("newCamera", scene_new_camera),
    METHOD("newImager", scene_new_imager),
    METHOD("newInterface", scene_new_interface),
    METHOD("newInterior", scene_new_interior),
    METHOD("newLight", scene_new_light),
    METHOD("newMaterial", scene_new_material),
    METHOD("newObject", scene_new_object),
    METHOD("newPattern", scene_new_pattern),
    METHOD("newTexture", scene_new_texture),
    METHOD("newTrimmer", scene_new_trimmer),
    METHOD("imagerBegin", scene_imager_begin),
    METHOD("imagerEnd", scene_imager_end),
    METHOD("interiorBegin", scene_interior_begin),
    METHOD("interiorEnd", scene_interior_end),
    METHOD("lightOn", scene_light_on),
    METHOD("lightOff", scene_light_off),
    METHOD("lightBegin", scene_light_begin),
    METHOD("lightEnd", scene_light_end),
    METHOD("materialBegin", scene_material_begin),
    METHOD("materialEnd", scene_material_end),
    METHOD("addObject", scene_add_object),
    METHOD("transformBegin", scene_transform_begin),
    METHOD("transformEnd", scene_transform_end),
    METHOD("radiosity", scene_radiosity),
    METHOD("render", scene_render),
    METHOD_END,
};

} // namespace

PyTypeObject scenetype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "scene",
    .tp_basicsize = sizeof(sceneobject),
    .tp_dealloc = scene_dealloc,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = scenemethods,
};

PyObject *newsceneobject(VtLong n) { return new_object<Proxy>(scenetype, VantorError, n); }

PyObject *scene_new(PyObject *, PyObject *arguments) {
    VtLong n = 10240;
    if (!parse::module_tuple(arguments, parse::Optional{}, parse::Long{n}))
        return nullptr;

    return newsceneobject(n);
}
