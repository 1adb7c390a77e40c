// Reading Radiance files (.hdr): three mantissas and a common exponent for each pixel. Ward, "Real Pixels", in Graphics
// Gems II, 1991; the format is that of the Radiance reference manual, "Radiance File Formats".
#include "libvantor/images/readers.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace vantor {

namespace {

using Rgbe = std::array<std::uint8_t, 4>;

[[noreturn]] void refuse_as_damaged() { throw std::runtime_error("the file is damaged"); }

class HdrFile {
  public:
    explicit HdrFile(const std::string &path) : file(std::fopen(path.c_str(), "rb"), &std::fclose) {
        if (!file)
            throw std::system_error(errno, std::generic_category());
    }

    std::uint8_t byte() {
        const int next = getc_unlocked(file.get());
        if (next == EOF)
            throw std::runtime_error("the file is cut off");
        return static_cast<std::uint8_t>(next);
    }
    Rgbe pixel() { return {byte(), byte(), byte(), byte()}; }

    // Without its end. A header has few of them, none longer than this.
    std::string line() {
        constexpr std::size_t longest = 4096;
        std::string result;
        for (char next; (next = static_cast<char>(byte())) != '\n'; result += next)
            if (result.size() == longest)
                refuse_as_damaged();
        return result;
    }

  private:
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> file;
};

struct HdrHeader {
    long width = 0;
    long height = 0;
    bool is_upwards = false;   // the first row is the lowest
    bool is_leftwards = false; // the first column is the rightmost
};

// "-Y 480 +X 640": rows from the top, of columns from the left.
HdrHeader resolution_of(std::string_view line) {
    HdrHeader result;
    const auto take = [&](char axis, bool &is_up_or_right, long &size) {
        const bool is_good = line.size() > 3 && (line[0] == '+' || line[0] == '-') && line[1] == axis && line[2] == ' ';
        if (!is_good)
            throw std::runtime_error("its size is not given as rows of columns (expected -Y HEIGHT +X WIDTH)");
        is_up_or_right = line[0] == '+';
        const auto [end, error] = std::from_chars(line.data() + 3, line.data() + line.size(), size);
        if (error != std::errc())
            refuse_as_damaged();
        line.remove_prefix(static_cast<std::size_t>(end - line.data()));
        line.remove_prefix(line.starts_with(' ') ? 1 : 0);
    };
    bool is_rightwards = true;
    take('Y', result.is_upwards, result.height);
    take('X', is_rightwards, result.width);
    result.is_leftwards = !is_rightwards;
    return result;
}

HdrHeader read_header(HdrFile &file) {
    constexpr int most_lines = 1000;
    file.line(); // "#?RADIANCE", or the name of another program
    for (int i = 0; i < most_lines; ++i) {
        const std::string line = file.line();
        if (line.empty())
            return resolution_of(file.line());
        if (line.starts_with("FORMAT=") && line != "FORMAT=32-bit_rle_rgbe")
            throw std::runtime_error("its colours are no RGBE (expected FORMAT=32-bit_rle_rgbe)");
    }
    refuse_as_damaged();
}

// Components one after the other, each in runs: a count above 128 is that of one value, any other of as many.
void read_components(HdrFile &file, std::vector<Rgbe> &row) {
    for (std::size_t component = 0; component < 4; ++component)
        for (std::size_t x = 0; x < row.size();) {
            const std::uint8_t code = file.byte();
            const bool is_run = code > 128;
            const std::size_t count = is_run ? code - 128u : code;
            if (count == 0 || count > row.size() - x)
                refuse_as_damaged();
            std::uint8_t value = 0;
            for (std::size_t i = 0; i < count; ++i) {
                if (i == 0 || !is_run)
                    value = file.byte();
                row[x++][component] = value;
            }
        }
}

// Pixels one after the other, as the format was at first: 1 1 1 n repeats the one before n times, another such one
// right behind it 256 n times more, and so on.
void read_pixels(HdrFile &file, std::vector<Rgbe> &row, Rgbe next) {
    int shift = 0;
    for (std::size_t x = 0;;) {
        if (next[0] == 1 && next[1] == 1 && next[2] == 1) {
            const std::size_t count = shift < 32 ? std::size_t{next[3]} << shift : row.size() + 1;
            if (x == 0 || count > row.size() - x)
                refuse_as_damaged();
            std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(x), count, row[x - 1]);
            x += count;
            shift += 8;
        } else {
            row[x++] = next;
            shift = 0;
        }
        if (x == row.size())
            return;
        next = file.pixel();
    }
}

void read_row(HdrFile &file, std::vector<Rgbe> &row) {
    const Rgbe first = file.pixel();
    const bool has_components = first[0] == 2 && first[1] == 2 && first[2] < 128;
    if (!has_components)
        read_pixels(file, row, first);
    else if (first[2] * std::size_t{256} + first[3] == row.size())
        read_components(file, row);
    else
        refuse_as_damaged();
}

Color color_of(Rgbe pixel) {
    // Mantissas of 8 bits, exponents from -128 up.
    const float unit = pixel[3] == 0 ? 0.0f : std::ldexp(1.0f, pixel[3] - (128 + 8));
    return Color{static_cast<float>(pixel[0]), static_cast<float>(pixel[1]), static_cast<float>(pixel[2])} * unit;
}

} // namespace

Raster read_hdr(const std::string &path, long file_size, const Interrupt &interrupt) {
    HdrFile file(path);
    const HdrHeader header = read_header(file);
    check_size(header.width, header.height);
    // As many pixels go into a byte as repeat one; but a damaged header should not take all the memory.
    constexpr long always_possible = 1L << 24;
    constexpr long pixels_per_byte = 4096;
    if (header.width * header.height > std::max(always_possible, pixels_per_byte * file_size))
        refuse_as_too_short();
    const PixelFormat format{SampleType::Float};
    check_memory(header.width, header.height, format, static_cast<double>(header.width) * sizeof(Rgbe));

    Raster raster(static_cast<int>(header.width), static_cast<int>(header.height), format);
    std::vector<Rgbe> row(static_cast<std::size_t>(header.width));
    for (int i = 0; i < raster.height(); ++i) {
        interrupt.check();
        read_row(file, row);
        const int y = header.is_upwards ? raster.height() - 1 - i : i;
        for (int x = 0; x < raster.width(); ++x)
            raster.set(header.is_leftwards ? raster.width() - 1 - x : x, y, color_of(row[static_cast<std::size_t>(x)]));
    }
    return raster;
}

} // namespace vantor
