// Picture files: which format a path means, and writing them whole or not at all.
#include "libvantor/images/files.h"

#include "libvantor/base/report.h"
#include "libvantor/images/formats.h"
#include "libvantor/images/temporary_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantor {

namespace {

namespace fs = std::filesystem;

enum class Format { Unknown, Png, Jpeg, Tiff, Exr };

Format format_of(const std::string &path) {
    std::string ending = fs::path(path).extension().string();
    for (char &c : ending)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    constexpr std::pair<std::string_view, Format> endings[] = {{".png", Format::Png},   {".jpg", Format::Jpeg},
                                                               {".jpeg", Format::Jpeg}, {".tif", Format::Tiff},
                                                               {".tiff", Format::Tiff}, {".exr", Format::Exr}};
    for (const auto &[known, format] : endings)
        if (ending == known)
            return format;
    return Format::Unknown;
}

// A symbolic link stays one: the file that it names is replaced, or made if there is none yet.
fs::path resolved(const std::string &path) {
    constexpr int most_links = 40; // As many as Linux follows.
    fs::path target = path;
    for (int links = 0; links < most_links; ++links) {
        std::error_code failed;
        if (!fs::is_symlink(target, failed))
            return target;
        target = target.parent_path() / fs::read_symlink(target);
    }
    throw std::system_error(ELOOP, std::generic_category());
}

// As files of integers have it: colours as if all of the pixel were covered.
Picture unassociated(const Picture &picture, const Picture &alpha) {
    Picture result = picture;
    for (std::size_t i = 0; i < result.pixels.size(); ++i)
        if (const float covered = alpha.pixels[i].r; covered > 0)
            result.pixels[i] = result.pixels[i] * (1 / covered);
    return result;
}

// The values as they are shown.
template <class Integer> IntegerPicture<Integer> integers_of(const Picture &picture, float scale, Display display) {
    IntegerPicture<Integer> result{picture.window.width(), picture.window.height(), {}};
    result.values.reserve(3 * picture.pixels.size());
    for (const Color &c : picture.pixels)
        for (const float value : {c.r, c.g, c.b})
            result.values.push_back(shown<Integer>(value * scale, display));
    return result;
}

template <class Integer> std::string png_file_of(const Picture &picture, const FileForm &form) {
    if (!form.alpha)
        return png_file(integers_of<Integer>(picture, form.scale, form.display), form.comment);
    IntegerPicture<Integer> values = integers_of<Integer>(unassociated(picture, *form.alpha), form.scale, form.display);
    for (const Color &covered : form.alpha->pixels)
        values.alpha.push_back(shown<Integer>(covered.r, Display::Linear));
    return png_file(values, form.comment);
}

std::string file_of(const Picture &picture, const FileForm &form, Format format) {
    switch (format) {
    case Format::Exr:
        return exr_file(picture, form);
    case Format::Jpeg:
        return jpeg_file(integers_of<std::uint8_t>(picture, form.scale, form.display), form.comment);
    case Format::Tiff:
        return tiff_file(integers_of<std::uint8_t>(picture, form.scale, form.display), form.comment);
    default:
        return form.bits == 16 ? png_file_of<std::uint16_t>(picture, form) : png_file_of<std::uint8_t>(picture, form);
    }
}

PictureHandler &the_handler() {
    static PictureHandler &only = *new PictureHandler; // never destroyed, as scenes may outlive it
    return only;
}

TileHandler &the_tile_handler() {
    static TileHandler &only = *new TileHandler;
    return only;
}

} // namespace

void set_picture_handler(PictureHandler handler) { the_handler() = std::move(handler); }

void set_tile_handler(TileHandler handler) { the_tile_handler() = std::move(handler); }
const TileHandler &tile_handler() { return the_tile_handler(); }

bool has_known_format(const std::string &path) { return format_of(path) != Format::Unknown; }
bool holds_floats(const std::string &path) { return format_of(path) == Format::Exr; }

std::span<const int> bits_of_format(const std::string &path) {
    static constexpr int of_png[] = {8, 16};
    static constexpr int of_exr[] = {32, 16};
    static constexpr int of_others[] = {8};
    switch (format_of(path)) {
    case Format::Png:
        return of_png;
    case Format::Exr:
        return of_exr;
    default:
        return of_others;
    }
}

std::string why_unwritable(const std::string &path, int width, int height) {
    if (format_of(path) == Format::Jpeg && std::max(width, height) > largest_jpeg_side)
        return joined({"a JPEG file has at most ", std::to_string(largest_jpeg_side), " pixels a side"});
    try {
        const fs::path target = resolved(path);
        struct stat found;
        if (stat(target.c_str(), &found) == 0) {
            if (S_ISDIR(found.st_mode))
                return std::strerror(EISDIR);
            if (!S_ISREG(found.st_mode))
                return "Not a regular file";
            if (access(target.c_str(), W_OK) != 0)
                return std::strerror(errno);
        } else if (errno != ENOENT) {
            return std::strerror(errno);
        }
        remove_leftovers(target.parent_path());
        const TemporaryFile trial(target);
        return {};
    } catch (const std::system_error &error) {
        return error.code().message();
    }
}

std::string write_picture(const Picture &picture, const FileForm &form, const std::string &path) {
    try {
        if (holds_floats(path) && form.scale == 1 && form.layers.empty() && the_handler() &&
            the_handler()(picture, path))
            return {};
        const std::string bytes = file_of(picture, form, format_of(path));
        TemporaryFile file(resolved(path));
        file.write(bytes);
        file.replace_target();
        return {};
    } catch (const std::system_error &error) {
        return error.code().message();
    } catch (const std::exception &error) {
        return error.what();
    }
}

} // namespace vantor
