// Environment: light from all directions, from a picture of them.
#include "libvantor/lights/environment.h"

#include "libvantor/base/warp.h"

#include <numbers>

namespace vantor {

namespace {

// The mean over a pixel of what is interpolated from the middles of pixels: along each axis the pixel itself counts
// 3/4 and either neighbour 1/8, the integrals of the tents around them.
float mean_of_neighbours(float before, float itself, float after) {
    return 0.125f * before + 0.75f * itself + 0.125f * after;
}

// The luminance of each pixel of the interpolated picture.
std::vector<float> interpolated_luminances(const Raster &picture, Color scale) {
    const auto columns = static_cast<std::size_t>(picture.width);
    const auto rows = static_cast<std::size_t>(picture.height);
    std::vector<float> across(columns * rows);
    std::vector<float> line(columns);
    for (std::size_t r = 0; r < rows; ++r) {
        for (std::size_t c = 0; c < columns; ++c)
            line[c] = luminance(picture.pixels[r * columns + c] * scale);
        for (std::size_t c = 0; c < columns; ++c)
            across[r * columns + c] =
                mean_of_neighbours(line[c > 0 ? c - 1 : columns - 1], line[c], line[c + 1 < columns ? c + 1 : 0]);
    }
    std::vector<float> result(columns * rows);
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t c = 0; c < columns; ++c) {
            const auto at = [&](std::size_t row) { return across[row * columns + c]; };
            result[r * columns + c] = mean_of_neighbours(at(r > 0 ? r - 1 : 0), at(r), at(r + 1 < rows ? r + 1 : r));
        }
    return result;
}

} // namespace

Environment::Environment(Raster of, Color its_scale, const Affine &its_world_from_local)
    : picture(std::move(of)), scale(its_scale), world_from_local(its_world_from_local.linear),
      local_from_world(its_world_from_local.inverse), determinant(std::fabs(its_world_from_local.determinant)) {
    const auto columns = static_cast<std::size_t>(picture.width);
    const auto rows = static_cast<std::size_t>(picture.height);
    cos_thetas.reserve(rows + 1);
    for (std::size_t r = 0; r <= rows; ++r)
        cos_thetas.push_back(
            static_cast<float>(std::cos(std::numbers::pi * static_cast<double>(r) / static_cast<double>(rows))));

    std::vector<float> weights = interpolated_luminances(picture, scale);
    double sum = 0;
    for (std::size_t r = 0; r < rows; ++r) {
        const float solid_angle = 2 * pi * (cos_thetas[r] - cos_thetas[r + 1]) / static_cast<float>(columns);
        for (std::size_t c = 0; c < columns; ++c)
            sum += weights[r * columns + c] *= solid_angle;
    }
    total = static_cast<float>(sum);
    if (total > 0 && std::isfinite(total))
        distribution = std::make_unique<const Distribution>(weights, picture.width, picture.height);
}

// The middle of the picture is -Z, its upper edge +Y, and +X a quarter of it to the right: as the panorama camera sees.
Point2f Environment::image_point(Vec3 local) const {
    const float turn = std::atan2(local.x, -local.z) * (0.5f * inverse_pi) + 0.5f;
    const float polar = std::atan2(std::sqrt(local.x * local.x + local.z * local.z), local.y) * inverse_pi;
    // Under extreme transforms an angle may be NaN.
    const auto inside = [](float fraction) { return fraction >= 0 ? std::min(fraction, 1.0f) : 0.0f; };
    return {inside(turn) * static_cast<float>(picture.width), inside(polar) * static_cast<float>(picture.height)};
}

Color Environment::interpolated(Point2f point) const {
    const float x = point.u - 0.5f;
    const float y = std::clamp(point.v - 0.5f, 0.0f, static_cast<float>(picture.height - 1));
    const int column = static_cast<int>(std::floor(x));
    const int row = std::min(static_cast<int>(y), std::max(picture.height - 2, 0));
    const float right = x - static_cast<float>(column);
    const float down = y - static_cast<float>(row);
    const int width = picture.width;
    const int left_column = (column + width) % width;
    const int right_column = (column + 1) % width;
    const int next_row = std::min(row + 1, picture.height - 1);
    const auto blended = [](Color a, Color b, float t) { return a * (1 - t) + b * t; };
    return blended(blended(picture.at(left_column, row), picture.at(right_column, row), right),
                   blended(picture.at(left_column, next_row), picture.at(right_column, next_row), right), down);
}

Color Environment::radiance(Vec3 direction) const {
    return interpolated(image_point(local_from_world(direction))) * scale;
}

Vec3 Environment::sample(Point2f numbers, float &direction_pdf) const {
    const Distribution::Sample cell = distribution->sample(numbers);
    const auto row = static_cast<std::size_t>(cell.row);
    const float cos_theta = cos_thetas[row] + (cos_thetas[row + 1] - cos_thetas[row]) * cell.within.v;
    const float radius = std::sqrt(std::max(0.0f, 1 - cos_theta * cos_theta));
    const float turn = (static_cast<float>(cell.column) + cell.within.u) / static_cast<float>(picture.width);
    const warp::SineCosine along = warp::sine_cosine_of_turn(turn);
    const Vec3 direction = normalized(world_from_local({-radius * along.sine, cos_theta, radius * along.cosine}));
    direction_pdf = in_world(cell_pdf(cell.column, cell.row), direction);
    return direction;
}

SeenLight Environment::seen(Vec3 direction) const {
    if (is_black())
        return {{}, 0};
    const Point2f point = image_point(local_from_world(direction));
    const int column = std::min(static_cast<int>(point.u), picture.width - 1);
    const int row = std::min(static_cast<int>(point.v), picture.height - 1);
    return {interpolated(point) * scale, in_world(cell_pdf(column, row), direction)};
}

float Environment::cell_pdf(int column, int row) const {
    const auto r = static_cast<std::size_t>(row);
    const float solid_angle = 2 * pi * (cos_thetas[r] - cos_thetas[r + 1]) / static_cast<float>(picture.width);
    return distribution->pmf(column, row) / solid_angle;
}

// A linear map takes a cone around a unit direction d to one of |det M| / |d M|^3 of its solid angle; and of the unit
// direction w = d M / |d M| of the world |w M^-1| is 1 / |d M|.
float Environment::in_world(float local_pdf, Vec3 direction) const {
    const float inverse_stretch = length(local_from_world(direction));
    return local_pdf / (determinant * inverse_stretch * inverse_stretch * inverse_stretch);
}

} // namespace vantor
