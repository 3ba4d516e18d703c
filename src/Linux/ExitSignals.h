// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace quenthisar {

/// Turns the signals that ask the program to end (SIGTERM, SIGINT, SIGHUP) into a call on the main
/// loop. One per process; main thread. Where the system refuses, the signals keep their default.
class ExitSignals {
public:
    explicit ExitSignals(std::function<void()> action);
    ExitSignals(const ExitSignals&) = delete;
    ExitSignals& operator=(const ExitSignals&) = delete;
    ~ExitSignals();

private:
    int descriptor = -1;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace quenthisar
