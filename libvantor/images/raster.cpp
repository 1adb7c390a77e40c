// Raster: a whole picture in memory, as a light or a texture reads it.
#include "libvantor/images/raster.h"

#include <half.h>
#include <limits>

namespace vantor {

namespace {

// Tables of what bytes and words stand for: each is made when the first picture needs it.

template <class Value> std::vector<float> table_of_words(const Value &value) {
    std::vector<float> table;
    table.reserve(1 << 16);
    for (int i = 0; i < 1 << 16; ++i)
        table.push_back(value(static_cast<std::uint16_t>(i)));
    return table;
}

const float *byte_fractions() {
    static const std::array<float, 256> table = [] {
        std::array<float, 256> result;
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = static_cast<float>(i) / 255;
        return result;
    }();
    return table.data();
}

// As a byte stands in the file, but for the rounding of its way there and back.
const float *byte_values_undecoded() {
    static const std::array<float, 256> table = [] {
        std::array<float, 256> result;
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = srgb_of_linear(linear_bytes()[i]);
        return result;
    }();
    return table.data();
}

const float *word_fractions() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t word) { return static_cast<float>(word) / 65535; });
    return table.data();
}

const float *word_values() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t word) { return linear_of_srgb(static_cast<float>(word) / 65535); });
    return table.data();
}

const float *word_values_undecoded() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t word) { return srgb_of_linear(word_values()[word]); });
    return table.data();
}

float usable(float value, float most) { return value > 0 && value <= most ? value : 0.0f; }
Color usable(Color color, float most) { return {usable(color.r, most), usable(color.g, most), usable(color.b, most)}; }

constexpr float largest = std::numeric_limits<float>::max();

const float *half_values() {
    static const std::vector<float> table = table_of_words([](std::uint16_t bits) {
        Imath::half value;
        value.setBits(bits);
        return static_cast<float>(value);
    });
    return table.data();
}

const float *usable_halves() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t bits) { return usable(half_values()[bits], largest); });
    return table.data();
}

const float *usable_half_alphas() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t bits) { return std::min(usable_halves()[bits], 1.0f); });
    return table.data();
}

const float *halves_from_srgb() {
    static const std::vector<float> table =
        table_of_words([](std::uint16_t bits) { return linear_of_srgb(usable_halves()[bits]); });
    return table.data();
}

Color without_alpha(Color color, float alpha) { return usable(alpha > 0 ? color * (1 / alpha) : color, largest); }

} // namespace

Raster::Raster(int width, int height, PixelFormat format)
    : columns(width), rows(height), pixel_format(format), channels(format.channels()), green(format.is_grey ? 0 : 1),
      blue(format.is_grey ? 0 : 2) {
    // Not set to 0: what a file that is cut off lacks takes no memory.
    const std::size_t count = index(0, height);
    switch (format.type) {
    case SampleType::Byte:
        samples = Samples<std::uint8_t>(new std::uint8_t[count]);
        values = linear_bytes().data();
        alphas = byte_fractions();
        break;
    case SampleType::Word:
        samples = Samples<std::uint16_t>(new std::uint16_t[count]);
        values = word_values();
        alphas = word_fractions();
        break;
    case SampleType::Half:
        samples = Samples<std::uint16_t>(new std::uint16_t[count]);
        values = alphas = half_values();
        break;
    case SampleType::Float:
        samples = Samples<float>(new float[count]);
        break;
    }
}

Raster::Raster(int width, int height, const std::vector<Color> &colors) : Raster(width, height, PixelFormat()) {
    float *sample = row<float>(0);
    for (const Color &color : colors)
        for (const float value : {color.r, color.g, color.b})
            *sample++ = value;
}

float Raster::alpha_at(int x, int y) const {
    if (!pixel_format.has_alpha)
        return 1;
    const std::size_t place = index(x, y) + channels - 1;
    if (const auto *bytes = std::get_if<Samples<std::uint8_t>>(&samples))
        return alphas[bytes->get()[place]];
    if (const auto *words = std::get_if<Samples<std::uint16_t>>(&samples))
        return alphas[words->get()[place]];
    return std::get_if<Samples<float>>(&samples)->get()[place];
}

Color Raster::divided(const std::uint16_t *pixel) const {
    return without_alpha(decoded(pixel), values[pixel[channels - 1]]);
}

void Raster::set(int x, int y, Color color, float alpha) {
    float *const pixel = row<float>(y) + static_cast<std::size_t>(x) * channels;
    if (pixel_format.has_alpha)
        pixel[channels - 1] = alpha;
    pixel[blue] = color.b;
    pixel[green] = color.g;
    pixel[0] = color.r;
}

template <class Change> void Raster::change_pixels(const Change &change, const Interrupt &interrupt) {
    const auto *floats = std::get_if<Samples<float>>(&samples);
    const bool is_in_place = floats && floats->use_count() == 1;
    Raster result =
        is_in_place ? *this : Raster(columns, rows, {SampleType::Float, pixel_format.is_grey, pixel_format.has_alpha});
    for (int y = 0; y < rows; ++y) {
        interrupt.check();
        for (int x = 0; x < columns; ++x) {
            Color color = at(x, y);
            float alpha = alpha_at(x, y);
            change(color, alpha);
            result.set(x, y, color, alpha);
        }
    }
    *this = std::move(result);
}

void Raster::make_usable(float most, const Interrupt &interrupt) {
    if (pixel_format.type == SampleType::Half) {
        values = usable_halves();
        alphas = usable_half_alphas();
    } else if (pixel_format.type == SampleType::Float) {
        change_pixels(
            [most](Color &color, float &alpha) {
                color = usable(color, most);
                alpha = std::min(usable(alpha, most), 1.0f);
            },
            interrupt);
    }
}

void Raster::divide_by_alpha(const Interrupt &interrupt) {
    if (!pixel_format.has_alpha)
        return make_usable(largest, interrupt);
    if (pixel_format.type == SampleType::Half) {
        // The quotients would not be halves.
        is_divided = true;
        alphas = usable_half_alphas();
        return;
    }
    change_pixels(
        [](Color &color, float &alpha) {
            color = without_alpha(color, alpha);
            alpha = std::min(usable(alpha, largest), 1.0f);
        },
        interrupt);
}

void Raster::change_coding(const Interrupt &interrupt) {
    if (pixel_format.type == SampleType::Byte)
        values = byte_values_undecoded();
    else if (pixel_format.type == SampleType::Word)
        values = word_values_undecoded();
    else if (pixel_format.type == SampleType::Half && !is_divided)
        values = halves_from_srgb();
    else
        change_pixels(
            [](Color &color, float &) {
                color = usable({linear_of_srgb(color.r), linear_of_srgb(color.g), linear_of_srgb(color.b)}, largest);
            },
            interrupt);
}

} // namespace vantor
