// SPDX-License-Identifier: MIT
#include "PayloadReader.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace quenthisar::dongle {

namespace {

constexpr std::size_t longest = 247;
constexpr int interruption = SIGUSR1;
/// The signal may come just before the call that it is to interrupt.
constexpr std::chrono::milliseconds interruptAgain{1};

void makeInterruptible() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(interruption, &action, nullptr); // no SA_RESTART
}

} // namespace

PayloadReader::PayloadReader(int socket, Handlers actions, bool reading)
    : descriptor(socket), handlers(std::move(actions)), wanted(reading) {
    makeInterruptible();
    thread = std::thread([this] { run(); });
}

PayloadReader::~PayloadReader() {
    setReading(false);
    {
        const std::lock_guard lock{mutex};
        ending = true;
    }
    changed.notify_all();
    thread.join();
    ::close(descriptor);
}

void PayloadReader::setReading(bool on) {
    std::unique_lock lock{mutex};
    wanted = on;
    changed.notify_all();
    while (!on && !parked) {
        ::pthread_kill(thread.native_handle(), interruption);
        changed.wait_for(lock, interruptAgain);
    }
}

void PayloadReader::drain() {
    if (!wanted) return;
    setReading(false);
    while (take(MSG_DONTWAIT) == Taken::some) {
    }
}

void PayloadReader::run() {
    bool atEnd = false;
    while (true) {
        if (!wanted || atEnd) {
            std::unique_lock lock{mutex};
            parked = true;
            changed.notify_all();
            changed.wait(lock, [&] { return ending || (wanted && !atEnd); });
            if (ending) return;
            parked = false;
        }
        if (take(0) != Taken::end) continue;
        atEnd = true;
        handlers.ended();
    }
}

/// An empty payload looks the same to who reads.
bool PayloadReader::isClosed() const {
    pollfd state{.fd = descriptor, .events = POLLRDHUP, .revents = 0};
    return ::poll(&state, 1, 0) > 0;
}

PayloadReader::Taken PayloadReader::take(int flags) {
    std::array<std::uint8_t, longest> buffer;
    const auto length = ::recv(descriptor, buffer.data(), buffer.size(), flags);
    if (length < 0) return errno == EAGAIN || errno == EINTR ? Taken::none : Taken::end;
    if (length == 0 && isClosed()) return Taken::end;
    handlers.take({buffer.data(), static_cast<std::size_t>(length)});
    return Taken::some;
}

} // namespace quenthisar::dongle
