// A script's parameter list into the renderer's.
#include "scene/arglist.h"

#include "algebra/matrix_types.h"
#include "algebra/transform_type.h"
#include "algebra/vector_types.h"
#include "arrays/array_types.h"
#include "interpreter/errors.h"
#include "interpreter/parse.h"

#include <cstdio>
#include <cstring>

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

enum class Conversion { Done, Unsupported, Failed }; // Failed: an error is set.

Conversion add_long(VtArgList &list, PyObject *element) {
    VtLong number;
    if (!parse::quickly(element, number)) {
        // A number beyond the renderer's long is what the interpreter once called a long integer, a type of its own.
        int overflow;
        const long wide = PyLong_AsLongAndOverflow(element, &overflow);
        number = static_cast<VtLong>(wide);
        if (overflow || number != wide)
            return Conversion::Unsupported;
    }
    list.Add(VtArgType(number));
    return Conversion::Done;
}

Conversion add_double(VtArgList &list, PyObject *element) {
    list.Add(VtArgType(PyFloat_AS_DOUBLE(element)));
    return Conversion::Done;
}

Conversion add_text(VtArgList &list, PyObject *element) {
    const char *text;
    if (!parse::quickly(element, text)) {
        Py_ssize_t length;
        text = PyUnicode_AsUTF8AndSize(element, &length);
        if (!text)
            return Conversion::Failed;
        if (std::strlen(text) != static_cast<std::size_t>(length)) {
            PyErr_SetString(PyExc_ValueError, "embedded null character");
            return Conversion::Failed;
        }
    }
    // The interface takes a char *, and promises not to write.
    list.Add(VtArgType(const_cast<char *>(text)));
    return Conversion::Done;
}

// A copy of a vector, matrix or transform.
template <class Native> Conversion add_value(VtArgList &list, PyObject *element) {
    list.Add(VtArgType(*native<Native>(element)));
    return Conversion::Done;
}

// The array object's own container.
template <class Element> Conversion add_array(VtArgList &list, PyObject *element) {
    const VtInstanceArray<Element> &array = *native<OwnedArray<Element>>(element);
    list.Add(VtArgType(array));
    return Conversion::Done;
}

struct Row {
    PyTypeObject *type;
    Conversion (*add)(VtArgList &list, PyObject *element);
};

// Compared by identity: a subclass, bool among them, is another type.
const Row rows[] = {
    {&PyLong_Type, add_long},
    {&PyFloat_Type, add_double},
    {&PyUnicode_Type, add_text},
    {&Vector2type, add_value<VtVector2>},
    {&Vector3type, add_value<VtVector3>},
    {&Vector4type, add_value<VtVector4>},
    {&Matrix2type, add_value<VtMatrix2>},
    {&Matrix3type, add_value<VtMatrix3>},
    {&Matrix4type, add_value<VtMatrix4>},
    {&Transformtype, add_value<VtTransform>},
    {&intarraytype, add_array<VtLong>},
    {&floatarraytype, add_array<double>},
    {&vector2arraytype, add_array<VtVector2>},
    {&vector3arraytype, add_array<VtVector3>},
    {&vector4arraytype, add_array<VtVector4>},
    {&matrix2arraytype, add_array<VtMatrix2>},
    {&matrix3arraytype, add_array<VtMatrix3>},
    {&matrix4arraytype, add_array<VtMatrix4>},
    {&transformarraytype, add_array<VtTransform>},
};

Conversion add(VtArgList &list, PyObject *element) {
    for (const Row &row : rows)
        if (Py_IS_TYPE(element, row.type))
            return row.add(list, element);
    return Conversion::Unsupported;
}

} // namespace

bool build_arglist(VtArgList &list, PyObject *elements) {
    // Read once: exact types only, none of which a script can extend, so that no script's code can change the list
    // meanwhile. (Up to CPython 3.11, text without a UTF-8 form may run the collector; the walk ends there.)
    const Py_ssize_t length = PyList_GET_SIZE(elements);
    for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject *element = PyList_GET_ITEM(elements, i);
        Py_INCREF(element);
        const Conversion conversion = add(list, element);
        Py_DECREF(element);

        if (conversion == Conversion::Unsupported) {
            char message[80];
            std::snprintf(message, sizeof message, "unsupported parameter type at %ld in the parameter list",
                          static_cast<long>(i));
            errors::module_error(VantorError, message);
        }
        if (conversion != Conversion::Done)
            return false;
    }
    return true;
}
