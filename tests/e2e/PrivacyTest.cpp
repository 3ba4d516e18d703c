// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <QDirIterator>
#include <QSet>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

namespace quenthisar::e2e {

namespace {

QStringList namesIn(const QString& folder) {
    QStringList names;
    QDirIterator files{folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories};
    while (files.hasNext()) names += QDir{folder}.relativeFilePath(files.next());
    return names;
}

/// Numbers of the sockets that a process has.
QSet<QByteArray> socketsOf(pid_t process) {
    QSet<QByteArray> numbers;
    const auto folder = "/proc/" + std::to_string(process) + "/fd";
    for (const auto& each : std::filesystem::directory_iterator(folder)) {
        std::error_code gone;
        const auto target =
            QByteArray::fromStdString(std::filesystem::read_symlink(each, gone).string());
        if (target.startsWith("socket:[")) numbers += target.sliced(8).chopped(1);
    }
    return numbers;
}

/// The lines of a table in /proc/net that belong to one of the sockets, which stand in `column`.
QList<QByteArrayList> linesOf(const char* table, const QSet<QByteArray>& sockets, int column) {
    QList<QByteArrayList> lines;
    for (const auto& line : readFile(u"/proc/net/"_s + QLatin1String{table}).split('\n')) {
        const auto words = line.simplified().split(' ');
        if (words.size() > column && sockets.contains(words[column])) lines += words;
    }
    return lines;
}

} // namespace

/// The program with a home of its own; whatever it and what it starts write is looked at.
class Privacy : public StageFixture {
protected:
    void SetUp() override {
        // What the program inherits.
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
        limit.rlim_cur = limit.rlim_max;
        ASSERT_EQ(::setrlimit(RLIMIT_CORE, &limit), 0);
        enter({.programs = {},
               .programErrors = errors,
               .programEnvironment = {{u"HOME"_s, home.path()},
                                      {u"XDG_CACHE_HOME"_s, home.path()},
                                      {u"XDG_DATA_HOME"_s, home.path()},
                                      {u"XDG_STATE_HOME"_s, home.path()}}});
    }

    const QTemporaryDir home;
    const QString errors = home.filePath(u"errors"_s);
};

TEST_F(Privacy, CanBeReachedByNobodyAndWritesNoCoreDump) {
    const auto program = stage->rig.quenthisar().pid();
    rlimit limit{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(program, RLIMIT_CORE, nullptr, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, 0U);

    const auto sockets = socketsOf(program);
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
    const auto atFirst = readFile(errors);
    const auto copied = u"Kopfsalat 0815"_s, typed = u"Gurkensalat"_s;
    const demo::SelectionOwner owner(copied, stage->hostDisplay());

    expectTyped(typed);
    pressHotkey(u'v'); // which first returns
    EXPECT_TRUE(targetGetsText(typed + copied)) << typedOnTarget().toStdString();
    ASSERT_TRUE(stage->hostKeyboardWorks(soon));
    expectTypedOnHost(u"Tomatensalat"_s);
    pressHotkey(u'1');
    pressHotkey(u'1', true);
    const auto takesOver = [&] {
        return stage->hands.type(u"x"_s, 0ms) &&
               waitUntil([&] { return typedOnTarget().contains(u'x'); }, 2s);
    };
    EXPECT_TRUE(demo::retry(takesOver, soon));
    stage->rig.quenthisar().signal(SIGTERM);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);

    // What is done with the keyboard is no reason for any word.
    EXPECT_EQ(readFile(errors), atFirst);
    EXPECT_EQ(stage->rig.quenthisar().pendingLines(), QStringList{});
    const auto settings =
        QDir{stage->rig.configurationFolder()}.filePath(u"quenthisar/defaults.json"_s);
    EXPECT_EQ(namesIn(stage->rig.configurationFolder()),
              QStringList{u"quenthisar/defaults.json"_s});
    EXPECT_EQ(namesIn(home.path()), QStringList{u"errors"_s});
    const auto written = readFile(errors) + readFile(settings);
    for (const auto* secret : {"0815", "salat"})
        EXPECT_FALSE(written.contains(secret)) << written.toStdString();
}

} // namespace quenthisar::e2e
