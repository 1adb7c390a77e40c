// Picture files: PNG and OpenEXR. The only room with the image libraries.
#include "libvantor/pictures/files.h"

#include "libvantor/base/report.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>
#include <ImfStdIO.h>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <png.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

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

[[noreturn]] void throw_errno(int number) { throw std::system_error(number, std::generic_category()); }

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
    throw_errno(ELOOP);
}

// A new file of a name of its own beside the target, removed again unless it replaces the target. Beside it, because a
// rename is one step only within a file system.
class TemporaryFile {
  public:
    explicit TemporaryFile(fs::path final_path) : target(std::move(final_path)) {
        static std::atomic<unsigned> number = 0;
        constexpr mode_t everything = 0777;
        struct stat replaced;
        const bool replaces = stat(target.c_str(), &replaced) == 0;
        const mode_t mode = replaces ? replaced.st_mode & everything : 0666;
        for (int attempt = 0; attempt < 100; ++attempt) {
            // Hidden, and with the process in its name, so that processes do not meet. Short, as the target's own name
            // may be as long as a name can be.
            fs::path candidate = target;
            candidate.replace_filename(joined({".vantor.", std::to_string(getpid()), ".", std::to_string(number++)}));
            descriptor = open(candidate.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode);
            if (descriptor >= 0) {
                name = std::move(candidate);
                // What the process's mask took away. Not every file system has modes; it then keeps the few it has.
                if (replaces)
                    static_cast<void>(fchmod(descriptor, mode));
                return;
            }
            if (errno != EEXIST)
                throw_errno(errno);
        }
        throw_errno(EEXIST);
    }
    ~TemporaryFile() {
        if (descriptor >= 0)
            close(descriptor);
        if (!name.empty())
            unlink(name.c_str());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
            if (count >= 0)
                bytes.remove_prefix(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                throw_errno(errno);
        }
    }

    void replace_target() {
        // Some file systems tell only now that there was no room.
        if (close(std::exchange(descriptor, -1)) != 0)
            throw_errno(errno);
        if (std::rename(name.c_str(), target.c_str()) != 0)
            throw_errno(errno);
        name.clear();
    }

  private:
    fs::path target;
    fs::path name;
    int descriptor = -1;
};

std::string png_of(const Picture &picture, float scale) {
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
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);
    std::string file(size, '\0');
    if (!png_image_write_to_memory(&header, file.data(), &size, 0, bytes.data(), 0, nullptr))
        throw std::runtime_error(header.message);
    file.resize(size);
    return file;
}

std::string exr_of(const Picture &picture, float scale) {
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
    // In memory, because the library's last writes come when the file is closed, and their failure is not told.
    Imf::StdOSStream stream;
    {
        Imf::OutputFile file(stream, header, 0);
        file.setFrameBuffer(frame);
        file.writePixels(window.height());
    }
    return stream.str();
}

} // namespace

static_assert(sizeof(Color) == 3 * sizeof(float), "EXR files are written straight from the pixels");

bool has_known_format(const std::string &path) { return format_of(path) != Format::Unknown; }

std::string why_unwritable(const std::string &path) {
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
        const TemporaryFile trial(target);
        return {};
    } catch (const std::system_error &error) {
        return error.code().message();
    }
}

std::string write_picture(const Picture &picture, float scale, const std::string &path) {
    try {
        const std::string bytes = format_of(path) == Format::Png ? png_of(picture, scale) : exr_of(picture, scale);
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
