// Picture files: PNG and OpenEXR. The only room with the image libraries.
#include "libvantor/pictures/files.h"

#include "libvantor/base/report.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <png.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vantor {

namespace {

namespace fs = std::filesystem;

enum class Format { Unknown, Png, Exr };

Format format_of(const std::string &path) {
    std::string ending = fs::path(path).extension().string();
    for (char &c : ending)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return ending == ".png" ? Format::Png : ending == ".exr" ? Format::Exr : Format::Unknown;
}

// A symbolic link stays one: the file that it names is replaced.
fs::path resolved(const std::string &path) {
    std::error_code failed;
    const fs::path target = fs::canonical(path, failed);
    return failed ? fs::path(path) : target;
}

// An empty file of a name of its own beside the target, removed again unless it is renamed to the target. Beside it,
// because a rename is one step only within a file system.
class TemporaryFile {
  public:
    explicit TemporaryFile(fs::path final_path) : target(std::move(final_path)) {
        static std::atomic<unsigned> number = 0;
        for (int attempt = 0; attempt < 100; ++attempt) {
            // Hidden, and with the process in its name, so that processes do not meet.
            fs::path candidate = target;
            candidate.replace_filename(joined(
                {".", target.filename().string(), ".", std::to_string(getpid()), ".", std::to_string(number++)}));
            const int file = open(candidate.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
            if (file >= 0) {
                close(file);
                name = candidate;
                return;
            }
            if (errno != EEXIST)
                break;
        }
        throw std::system_error(errno, std::generic_category());
    }
    ~TemporaryFile() {
        if (!name.empty())
            unlink(name.c_str());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    const fs::path &path() const { return name; }

    void rename_to_target() {
        if (std::rename(name.c_str(), target.c_str()) != 0)
            throw std::system_error(errno, std::generic_category());
        name.clear();
    }

  private:
    fs::path target;
    fs::path name;
};

void write_png(const Picture &picture, float scale, const fs::path &path) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(3 * picture.pixels.size());
    for (const Color &c : picture.pixels)
        for (const float value : {c.r, c.g, c.b})
            bytes.push_back(srgb_byte(value * scale));

    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(picture.window.width());
    header.height = static_cast<png_uint_32>(picture.window.height());
    header.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&header, path.c_str(), 0, bytes.data(), 0, nullptr))
        throw std::runtime_error(header.message);
}

void write_exr(const Picture &picture, float scale, const fs::path &path) {
    std::vector<Color> scaled = picture.pixels;
    for (Color &c : scaled)
        c = c * scale;

    // The library wants bounds that include the last pixel.
    const PixelArea &window = picture.window;
    const Imath::Box2i display({0, 0}, {picture.full_width - 1, picture.full_height - 1});
    const Imath::Box2i data({window.x0, window.y0}, {window.x1 - 1, window.y1 - 1});
    Imf::Header header(display, data);
    header.compression() = Imf::ZIP_COMPRESSION;

    const char *names[] = {"R", "G", "B"};
    float *values = &scaled[0].r;
    Imf::FrameBuffer frame;
    for (int i = 0; i < 3; ++i) {
        header.channels().insert(names[i], Imf::Channel(Imf::FLOAT));
        frame.insert(names[i], Imf::Slice::Make(Imf::FLOAT, values + i, data, sizeof(Color),
                                                sizeof(Color) * static_cast<std::size_t>(window.width())));
    }
    Imf::OutputFile file(path.c_str(), header, 0);
    file.setFrameBuffer(frame);
    file.writePixels(window.height());
}

} // namespace

static_assert(sizeof(Color) == 3 * sizeof(float), "EXR files are written straight from the pixels");

bool has_known_format(const std::string &path) { return format_of(path) != Format::Unknown; }

std::string why_unwritable(const std::string &path) {
    const fs::path target = resolved(path);
    struct stat found;
    if (stat(target.c_str(), &found) == 0) {
        if (S_ISDIR(found.st_mode))
            return std::strerror(EISDIR);
        if (!S_ISREG(found.st_mode))
            return "Not a regular file";
        if (access(target.c_str(), W_OK) != 0)
            return std::strerror(errno);
    }
    try {
        const TemporaryFile trial(target);
        return {};
    } catch (const std::system_error &error) {
        return error.code().message();
    }
}

std::string write_picture(const Picture &picture, float scale, const std::string &path) {
    try {
        TemporaryFile file(resolved(path));
        if (format_of(path) == Format::Png)
            write_png(picture, scale, file.path());
        else
            write_exr(picture, scale, file.path());
        file.rename_to_target();
        return {};
    } catch (const std::system_error &error) {
        return error.code().message();
    } catch (const std::exception &error) {
        return error.what();
    }
}

} // namespace vantor
