// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
#include "e2e/StageFixture.h"

#include <QDirIterator>
#include <QFile>

#include <csignal>
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
    const auto written = allIn(home.path()) + allIn(stage->rig.configurationFolder());
    EXPECT_TRUE(written.contains("defaults.json"));
    for (const auto& secret : {copied, typed, typedAtHome, QStringLiteral("salat")})
        EXPECT_FALSE(written.contains(secret.toUtf8())) << written.toStdString();
}

} // namespace quenthisar::e2e
