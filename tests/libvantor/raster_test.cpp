// Rasters: whatever their pixels are kept as, the values that are read are the same.
#include "libvantor/images/raster.h"

#include "tests/libvantor/interrupts.h"

#include <bit>
#include <half.h>

namespace {

using vantor::Color;
using vantor::Interrupt;
using vantor::PixelFormat;
using vantor::Raster;
using vantor::SampleType;

constexpr int side = 256;

Imath::half half_of(int bits) {
    Imath::half result;
    result.setBits(static_cast<std::uint16_t>(bits));
    return result;
}

// Every half in red, others in green and blue; and each of some alphas beside many of them.
struct Halves {
    PixelFormat format{SampleType::Half, false, true};
    Raster halves{side, side, format};
    Raster floats{side, side, {SampleType::Float, false, true}};

    Halves() {
        const float alphas[] = {1, 0.5f, 0, 0.3f, 2, -1, INFINITY, NAN, 1e-7f};
        for (int i = 0; i < side * side; ++i) {
            const Imath::half pixel[] = {half_of(i), half_of(i * 7), half_of(i * 13), Imath::half(alphas[i % 9])};
            for (int c = 0; c < 4; ++c)
                halves.row<std::uint16_t>(i / side)[4 * (i % side) + c] = pixel[c].bits();
            floats.set(i % side, i / side, {pixel[0], pixel[1], pixel[2]}, pixel[3]);
        }
    }
};

bool is_same(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

void expect_same(const Raster &a, const Raster &b) {
    ASSERT_EQ(a.width(), b.width());
    ASSERT_EQ(a.height(), b.height());
    int differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const Color c = a.at(x, y);
            const Color d = b.at(x, y);
            differing += !is_same(c.r, d.r) || !is_same(c.g, d.g) || !is_same(c.b, d.b) ||
                         !is_same(a.alpha_at(x, y), b.alpha_at(x, y));
        }
    EXPECT_EQ(differing, 0);
}

TEST(Raster, HalvesHaveTheValuesOfFloats) {
    const Halves same;
    expect_same(same.halves, same.floats);
}

TEST(Raster, UsableHalvesAreUsableFloats) {
    Halves same;
    same.halves.make_usable(1e18f, Interrupt());
    same.floats.make_usable(1e18f, Interrupt());
    expect_same(same.halves, same.floats);
    EXPECT_EQ(same.halves.format().type, SampleType::Half);
    for (const Raster *raster : {&same.halves, &same.floats})
        for (int i = 0; i < side * side; ++i) {
            const Color c = raster->at(i % side, i / side);
            const float exact = half_of(i);
            ASSERT_EQ(c.r, exact > 0 && exact <= 65504 ? exact : 0);
            const float alpha = raster->alpha_at(i % side, i / side);
            ASSERT_TRUE(alpha >= 0 && alpha <= 1);
        }
    // Above the most.
    Raster bright(2, 1, {{1e18f, 2e18f, 3}, {INFINITY, NAN, -1}});
    bright.make_usable(1e18f, Interrupt());
    EXPECT_EQ(bright.at(0, 0).r, 1e18f);
    EXPECT_EQ(bright.at(0, 0).g, 0);
    EXPECT_EQ(largest_component(bright.at(1, 0)), 0);
}

TEST(Raster, HalvesAreDividedByTheirAlphaAsFloatsAre) {
    Halves same;
    same.halves.divide_by_alpha(Interrupt());
    same.floats.divide_by_alpha(Interrupt());
    expect_same(same.halves, same.floats);
    EXPECT_EQ(same.halves.format().type, SampleType::Half);
    // Half of it, then all: 0x3800 is 0.5.
    const int place = 0x3800 / 9 * 9 + 10;
    const Color divided = same.halves.at(place % side, place / side);
    EXPECT_EQ(divided.r, 2 * half_of(place));

    same.halves.change_coding(Interrupt());
    same.floats.change_coding(Interrupt());
    expect_same(same.halves, same.floats);
}

TEST(Raster, HalvesAreTakenAsSrgbAsFloatsAre) {
    Halves same;
    for (Raster *raster : {&same.halves, &same.floats}) {
        raster->make_usable(1e18f, Interrupt());
        raster->change_coding(Interrupt());
    }
    expect_same(same.halves, same.floats);
    EXPECT_EQ(same.halves.format().type, SampleType::Half);
}

TEST(Raster, BytesAndWordsCanBeTakenAsTheyStand) {
    for (const SampleType type : {SampleType::Byte, SampleType::Word}) {
        const int largest = type == SampleType::Byte ? 255 : 65535;
        Raster raster(largest + 1, 1, {type, true, true});
        for (int i = 0; i <= largest; ++i)
            for (int c = 0; c < 2; ++c)
                if (type == SampleType::Byte)
                    raster.row<std::uint8_t>(0)[2 * i + c] = static_cast<std::uint8_t>(i);
                else
                    raster.row<std::uint16_t>(0)[2 * i + c] = static_cast<std::uint16_t>(i);
        const Raster decoded = raster;
        raster.change_coding(Interrupt());
        for (int i = 0; i <= largest; ++i) {
            const float stands = static_cast<float>(i) / static_cast<float>(largest);
            ASSERT_NEAR(raster.at(i, 0).g, stands, 1e-6f);
            ASSERT_EQ(raster.at(i, 0).g, vantor::srgb_of_linear(decoded.at(i, 0).g));
            ASSERT_EQ(decoded.at(i, 0).g, vantor::linear_of_srgb(stands));
            ASSERT_EQ(raster.alpha_at(i, 0), stands);
        }
    }
}

TEST(Raster, CopiesKeepTheirValues) {
    Raster changed(1, 1, {{-1, 2, 3}});
    const Raster copy = changed;
    changed.make_usable(1e18f, Interrupt());
    EXPECT_EQ(changed.at(0, 0).r, 0);
    EXPECT_EQ(copy.at(0, 0).r, -1);
}

TEST(Raster, InterruptStopsChangesOfFloats) {
    const Raster raster(3, 200, std::vector<Color>(600));
    const auto changes = {&Raster::divide_by_alpha, &Raster::change_coding};
    for (const auto change : changes)
        // A poll for each row.
        scripted::expect_prompt(200, [&] {
            Raster changed = raster;
            (changed.*change)(Interrupt());
        });
}

} // namespace
