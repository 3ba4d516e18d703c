// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>
#include <functional>

namespace quenthisar::test {

/// Runs the event loop until `done` holds; false if it does not in time.
inline bool runUntil(const std::function<bool()>& done,
                     std::chrono::milliseconds limit = std::chrono::seconds(15)) {
    const QDeadlineTimer deadline(limit);
    QTimer wakeUp;
    wakeUp.start(10);
    while (!done()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace quenthisar::test
