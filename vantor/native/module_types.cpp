// The types of the module vantorPM: which they are, and the numbers inside of their objects.
#include "vantor/native/module_types.h"

#include "algebra/vt_matrix.h"
#include "algebra/vt_transform.h"
#include "algebra/vt_vector.h"
#include "arrays/owned_array.h"
#include "interpreter/object.h"
#include "vantor/native/numbers.h"
#include "vantor/native/reference.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <sys/mman.h>
#include <type_traits>

namespace {

// New memory is touched page by page; of large ones a tenth as many calls into the kernel do.
void ask_for_large_pages(void *memory, std::size_t size) {
    constexpr std::size_t page = 4096;
    constexpr std::size_t least = 1 << 22;
    if (size < least)
        return;
    const std::size_t offset = page - reinterpret_cast<std::uintptr_t>(memory) % page;
    // A kernel that has none, or does not want to: it is slower, and nothing else.
    static_cast<void>(madvise(static_cast<char *>(memory) + offset, (size - offset) / page * page, MADV_HUGEPAGE));
}

template <class Element> bool fill(PyObject *object, const Numbers &numbers, Py_ssize_t count) {
    using Number = std::conditional_t<std::is_same_v<Element, VtLong>, VtLong, double>;
    auto &array = *native<OwnedArray<Element>>(object);
    if (!array.Resize(static_cast<VtLong>(count))) {
        PyErr_NoMemory();
        return false;
    }
    if (count == 0)
        return true;
    // Of a new array the first block holds all elements.
    Element *elements = array.FirstBlock()->data;
    ask_for_large_pages(elements, sizeof(Element) * static_cast<std::size_t>(count));
    return numbers.copy_to(reinterpret_cast<Number *>(elements));
}

template <class Element> PyObject *bytes_of(PyObject *object) {
    const auto &array = *native<OwnedArray<Element>>(object);
    Py_ssize_t count = 0;
    array.ForEachBlock([&](const Element *, VtLong some) { count += some; });
    constexpr auto size = static_cast<Py_ssize_t>(sizeof(Element));
    PyObject *bytes = PyByteArray_FromStringAndSize(nullptr, count * size);
    if (!bytes)
        return nullptr;
    char *to = PyByteArray_AS_STRING(bytes);
    ask_for_large_pages(to, static_cast<std::size_t>(count * size));
    array.ForEachBlock([&](const Element *elements, VtLong some) {
        std::memcpy(to, elements, static_cast<std::size_t>(some * size));
        to += some * size;
    });
    return bytes;
}

template <class Native> double *numbers_of(PyObject *object) {
    return reinterpret_cast<double *>(native<Native>(object));
}

ValueType value_types[] = {
    {{2}, nullptr, numbers_of<VtVector2>},      {{3}, nullptr, numbers_of<VtVector3>},
    {{4}, nullptr, numbers_of<VtVector4>},      {{2, 2}, nullptr, numbers_of<VtMatrix2>},
    {{3, 3}, nullptr, numbers_of<VtMatrix3>},   {{4, 4}, nullptr, numbers_of<VtMatrix4>},
    {{4, 4}, nullptr, numbers_of<VtTransform>},
};

ArrayType array_types[] = {
    {"intarray", {}, true, nullptr, nullptr, fill<VtLong>, bytes_of<VtLong>},
    {"floatarray", {}, false, nullptr, nullptr, fill<double>, bytes_of<double>},
    {"vector2array", {2}, false, nullptr, nullptr, fill<VtVector2>, bytes_of<VtVector2>},
    {"vector3array", {3}, false, nullptr, nullptr, fill<VtVector3>, bytes_of<VtVector3>},
    {"vector4array", {4}, false, nullptr, nullptr, fill<VtVector4>, bytes_of<VtVector4>},
    {"matrix2array", {2, 2}, false, nullptr, nullptr, fill<VtMatrix2>, bytes_of<VtMatrix2>},
    {"matrix3array", {3, 3}, false, nullptr, nullptr, fill<VtMatrix3>, bytes_of<VtMatrix3>},
    {"matrix4array", {4, 4}, false, nullptr, nullptr, fill<VtMatrix4>, bytes_of<VtMatrix4>},
    {"transformarray", {4, 4}, false, nullptr, nullptr, fill<VtTransform>, bytes_of<VtTransform>},
};

PyObject *transform_factory = nullptr;

// The types cannot be asked for by name: an object of each tells its own.
bool keep_type(PyObject *object, PyTypeObject *&type) {
    if (!object)
        return false;
    // A module of another build may keep its objects in another way.
    if (Py_TYPE(object)->tp_basicsize != static_cast<Py_ssize_t>(sizeof(Record<char>))) {
        PyErr_SetString(PyExc_ImportError, "vantor and the module vantorPM that was found are of different builds");
        return false;
    }
    type = Py_TYPE(object); // a static type, which lives as long as the process
    return true;
}

} // namespace

bool find_module_types() {
    const Reference module(PyImport_ImportModule("vantorPM"));
    if (!module)
        return false;

    const Reference v2(PyObject_CallMethod(module.get(), "vector2", "dd", 0.0, 0.0));
    const Reference v3(PyObject_CallMethod(module.get(), "vector3", "ddd", 0.0, 0.0, 0.0));
    const Reference v4(PyObject_CallMethod(module.get(), "vector4", "dddd", 0.0, 0.0, 0.0, 0.0));
    if (!v2 || !v3 || !v4)
        return false;
    PyObject *a = v2.get();
    PyObject *b = v3.get();
    PyObject *c = v4.get();
    const Reference values[] = {
        Reference(PyObject_CallMethod(module.get(), "matrix2", "OO", a, a)),
        Reference(PyObject_CallMethod(module.get(), "matrix3", "OOO", b, b, b)),
        Reference(PyObject_CallMethod(module.get(), "matrix4", "OOOO", c, c, c, c)),
        Reference(PyObject_CallMethod(module.get(), "transform", nullptr)),
    };
    bool is_good =
        keep_type(a, value_types[0].type) && keep_type(b, value_types[1].type) && keep_type(c, value_types[2].type);
    for (std::size_t i = 0; i < std::size(values); ++i)
        is_good = is_good && keep_type(values[i].get(), value_types[3 + i].type);
    for (ArrayType &array : array_types) {
        array.factory = is_good ? PyObject_GetAttrString(module.get(), array.name) : nullptr;
        const Reference object(array.factory ? PyObject_CallNoArgs(array.factory) : nullptr);
        is_good = is_good && keep_type(object.get(), array.type);
    }
    transform_factory = is_good ? PyObject_GetAttrString(module.get(), "transform") : nullptr;
    return transform_factory != nullptr;
}

const ValueType *value_type_of(PyObject *object) {
    for (const ValueType &value : value_types)
        if (Py_TYPE(object) == value.type)
            return &value;
    return nullptr;
}

const ArrayType *array_type_of(PyObject *object) {
    for (const ArrayType &array : array_types)
        if (Py_TYPE(object) == array.type)
            return &array;
    return nullptr;
}

const ArrayType *array_type_named(const char *name) {
    for (const ArrayType &array : array_types)
        if (std::strcmp(array.name, name) == 0)
            return &array;
    PyErr_Format(PyExc_ValueError, "\"%s\" is no array type of the module", name);
    return nullptr;
}

PyObject *new_transform(std::span<const double, 16> numbers) {
    PyObject *transform = PyObject_CallNoArgs(transform_factory);
    if (transform)
        std::memcpy(numbers_of<VtTransform>(transform), numbers.data(), numbers.size_bytes());
    return transform;
}

std::string text_of_shape(std::span<const Py_ssize_t> shape) {
    std::string text = "(";
    for (std::size_t i = 0; i < shape.size(); ++i)
        text += (i ? ", " : "") + (shape[i] < 0 ? std::string("N") : std::to_string(shape[i]));
    return text + (shape.size() == 1 ? ",)" : ")");
}
