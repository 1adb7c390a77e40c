// Raster: a whole picture in memory, as a light or a texture reads it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/interrupt.h"

#include <cstddef>
#include <memory>
#include <variant>
#include <vector>

namespace vantor {

/// How a picture holds a channel of a pixel.
enum class SampleType : std::uint8_t {
    Byte, ///< 8 bits, colours in sRGB.
    Word, ///< 16 bits, likewise.
    Half, ///< Linear.
    Float ///< Linear.
};

/// How a picture holds a pixel: its channels one after the other, alpha last.
struct PixelFormat {
    SampleType type = SampleType::Float;
    bool is_grey = false; ///< One channel for all colours.
    bool has_alpha = false;

    /// Whether colours have to be decoded from sRGB.
    constexpr bool is_srgb() const { return type == SampleType::Byte || type == SampleType::Word; }
    constexpr std::size_t channels() const { return (is_grey ? std::size_t{1} : 3) + (has_alpha ? 1 : 0); }
    constexpr std::size_t bytes() const {
        return channels() * (type == SampleType::Byte ? 1 : type == SampleType::Float ? sizeof(float) : 2);
    }
};

/// Pixels are kept as the file has them; the linear floats that they stand for are looked up when they are read.
/// Copies share them.
class Raster {
  public:
    /// Its pixels are still to be written.
    Raster(int width, int height, PixelFormat format);

    /// Of floats, row after row from the top.
    Raster(int width, int height, const std::vector<Color> &colors);

    int width() const { return columns; }
    int height() const { return rows; }
    PixelFormat format() const { return pixel_format; }

    /// The linear colour of a pixel; y counts from the top.
    Color at(int x, int y) const {
        const std::size_t first = index(x, y);
        if (const auto *bytes = std::get_if<Samples<std::uint8_t>>(&samples))
            return decoded(bytes->get() + first);
        if (const auto *words = std::get_if<Samples<std::uint16_t>>(&samples))
            return is_divided ? divided(words->get() + first) : decoded(words->get() + first);
        const float *const pixel = std::get_if<Samples<float>>(&samples)->get() + first;
        return {pixel[0], pixel[green], pixel[blue]};
    }

    /// How much of a pixel is covered, 0 to 1 in good files; 1 without alpha.
    float alpha_at(int x, int y) const;

    /// A row to be written: bytes, words and halves as std::uint16_t, or floats.
    template <class Sample> Sample *row(int y) { return std::get<Samples<Sample>>(samples).get() + index(0, y); }

    /// Sets a pixel of floats; of a grey one red counts.
    void set(int x, int y, Color color, float alpha = 1);

    // What changes the values that are read; other copies keep theirs. One that throws Interrupted leaves the raster
    // half changed.

    /// Values that are not finite, below 0, or above the most (which is not below 65504, that of halves) become 0;
    /// alpha above 1 becomes 1.
    void make_usable(float most, const Interrupt &interrupt);

    /// Colours that are multiplied by their alpha, as those of OpenEXR files are, become what they were before, and
    /// usable.
    void divide_by_alpha(const Interrupt &interrupt);

    /// Takes usable values otherwise than the file says: those that are decoded from sRGB as they stand in it, any
    /// other ones as if they stood there in sRGB.
    void change_coding(const Interrupt &interrupt);

  private:
    template <class Sample> using Samples = std::shared_ptr<Sample[]>;

    std::size_t index(int x, int y) const {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x)) *
               channels;
    }
    template <class Sample> Color decoded(const Sample *pixel) const {
        return {values[pixel[0]], values[pixel[green]], values[pixel[blue]]};
    }
    Color divided(const std::uint16_t *pixel) const;

    // Makes all pixels floats that the function has changed; it takes a colour and an alpha by reference.
    template <class Change> void change_pixels(const Change &change, const Interrupt &interrupt);

    int columns;
    int rows;
    PixelFormat pixel_format;
    std::size_t channels;
    std::size_t green; // where in a pixel
    std::size_t blue;
    bool is_divided = false;       // halves, by alpha, whenever they are read
    const float *values = nullptr; // of bytes or words: a table that all rasters share
    const float *alphas = nullptr;
    std::variant<Samples<std::uint8_t>, Samples<std::uint16_t>, Samples<float>> samples;
};

} // namespace vantor
