// SPDX-License-Identifier: MIT
#include "Linux/SpawnLauncher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quenthisar {
namespace {

constexpr int limit = 20'000; // milliseconds

/// A pipe into which hooks write by its path, as they inherit no descriptor of it.
class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        for (const int end : ends) ::close(end);
    }

    /// Of the end to write to (1) or to read from (0).
    std::string path(std::size_t end = 1) const {
        return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(ends.at(end));
    }

    /// Lets one hook read a line.
    void open() const { EXPECT_EQ(::write(ends[1], "\n", 1), 1); }

    /// One line, or what came of it before the limit.
    std::string line() const {
        std::string text;
        pollfd ready{ends[0], POLLIN, 0};
        for (char c = 0; ::poll(&ready, 1, limit) == 1 && ::read(ends[0], &c, 1) == 1 && c != '\n';)
            text += c;
        return text;
    }

private:
    std::array<int, 2> ends{};
};

/// One for all tests, as in the program: what ends after its launcher is reaped by nobody.
SpawnLauncher& launcher() {
    static SpawnLauncher shared;
    return shared;
}

/// Whether this process soon has no child: what has ended is reaped by the launcher alone.
bool allAreReaped() {
    siginfo_t information{};
    const auto deadline = ::time(nullptr) + limit / 1000;
    while (::waitid(P_ALL, 0, &information, WEXITED | WNOHANG | WNOWAIT) == 0) {
        if (::time(nullptr) >= deadline) return false;
        ::poll(nullptr, 0, 1);
    }
    return errno == ECHILD;
}

ProcessDescription shell(const std::string& command) {
    return {"/bin/zsh", {"-c", command}};
}

TEST(SpawnLauncher, StartsTheShellWithItsCommandAndNoDescriptorOfOurs) {
    const Pipe pipe;
    const int extra = ::open("/dev/full", O_RDONLY);
    launcher().launch({"/nonexistent/program", {}});
    launcher().launch(
        shell("echo $ZSH_NAME $(ls -l /proc/$$/fd | grep -c /dev/full) > " + pipe.path()));
    EXPECT_EQ(pipe.line(), "zsh 0");
    ::close(extra);
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

bool descriptorsGetDownTo(std::ptrdiff_t count) {
    const auto deadline = ::time(nullptr) + limit / 1000;
    while (openDescriptors() > count && ::time(nullptr) < deadline) ::poll(nullptr, 0, 1);
    return openDescriptors() <= count;
}

TEST(SpawnLauncher, StaysQuickAndKeepsNothingOfManyBesideThoseThatHang) {
    using Clock = std::chrono::steady_clock;
    constexpr int hanging = 20, batches = 5, batch = 40;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr std::chrono::milliseconds hitch{100};
#else
    constexpr std::chrono::milliseconds hitch{20};
#endif
    const Pipe done, gate;
    launcher();
    const auto before = openDescriptors();
    for (int i = 0; i < hanging; ++i) launcher().launch(shell("read < " + gate.path(0)));

    std::vector<Clock::duration> longest(batches);
    for (auto& worst : longest) {
        for (int i = 0; i < batch; ++i) {
            const auto start = Clock::now();
            launcher().launch(shell("echo x > " + done.path()));
            worst = std::max(worst, Clock::now() - start);
        }
        for (int i = 0; i < batch; ++i) ASSERT_EQ(done.line(), "x");
    }
    // On a busy machine anything may take its time once.
    std::ranges::sort(longest);
    EXPECT_LE(longest[longest.size() / 2], hitch);

    for (int i = 0; i < hanging; ++i) gate.open();
    EXPECT_TRUE(allAreReaped());
    EXPECT_TRUE(descriptorsGetDownTo(before));
}

} // namespace
} // namespace quenthisar
