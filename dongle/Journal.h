// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace quenthisar::dongle {

using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC

/// Any thread. Writes one line to standard output at once: the time in microseconds, who (an
/// address, "hci0" or "daemon"), the name in double quotes (escaped as in C) and what happened.
void journal(const QString& who, const QString& name, const QString& what,
             Clock::time_point time = Clock::now());

/// The part of such lines that tells who and name, for who has many of them.
using Origin = std::shared_ptr<const std::string>;
Origin journalOrigin(const QString& who, const QString& name);
/// The same for what happens often: `what` (UTF-8) is asked for when the line is written.
void journal(Origin origin, std::function<std::string()> what, Clock::time_point time);

/// Main thread. From now on lines wait to be written together, for at most `delay`. Their times
/// tell when they were due.
void delayJournal(std::chrono::milliseconds delay);
/// Writes what waits.
void flushJournal();

/// The line alone, for things that are no event.
void printLine(const QString& line);

} // namespace quenthisar::dongle
