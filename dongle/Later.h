// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <chrono>
#include <functional>

namespace quenthisar::dongle {

/// Runs `action` once on the main loop after `delay`, unless `context` is gone by then.
void later(std::chrono::milliseconds delay, QObject* context, std::function<void()> action);

} // namespace quenthisar::dongle
