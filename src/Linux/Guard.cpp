// SPDX-License-Identifier: MIT
#include "Linux/Guard.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quenthisar {

namespace {

/// A quarter of the silence after which the guard acts.
constexpr std::chrono::milliseconds interval{500};

/// Beside this program, or where packages put what users don't start.
std::string guardProgram() {
    constexpr auto name = "quenthisar-guard";
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    const auto installed = folder.parent_path() / "libexec" / name;
    return (std::filesystem::exists(folder / name, error) ? folder / name : installed).string();
}

/// Its standard input is `channel`. In a session of its own no terminal stops it with us.
pid_t spawn(const std::string& program, int channel) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, channel, STDIN_FILENO);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string name{"quenthisar-guard"};
    const std::array<char*, 2> arguments{name.data(), nullptr};
    pid_t pid = 0;
    const int error =
        ::posix_spawn(&pid, program.c_str(), &actions, &attributes, arguments.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : 0;
}

} // namespace

Guard::~Guard() {
    stop();
}

Guard::Delivery Guard::start() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return Delivery::gone;
    channel = ends[0];
    // Waiting for the process before it is there: this one may hang at any time.
    const auto delivery = send(message());
    const auto process = spawn(guardProgram(), ends[1]);
    ::close(ends[1]);
    if (process == 0) return Delivery::gone;
    processes.push_back(process);
    return delivery;
}

/// Without its channel the guard ends by itself, if it has not done so.
void Guard::stop() {
    if (channel >= 0) ::close(std::exchange(channel, -1));
    reap();
}

/// One that is ended loses its channel first, and can be reaped only some time later.
void Guard::reap() {
    std::erase_if(processes, [](pid_t each) { return ::waitpid(each, nullptr, WNOHANG) != 0; });
}

void Guard::setInputHolder(std::uint32_t resource) {
    if (std::exchange(holder, resource) != resource) report();
}

void Guard::setDongles(std::vector<std::string> objectPaths) {
    if (objectPaths == dongles) return;
    dongles = std::move(objectPaths);
    report();
}

std::string Guard::message() const {
    auto result = std::to_string(holder) + ' ';
    for (const auto& dongle : dongles) result += dongle + ' ';
    return result;
}

void Guard::report() {
    auto delivery = send(message());
    if (delivery == Delivery::gone) {
        stop();
        delivery = start();
    }
    told = delivery == Delivery::taken;
    reap();

    if (!heartbeat) {
        heartbeat.emplace();
        QObject::connect(&*heartbeat, &QTimer::timeout, &*heartbeat, [this] { report(); });
    }
    // What a guard that is stopped now was not told must not be what it acts on later.
    if (holder == 0 && delivery != Delivery::full)
        heartbeat->stop();
    else if (!heartbeat->isActive())
        heartbeat->start(interval);
}

Guard::Delivery Guard::send(const std::string& text) const {
    if (::send(channel, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0)
        return Delivery::taken;
    return errno == EAGAIN || errno == ENOBUFS ? Delivery::full : Delivery::gone;
}

} // namespace quenthisar
