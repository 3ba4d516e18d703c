// SPDX-License-Identifier: MIT
#include "demo/FakeLogind.h"
#include "e2e/StageFixture.h"

#include <optional>

namespace quenthisar::e2e {

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
