// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Fixture = AppDelegateFixture;

TEST(AppDelegate, CapturesAtLaunchIfItMayAndNeverAgainByItself) {
    Fixture f;
    f.launch();
    EXPECT_TRUE(f.captures());
    EXPECT_TRUE(*f.delegate->state.axTrusted);
    f.delegate->eventTap->stop();
    f.clock.advance(10s);
    EXPECT_FALSE(f.captures());
}

TEST(AppDelegate, CapturesOnceTrustIsGrantedAndNotBefore) {
    Fixture f;
    f.trust.trusted = false;
    f.launch();
    f.clock.advance(5s);
    EXPECT_FALSE(f.captures());
    EXPECT_EQ(f.trust.prompts, 0) << "only a person's request prompts";
    f.trust.trusted = true;
    f.clock.advance(999ms);
    EXPECT_FALSE(f.captures());
    f.clock.advance(1ms);
    EXPECT_TRUE(f.captures());
}

TEST(AppDelegate, PublishesTrustOnlyWhenItChanges) {
    Fixture f;
    f.launch(false);
    int assignments = -1; // the subscription delivers the current value
    const auto stream = f.delegate->state.axTrusted.subscribe([&](bool) { ++assignments; });
    f.clock.advance(5s);
    EXPECT_EQ(assignments, 0);
    f.trust.trusted = false;
    f.clock.advance(5s);
    EXPECT_EQ(assignments, 1);
    EXPECT_FALSE(*f.delegate->state.axTrusted);
    EXPECT_FALSE(f.captures());
}

TEST(AppDelegate, FollowsTheDisplays) {
    Fixture f;
    f.launch(false);
    f.displays.add("D2", {1920, 0, 800, 600});
    f.displays.changed();
    EXPECT_EQ(f.delegate->state.screens->size(), 2U);
}

TEST(AppDelegate, LeavesNothingBehindThatCallsIt) {
    Fixture f;
    f.launch();
    f.delegate.reset();
    f.clock.advance(5s);
    f.displays.changed();
    EXPECT_FALSE(f.taps.isDelivering());
}

} // namespace
} // namespace quenthisar
