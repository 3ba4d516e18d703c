// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SerialQueue.h"
#include "support/VirtualClock.h"

#include <chrono>
#include <deque>
#include <functional>
#include <semaphore>
#include <thread>
#include <utility>

namespace quenthisar {

/// A queue whose actions run in virtual time beside what the test does: what is posted begins, and
/// a sleep ends, when the clock gets there. It has a thread of its own, but one of the two threads
/// waits for the other at any time, so that the same test is the same each time.
class VirtualThread final : public SerialQueue {
public:
    explicit VirtualThread(VirtualClock& virtualClock) : clock(virtualClock) {}
    ~VirtualThread() override { end(); }
    VirtualThread(const VirtualThread&) = delete;
    VirtualThread& operator=(const VirtualThread&) = delete;

    void async(std::function<void()> action) override {
        waiting.push_back(std::move(action));
        clock.async([this] {
            if (!isAsleep) resume();
        });
    }

    bool sleepForTimeInterval(Seconds interval) override {
        isAsleep = true;
        clock.after(interval, [this] { resume(); });
        pause();
        isAsleep = false;
        return !isEnding;
    }

    /// A sleep ends, and nothing begins any more.
    void end() {
        isEnding = true;
        if (!thread.joinable()) return;
        resume();
        thread.join();
    }

private:
    /// The thread runs until it sleeps or has nothing to do.
    void resume() {
        if (!thread.joinable()) {
            if (isEnding) return;
            thread = std::thread([this] { run(); });
        }
        turn.release();
        ready.acquire();
    }

    void pause() {
        ready.release();
        turn.acquire();
    }

    void run() {
        turn.acquire();
        while (!isEnding) {
            if (waiting.empty()) {
                pause();
                continue;
            }
            const auto action = std::move(waiting.front());
            waiting.pop_front();
            action();
        }
        ready.release();
    }

    VirtualClock& clock;
    std::deque<std::function<void()>> waiting;
    bool isAsleep = false, isEnding = false;
    std::binary_semaphore turn{0}, ready{0}; // the thread's, and the test's
    std::thread thread;
};

} // namespace quenthisar
