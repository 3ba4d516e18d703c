// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

namespace quenthisar::e2e {

/// The dongle does not answer the pairing probe.
class ProbeFault : public StageFixture {
protected:
    void SetUp() override {
        start({}, [&] { ask(u"SetProbe"_s, {firstDongle, u"silent"_s}); });
    }
};

TEST_F(ProbeFault, NeverAnsweredTypesNothingLate) {
    // Nothing arrives at the dongle that would tell, and at the edge little is seen of a cursor.
    const auto takesOver = [&] {
        stage->hands.moveBy({-60, 0});
        stage->hands.moveBy({200, 0});
        return !stage->hostPointerMoves(150ms) && !stage->hostShowsCursor();
    };
    ASSERT_TRUE(demo::retry(takesOver, soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(QString(50, u'x'), 1ms));
    stage->hands.key(keyCode(u'k'), true);
    EXPECT_EQ(inputOnHost(), QStringList{});

    ask(u"SetProbe"_s, {firstDongle, u"accept"_s});
    ask(u"Drop"_s, {firstDongle});
    ASSERT_TRUE(isReady());
    EXPECT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {}}));
    stage->hands.key(keyCode(u'k'), false);
    ASSERT_TRUE(stage->hands.type(u"New"_s, 0ms));
    EXPECT_TRUE(waitUntil([&] { return typedOnTarget().endsWith(u"New"_s); }, soon));
    EXPECT_FALSE(typedOnTarget().contains(u'x')) << typedOnTarget().toStdString();
    stage->pressReturnChord();
    expectHostHasInput();
}

} // namespace quenthisar::e2e
