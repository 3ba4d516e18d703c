// SPDX-License-Identifier: MIT
#include "Recorder.h"

#include <QElapsedTimer>
#include <QThread>

namespace quenthisar::demo {

Recorder::Recorder(const QString& program, const QStringList& arguments,
                   const ChildProcess::Environment& environment)
    : child(program, arguments, environment) {
    child.onLine([this](const QString& line) {
        lines += line;
        if (echo) echo(line);
    });
}

qsizetype Recorder::mark() {
    child.pendingLines();
    return lines.size();
}

Recorder::Lines Recorder::since(qsizetype mark) {
    child.pendingLines();
    return lines.mid(mark);
}

bool Recorder::waitFor(qsizetype mark, const Wanted& wanted, std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    for (;;) {
        if (wanted(since(mark))) return true;
        const auto left = limit - std::chrono::milliseconds{elapsed.elapsed()};
        if (left.count() <= 0 || !child.readLine(left)) return wanted(since(mark));
    }
}

bool Recorder::waitForLine(const QString& line, std::chrono::milliseconds limit) {
    return waitFor(
        0, [&](const Lines& all) { return all.contains(line); }, limit);
}

bool waitUntil(const std::function<bool()>& isSo, std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!isSo()) {
        if (elapsed.elapsed() >= limit.count()) return false;
        QThread::msleep(1);
    }
    return true;
}

bool retry(const std::function<bool()>& attempt, std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    do {
        if (attempt()) return true;
    } while (elapsed.elapsed() < limit.count());
    return false;
}

} // namespace quenthisar::demo
