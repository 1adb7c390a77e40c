// Picture files, read and written with the code of the renderer that ships with the module.
#include "vantor/native/picture_files.h"

#include "libvantor/images/files.h"
#include "libvantor/images/formats.h"
#include "libvantor/images/reading.h"
#include "vantor/native/reference.h"
#include "vantor/native/tiff_reading.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <optional>

namespace {

using vantor::Color;
using vantor::Display;

PyObject *file_error(const char *what, const char *path, const std::string &why) {
    PyErr_Format(PyExc_OSError, "cannot %s \"%s\": %s", what, path, why.c_str());
    return nullptr;
}

// Runs work without the interpreter's lock; what it throws comes back as text.
template <class Work> std::string unlocked(Work work) {
    std::string error;
    PyThreadState *state = PyEval_SaveThread();
    try {
        work();
    } catch (const std::bad_alloc &) {
        error = "there is not enough memory for it";
    } catch (const std::exception &exception) {
        error = exception.what();
    }
    PyEval_RestoreThread(state);
    return error;
}

// A bytearray of what the function makes of each pixel, row after row; the interpreter's lock is not held meanwhile.
template <class Function> PyObject *bytes_of(const vantor::Raster &raster, const Function &value_of) {
    using Value = decltype(value_of(0, 0));
    const auto count = static_cast<std::size_t>(raster.width()) * static_cast<std::size_t>(raster.height());
    PyObject *bytes = PyByteArray_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(count * sizeof(Value)));
    if (!bytes)
        return nullptr;
    char *to = PyByteArray_AS_STRING(bytes);
    unlocked([&] {
        for (int y = 0; y < raster.height(); ++y)
            for (int x = 0; x < raster.width(); ++x, to += sizeof(Value)) {
                const Value value = value_of(x, y);
                std::memcpy(to, &value, sizeof value);
            }
    });
    return bytes;
}

// The numbers of a picture as a script has them: float32, for each pixel those of an element.
template <class Element, int floats> class Pixels {
  public:
    Pixels() = default;
    Pixels(const Pixels &) = delete;
    Pixels &operator=(const Pixels &) = delete;
    ~Pixels() {
        if (buffer.obj)
            PyBuffer_Release(&buffer);
    }
    bool read(PyObject *value, Py_ssize_t count) {
        if (PyObject_GetBuffer(value, &buffer, PyBUF_C_CONTIGUOUS) < 0)
            return false;
        if (count > 0 && buffer.len == count * static_cast<Py_ssize_t>(sizeof(Element)))
            return true;
        PyErr_Format(PyExc_ValueError, "expected %zd pixels of %zd float32, got %zd bytes", count,
                     static_cast<Py_ssize_t>(floats), buffer.len);
        return false;
    }
    void copy_to(Element *pixels) const { std::memcpy(pixels, buffer.buf, static_cast<std::size_t>(buffer.len)); }

  private:
    Py_buffer buffer = {};
};
using Colors = Pixels<Color, 3>;
using Floats = Pixels<float, 1>;

std::optional<Display> display_named(const char *name) {
    const std::string_view text = name;
    if (text == "srgb")
        return Display::Srgb;
    if (text == "linear")
        return Display::Linear;
    if (text == "filmic")
        return Display::Filmic;
    PyErr_Format(PyExc_ValueError, "display expected \"srgb\", \"linear\" or \"filmic\", got \"%.60s\"", name);
    return {};
}

} // namespace

PyObject *read_picture(PyObject *, PyObject *argument) {
    PyObject *encoded = nullptr;
    if (!PyUnicode_FSConverter(argument, &encoded))
        return nullptr;
    const Reference held(encoded);
    const char *path = PyBytes_AS_STRING(encoded);
    vantor::ReadPicture read;
    const std::string error = unlocked([&] {
        if (is_tiff(path))
            read.raster = read_tiff(path);
        else
            read = vantor::read_picture(path);
    });
    if (!read.raster)
        return file_error("read", path, error.empty() ? read.why_not : error);

    const vantor::Raster &raster = *read.raster;
    Reference colors(bytes_of(raster, [&](int x, int y) { return raster.at(x, y); }));
    Reference alpha(raster.format().has_alpha ? bytes_of(raster, [&](int x, int y) { return raster.alpha_at(x, y); })
                                              : (Py_INCREF(Py_None), Py_None));
    if (!colors || !alpha)
        return nullptr;
    return Py_BuildValue("iiNN", raster.width(), raster.height(), colors.release(), alpha.release());
}

PyObject *read_layers(PyObject *, PyObject *argument) {
    PyObject *encoded = nullptr;
    if (!PyUnicode_FSConverter(argument, &encoded))
        return nullptr;
    const Reference held(encoded);
    const char *path = PyBytes_AS_STRING(encoded);
    Reference layers(PyDict_New());
    if (!layers)
        return nullptr;
    std::vector<std::string> names;
    std::string error = unlocked([&] { names = vantor::layer_names(path); });
    for (const std::string &name : names) {
        vantor::ReadPicture read;
        error = unlocked([&] { read = vantor::read_picture(path, name); });
        if (!read.raster)
            return file_error("read", path, error.empty() ? read.why_not : error);
        const Reference key(PyUnicode_DecodeUTF8(name.data(), static_cast<Py_ssize_t>(name.size()), "replace"));
        const Reference colors(bytes_of(*read.raster, [&](int x, int y) { return read.raster->at(x, y); }));
        if (!key || !colors || PyDict_SetItem(layers.get(), key.get(), colors.get()) < 0)
            return nullptr;
    }
    if (!error.empty())
        return file_error("read", path, error);
    return layers.release();
}

namespace {

// Pictures beside another one, from pairs of a name and float32 colours; false with an error set.
class Layers {
  public:
    Layers(int full_width, int full_height, const vantor::PixelArea &window) : black(full_width, full_height, window) {}

    bool read(PyObject *pairs) {
        const Reference items(PySequence_Fast(pairs, "expected pairs of a name and colours"));
        for (Py_ssize_t i = 0; items && i < PySequence_Fast_GET_SIZE(items.get()); ++i) {
            const char *name;
            PyObject *pixels;
            Colors colors;
            if (!PyArg_ParseTuple(PySequence_Fast_GET_ITEM(items.get(), i), "sO", &name, &pixels) ||
                !colors.read(pixels, static_cast<Py_ssize_t>(black.pixels.size())))
                return false;
            try {
                colors.copy_to(pictures.emplace_back(black).pixels.data());
                names.emplace_back(name);
            } catch (const std::bad_alloc &) {
                PyErr_NoMemory();
                return false;
            }
        }
        return items.get() != nullptr;
    }
    std::vector<vantor::FileLayer> of_file() const {
        std::vector<vantor::FileLayer> result;
        for (std::size_t i = 0; i < names.size(); ++i)
            result.push_back({names[i], &pictures[i]});
        return result;
    }

  private:
    const vantor::Picture black;
    std::vector<std::string> names;
    std::vector<vantor::Picture> pictures;
};

} // namespace

PyObject *write_picture(PyObject *, PyObject *arguments) {
    PyObject *encoded = nullptr;
    PyObject *pixels;
    int full_width;
    int full_height;
    vantor::PixelArea window;
    vantor::FileForm form;
    const char *display;
    PyObject *covered;
    PyObject *beside;
    if (!PyArg_ParseTuple(arguments, "O&ii(iiii)OfsOiO", PyUnicode_FSConverter, &encoded, &full_width, &full_height,
                          &window.x0, &window.y0, &window.x1, &window.y1, &pixels, &form.scale, &display, &covered,
                          &form.bits, &beside))
        return nullptr;
    const Reference held(encoded);
    const std::string path = PyBytes_AS_STRING(encoded);
    if (!vantor::has_known_format(path)) {
        PyErr_Format(PyExc_ValueError, "a picture's path ends in .png, .jpg, .jpeg, .tif, .tiff or .exr, not as \"%s\"",
                     path.c_str());
        return nullptr;
    }
    const std::span<const int> bits = vantor::bits_of_format(path);
    if (form.bits != 0 && std::ranges::find(bits, form.bits) == bits.end()) {
        const std::string expected =
            std::to_string(bits.front()) + (bits.size() > 1 ? " or " + std::to_string(bits.back()) : "");
        PyErr_Format(PyExc_ValueError, "bits of such a file: expected %s, got %d", expected.c_str(), form.bits);
        return nullptr;
    }
    const std::optional<Display> shown_as = display_named(display);
    Colors colors;
    Floats alphas;
    Layers layers(full_width, full_height, window);
    const Py_ssize_t count = static_cast<Py_ssize_t>(window.width()) * window.height();
    if (!shown_as || !colors.read(pixels, count) || (covered != Py_None && !alphas.read(covered, count)) ||
        !layers.read(beside))
        return nullptr;
    form.layers = layers.of_file();
    form.display = *shown_as;
    form.comment = "vantor";
    std::string why;
    std::optional<vantor::Picture> alpha;
    const std::string error = unlocked([&] {
        why = vantor::why_unwritable(path, window.width(), window.height());
        if (!why.empty())
            return;
        vantor::Picture picture(full_width, full_height, window);
        colors.copy_to(picture.pixels.data());
        if (covered != Py_None) {
            std::vector<float> values(picture.pixels.size());
            alphas.copy_to(values.data());
            alpha.emplace(full_width, full_height, window);
            std::ranges::transform(values, alpha->pixels.begin(), [](float a) { return Color{a, a, a}; });
            form.alpha = &*alpha;
        }
        why = vantor::write_picture(picture, form, path);
    });
    if (!why.empty() || !error.empty())
        return file_error("write", path.c_str(), why.empty() ? error : why);
    Py_RETURN_NONE;
}

PyObject *png_bytes(PyObject *, PyObject *arguments) {
    PyObject *pixels;
    int width;
    int height;
    float scale;
    const char *display;
    if (!PyArg_ParseTuple(arguments, "iiOfs", &width, &height, &pixels, &scale, &display))
        return nullptr;
    const std::optional<Display> shown_as = display_named(display);
    Colors colors;
    if (!shown_as || !colors.read(pixels, static_cast<Py_ssize_t>(width) * height))
        return nullptr;
    std::string file;
    const std::string error = unlocked([&] {
        std::vector<Color> linear(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        colors.copy_to(linear.data());
        vantor::BytePicture bytes{width, height, {}};
        bytes.values.reserve(3 * linear.size());
        for (const Color &c : linear)
            for (const float value : {c.r, c.g, c.b})
                bytes.values.push_back(vantor::shown(value * scale, *shown_as));
        file = vantor::png_file(bytes, "vantor");
    });
    if (!error.empty()) {
        PyErr_SetString(PyExc_OSError, error.c_str());
        return nullptr;
    }
    return PyBytes_FromStringAndSize(file.data(), static_cast<Py_ssize_t>(file.size()));
}
