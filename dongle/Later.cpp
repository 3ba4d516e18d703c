// SPDX-License-Identifier: MIT
#include "Later.h"

#include <QTimer>

#include <utility>

namespace quenthisar::dongle {

// QTimer::singleShot would do, but the analyzer takes what it allocates for a leak.
void later(std::chrono::milliseconds delay, QObject* context, std::function<void()> action) {
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    timer->callOnTimeout(context, [timer, run = std::move(action)] {
        timer->deleteLater();
        run();
    });
    timer->start(delay);
}

} // namespace quenthisar::dongle
