// Long runs: a process that makes many scenes keeps nothing of them, and none changes another's pictures.
#include "tests/libvantor/scripted_scene.h"

#include <fstream>
#include <malloc.h>
#include <set>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define HAS_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_ADDRESS_SANITIZER
#endif
#endif
#ifdef HAS_ADDRESS_SANITIZER
// Of <sanitizer/allocator_interface.h>, which not every compiler comes with.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Scene;

// Bytes that are allocated and not free. The sanitizer has an allocator of its own.
std::size_t bytes_in_use() {
#ifdef HAS_ADDRESS_SANITIZER
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

// Pages that the process has in memory, in bytes.
std::size_t resident_bytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t size = 0;
    std::size_t resident = 0;
    file >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

const std::string &texture() {
    static const std::string path = [] {
        Scene scene;
        scene.camera({0, 0, 3}, {0, 0, 0}, 60);
        scene.light("environment");
        scene.AddObject(scene.object("sphere"));
        const std::string name = scripted::path_of("texture.png");
        scene.draw(name, 16, 16, 1);
        return name;
    }();
    return path;
}

// A little of everything that holds memory, and blocks left open. Pictures differ with the shade.
void describe(Scene &scene, double shade) {
    scene.camera({0, 1, 4}, {0, 0, 0}, 50);
    scene.light("environment", "name", texture(), "radiance", shade);
    scene.light("point", "position", VtVector3(2, 3, 2), "intensity", 5);

    List image("texture", scene.NewTexture(texture().c_str()));
    List noise("a", scene.NewPattern("image", image), "b", shade);
    List glossy("roughness", 0.4);
    List surface("interface", scene.NewInterface("conductor", glossy), "color", scene.NewPattern("noise", noise));
    scene.MaterialBegin(scene.NewMaterial("surface", surface));
    scene.AddObject(scene.room());
    const VtLong sphere = scene.object("sphere", "radius", 0.5);
    VtTransform transform;
    transform.Scaling({1, 2, 1});
    scene.TransformBegin(transform);
    scene.AddObject(sphere);
    scene.TransformEnd();
    scene.AddObject(sphere);
    scene.MaterialEnd();

    List haze("sigma_t", 0.5, "albedo", 0.5);
    scene.InteriorBegin(scene.NewInterior("homogeneous", haze));
    scene.AddObject(scene.object("box", "min", VtVector3(0, -0.5, 0), "max", VtVector3(0.5, 0.5, 0.5)));
    scene.InteriorEnd();
}

Pixels picture_of(double shade) {
    Scene scene(50);
    describe(scene, shade);
    return scene.render(8, 8, 2);
}

TEST(LongRun, AThousandScenesLeaveNoMemoryInUse) {
    // Threads, caches and the libraries' own tables are there after a few.
    const std::string path = scripted::path_of("long.png");
    const auto make_scenes = [&](int count) {
        for (int i = 0; i < count; ++i) {
            Scene scene(50);
            describe(scene, 0.5 + 0.001 * (i % 3));
            List list("name", path);
            scene.NewImager("file", list);
            if (i % 50 == 0)
                scene.Radiosity();
            scene.Render(4, 4, 1, 0, 0, 1, 1);
            scene.MaterialBegin(scene.diffuse(0.5));
        }
    };
    make_scenes(100);
    const std::size_t bytes = bytes_in_use();
    const std::size_t resident = resident_bytes();
    EXPECT_EQ(scripted::errors_of([&] { make_scenes(1000); }), "");
    // A hundred bytes of every scene would be too many; whether another thread came to work makes a difference, too.
    EXPECT_LT(bytes_in_use(), bytes + 100000);
#ifndef HAS_ADDRESS_SANITIZER // which keeps what is free for a while
    EXPECT_LT(resident_bytes(), resident + (std::size_t{16} << 20));
#else
    EXPECT_GT(resident, 0u);
#endif
}

TEST(LongRun, ScenesInTurnHaveThePicturesThatTheyHaveAlone) {
    const Pixels light = picture_of(1);
    const Pixels dark = picture_of(0.1);
    ASSERT_NE(light.values, dark.values);

    Scene first(50);
    Scene second(50);
    describe(first, 1);
    describe(second, 0.1);
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(first.render(8, 8, 2).values, light.values);
        EXPECT_EQ(second.render(8, 8, 2).values, dark.values);
    }
}

} // namespace
