// What tests do with a scene: parameter lists, pictures, and the lines on the error stream.
#pragma once

#include "arrays/vt_instance_array.h"
#include "renderer/vt_local_scene_proxy.h"

#include <ImfArray.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace scripted {

/// A parameter list, written down like a script's.
class List : public VtArgList {
  public:
    List() : VtArgList(0, 0) {}
    template <class... Values> explicit List(const Values &...values) : List() { (add(values), ...); }

    void add(int value) { Add(VtArgType(static_cast<VtLong>(value))); }
    void add(double value) { Add(VtArgType(value)); }
    void add(const char *text) { Add(VtArgType(const_cast<char *>(text))); }
    void add(const std::string &text) { add(text.c_str()); }
    template <class Value> void add(const Value &value) { Add(VtArgType(value)); }
};

using Points = VtInstanceArray<VtVector3>;
using Indices = VtInstanceArray<VtLong>;

inline void fill(Points &array, const std::vector<VtVector3> &values) {
    for (const VtVector3 &value : values)
        array.Add(value);
}
inline void fill(Indices &array, const std::vector<VtLong> &values) {
    for (const VtLong value : values)
        array.Add(value);
}

/// A rough sheet over the unit square, in 2 * side * side triangles: there may be millions of them.
inline void fill_with_sheet(int side, Points &points, Indices &triangles) {
    points.SetSize((side + 1) * (side + 1));
    triangles.SetSize(side * side * 6);
    // Written through whole blocks: an array that was sized once is one stretch.
    auto *point = points.FirstBlock()->data;
    auto *index = triangles.FirstBlock()->data;
    for (int j = 0; j <= side; ++j)
        for (int i = 0; i <= side; ++i)
            *point++ = {i * 1.0 / side, j * 1.0 / side, 0.01 * ((i * 31 + j * 17) % 13)};
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const VtLong a = j * (side + 1) + i;
            for (const VtLong k : {a, a + 1, a + side + 2, a, a + side + 2, a + side + 1})
                *index++ = k;
        }
}

using Rgb = std::array<float, 3>;

struct Pixels {
    int width = 0;
    int height = 0;
    int x0 = 0; ///< Of the data window, in the whole picture.
    int y0 = 0;
    int full_width = 0;
    int full_height = 0;
    std::vector<Rgb> values;

    const Rgb &at(int x, int y) const { return values[static_cast<std::size_t>((y - y0) * width + x - x0)]; }

    /// The mean of the green channel.
    double mean() const {
        double sum = 0;
        for (const Rgb &value : values)
            sum += value[1];
        return sum / static_cast<double>(values.size());
    }
};

inline Pixels read_exr(const std::string &path) {
    Imf::InputFile file(path.c_str(), 0);
    const Imath::Box2i data = file.header().dataWindow();
    const Imath::Box2i display = file.header().displayWindow();
    Pixels pixels{data.max.x - data.min.x + 1, data.max.y - data.min.y + 1, data.min.x, data.min.y,
                  display.max.x + 1,           display.max.y + 1,           {}};
    pixels.values.resize(static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height));
    Imf::FrameBuffer frame;
    const char *names[] = {"R", "G", "B"};
    for (int i = 0; i < 3; ++i)
        frame.insert(names[i], Imf::Slice::Make(Imf::FLOAT, &pixels.values[0][static_cast<std::size_t>(i)], data,
                                                sizeof(Rgb), sizeof(Rgb) * static_cast<std::size_t>(pixels.width)));
    file.setFrameBuffer(frame);
    file.readPixels(data.min.y, data.max.y);
    return pixels;
}

inline std::filesystem::path own_folder() {
    return std::filesystem::path(testing::TempDir()) / ("libvantor_test." + std::to_string(getpid()));
}

/// A path in a folder of this process's own, which is removed after the last test.
inline std::string path_of(const std::string &name) {
    std::filesystem::create_directories(own_folder());
    return (own_folder() / name).string();
}

class FolderRemoval : public testing::Environment {
  public:
    void TearDown() override { std::filesystem::remove_all(own_folder()); }
};
// GoogleTest owns it.
inline testing::Environment *const folder_removal = testing::AddGlobalTestEnvironment(new FolderRemoval);

/// A scene with short names for what tests do often. Any diagnostic is printed, so a test that wants none captures.
class Scene : public VtLocalSceneProxy {
  public:
    explicit Scene(VtLong patches = 10240) : VtLocalSceneProxy(patches) {}

    VtLong camera(const VtVector3 &position, const VtVector3 &target, double fov) {
        List list("position", position, "target", target, "fov", fov);
        return NewCamera("perspective", list);
    }
    template <class Value> VtLong diffuse(const Value &reflectance) {
        List list("reflectance", reflectance);
        return NewMaterial("diffuse", list);
    }
    /// A material with an interface of that type.
    template <class... Values> VtLong surface(const char *type, const Values &...values) {
        List list(values...);
        List with_interface("interface", static_cast<int>(NewInterface(type, list)));
        return NewMaterial("surface", with_interface);
    }
    template <class... Values> VtLong light(const char *type, const Values &...values) {
        List list(values...);
        return NewLight(type, list);
    }
    template <class... Values> VtLong object(const char *type, const Values &...values) {
        List list(values...);
        return NewObject(type, list);
    }
    VtLong mesh(const std::vector<VtVector3> &points, const std::vector<VtLong> &triangles) {
        Points point_array;
        Indices index_array;
        fill(point_array, points);
        fill(index_array, triangles);
        return object("mesh", "points", point_array, "triangles", index_array);
    }
    /// A closed room from -1 to 1 along each axis, whose walls face inwards.
    VtLong room() {
        return mesh(
            {{-1, -1, -1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {-1, 1, 1}, {1, 1, 1}},
            {0, 1, 3, 0, 3, 2, 4, 6, 7, 4, 7, 5, 0, 4, 5, 0, 5, 1,
             2, 3, 7, 2, 7, 6, 0, 2, 6, 0, 6, 4, 1, 5, 7, 1, 7, 3});
    }
    /// Into a file of that name, by an imager of its own.
    void draw(const std::string &path, int width, int height, int samples, double x0 = 0, double y0 = 0, double x1 = 1,
              double y1 = 1) {
        List list("name", path);
        ImagerBegin(NewImager("file", list));
        Render(width, height, samples, x0, y0, x1, y1);
        ImagerEnd();
    }
    Pixels render(int width, int height, int samples, double x0 = 0, double y0 = 0, double x1 = 1, double y1 = 1) {
        const std::string path = path_of("picture.exr");
        std::filesystem::remove(path);
        draw(path, width, height, samples, x0, y0, x1, y1);
        return std::filesystem::exists(path) ? read_exr(path) : Pixels();
    }
};

/// What a piece of work prints on the error stream.
template <class Work> std::string errors_of(Work work) {
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

} // namespace scripted
