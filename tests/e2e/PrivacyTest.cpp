// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
#include "e2e/StageFixture.h"

#include <QDirIterator>
#include <QFile>
#include <QSet>

#include <csignal>
#include <filesystem>
#include <map>
#include <sys/resource.h>

namespace quenthisar::e2e {

/// The program with a home of its own; whatever it and what it starts write is looked at.
class Privacy : public StageFixture {
protected:
    void SetUp() override {
        // What the program inherits.
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
        limit.rlim_cur = limit.rlim_max;
        ASSERT_EQ(::setrlimit(RLIMIT_CORE, &limit), 0);
        for (const auto* name : {"HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
            environment[name] = qgetenv(name);
            qputenv(name, home.path().toUtf8());
        }
        enter({.programs = {}, .programErrors = errors});
    }

    void TearDown() override {
        for (const auto& [name, value] : environment)
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
        StageFixture::TearDown();
    }

    static QByteArray contentOf(const QString& path) {
        QFile file{path};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }

    /// The text of all files, with their names.
    static QByteArray allIn(const QString& folder) {
        QByteArray all;
        QDirIterator files{folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories};
        while (files.hasNext()) {
            const auto path = files.next();
            all += path.toUtf8() + '\n' + contentOf(path) + '\n';
        }
        return all;
    }

    static QStringList namesIn(const QString& folder) {
        QStringList names;
        QDirIterator files{folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories};
        while (files.hasNext()) names += QDir{folder}.relativeFilePath(files.next());
        return names;
    }

    /// Numbers of the sockets that a process has.
    static QSet<QByteArray> socketsOf(pid_t process) {
        QSet<QByteArray> numbers;
        QDirIterator files{QStringLiteral("/proc/%1/fd").arg(process),
                           QDir::AllEntries | QDir::System};
        while (files.hasNext()) {
            std::error_code gone;
            const auto target = QByteArray::fromStdString(
                std::filesystem::read_symlink(files.next().toStdString(), gone).string());
            if (target.startsWith("socket:[")) numbers += target.sliced(8).chopped(1);
        }
        return numbers;
    }

    /// The lines of a table in /proc/net that belong to one of the sockets, which stand in
    /// `column`.
    static QList<QByteArrayList> linesOf(const char* table, const QSet<QByteArray>& sockets,
                                         int column) {
        QList<QByteArrayList> lines;
        for (const auto& line :
             contentOf(QStringLiteral("/proc/net/") + QLatin1String{table}).split('\n')) {
            const auto words = line.simplified().split(' ');
            if (words.size() > column && sockets.contains(words[column])) lines += words;
        }
        return lines;
    }

    void pressHotkey(char16_t key, bool shifted = false) const {
        auto keys = demo::returnChord(stage->host);
        // Let go of last: without it, the other three are the return chord.
        if (shifted) keys.prepend(stage->host.keyCodeOf(0xFFE1).value_or(0));
        keys += keyCode(key);
        stage->hands.chord(keys);
    }

    const QTemporaryDir home;
    const QString errors = home.filePath(QStringLiteral("errors"));

private:
    std::map<const char*, QByteArray> environment;
};

TEST_F(Privacy, WritesNoCoreDump) {
    rlimit limit{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(stage->rig.quenthisar().pid(), RLIMIT_CORE, nullptr, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, 0U);
}

TEST_F(Privacy, CanBeReachedByNobody) {
    const auto sockets = socketsOf(stage->rig.quenthisar().pid());
    EXPECT_FALSE(linesOf("unix", sockets, 6).isEmpty()) << "those of bus and server";
    for (const auto& words : linesOf("unix", sockets, 6)) {
        constexpr auto listening = "00010000";
        EXPECT_NE(words[3], listening) << words.join(' ').toStdString();
    }
    for (const auto* network : {"tcp", "tcp6", "udp", "udp6", "raw", "raw6"})
        EXPECT_TRUE(linesOf(network, sockets, 9).isEmpty()) << network;
    EXPECT_TRUE(linesOf("packet", sockets, 8).isEmpty());
}

TEST_F(Privacy, TellsNobodyWhatIsTypedOrCopied) {
    const auto atFirst = contentOf(errors);
    const auto copied = QStringLiteral("Kopfsalat 0815"), typed = QStringLiteral("Gurkensalat"),
               typedAtHome = QStringLiteral("Tomatensalat");
    const demo::SelectionOwner owner(copied, stage->hostDisplay());

    ASSERT_TRUE(stage->hands.type(typed, 0ms));
    EXPECT_TRUE(targetGetsText(typed));
    pressHotkey(u'v'); // which first returns
    EXPECT_TRUE(targetGetsText(typed + copied)) << typedOnTarget().toStdString();
    ASSERT_TRUE(stage->hostKeyboardWorks(soon));
    markNow();
    ASSERT_TRUE(stage->hands.type(typedAtHome, 0ms));
    EXPECT_TRUE(stage->hostDesk.waitFor(
        hostMark,
        [&](const auto& lines) { return demo::DeskLines::typedText(lines) == typedAtHome; }, soon));
    pressHotkey(u'1');
    pressHotkey(u'1', true);
    EXPECT_TRUE(demo::retry(
        [&] {
            // Once it has taken over.
            return stage->hands.type(QStringLiteral("x"), 0ms) &&
                   waitUntil([&] { return typedOnTarget().contains(u'x'); }, 2s);
        },
        soon));
    stage->rig.quenthisar().signal(SIGTERM);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);

    // What is done with the keyboard is no reason for any word.
    EXPECT_EQ(contentOf(errors), atFirst);
    EXPECT_EQ(stage->rig.quenthisar().pendingLines(), QStringList{});
    EXPECT_EQ(namesIn(stage->rig.configurationFolder()),
              QStringList{QStringLiteral("quenthisar/defaults.json")});
    EXPECT_EQ(namesIn(home.path()), QStringList{QStringLiteral("errors")});
    const auto written = allIn(home.path()) + allIn(stage->rig.configurationFolder());
    for (const auto& secret : {copied, typed, typedAtHome, QStringLiteral("salat")})
        EXPECT_FALSE(written.contains(secret.toUtf8())) << written.toStdString();
}

} // namespace quenthisar::e2e
