// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
#include "e2e/ProfileSettings.h"
#include "e2e/StageFixture.h"

#include <QElapsedTimer>

#include <csignal>

namespace quenthisar::e2e {

namespace {

struct EndCase {
    const char* name;
    int signal;
    int exitCode; // -1: ended by the signal
    // Killed, it can't say anything to the dongle any more: the guard has the link ended.
    bool endsLink;
};

void PrintTo(const EndCase& end, std::ostream* out) {
    *out << end.name;
}

} // namespace

class EndFixture : public StageFixture {
protected:
    bool linkEndsWithin(std::chrono::milliseconds limit) {
        return stage->rig.dongle().waitFor(
            dongleMark,
            [](const QStringList& lines) {
                return !lines.filter(QStringLiteral("disconnected host")).isEmpty();
            },
            limit);
    }
};

/// The program ends in the middle of a takeover, with a key and a button down.
class EndOfProgram : public EndFixture, public testing::WithParamInterface<EndCase> {
protected:
    bool linkEnds() { return linkEndsWithin(GetParam().endsLink ? soon : 0ms); }
};

TEST_P(EndOfProgram, GivesTheHostBackAndReleasesTheTarget) {
    const auto frozenAt = stage->host.pointer();
    stage->hands.key(keyCode(u'k'), true);
    stage->hands.button(3, true);
    ASSERT_TRUE(waitUntil(
        [&] {
            return stage->target.held() ==
                   demo::XClient::Held{.keys = {keyCode(u'k')}, .buttons = {3}};
        },
        soon));

    stage->rig.quenthisar().signal(GetParam().signal);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(atOnce), GetParam().exitCode);

    EXPECT_EQ(stage->host.pointer(), frozenAt);
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, atOnce));
    EXPECT_EQ(linkEnds(), GetParam().endsLink);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    stage->hands.key(keyCode(u'k'), false);
    stage->hands.button(3, false);
    EXPECT_TRUE(stage->hostPointerMoves(atOnce));
    EXPECT_TRUE(stage->hostKeyboardWorks(atOnce));
    EXPECT_EQ(stage->host.held(), demo::XClient::Held{});
}

TEST_P(EndOfProgram, LeavesNothingBehindThatTheNextStartWouldMeet) {
    stage->rig.quenthisar().signal(GetParam().signal);
    ASSERT_TRUE(stage->rig.quenthisar().waitForEnd(atOnce));
    ASSERT_EQ(linkEnds(), GetParam().endsLink);
    ASSERT_NO_THROW(stage->rig.startProgram());
    ASSERT_TRUE(stage->cross(soon));
    markNow();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Again"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Again")));
}

using KilledProgram = EndFixture;

TEST_F(KilledProgram, LeavesNothingDownOfTheTextThatItTyped) {
    stage->pressReturnChord();
    ASSERT_TRUE(stage->hostPointerMoves(atOnce));
    const demo::SelectionOwner clipboard{QString(2000, u'A'), stage->hostDisplay()};
    ASSERT_NO_FATAL_FAILURE(markNow());
    auto chord = demo::returnChord(stage->host);
    chord += keyCode(u'v');
    stage->hands.chord(chord);
    ASSERT_TRUE(dongleGets([](const auto& all) {
        return std::ranges::any_of(
            all, [](const ReportLine& line) { return line.isKeyboard() && !line.isAllUp(); });
    }));
    stage->rig.quenthisar().signal(SIGKILL);
    ASSERT_TRUE(stage->rig.quenthisar().waitForEnd(atOnce));
    EXPECT_TRUE(linkEndsWithin(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

using LossOfTheServer = StageFixture;

TEST_F(LossOfTheServer, EndsTheProgramAndReleasesTheTarget) {
    stage->hands.key(keyCode(u'k'), true);
    stage->hands.button(3, true);
    const auto isHeld = [&] {
        return stage->target.held() == demo::XClient::Held{.keys = {keyCode(u'k')}, .buttons = {3}};
    };
    ASSERT_TRUE(waitUntil(isHeld, soon));
    const auto settings = readFile(stage->rig.settingsFile());
    QElapsedTimer elapsed;
    elapsed.start();
    stage->endHostServer();
    const auto end = stage->rig.quenthisar().waitForEnd(atOnce);
    EXPECT_LE(elapsed.elapsed(), (1000ms * sanitizerFactor).count());
    EXPECT_EQ(end, 1) << "it ends by itself, not by a signal that leaves a core";
    EXPECT_EQ(readFile(stage->rig.settingsFile()), settings);
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

INSTANTIATE_TEST_SUITE_P(Signals, EndOfProgram,
                         testing::Values(EndCase{"Kill", SIGKILL, -1, true},
                                         EndCase{"Term", SIGTERM, 0, false},
                                         EndCase{"Int", SIGINT, 0, false}),
                         [](const auto& row) { return std::string{row.param.name}; });

} // namespace quenthisar::e2e
