// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace quenthisar::demo {

/// A program that runs beside this one and dies with it. Its standard error is this one's.
class ChildProcess {
public:
    using Environment = std::vector<std::pair<QString, QString>>;
    using LineHandler = std::function<void(const QString&)>;

    /// `environment` adds to this process's own. Its standard error goes to `errorFile`, where
    /// given.
    explicit ChildProcess(const QString& program, const QStringList& arguments = {},
                          const Environment& environment = {}, const QString& errorFile = {});
    /// Asks it to end (SIGTERM), waits up to 5 s, then kills it.
    ~ChildProcess();

    /// Called with each line of its standard output as it is read, before `readLine` returns it.
    void onLine(LineHandler handler) { lineHandler = std::move(handler); }

    /// The next line of its standard output, or none at the end of it or after `limit`.
    std::optional<QString> readLine(std::chrono::milliseconds limit);
    /// Reads up to and including the first line for which `wanted` is true.
    std::optional<QString> readLineUntil(const std::function<bool(const QString&)>& wanted,
                                         std::chrono::milliseconds limit);
    /// What it has written and nobody has read; doesn't wait.
    QStringList pendingLines();

    bool isRunning();
    pid_t pid() const { return static_cast<pid_t>(process.processId()); }
    void signal(int number) const;
    /// The exit code; -1 if a signal ended it; none if it still runs after `limit`.
    std::optional<int> waitForEnd(std::chrono::milliseconds limit);

private:
    QString takeLine();

    QProcess process;
    LineHandler lineHandler;
};

} // namespace quenthisar::demo
