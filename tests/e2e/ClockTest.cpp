// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
#include "e2e/FaultFixture.h"
#include "e2e/ProfileSettings.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace quenthisar::e2e {

namespace {

constexpr int years = 10;
constexpr std::int64_t secondsAhead = years * 365LL * 24 * 3600;
/// When the guard would act on a program that is silent, and some more.
constexpr auto guardHasActed = 3000ms;

/// Variables for what this process starts meanwhile.
class Environment {
public:
    using Variables = std::vector<std::pair<const char*, QByteArray>>;

    explicit Environment(const Variables& variables) {
        for (const auto& [name, value] : variables) {
            before.emplace_back(name, qgetenv(name));
            qputenv(name, value);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment() {
        for (const auto& [name, value] : before)
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

private:
    Variables before;
};

} // namespace

/// The program and its guard with a wall clock that can be set while they run.
class SetClock : public FaultFixture {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(setClock(secondsAhead));
        try {
            build({});
            const Environment environment{{{"LD_PRELOAD", CLOCK_SHIM},
                                           {"QUENTHISAR_CLOCK_OFFSET", clock.toUtf8()},
                                           // The shim comes before the sanitizer, and may.
                                           {"ASAN_OPTIONS", "verify_asan_link_order=0"}}};
            ASSERT_NO_FATAL_FAILURE(expectTheProgramToSeeIt());
            stage->rig.startProgram();
        } catch (const std::exception& error) {
            FAIL() << error.what();
        }
        admitFaults();
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
        const auto year = QDateTime::currentDateTimeUtc().addSecs(secondsAhead).date().year();
        const auto names = QStringLiteral("defaults.json.corrupt-%1*").arg(year);
        const auto isAside = [&] { return !QFileInfo{file}.dir().entryList({names}).empty(); };
        EXPECT_TRUE(waitUntil(isAside, soon)) << "this clock is not the program's";
        stage->rig.endProgram();
        ASSERT_TRUE(writeFile(file, settings));
    }

    /// The middle one of the times between one of these reports and the next.
    std::chrono::milliseconds usualPause(const std::function<bool(const ReportLine&)>& isOne) {
        std::vector<std::chrono::microseconds> pauses;
        std::optional<std::chrono::microseconds> last;
        for (const auto& report : reports()) {
            if (!isOne(report)) continue;
            if (last) pauses.push_back(report.time - *last);
            last = report.time;
        }
        if (pauses.empty()) return {};
        std::ranges::nth_element(pauses, pauses.begin() + std::ssize(pauses) / 2);
        return std::chrono::duration_cast<std::chrono::milliseconds>(pauses[pauses.size() / 2]);
    }

    /// Whatever is going on goes on as if nobody had set the clock.
    void expectUndisturbedBy(std::int64_t ahead) {
        ASSERT_TRUE(stage->cross(soon));
        ASSERT_NO_FATAL_FAILURE(markNow());

        // The guard, a link that is lost, and the time until it is tried again.
        ask(QStringLiteral("Drop"), {firstDongle});
        setClock(ahead);
        const auto lost = waitForEvent(QStringLiteral("disconnected lost"));
        const auto again = waitForEvent(QStringLiteral("connecting"));
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
        const auto text = QStringLiteral("0123456789").repeated(3);
        const demo::SelectionOwner clipboard{text, stage->hostDisplay()};
        auto keys = demo::returnChord(stage->host);
        keys += keyCode(u'v');
        stage->hands.chord(keys); // which first returns
        ASSERT_TRUE(
            waitUntil([&] { return typedOnTarget().startsWith(QStringLiteral("012")); }, soon));
        setClock(-ahead);
        EXPECT_TRUE(targetGetsText(text)) << typedOnTarget().toStdString();
        const auto isDigit = [](const ReportLine& report) {
            const auto key = report.field(QStringLiteral("keys"));
            return key.size() == 1 && key[0].isDigit();
        };
        const auto pause = usualPause(isDigit);
        EXPECT_GE(pause, 70ms);
        EXPECT_LE(pause, 90ms * sanitizerFactor);
    }

    const QTemporaryDir place;
    const QString clock = place.filePath(QStringLiteral("clock"));
};

TEST_F(SetClock, DisturbsNoTimerPaceOrGuard) {
    setClock(0);
    for (const auto ahead : {secondsAhead, -secondsAhead}) {
        SCOPED_TRACE(ahead);
        ASSERT_NO_FATAL_FAILURE(expectUndisturbedBy(ahead));
    }
    ASSERT_TRUE(stage->cross(soon));
    expectTakeover();
}

} // namespace quenthisar::e2e
