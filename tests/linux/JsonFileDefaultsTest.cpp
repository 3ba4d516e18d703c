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

#include <csignal>
#include <ctime>
#include <functional>
#include <optional>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quenthisar {
namespace {

struct Fixture {
    QTemporaryDir home;
    QString folder = home.filePath(QStringLiteral("quenthisar"));
    QString path = folder + QStringLiteral("/defaults.json");
    FakeSystemLog log;

    JsonFileDefaults open() { return {path, log}; }

    void write(const QByteArray& text) const {
        QDir().mkpath(folder);
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(text);
    }
    QByteArray read(const QString& name) const {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    QStringList corruptFiles() const {
        return QDir(folder).entryList({QStringLiteral("defaults.json.corrupt-*")});
    }
    static unsigned modeOf(const QString& name) {
        struct stat status {};
        return ::stat(QFile::encodeName(name), &status) == 0 ? status.st_mode & 0777U : 0;
    }
};

TEST(JsonFileDefaults, EveryKindOfValueSurvivesARestart) {
    Fixture f;
    DefaultsDictionary dictionary;
    dictionary["a"] = {std::string{"ä \"quoted\""}};
    dictionary["b"] = {0.25};
    const std::map<std::string, DefaultsValue> values{{"bool", {true}},
                                                      {"number", {3.0}},
                                                      {"text", {std::string{}}},
                                                      {"data", {DefaultsData{0, 255, 10, 0}}},
                                                      {"no data", {DefaultsData{}}},
                                                      {"dictionary", {dictionary}},
                                                      {"empty", {DefaultsDictionary{}}}};
    auto first = f.open();
    for (const auto& [key, value] : values) first.set(key, value);
    const auto second = f.open();
    for (const auto& [key, value] : values) EXPECT_EQ(second.object(key), value) << key;
    EXPECT_EQ(second.object("absent"), std::nullopt);
    EXPECT_EQ(Fixture::modeOf(f.path), 0600U);
    EXPECT_EQ(Fixture::modeOf(f.folder), 0700U);
    EXPECT_TRUE(f.log.lines.empty());
}

TEST(JsonFileDefaults, ClosesToOthersWhatWasOpenToThem) {
    Fixture f;
    f.open().set("key", {true});
    for (const auto& [name, mode] : {std::pair{f.path, 0666U}, {f.folder, 0777U}})
        ASSERT_EQ(::chmod(QFile::encodeName(name), mode), 0);
    EXPECT_EQ(f.open().object("key"), DefaultsValue{true});
    EXPECT_EQ(Fixture::modeOf(f.path), 0600U);
    EXPECT_EQ(Fixture::modeOf(f.folder), 0700U);
}

TEST(JsonFileDefaults, KeepsKeysOfOthersAndReadsWhatNoSettingHasAsSuch) {
    Fixture f;
    f.write(R"({"theirs":[1,{"x":null}],"null":null,"odd":{"$data":"!"},"nested":{"a":{"b":1}}})");
    auto defaults = f.open();
    EXPECT_EQ(defaults.object("null"), std::nullopt);
    EXPECT_EQ(defaults.object("theirs"), DefaultsValue{});
    EXPECT_EQ(defaults.object("odd"), DefaultsValue{});
    EXPECT_EQ(defaults.object("nested"), (DefaultsValue{DefaultsDictionary{{"a", {}}}}));
    defaults.set("ours", {true});
    EXPECT_TRUE(
        f.read(f.path).simplified().replace(' ', "").contains(R"("theirs":[1,{"x":null}])"));
}

TEST(JsonFileDefaults, ASetThatChangesNothingDoesNotTouchTheFile) {
    Fixture f;
    f.write(R"({ "flag":true,"one":1 })");
    auto defaults = f.open();
    defaults.set("flag", {true});
    defaults.set("one", {1.0});
    EXPECT_EQ(f.read(f.path), R"({ "flag":true,"one":1 })");
    defaults.set("flag", {false});
    EXPECT_TRUE(f.read(f.path).contains("false"));
}

TEST(JsonFileDefaults, MovesAsideWhatItCannotRead) {
    for (const char* text : {"", "{\"cut\":", "[1]", "\xFF", "7"}) {
        Fixture f;
        f.write(text);
        auto defaults = f.open();
        ASSERT_EQ(f.corruptFiles().size(), 1) << text;
        EXPECT_EQ(f.read(f.folder + u'/' + f.corruptFiles().front()), text);
        EXPECT_EQ(f.log.lines.size(), 1U);
        defaults.set("flag", {true});
        EXPECT_EQ(f.open().object("flag"), (DefaultsValue{true}));
    }
}

TEST(JsonFileDefaults, WithoutAFileThatCanBeWrittenItGoesOnInMemory) {
    Fixture f;
    QFile(f.folder).open(QIODevice::WriteOnly); // a file where the folder should be
    auto defaults = f.open();
    defaults.set("flag", {true});
    defaults.set("other", {2.0});
    EXPECT_EQ(defaults.object("flag"), (DefaultsValue{true}));
    EXPECT_EQ(f.log.lines.size(), 1U) << "logged once";
}

struct Obstacle {
    const char* name;
    std::function<void(const QString& path)> put;
};

TEST(JsonFileDefaults, NothingThatStandsInTheWayStopsTheStart) {
    const auto fill = [](const QString& path, const QByteArray& text) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    };
    // Nothing waits for a pipe's other end, reads on and on or overflows the stack.
    const Obstacle obstacles[] = {
        {"pipe", [](auto& path) { ASSERT_EQ(::mkfifo(QFile::encodeName(path), 0600), 0); }},
        {"folder", [](auto& path) { ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/x"))); }},
        {"device", [](auto& path) { QFile::link(QStringLiteral("/dev/zero"), path); }},
        {"huge",
         [&](auto& path) { fill(path, "{\"a\":\"" + QByteArray(20'000'000, 'x') + "\"}"); }},
        {"deep",
         [&](auto& path) {
             fill(path, "{\"a\":" + QByteArray(1'000'000, '[') + QByteArray(1'000'000, ']') + "}");
         }},
    };
    for (const auto& obstacle : obstacles) {
        Fixture f;
        QDir().mkpath(f.folder);
        obstacle.put(f.path);
        auto defaults = f.open();
        EXPECT_EQ(f.log.lines.size(), 1U) << obstacle.name;
        defaults.set("flag", {true});
        EXPECT_EQ(f.open().object("flag"), (DefaultsValue{true})) << obstacle.name;
        EXPECT_EQ(
            QDir(f.folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(),
            2)
            << obstacle.name << " is kept, beside the new file";
    }
}

TEST(JsonFileDefaults, ReadsALongFileAtOnce) {
    QByteArray text = "{\"flag\":true";
    for (int i = 0; i < 100'000; ++i) text += ",\"" + QByteArray::number(i) + "\":{\"a\":1}";
    Fixture f;
    f.write(text + "}");
    const auto begin = std::clock();
    EXPECT_EQ(f.open().object("flag"), (DefaultsValue{true}));
    EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC);
}

TEST(JsonFileDefaults, ABurstOfOneKeyIsWrittenAtOnceAndThenNowAndAgain) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    Fixture f;
    std::optional<JsonFileDefaults> defaults(std::in_place, f.path, f.log);
    const auto stored = [&](std::string_view key) {
        return valueOf<double>(f.open(), key).value_or(0);
    };
    int kept = 0;
    QTimer::singleShot(0, [&] {
        QElapsedTimer time;
        time.start();
        constexpr int sets = 50;
        for (int set = 1; set <= sets; ++set) {
            const auto before = stored("speed");
            defaults->set("speed", {static_cast<double>(set)});
            if (stored("speed") == before) ++kept;
            if (set == 1) {
                EXPECT_EQ(before + 1, stored("speed")) << "the first one at once";
            }
        }
        if (time.elapsed() < 100) {
            EXPECT_EQ(kept, sets - 1);
        }
        // Another key does not wait, and takes along what waits.
        defaults->set("other", {1.0});
        EXPECT_EQ(stored("other"), 1);
        EXPECT_EQ(stored("speed"), sets);
        defaults->set("other", {2.0});
        QTimer::singleShot(0, [&] {
            const QDeadlineTimer deadline(10'000);
            while (stored("other") != 2 && !deadline.hasExpired())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
            EXPECT_EQ(stored("other"), 2);
            defaults->set("other", {3.0});
            defaults->set("other", {4.0});
            QCoreApplication::quit();
        });
    });
    QCoreApplication::exec();
    defaults.reset();
    EXPECT_EQ(stored("other"), 4) << "the end of the program writes what waits";
}

TEST(JsonFileDefaults, ALinkIsWrittenThrough) {
    Fixture f;
    f.write("{\"theirs\":1}");
    const auto target = f.home.filePath(QStringLiteral("kept-elsewhere.json"));
    ASSERT_TRUE(QFile::rename(f.path, target) && QFile::link(target, f.path));
    f.open().set("ours", {true});
    EXPECT_TRUE(QFileInfo(f.path).isSymLink());
    EXPECT_TRUE(f.read(target).contains("theirs") && f.read(target).contains("ours"));
}

/// While it lives, no file can grow beyond some bytes, as on a disk that is full.
class FullDisk {
public:
    FullDisk() : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
        auto limit = before;
        limit.rlim_cur = 20;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

private:
    void (*handler)(int);
    rlimit before{};
};

TEST(JsonFileDefaults, AFullDiskKeepsTheOldFileAndNextTimeAllIsStored) {
    Fixture f;
    auto defaults = f.open();
    defaults.set("old", {true});
    const auto before = f.read(f.path).toStdString();
    std::optional<FullDisk> full{std::in_place};
    defaults.set("text", {std::string(100, 'x')});
    full.reset();
    EXPECT_EQ(f.read(f.path).toStdString(), before);
    EXPECT_EQ(f.log.lines.size(), 1U);
    EXPECT_EQ(QDir(f.folder).entryList(QDir::Files).size(), 1) << "no rest of the attempt";
    defaults.set("new", {true});
    EXPECT_EQ(f.open().object("text"), (DefaultsValue{std::string(100, 'x')}));
}

/// Gives a variable of the environment back as it was.
class Variable {
public:
    Variable(const char* name, const char* value)
        : name(name),
          before(qEnvironmentVariableIsSet(name) ? std::optional{qgetenv(name)} : std::nullopt) {
        value ? qputenv(name, value) : qunsetenv(name);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { before ? qputenv(name, *before) : qunsetenv(name); }

private:
    const char* name;
    std::optional<QByteArray> before;
};

TEST(JsonFileDefaults, StandsInTheUsersFolderWhateverTheEnvironmentLacks) {
    const auto pathWith = [](const char* config, const char* home) {
        const Variable first("XDG_CONFIG_HOME", config), second("HOME", home);
        return JsonFileDefaults::standardPath().toStdString();
    };
    EXPECT_EQ(pathWith("/etc/mine", "/home/u"), "/etc/mine/quenthisar/defaults.json");
    for (const char* unusable : {"relative", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(pathWith(unusable, "/home/u"), "/home/u/.config/quenthisar/defaults.json");
    const auto* user = ::getpwuid(::getuid());
    ASSERT_TRUE(user);
    for (const char* unusable : {"relative", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(pathWith("", unusable),
                  std::string(user->pw_dir) + "/.config/quenthisar/defaults.json");
}

} // namespace
} // namespace quenthisar
