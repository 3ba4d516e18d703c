// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QObject>

namespace quenthisar {

/// Qt's event loop as the main queue. Created and destroyed on the main thread; what is still
/// queued at its destruction is never run.
class QtMainQueue final : public MainQueue {
public:
    void async(std::function<void()> action) override;
    void after(Seconds delay, std::function<void()> action) override;
    std::unique_ptr<RepeatingTimer> every(Seconds interval, std::function<void()> action) override;

private:
    QObject context;
};

} // namespace quenthisar
