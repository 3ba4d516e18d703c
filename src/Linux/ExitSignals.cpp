// SPDX-License-Identifier: MIT
#include "Linux/ExitSignals.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace quenthisar {

namespace {

constexpr int exitSignals[] = {SIGTERM, SIGINT, SIGHUP};

/// Where the handler reports to. A handler has no other way to its data.
std::atomic<int> eventDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void report(int) {
    const int error = errno;
    const std::uint64_t one = 1;
    // Full means that an earlier signal is still to be seen.
    [[maybe_unused]] const auto written = ::write(eventDescriptor, &one, sizeof one);
    errno = error;
}

void handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : exitSignals) {
        struct sigaction before {};
        // What was ignored from the start (nohup) stays so.
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

} // namespace

ExitSignals::ExitSignals(std::function<void()> action)
    : descriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (descriptor < 0) return;
    notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [fd = descriptor, action = std::move(action)] {
                         std::uint64_t count = 0;
                         if (::read(fd, &count, sizeof count) > 0) action();
                     });
    eventDescriptor = descriptor;
    handle(report);
}

ExitSignals::~ExitSignals() {
    if (descriptor < 0) return;
    handle(SIG_DFL);
    eventDescriptor = -1;
    notifier.reset();
    ::close(descriptor);
}

} // namespace quenthisar
