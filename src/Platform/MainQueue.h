// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quenthisar {

using Seconds = std::chrono::duration<double>;

/// Stops its repetition when it is destroyed. Main thread.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// The main run loop's queue. The core's only source of delayed work.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `action` once on the main thread, never inside this call. Callable from any thread.
    virtual void async(std::function<void()> action) = 0;

    /// The same after `delay`; equal due times run in posting order. No cancelling: bind weakly.
    /// Main thread.
    virtual void after(Seconds delay, std::function<void()> action) = 0;

    /// Runs `action` every `interval`, the first time one interval from now, as long as the timer
    /// lives. Main thread.
    virtual std::unique_ptr<RepeatingTimer> every(Seconds interval,
                                                  std::function<void()> action) = 0;
};

} // namespace quenthisar
