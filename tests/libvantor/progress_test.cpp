// Progress: what a handler is told of the steps that are done.
#include "libvantor/base/progress.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

TEST(Progress, IsTheFractionOfTheStepsThatAreExpectedByNow) {
    std::vector<double> fractions;
    vantor::set_progress_handler([&](double fraction) { fractions.push_back(fraction); });
    vantor::Progress progress("render", 4);
    const auto done = [&](long steps) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30)); // a handler is not told more often
        progress.done(steps);
    };
    done(1);
    progress.expect(6);
    done(4);
    progress.expect(-5);
    vantor::set_progress_handler({});
    done(1);
    EXPECT_EQ(fractions, (std::vector<double>{0.25, 0.5}));
}

} // namespace
