// Textures: pictures that the script named, each file read once.
#pragma once

#include "libvantor/base/report.h"
#include "libvantor/patterns/texture.h"

#include <memory>
#include <unordered_map>

namespace vantor {

/// How the numbers of a picture file are to be taken.
enum class ColorSpace { AsFile, Srgb, Linear };

/// One picture file. A file that cannot be read is a grey of 0.5, in every colour space.
class TextureFile {
  public:
    TextureFile();

    /// Throws Interrupted.
    TextureFile(Raster of, const Interrupt &interrupt);

    /// Made when first asked for; smaller copies of the picture only where they are wanted. If that is interrupted, it
    /// is reported, and the texture is grey this time.
    std::shared_ptr<const Texture> texture(ColorSpace space, bool has_smaller_copies, const CallReport &report);

  private:
    using SharedTexture = std::shared_ptr<const Texture>;

    // Both are the same picture.
    struct Textures {
        SharedTexture alone;
        SharedTexture with_smaller_copies;
    };

    Raster picture;
    bool is_grey;
    Textures as_file;
    Textures otherwise; // with the other coding
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
