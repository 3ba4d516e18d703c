// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <csignal>

namespace quenthisar::e2e {

/// The program is stopped in the middle of a takeover, as by a debugger or a slow disk.
class Hang : public StageFixture {
protected:
    void hang() { stage->rig.quenthisar().signal(SIGSTOP); }
    void goOn() { stage->rig.quenthisar().signal(SIGCONT); }

    /// The cursor is back last of all: it is gone again when the program has gone on.
    void expectHostGivenBack() {
        EXPECT_TRUE(stage->hostPointerMoves(soon));
        EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));
    }
};

TEST_F(Hang, GivesTheHostBackAndGoesOnAfterItWithNothingStuck) {
    holdSome();
    hang();
    expectHostGivenBack();
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    hold(some(), false);
    goOn();
    EXPECT_TRUE(nothingIsHeldOnTarget());
    expectTakeover();
}

TEST_F(Hang, KeepsTheReturnAtHand) {
    hang();
    ASSERT_TRUE(stage->hostPointerMoves(soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    const Held chord{.keys = demo::returnChord(stage->host), .buttons = {}};
    hold(chord, true);
    goOn();
    // Still held when the program looks at the keyboard again.
    ASSERT_TRUE(dongleGetsAny(&ReportLine::isMouse));
    hold(chord, false);
    expectHostHasInput();
}

} // namespace quenthisar::e2e
