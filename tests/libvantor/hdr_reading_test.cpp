// Radiance files: all ways in which the format writes pixels, and files that are broken.
#include "libvantor/images/reading.h"
#include "tests/libvantor/scripted_scene.h"

#include <array>
#include <cmath>
#include <fstream>

namespace {

using vantor::Raster;

constexpr char rgbe[] = "#?RADIANCE\n# a comment\nFORMAT=32-bit_rle_rgbe\n\n";

std::string path_with(const std::string &content) {
    const std::string path = scripted::path_of("picture.hdr");
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

vantor::ReadPicture read(const std::string &content) { return vantor::read_picture(path_with(content)); }
std::string why_not(const std::string &content) { return read(content).why_not; }

std::string pixel(int r, int g, int b, int e) {
    return {static_cast<char>(r), static_cast<char>(g), static_cast<char>(b), static_cast<char>(e)};
}

void expect_color(const Raster &raster, int x, int y, float r, float g, float b) {
    const vantor::Color color = raster.at(x, y);
    EXPECT_EQ((std::array{color.r, color.g, color.b}), (std::array{r, g, b})) << x << " " << y;
}

TEST(Hdr, PixelsAreMantissasWithAnExponent) {
    const auto got =
        read(rgbe + std::string("-Y 2 +X 3\n") + pixel(128, 64, 32, 128) + pixel(128, 255, 0, 137) +
             pixel(200, 100, 50, 0) + pixel(255, 255, 255, 255) + pixel(1, 2, 3, 1) + pixel(128, 128, 128, 129));
    ASSERT_TRUE(got.raster) << got.why_not;
    EXPECT_EQ(got.raster->width(), 3);
    EXPECT_EQ(got.raster->format().type, vantor::SampleType::Float);
    expect_color(*got.raster, 0, 0, 0.5f, 0.25f, 0.125f);
    expect_color(*got.raster, 1, 0, 256, 510, 0);
    expect_color(*got.raster, 2, 0, 0, 0, 0);
    expect_color(*got.raster, 0, 1, std::ldexp(255.0f, 119), std::ldexp(255.0f, 119), std::ldexp(255.0f, 119));
    expect_color(*got.raster, 1, 1, std::ldexp(1.0f, -135), std::ldexp(2.0f, -135), std::ldexp(3.0f, -135));
    expect_color(*got.raster, 2, 1, 1, 1, 1);
}

TEST(Hdr, RowsGoTheWayThatTheHeaderSays) {
    const std::string pixels = pixel(1, 0, 0, 136) + pixel(2, 0, 0, 136) + pixel(3, 0, 0, 136) + pixel(4, 0, 0, 136);
    const auto corner = [&](const char *size) { return read(rgbe + (size + pixels)).raster->at(0, 0).r; };
    EXPECT_EQ(corner("-Y 2 +X 2\n"), 1);
    EXPECT_EQ(corner("-Y 2 -X 2\n"), 2);
    EXPECT_EQ(corner("+Y 2 +X 2\n"), 3);
    EXPECT_EQ(corner("+Y 2 -X 2\n"), 4);
    EXPECT_EQ(why_not(rgbe + ("+X 2 -Y 2\n" + pixels)),
              "its size is not given as rows of columns (expected -Y HEIGHT +X WIDTH)");
}

// A row of 10: reds in a run, greens one by one, the others mixed.
std::string row_of_components() {
    std::string row = {2, 2, 0, 10};
    row += {static_cast<char>(128 + 10), 7};
    row += {10, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    row += {static_cast<char>(128 + 4), 1, 2, 20, 30, static_cast<char>(128 + 4), 3};
    row += {static_cast<char>(128 + 10), static_cast<char>(136)};
    return row;
}

TEST(Hdr, RunsOfComponents) {
    const auto got = read(rgbe + ("-Y 2 +X 10\n" + row_of_components() + row_of_components()));
    ASSERT_TRUE(got.raster) << got.why_not;
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 10; ++x) {
            const float blues[] = {1, 1, 1, 1, 20, 30, 3, 3, 3, 3};
            expect_color(*got.raster, x, y, 7, static_cast<float>(x), blues[x]);
        }
}

TEST(Hdr, RunsOfPixels) {
    // One pixel, and 2 + 256 of it again; another one.
    const auto got = read(
        rgbe + ("-Y 1 +X 260\n" + pixel(9, 8, 7, 136) + pixel(1, 1, 1, 2) + pixel(1, 1, 1, 1) + pixel(5, 5, 5, 136)));
    ASSERT_TRUE(got.raster) << got.why_not;
    for (int x = 0; x < 259; ++x)
        expect_color(*got.raster, x, 0, 9, 8, 7);
    expect_color(*got.raster, 259, 0, 5, 5, 5);
}

TEST(Hdr, ACutOffFileIsRefusedWhereverItEnds) {
    const std::string whole = rgbe + ("-Y 2 +X 10\n" + row_of_components() + row_of_components());
    for (std::size_t size = 2; size < whole.size(); ++size)
        EXPECT_NE(why_not(whole.substr(0, size)), "") << size;
    EXPECT_EQ(why_not(whole.substr(0, whole.size() - 1)), "the file is cut off");
}

TEST(Hdr, ChangedBytesDoNoHarm) {
    const std::string whole = rgbe + ("-Y 2 +X 10\n" + row_of_components() + row_of_components());
    for (std::size_t i = 0; i < whole.size(); ++i)
        for (const int value : {0, 1, 2, 10, 57, 127, 128, 255}) {
            std::string changed = whole;
            changed[i] = static_cast<char>(value);
            const auto got = read(changed);
            EXPECT_EQ(got.raster.has_value(), got.why_not.empty()) << i;
        }
}

TEST(Hdr, BrokenFilesAreRefused) {
    const auto sized = [](const std::string &size, const std::string &pixels) { return rgbe + (size + "\n" + pixels); };
    EXPECT_EQ(why_not(sized("-Y 0 +X 4", "")), "the picture has no pixels");
    EXPECT_EQ(why_not(sized("-Y -3 +X 4", "")), "the picture has no pixels");
    EXPECT_EQ(why_not(sized("-Y 65536 +X 65536", "")), "the picture has more than 268435456 pixels");
    EXPECT_EQ(why_not(sized("-Y 8192 +X 8192", "")), "the file is too short for its picture");
    EXPECT_EQ(why_not(sized("-Y 99999999999999999999 +X 1", "")), "the file is damaged");
    // Runs beyond the row, of nothing, before any pixel, and a row of another width.
    EXPECT_EQ(why_not(sized("-Y 1 +X 8", pixel(2, 2, 0, 8) + std::string("\xff\x01", 2))), "the file is damaged");
    EXPECT_EQ(why_not(sized("-Y 1 +X 8", pixel(2, 2, 0, 8) + std::string(4, '\0'))), "the file is damaged");
    EXPECT_EQ(why_not(sized("-Y 1 +X 8", pixel(1, 1, 1, 8))), "the file is damaged");
    EXPECT_EQ(why_not(sized("-Y 1 +X 8", pixel(9, 9, 9, 9) + pixel(1, 1, 1, 8))), "the file is damaged");
    EXPECT_EQ(why_not(sized("-Y 1 +X 8", pixel(2, 2, 0, 9))), "the file is damaged");
    EXPECT_EQ(why_not("#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 1 +X 1\n" + pixel(1, 1, 1, 1)),
              "its colours are no RGBE (expected FORMAT=32-bit_rle_rgbe)");
    EXPECT_EQ(why_not("#?" + std::string(100000, 'x')), "the file is damaged");
    std::string lines = "#?RADIANCE\n";
    for (int i = 0; i < 5000; ++i)
        lines += "A=B\n";
    EXPECT_EQ(why_not(lines), "the file is damaged");
}

// What has the bytes of 1 everywhere lights as if there were no picture.
TEST(Hdr, EnvironmentsTakeIt) {
    std::string pixels;
    for (int i = 0; i < 8; ++i)
        pixels += pixel(128, 128, 128, 129);
    const std::string path = path_with(rgbe + ("-Y 2 +X 4\n" + pixels));
    const auto drawn = [&](auto... picture) {
        scripted::Scene scene;
        scene.camera({0, 1, 4}, {0, 0, 0}, 40);
        scene.light("environment", picture...);
        scene.AddObject(scene.object("sphere"));
        return scene.render(8, 8, 64).mean();
    };
    EXPECT_NEAR(drawn("name", path), drawn(), 0.01);
}

} // namespace
