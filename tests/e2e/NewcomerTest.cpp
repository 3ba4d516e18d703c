// SPDX-License-Identifier: MIT
#include "e2e/WindowFixture.h"

namespace quenthisar::e2e {

using Newcomer = WindowFixture;

TEST_F(Newcomer, BindsAnEdgeAndFindsAllOfItAgain) {
    const auto disconnect = QStringLiteral("Disconnect ") + dongle;
    const auto capture = QStringLiteral("Capture enabled");
    ASSERT_TRUE(click(Role::button, QStringLiteral("Connect ") + dongle,
                      [&] { return shows(Role::button, disconnect); }));
    ASSERT_TRUE(click(Role::checkBox, capture, [&] { return isOn(capture); }));

    const auto edge =
        QStringLiteral("Right edge of %1").arg(stage->host.monitors().constFirst().name);
    ASSERT_TRUE(openTab(QStringLiteral("Edges")));
    ASSERT_TRUE(choose(edge, 1, dongle));

    // Back at a plain desk, over the edge, and back home.
    ASSERT_TRUE(openTab(QStringLiteral("Dongles")));
    ASSERT_TRUE(stage->cross(soon));
    targetMark = stage->targetDesk.mark();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("First try"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("First try")));
    stage->pressReturnChord();
    ASSERT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());

    const auto nickname = QStringLiteral("Nickname of ") + dongle;
    ASSERT_TRUE(fill(nickname, QStringLiteral("Desk ")));
    EXPECT_TRUE(isStored(QStringLiteral("dongleNicknames/") + dongleId, QStringLiteral("Desk")));
    quit();

    openProgram();
    EXPECT_TRUE(becomes(Role::field, nickname,
                        [](const Accessible& field) { return field.text() == u"Desk"; }));
    ASSERT_TRUE(openTab(QStringLiteral("Edges")));
    EXPECT_TRUE(becomes(Role::picker, edge,
                        [](const Accessible& picker) { return picker.name() == u"Desk"; }));
    quit();
}

} // namespace quenthisar::e2e
