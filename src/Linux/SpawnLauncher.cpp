// SPDX-License-Identifier: MIT
#include "Linux/SpawnLauncher.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace quenthisar {

namespace {

/// What goes through the pipe: the address of a description, which the thread then owns.
using Order = void*;

constexpr int lookAgain = 500; // milliseconds, where nothing tells when to look

/// What a started program gets: no descriptor of ours but the standard streams, and every signal
/// as a program expects it.
class SpawnSettings {
public:
    SpawnSettings() {
        sigset_t every, none;
        sigfillset(&every);
        sigemptyset(&none);
        isComplete = ::posix_spawn_file_actions_init(&actions) == 0 &&
                     ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0 &&
                     ::posix_spawnattr_init(&attributes) == 0 &&
                     ::posix_spawnattr_setsigdefault(&attributes, &every) == 0 &&
                     ::posix_spawnattr_setsigmask(&attributes, &none) == 0 &&
                     ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF |
                                                                 POSIX_SPAWN_SETSIGMASK) == 0;
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }

    /// The process's id, or 0.
    pid_t start(ProcessDescription process) const {
        if (!isComplete) return 0; // a program must not get what is ours
        std::vector<char*> arguments{process.executable.data()};
        for (auto& argument : process.arguments) arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        pid_t pid = 0;
        const int error = ::posix_spawn(&pid, process.executable.c_str(), &actions, &attributes,
                                        arguments.data(), environ);
        return error == 0 ? pid : 0;
    }

private:
    bool isComplete = false;
    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

/// The thread: takes orders until the pipe's other end is closed, and reaps what has ended.
class LauncherLoop {
public:
    explicit LauncherLoop(int pipeEnd) : watched{{pipeEnd, POLLIN, 0}} {}
    LauncherLoop(const LauncherLoop&) = delete;
    LauncherLoop& operator=(const LauncherLoop&) = delete;
    ~LauncherLoop() {
        for (const auto& entry : watched) ::close(entry.fd);
    }

    void run() {
        for (;;) {
            if (::poll(watched.data(), watched.size(), unwatched.empty() ? -1 : lookAgain) < 0) {
                if (errno == EINTR) continue;
                if (errno != ENOMEM && errno != EAGAIN) return;
                std::this_thread::sleep_for(std::chrono::milliseconds{lookAgain});
                continue;
            }
            reapEnded();
            reapUnwatched();
            if (watched.front().revents != 0 && !takeOrder()) return;
        }
    }

private:
    bool takeOrder() {
        Order order = nullptr;
        const auto length = ::read(watched.front().fd, &order, sizeof order);
        if (length < 0 && (errno == EAGAIN || errno == EINTR)) return true;
        if (length != sizeof order) return false;
        const std::unique_ptr<ProcessDescription> process(static_cast<ProcessDescription*>(order));
        const pid_t pid = settings.start(std::move(*process));
        if (pid == 0) return true;
        const auto descriptor = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
        if (descriptor >= 0)
            watched.push_back({descriptor, POLLIN, 0});
        else
            unwatched.push_back(pid);
        return true;
    }

    void reapEnded() {
        std::erase_if(watched, [this](const pollfd& entry) {
            if (entry.fd == watched.front().fd || entry.revents == 0) return false;
            siginfo_t information;
            ::waitid(P_PIDFD, static_cast<id_t>(entry.fd), &information, WEXITED);
            ::close(entry.fd);
            return true;
        });
    }

    void reapUnwatched() {
        std::erase_if(unwatched, [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
    }

    const SpawnSettings settings;
    std::vector<pollfd> watched;  // first the pipe, then one descriptor per process
    std::vector<pid_t> unwatched; // those that no descriptor was left for
};

} // namespace

SpawnLauncher::SpawnLauncher() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    try {
        thread = std::thread([end = ends[0]] { LauncherLoop(end).run(); });
        orders = ends[1];
    } catch (const std::system_error&) { // the user has too many threads
        for (const int end : ends) ::close(end);
    }
}

SpawnLauncher::~SpawnLauncher() {
    if (orders < 0) return;
    ::close(orders);
    thread.join();
}

void SpawnLauncher::launch(ProcessDescription process) {
    if (orders < 0) return;
    auto ours = std::make_unique<ProcessDescription>(std::move(process));
    const Order order = ours.get();
    // It goes into the pipe whole or, when thousands wait there, not at all.
    if (::write(orders, &order, sizeof order) == sizeof order)
        static_cast<void>(ours.release()); // the thread's now
}

} // namespace quenthisar
