// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include <QElapsedTimer>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace quenthisar::demo {

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const Environment& environment, const QString& errorFile) {
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : environment) variables.insert(name, value);
    process.setProcessEnvironment(variables);
    if (errorFile.isEmpty())
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    else
        process.setStandardErrorFile(errorFile, QIODevice::Append);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::setpgid(0, 0); // Ctrl+C is for the parent, which ends its children in order
    });
    process.start(program, arguments, QIODevice::ReadOnly);
    process.waitForStarted();
}

ChildProcess::~ChildProcess() {
    if (!isRunning()) return;
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
    }
}

QString ChildProcess::takeLine() {
    auto line = QString::fromUtf8(process.readLine());
    if (line.endsWith(u'\n')) line.chop(1);
    if (lineHandler) lineHandler(line);
    return line;
}

std::optional<QString> ChildProcess::readLine(std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!process.canReadLine()) {
        const auto left = limit.count() - elapsed.elapsed();
        if (left <= 0 || process.state() == QProcess::NotRunning) return std::nullopt;
        process.waitForReadyRead(static_cast<int>(left));
    }
    return takeLine();
}

std::optional<QString>
ChildProcess::readLineUntil(const std::function<bool(const QString&)>& wanted,
                            std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    for (;;) {
        auto line = readLine(limit - std::chrono::milliseconds{elapsed.elapsed()});
        if (!line || wanted(*line)) return line;
    }
}

QStringList ChildProcess::pendingLines() {
    process.waitForReadyRead(0);
    QStringList lines;
    while (process.canReadLine()) lines += takeLine();
    return lines;
}

bool ChildProcess::isRunning() {
    process.waitForFinished(0);
    return process.state() != QProcess::NotRunning;
}

void ChildProcess::signal(int number) const {
    if (pid() > 0) ::kill(pid(), number);
}

std::optional<int> ChildProcess::waitForEnd(std::chrono::milliseconds limit) {
    if (process.state() != QProcess::NotRunning)
        process.waitForFinished(static_cast<int>(limit.count()));
    if (process.state() != QProcess::NotRunning) return std::nullopt;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace quenthisar::demo
