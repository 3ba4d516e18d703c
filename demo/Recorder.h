// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"

namespace quenthisar::demo {

/// A program, and every line that it has written so far.
class Recorder {
public:
    using Lines = QStringList;
    using Wanted = std::function<bool(const Lines&)>;

    explicit Recorder(const QString& program, const QStringList& arguments = {},
                      const ChildProcess::Environment& environment = {});

    ChildProcess& process() { return child; }
    /// Called with each line as it is read.
    void onLine(ChildProcess::LineHandler handler) { echo = std::move(handler); }

    /// How many lines there are by now; later lines start here.
    qsizetype mark();
    /// The lines from a mark on.
    Lines since(qsizetype mark);
    /// Waits until the lines from a mark on are as wanted; false after `limit` or at their end.
    bool waitFor(qsizetype mark, const Wanted& wanted, std::chrono::milliseconds limit);
    /// Waits for this very line, whenever it was written.
    bool waitForLine(const QString& line, std::chrono::milliseconds limit);

private:
    ChildProcess child;
    Lines lines;
    ChildProcess::LineHandler echo;
};

/// Tries until it is so; false after `limit`. For what no program tells of: the state of a server.
bool waitUntil(const std::function<bool()>& isSo, std::chrono::milliseconds limit);
/// Calls `attempt`, which waits by itself, until it succeeds; false after `limit`.
bool retry(const std::function<bool()>& attempt, std::chrono::milliseconds limit);

} // namespace quenthisar::demo
