// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <QDirIterator>

#include <csignal>
#include <sys/resource.h>

namespace quenthisar::e2e {

namespace {

QStringList namesIn(const QString& folder) {
    QStringList names;
    QDirIterator files{folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories};
    while (files.hasNext()) names += QDir{folder}.relativeFilePath(files.next());
    return names;
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

TEST_F(Privacy, TellsNobodyWhatIsTypedOrCopied) {
    rlimit limit{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(stage->rig.quenthisar().pid(), RLIMIT_CORE, nullptr, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, 0U) << "no core dump";
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
