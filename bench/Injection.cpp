// SPDX-License-Identifier: MIT
#include "Injection.h"

#include "demo/Hands.h"
#include "demo/Interrupt.h"

#include <sys/prctl.h>

#include <atomic>
#include <stop_token>
#include <thread>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

void make(const demo::Hands& hands, const Stimulus& stimulus) {
    switch (stimulus.kind) {
    case Kind::motion: hands.moveBy(stimulus.delta); break;
    case Kind::key: hands.key(stimulus.detail, stimulus.isDown); break;
    case Kind::button: hands.button(stimulus.detail, stimulus.isDown); break;
    case Kind::scroll: hands.click(stimulus.detail); break;
    }
}

} // namespace

std::vector<Clock::time_point> inject(const demo::XClient& server, const Stimuli& stimuli,
                                      const std::function<void()>& attend) {
    std::vector<Clock::time_point> made;
    made.reserve(stimuli.size());
    std::atomic<bool> isDone = false;
    const std::jthread injector{[&](const std::stop_token& stop) {
        // The kernel adds 50 us to each sleep otherwise, half the pace of the fastest mouse.
        ::prctl(PR_SET_TIMERSLACK, 1UL);
        const demo::Hands hands{server};
        const auto start = Clock::now() + 1ms;
        for (const auto& stimulus : stimuli) {
            if (stop.stop_requested()) break;
            std::this_thread::sleep_until(start + stimulus.due);
            made.push_back(Clock::now());
            make(hands, stimulus);
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
