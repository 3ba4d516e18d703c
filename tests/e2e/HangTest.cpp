// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <csignal>
#include <fstream>
#include <iterator>

namespace quenthisar::e2e {

namespace {

/// The program may be silent for 2 s, and its last sign of life was up to 500 ms ago.
constexpr auto guardActs = 2500ms;

std::vector<pid_t> childrenOf(pid_t process) {
    const auto id = std::to_string(process);
    std::ifstream file("/proc/" + id + "/task/" + id + "/children");
    return {std::istream_iterator<pid_t>(file), {}};
}

bool isGuard(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    return std::getline(file, name) && name == "quenthisar-guar"; // the kernel keeps no more
}

} // namespace

/// The program is stopped in the middle of a takeover, as by a debugger or a slow disk.
class Hang : public StageFixture {
protected:
    void hang() { stage->rig.quenthisar().signal(SIGSTOP); }
    void goOn() { stage->rig.quenthisar().signal(SIGCONT); }

    std::vector<pid_t> guards() {
        auto all = childrenOf(stage->rig.quenthisar().pid());
        std::erase_if(all, [](pid_t child) { return !isGuard(child); });
        return all;
    }

    void holdKeyAndButton() {
        stage->hands.key(keyCode(u'k'), true);
        stage->hands.button(3, true);
        ASSERT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {3}}));
    }
};

TEST_F(Hang, GivesTheHostBackAndGoesOnAfterItWithNothingStuck) {
    ASSERT_NO_FATAL_FAILURE(holdKeyAndButton());
    hang();
    EXPECT_TRUE(stage->hostPointerMoves(guardActs + atOnce));
    EXPECT_TRUE(stage->hostShowsCursor());
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
    stage->hands.key(keyCode(u'k'), false);
    stage->hands.button(3, false);

    goOn();
    EXPECT_TRUE(targetHolds({}));
    expectTakeover();
}

TEST_F(Hang, KeepsTheReturnAtHand) {
    hang();
    ASSERT_TRUE(stage->hostPointerMoves(guardActs + atOnce));
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
    EXPECT_TRUE(stage->hostPointerMoves(guardActs + atOnce));
    goOn();
    expectTakeover();
}

TEST_F(Hang, ShorterThanTheGuardsPatienceChangesNothing) {
    hang();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Late"), 0ms));
    EXPECT_EQ(inputOnHost(), QStringList{});
    goOn();
    EXPECT_TRUE(targetGetsText(QStringLiteral("Late")));
    expectTakeover();
}

} // namespace quenthisar::e2e
