// Times the embedded renderer on a Cornell box, and measures its errors and those of other renderers.
//
//     render_cornell FOLDER SIDE REFERENCE PICTURE...
//
// A PICTURE is a number of samples: SIDE x SIDE pixels are rendered with it, on two threads or the one that the process
// may use, through the renderer's own interface and its picture files (in FOLDER). If an r follows the number, a
// radiosity pass comes first, whose seconds count, too. Or it is an OpenEXR file that another renderer has written.
//
// Prints JSON: for each picture the processor seconds / threads, the seconds by the wall clock, the mean radiance, and
// the root-mean-square error against a reference of REFERENCE samples a pixel. 0 leaves the last two out.
#include "renderer/vt_local_scene_proxy.h"

#include <ImfFrameBuffer.h> // layers: to read the pictures that the renderer wrote
#include <ImfHeader.h>      // layers: the same
#include <ImfInputFile.h>   // layers: the same

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Pixel {
    float r, g, b;
};

/// A parameter list, written as names and values in turn.
class Parameters {
  public:
    template <class... Values> explicit Parameters(const Values &...values) { (add(values), ...); }
    operator VtArgList &() { return list; }

  private:
    void add(const char *text) { list.Add(VtArgType(const_cast<char *>(text))); } // The interface does not write to it.
    template <class Value> void add(const Value &value) { list.Add(VtArgType(value)); }

    VtArgList list{0, 0};
};

// The box, in metres: open in front, where the camera is.
constexpr double width = 5.56, height = 5.49, depth = 5.60;
constexpr double camera_distance = 8.0, field_of_view = 39.3; // degrees
const VtVector3 camera_position(2.78, 2.73, -camera_distance);

// The lamp, just below the ceiling.
const VtVector3 lamp_corner(2.13, 5.48, 2.27);
constexpr double lamp_width = 1.30, lamp_depth = 1.05, lamp_radiance = 15.0;

void add_quad(VtLocalSceneProxy &scene, VtVector3 origin, VtVector3 edge_u, VtVector3 edge_v) {
    Parameters parameters("origin", origin, "edge_u", edge_u, "edge_v", edge_v);
    scene.AddObject(scene.NewObject("quad", parameters));
}

void begin_material(VtLocalSceneProxy &scene, VtVector3 reflectance) {
    Parameters parameters("reflectance", reflectance);
    scene.MaterialBegin(scene.NewMaterial("diffuse", parameters));
}

// A block of square ground plan, turned about the vertical axis.
void add_block(VtLocalSceneProxy &scene, VtLong cube, double block_height, double degrees, VtVector3 place) {
    VtTransform transform;
    transform.Translation(place);
    scene.TransformBegin(transform);
    transform.RotationAroundY(degrees);
    scene.TransformBegin(transform);
    transform.Scaling({1.65, block_height, 1.65});
    scene.TransformBegin(transform);
    scene.AddObject(cube);
    for (int i = 0; i < 3; ++i)
        scene.TransformEnd();
}

/// How the picture shows the box.
enum class View {
    Straight,
    Mirrored,   ///< The box is the same one with left and right exchanged, about the middle of the picture.
    UpsideDown, ///< The camera is turned by half a turn.
};

void describe_box(VtLocalSceneProxy &scene, View view) {
    const VtVector3 target(camera_position[0], camera_position[1], 0);
    const VtVector3 upwards(0, view == View::UpsideDown ? -1 : 1, 0);
    Parameters camera("position", camera_position, "target", target, "up", upwards, "fov", field_of_view);
    scene.NewCamera("perspective", camera);

    VtTransform transform;
    const bool is_mirrored = view == View::Mirrored;
    transform.Translation({is_mirrored ? 2 * camera_position[0] : 0.0, 0, 0});
    scene.TransformBegin(transform);
    transform.Scaling({is_mirrored ? -1.0 : 1.0, 1, 1});
    scene.TransformBegin(transform);

    const VtVector3 across(width, 0, 0), up(0, height, 0), back(0, 0, depth);
    begin_material(scene, {0.73, 0.73, 0.73});
    add_quad(scene, {0, 0, 0}, back, across);
    add_quad(scene, {0, height, 0}, across, back);
    add_quad(scene, {0, 0, depth}, up, across);
    Parameters corners("min", VtVector3(-0.5, 0, -0.5), "max", VtVector3(0.5, 1, 0.5));
    const VtLong cube = scene.NewObject("box", corners);
    add_block(scene, cube, 1.65, 17, {1.86, 0, 1.69});
    add_block(scene, cube, 3.30, -17, {3.69, 0, 3.51});
    scene.MaterialEnd();
    begin_material(scene, {0.63, 0.06, 0.05});
    add_quad(scene, {width, 0, 0}, back, up);
    scene.MaterialEnd();
    begin_material(scene, {0.14, 0.45, 0.09});
    add_quad(scene, {0, 0, 0}, up, back);
    scene.MaterialEnd();

    Parameters radiance("radiance", VtVector3(lamp_radiance, lamp_radiance, lamp_radiance));
    scene.NewLight("area", radiance);
    scene.LightBegin();
    add_quad(scene, lamp_corner, {lamp_width, 0, 0}, {0, 0, lamp_depth});
    scene.LightEnd();

    scene.TransformEnd();
    scene.TransformEnd();
}

std::vector<Pixel> read_picture(const std::string &path, int side) {
    Imf::InputFile file(path.c_str());
    const Imath::Box2i window = file.header().dataWindow();
    if (window.min != Imath::V2i(0, 0) || window.max != Imath::V2i(side - 1, side - 1))
        throw std::runtime_error(path + " has another size");

    std::vector<Pixel> pixels(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    Imf::FrameBuffer frame;
    float *const channels[] = {&pixels[0].r, &pixels[0].g, &pixels[0].b};
    const char *const names[] = {"R", "G", "B"};
    for (int i = 0; i < 3; ++i)
        frame.insert(names[i], Imf::Slice::Make(Imf::FLOAT, channels[i], window, sizeof(Pixel),
                                                sizeof(Pixel) * static_cast<std::size_t>(side)));
    file.setFrameBuffer(frame);
    file.readPixels(0, side - 1);
    return pixels;
}

struct Rendering {
    std::vector<Pixel> pixels;
    double processor_seconds, wall_seconds; ///< Of the passes: from the description to the file.
};

Rendering render(const std::string &folder, int side, int samples, bool has_radiosity, View view) {
    const std::string path = folder + "/cornell_box.exr";
    std::remove(path.c_str());

    VtLocalSceneProxy scene(10240);
    describe_box(scene, view);
    Parameters file("name", path.c_str());
    scene.ImagerBegin(scene.NewImager("file", file));
    const auto wall_begin = std::chrono::steady_clock::now();
    const std::clock_t begin = std::clock();
    if (has_radiosity)
        scene.Radiosity();
    scene.Render(side, side, samples, 0, 0, 1, 1);
    const std::clock_t end = std::clock();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - wall_begin;
    scene.ImagerEnd();
    return {read_picture(path, side), static_cast<double>(end - begin) / CLOCKS_PER_SEC, wall.count()};
}

/// Whether the pixel may show the lamp: it lies within the lamp's bounds in the picture, or beside them.
class Lamp {
  public:
    explicit Lamp(int side) {
        const double pixels = side / (2 * std::tan(field_of_view * M_PI / 360)); // of a metre, at a distance of one
        // The camera looks along +Z: +X is on the left.
        const double near = pixels / (camera_distance + lamp_corner[2]);
        const double far = pixels / (camera_distance + lamp_corner[2] + lamp_depth);
        const double above = lamp_corner[1] - camera_position[1];
        left = side / 2.0 - (lamp_corner[0] + lamp_width - camera_position[0]) * near - 1;
        right = side / 2.0 - (lamp_corner[0] - camera_position[0]) * near + 1;
        top = side / 2.0 - above * near - 1;
        bottom = side / 2.0 - above * far + 1;
    }
    bool covers(int x, int y) const { return x + 1 > left && x < right && y + 1 > top && y < bottom; }

  private:
    double left, right, top, bottom;
};

// What the box looks like, and how much of it is noise.
struct Reference {
    std::vector<Pixel> pixels; ///< None: there is no reference.
    double noise;              ///< Mean square of its own error.
};

/// Mean square of the differences of all channels and pixels that count; and the mean radiance of `a`.
struct Comparison {
    double mean, square;
};

Comparison compared(const std::vector<Pixel> &a, const std::vector<Pixel> &b, int side) {
    const Lamp lamp(side);
    double sum = 0, sum_of_squares = 0, count = 0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            if (lamp.covers(x, y))
                continue;
            const Pixel &p = a[static_cast<std::size_t>(y * side + x)];
            const Pixel &q = b[static_cast<std::size_t>(y * side + x)];
            sum += p.r + p.g + p.b;
            for (const float difference : {p.r - q.r, p.g - q.g, p.b - q.b})
                sum_of_squares += difference * difference;
            count += 3;
        }
    return {sum / count, sum_of_squares / count};
}

// The mean of two pictures, of half the samples each: one of the mirrored box, one by a camera that is upside down.
// Their noise is that of other pixels, and so independent of each other's and of what is compared with them. The square
// of the mean's error is a fourth of that of their difference.
Reference render_reference(const std::string &folder, int side, int samples) {
    const int half = std::max(1, samples / 2);
    std::vector<Pixel> mirrored = render(folder, side, half, false, View::Mirrored).pixels;
    std::vector<Pixel> upside_down = render(folder, side, half, false, View::UpsideDown).pixels;
    for (auto row = mirrored.begin(); row != mirrored.end(); row += side)
        std::reverse(row, row + side);
    std::reverse(upside_down.begin(), upside_down.end());

    Reference reference{{}, compared(mirrored, upside_down, side).square / 4};
    reference.pixels.reserve(mirrored.size());
    for (std::size_t i = 0; i < mirrored.size(); ++i) {
        const Pixel &p = mirrored[i], &q = upside_down[i];
        reference.pixels.push_back({(p.r + q.r) / 2, (p.g + q.g) / 2, (p.b + q.b) / 2});
    }
    return reference;
}

void print_comparison(const std::vector<Pixel> &picture, const Reference &reference, int side) {
    if (reference.pixels.empty())
        return;
    const Comparison comparison = compared(picture, reference.pixels, side);
    std::printf(", \"mean\": %.6f, \"rmse\": %.6f", comparison.mean,
                std::sqrt(std::max(0.0, comparison.square - reference.noise)));
}

// Keeps the process to two of its processors, before the renderer counts them. Returns how many it has.
int keep_to_two_processors() {
    cpu_set_t allowed, chosen;
    CPU_ZERO(&chosen);
    sched_getaffinity(0, sizeof allowed, &allowed);
    for (int cpu = 0; cpu < CPU_SETSIZE && CPU_COUNT(&chosen) < 2; ++cpu)
        if (CPU_ISSET(cpu, &allowed))
            CPU_SET(cpu, &chosen);
    sched_setaffinity(0, sizeof chosen, &chosen);
    return CPU_COUNT(&chosen);
}

// What ray_counter has counted; -1 if it is not loaded.
long rays_so_far() {
    using Count = long();
    const auto count = reinterpret_cast<Count *>(dlsym(RTLD_DEFAULT, "ray_counter_rays"));
    return count ? count() : -1;
}

// `word` is a number of samples, with an r if a radiosity pass comes first.
void print_rendering(const std::string &word, const std::string &folder, int side, int threads,
                     const Reference &reference) {
    const int samples = std::atoi(word.c_str());
    const bool has_radiosity = word.back() == 'r';
    const long rays_before = rays_so_far();
    const Rendering rendering = render(folder, side, samples, has_radiosity, View::Straight);
    std::printf("{\"samples\": %d, \"radiosity\": %s, \"seconds\": %.6f, \"wall\": %.6f", samples,
                has_radiosity ? "true" : "false", rendering.processor_seconds / threads, rendering.wall_seconds);
    print_comparison(rendering.pixels, reference, side);
    if (rays_before >= 0)
        std::printf(", \"rays\": %ld", rays_so_far() - rays_before);
    std::printf("}");
}

} // namespace

int main(int argc, char **argv) try {
    if (argc < 5) {
        std::fprintf(stderr, "usage: render_cornell FOLDER SIDE REFERENCE PICTURE...\n");
        return 2;
    }
    const std::string folder = argv[1];
    const int side = std::atoi(argv[2]);
    const int reference_samples = std::atoi(argv[3]);
    const int threads = keep_to_two_processors();

    Reference reference{{}, 0};
    if (reference_samples > 0)
        reference = render_reference(folder, side, reference_samples);

    std::printf("{\"threads\": %d, \"pictures\": [", threads);
    for (int i = 4; i < argc; ++i) {
        const std::string word = argv[i];
        std::fputs(i > 4 ? ", " : "", stdout);
        if (word.find(".exr") == std::string::npos) {
            print_rendering(word, folder, side, threads, reference);
        } else {
            std::printf("{\"file\": true");
            print_comparison(read_picture(word, side), reference, side);
            std::printf("}");
        }
    }
    std::printf("]}\n");
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "render_cornell: %s\n", error.what());
    return 1;
}
