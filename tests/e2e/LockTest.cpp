// SPDX-License-Identifier: MIT
#include "demo/FakeLogind.h"
#include "e2e/StageFixture.h"

#include <cstdlib>

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
    const auto isGranted = [](auto* reply) {
        const bool result = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
        return result;
    };
    const bool first = isGranted(xcb_grab_keyboard_reply(c, keyboard, nullptr));
    return isGranted(xcb_grab_pointer_reply(c, pointer, nullptr)) && first;
}

} // namespace

/// The session is locked in the middle of a takeover.
using LockedSession = StageFixture;

TEST_F(LockedSession, BelongsToItsLockerWithNothingHeldOnTheTarget) {
    // It comes late, as a restarted one does, and is found all the same.
    demo::FakeLogind logind{stage->rig.systemBusAddress()};
    holdSome();
    logind.setLockedHint(true);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    hold(some(), false);
    expectHostHasInput();

    {
        const demo::XClient locker{stage->hostDisplay()};
        EXPECT_TRUE(waitUntil([&] { return grabsAllInput(locker); }, soon));
        ASSERT_NO_FATAL_FAILURE(markNow());
        ASSERT_TRUE(stage->hands.type(u"Secret"_s, 0ms));
        EXPECT_EQ(inputOnHost(), QStringList{});
    }
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(reports().isEmpty()) << "nothing of it may reach the target";
    logind.setLockedHint(false);
    expectTakeover();
}

} // namespace quenthisar::e2e
