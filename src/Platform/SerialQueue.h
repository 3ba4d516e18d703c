// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <functional>

namespace quenthisar {

/// A queue that runs its actions one after another on a thread of its own.
class SerialQueue {
public:
    virtual ~SerialQueue() = default;

    /// Runs `action` once on the queue's thread, never inside this call. Callable from any thread.
    virtual void async(std::function<void()> action) = 0;

    /// Suspends the queue's thread, for an action that runs there. False when the queue is about to
    /// go: the action is to end at once.
    virtual bool sleepForTimeInterval(Seconds interval) = 0;
};

} // namespace quenthisar
