// Chi-square: whether sampled directions follow a pdf over the sphere.
#pragma once

#include "libvantor/base/numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace chi_square {

using vantor::Vec3;

/// A part of the sphere, between two cosines and two longitudes. Area in it is solid angle.
struct Cell {
    double cosine0 = -1;
    double cosine1 = 1;
    double turn0 = 0;
    double turn1 = 2 * 3.14159265358979;

    std::array<Cell, 4> quarters() const {
        const double c = 0.5 * (cosine0 + cosine1);
        const double t = 0.5 * (turn0 + turn1);
        return {{{cosine0, c, turn0, t}, {cosine0, c, t, turn1}, {c, cosine1, turn0, t}, {c, cosine1, t, turn1}}};
    }
};

inline Vec3 direction_at(double cosine, double turn) {
    const double sine = std::sqrt(std::max(0.0, 1 - cosine * cosine));
    return vantor::normalized({static_cast<float>(sine * std::cos(turn)), static_cast<float>(sine * std::sin(turn)),
                               static_cast<float>(cosine)});
}

/// The integral over a cell by 4 x 4 points (Gauss-Legendre).
template <class Function> double estimate(const Function &function, const Cell &cell) {
    constexpr double points[] = {-0.8611363115940526, -0.3399810435848563, 0.3399810435848563, 0.8611363115940526};
    constexpr double weights[] = {0.1739274225687269, 0.3260725774312731, 0.3260725774312731, 0.1739274225687269};
    double sum = 0;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const double cosine = cell.cosine0 + 0.5 * (1 + points[i]) * (cell.cosine1 - cell.cosine0);
            const double turn = cell.turn0 + 0.5 * (1 + points[j]) * (cell.turn1 - cell.turn0);
            sum += weights[i] * weights[j] * function(direction_at(cosine, turn));
        }
    return sum * (cell.cosine1 - cell.cosine0) * (cell.turn1 - cell.turn0);
}

/// The integral over a cell, halved both ways until a further time changes it by less than the tolerance.
template <class Function>
double integral(const Function &function, const Cell &cell = {}, double tolerance = 1e-5, int depth = 0) {
    // The first steps find narrow lobes.
    constexpr int always = 4;
    constexpr int deepest = 14;
    const double whole = estimate(function, cell);
    double parts = 0;
    for (const Cell &quarter : cell.quarters())
        parts += estimate(function, quarter);
    if (depth >= always && (std::fabs(parts - whole) < tolerance || depth >= deepest))
        return parts;
    double sum = 0;
    for (const Cell &quarter : cell.quarters())
        sum += integral(function, quarter, tolerance / 2, depth + 1);
    return sum;
}

/// The sphere in cells of about the same probability.
class Bins {
  public:
    /// A cell is split while it holds more of the pdf than the limit.
    template <class Density> Bins(const Density &pdf, double limit) : nodes(1) { split(pdf, 0, limit, 0); }

    double probability() const {
        double sum = 0;
        for (const Bin &bin : bins)
            sum += bin.probability;
        return sum;
    }

    void count(Vec3 direction) {
        double turn = std::atan2(direction.y, direction.x);
        if (turn < 0)
            turn += 2 * 3.14159265358979;
        const double cosine = direction.z;
        std::size_t node = 0;
        while (nodes[node].first_child != 0) {
            const Cell &cell = nodes[node].cell;
            const std::size_t upper = cosine >= 0.5 * (cell.cosine0 + cell.cosine1) ? 2 : 0;
            const std::size_t later = turn >= 0.5 * (cell.turn0 + cell.turn1) ? 1 : 0;
            node = nodes[node].first_child + upper + later;
        }
        ++bins[nodes[node].bin].count;
    }

    /// The probability that chance alone makes the counts differ as much from the pdf as they do, where `total`
    /// directions were tried and those that were not counted are one more cell. Cells of which fewer than 5 are
    /// expected are taken together.
    double p_value(double total) const {
        double counted = 0;
        double statistic = 0;
        int cells = 0;
        Bin pool;
        const auto add = [&](const Bin &bin) {
            const double expected = bin.probability * total;
            statistic += (bin.count - expected) * (bin.count - expected) / expected;
            ++cells;
        };
        for (const Bin &bin : bins) {
            counted += bin.count;
            if (bin.probability * total >= 5) {
                add(bin);
                continue;
            }
            pool.probability += bin.probability;
            pool.count += bin.count;
        }
        const Bin rest{std::max(0.0, 1 - probability()), total - counted};
        if (rest.probability * total >= 5) {
            add(rest);
        } else {
            pool.probability += rest.probability;
            pool.count += rest.count;
        }
        if (pool.probability * total >= 5)
            add(pool);
        else if (pool.count > 30) // where next to none are expected
            return 0;
        return upper_gamma(0.5 * (cells - 1), 0.5 * statistic);
    }

  private:
    struct Bin {
        double probability = 0;
        double count = 0;
    };
    struct Node {
        Cell cell;
        std::size_t first_child = 0; // of four; 0 for none
        std::size_t bin = 0;
    };

    template <class Density> void split(const Density &pdf, std::size_t node, double limit, int depth) {
        constexpr int shallowest = 3;
        constexpr int deepest = 9;
        const Cell cell = nodes[node].cell;
        const double probability = depth < shallowest ? 1 : integral(pdf, cell, 1e-4, 4);
        if (probability > limit && depth < deepest) {
            const std::size_t first = nodes.size();
            nodes[node].first_child = first;
            for (const Cell &quarter : cell.quarters())
                nodes.push_back({quarter});
            for (std::size_t i = 0; i < 4; ++i)
                split(pdf, first + i, limit, depth + 1);
            return;
        }
        nodes[node].bin = bins.size();
        bins.push_back({probability});
    }

    // The regularised incomplete gamma function Q(a, x), by its series or its continued fraction: Press, Teukolsky,
    // Vetterling, Flannery, "Numerical Recipes", 6.2.
    static double upper_gamma(double a, double x) {
        if (x <= 0)
            return 1;
        const double front = std::exp(a * std::log(x) - x - std::lgamma(a));
        if (x < a + 1) {
            double term = 1 / a;
            double sum = term;
            for (int n = 1; n < 1000; ++n)
                sum += term *= x / (a + n);
            return 1 - front * sum;
        }
        double b = x + 1 - a;
        double c = 1e300;
        double d = 1 / b;
        double product = d;
        for (int n = 1; n < 1000; ++n) {
            const double factor = -n * (n - a);
            b += 2;
            d = 1 / (factor * d + b);
            c = b + factor / c;
            product *= d * c;
        }
        return front * product;
    }

    std::vector<Node> nodes;
    std::vector<Bin> bins;
};

} // namespace chi_square
