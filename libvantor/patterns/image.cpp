// Image: a texture, laid over the texture coordinates.
#include "libvantor/patterns/image.h"

namespace vantor {

namespace {

// Where in or next to the picture a coordinate far outside of it is looked up.
float brought_near(float x, Image::Wrap wrap) {
    switch (wrap) {
    case Image::Wrap::Repeat:
        return x - std::floor(x);
    case Image::Wrap::Mirror:
        return x - 2 * std::floor(0.5f * x);
    case Image::Wrap::Clamp:
    case Image::Wrap::Black:
        break;
    }
    return std::clamp(x, -1.0f, 2.0f);
}

// The pixel that stands for one at most a picture's size away; -1 for none.
int wrapped(int i, int size, Image::Wrap wrap) {
    if (i >= 0 && i < size)
        return i;
    switch (wrap) {
    case Image::Wrap::Repeat:
        return (i % size + size) % size;
    case Image::Wrap::Mirror: {
        const int turn = (i % (2 * size) + 2 * size) % (2 * size);
        return std::min(turn, 2 * size - 1 - turn);
    }
    case Image::Wrap::Black:
        return -1;
    case Image::Wrap::Clamp:
        break;
    }
    return std::clamp(i, 0, size - 1);
}

float value_of(Image::Channel channel, const Raster &level, int column, int row) {
    switch (channel) {
    case Image::Channel::Red:
        return level.at(column, row).r;
    case Image::Channel::Green:
        return level.at(column, row).g;
    case Image::Channel::Blue:
        return level.at(column, row).b;
    default:
        return level.alpha_at(column, row);
    }
}

// Column and row are wrapped.
Color pixel_at(const Image &image, const Raster &level, int column, int row) {
    if (column < 0 || row < 0)
        return {};
    if (image.channel == Image::Channel::Color)
        return level.at(column, row);
    const float value = value_of(image.channel, level, column, row);
    return {value, value, value};
}

Color nearest(const Image &image, const Raster &level, Point2f uv) {
    const int column = static_cast<int>(std::floor(uv.u * static_cast<float>(level.width())));
    const int row = static_cast<int>(std::floor(uv.v * static_cast<float>(level.height())));
    return pixel_at(image, level, wrapped(column, level.width(), image.wrap), wrapped(row, level.height(), image.wrap));
}

Color bilinear(const Image &image, const Raster &level, Point2f uv) {
    const float x = uv.u * static_cast<float>(level.width()) - 0.5f;
    const float y = uv.v * static_cast<float>(level.height()) - 0.5f;
    const int left = static_cast<int>(std::floor(x));
    const int above = static_cast<int>(std::floor(y));
    const int columns[] = {wrapped(left, level.width(), image.wrap), wrapped(left + 1, level.width(), image.wrap)};
    const float to_right = x - static_cast<float>(left);
    const auto row = [&](int i) {
        const int from_above = wrapped(i, level.height(), image.wrap);
        return mixed(pixel_at(image, level, columns[0], from_above), pixel_at(image, level, columns[1], from_above),
                     to_right);
    };
    return mixed(row(above), row(above + 1), y - static_cast<float>(above));
}

Color trilinear(const Image &image, Point2f uv, Point2f footprint) {
    const std::vector<Raster> &levels = image.texture->levels;
    const float pixels = std::max({1.0f, footprint.u * static_cast<float>(levels.front().width()),
                                   footprint.v * static_cast<float>(levels.front().height())});
    const float level = std::min(std::log2(pixels), static_cast<float>(levels.size() - 1));
    const auto finer = static_cast<std::size_t>(level);
    const Color color = bilinear(image, levels[finer], uv);
    const float to_coarser = level - static_cast<float>(finer);
    return to_coarser > 0 ? mixed(color, bilinear(image, levels[finer + 1], uv), to_coarser) : color;
}

} // namespace

Color Image::evaluate(const PatternPoint &at) const {
    // Rows count from above.
    const Point2f uv{brought_near(at.uv.u * scale.u + offset.u, wrap),
                     brought_near(1 - (at.uv.v * scale.v + offset.v), wrap)};
    switch (filter) {
    case Filter::Nearest:
        return nearest(*this, texture->levels.front(), uv);
    case Filter::Bilinear:
        return bilinear(*this, texture->levels.front(), uv);
    case Filter::Trilinear:
        break;
    }
    return trilinear(*this, uv, {at.footprint.u * std::fabs(scale.u), at.footprint.v * std::fabs(scale.v)});
}

} // namespace vantor
