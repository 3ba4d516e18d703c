// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"
#include "support/Guards.h"

#include <csignal>

namespace quenthisar::e2e {

namespace {

/// The program may be silent for 2 s, and its last sign of life was up to 500 ms ago.
constexpr auto guardActs = 2500ms;

} // namespace

/// The program is stopped in the middle of a takeover, as by a debugger or a slow disk.
class Hang : public StageFixture {
protected:
    void hang() { stage->rig.quenthisar().signal(SIGSTOP); }
    void goOn() { stage->rig.quenthisar().signal(SIGCONT); }

    /// The cursor is back last of all: it is gone again when the program has gone on.
    void expectHostGivenBack() {
        EXPECT_TRUE(stage->hostPointerMoves(guardActs + soon));
        EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, atOnce));
    }

    std::vector<pid_t> guards() const { return test::guardsOf(stage->rig.quenthisar().pid()); }

    void holdKeyAndButton() {
        stage->hands.key(keyCode(u'k'), true);
        stage->hands.button(3, true);
        ASSERT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {3}}));
    }
};

TEST_F(Hang, GivesTheHostBackAndGoesOnAfterItWithNothingStuck) {
    ASSERT_NO_FATAL_FAILURE(holdKeyAndButton());
    hang();
    expectHostGivenBack();
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
    stage->hands.key(keyCode(u'k'), false);
    stage->hands.button(3, false);

    goOn();
    EXPECT_TRUE(targetHolds({}));
    expectTakeover();
}

TEST_F(Hang, KeepsTheReturnAtHand) {
    hang();
    ASSERT_TRUE(stage->hostPointerMoves(guardActs + soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    const auto chord = demo::returnChord(stage->host);
    for (const auto key : chord) stage->hands.key(key, true);
    goOn();
    // Still held when the program looks at the keyboard again.
    ASSERT_TRUE(dongleGets(
        [](const auto& lines) { return std::ranges::count_if(lines, &ReportLine::isMouse) > 0; }));
    for (const auto key : chord) stage->hands.key(key, false);
    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

TEST_F(Hang, IsGuardedAgainAfterTheGuardWasKilled) {
    const auto first = guards();
    ASSERT_EQ(first.size(), 1U);
    ::kill(first.front(), SIGKILL);
    ASSERT_TRUE(waitUntil(
        [&] {
            const auto now = guards();
            return now.size() == 1 && now != first;
        },
        soon));
    // What arrives shows that the program has gone on, after it told the new one.
    ASSERT_TRUE(stage->hands.type(QStringLiteral("x"), 0ms));
    ASSERT_TRUE(targetGetsText(QStringLiteral("x")));
    hang();
    expectHostGivenBack();
    goOn();
    expectTakeover();
}

TEST_F(Hang, ThatEndsBeforeTheGuardActsChangesNothing) {
    // However long this test is held up, the guard is held up with it.
    const auto guard = guards();
    ASSERT_EQ(guard.size(), 1U);
    ::kill(guard.front(), SIGSTOP);
    hang();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("La"), 0ms));
    EXPECT_EQ(inputOnHost(), QStringList{});
    goOn();
    EXPECT_TRUE(targetGetsText(QStringLiteral("La")));
    // By now its sign of life is out, too.
    ASSERT_TRUE(stage->hands.type(QStringLiteral("te"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Late")));
    ::kill(guard.front(), SIGCONT);
    expectTakeover();
}

} // namespace quenthisar::e2e
