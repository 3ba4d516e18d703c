// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

namespace quenthisar::e2e {

using LinkFault = StageFixture;

TEST_F(LinkFault, OutOfRangeKeepsTheInputUntilTheChordReturnsItAtOnce) {
    const auto frozenAt = stage->host.pointer();
    holdSome();
    ask(u"SetInRange"_s, {firstDongle, false});
    EXPECT_TRUE(nothingIsHeldOnTarget());
    hold(some(), false);

    ASSERT_TRUE(stage->hands.type(u"Lost."_s, 0ms));
    stage->hands.moveBy({-25, 13});
    stage->hands.click(1);
    EXPECT_EQ(inputOnHost(), QStringList{});
    EXPECT_EQ(stage->host.pointer(), frozenAt);
    stage->pressReturnChord();
    expectHostHasInput();

    ask(u"SetInRange"_s, {firstDongle, true});
    EXPECT_TRUE(stage->cross(soon)) << "the link does not come back";
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

TEST_F(LinkFault, ComesBackAfterASecondAndTellsTheTargetWhatIsHeld) {
    const auto released = keyCode(u'j'), kept = keyCode(u'k');
    ASSERT_LT(released, kept);
    hold({.keys = {released, kept}, .buttons = {1, 3}}, true);
    ASSERT_TRUE(targetHolds({.keys = {released, kept}, .buttons = {1, 3}}));
    markNow();
    ask(u"Drop"_s, {firstDongle});
    EXPECT_TRUE(nothingIsHeldOnTarget());
    // While nobody hears of it.
    hold({.keys = {released}, .buttons = {1}}, false);

    const auto lost = waitForEvent(u"disconnected lost"_s);
    const auto again = waitForEvent(u"connecting"_s);
    ASSERT_TRUE(lost && again);
    EXPECT_GE(*again - *lost, 990ms);
    ASSERT_TRUE(dongleGetsAny(&ReportLine::isProbe));

    // The kept key repeats by itself; the mouse has to move.
    stage->hands.moveBy({1, 0});
    ASSERT_TRUE(targetHolds(some()));
    auto all = reports();
    all.erase(all.begin(), std::ranges::find_if(all, &ReportLine::isProbe) + 1);
    for (const auto& report : all)
        EXPECT_TRUE(report.isKeyboard() ? report.field(u"keys"_s) == u"k"
                                        : report.field(u"buttons"_s) == u"right")
            << report.what.toStdString();
    hold(some(), false);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    stage->pressReturnChord();
    expectHostHasInput();
}

TEST_F(LinkFault, ReturnsTheInputAtOnceWhileTheLinkTakesNothing) {
    holdSome();
    ask(u"SetReading"_s, {firstDongle, false});
    // More than the descriptor takes.
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(stage->hands.type(u"Nobody reads this now."_s, 0ms));
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    hold(some(), false);

    ask(u"SetReading"_s, {firstDongle, true});
    EXPECT_TRUE(dongleGets([](const Reports& all) {
        return all.size() >= 2 && all[all.size() - 2].isKeyboard() &&
               all[all.size() - 2].isAllUp() && all.back().isMouse() && all.back().isAllUp();
    }));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

} // namespace quenthisar::e2e
