// SPDX-License-Identifier: MIT
#include "demo/FakeLogind.h"
#include "e2e/StageFixture.h"

#include <cstdlib>
#include <memory>
#include <optional>

namespace quenthisar::e2e {

namespace {

/// As a locker does, with grabs of its own.
bool grabsAllInput(const demo::XClient& locker) {
    auto* c = locker.get();
    const auto keyboard = xcb_grab_keyboard(c, 0, locker.root(), XCB_CURRENT_TIME,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto pointer =
        xcb_grab_pointer(c, 0, locker.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                         XCB_NONE, XCB_CURRENT_TIME);
    const std::unique_ptr<xcb_grab_keyboard_reply_t, decltype(&std::free)> first{
        xcb_grab_keyboard_reply(c, keyboard, nullptr), std::free};
    const std::unique_ptr<xcb_grab_pointer_reply_t, decltype(&std::free)> second{
        xcb_grab_pointer_reply(c, pointer, nullptr), std::free};
    return first && second && first->status == XCB_GRAB_STATUS_SUCCESS &&
           second->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

/// The session is locked in the middle of a takeover.
class LockedSession : public StageFixture {
protected:
    void SetUp() override {
        StageFixture::SetUp();
        if (HasFatalFailure()) return;
        // It comes late, as a restarted one does, and is found all the same.
        logind.emplace(stage->rig.systemBusAddress());
    }

    std::optional<demo::FakeLogind> logind;
};

TEST_F(LockedSession, BelongsToItsLockerWithNothingHeldOnTheTarget) {
    stage->hands.key(keyCode(u'k'), true);
    stage->hands.button(3, true);
    ASSERT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {3}}));
    logind->setLockedHint(true);
    EXPECT_TRUE(targetHolds({}));
    stage->hands.key(keyCode(u'k'), false);
    stage->hands.button(3, false);
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));

    const demo::XClient locker{stage->hostDisplay()};
    EXPECT_TRUE(waitUntil([&] { return grabsAllInput(locker); }, soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Secret"), 0ms));
    EXPECT_EQ(inputOnHost(), QStringList{});
    xcb_ungrab_keyboard(locker.get(), XCB_CURRENT_TIME);
    xcb_ungrab_pointer(locker.get(), XCB_CURRENT_TIME);
    xcb_flush(locker.get());
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(reports().isEmpty()) << "nothing of it may reach the target";

    logind->setLockedHint(false);
    expectTakeover();
}

TEST_F(LockedSession, IsGivenUpAsSoonAsALockIsDemandedOrSleepIsNear) {
    // Once a hint has come through, the program knows its session.
    logind->setLockedHint(true);
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));
    logind->setLockedHint(false);
    EXPECT_TRUE(waitUntil([&] { return !stage->hostShowsCursor(); }, soon));

    logind->emitLock();
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    logind->emitUnlock();
    EXPECT_TRUE(waitUntil([&] { return !stage->hostShowsCursor(); }, soon));

    logind->emitPrepareForSleep(true);
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));
    logind->emitPrepareForSleep(false);
    expectTakeover();
}

} // namespace quenthisar::e2e
