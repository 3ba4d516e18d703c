// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <random>

namespace quenthisar::e2e {

namespace {

constexpr std::uint32_t leftShift = 0xFFE1, leftControl = 0xFFE3, leftAlt = 0xFFE9,
                        mute = 0x1008FF12;

/// Motion that arrived at the dongle.
QPoint sumOf(const QList<ReportLine>& reports) {
    QPoint sum;
    for (const auto& report : reports)
        if (report.isMouse()) sum += report.motion();
    return sum;
}

} // namespace

using Takeover = StageFixture;

TEST_F(Takeover, BringsAllInputToTheTargetAndNoneToTheHost) {
    const auto frozenAt = stage->host.pointer();
    const auto words =
        QStringLiteral("Hello, Target!\n\"Two\" computers: (1 + 1) * [x]; ~ok_\\?\n");
    const auto muteKey = stage->host.keyCodeOf(mute);
    ASSERT_TRUE(muteKey);

    ASSERT_TRUE(stage->hands.type(words, 0ms));
    EXPECT_TRUE(targetGetsText(words)) << typedOnTarget().toStdString();
    stage->hands.moveBy({-25, 13});
    for (std::uint8_t button = 1; button <= 3; ++button) stage->hands.click(button);
    stage->hands.click(4);
    stage->hands.click(5);
    stage->hands.key(*muteKey, true);
    stage->hands.key(*muteKey, false);
    EXPECT_TRUE(targetGets(QStringLiteral("key release %1").arg(*muteKey)));

    const auto at = stage->target.pointer();
    ASSERT_TRUE(at);
    const auto place = QStringLiteral("%1,%2").arg(at->x()).arg(at->y());
    for (const auto* line :
         {"button press left ", "button release left ", "button press middle ",
          "button release middle ", "button press right ", "button release right "})
        EXPECT_TRUE(targetGets(QLatin1StringView{line} + place)) << line;
    EXPECT_TRUE(targetGets(QStringLiteral("wheel 0,120")));
    EXPECT_TRUE(targetGets(QStringLiteral("wheel 0,-120")));

    EXPECT_EQ(inputOnHost(), QStringList{});
    EXPECT_EQ(stage->host.pointer(), frozenAt);
    EXPECT_TRUE(waitUntil([&] { return !stage->hostShowsCursor(); }, atOnce));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

TEST_F(Takeover, LosesNoMotionHoweverFastOrFine) {
    const auto start = stage->target.pointer();
    std::mt19937 random{20};
    std::uniform_int_distribution<int> step{-9, 9};
    QPoint sent;
    // Around the start, so that no side of the target's screen stops the pointer.
    stage->hands.moveBy({-300, -10});
    sent += {-300, -10};
    for (int i = 0; i < 600; ++i) {
        const QPoint delta{step(random), step(random)};
        stage->hands.moveBy(delta);
        sent += delta;
    }
    EXPECT_TRUE(dongleGets([&](const auto& all) { return sumOf(all) == sent; }))
        << sumOf(reports()).x() << ", " << sumOf(reports()).y() << " of " << sent.x() << ", "
        << sent.y();
    ASSERT_TRUE(start);
    EXPECT_TRUE(waitUntil([&] { return stage->target.pointer() == *start + sent; }, atOnce));
    EXPECT_EQ(inputOnHost(), QStringList{});
}

TEST_F(Takeover, RepeatsAHeldKeyUntilItIsReleased) {
    const auto key = keyCode(u'e');
    stage->hands.key(key, true);
    const auto isHeldState = [](const ReportLine& report) {
        return report.isKeyboard() && report.field(QStringLiteral("keys")) == u"e";
    };
    EXPECT_TRUE(
        dongleGets([&](const auto& all) { return std::ranges::count_if(all, isHeldState) >= 4; }));
    EXPECT_TRUE(stage->targetDesk.waitFor(
        targetMark,
        [](const QStringList& lines) {
            return demo::DeskLines::typedText(lines).startsWith(QStringLiteral("eeee"));
        },
        soon));
    stage->hands.key(key, false);
    EXPECT_TRUE(dongleGets([](const auto& all) { return !all.empty() && all.back().isAllUp(); }));
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_EQ(inputOnHost(), QStringList{});
}

TEST_F(Takeover, ReturnsOnTheChordWithNothingLeftDown) {
    const auto shift = stage->host.keyCodeOf(leftShift);
    ASSERT_TRUE(shift);
    stage->hands.key(*shift, true);
    stage->hands.key(keyCode(u'a'), true);
    stage->hands.button(1, true);
    ASSERT_TRUE(waitUntil(
        [&] {
            return stage->target.held() ==
                   demo::XClient::Held{.keys = {keyCode(u'a'), *shift}, .buttons = {1}};
        },
        soon));

    stage->pressReturnChord();
    EXPECT_TRUE(nothingIsHeldOnTarget());
    stage->hands.button(1, false);
    stage->hands.key(keyCode(u'a'), false);
    stage->hands.key(*shift, false);

    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, atOnce));
    markNow();
    const auto words = QStringLiteral("Back at home.");
    ASSERT_TRUE(stage->hands.type(words, 0ms));
    stage->hands.click(1);
    EXPECT_TRUE(stage->hostDesk.catchUp(stage->host));
    EXPECT_EQ(typedOnHost(), words);
    EXPECT_TRUE(std::ranges::any_of(inputOnHost(), [](const QString& line) {
        return line.startsWith(QStringLiteral("button press left"));
    }));
    EXPECT_EQ(stage->host.held(), demo::XClient::Held{});
    EXPECT_EQ(reports().size(), 0);
    EXPECT_TRUE(stage->cross(soon)) << "the edge takes over only once";
}

TEST_F(Takeover, ForwardsTwoOfTheChordsKeys) {
    const auto control = stage->host.keyCodeOf(leftControl), alt = stage->host.keyCodeOf(leftAlt);
    ASSERT_TRUE(control && alt);
    stage->hands.chord({*control, *alt});
    EXPECT_TRUE(targetGets(QStringLiteral("key release %1").arg(*control)));
    EXPECT_TRUE(targetGets(QStringLiteral("key press %1 \"\"").arg(*alt)));
    ASSERT_TRUE(stage->hands.type(QStringLiteral("x"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("x")));
    EXPECT_EQ(inputOnHost(), QStringList{});
}

/// With the corner slam on.
class CornerSlam : public StageFixture {
protected:
    void SetUp() override { enter({.programs = {}, .cornerSlam = true}); }
};

TEST_F(CornerSlam, StartsAtTheTargetsSideAndReturnsWhenPushedBackAgainstIt) {
    // Crossing may have gone on for a while; this side is where the target was entered.
    stage->hands.moveBy({200, 0});
    ASSERT_TRUE(dongleGets([](const auto& all) { return sumOf(all).x() == 200; }));
    const auto entries = demo::reportLines(stage->rig.dongle().since(0));
    EXPECT_TRUE(std::ranges::any_of(
        entries, [](const ReportLine& line) { return line.motion() == QPoint(-7680, 0); }));

    const auto frozenAt = stage->host.pointer();
    EXPECT_TRUE(waitUntil(
        [&] {
            stage->hands.moveBy({-50, 0});
            return stage->host.pointer() != frozenAt;
        },
        soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
}

} // namespace quenthisar::e2e
