// SPDX-License-Identifier: MIT
#include "Linux/JsonFileDefaults.h"

#include "support/FakeHost.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <functional>
#include <optional>
#include <stop_token>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace quenthisar {
namespace {

struct JsonFile : testing::Test {
    QTemporaryDir home;
    QString folder = home.filePath(QStringLiteral("quenthisar"));
    QString path = folder + QStringLiteral("/defaults.json");
    FakeSystemLog log;

    JsonFileDefaults open() { return {path, log}; }

    void write(const QByteArray& text) const {
        QDir().mkpath(folder);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    static QByteArray read(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    QStringList files() const {
        return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }
    void expectClosedToOthers() const {
        for (const auto& [name, mode] : {std::pair{path, 0600U}, {folder, 0700U}}) {
            struct stat status {};
            ASSERT_EQ(::stat(QFile::encodeName(name), &status), 0);
            EXPECT_EQ(status.st_mode & 0777U, mode) << name.toStdString();
        }
    }
};

TEST_F(JsonFile, KeepsEveryKindOfValueAndClosesItToOthers) {
    DefaultsDictionary dictionary;
    dictionary["a"] = {std::string{"ä \"quoted\""}};
    dictionary["b"] = {0.25};
    const std::map<std::string, DefaultsValue> values{{"bool", {true}},
                                                      {"number", {3.0}},
                                                      {"text", {std::string{}}},
                                                      {"data", {DefaultsData{0, 255, 10, 0}}},
                                                      {"dictionary", {dictionary}}};
    auto first = open();
    for (const auto& [key, value] : values) first.set(key, value);
    expectClosedToOthers();
    for (const auto& [name, mode] : {std::pair{path, 0666U}, {folder, 0777U}})
        ASSERT_EQ(::chmod(QFile::encodeName(name), mode), 0);
    const auto second = open();
    for (const auto& [key, value] : values) EXPECT_EQ(second.object(key), value) << key;
    expectClosedToOthers();
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonFile, KeepsWhatOthersWroteAndIsWrittenOnlyForAChange) {
    const QByteArray text =
        R"({"theirs":[1,{"x":null}],"null":null,"odd":{"$data":"!"},"nested":{"a":{"b":1}},"one":1})";
    write(text);
    auto defaults = open();
    EXPECT_EQ(defaults.object("null"), std::nullopt);
    EXPECT_EQ(defaults.object("theirs"), DefaultsValue{});
    EXPECT_EQ(defaults.object("odd"), DefaultsValue{});
    EXPECT_EQ(defaults.object("nested"), (DefaultsValue{DefaultsDictionary{{"a", {}}}}));
    defaults.set("one", {1.0});
    EXPECT_EQ(read(path), text);
    defaults.set("ours", {true});
    EXPECT_TRUE(read(path).simplified().replace(' ', "").contains(R"("theirs":[1,{"x":null}])"));
}

TEST_F(JsonFile, MovesAsideWhatStandsInTheWayAtTheStart) {
    // Nothing waits for a pipe's other end or reads on and on.
    const std::pair<const char*, std::function<void()>> obstacles[] = {
        {"pipe", [&] { ASSERT_EQ(::mkfifo(QFile::encodeName(path), 0600), 0); }},
        {"folder", [&] { ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/x"))); }},
        {"huge", [&] { write("{\"a\":\"" + QByteArray(20'000'000, 'x') + "\"}"); }},
        {"cut", [&] { write("{\"cut\":"); }},
    };
    for (const auto& [name, put] : obstacles) {
        SCOPED_TRACE(name);
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        log.lines.clear();
        put();
        const auto before = QFileInfo(path).isFile() ? read(path) : QByteArray();
        auto defaults = open();
        EXPECT_EQ(log.lines.size(), 1U);
        defaults.set("flag", {true});
        EXPECT_EQ(open().object("flag"), (DefaultsValue{true}));
        ASSERT_EQ(files().size(), 2) << "it is kept, beside the new file";
        const auto aside = folder + u'/' + files().last();
        EXPECT_TRUE(aside.startsWith(path + QStringLiteral(".corrupt-")));
        EXPECT_EQ(QFileInfo(aside).isFile() ? read(aside) : QByteArray(), before);
    }
}

TEST_F(JsonFile, TakesABurstOfOneKeyAtOnceAndThenNowAndAgain) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    std::optional<JsonFileDefaults> defaults(std::in_place, path, log);
    const auto set = [&](double speed) { defaults->set("speed", {speed}); };
    const auto stored = [&] { return valueOf<double>(open(), "speed").value_or(0); };
    QTimer::singleShot(0, [&] {
        QElapsedTimer time;
        time.start();
        set(1);
        EXPECT_EQ(stored(), 1);
        for (int speed = 2; speed <= 50; ++speed) set(speed);
        const auto meanwhile = stored();
        if (time.elapsed() < 100) {
            EXPECT_EQ(meanwhile, 1);
        }
        const QDeadlineTimer deadline(10'000);
        while (stored() != 50 && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        EXPECT_EQ(stored(), 50);
        set(51);
        set(52);
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    defaults.reset();
    EXPECT_EQ(stored(), 52) << "the end of the program writes what waits";
}

TEST_F(JsonFile, IsLeftAsItWasWhileTheDiskIsFullAndWrittenOnceItIsNot) {
    // What a full disk refuses with an error, a limit refuses with a signal first.
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit atFirst{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &atFirst), 0);
    auto defaults = open();
    defaults.set("before", {1.0});
    const auto whole = read(path);

    const rlimit full{20, atFirst.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
    for (const auto* key : {"first", "second"}) defaults.set(key, {true});
    const auto meanwhile = read(path);
    const auto beside = files();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &atFirst), 0);
    EXPECT_EQ(meanwhile, whole);
    EXPECT_EQ(beside, QStringList{QStringLiteral("defaults.json")}) << "no rest of an attempt";
    EXPECT_EQ(log.lines.size(), 1U) << "told once";

    defaults.set("second", {true}); // nothing new, but not written yet
    const auto stored = open();
    for (const auto* key : {"first", "second"})
        EXPECT_EQ(stored.object(key), (DefaultsValue{true})) << key;
    EXPECT_EQ(stored.object("before"), (DefaultsValue{1.0}));
}

/// A value that tells of its own whether a part of it is missing.
DefaultsValue numbered(int number) {
    DefaultsDictionary dictionary;
    dictionary["number"] = {static_cast<double>(number)};
    dictionary["text"] = {std::string(50'000, static_cast<char>('a' + number % 26))};
    return {dictionary};
}

TEST_F(JsonFile, IsTheOldOneOrTheNewWholeAtEachMoment) {
    std::atomic<int> begun = 0, done = 0;
    open().set("state", numbered(0));
    const std::jthread writer([&](const std::stop_token& stop) {
        FakeSystemLog writersLog;
        JsonFileDefaults defaults(path, writersLog);
        while (!stop.stop_requested()) {
            defaults.set("state", numbered(++begun));
            done = begun.load();
        }
    });
    for (int i = 0; i < 1000 || begun < 100; ++i) {
        int number = done;
        const auto stored = open().object("state");
        const int latest = begun;
        while (stored != numbered(number) && number < latest) ++number;
        ASSERT_EQ(stored, numbered(number)) << number;
    }
    EXPECT_TRUE(log.lines.empty());
}

} // namespace
} // namespace quenthisar
