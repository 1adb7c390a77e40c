// Textures: pictures that the script named, each file read once.
#include "libvantor/description/texture.h"

#include "libvantor/images/reading.h"

namespace vantor {

namespace {

constexpr float grey = 0.5f;

// OpenEXR files have colours that are multiplied by their alpha; those of a texture are not.
void divide_by_alpha(Raster &picture) {
    for (std::size_t i = 0; i < picture.alpha.size(); ++i)
        if (picture.alpha[i] > 0)
            picture.pixels[i] *= Color{1, 1, 1} * (1 / picture.alpha[i]);
}

} // namespace

TextureFile::TextureFile(std::optional<Raster> picture) : is_grey(!picture) {
    if (picture && !picture->is_from_srgb)
        divide_by_alpha(*picture);
    as_file = std::make_shared<const Texture>(picture ? std::move(*picture) : Raster{1, 1, {{grey, grey, grey}}, {}});
}

std::shared_ptr<const Texture> TextureFile::texture(ColorSpace space) {
    const Raster &picture = as_file->levels.front();
    if (is_grey || space == ColorSpace::AsFile || (space == ColorSpace::Srgb) == picture.is_from_srgb)
        return as_file;
    if (!otherwise)
        otherwise = std::make_shared<const Texture>(with_other_coding(picture));
    return otherwise;
}

TextureFile *TextureFiles::open(const std::string &path, const CallReport &report) {
    auto found = files.find(path);
    if (found == files.end() || found->second.was_interrupted) {
        ReadPicture read = read_picture(path);
        Opened opened{TextureFile(std::move(read.raster)), std::move(read.why_not), read.was_interrupted};
        found = files.insert_or_assign(path, std::move(opened)).first;
    }
    if (!found->second.why_not.empty())
        report.diagnostic(joined({"cannot read the picture: ", found->second.why_not, "; it is grey"}));
    return &found->second.file;
}

} // namespace vantor
