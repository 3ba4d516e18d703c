// SPDX-License-Identifier: MIT
#include "PayloadReader.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace quenthisar::dongle {

namespace {

constexpr std::size_t longest = 247, payloadsAtOnce = 8;
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
    while (takeBatch(MSG_DONTWAIT) == Taken::some) {
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
        if (takeBatch(MSG_WAITFORONE) != Taken::end) continue;
        atEnd = true;
        handlers.ended();
    }
}

/// An empty payload looks the same to who reads.
bool PayloadReader::isClosed() const {
    pollfd state{.fd = descriptor, .events = POLLRDHUP, .revents = 0};
    return ::poll(&state, 1, 0) > 0;
}

// One call takes all that is there: a second one, only to hear that there is no more, would cost as
// much as the first.
PayloadReader::Taken PayloadReader::takeBatch(int flags) {
    std::array<std::array<std::uint8_t, longest>, payloadsAtOnce> buffers;
    std::array<iovec, payloadsAtOnce> places{};
    std::array<mmsghdr, payloadsAtOnce> messages{};
    for (std::size_t i = 0; i < payloadsAtOnce; ++i) {
        places[i] = {.iov_base = buffers[i].data(), .iov_len = buffers[i].size()};
        messages[i].msg_hdr.msg_iov = &places[i];
        messages[i].msg_hdr.msg_iovlen = 1;
    }
    const auto count = ::recvmmsg(descriptor, messages.data(), payloadsAtOnce, flags, nullptr);
    if (count < 0) return errno == EAGAIN || errno == EINTR ? Taken::none : Taken::end;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        if (messages[i].msg_len == 0 && isClosed()) return Taken::end;
        handlers.take({buffers[i].data(), messages[i].msg_len});
    }
    return count > 0 ? Taken::some : Taken::end;
}

} // namespace quenthisar::dongle
