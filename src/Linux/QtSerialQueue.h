// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SerialQueue.h"

#include <QObject>
#include <QSemaphore>
#include <QThread>

#include <atomic>

namespace quenthisar {

/// A thread with an event loop as a serial queue. Created and destroyed on the main thread; needs
/// an application object.
class QtSerialQueue final : public SerialQueue {
public:
    QtSerialQueue();
    QtSerialQueue(const QtSerialQueue&) = delete;
    QtSerialQueue& operator=(const QtSerialQueue&) = delete;
    ~QtSerialQueue() override { finish(); }

    void async(std::function<void()> action) override;
    bool sleepForTimeInterval(Seconds interval) override;

    /// Interrupts a sleep, waits for the action under way and drops those that wait; from then on
    /// nothing runs. Main thread.
    void finish();

private:
    std::atomic<bool> isEnding = false;
    QSemaphore end; // has a token once `finish` has begun
    QThread thread;
    QObject worker; // lives on the thread; goes before it
};

} // namespace quenthisar
