// SPDX-License-Identifier: MIT
#include "e2e/ProfileSettings.h"
#include "e2e/StageFixture.h"

#include <QDir>
#include <QThread>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace quenthisar::e2e {

/// The program with two profiles, whose hotkeys make it write its settings, and something that
/// befalls them meanwhile.
class SettingsFault : public StageFixture {
protected:
    void SetUp() override { start({}); }

    void start(const demo::Stage::Options& options) {
        StageFixture::start(options, [this] { prepare(); });
        if (HasFatalFailure()) return;
        // All that it writes at a start has been written then.
        ASSERT_TRUE(activate(2));
        ASSERT_TRUE(waitUntil([this] { return isStored(2); }, soon));
        before = readSettings(file);
    }

    /// A hook tells which profile is active, whether that can be stored or not.
    void prepare() {
        file = stage->rig.settingsFile();
        QList<StoredProfile> profiles;
        for (const auto& number : {u"1"_s, u"2"_s})
            profiles.append({.name = u"Profile "_s + number,
                             .activateCommand = u"print -n %1 > '%2'"_s.arg(number, active)});
        writeProfiles(file, stage->rig.displayUuid(), stage->rig.dongleId(), profiles);
    }

    /// As its hotkey does. Once it is active, the program has written, or tried to.
    bool activate(int number) {
        // What follows a write within 100 ms waits with its own.
        QThread::msleep(200);
        const auto isActive = [&] { return readFile(active) == QByteArray::number(number); };
        const auto attempt = [&] {
            pressHotkey(static_cast<char16_t>(u'0' + number));
            return waitUntil(isActive, 2s);
        };
        return demo::retry(attempt, soon); // the hotkeys may not be there yet
    }

    bool isStored(int number) const {
        return readSettings(file)[u"activeProfile"_s] == profileId(number);
    }

    /// Nothing of what was there before is missing.
    void expectAllStored(int number) {
        EXPECT_TRUE(waitUntil([&] { return isStored(number); }, soon));
        auto expected = before;
        expected[u"activeProfile"_s] = profileId(number);
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
    const QString active = place.filePath(u"active"_s);
    QString file;
    QJsonObject before;
};

/// The program as a user for whom no file can be written, for the time being.
class UnwritableSettings : public SettingsFault {
protected:
    void SetUp() override {
        // What a full disk refuses with an error, a limit refuses with a signal first.
        const auto script = place.filePath(u"quenthisar"_s);
        auto programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
        // No mode of a file binds the superuser, unless it has no capability.
        const auto run = ::geteuid() == 0 ? u"setpriv --bounding-set -dac_override "_s : u""_s;
        ASSERT_TRUE(writeFile(
            script,
            u"#!/bin/sh\ntrap '' XFSZ\nexec %1'%2'\n"_s.arg(run, programs.quenthisar).toUtf8()));
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

    void expectLeftUntilItEnds(const std::function<void()>& begin,
                               const std::function<void()>& end) {
        const auto whole = readFile(file);
        begin();
        for (const int number : {1, 2, 1}) ASSERT_TRUE(activate(number));
        EXPECT_EQ(readFile(file), whole);
        EXPECT_EQ(others(), QStringList{}) << "no rest of an attempt";
        end();
        for (const int number : {2, 1, 2}) {
            ASSERT_TRUE(activate(number));
            expectAllStored(number);
        }
    }
};

TEST_F(UnwritableSettings, AreLeftAsTheyWereAndStoredWhenTheyCanBe) {
    {
        SCOPED_TRACE("full disk");
        expectLeftUntilItEnds([&] { limitFiles(20); }, [&] { limitFiles(RLIM_INFINITY); });
    }
    {
        SCOPED_TRACE("read-only folder");
        expectLeftUntilItEnds([&] { makeWritable(false); }, [&] { makeWritable(true); });
    }
    expectKeptByARestart();
}

} // namespace quenthisar::e2e
