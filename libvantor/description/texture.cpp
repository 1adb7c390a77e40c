// Textures: pictures that the script named, each file read once.
#include "libvantor/description/texture.h"

#include "libvantor/images/reading.h"

#include <limits>

namespace vantor {

namespace {

Raster grey() {
    constexpr float half = 0.5f;
    return Raster(1, 1, {{half, half, half}});
}

} // namespace

TextureFile::TextureFile() : picture(grey()), is_grey(true) {}

TextureFile::TextureFile(Raster of, const Interrupt &interrupt) : picture(std::move(of)), is_grey(false) {
    // OpenEXR files have colours that are multiplied by their alpha; those of a texture are not.
    if (picture.format().is_srgb())
        picture.make_usable(std::numeric_limits<float>::max(), interrupt);
    else
        picture.divide_by_alpha(interrupt);
}

std::shared_ptr<const Texture> TextureFile::texture(ColorSpace space, bool has_smaller_copies,
                                                    const CallReport &report) {
    const bool is_as_file =
        is_grey || space == ColorSpace::AsFile || (space == ColorSpace::Srgb) == picture.format().is_srgb();
    Textures &textures = is_as_file ? as_file : otherwise;
    SharedTexture &wanted = has_smaller_copies ? textures.with_smaller_copies : textures.alone;
    if (wanted)
        return wanted;
    try {
        const Interrupt interrupt;
        const SharedTexture &other = has_smaller_copies ? textures.alone : textures.with_smaller_copies;
        Raster level = other ? other->levels.front() : picture;
        if (!other && !is_as_file)
            level.change_coding(interrupt);
        Texture texture(std::move(level));
        if (has_smaller_copies)
            texture.add_smaller_copies(interrupt);
        wanted = std::make_shared<const Texture>(std::move(texture));
        return wanted;
    } catch (const Interrupted &) {
        report.diagnostic("interrupted; the picture is grey");
        return std::make_shared<const Texture>(grey());
    }
}

TextureFile *TextureFiles::open(const std::string &path, const CallReport &report) {
    auto found = files.find(path);
    if (found == files.end() || found->second.was_interrupted) {
        ReadPicture read = read_picture(path);
        Opened opened{TextureFile(), std::move(read.why_not), read.was_interrupted};
        if (read.raster) {
            try {
                const Interrupt interrupt;
                opened.file = TextureFile(std::move(*read.raster), interrupt);
            } catch (const Interrupted &) {
                opened.why_not = "interrupted";
                opened.was_interrupted = true;
            }
        }
        found = files.insert_or_assign(path, std::move(opened)).first;
    }
    if (!found->second.why_not.empty())
        report.diagnostic(joined({"cannot read the picture: ", found->second.why_not, "; it is grey"}));
    return &found->second.file;
}

} // namespace vantor
