// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

namespace quenthisar::e2e {

using Takeover = StageFixture;

TEST_F(Takeover, BringsAllInputToTheTargetAndNoneToTheHost) {
    constexpr std::uint32_t mute = 0x1008FF12;
    const auto frozenAt = stage->host.pointer();
    expectTyped(u"Hello, Target!\n\"Two\" computers: (1 + 1) * [x]; ~ok_\\?\n"_s);
    // Whatever pointer motion the takeover began with has arrived by now.
    const auto start = stage->target.pointer();
    ASSERT_TRUE(start);
    const QPoint end = *start + QPoint{-300, -10};
    for (int i = 0; i < 50; ++i) stage->hands.moveBy({i % 2 == 0 ? -19 : 7, i % 5 == 0 ? 2 : -1});
    stage->hands.moveBy({0, 10});
    for (std::uint8_t button = 1; button <= 5; ++button) stage->hands.click(button);
    stage->hands.chord({keyCodeOf(mute)});
    EXPECT_TRUE(targetGets(u"key release %1"_s.arg(keyCodeOf(mute))));
    for (const auto& line : {u"button press %1 %2,%3"_s, u"button release %1 %2,%3"_s})
        for (const auto& button : {u"left"_s, u"middle"_s, u"right"_s})
            EXPECT_TRUE(targetGets(line.arg(button).arg(end.x()).arg(end.y())))
                << button.toStdString();
    EXPECT_TRUE(targetGets(u"wheel 0,120"_s));
    EXPECT_TRUE(targetGets(u"wheel 0,-120"_s));

    EXPECT_EQ(inputOnHost(), QStringList{});
    EXPECT_EQ(stage->host.pointer(), frozenAt);
    expectTakeover();
    expectTypedOnHost(u"Back at home."_s);
    EXPECT_EQ(reports().size(), 0);
    EXPECT_TRUE(stage->cross(soon)) << "the edge takes over only once";
    const auto showsPanel = [&] {
        return !stage->host.windowsWith("_NET_WM_WINDOW_OPACITY").isEmpty();
    };
    EXPECT_TRUE(waitUntil(showsPanel, 2s));
}

} // namespace quenthisar::e2e
