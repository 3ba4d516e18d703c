// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace quenthisar {

/// A main queue in virtual time: nothing runs until the test advances the clock.
class VirtualClock final : public MainQueue {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    void async(std::function<void()> action) override { schedule(time, std::move(action)); }

    void after(Seconds delay, std::function<void()> action) override {
        schedule(time + std::chrono::round<Nanoseconds>(delay), std::move(action));
    }

    std::unique_ptr<RepeatingTimer> every(Seconds interval, std::function<void()> action) override {
        auto timer = std::make_unique<Timer>();
        repeat(std::chrono::round<Nanoseconds>(interval), timer->alive, action);
        return timer;
    }

    /// Runs everything that is due up to `step` from now, each at its time, and what that posts.
    void advance(Nanoseconds step) {
        const Nanoseconds end = time + step;
        while (!due.empty() && due.begin()->first.first <= end) {
            time = due.begin()->first.first;
            const auto action = std::move(due.begin()->second);
            due.erase(due.begin());
            action();
        }
        time = end;
    }

    /// Runs what is due now.
    void settle() { advance(Nanoseconds{0}); }

    Nanoseconds now() const { return time; }

private:
    struct Timer final : RepeatingTimer {
        std::shared_ptr<bool> alive = std::make_shared<bool>(true);
        ~Timer() override { *alive = false; }
    };

    void schedule(Nanoseconds when, std::function<void()> action) {
        due.emplace(std::pair{when, nextPlace++}, std::move(action));
    }

    void repeat(Nanoseconds interval, const std::shared_ptr<bool>& alive,
                const std::function<void()>& action) {
        schedule(time + interval, [this, interval, alive, action] {
            if (!*alive) return;
            action();
            repeat(interval, alive, action);
        });
    }

    Nanoseconds time{0};
    std::uint64_t nextPlace = 0; // equal due times run in posting order
    std::map<std::pair<Nanoseconds, std::uint64_t>, std::function<void()>> due;
};

} // namespace quenthisar
