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

// The luminance of each pixel of the interpolated picture, row after row.
class InterpolatedLuminances {
  public:
    InterpolatedLuminances(const Raster &of, Color its_scale)
        : picture(of), scale(its_scale), line(static_cast<std::size_t>(of.width())), before(line.size()),
          itself(line.size()), after(line.size()) {
        blend_across(0, after);
        itself = after;
    }

    void write_next_row(std::span<float> luminances) {
        before.swap(itself);
        itself = after; // the last row's next one is itself
        if (++row < picture.height())
            blend_across(row, after);
        for (std::size_t c = 0; c < line.size(); ++c)
            luminances[c] = mean_of_neighbours(before[c], itself[c], after[c]);
    }

  private:
    void blend_across(int y, std::vector<float> &blended) {
        for (std::size_t c = 0; c < line.size(); ++c)
            line[c] = luminance(picture.at(static_cast<int>(c), y) * scale);
        const std::size_t last = line.size() - 1;
        for (std::size_t c = 0; c <= last; ++c)
            blended[c] = mean_of_neighbours(line[c > 0 ? c - 1 : last], line[c], line[c < last ? c + 1 : 0]);
    }

    const Raster &picture;
    Color scale;
    int row = 0;
    std::vector<float> line;
    // Rows that are interpolated along themselves.
    std::vector<float> before;
    std::vector<float> itself;
    std::vector<float> after;
};

// Of the polar angle, over the solid angle between two cosines: the integral of sqrt(1 - c^2).
double mean_sine(double cos_upper, double cos_lower) {
    const auto integral = [](double c) { return 0.5 * (c * std::sqrt(std::max(0.0, 1 - c * c)) + std::asin(c)); };
    return (integral(cos_upper) - integral(cos_lower)) / (cos_upper - cos_lower);
}

} // namespace

Environment::Environment(Raster of, Color its_scale, const Affine &its_world_from_local, const Interrupt &interrupt)
    : picture(std::move(of)), scale(its_scale), world_from_local(its_world_from_local.linear),
      local_from_world(its_world_from_local.inverse), determinant(std::fabs(its_world_from_local.determinant)) {
    const auto rows = static_cast<std::size_t>(picture.height());
    cos_thetas.reserve(rows + 1);
    for (std::size_t r = 0; r <= rows; ++r)
        cos_thetas.push_back(
            static_cast<float>(std::cos(std::numbers::pi * static_cast<double>(r) / static_cast<double>(rows))));

    InterpolatedLuminances luminances(picture, scale);
    double sum = 0;
    double squares = 0;
    // The mean direction of a pixel is shorter than that of its middle by these: of latitudes, and of longitudes.
    const double half_turn = std::numbers::pi / static_cast<double>(picture.width());
    const double shortened = std::sin(half_turn) / half_turn;
    const auto write_weights = [&](int row, std::span<float> weights) {
        interrupt.check();
        luminances.write_next_row(weights);
        const auto r = static_cast<std::size_t>(row);
        const float solid_angle = pixel_solid_angle(row);
        const float mean_radius = static_cast<float>(shortened * mean_sine(cos_thetas[r], cos_thetas[r + 1]));
        const float mean_cosine = 0.5f * (cos_thetas[r] + cos_thetas[r + 1]);
        Vec3 row_vector;
        for (std::size_t c = 0; c < weights.size(); ++c) {
            squares += static_cast<double>(weights[c]) * weights[c] * solid_angle;
            sum += weights[c] *= solid_angle;
            const float turn = (static_cast<float>(c) + 0.5f) / static_cast<float>(weights.size());
            const warp::SineCosine along = warp::sine_cosine_of_turn(turn);
            row_vector =
                row_vector + Vec3{-mean_radius * along.sine, mean_cosine, mean_radius * along.cosine} * weights[c];
        }
        vector = vector + row_vector;
    };
    auto of_picture = std::make_unique<const Distribution>(picture.width(), picture.height(), write_weights);
    total = static_cast<float>(sum);
    vector = world_from_local(vector);
    its_contrast = static_cast<float>(std::clamp(1 - sum * sum / (4 * std::numbers::pi * squares), 0.0, 1.0));
    if (total > 0 && std::isfinite(total))
        distribution = std::move(of_picture);
}

float Environment::pixel_solid_angle(int row) const {
    const auto r = static_cast<std::size_t>(row);
    return 2 * pi * (cos_thetas[r] - cos_thetas[r + 1]) / static_cast<float>(picture.width());
}

// The middle of the picture is -Z, its upper edge +Y, and +X a quarter of it to the right: as the panorama camera sees.
Point2f Environment::image_point(Vec3 local) const {
    const float turn = std::atan2(local.x, -local.z) * (0.5f * inverse_pi) + 0.5f;
    const float polar = std::atan2(std::sqrt(local.x * local.x + local.z * local.z), local.y) * inverse_pi;
    // Under extreme transforms an angle may be NaN.
    const auto inside = [](float fraction) { return fraction >= 0 ? std::min(fraction, 1.0f) : 0.0f; };
    return {inside(turn) * static_cast<float>(picture.width()), inside(polar) * static_cast<float>(picture.height())};
}

Color Environment::interpolated(Point2f point) const {
    const int width = picture.width();
    const int last_row = picture.height() - 1;
    const float x = point.u - 0.5f;
    const float y = std::clamp(point.v - 0.5f, 0.0f, static_cast<float>(last_row));
    const int column = static_cast<int>(std::floor(x));
    const int row = std::min(static_cast<int>(y), std::max(last_row - 1, 0));
    const float right = x - static_cast<float>(column);
    const float down = y - static_cast<float>(row);
    // The point lies between the edges, or on one of them.
    const auto around = [width](int i) { return i < 0 ? i + width : i >= width ? i - width : i; };
    const int columns[] = {around(column), around(column + 1)};
    const auto blended = [](Color a, Color b, float t) { return a * (1 - t) + b * t; };
    const auto in_row = [&](int r) { return blended(picture.at(columns[0], r), picture.at(columns[1], r), right); };
    return blended(in_row(row), in_row(std::min(row + 1, last_row)), down);
}

Color Environment::radiance(Vec3 direction) const {
    return interpolated(image_point(local_from_world(direction))) * scale;
}

Vec3 Environment::sample(Point2f numbers, float &direction_pdf) const {
    const Distribution::Sample cell = distribution->sample(numbers);
    const auto row = static_cast<std::size_t>(cell.row);
    const float cos_theta = cos_thetas[row] + (cos_thetas[row + 1] - cos_thetas[row]) * cell.within.v;
    const float radius = std::sqrt(std::max(0.0f, 1 - cos_theta * cos_theta));
    const float turn = (static_cast<float>(cell.column) + cell.within.u) / static_cast<float>(picture.width());
    const warp::SineCosine along = warp::sine_cosine_of_turn(turn);
    const Vec3 direction = normalized(world_from_local({-radius * along.sine, cos_theta, radius * along.cosine}));
    direction_pdf = in_world(cell_pdf(cell.column, cell.row), direction);
    return direction;
}

SeenLight Environment::seen(Vec3 direction) const {
    if (is_black())
        return {{}, 0};
    const Point2f point = image_point(local_from_world(direction));
    const int column = std::min(static_cast<int>(point.u), picture.width() - 1);
    const int row = std::min(static_cast<int>(point.v), picture.height() - 1);
    return {interpolated(point) * scale, in_world(cell_pdf(column, row), direction)};
}

float Environment::cell_pdf(int column, int row) const {
    return distribution->pmf(column, row) / pixel_solid_angle(row);
}

// A linear map takes a cone around a unit direction d to one of |det M| / |d M|^3 of its solid angle; and of the unit
// direction w = d M / |d M| of the world |w M^-1| is 1 / |d M|.
float Environment::in_world(float local_pdf, Vec3 direction) const {
    const float inverse_stretch = length(local_from_world(direction));
    return local_pdf / (determinant * inverse_stretch * inverse_stretch * inverse_stretch);
}

} // namespace vantor
