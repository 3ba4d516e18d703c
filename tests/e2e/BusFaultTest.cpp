// SPDX-License-Identifier: MIT
#include "e2e/Accessible.h"
#include "e2e/StageFixture.h"

#include <QElapsedTimer>

#include <csignal>
#include <optional>

namespace quenthisar::e2e {

/// A bus of the desktop ends in a takeover.
class LossOfABus : public StageFixture {
protected:
    void SetUp() override {
        build({.programs = {}, .isAccessible = true});
        stage->rig.openProgram();
        desktop.emplace(stage->rig.sessionBusAddress());
        label = desktop->element(QStringLiteral("label"), QStringLiteral("Bluetooth: On"), soon);
        ASSERT_TRUE(label) << desktop->tree().toStdString();
        ASSERT_TRUE(stage->cross(soon));
        markNow();
    }

    /// In milliseconds, how long it took until the window says so.
    qint64 timeUntilWord(const QString& word) const {
        QElapsedTimer elapsed;
        elapsed.start();
        const auto text = QStringLiteral("Bluetooth: ") + word;
        EXPECT_TRUE(waitUntil([&] { return label->name() == text; }, soon))
            << label->name().toStdString();
        return elapsed.elapsed();
    }

    std::optional<AccessibleDesktop> desktop;
    std::optional<Accessible> label;
};

TEST_F(LossOfABus, OfTheSystemIsToldAndOverWhenItIsBack) {
    stage->hands.key(keyCode(u'k'), true);
    ASSERT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {}}));
    stage->rig.systemBusProgram().end();
    EXPECT_LE(timeUntilWord(QStringLiteral("Resetting")), (1000ms * sanitizerFactor).count());
    EXPECT_TRUE(nothingIsHeldOnTarget());
    stage->hands.key(keyCode(u'k'), false);
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());

    stage->rig.systemBusProgram().start();
    stage->rig.startDongle();
    timeUntilWord(QStringLiteral("On"));
    EXPECT_TRUE(stage->cross(soon)) << "the link does not come back";
    targetMark = stage->targetDesk.mark();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Back"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Back")));
}

TEST_F(LossOfABus, OfTheSessionChangesNothing) {
    desktop.reset();
    stage->rig.sessionBusProgram().end();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Still"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Still")));
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->cross(soon));
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());
    stage->rig.quenthisar().signal(SIGTERM);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
}

} // namespace quenthisar::e2e
