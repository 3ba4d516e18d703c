// SPDX-License-Identifier: MIT
#include "e2e/WindowFixture.h"

namespace quenthisar::e2e {

using Newcomer = WindowFixture;

TEST_F(Newcomer, BindsAnEdgeAndFindsAllOfItAgain) {
    const auto disconnect = u"Disconnect "_s + dongle, capture = u"Capture enabled"_s;
    ASSERT_TRUE(click(Role::button, u"Connect "_s + dongle,
                      [&] { return shows(Role::button, disconnect); }));
    ASSERT_TRUE(click(Role::checkBox, capture, [&] { return isOn(capture); }));

    const auto edge = u"Right edge of %1"_s.arg(stage->host.monitors().constFirst().name);
    ASSERT_TRUE(openTab(u"Edges"_s));
    ASSERT_TRUE(choose(edge, 1, dongle));

    // Back at a plain desk, over the edge, and back home.
    ASSERT_TRUE(openTab(u"Dongles"_s));
    ASSERT_TRUE(stage->cross(soon));
    expectTyped(u"First try"_s);
    stage->pressReturnChord();
    ASSERT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());

    const auto nickname = u"Nickname of "_s + dongle;
    ASSERT_TRUE(fill(nickname, u"Desk "_s));
    EXPECT_TRUE(isStored(u"dongleNicknames/"_s + dongleId, u"Desk"_s));
    quit();

    openProgram();
    EXPECT_TRUE(becomes(Role::field, nickname,
                        [](const Accessible& field) { return field.text() == u"Desk"; }));
    ASSERT_TRUE(openTab(u"Edges"_s));
    EXPECT_TRUE(becomes(Role::picker, edge,
                        [](const Accessible& picker) { return picker.name() == u"Desk"; }));
    quit();
}

} // namespace quenthisar::e2e
