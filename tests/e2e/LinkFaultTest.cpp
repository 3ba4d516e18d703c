// SPDX-License-Identifier: MIT
#include "e2e/FaultFixture.h"

namespace quenthisar::e2e {

namespace {

/// A way in which the link goes in a takeover, and how it can come back.
struct Loss {
    const char* name;
    QString method, undo;
    QVariantList arguments, undoArguments;
};

void PrintTo(const Loss& loss, std::ostream* out) {
    *out << loss.name;
}

} // namespace

using LinkFault = FaultFixture;

class LossOfTheLink : public LinkFault, public testing::WithParamInterface<Loss> {};

TEST_P(LossOfTheLink, KeepsTheInputUntilTheChordReturnsItAtOnce) {
    const auto& loss = GetParam();
    const auto frozenAt = stage->host.pointer();
    const Held held{.keys = {keyCode(u'k')}, .buttons = {3}};
    hold(held, true);
    ASSERT_TRUE(targetHolds(held));
    ask(loss.method, loss.arguments);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    hold(held, false);

    ASSERT_TRUE(stage->hands.type(QStringLiteral("Lost."), 0ms));
    stage->hands.moveBy({-25, 13});
    stage->hands.click(1);
    EXPECT_EQ(inputOnHost(), QStringList{});
    EXPECT_EQ(stage->host.pointer(), frozenAt);

    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, atOnce));
    EXPECT_EQ(stage->host.held(), Held{});

    ask(loss.undo, loss.undoArguments);
    EXPECT_TRUE(stage->cross(soon)) << "the link does not come back";
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

INSTANTIATE_TEST_SUITE_P(
    Ways, LossOfTheLink,
    testing::Values(
        Loss{"OutOfRange",
             QStringLiteral("SetInRange"),
             QStringLiteral("SetInRange"),
             {firstDongle, false},
             {firstDongle, true}},
        Loss{"DaemonKilled", QStringLiteral("KillDaemon"), QStringLiteral("StartDaemon"), {}, {}}),
    [](const auto& row) { return std::string{row.param.name}; });

TEST_F(LinkFault, ComesBackAfterASecondAndTellsTheTargetWhatIsHeld) {
    const auto released = keyCode(u'j'), kept = keyCode(u'k');
    const Held before{.keys = {released, kept}, .buttons = {1, 3}};
    hold(before, true);
    ASSERT_TRUE(targetHolds(
        {.keys = {std::min(released, kept), std::max(released, kept)}, .buttons = {1, 3}}));
    markNow();
    ask(QStringLiteral("Drop"), {firstDongle});
    EXPECT_TRUE(nothingIsHeldOnTarget());
    // While nobody hears of it.
    stage->hands.key(released, false);
    stage->hands.button(1, false);

    const auto lost = waitForEvent(QStringLiteral("disconnected lost"));
    const auto again = waitForEvent(QStringLiteral("connecting"));
    ASSERT_TRUE(lost && again);
    EXPECT_GE(*again - *lost, 990ms);
    RecordProperty("reconnectionMs", static_cast<int>((*again - *lost) / 1ms));
    ASSERT_TRUE(
        dongleGets([](const auto& all) { return std::ranges::any_of(all, &ReportLine::isProbe); }));

    // The kept key repeats by itself; the mouse has to move.
    stage->hands.moveBy({1, 0});
    ASSERT_TRUE(targetHolds({.keys = {kept}, .buttons = {3}}));
    auto all = reports();
    all.erase(all.begin(), std::ranges::find_if(all, &ReportLine::isProbe) + 1);
    for (const auto& report : all) {
        if (report.isKeyboard()) {
            EXPECT_EQ(report.field(QStringLiteral("keys")), u"k") << report.what.toStdString();
        } else {
            EXPECT_EQ(report.field(QStringLiteral("buttons")), u"right")
                << report.what.toStdString();
        }
    }
    hold({.keys = {kept}, .buttons = {3}}, false);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_EQ(stage->host.held(), Held{});
}

TEST_F(LinkFault, ReturnsTheInputAtOnceWhileTheLinkTakesNothing) {
    const Held held{.keys = {keyCode(u'k')}, .buttons = {3}};
    hold(held, true);
    ASSERT_TRUE(targetHolds(held));
    ask(QStringLiteral("SetReading"), {firstDongle, false});
    const auto words = QStringLiteral("Nobody reads this now.");
    // More than the descriptor takes.
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(stage->hands.type(words, 0ms));
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
    hold(held, false);
    EXPECT_EQ(stage->host.held(), Held{});

    ask(QStringLiteral("SetReading"), {firstDongle, true});
    EXPECT_TRUE(dongleGets([](const auto& all) {
        return all.size() >= 2 && all[all.size() - 2].isKeyboard() &&
               all[all.size() - 2].isAllUp() && all.back().isMouse() && all.back().isAllUp();
    }));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

} // namespace quenthisar::e2e
