// Textures: pictures that the script named, each file read once.
#pragma once

#include "libvantor/base/report.h"
#include "libvantor/patterns/texture.h"

#include <memory>
#include <optional>
#include <unordered_map>

namespace vantor {

/// How the numbers of a picture file are to be taken.
enum class ColorSpace { AsFile, Srgb, Linear };

/// One picture file. A file that cannot be read is a grey of 0.5, in every colour space.
class TextureFile {
  public:
    explicit TextureFile(std::optional<Raster> picture);

    std::shared_ptr<const Texture> texture(ColorSpace space);

  private:
    std::shared_ptr<const Texture> as_file;
    std::shared_ptr<const Texture> otherwise; // made when first asked for
    bool is_grey;
};

class TextureFiles {
  public:
    /// The file at the path, read when first asked for, and again if that was interrupted; reported each
    /// time, if it cannot be read.
    TextureFile *open(const std::string &path, const CallReport &report);

  private:
    struct Opened {
        TextureFile file;
        std::string why_not; // empty if it could be read
        bool was_interrupted;
    };
    std::unordered_map<std::string, Opened> files; // moves none of its elements
};

} // namespace vantor
