// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEvent>

namespace quenthisar::fuzz {

/// Runs what was queued for the main thread, but no timers.
inline void runQueued() {
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace quenthisar::fuzz
