// Textures: what they show where, and how files become textures.
#include "libvantor/description/texture.h"
#include "libvantor/images/formats.h"
#include "libvantor/images/reading.h"
#include "libvantor/patterns/image.h"

#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/scripted_scene.h"

#include <cmath>
#include <fstream>
#include <random>

namespace {

using namespace vantor;
using scripted::errors_of;
using scripted::List;
using scripted::path_of;
using Wrap = Image::Wrap;
using Filter = Image::Filter;

// A picture whose greys are given row by row, from the top.
Raster greys(int width, int height, std::vector<float> values) {
    std::vector<Color> colors;
    for (const float value : values)
        colors.push_back({value, value, value});
    return {width, height, colors};
}

// Colours and alpha of floats.
Raster with_alpha(const Raster &raster, const std::vector<float> &alphas) {
    Raster result(raster.width(), raster.height(), {SampleType::Float, false, true});
    for (int i = 0; i < static_cast<int>(alphas.size()); ++i) {
        const int x = i % raster.width();
        const int y = i / raster.width();
        result.set(x, y, raster.at(x, y), alphas[static_cast<std::size_t>(i)]);
    }
    return result;
}

Texture with_smaller_copies(Raster raster) {
    Texture texture(std::move(raster));
    texture.add_smaller_copies(Interrupt());
    return texture;
}

Image image_of(Raster raster, Filter filter, Wrap wrap = Wrap::Repeat) {
    return {std::make_shared<const Texture>(with_smaller_copies(std::move(raster))),
            wrap,
            filter,
            Image::Channel::Color,
            {1, 1},
            {0, 0}};
}

float value_at(const Image &image, float u, float v, Point2f footprint = {}) {
    return image.evaluate({{u, v}, {}, footprint}).g;
}

double mean_of(const Raster &raster) {
    double sum = 0;
    for (int y = 0; y < raster.height(); ++y)
        for (int x = 0; x < raster.width(); ++x)
            sum += raster.at(x, y).g;
    return sum / raster.width() / raster.height();
}

TEST(Texture, EveryLevelHasTheMeanOfThePicture) {
    std::mt19937 engine(3);
    std::uniform_real_distribution<float> any(0, 1);
    for (const auto &[width, height] : {std::pair(8, 4), std::pair(7, 5), std::pair(1, 9), std::pair(33, 2)}) {
        std::vector<float> values(static_cast<std::size_t>(width * height));
        for (float &value : values)
            value = any(engine);
        const Texture texture = with_smaller_copies(greys(width, height, values));
        const double mean = mean_of(texture.levels.front());
        for (std::size_t i = 1; i < texture.levels.size(); ++i) {
            const Raster &level = texture.levels[i];
            EXPECT_EQ(level.width(), std::max(texture.levels[i - 1].width() / 2, 1));
            EXPECT_EQ(level.height(), std::max(texture.levels[i - 1].height() / 2, 1));
            EXPECT_NEAR(mean_of(level), mean, 1e-6) << width << " x " << height << " level " << i;
        }
        EXPECT_EQ(texture.levels.back().width(), 1);
        EXPECT_EQ(texture.levels.back().height(), 1);
    }
}

TEST(Texture, PixelsOfALevelAreMeansOfThoseThatTheyCover) {
    const Texture texture = with_smaller_copies(greys(4, 2, {0, 1, 2, 3, 4, 5, 6, 7}));
    ASSERT_EQ(texture.levels.size(), 3u);
    EXPECT_FLOAT_EQ(texture.levels[1].at(0, 0).r, 2.5f);
    EXPECT_FLOAT_EQ(texture.levels[1].at(1, 0).r, 4.5f);
    // Three pixels become one and a half each.
    const Texture odd = with_smaller_copies(greys(3, 1, {3, 6, 9}));
    EXPECT_FLOAT_EQ(odd.levels[1].at(0, 0).r, 6);
    const Texture five = with_smaller_copies(greys(5, 1, {0, 10, 20, 30, 40}));
    EXPECT_FLOAT_EQ(five.levels[1].at(0, 0).r, (0 + 10 + 0.5f * 20) / 2.5f);
    EXPECT_FLOAT_EQ(five.levels[1].at(1, 0).r, (0.5f * 20 + 30 + 40) / 2.5f);
}

TEST(Texture, InterruptStopsTheMakingOfSmallerCopies) {
    const Raster picture = greys(5, 64, std::vector<float>(5 * 64));
    // A poll for each row.
    scripted::expect_prompt(32 + 16 + 8 + 4 + 2 + 1, [&] {
        Texture texture(picture);
        texture.add_smaller_copies(Interrupt());
    });
}

TEST(Image, BeginsInTheLowerLeftCorner) {
    const Image image = image_of(greys(2, 2, {1, 2, 3, 4}), Filter::Nearest);
    EXPECT_EQ(value_at(image, 0.25f, 0.25f), 3);
    EXPECT_EQ(value_at(image, 0.75f, 0.25f), 4);
    EXPECT_EQ(value_at(image, 0.25f, 0.75f), 1);
    EXPECT_EQ(value_at(image, 0.75f, 0.75f), 2);
}

TEST(Image, ScaleAndOffset) {
    Image image = image_of(greys(2, 2, {1, 2, 3, 4}), Filter::Nearest);
    image.scale = {2, 1};
    EXPECT_EQ(value_at(image, 0.125f, 0.25f), 3);
    EXPECT_EQ(value_at(image, 0.375f, 0.25f), 4);
    EXPECT_EQ(value_at(image, 0.625f, 0.25f), 3);
    image.offset = {0.5f, 0.5f};
    EXPECT_EQ(value_at(image, 0.125f, 0.25f), 2);
}

TEST(Image, Wraps) {
    const auto row_of = [](Wrap wrap) {
        const Image image = image_of(greys(3, 1, {1, 2, 3}), Filter::Nearest, wrap);
        std::vector<float> values;
        for (int i = -4; i < 8; ++i)
            values.push_back(value_at(image, (static_cast<float>(i) + 0.5f) / 3, 0.5f));
        return values;
    };
    EXPECT_EQ(row_of(Wrap::Repeat), (std::vector<float>{3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2}));
    EXPECT_EQ(row_of(Wrap::Clamp), (std::vector<float>{1, 1, 1, 1, 1, 2, 3, 3, 3, 3, 3, 3}));
    EXPECT_EQ(row_of(Wrap::Mirror), (std::vector<float>{3, 3, 2, 1, 1, 2, 3, 3, 2, 1, 1, 2}));
    EXPECT_EQ(row_of(Wrap::Black), (std::vector<float>{0, 0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 0}));
}

TEST(Image, BilinearInterpolatesBetweenMiddles) {
    const Raster raster = greys(2, 2, {1, 2, 3, 4});
    const Image repeated = image_of(raster, Filter::Bilinear);
    EXPECT_FLOAT_EQ(value_at(repeated, 0.25f, 0.25f), 3);
    EXPECT_FLOAT_EQ(value_at(repeated, 0.375f, 0.25f), 3.25f);
    EXPECT_FLOAT_EQ(value_at(repeated, 0.5f, 0.5f), 2.5f);
    EXPECT_FLOAT_EQ(value_at(repeated, 0, 0.25f), 3.5f); // between the last column and the first
    EXPECT_FLOAT_EQ(value_at(image_of(raster, Filter::Bilinear, Wrap::Clamp), 0, 0.25f), 3);
    EXPECT_FLOAT_EQ(value_at(image_of(raster, Filter::Bilinear, Wrap::Mirror), 0, 0.25f), 3);
    EXPECT_FLOAT_EQ(value_at(image_of(raster, Filter::Bilinear, Wrap::Black), 0, 0.25f), 1.5f);
}

TEST(Image, TrilinearChoosesTheLevelByTheFootprint) {
    const Image image = image_of(greys(4, 4, {0, 0, 8, 8, 0, 0, 8, 8, 4, 4, 4, 4, 4, 4, 4, 4}), Filter::Trilinear);
    const float x = 0.125f, y = 0.875f; // the middle of the first pixel
    EXPECT_FLOAT_EQ(value_at(image, x, y), 0);
    EXPECT_FLOAT_EQ(value_at(image, x, y, {0.25f, 0.25f}), 0);
    EXPECT_FLOAT_EQ(value_at(image, x, y, {1, 0}), 4);
    EXPECT_FLOAT_EQ(value_at(image, x, y, {100, 100}), 4);
    // Half a level on: half way between the picture and its first reduction, which interpolates between 0, 8, 4 and 4.
    const float first = value_at(image, x, y, {0.5f, 0.5f});
    EXPECT_FLOAT_EQ(first, 0.5625f * 0 + 0.1875f * 8 + 0.1875f * 4 + 0.0625f * 4);
    EXPECT_NEAR(value_at(image, x, y, {0.25f * std::sqrt(2.0f), 0}), 0.5f * first, 1e-5f);
    // Two pictures on a length of 1 make every pixel twice as small.
    Image twice = image;
    twice.scale = {2, 2};
    EXPECT_FLOAT_EQ(value_at(twice, x / 2, 0.5f * y, {0.25f, 0}), first);
}

TEST(Image, StaysInsideWhereverItIsAsked) {
    for (const Filter filter : {Filter::Nearest, Filter::Bilinear, Filter::Trilinear})
        for (const Wrap wrap : {Wrap::Repeat, Wrap::Clamp, Wrap::Mirror, Wrap::Black}) {
            const Image image = image_of(greys(3, 2, {1, 1, 1, 1, 1, 1}), filter, wrap);
            for (const float u : {-1e18f, -1.0f, -1e-9f, 0.0f, 1.0f, 2.0f, 1e18f})
                for (const float v : {-1e18f, -1e-9f, 0.0f, 1.0f, 1e18f}) {
                    const float value = value_at(image, u, v, {1e9f, 1e9f});
                    EXPECT_TRUE(value >= 0 && value <= 1.000001f) << u << " " << v;
                    if (wrap != Wrap::Black) {
                        EXPECT_NEAR(value, 1, 1e-6f) << u << " " << v;
                    }
                }
        }
}

TEST(Image, ShowsAlphaAsAGrey) {
    Image image = image_of(with_alpha(greys(2, 1, {5, 6}), {0.25f, 1}), Filter::Nearest);
    image.channel = Image::Channel::Alpha;
    EXPECT_EQ(value_at(image, 0.25f, 0.5f), 0.25f);
    EXPECT_EQ(value_at(image, 0.75f, 0.5f), 1);
    Image opaque = image_of(greys(1, 1, {0.3f}), Filter::Nearest);
    opaque.channel = Image::Channel::Alpha;
    EXPECT_EQ(value_at(opaque, 0.5f, 0.5f), 1);
}

TEST(Image, ShowsAChannelAsAGrey) {
    Image image = image_of(Raster(1, 1, {Color{0.25f, 0.5f, 0.75f}}), Filter::Bilinear);
    const std::pair<Image::Channel, float> wanted[] = {
        {Image::Channel::Red, 0.25f}, {Image::Channel::Green, 0.5f}, {Image::Channel::Blue, 0.75f}};
    for (const auto &[channel, value] : wanted) {
        image.channel = channel;
        const Color shown = image.evaluate({{0.5f, 0.5f}, {}, {}});
        EXPECT_EQ(shown.r, value);
        EXPECT_EQ(shown.g, value);
        EXPECT_EQ(shown.b, value);
    }
}

// Files.

void write(const std::string &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::shared_ptr<const Texture> texture_of(TextureFiles &files, const std::string &path, ColorSpace space,
                                          bool has_smaller_copies = false) {
    Report report;
    return files.open(path, CallReport(report, "newTexture"))
        ->texture(space, has_smaller_copies, CallReport(report, "newPattern"));
}

Texture texture_of(TextureFile file, ColorSpace space) {
    Report report;
    return *file.texture(space, false, CallReport(report, "newPattern"));
}

TEST(TextureFile, ColorSpaces) {
    const std::string path = path_of("texture.png");
    write(path, png_file(vantor::BytePicture{1, 1, {128, 255, 10}}, ""));
    TextureFiles files;
    const Color as_file = texture_of(files, path, ColorSpace::AsFile)->levels[0].at(0, 0);
    // IEC 61966-2-1.
    EXPECT_NEAR(as_file.r, std::pow((128 / 255.0 + 0.055) / 1.055, 2.4), 1e-6);
    EXPECT_NEAR(as_file.b, 10 / 255.0 / 12.92, 1e-6);
    EXPECT_EQ(texture_of(files, path, ColorSpace::Srgb), texture_of(files, path, ColorSpace::AsFile));
    const Color linear = texture_of(files, path, ColorSpace::Linear)->levels[0].at(0, 0);
    EXPECT_NEAR(linear.r, 128 / 255.0, 1e-6);
    EXPECT_NEAR(linear.g, 1, 1e-6);
    EXPECT_NEAR(linear.b, 10 / 255.0, 1e-6);
}

TEST(TextureFile, OpenExrIsLinearAndItsColorsAreDividedByTheirAlpha) {
    const std::string path = path_of("texture.exr");
    Picture picture(1, 1, {0, 0, 1, 1});
    picture.at(0, 0) = {0.5f, 0.25f, 2};
    write(path, exr_file(picture, {}));
    TextureFiles files;
    EXPECT_FLOAT_EQ(texture_of(files, path, ColorSpace::AsFile)->levels[0].at(0, 0).b, 2);
    EXPECT_EQ(texture_of(files, path, ColorSpace::Linear), texture_of(files, path, ColorSpace::AsFile));
    EXPECT_NEAR(texture_of(files, path, ColorSpace::Srgb)->levels[0].at(0, 0).r, std::pow(0.555 / 1.055, 2.4), 1e-6);

    const TextureFile faint(with_alpha(greys(1, 1, {0.2f}), {0.5f}), Interrupt());
    EXPECT_FLOAT_EQ(texture_of(faint, ColorSpace::AsFile).levels[0].at(0, 0).r, 0.4f);
}

TEST(TextureFile, ValuesThatAreNoColorsBecomeBlack) {
    const TextureFile file(greys(4, 1, {NAN, -1, INFINITY, 2}), Interrupt());
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(texture_of(file, ColorSpace::AsFile).levels[0].at(x, 0).r, x == 3 ? 2 : 0) << x;
}

TEST(TextureFile, MakesSmallerCopiesOnlyWhereTheyAreWanted) {
    const std::string path = path_of("copies.png");
    write(path, png_file(vantor::BytePicture{8, 4, std::vector<std::uint8_t>(8 * 4 * 3, 200)}, ""));
    TextureFiles files;
    for (const ColorSpace space : {ColorSpace::Linear, ColorSpace::AsFile}) {
        const auto whole = texture_of(files, path, space, true);
        const auto alone = texture_of(files, path, space);
        EXPECT_EQ(whole->levels.size(), 4u);
        ASSERT_EQ(alone->levels.size(), 1u);
        EXPECT_EQ(alone->levels[0].at(7, 3).g, whole->levels[0].at(7, 3).g);
        EXPECT_FLOAT_EQ(alone->levels[0].at(0, 0).g, whole->levels[3].at(0, 0).g);
        EXPECT_EQ(texture_of(files, path, space, true), whole);
        EXPECT_EQ(texture_of(files, path, space), alone);
    }
}

TEST(TextureFile, IsGreyForOnceWhereTheMakingOfSmallerCopiesIsInterrupted) {
    const std::string path = path_of("copied.png");
    write(path, png_file(vantor::BytePicture{1, 64, std::vector<std::uint8_t>(64 * 3, 255)}, ""));
    const scripted::InterruptHandler handler;
    TextureFiles files;
    Report report;
    TextureFile *file = files.open(path, CallReport(report, "newTexture"));
    const CallReport call(report, "newPattern");
    {
        const InterruptAtPoll interrupt(20);
        const std::string errors = errors_of([&] {
            const auto texture = file->texture(ColorSpace::AsFile, true, call);
            EXPECT_EQ(texture->levels.size(), 1u);
            EXPECT_EQ(texture->levels[0].at(0, 0).g, 0.5f);
        });
        EXPECT_EQ(errors, "vantor: newPattern: interrupted; the picture is grey\n");
        EXPECT_EQ(handler.count(), 1);
    }
    const auto texture = file->texture(ColorSpace::AsFile, true, call);
    EXPECT_EQ(texture->levels.size(), 7u);
    EXPECT_EQ(texture->levels[0].at(0, 0).g, 1);
}

TEST(TextureFile, IsReadOnce) {
    const std::string path = path_of("once.png");
    write(path, png_file(vantor::BytePicture{1, 1, {255, 255, 255}}, ""));
    TextureFiles files;
    const auto first = texture_of(files, path, ColorSpace::Linear);
    std::filesystem::remove(path);
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(texture_of(files, path, ColorSpace::Linear), first); }), "");
}

TEST(TextureFile, IsGreyWhenInterruptedAndReadAnewTheNextTime) {
    const std::string path = path_of("interrupted.png");
    write(path, png_file(vantor::BytePicture{1, 1, {255, 255, 255}}, ""));
    const scripted::InterruptHandler handler;
    TextureFiles files;
    {
        const InterruptAtPoll interrupt(1);
        const std::string errors =
            errors_of([&] { EXPECT_EQ(texture_of(files, path, ColorSpace::AsFile)->levels[0].at(0, 0).g, 0.5f); });
        EXPECT_NE(errors.find(": cannot read the picture: interrupted; it is grey\n"), std::string::npos) << errors;
        EXPECT_EQ(handler.count(), 1);
    }
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(texture_of(files, path, ColorSpace::AsFile)->levels[0].at(0, 0).g, 1); }), "");
}

// Through the scene interface.

TEST(NewTexture, SaysWhatCannotBeRead) {
    scripted::Scene scene;
    write(path_of("bad.png"), "no picture");
    const std::string path = path_of("bad.png");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewTexture(path.c_str()), 1); }),
              "vantor: newTexture " + vantor::in_quotes(path) +
                  ": cannot read the picture: it is no PNG, JPEG, OpenEXR or Radiance file; it is grey\n");
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewTexture(nullptr), 2); }),
              "vantor: newTexture: no picture file is named\n");
    List grey("texture", 1);
    EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.NewPattern("image", grey), 3); }), "");
    List pattern("texture", 3);
    EXPECT_EQ(
        errors_of([&] { EXPECT_EQ(scene.NewPattern("image", pattern), 4); }),
        "vantor: newPattern \"image\": item 1: parameter \"texture\" is 3, but id 3 is a pattern (expected the id of a "
        "texture)\n");
}

} // namespace
