// SPDX-License-Identifier: MIT
#include "Linux/QtMainQueue.h"

#include <QTimer>

namespace quenthisar {

namespace {

std::chrono::milliseconds roundedUp(Seconds delay) {
    return std::chrono::ceil<std::chrono::milliseconds>(delay);
}

class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(Seconds interval, std::function<void()> action) {
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, &timer, std::move(action));
        timer.start(roundedUp(interval));
    }

private:
    QTimer timer;
};

} // namespace

void QtMainQueue::async(std::function<void()> action) {
    if (context) QMetaObject::invokeMethod(context.get(), std::move(action), Qt::QueuedConnection);
}

void QtMainQueue::after(Seconds delay, std::function<void()> action) {
    if (context)
        QTimer::singleShot(roundedUp(delay), Qt::PreciseTimer, context.get(), std::move(action));
}

std::unique_ptr<RepeatingTimer> QtMainQueue::every(Seconds interval, std::function<void()> action) {
    return std::make_unique<QtRepeatingTimer>(interval, std::move(action));
}

} // namespace quenthisar
