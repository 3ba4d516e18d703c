// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

namespace quenthisar::demo {

/// What people read on the terminal while a takeover plays.
class Narrator {
public:
    void say(const QString& text) const;
    /// A heading for what comes.
    void begin(const QString& step) const;
    /// A line of the virtual dongle, with the time since the first one. What is no report is left
    /// out.
    void report(const QString& dongleLine);
    /// One line of the verdict.
    void finding(bool isGood, const QString& what, const QString& value) const;

private:
    std::chrono::microseconds first{};
};

} // namespace quenthisar::demo
