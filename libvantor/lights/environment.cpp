// Environment: light from all directions, from a picture of them.
#include "libvantor/lights/environment.h"

#include "libvantor/lights/cone.h"

#include <numbers>

namespace vantor {

namespace {

// The mean luminance of each cell's corners, row after row.
class CellLuminances {
  public:
    CellLuminances(const Raster &of, Color its_scale)
        : picture(of), scale(its_scale), above(static_cast<std::size_t>(of.width())), below(above.size()) {}

    void write_next_row(std::span<float> luminances) {
        above.swap(below);
        if (row < picture.height())
            for (std::size_t c = 0; c < below.size(); ++c)
                below[c] = luminance(picture.at(static_cast<int>(c), row) * scale);
        else
            below = above;
        if (row == 0)
            above = below;
        ++row;
        const std::size_t last = below.size() - 1;
        for (std::size_t c = 0; c <= last; ++c) {
            const std::size_t next = c < last ? c + 1 : 0;
            luminances[c] = warp::mean({above[c], above[next], below[c], below[next]});
        }
    }

  private:
    const Raster &picture;
    Color scale;
    int row = 0;
    std::vector<float> above;
    std::vector<float> below;
};

// Of the polar angle, over the solid angle between two of them: the integral of sin^2 over that of sin.
double mean_sine(double upper, double lower) {
    const double integral = 0.5 * (lower - upper) - 0.25 * (std::sin(2 * lower) - std::sin(2 * upper));
    return integral / (std::cos(upper) - std::cos(lower));
}

} // namespace

Environment::Environment(Raster of, Color its_scale, const Affine &its_world_from_local, const Interrupt &interrupt)
    : picture(std::move(of)), scale(its_scale), world_from_local(its_world_from_local.linear),
      local_from_world(its_world_from_local.inverse), determinant(std::fabs(its_world_from_local.determinant)) {
    const int rows = picture.height() + 1;
    const auto edge = [&](int row) { return std::numbers::pi * std::clamp(row - 0.5, 0.0, rows - 1.0) / (rows - 1); };
    for (int ring = 0; ring <= picture.height() / 2 + 1; ++ring)
        one_minus_cos_thetas.push_back(static_cast<float>(one_minus_cos(edge(ring))));

    CellLuminances luminances(picture, scale);
    double sum = 0;
    double squares = 0;
    // The mean direction of a cell is shorter than that of its middle by these: of latitudes, and of longitudes.
    const double half_turn = std::numbers::pi / static_cast<double>(picture.width());
    const double shortened = std::sin(half_turn) / half_turn;
    const auto write_weights = [&](int row, std::span<float> weights) {
        interrupt.check();
        luminances.write_next_row(weights);
        const float angle = solid_angle(row);
        const float mean_radius = static_cast<float>(shortened * mean_sine(edge(row), edge(row + 1)));
        const float mean_cosine = static_cast<float>(0.5 * (std::cos(edge(row)) + std::cos(edge(row + 1))));
        Vec3 row_vector;
        for (std::size_t c = 0; c < weights.size(); ++c) {
            squares += static_cast<double>(weights[c]) * weights[c] * angle;
            sum += weights[c] *= angle;
            const std::size_t middle = c + 1 < weights.size() ? c + 1 : 0;
            const float turn = static_cast<float>(middle) / static_cast<float>(weights.size());
            const warp::SineCosine along = warp::sine_cosine_of_turn(turn);
            row_vector =
                row_vector + Vec3{-mean_radius * along.sine, mean_cosine, mean_radius * along.cosine} * weights[c];
        }
        vector = vector + row_vector;
    };
    auto of_picture = std::make_unique<const Distribution>(picture.width(), rows, write_weights);
    total = static_cast<float>(sum);
    vector = world_from_local(vector);
    if (total > 0 && std::isfinite(total)) {
        its_contrast = static_cast<float>(std::clamp(1 - sum * sum / (4 * std::numbers::pi * squares), 0.0, 1.0));
        distribution = std::move(of_picture);
    }
}

Environment::Ring Environment::ring_of(int row) const {
    const int from_below = picture.height() - row;
    const auto ring = static_cast<std::size_t>(std::min(row, from_below));
    return {from_below < row, one_minus_cos_thetas[ring], one_minus_cos_thetas[ring + 1] - one_minus_cos_thetas[ring]};
}

float Environment::solid_angle(int row) const {
    return 2 * pi * ring_of(row).height / static_cast<float>(picture.width());
}

// The middle of the picture is -Z, its upper edge +Y, and +X a quarter of it to the right: as the panorama camera sees.
Environment::MapPosition Environment::map_position(Vec3 local) const {
    if (picture.width() == 1 && picture.height() == 1)
        return {{0, 0}, {0, 0}}; // all points of it are alike
    const float turn = std::atan2(local.x, -local.z) * (0.5f * inverse_pi) + 0.5f;
    const float polar = std::atan2(std::sqrt(local.x * local.x + local.z * local.z), local.y) * inverse_pi;
    // Under extreme transforms an angle may be NaN.
    const auto inside = [](float fraction) { return fraction >= 0 ? std::min(fraction, 1.0f) : 0.0f; };
    const float x = inside(turn) * static_cast<float>(picture.width()) - 0.5f;
    const float y = inside(polar) * static_cast<float>(picture.height()) - 0.5f;
    const float column = std::floor(x);
    const int row = std::min(static_cast<int>(std::floor(y)) + 1, picture.height());
    const Cell cell{column < 0 ? picture.width() - 1 : static_cast<int>(column), row};
    return {cell, {x - column, down_by_angle(y, row)}};
}

// The point is y pixels below the middles of the first row.
float Environment::down_by_angle(float y, int row) const {
    const bool is_around_pole = row == 0 || row == picture.height();
    return is_around_pole ? 0 : std::clamp(y - static_cast<float>(row - 1), 0.0f, 1.0f);
}

Environment::Corners Environment::corners_of(Cell cell) const {
    const int next = cell.column + 1 < picture.width() ? cell.column + 1 : 0;
    const int above = std::max(cell.row - 1, 0);
    const int below = std::min(cell.row, picture.height() - 1);
    return {picture.at(cell.column, above), picture.at(next, above), picture.at(cell.column, below),
            picture.at(next, below)};
}

Color Environment::interpolated(const Corners &corners, Point2f within) const {
    const auto blended = [](Color a, Color b, float t) { return a * (1 - t) + b * t; };
    return blended(blended(corners[0], corners[1], within.u), blended(corners[2], corners[3], within.u), within.v) *
           scale;
}

Color Environment::radiance(Vec3 direction) const {
    const MapPosition position = map_position(local_from_world(direction));
    return interpolated(corners_of(position.cell), position.within);
}

Vec3 Environment::sample(Point2f numbers, SeenLight &seen) const {
    const Distribution::Sample drawn = distribution->sample(numbers);
    const Cell cell{drawn.column, drawn.row};
    const Corners corners = corners_of(cell);
    const Point2f within = warp::bilinear(drawn.within, luminances_of(corners));

    const Ring ring = ring_of(cell.row);
    const float drop = ring.near + ring.height * (ring.is_lower ? 1 - within.v : within.v);
    const float radius = std::sqrt(std::max(0.0f, drop * (2 - drop)));
    const float cos_theta = ring.is_lower ? drop - 1 : 1 - drop;
    const float turn = (static_cast<float>(cell.column) + 0.5f + within.u) / static_cast<float>(picture.width());
    const warp::SineCosine along = warp::sine_cosine_of_turn(turn < 1 ? turn : turn - 1);
    const Vec3 direction = normalized(world_from_local({-radius * along.sine, cos_theta, radius * along.cosine}));

    const float y = std::atan2(radius, cos_theta) * inverse_pi * static_cast<float>(picture.height()) - 0.5f;
    seen.radiance = interpolated(corners, {within.u, down_by_angle(y, cell.row)});
    seen.pdf = pdf(cell, corners, within, direction);
    return direction;
}

SeenLight Environment::seen(Vec3 direction) const {
    if (is_black())
        return {{}, 0};
    const Vec3 local = local_from_world(direction);
    const MapPosition position = map_position(local);
    const Corners corners = corners_of(position.cell);
    const Point2f within{position.within.u, down_by_cosine(position.cell.row, local)};
    return {interpolated(corners, position.within), pdf(position.cell, corners, within, direction)};
}

warp::BilinearPatch Environment::luminances_of(const Corners &corners) const {
    return {luminance(corners[0] * scale), luminance(corners[1] * scale), luminance(corners[2] * scale),
            luminance(corners[3] * scale)};
}

float Environment::down_by_cosine(int row, Vec3 local) const {
    const Ring ring = ring_of(row);
    const float to_pole = ring.is_lower ? -local.y : local.y;
    const float squared_radius = local.x * local.x + local.z * local.z;
    const float distance = std::sqrt(squared_radius + local.y * local.y);
    const float drop = to_pole > 0 ? squared_radius / (distance * (distance + to_pole)) : 1 - to_pole / distance;
    const float from_edge = (drop - ring.near) / ring.height;
    const float inside = from_edge >= 0 ? std::min(from_edge, 1.0f) : 0.0f; // NaN likewise
    return ring.is_lower ? 1 - inside : inside;
}

// A linear map takes a cone around a unit direction d to one of |det M| / |d M|^3 of its solid angle; and of the unit
// direction w = d M / |d M| of the world |w M^-1| is 1 / |d M|.
float Environment::pdf(Cell cell, const Corners &corners, Point2f within, Vec3 direction) const {
    const float local_pdf = distribution->pmf(cell.column, cell.row) *
                            warp::bilinear_pdf(within, luminances_of(corners)) / solid_angle(cell.row);
    const float inverse_stretch = length(local_from_world(direction));
    return local_pdf / (determinant * inverse_stretch * inverse_stretch * inverse_stretch);
}

} // namespace vantor
