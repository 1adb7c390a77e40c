// Emission by a picture: which triangles of a mesh shine, and how brightly.
#include "vantor/native/emission.h"

#include "vantor/native/model_dicts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <span>
#include <vector>

namespace {

using Color = std::array<double, 3>;
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
    Color at(Uv uv) const {
        const auto place = [](double x, int size) {
            const double inside = (x - std::floor(x)) * size;
            return inside >= 0 && inside < size ? static_cast<int>(inside) : 0; // NaN, too
        };
        const auto &pixel =
            pixels[static_cast<std::size_t>(place(1 - uv[1], height)) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(place(uv[0], width))];
        return {double{pixel[0]}, double{pixel[1]}, double{pixel[2]}};
    }
};

// By points that lie about a pixel apart, up to a number that keeps huge triangles quick.
Color mean_over(const Picture &picture, const std::array<Uv, 3> &corners) {
    const Uv a{corners[1][0] - corners[0][0], corners[1][1] - corners[0][1]};
    const Uv b{corners[2][0] - corners[0][0], corners[2][1] - corners[0][1]};
    const double pixels = 0.5 * std::fabs(a[0] * b[1] - a[1] * b[0]) * picture.width * picture.height;
    constexpr double most_rows = 64;
    const int rows = std::isfinite(pixels) ? static_cast<int>(std::clamp(std::sqrt(2 * pixels), 1.0, most_rows)) : 1;
    Color sum{};
    for (int i = 0; i < rows; ++i)
        for (int j = 0; i + j < rows; ++j) {
            const double s = (i + 1.0 / 3) / rows;
            const double t = (j + 1.0 / 3) / rows;
            const Color color = picture.at({corners[0][0] + s * a[0] + t * b[0], corners[0][1] + s * a[1] + t * b[1]});
            for (std::size_t c = 0; c < 3; ++c)
                sum[c] += color[c];
        }
    const int count = rows * (rows + 1) / 2;
    for (double &value : sum)
        value = std::isfinite(value) && value > 0 ? value / count : 0;
    return sum;
}

// What has the same key differs by less than a quarter of a stop, and little in hue.
using Key = std::array<int, 3>;
Key key_of(const Color &color) {
    const double sum = color[0] + color[1] + color[2];
    return {static_cast<int>(std::floor(4 * std::log2(sum))), static_cast<int>(8 * color[0] / sum),
            static_cast<int>(8 * color[1] / sum)};
}

struct Group {
    Color sum{};
    std::vector<Triangle> triangles;
};

std::vector<Group> groups_of(std::span<const Triangle> triangles, std::span<const Uv> uvs, const Picture &picture) {
    std::vector<Color> means;
    double greatest = 0;
    for (const Triangle &triangle : triangles) {
        std::array<Uv, 3> corners;
        for (std::size_t i = 0; i < 3; ++i)
            corners[i] = uvs[static_cast<std::size_t>(triangle[i])];
        means.push_back(mean_over(picture, corners));
        greatest = std::max(greatest, *std::ranges::max_element(means.back()));
    }
    std::vector<Group> groups(1);
    std::map<Key, std::size_t> group_of;
    constexpr double least = 1.0 / 512; // of the greatest: what is darker is nothing beside it
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        std::size_t group = 0;
        if (greatest > 0 && *std::ranges::max_element(means[i]) > least * greatest) {
            group = group_of.try_emplace(key_of(means[i]), groups.size()).first->second;
            groups.resize(std::max(groups.size(), group + 1));
        }
        for (std::size_t c = 0; c < 3; ++c)
            groups[group].sum[c] += means[i][c];
        groups[group].triangles.push_back(triangles[i]);
    }
    return groups;
}

PyObject *pair_of(const Group &group, bool shines) {
    const double count = shines ? static_cast<double>(group.triangles.size()) : INFINITY;
    return Py_BuildValue("(ddd)N", group.sum[0] / count, group.sum[1] / count, group.sum[2] / count,
                         group.triangles.empty()
                             ? (Py_INCREF(Py_None), Py_None)
                             : array_of("intarray", "i", group.triangles.data(), group.triangles.size(), 3));
}

} // namespace

PyObject *emission_groups(PyObject *, PyObject *arguments) {
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
        const std::vector<Group> groups = groups_of(triangles, uvs, picture);
        return list_of(static_cast<unsigned>(groups.size()), [&](unsigned i) { return pair_of(groups[i], i > 0); });
    } catch (const PythonError &) {
        return nullptr;
    } catch (const std::bad_alloc &) {
        return PyErr_NoMemory();
    }
}
