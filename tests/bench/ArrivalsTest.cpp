// SPDX-License-Identifier: MIT
#include "bench/Arrivals.h"

#include <gtest/gtest.h>

namespace {

using namespace quenthisar::bench;
using namespace std::chrono_literals;

const Stimuli threeSteps{{.delta = {1, 1}}, {.delta = {1, 1}}, {.delta = {-1, 1}}};
const Stimuli oneKey{{.kind = Kind::key, .detail = 38, .isDown = true},
                     {.kind = Kind::key, .detail = 38}};

Clock::time_point at(nanoseconds time) {
    return Clock::time_point{time};
}

Outcome outcome(const Stimuli& stimuli, const std::vector<Arrival>& arrivals) {
    std::vector<Clock::time_point> made;
    for (std::size_t i = 0; i < stimuli.size(); ++i) made.push_back(at(1ms * i));
    return compare(stimuli, made, arrivals);
}

TEST(Arrivals, MergedMotionHasArrivedWhenItIsCovered) {
    const auto result = outcome(
        threeSteps, {{.time = at(5ms), .delta = {2, 2}}, {.time = at(6ms), .delta = {-1, 1}}});
    EXPECT_TRUE(result.isExact());
    EXPECT_EQ(result.motion, (std::vector<nanoseconds>{5ms, 4ms, 4ms}));
}

TEST(Arrivals, MotionThatIsMissingOrTooMuchIsSeen) {
    const Arrival step{.delta = {1, 1}}, back{.delta = {-1, 1}}, aside{.delta = {1, 0}};
    EXPECT_EQ(outcome(threeSteps, {step, step}).lost, 1U);
    EXPECT_EQ(outcome(threeSteps, {step, step, back, aside}).wrong, 1U);
    EXPECT_EQ(outcome(threeSteps, {{.delta = {0, 3}}}).wrong, 1U) << "the right way down only";
}

TEST(Arrivals, AKeyThatIsMissingDoubledOrOutOfOrderIsSeen) {
    const Arrival down{.kind = Kind::key, .detail = 38, .isDown = true};
    const Arrival up{.kind = Kind::key, .detail = 38};
    EXPECT_TRUE(outcome(oneKey, {down, up}).isExact());
    EXPECT_EQ(outcome(oneKey, {down}).lost, 1U);
    EXPECT_EQ(outcome(oneKey, {down, down, up}).wrong, 1U);
    EXPECT_FALSE(outcome(oneKey, {up, down}).isExact());
}

} // namespace
