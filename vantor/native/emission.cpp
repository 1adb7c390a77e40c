// Emission by a picture: which triangles of a mesh shine.
#include "vantor/native/emission.h"

#include "vantor/native/model_dicts.h"
#include "vantor/native/reference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

namespace {

using Uv = std::array<double, 2>;
using Triangle = std::array<std::int32_t, 3>;

// The bytes of an argument, as rows.
class Bytes {
  public:
    Bytes() = default;
    Bytes(const Bytes &) = delete;
    Bytes &operator=(const Bytes &) = delete;
    ~Bytes() {
        if (buffer.obj)
            PyBuffer_Release(&buffer);
    }
    template <class Row> std::span<const Row> rows() const {
        return {static_cast<const Row *>(buffer.buf), static_cast<std::size_t>(buffer.len) / sizeof(Row)};
    }
    Py_buffer buffer{};
};

struct Picture {
    std::span<const std::array<float, 3>> pixels;
    int width;
    int height;

    // Repeated beyond its edges; rows count from above, v from below.
    bool is_bright(Uv uv) const {
        const auto place = [](double x, int size) {
            const double inside = (x - std::floor(x)) * size;
            return inside >= 0 && inside < size ? static_cast<int>(inside) : 0; // NaN, too
        };
        const auto &pixel =
            pixels[static_cast<std::size_t>(place(1 - uv[1], height)) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(place(uv[0], width))];
        return pixel[0] > 0 || pixel[1] > 0 || pixel[2] > 0;
    }
};

// By points that lie about a pixel apart, up to a number that keeps huge triangles quick.
bool is_bright(const Picture &picture, const std::array<Uv, 3> &corners) {
    const Uv a{corners[1][0] - corners[0][0], corners[1][1] - corners[0][1]};
    const Uv b{corners[2][0] - corners[0][0], corners[2][1] - corners[0][1]};
    const double pixels = 0.5 * std::fabs(a[0] * b[1] - a[1] * b[0]) * picture.width * picture.height;
    constexpr double most_rows = 64;
    const int rows = std::isfinite(pixels) ? static_cast<int>(std::clamp(std::sqrt(2 * pixels), 1.0, most_rows)) : 1;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; i + j < rows; ++j) {
            const double s = (i + 1.0 / 3) / rows;
            const double t = (j + 1.0 / 3) / rows;
            if (picture.is_bright({corners[0][0] + s * a[0] + t * b[0], corners[0][1] + s * a[1] + t * b[1]}))
                return true;
        }
    return false;
}

PyObject *array_or_none(const std::vector<Triangle> &triangles) {
    if (triangles.empty())
        Py_RETURN_NONE;
    return array_of("intarray", "i", triangles.data(), triangles.size(), 3);
}

} // namespace

PyObject *emission_parts(PyObject *, PyObject *arguments) {
    Bytes triangle_bytes;
    Bytes uv_bytes;
    Bytes pixel_bytes;
    int width;
    int height;
    if (!PyArg_ParseTuple(arguments, "y*y*y*ii", &triangle_bytes.buffer, &uv_bytes.buffer, &pixel_bytes.buffer, &width,
                          &height))
        return nullptr;
    const auto triangles = triangle_bytes.rows<Triangle>();
    const auto uvs = uv_bytes.rows<Uv>();
    const Picture picture{pixel_bytes.rows<std::array<float, 3>>(), width, height};
    const auto is_inside = [&](std::int32_t i) { return i >= 0 && static_cast<std::size_t>(i) < uvs.size(); };
    const bool is_good =
        width > 0 && height > 0 &&
        picture.pixels.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height) &&
        std::ranges::all_of(triangles, [&](const Triangle &t) { return std::ranges::all_of(t, is_inside); });
    if (!is_good) {
        PyErr_SetString(PyExc_ValueError, "the triangles name no such texture coordinates, or the picture has no size");
        return nullptr;
    }
    try {
        std::vector<Triangle> dark;
        std::vector<Triangle> bright;
        for (const Triangle &triangle : triangles) {
            std::array<Uv, 3> corners;
            for (std::size_t i = 0; i < 3; ++i)
                corners[i] = uvs[static_cast<std::size_t>(triangle[i])];
            (is_bright(picture, corners) ? bright : dark).push_back(triangle);
        }
        Reference dark_array(array_or_none(dark));
        Reference bright_array(dark_array ? array_or_none(bright) : nullptr);
        return bright_array ? PyTuple_Pack(2, dark_array.get(), bright_array.get()) : nullptr;
    } catch (const PythonError &) {
        return nullptr;
    } catch (const std::bad_alloc &) {
        return PyErr_NoMemory();
    }
}
