// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace quenthisar::e2e {

namespace {

constexpr std::int64_t tenYears = 10 * 365LL * 24 * 3600; // seconds
/// When the guard would act on a program that is silent, and some more.
constexpr auto guardHasActed = 3000ms;

} // namespace

/// The program and its guard with a wall clock that can be set while they run.
class SetClock : public StageFixture {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(setClock(tenYears));
        start({.programs = {},
               .programEnvironment = {{u"LD_PRELOAD"_s, QStringLiteral(CLOCK_SHIM)},
                                      {u"QUENTHISAR_CLOCK_OFFSET"_s, clock},
                                      // The shim comes before the sanitizer, and may.
                                      {u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s}}},
              [this] { expectTheProgramToSeeIt(); });
    }

    void setClock(std::int64_t ahead) const {
        QFile out{clock};
        ASSERT_TRUE(out.open(QIODevice::ReadWrite));
        ASSERT_EQ(out.write(reinterpret_cast<const char*>(&ahead), sizeof ahead),
                  qint64{sizeof ahead});
    }

    /// Settings that it can't read get the year into their name.
    void expectTheProgramToSeeIt() {
        const auto file = stage->rig.settingsFile();
        const auto settings = readFile(file);
        ASSERT_TRUE(writeFile(file, "garbage"));
        stage->rig.openProgram();
        const auto year = QDateTime::currentDateTimeUtc().addSecs(tenYears).date().year();
        const auto names = u"defaults.json.corrupt-%1*"_s.arg(year);
        const auto isAside = [&] { return !QFileInfo{file}.dir().entryList({names}).empty(); };
        EXPECT_TRUE(waitUntil(isAside, soon)) << "this clock is not the program's";
        stage->rig.endProgram();
        ASSERT_TRUE(writeFile(file, settings));
    }

    /// Whatever is going on goes on as if nobody had set the clock.
    void expectUndisturbedBy(std::int64_t ahead) {
        ASSERT_TRUE(stage->cross(soon));
        ASSERT_NO_FATAL_FAILURE(markNow());

        // The guard, a link that is lost, and the time until it is tried again.
        ask(u"Drop"_s, {firstDongle});
        setClock(ahead);
        const auto lost = waitForEvent(u"disconnected lost"_s);
        const auto again = waitForEvent(u"connecting"_s);
        ASSERT_TRUE(lost && again);
        EXPECT_GE(*again - *lost, 990ms);
        EXPECT_LE(*again - *lost, 2000ms * sanitizerFactor);
        ASSERT_TRUE(isReady());
        const auto frozenAt = stage->host.pointer();
        const auto isGivenBack = [&] {
            stage->hands.moveBy({-1, 0});
            return stage->host.pointer() != frozenAt;
        };
        EXPECT_FALSE(waitUntil(isGivenBack, guardHasActed));

        // Text, at its pace.
        ASSERT_NO_FATAL_FAILURE(markNow());
        const auto text = u"0123456789"_s.repeated(3);
        const demo::SelectionOwner clipboard{text, stage->hostDisplay()};
        pressHotkey(u'v'); // which first returns
        ASSERT_TRUE(waitUntil([&] { return digits().size() >= 3; }, soon));
        setClock(-ahead);
        EXPECT_TRUE(targetGetsText(text)) << typedOnTarget().toStdString();
        std::vector<std::chrono::microseconds> pauses;
        const auto typed = digits();
        for (qsizetype i = 1; i < typed.size(); ++i)
            pauses.push_back(typed[i].time - typed[i - 1].time);
        std::ranges::sort(pauses);
        EXPECT_GE(pauses.at(pauses.size() / 2), 70ms);
        EXPECT_LE(pauses.at(pauses.size() / 2), 90ms * sanitizerFactor);
    }

    const QTemporaryDir place;
    const QString clock = place.filePath(u"clock"_s);
};

TEST_F(SetClock, DisturbsNoTimerPaceOrGuard) {
    setClock(0);
    for (const auto ahead : {tenYears, -tenYears}) {
        SCOPED_TRACE(ahead);
        ASSERT_NO_FATAL_FAILURE(expectUndisturbedBy(ahead));
    }
    ASSERT_TRUE(stage->cross(soon));
    expectTakeover();
}

} // namespace quenthisar::e2e
