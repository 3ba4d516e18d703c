// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>
#include <QString>

#include <functional>

namespace quenthisar::bench {

/// A bench as a command of its own.
struct Command {
    const char* name;
    QString description;
    QList<QCommandLineOption> options;
    /// Gets the exit code; may throw std::exception, whose text is shown.
    std::function<int(const QCommandLineParser&)> run;
};

/// What `main` returns. Every bench has the options --help and --programs, the folder of the
/// programs, and ends all that it started when interrupted.
int runCommand(int argc, char** argv, const Command& command);

} // namespace quenthisar::bench
