// SPDX-License-Identifier: MIT
#include "Injection.h"

#include "demo/Interrupt.h"

#include <sys/prctl.h>

#include <atomic>
#include <stop_token>
#include <thread>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

constexpr double line = 120;

void make(const Devices& devices, const Stimulus& stimulus) {
    switch (stimulus.kind) {
    case Kind::motion: devices.mouse.moveBy(stimulus.delta.x(), stimulus.delta.y()); break;
    case Kind::key: devices.keyboard.key(stimulus.detail, stimulus.isDown); break;
    case Kind::button: devices.mouse.button(stimulus.detail, stimulus.isDown); break;
    case Kind::scroll: devices.mouse.scroll(stimulus.detail == wheelUp ? -line : line); break;
    }
}

} // namespace

std::vector<Clock::time_point> inject(const Devices& devices, const Stimuli& stimuli,
                                      const std::function<void()>& attend) {
    std::vector<Clock::time_point> made;
    made.reserve(stimuli.size());
    std::atomic<bool> isDone = false;
    const std::jthread injector{[&](const std::stop_token& stop) {
        // The kernel adds 50 us to each sleep otherwise, half the pace of the fastest mouse.
        ::prctl(PR_SET_TIMERSLACK, 1UL);
        const auto start = Clock::now() + 1ms;
        for (const auto& stimulus : stimuli) {
            if (stop.stop_requested()) break;
            std::this_thread::sleep_until(start + stimulus.due);
            made.push_back(Clock::now());
            make(devices, stimulus);
        }
        isDone = true;
    }};
    while (!isDone) {
        demo::throwIfInterrupted();
        attend();
        std::this_thread::sleep_for(20ms);
    }
    return made;
}

} // namespace quenthisar::bench
