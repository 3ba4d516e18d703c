// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QObject>

#include <memory>

namespace quenthisar {

/// Qt's event loop as the main queue. Created and destroyed on the main thread; what is still
/// queued at its destruction is never run.
class QtMainQueue final : public MainQueue {
public:
    void async(std::function<void()> action) override;
    void after(Seconds delay, std::function<void()> action) override;
    std::unique_ptr<RepeatingTimer> every(Seconds interval, std::function<void()> action) override;

    /// What is queued or comes later is never run.
    void finish() { context.reset(); }

private:
    std::unique_ptr<QObject> context = std::make_unique<QObject>(); // none: finished
};

} // namespace quenthisar
