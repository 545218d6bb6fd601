#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/Phasor.hpp>
#include <chrono>
#include <cmath>
#include <limits>
#include <numbers>

namespace TalIec61850Analysis::PhasorTest {
namespace {

constexpr double kHalfTurn = std::numbers::pi;

TEST(Phasor, FoldsAngles) {
    EXPECT_EQ(foldedAngle(0), 0);
    EXPECT_EQ(foldedAngle(-kHalfTurn), kHalfTurn);
    EXPECT_EQ(foldedAngle(kHalfTurn), kHalfTurn);
    EXPECT_NEAR(foldedAngle(2.5 * kHalfTurn), kHalfTurn / 2, 1e-15);
    EXPECT_NEAR(foldedAngle(-2.5 * kHalfTurn), -kHalfTurn / 2, 1e-15);
    EXPECT_TRUE(std::isnan(foldedAngle(std::numeric_limits<double>::infinity())));
}

TEST(Phasor, TellsAnglesAgainstAReference) {
    EXPECT_NEAR(angleAgainst(1, 0.25), 0.75, 1e-15);
    EXPECT_NEAR(angleAgainst(-3, 3), 2 * kHalfTurn - 6, 1e-15);
}

TEST(Phasor, TellsAnglesAgainstFullSeconds) {
    auto const at = [](std::int64_t nanoseconds) {
        return CaptureTime(std::chrono::seconds(1'700'000'000) +
                           std::chrono::nanoseconds(nanoseconds));
    };
    EXPECT_NEAR(synchronizedAngle(0.5, at(0), 50), 0.5, 1e-15);
    // A quarter of a cycle later, a wave of the nominal frequency has turned by as much.
    EXPECT_NEAR(synchronizedAngle(0.5 + kHalfTurn / 2, at(5'000'000), 50), 0.5, 1e-12);
    EXPECT_NEAR(synchronizedAngle(0.5, at(900'000'000), 60), 0.5, 1e-12);
    EXPECT_NEAR(synchronizedAngle(0.5, at(5'000'000), 50), 0.5 - kHalfTurn / 2, 1e-12);
}

}  // namespace
}  // namespace TalIec61850Analysis::PhasorTest
