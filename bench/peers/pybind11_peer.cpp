// The same value classes, container and scene, bound with pybind11 in its usual style: what the module is compared
// with.
#include "algebra/vt_transform_algebra.h"
#include "arrays/owned_array.h"
#include "renderer/vt_local_scene_proxy.h"

#include <pybind11/pybind11.h>

#include <cstdio>
#include <string>

namespace py = pybind11;

namespace {

int in_range(int i, int size) {
    if (i < 0 || i >= size)
        throw py::index_error("index out-of-bounds");
    return i;
}

template <int N> std::string text(const VtVector<N> &v, const char *opening, const char *closing = " )") {
    std::string text = opening;
    for (int i = 0; i < N; ++i) {
        char number[32];
        std::snprintf(number, sizeof number, i ? ", %g" : "%g", v[i]);
        text += number;
    }
    return text + closing;
}

template <int N> std::string text(const VtMatrix<N> &m, const char *opening) {
    std::string text_of_rows = opening;
    for (int r = 0; r < N; ++r)
        text_of_rows += text(m[r], r ? ", (" : "(", ")");
    return text_of_rows + " )";
}

void bind_vectors(py::module_ &m) {
    const auto bind = [&]<int N>(py::class_<VtVector<N>> type, const char *opening) {
        using Vector = VtVector<N>;
        const auto get = [](const Vector &v, int i) { return v[in_range(i, N)]; };
        type.def("get", get)
            .def("__getitem__", get)
            .def(
                "set", [](Vector &v, int i, double x) -> Vector & { return v[in_range(i, N)] = x, v; },
                py::return_value_policy::reference_internal)
            .def("__setitem__", [](Vector &v, int i, double x) { v[in_range(i, N)] = x; })
            .def("__len__", [](const Vector &) { return N; })
            .def(
                "__iter__", [](Vector &v) { return py::make_iterator(&v[0], &v[0] + N); }, py::keep_alive<0, 1>())
            .def("length", &Vector::Length)
            .def("sqlength", &Vector::SqLength)
            .def(
                "normalize", [](Vector &v) -> Vector & { return v.Normalize(), v; },
                py::return_value_policy::reference_internal)
            .def("__repr__", [opening](const Vector &v) { return text(v, opening); });
    };
    bind(py::class_<VtVector3>(m, "vector3").def(py::init<double, double, double>()), "vector3( ");
    bind(py::class_<VtVector4>(m, "vector4").def(py::init<double, double, double, double>()), "vector4( ");
}

void bind_matrices(py::module_ &m) {
    py::class_<VtMatrix4>(m, "matrix4")
        .def(py::init<const VtVector4 &, const VtVector4 &, const VtVector4 &, const VtVector4 &>())
        .def("get", [](const VtMatrix4 &matrix, int r) { return matrix[in_range(r, 4)]; })
        .def(
            "set",
            [](VtMatrix4 &matrix, int r, const VtVector4 &row) -> VtMatrix4 & {
                return matrix[in_range(r, 4)] = row, matrix;
            },
            py::return_value_policy::reference_internal)
        .def("__repr__", [](const VtMatrix4 &matrix) { return text(matrix, "matrix4( "); });

    py::class_<VtTransform>(m, "transform")
        .def(py::init<>())
        .def("get", [](const VtTransform &t, int r) { return t[in_range(r, 4)]; })
        .def(
            "scaling", [](VtTransform &t, const VtVector3 &factors) -> VtTransform & { return t.Scaling(factors), t; },
            py::return_value_policy::reference_internal)
        .def(
            "compose", [](VtTransform &t, const VtTransform &u) -> VtTransform & { return t = Compose(t, u); },
            py::return_value_policy::reference_internal)
        .def(
            "invert", [](VtTransform &t) -> VtTransform & { return t = Invert(t); },
            py::return_value_policy::reference_internal);
    m.def("compose", &Compose);
    m.def("invert", &Invert);
}

// Iteration goes by __getitem__ and ends at its IndexError.
template <class T, class Write> void bind_array(py::module_ &m, const char *name, Write write) {
    using Array = OwnedArray<T>;
    const auto get = [](Array &a, int i) { return a.Read(in_range(i, a.Size())); };
    py::class_<Array>(m, name)
        .def(py::init<>())
        .def(
            "add", [](Array &a, const T &value) -> Array & { return a.Append(value), a; },
            py::return_value_policy::reference_internal)
        .def("get", get)
        .def("__getitem__", get)
        .def(
            "set", [](Array &a, int i, const T &value) -> Array & { return a.Write(in_range(i, a.Size()), value), a; },
            py::return_value_policy::reference_internal)
        .def("__setitem__", [](Array &a, int i, const T &value) { a.Write(in_range(i, a.Size()), value); })
        .def("__len__", &Array::Size)
        .def("getSize", &Array::Size)
        .def("__repr__", [opening = std::string("[") + name + " ", write](Array &a) {
            std::string written = opening;
            for (VtLong i = 0; i < a.Size(); ++i)
                written += write(a.Read(i)) + (i < a.Size() - 1 ? ", " : " ");
            return written + "]";
        });
}

class Scene {
  public:
    VtLong new_object(const char *type, const py::list &elements) {
        VtArgList list(0, 0);
        for (const py::handle element : elements)
            add(list, element);
        return proxy.NewObject(type, list);
    }

  private:
    static void add(VtArgList &list, py::handle element) {
        if (py::isinstance<py::int_>(element))
            list.Add(VtArgType(element.cast<VtLong>()));
        else if (py::isinstance<py::float_>(element))
            list.Add(VtArgType(element.cast<double>()));
        else if (py::isinstance<py::str>(element))
            list.Add(VtArgType(element.cast<std::string>().data()));
        else if (!(add_value<VtVector3>(list, element) || add_value<VtVector4>(list, element) ||
                   add_value<VtMatrix4>(list, element) || add_value<VtTransform>(list, element) ||
                   add_array<double>(list, element) || add_array<VtVector3>(list, element)))
            throw py::type_error("unsupported parameter type");
    }

    template <class T> static bool add_value(VtArgList &list, py::handle element) {
        if (!py::isinstance<T>(element))
            return false;
        list.Add(VtArgType(element.cast<const T &>()));
        return true;
    }

    template <class T> static bool add_array(VtArgList &list, py::handle element) {
        if (!py::isinstance<OwnedArray<T>>(element))
            return false;
        const VtInstanceArray<T> &array = element.cast<const OwnedArray<T> &>();
        list.Add(VtArgType(array));
        return true;
    }

    VtLocalSceneProxy proxy{10240};
};

} // namespace

PYBIND11_MODULE(pybind11_peer, m) {
    bind_vectors(m);
    bind_matrices(m);
    bind_array<double>(m, "floatarray", [](double number) {
        char written[32];
        std::snprintf(written, sizeof written, "%g", number);
        return std::string(written);
    });
    bind_array<VtVector3>(m, "vector3array", [](const VtVector3 &v) { return text(v, "( "); });
    py::class_<Scene>(m, "scene").def(py::init<>()).def("newObject", &Scene::new_object);
}
