// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

namespace quenthisar::dongle {

using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC

/// Writes one line to standard output at once: the time in microseconds, who (an address, "hci0" or
/// "daemon"), the name in double quotes (escaped as in C) and what happened.
void journal(const QString& who, const QString& name, const QString& what,
             Clock::time_point time = Clock::now());

/// The line alone, for things that are no event.
void printLine(const QString& line);

} // namespace quenthisar::dongle
