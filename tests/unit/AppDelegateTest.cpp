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

TEST(AppDelegate, AsksForTrustAgainBeforeItCaptures) {
    Fixture f;
    f.trust.answers = {false, true, true}; // granted in the middle of the launch
    f.launch();
    EXPECT_FALSE(*f.state().axTrusted);
    EXPECT_TRUE(f.captures());
    f.clock.advance(1s);
    EXPECT_TRUE(*f.state().axTrusted);
}

TEST(AppDelegate, TriesToCaptureByItselfOnlyOnceEvenIfThatFails) {
    Fixture f;
    f.trust.answers = {true, true, false}; // withdrawn in the middle of the launch
    f.trust.onPrompt = [&] { f.clock.advance(3s); };
    f.launch();
    f.clock.advance(3s);
    EXPECT_EQ(f.trust.prompts, 1);
    EXPECT_FALSE(f.captures());
}

TEST(AppDelegate, PublishesTrustAtLaunchAndThenOnlyWhenItChanges) {
    Fixture f;
    f.trust.trusted = false;
    f.create(false);
    int assignments = -1; // the subscription delivers the current value
    const auto stream = f.state().axTrusted.subscribe([&](bool) { ++assignments; });
    f.finishLaunching();
    EXPECT_EQ(assignments, 1) << "the same as before";
    f.clock.advance(5s);
    EXPECT_EQ(assignments, 1);
    f.trust.trusted = true;
    f.clock.advance(5s);
    EXPECT_EQ(assignments, 2);
    f.trust.trusted = false;
    f.clock.advance(5s);
    EXPECT_EQ(assignments, 3);
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

TEST(AppDelegate, OpensItsOneWindowAtLaunchAndWheneverItIsAsked) {
    Fixture f;
    f.launch();
    EXPECT_EQ(f.windows.shown, 1);
    f.delegate->showWindow();
    EXPECT_EQ(f.windows.shown, 2);
    EXPECT_EQ(f.windows.actions.size(), 1U) << "made once";
}

TEST(AppDelegate, TheWindowReachesTheManagers) {
    Fixture f;
    f.launch(false);
    f.discover({A});
    const auto actions = f.windows.actions.at(0);
    actions.connect(A);
    f.clock.settle();
    EXPECT_EQ(f.state().dongle(A)->state, DongleConnectionState::connected);
    f.central.writes.clear();
    actions.identify(A);
    f.clock.advance(1s);
    EXPECT_FALSE(f.sent(A).empty());
    actions.disconnect(A);
    f.clock.settle();
    EXPECT_EQ(f.state().dongle(A)->state, DongleConnectionState::disconnected);

    f.trust.trusted = false;
    actions.toggleCapture(true);
    EXPECT_FALSE(f.captures());
    EXPECT_EQ(f.trust.prompts, 1);
    actions.promptAX();
    EXPECT_EQ(f.trust.prompts, 2);
    f.trust.trusted = true;
    actions.toggleCapture(true);
    EXPECT_TRUE(f.captures());
    actions.toggleCapture(false);
    EXPECT_FALSE(f.captures());

    f.delegate.reset();
    actions.connect(A);
    actions.toggleCapture(true);
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
