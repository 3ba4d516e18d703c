// SPDX-License-Identifier: MIT
#include "Linux/InputPoll.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <sys/epoll.h>
#include <unistd.h>
#include <utility>

#include <glib.h>

namespace quenthisar {

namespace {

using InputPoll::Clock;
using std::chrono::milliseconds;

using Polled = std::span<GPollFD>;

/// All that the loop watches besides the input, behind one descriptor: to poll each of them would
/// cost as much as to read the input.
class Others {
public:
    Others(Polled polled, int input) : set(::epoll_create1(EPOLL_CLOEXEC)) {
        for (const auto& one : polled) {
            if (one.fd == input) continue;
            epoll_event event{.events = one.events, .data = {}};
            if (::epoll_ctl(set, EPOLL_CTL_ADD, one.fd, &event) != 0) complete = false;
        }
    }
    ~Others() {
        if (set >= 0) ::close(set);
    }
    Others(const Others&) = delete;
    Others& operator=(const Others&) = delete;

    bool areComplete() const { return complete; }
    GPollFD polled() const { return {set, G_IO_IN, 0}; }

private:
    const int set;
    bool complete = set >= 0;
};

int input = -1; // none: nothing is handed on
std::function<void(Clock::time_point)> drainInput;
int unanswered = 0; // events without their payload
bool stirred = false;

/// True if the loop may sleep on.
bool handOn(Clock::time_point now) {
    unanswered = 0;
    stirred = false;
    const auto drain = drainInput; // it may be replaced meanwhile
    drain(now);
    return unanswered == 0 && !stirred;
}

/// The loop's: `timeout` in milliseconds, negative for ever; how many are ready.
gint poll(GPollFD* descriptors, guint count, gint timeout) {
    const Polled polled{descriptors, count};
    const auto own = std::ranges::find(polled, input, &GPollFD::fd);
    const auto end = Clock::now() + milliseconds{timeout};
    const int ready = g_poll(descriptors, count, timeout);
    if (input < 0 || own == polled.end() || ready != 1 || own->revents == 0) return ready;

    own->revents = 0;
    auto now = Clock::now();
    if (!handOn(now)) return 0;
    const Others others(polled, input);
    if (!others.areComplete()) return 0;
    for (std::array both{*own, others.polled()};;) {
        const auto left = std::chrono::ceil<milliseconds>(end - now).count();
        if (timeout >= 0 && left <= 0) return 0;
        if (g_poll(both.data(), both.size(), timeout < 0 ? -1 : static_cast<gint>(left)) <= 0)
            return 0;
        if (both[1].revents != 0) return g_poll(descriptors, count, 0);
        now = Clock::now();
        if (!handOn(now)) return 0;
    }
}

} // namespace

void InputPoll::start(int descriptor, std::function<void(Clock::time_point)> drain) {
    input = descriptor;
    drainInput = std::move(drain);
    g_main_context_set_poll_func(nullptr, poll);
}

void InputPoll::stop(int descriptor) {
    if (input == descriptor) input = -1;
    stirred = true;
}

void InputPoll::noteEvent() {
    ++unanswered;
}

void InputPoll::notePayload() {
    --unanswered;
}

void InputPoll::stir() {
    stirred = true;
}

} // namespace quenthisar
