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
#include <ctime>
#include <functional>
#include <optional>
#include <pwd.h>
#include <random>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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
                                                      {"no data", {DefaultsData{}}},
                                                      {"dictionary", {dictionary}},
                                                      {"empty", {DefaultsDictionary{}}}};
    auto first = open();
    for (const auto& [key, value] : values) first.set(key, value);
    expectClosedToOthers();
    for (const auto& [name, mode] : {std::pair{path, 0666U}, {folder, 0777U}})
        ASSERT_EQ(::chmod(QFile::encodeName(name), mode), 0);
    const auto second = open();
    for (const auto& [key, value] : values) EXPECT_EQ(second.object(key), value) << key;
    EXPECT_EQ(second.object("absent"), std::nullopt);
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
    // Nothing waits for a pipe's other end, reads on and on or overflows the stack.
    const std::pair<const char*, std::function<void()>> obstacles[] = {
        {"pipe", [&] { ASSERT_EQ(::mkfifo(QFile::encodeName(path), 0600), 0); }},
        {"folder", [&] { ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/x"))); }},
        {"device", [&] { QFile::link(QStringLiteral("/dev/zero"), path); }},
        {"huge", [&] { write("{\"a\":\"" + QByteArray(20'000'000, 'x') + "\"}"); }},
        {"deep",
         [&] { write("{\"a\":" + QByteArray(500'000, '[') + QByteArray(500'000, ']') + "}"); }},
        {"empty", [&] { write(""); }},
        {"cut", [&] { write("{\"cut\":"); }},
        {"list", [&] { write("[1]"); }},
        {"no text", [&] { write("\xFF"); }},
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

TEST_F(JsonFile, IsReadAtOnceThoughItIsLong) {
    QByteArray text = "{\"flag\":true";
    for (int i = 0; i < 100'000; ++i) text += ",\"" + QByteArray::number(i) + "\":{\"a\":1}";
    write(text + "}");
    const auto begin = std::clock();
    EXPECT_EQ(open().object("flag"), (DefaultsValue{true}));
    EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC);
}

TEST_F(JsonFile, TakesABurstOfOneKeyAtOnceAndThenNowAndAgain) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    std::optional<JsonFileDefaults> defaults(std::in_place, path, log);
    const auto set = [&](std::string_view key, double value) { defaults->set(key, {value}); };
    const auto stored = [&](std::string_view key) {
        return valueOf<double>(open(), key).value_or(0);
    };
    QTimer::singleShot(0, [&] {
        QElapsedTimer time;
        time.start();
        set("speed", 1);
        EXPECT_EQ(stored("speed"), 1);
        for (int speed = 2; speed <= 50; ++speed) set("speed", speed);
        const auto meanwhile = stored("speed");
        if (time.elapsed() < 100) {
            EXPECT_EQ(meanwhile, 1);
        }
        // Another key does not wait, and takes along what waits.
        set("other", 1);
        EXPECT_EQ(stored("other"), 1);
        EXPECT_EQ(stored("speed"), 50);
        set("other", 2);
        const QDeadlineTimer deadline(10'000);
        while (stored("other") != 2 && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        EXPECT_EQ(stored("other"), 2);
        set("other", 3);
        set("other", 4);
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    defaults.reset();
    EXPECT_EQ(stored("other"), 4) << "the end of the program writes what waits";
}

TEST_F(JsonFile, IsWrittenThroughALink) {
    write("{\"theirs\":1}");
    const auto target = home.filePath(QStringLiteral("kept-elsewhere.json"));
    ASSERT_TRUE(QFile::rename(path, target) && QFile::link(target, path));
    open().set("ours", {true});
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_TRUE(read(target).contains("theirs") && read(target).contains("ours"));
}

TEST_F(JsonFile, StaysAsItWasOnAFullDiskAndNextTimeAllIsStored) {
    auto defaults = open();
    defaults.set("old", {true});
    const auto before = read(path);
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const rlimit full{20, unlimited.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
    defaults.set("text", {std::string(100, 'x')});
    defaults.set("other", {2.0});
    ::setrlimit(RLIMIT_FSIZE, &unlimited);
    std::signal(SIGXFSZ, handler);

    EXPECT_EQ(defaults.object("other"), (DefaultsValue{2.0})) << "it goes on in memory";
    EXPECT_EQ(log.lines.size(), 1U) << "logged once";
    EXPECT_EQ(read(path), before);
    EXPECT_EQ(files().size(), 1) << "no rest of the attempt";
    defaults.set("new", {true});
    EXPECT_EQ(open().object("text"), (DefaultsValue{std::string(100, 'x')}));
}

TEST_F(JsonFile, StandsInTheUsersFolderWhateverTheEnvironmentLacks) {
    const auto homeBefore = qgetenv("HOME"), configBefore = qgetenv("XDG_CONFIG_HOME");
    const auto pathWith = [](const QByteArray& config, const QByteArray& home) {
        qputenv("XDG_CONFIG_HOME", config);
        qputenv("HOME", home);
        return JsonFileDefaults::standardPath().toStdString();
    };
    const std::string usersOwn = ::getpwuid(::getuid())->pw_dir;
    EXPECT_EQ(pathWith("/etc/mine", "/home/u"), "/etc/mine/quenthisar/defaults.json");
    for (const char* unusable : {"relative", ""}) {
        EXPECT_EQ(pathWith(unusable, "/home/u"), "/home/u/.config/quenthisar/defaults.json");
        EXPECT_EQ(pathWith("", unusable), usersOwn + "/.config/quenthisar/defaults.json");
    }
    pathWith(configBefore, homeBefore);
}

/// A value that tells of its own whether a part of it is missing.
DefaultsValue numbered(int number) {
    DefaultsDictionary dictionary;
    dictionary["number"] = {static_cast<double>(number)};
    dictionary["text"] = {std::string(50'000, static_cast<char>('a' + number % 26))};
    return {dictionary};
}

class KilledWriter : public JsonFile {
protected:
    /// Shared with another process.
    struct Progress {
        std::atomic<int> begun, done;
    };

    /// A process that stores one numbered value after the other until it is killed.
    pid_t start(Progress& progress) {
        const pid_t pid = ::fork();
        if (pid != 0) return pid;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        auto defaults = open();
        for (;;) {
            const int next = ++progress.begun;
            defaults.set("state", numbered(next));
            progress.done = next;
        }
    }
};

TEST_F(KilledWriter, LeavesTheOldSettingsOrTheNewWhole) {
    open().set("state", numbered(0));
    auto* memory = ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& progress = *new (memory) Progress{};

    std::mt19937 random{200};
    std::uniform_int_distribution<int> microseconds{0, 6000};
    int inTheMiddle = 0;
    for (int kill = 0; kill < 200; ++kill) {
        const int first = progress.begun;
        const auto writer = start(progress);
        const QDeadlineTimer deadline(20'000);
        while (progress.begun == first && !deadline.hasExpired()) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds{microseconds(random)});
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        ASSERT_NE(progress.begun, first);
        if (progress.begun != progress.done) ++inTheMiddle;
        const auto stored = open().object("state");
        const bool isOld = stored == numbered(progress.done);
        ASSERT_TRUE(isOld || stored == numbered(progress.begun))
            << "after kill " << kill << " in the middle of number " << progress.begun;
        progress.begun = progress.done = isOld ? progress.done.load() : progress.begun.load();
    }
    EXPECT_TRUE(log.lines.empty());
    EXPECT_GT(inTheMiddle, 50) << "few were killed while they wrote";
    ::munmap(memory, sizeof(Progress));
}

} // namespace
} // namespace quenthisar
