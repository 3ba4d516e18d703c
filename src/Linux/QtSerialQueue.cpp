// SPDX-License-Identifier: MIT
#include "Linux/QtSerialQueue.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace quenthisar {

namespace {

/// In milliseconds, never shorter than asked.
int roundedUp(Seconds interval) {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    constexpr double longest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::ceil(Milliseconds{interval}.count()), 0.0, longest));
}

} // namespace

QtSerialQueue::QtSerialQueue() {
    worker.moveToThread(&thread);
    thread.start();
}

void QtSerialQueue::finish() {
    isEnding = true;
    end.release();
    thread.quit();
    thread.wait();
}

void QtSerialQueue::async(std::function<void()> action) {
    // The loop looks whether it is to end only after all that is posted.
    const auto unlessEnding = [this, action = std::move(action)] {
        if (!isEnding) action();
    };
    QMetaObject::invokeMethod(&worker, unlessEnding, Qt::QueuedConnection);
}

bool QtSerialQueue::sleepForTimeInterval(Seconds interval) {
    if (isEnding) return false;
    if (!end.tryAcquire(1, roundedUp(interval))) return true;
    end.release(); // for the sleeps that may follow
    return false;
}

} // namespace quenthisar
