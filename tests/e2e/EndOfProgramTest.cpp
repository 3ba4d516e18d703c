// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <QElapsedTimer>

#include <csignal>
#include <cstring>

namespace quenthisar::e2e {

class EndOfProgram : public StageFixture, public testing::WithParamInterface<int> {
protected:
    /// By a signal. Killed, it can't say anything to the dongle: the guard has the link ended.
    void end() {
        const bool isKilled = GetParam() == SIGKILL;
        stage->rig.quenthisar().signal(GetParam());
        EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), isKilled ? -1 : 0);
        const auto isLinkEnded = [](const QStringList& lines) {
            return !lines.filter(u"disconnected host"_s).isEmpty();
        };
        EXPECT_EQ(stage->rig.dongle().waitFor(dongleMark, isLinkEnded, isKilled ? soon : 0ms),
                  isKilled);
        EXPECT_TRUE(nothingIsHeldOnTarget());
    }
};

TEST_P(EndOfProgram, GivesTheHostBackReleasesTheTargetAndCanStartAgain) {
    const auto frozenAt = stage->host.pointer();
    holdSome();
    end();
    EXPECT_EQ(stage->host.pointer(), frozenAt);
    hold(some(), false);
    expectHostHasInput();

    ASSERT_NO_THROW(stage->rig.startProgram());
    ASSERT_TRUE(stage->cross(soon));
    expectTyped(u"Again"_s);
}

TEST_P(EndOfProgram, LeavesNothingDownOfTheTextThatItTyped) {
    stage->pressReturnChord();
    ASSERT_TRUE(stage->hostPointerMoves(soon));
    const demo::SelectionOwner clipboard{QString(2000, u'A'), stage->hostDisplay()};
    ASSERT_NO_FATAL_FAILURE(markNow());
    pressHotkey(u'v');
    ASSERT_TRUE(
        dongleGetsAny([](const ReportLine& line) { return line.isKeyboard() && !line.isAllUp(); }));
    end();
}

INSTANTIATE_TEST_SUITE_P(Signals, EndOfProgram, testing::Values(SIGKILL, SIGTERM, SIGINT),
                         [](const auto& row) { return std::string{::sigabbrev_np(row.param)}; });

using LossOfTheServer = StageFixture;

TEST_F(LossOfTheServer, EndsTheProgramAndReleasesTheTarget) {
    holdSome();
    const auto settings = readFile(stage->rig.settingsFile());
    QElapsedTimer elapsed;
    elapsed.start();
    stage->endHostServer();
    const auto end = stage->rig.quenthisar().waitForEnd(soon);
    EXPECT_LE(elapsed.elapsed(), (1000ms * sanitizerFactor).count());
    EXPECT_EQ(end, 1) << "it ends by itself, not by a signal that leaves a core";
    EXPECT_EQ(readFile(stage->rig.settingsFile()), settings);
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

} // namespace quenthisar::e2e
