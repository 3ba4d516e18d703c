// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Fixture = AppDelegateFixture;

TEST(AppDelegate, CapturesOnceTrustIsGrantedAndNeverAgainByItself) {
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
    EXPECT_TRUE(*f.state().axTrusted);
    f.delegate->eventTap->stop();
    f.clock.advance(10s);
    EXPECT_FALSE(f.captures());
    f.trust.trusted = false;
    f.clock.advance(1s);
    EXPECT_FALSE(*f.state().axTrusted);
}

TEST(AppDelegate, TheWindowReachesTheManagers) {
    Fixture f;
    f.launch(false);
    f.discover({A});
    f.delegate->showWindow();
    EXPECT_EQ(f.windows.shown, 2) << "at the launch and now";
    ASSERT_EQ(f.windows.actions.size(), 1U) << "made once";
    const auto actions = f.windows.actions[0];
    actions.connect(A);
    f.clock.settle();
    EXPECT_EQ(f.state().dongle(A)->state, DongleConnectionState::connected);
    actions.identify(A);
    f.clock.advance(1s);
    EXPECT_EQ(f.sent(A).size(), 30U);
    actions.disconnect(A);
    f.clock.settle();
    EXPECT_EQ(f.state().dongle(A)->state, DongleConnectionState::disconnected);

    f.trust.trusted = false;
    actions.toggleCapture(true);
    EXPECT_FALSE(f.captures());
    actions.promptAX();
    EXPECT_EQ(f.trust.prompts, 2);
}

TEST(AppDelegate, LeavesNothingBehindThatCallsIt) {
    Fixture f;
    f.launch();
    f.bringUp(A);
    f.state().autoConnect = true;
    f.state().setBinding("D1", Edge::left, A);
    f.pasteboard.text = "abc";
    f.delegate->pasteMenu();
    f.delegate->dongleManager->identify(A);
    f.delegate->eventTap->takeOver(A);
    f.clock.settle();
    ASSERT_EQ(f.panels.shown(), 1);
    f.central.drop(f.dongles[A]);
    f.central.attempts.clear();
    const auto actions = f.windows.actions.at(0);
    const auto menu = f.statusBar.delegate;

    f.delegate.reset();
    f.typing.run();
    f.clock.advance(60s);
    f.displays.changed();
    for (const auto& [combination, identity] : f.hotkeys.registered) f.hotkeys.handler(identity);
    actions.connect(A);
    actions.toggleCapture(true);
    Menu items;
    menu.menuNeedsUpdate(items);
    menu.choose({.action = MenuAction::pasteMenu});
    EXPECT_FALSE(f.taps.isDelivering());
    EXPECT_EQ(f.statusBar.items, 0);
    EXPECT_EQ(f.panels.made[0]->fades.size(), 1U) << "its end belongs to nobody";
    EXPECT_TRUE(f.central.attempts.empty());
    EXPECT_TRUE(f.sent(A).empty());
}

} // namespace
} // namespace quenthisar
