// SPDX-License-Identifier: MIT
#include "Linux/JsonFileDefaults.h"

#include "support/FakeHost.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view key = "state";

/// A value that tells of its own whether a part of it is missing.
DefaultsValue numbered(int number) {
    DefaultsDictionary dictionary;
    dictionary["number"] = {static_cast<double>(number)};
    dictionary["text"] = {std::string(50'000, static_cast<char>('a' + number % 26))};
    return {dictionary};
}

/// Another process, which stores one numbered value after the other until it is killed.
class Writer {
public:
    /// Shared with it.
    struct Progress {
        std::atomic<int> begun, done;
    };

    Writer(const QString& path, Progress& progress) {
        pid = ::fork();
        if (pid != 0) return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        FakeSystemLog log;
        JsonFileDefaults defaults(path, log);
        for (;;) {
            const int next = progress.begun + 1;
            progress.begun = next;
            defaults.set(key, numbered(next));
            progress.done = next;
        }
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
    }

private:
    pid_t pid = -1;
};

TEST(KilledWriter, LeavesTheOldSettingsOrTheNewWhole) {
    const QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("quenthisar/defaults.json"));
    FakeSystemLog log;
    JsonFileDefaults(path, log).set(key, numbered(0));
    auto* memory = ::mmap(nullptr, sizeof(Writer::Progress), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& progress = *new (memory) Writer::Progress{};

    std::mt19937 random{200};
    std::uniform_int_distribution<int> microseconds{0, 6000};
    int inTheMiddle = 0;
    for (int kill = 0; kill < 200; ++kill) {
        const int first = progress.begun;
        {
            const Writer writer(path, progress);
            const auto deadline = std::chrono::steady_clock::now() + 20s;
            while (progress.begun == first && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            ASSERT_NE(progress.begun, first);
            std::this_thread::sleep_for(std::chrono::microseconds{microseconds(random)});
        }
        if (progress.begun != progress.done) ++inTheMiddle;
        const JsonFileDefaults defaults(path, log);
        const auto stored = defaults.object(key);
        const bool isOld = stored == numbered(progress.done);
        ASSERT_TRUE(isOld || stored == numbered(progress.begun))
            << "after kill " << kill << " in the middle of number " << progress.begun;
        if (isOld)
            progress.begun = progress.done.load();
        else
            progress.done = progress.begun.load();
    }
    EXPECT_TRUE(log.lines.empty());
    EXPECT_GT(inTheMiddle, 50) << "few were killed while they wrote";
    ::munmap(memory, sizeof(Writer::Progress));
}

} // namespace
} // namespace quenthisar
