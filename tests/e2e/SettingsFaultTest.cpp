// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/ProfileSettings.h"
#include "e2e/StageFixture.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace quenthisar::e2e {

namespace {

/// What follows a write sooner than that, in milliseconds, waits with its own.
constexpr unsigned long burstInterval = 100;

} // namespace

/// The program with two profiles, whose hotkeys make it write its settings, and something that
/// befalls them meanwhile.
class SettingsFault : public StageFixture {
protected:
    void SetUp() override { start({}); }

    void start(const demo::Stage::Options& options) {
        StageFixture::start(options, [this] { prepare(); });
        if (HasFatalFailure()) return;
        file = stage->rig.settingsFile();
        // All that it writes at a start has been written then.
        ASSERT_TRUE(activate(2));
        ASSERT_TRUE(waitUntil([this] { return isStored(2); }, soon));
        before = readSettings(file);
    }

    /// A hook tells which profile is active, whether that can be stored or not.
    void prepare() const {
        QList<StoredProfile> profiles;
        for (int number = 1; number <= 2; ++number)
            profiles.append(
                {.name = QStringLiteral("Profile %1").arg(number),
                 .activateCommand =
                     QStringLiteral("print -n %1 > '%2'").arg(QString::number(number), active)});
        if (!writeFile(stage->rig.settingsFile(),
                       settingsText(stage->rig.displayUuid(), stage->rig.dongleId(), profiles)))
            throw std::runtime_error("no settings can be written");
    }

    /// As its hotkey does. Once it is active, the program has written, or tried to.
    bool activate(int number) {
        QThread::msleep(2 * burstInterval);
        const auto isActive = [&] { return readFile(active) == QByteArray::number(number); };
        const auto attempt = [&] {
            auto keys = demo::returnChord(stage->host);
            keys += keyCode(static_cast<char16_t>(u'0' + number));
            stage->hands.chord(keys);
            return waitUntil(isActive, 2s);
        };
        return demo::retry(attempt, soon); // the hotkeys may not be there yet
    }

    bool isStored(int number) const {
        return readSettings(file).value(QStringLiteral("activeProfile")).toString() ==
               profileId(number);
    }

    /// Nothing of what was there before is missing.
    void expectAllStored(int number) {
        EXPECT_TRUE(waitUntil([&] { return isStored(number); }, soon)) << readFile(file).data();
        auto expected = before;
        expected[QStringLiteral("activeProfile")] = profileId(number);
        EXPECT_EQ(readSettings(file), expected) << readFile(file).data();
    }

    /// Files beside the settings.
    QStringList others() const {
        auto names = QFileInfo{file}.dir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        names.removeOne(QFileInfo{file}.fileName());
        return names;
    }

    /// The next start finds the settings as they are.
    void expectKeptByARestart() {
        const auto stored = readSettings(file);
        stage->rig.quenthisar().signal(SIGTERM);
        EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
        EXPECT_EQ(readSettings(file), stored);
        ASSERT_NO_THROW(stage->rig.startProgram());
        EXPECT_EQ(readSettings(file), stored);
    }

    const QTemporaryDir place;
    const QString active = place.filePath(QStringLiteral("active"));
    QString file;
    QJsonObject before;
};

TEST_F(SettingsFault, ByAnotherHandIsMendedByTheNextChange) {
    struct Case {
        const char* name;
        std::function<bool()> befall;
        QByteArray aside; // what is kept beside the file: a folder
    };
    const auto whole = readFile(file);
    const Case cases[] = {
        {"deleted", [&] { return QFile::remove(file); }, {}},
        {"deleted with its folder", [&] { return QFileInfo{file}.dir().removeRecursively(); }, {}},
        {"garbage", [&] { return writeFile(file, "\xFF garbage {"); }, {}},
        {"truncated", [&] { return QFile::resize(file, whole.size() / 2); }, {}},
        {"empty", [&] { return QFile::resize(file, 0); }, {}},
        {"replaced by a folder",
         [&] {
             return QFile::remove(file) && QDir{}.mkpath(file) &&
                    writeFile(file + QStringLiteral("/theirs"), "theirs");
         },
         "theirs"},
    };
    int number = 2;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        number = 3 - number;
        ASSERT_TRUE(each.befall());
        ASSERT_TRUE(activate(number));
        expectAllStored(number);
        ASSERT_TRUE(stage->rig.quenthisar().isRunning());
        const auto beside = others();
        ASSERT_EQ(beside.size(), each.aside.isEmpty() ? 0 : 1);
        if (!beside.isEmpty()) {
            EXPECT_EQ(readFile(QFileInfo{file}.dir().filePath(beside.first()) +
                               QStringLiteral("/theirs")),
                      each.aside);
        }
    }
    expectKeptByARestart();
}

TEST_F(SettingsFault, AtAStartIsMovedAside) {
    stage->rig.endProgram();
    const QByteArray garbage = "{\"profiles\": cut";
    ASSERT_TRUE(writeFile(file, garbage));
    ASSERT_NO_FATAL_FAILURE(stage->rig.openProgram());
    EXPECT_TRUE(waitUntil([&] { return !readSettings(file).isEmpty(); }, soon));
    ASSERT_EQ(others().size(), 1);
    EXPECT_EQ(readFile(QFileInfo{file}.dir().filePath(others().first())), garbage);
}

/// The program as a user for whom no file can be written, for the time being.
class UnwritableSettings : public SettingsFault {
protected:
    void SetUp() override {
        // What a full disk refuses with an error, a limit refuses with a signal first.
        const auto script = place.filePath(QStringLiteral("quenthisar"));
        auto programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
        // No mode of a file binds the superuser, unless it has no capability.
        const QString run =
            ::geteuid() == 0 ? QStringLiteral("setpriv --bounding-set -dac_override ") : QString{};
        ASSERT_TRUE(writeFile(script, QStringLiteral("#!/bin/sh\ntrap '' XFSZ\nexec %1'%2'\n")
                                          .arg(run, programs.quenthisar)
                                          .toUtf8()));
        ASSERT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
        programs.quenthisar = script;
        start({.programs = programs});
    }

    void limitFiles(rlim_t size) const {
        rlimit limit{};
        const auto pid = stage->rig.quenthisar().pid();
        ASSERT_EQ(::prlimit(pid, RLIMIT_FSIZE, nullptr, &limit), 0);
        limit.rlim_cur = std::min(size, limit.rlim_max);
        ASSERT_EQ(::prlimit(pid, RLIMIT_FSIZE, &limit, nullptr), 0);
    }

    void makeWritable(bool isWritable) const {
        auto permissions = QFile::ReadOwner | QFile::ExeOwner;
        if (isWritable) permissions |= QFile::WriteOwner;
        ASSERT_TRUE(QFile::setPermissions(QFileInfo{file}.path(), permissions));
    }
};

TEST_F(UnwritableSettings, AreLeftAsTheyWereAndStoredWhenTheyCanBe) {
    struct Case {
        const char* name;
        std::function<void()> begin, end;
    };
    const Case cases[] = {
        {"full disk", [&] { limitFiles(20); }, [&] { limitFiles(RLIM_INFINITY); }},
        {"read-only folder", [&] { makeWritable(false); }, [&] { makeWritable(true); }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const auto whole = readFile(file);
        each.begin();
        ASSERT_TRUE(activate(1));
        EXPECT_EQ(readFile(file), whole);
        ASSERT_TRUE(activate(2));
        ASSERT_TRUE(activate(1));
        EXPECT_EQ(readFile(file), whole);
        EXPECT_EQ(others(), QStringList{}) << "no rest of an attempt";
        each.end();
        ASSERT_TRUE(activate(2));
        ASSERT_TRUE(activate(1));
        expectAllStored(1);
        ASSERT_TRUE(activate(2));
        expectAllStored(2);
    }
    expectKeptByARestart();
}

} // namespace quenthisar::e2e
