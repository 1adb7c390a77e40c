// The warps: where their points fall, against their pdfs.
#include "libvantor/base/warp.h"

#include "libvantor/scattering/diffuse.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using vantor::Point2f;
using vantor::Vec3;

constexpr int side = 8;
constexpr int sample_count = 200000;

// Pearson's chi-square of samples that are to fill all cells of a grid alike, where place() flattens a sample to the
// unit square so that a uniform pdf is wanted there.
template <class Instance> double chi_square(Instance place) {
    std::mt19937 random(1);
    std::vector<int> counts(side * side);
    for (int i = 0; i < sample_count; ++i) {
        // Independent numbers, as the test supposes; the sampler's are better than that.
        const auto number = [&] { return vantor::sobol::unit_float(static_cast<std::uint32_t>(random())); };
        const float u = number();
        const auto [x, y] = place(Point2f{u, number()});
        EXPECT_TRUE(x >= 0 && x <= 1 && y >= 0 && y <= 1) << x << " " << y;
        const int column = std::min(static_cast<int>(x * side), side - 1);
        const int row = std::min(static_cast<int>(y * side), side - 1);
        ++counts[static_cast<std::size_t>(row * side + column)];
    }
    const double expected = static_cast<double>(sample_count) / (side * side);
    double sum = 0;
    for (const int count : counts)
        sum += (count - expected) * (count - expected) / expected;
    return sum;
}

// The 99.99 % point of chi-square with 63 degrees of freedom is 112.
constexpr double highest = 112;

float turn_of(Vec3 d) { return std::atan2(d.y, d.x) / (2 * vantor::pi) + 0.5f; }

TEST(Warp, DiskIsUniform) {
    EXPECT_LT(chi_square([](Point2f p) {
                  const Vec3 d = vantor::warp::disk(p);
                  return std::pair{d.x * d.x + d.y * d.y, turn_of(d)};
              }),
              highest);
}

TEST(Warp, CosineHemisphereFollowsTheCosine) {
    // The share of directions within an angle of the normal is its squared sine.
    EXPECT_LT(chi_square([](Point2f p) {
                  const Vec3 d = vantor::warp::cosine_hemisphere(p);
                  EXPECT_NEAR(length(d), 1, 1e-6);
                  return std::pair{1 - d.z * d.z, turn_of(d)};
              }),
              highest);
}

TEST(Warp, ConeIsUniformOverItsSolidAngle) {
    for (const float height : {1e-3f, 0.5f, 2.0f})
        EXPECT_LT(chi_square([=](Point2f p) {
                      const Vec3 d = vantor::warp::cone(p, height);
                      EXPECT_NEAR(length(d), 1, 1e-6);
                      // From the radius, as 1 - z has few digits in a narrow cone.
                      const float drop = height < 0.01f ? (d.x * d.x + d.y * d.y) / (1 + d.z) : 1 - d.z;
                      return std::pair{std::min(drop / height, 1.0f), turn_of(d)};
                  }),
                  highest);
}

TEST(Warp, TriangleIsUniform) {
    // The triangle u + v <= 1, flattened: the corner at u = 1 has the share (1 - u)^2 beyond u.
    EXPECT_LT(chi_square([](Point2f p) {
                  const Point2f b = vantor::warp::triangle(p);
                  EXPECT_LE(b.u + b.v, 1 + 1e-6f);
                  return std::pair{(1 - b.u) * (1 - b.u), std::min(b.v / (1 - b.u), 1.0f)};
              }),
              highest);
}

TEST(Warp, TentHasItsShape) {
    // The distribution function of the tent.
    EXPECT_LT(chi_square([](Point2f p) {
                  const auto share = [](float x) { return x < 0 ? (1 + x) * (1 + x) / 2 : 1 - (1 - x) * (1 - x) / 2; };
                  return std::pair{share(vantor::warp::tent(p.u)), share(vantor::warp::tent(p.v))};
              }),
              highest);
}

TEST(Warp, BilinearPatchesAreFollowed) {
    using vantor::warp::BilinearPatch;
    // With corners and edges of 0; squares would overflow or underflow.
    for (const BilinearPatch &patch :
         {BilinearPatch{1, 1, 1, 1}, BilinearPatch{1, 2, 3, 5}, BilinearPatch{0, 0, 0, 1}, BilinearPatch{2, 0, 0, 0},
          BilinearPatch{0, 0, 1, 2}, BilinearPatch{0, 3, 0, 1}, BilinearPatch{0, 1, 1, 0}, BilinearPatch{5000, 1, 1, 1},
          BilinearPatch{1e37f, 3e37f, 0, 0}, BilinearPatch{1e-37f, 0, 2e-37f, 0}}) {
        // The shares above the point, and of its line to the left of it.
        const auto share = [](double at, double a, double b) { return at * (a + (b - a) * at / 2) / ((a + b) / 2); };
        const double c = 1 / static_cast<double>(vantor::warp::mean(patch));
        const double p[] = {patch[0] * c, patch[1] * c, patch[2] * c, patch[3] * c};
        EXPECT_LT(chi_square([&](Point2f numbers) {
                      const Point2f at = vantor::warp::bilinear(numbers, patch);
                      const double left = p[0] + (p[2] - p[0]) * at.v;
                      const double right = p[1] + (p[3] - p[1]) * at.v;
                      const float pdf = vantor::warp::bilinear_pdf(at, patch);
                      EXPECT_NEAR(pdf, left + (right - left) * at.u, 1e-5 * (1 + pdf));
                      EXPECT_GT(pdf, 0);
                      return std::pair{static_cast<float>(share(at.u, left, right)),
                                       static_cast<float>(share(at.v, p[0] + p[1], p[2] + p[3]))};
                  }),
                  highest)
            << patch[0] << " " << patch[1] << " " << patch[2] << " " << patch[3];
    }
    const Point2f on_black = vantor::warp::bilinear({0.25f, 0.75f}, {0, 0, 0, 0});
    EXPECT_EQ(on_black.u, 0.25f);
    EXPECT_EQ(on_black.v, 0.75f);
    EXPECT_EQ(vantor::warp::bilinear_pdf(on_black, {0, 0, 0, 0}), 0);
}

TEST(Warp, SineAndCosineAreRight) {
    for (int i = 0; i < 1000; ++i) {
        const float turn = static_cast<float>(i) / 1000;
        const auto [sine, cosine] = vantor::warp::sine_cosine_of_turn(turn);
        EXPECT_NEAR(sine, std::sin(2 * M_PI * turn), 1e-6);
        EXPECT_NEAR(cosine, std::cos(2 * M_PI * turn), 1e-6);
    }
}

TEST(Bsdf, PdfIntegratesToOneAndEnergyIsTheReflectance) {
    // The midpoint rule over the cosine, around the normal: 2 pi f(cosine) d(cosine).
    const vantor::DiffuseBsdf reflection({{0.2f, 0.5f, 0.9f}}, {0, 0, 1});
    double pdf = 0;
    double reflected = 0;
    constexpr int steps = 1000;
    for (int i = 0; i < steps; ++i) {
        const float cosine = (static_cast<float>(i) + 0.5f) / steps;
        const vantor::Vec3 wi{std::sqrt(1 - cosine * cosine), 0, cosine};
        pdf += 2 * M_PI * reflection.evaluate(wi).pdf / steps;
        reflected += 2 * M_PI * reflection.evaluate(wi).value.g * cosine / steps;
    }
    EXPECT_NEAR(pdf, 1, 1e-6);
    EXPECT_NEAR(reflected, 0.5, 1e-6);
}

TEST(Frame, IsOrthonormalAndRightHanded) {
    for (const Vec3 normal : {Vec3{0, 0, 1}, Vec3{0, 0, -1}, Vec3{1, 0, 0}, Vec3{0.6f, -0.8f, 0}, Vec3{1e-5f, 0, -1}}) {
        const vantor::Frame frame(normal);
        EXPECT_NEAR(dot(frame.x, frame.x), 1, 1e-6);
        EXPECT_NEAR(dot(frame.y, frame.y), 1, 1e-6);
        EXPECT_NEAR(dot(frame.x, frame.y), 0, 1e-6);
        EXPECT_NEAR(dot(frame.x, frame.z), 0, 1e-6);
        EXPECT_NEAR(dot(cross(frame.x, frame.y), frame.z), 1, 1e-6);
    }
}

} // namespace
