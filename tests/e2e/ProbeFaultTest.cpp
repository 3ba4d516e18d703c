// SPDX-License-Identifier: MIT
#include "e2e/FaultFixture.h"
#include "e2e/ProfileSettings.h"

namespace quenthisar::e2e {

/// The dongle does not answer the pairing probe as it should.
class ProbeFault : public FaultFixture {
protected:
    void SetUp() override {}

    void startWithProbe(const QString& mode) {
        start({.programs = {}, .programErrors = errors}, [&] {
            admitFaults();
            ask(QStringLiteral("SetProbe"), {firstDongle, mode});
        });
    }

    const QTemporaryDir place;
    const QString errors = place.filePath(QStringLiteral("errors"));
};

TEST_F(ProbeFault, RefusedIsLoggedOnceAndLeavesTheDongleUsable) {
    ASSERT_NO_FATAL_FAILURE(startWithProbe(QStringLiteral("refuse")));
    ASSERT_TRUE(stage->cross(soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Refused, but here"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Refused, but here")));
    const auto line = QStringLiteral("Quenthisar: pairing/write failed for %1: ")
                          .arg(stage->rig.dongleId())
                          .toUtf8();
    EXPECT_EQ(readFile(errors).count(line), 1) << readFile(errors).toStdString();
}

TEST_F(ProbeFault, NeverAnsweredTypesNothingLate) {
    ASSERT_NO_FATAL_FAILURE(startWithProbe(QStringLiteral("silent")));
    // Nothing arrives at the dongle that would tell.
    const auto takesOver = [&] {
        stage->hands.moveBy({-60, 0});
        stage->hands.moveBy({200, 0});
        return waitUntil([&] { return !stage->hostShowsCursor(); }, 150ms);
    };
    ASSERT_TRUE(demo::retry(takesOver, soon));
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(QString(50, u'x'), 1ms));
    stage->hands.key(keyCode(u'k'), true);
    EXPECT_EQ(inputOnHost(), QStringList{});

    ask(QStringLiteral("SetProbe"), {firstDongle, QStringLiteral("accept")});
    ask(QStringLiteral("Drop"), {firstDongle});
    ASSERT_TRUE(waitForEvent(QStringLiteral("answer ok")));
    EXPECT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {}}));
    stage->hands.key(keyCode(u'k'), false);
    ASSERT_TRUE(stage->hands.type(QStringLiteral("New"), 0ms));
    EXPECT_TRUE(waitUntil([&] { return typedOnTarget().endsWith(QStringLiteral("New")); }, soon));
    EXPECT_FALSE(typedOnTarget().contains(u'x')) << typedOnTarget().toStdString();
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

} // namespace quenthisar::e2e
