// Model files.
#include "vantor/native/model_files.h"

#include "vantor/native/model_dicts.h"
#include "vantor/native/ply_reading.h"
#include "vantor/native/values.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>

#ifdef VANTOR_ASSIMP
#include "vantor/native/assimp_reading.h"
#endif

PyObject *array_of(const char *type, const char *format, const void *numbers, std::size_t rows, std::size_t columns) {
    constexpr std::size_t size = 4; // of a float, and of an index
    const Reference bytes =
        checked(PyMemoryView_FromMemory(const_cast<char *>(static_cast<const char *>(numbers)),
                                        static_cast<Py_ssize_t>(rows * columns * size), PyBUF_READ));
    const Reference view = checked(PyObject_CallMethod(
        bytes.get(), "cast", "s(nn)", format, static_cast<Py_ssize_t>(rows), static_cast<Py_ssize_t>(columns)));
    const Reference arguments = checked(Py_BuildValue("sO", type, view.get()));
    return to_array(nullptr, arguments.get());
}

namespace {

// Why a file is not even tried; empty if it is.
std::string why_unreadable(const char *path) {
    struct stat found;
    if (stat(path, &found) != 0)
        return std::strerror(errno);
    if (!S_ISREG(found.st_mode)) // anything else may never come to an end
        return S_ISDIR(found.st_mode) ? std::strerror(EISDIR) : "Not a regular file";
    return {};
}

bool is_ply(const char *path) {
    char start[4] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    const std::string_view signature(start, sizeof start);
    const std::string_view name = path;
    if (name.ends_with(".ply") || name.ends_with(".PLY"))
        return true;
    return signature == "ply\n" || signature == "ply\r";
}

template <std::size_t Columns, class Number>
PyObject *rows(const char *type, const char *format, const std::vector<std::array<Number, Columns>> &numbers) {
    if (numbers.empty())
        Py_RETURN_NONE;
    return array_of(type, format, numbers.data(), numbers.size(), Columns);
}

// Null with why set if the file cannot be read.
PyObject *ply_model(const char *path, std::string &why) {
    PlyMesh mesh;
    PyThreadState *state = PyEval_SaveThread();
    try {
        std::ifstream stream(path, std::ios::binary | std::ios::ate);
        std::string bytes(static_cast<std::size_t>(std::max<std::streamoff>(stream.tellg(), 0)), '\0');
        stream.seekg(0);
        if (stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
            mesh = read_ply(bytes);
        else
            why = "it cannot be read to its end";
    } catch (const std::bad_alloc &) {
        why = "there is not enough memory for it";
    } catch (const std::exception &exception) {
        why = exception.what();
    }
    PyEval_RestoreThread(state);
    if (!why.empty())
        return nullptr;

    Dict only;
    only.set("name", PyUnicode_FromString(""));
    only.set("points", rows("vector3array", "f", mesh.points));
    only.set("triangles", rows("intarray", "i", mesh.triangles));
    only.set("normals", rows("vector3array", "f", mesh.normals));
    only.set("uvs", rows("vector2array", "f", mesh.uvs));
    only.set("colors", rows("vector3array", "f", mesh.colors));
    Dict model;
    model.set("meshes", Py_BuildValue("[N]", only.release()));
    return model.release();
}

PyObject *model_in(const char *path, std::string &why) {
    if (is_ply(path)) // what Assimp makes of damaged ones never comes to an end
        return ply_model(path, why);
#ifdef VANTOR_ASSIMP
    return read_with_assimp(path, why);
#else
    why = "this build of vantor reads PLY files only; it was made without Assimp (Debian: libassimp-dev)";
    return nullptr;
#endif
}

} // namespace

PyObject *read_model(PyObject *, PyObject *argument) {
    PyObject *encoded = nullptr;
    if (!PyUnicode_FSConverter(argument, &encoded))
        return nullptr;
    const Reference held(encoded);
    const char *path = PyBytes_AS_STRING(encoded);
    std::string why = why_unreadable(path);
    try {
        PyObject *model = why.empty() ? model_in(path, why) : nullptr;
        if (model || PyErr_Occurred())
            return model;
    } catch (const PythonError &) {
        return nullptr;
    } catch (const std::bad_alloc &) {
        return PyErr_NoMemory();
    }
    for (char &c : why)
        if (c == '\n' || c == '\r')
            c = ' ';
    PyErr_Format(PyExc_OSError, "cannot load \"%s\": %s", path, why.c_str());
    return nullptr;
}
