// Texture: a picture, and ever smaller copies of it.
#include "libvantor/patterns/texture.h"

namespace vantor {

namespace {

// The pixels of a finer row that a pixel of a coarser one covers.
struct Cover {
    int first;
    int end;
    float low;  // where it begins, in finer pixels
    float high; // where it ends

    Cover(int coarse_place, int fine_size, int coarse_size) {
        const float stretch = static_cast<float>(fine_size) / static_cast<float>(coarse_size);
        low = static_cast<float>(coarse_place) * stretch;
        high = static_cast<float>(coarse_place + 1) * stretch;
        first = static_cast<int>(low);
        end = std::min(static_cast<int>(std::ceil(high)), fine_size);
    }
    float weight(int fine_place) const {
        const auto begin = static_cast<float>(fine_place);
        return std::max(std::min(begin + 1, high) - std::max(begin, low), 0.0f);
    }
};

Raster halved(const Raster &fine, const Interrupt &interrupt) {
    Raster coarse(std::max(fine.width() / 2, 1), std::max(fine.height() / 2, 1),
                  {SampleType::Float, fine.format().is_grey, fine.format().has_alpha});
    for (int y = 0; y < coarse.height(); ++y) {
        interrupt.check();
        const Cover rows(y, fine.height(), coarse.height());
        for (int x = 0; x < coarse.width(); ++x) {
            const Cover columns(x, fine.width(), coarse.width());
            Color color;
            float alpha = 0;
            float total = 0;
            for (int i = rows.first; i < rows.end; ++i)
                for (int j = columns.first; j < columns.end; ++j) {
                    const float weight = rows.weight(i) * columns.weight(j);
                    color += fine.at(j, i) * weight;
                    if (fine.format().has_alpha)
                        alpha += fine.alpha_at(j, i) * weight;
                    total += weight;
                }
            coarse.set(x, y, color * (1 / total), alpha / total);
        }
    }
    return coarse;
}

} // namespace

Texture::Texture(Raster picture) { levels.push_back(std::move(picture)); }

void Texture::add_smaller_copies(const Interrupt &interrupt) {
    while (levels.back().width() > 1 || levels.back().height() > 1)
        levels.push_back(halved(levels.back(), interrupt));
}

} // namespace vantor
