// SPDX-License-Identifier: MIT
#include "guard/Watch.h"

#include <gtest/gtest.h>

namespace quenthisar::guard {
namespace {

using namespace std::chrono_literals;
using Dongles = std::vector<std::string>;

constexpr Watch::Clock::time_point at(std::chrono::milliseconds time) {
    return Watch::Clock::time_point{1h + time};
}

constexpr auto none = std::optional<std::uint32_t>{};

TEST(GuardsWatch, ClosesTheHoldersConnectionOnceAfterTwoSecondsOfSilence) {
    Watch watch;
    EXPECT_FALSE(watch.deadline());
    watch.take("4194305 /dongle ", at(0ms));
    watch.take("4194305 /dongle ", at(1'999ms));
    EXPECT_EQ(watch.deadline(), at(3'999ms));
    EXPECT_EQ(watch.expired(at(3'998ms)), none);
    EXPECT_EQ(watch.expired(at(3'999ms)), 4194305U);
    EXPECT_EQ(watch.expired(at(60'000ms)), none);
    EXPECT_EQ(watch.dongles(), Dongles{"/dongle"});
    watch.take("6291457 /dongle ", at(70'000ms));
    EXPECT_EQ(watch.expired(at(72'000ms)), 6291457U);

    // It is at rest while nothing holds the input.
    watch.take("7 /dongle ", at(80'000ms));
    watch.take("0 /dongle /other ", at(80'001ms));
    EXPECT_FALSE(watch.deadline());
    EXPECT_EQ(watch.expired(at(90'000ms)), none);
    EXPECT_EQ(watch.dongles(), (Dongles{"/dongle", "/other"}));
    watch.take("0 ", at(90'001ms));
    EXPECT_EQ(watch.dongles(), Dongles{});
}

TEST(GuardsWatch, GivesGraceOnceWhenItWasHeldUpItself) {
    Watch watch;
    watch.take("7 /dongle ", at(0ms));
    EXPECT_EQ(watch.expired(at(60'000ms)), none);
    EXPECT_EQ(watch.expired(at(60'249ms)), none);
    EXPECT_EQ(watch.expired(at(90'000ms)), 7U);

    watch.take("7 /dongle ", at(100'000ms));
    EXPECT_EQ(watch.expired(at(160'000ms)), none);
    watch.take("7 /dongle ", at(160'100ms));
    EXPECT_EQ(watch.expired(at(161'000ms)), none);
}

} // namespace
} // namespace quenthisar::guard
