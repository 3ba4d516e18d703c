// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"

#include <QSize>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <optional>

namespace quenthisar::demo {

/// An X server of our own without a screen that anybody sees (Xvfb, if nothing else is asked for).
/// It serves until destroyed.
class XServer {
public:
    /// `size` in pixels, such as "1280x800". Throws std::runtime_error if it does not start. Given
    /// a folder, it keeps its frame buffer there as a file (see FrameBuffer).
    explicit XServer(const QString& size = QStringLiteral("1280x800"),
                     const QString& frameBufferFolder = {});
    /// Another program that serves X; it writes its number to its standard output.
    XServer(const QString& program, const QStringList& arguments);

    /// What DISPLAY must be for its clients.
    QString display() const { return displayName; }
    pid_t pid() const { return process.pid(); }
    void kill() { process.signal(9); }

private:
    QTemporaryFile errors;
    ChildProcess process;
    QString displayName;
};

/// An X server in a window of the display of DISPLAY (Xephyr). It serves until destroyed, or until
/// somebody closes the window.
class NestedXServer {
public:
    /// Throws std::runtime_error if it does not start.
    NestedXServer(QSize size, const QString& title);

    QString display() const { return displayName; }
    bool isRunning() { return process.isRunning(); }

private:
    QTemporaryFile errors;
    ChildProcess process;
    QString displayName;
};

/// A D-Bus bus of our own. It serves until destroyed.
class PrivateBus {
public:
    /// Throws std::runtime_error if it does not start, here and below.
    PrivateBus() { start(); }

    void end() { process.reset(); }
    /// After its end, at the same address.
    void start();

    /// What DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS must be for its clients.
    QString address() const { return busAddress; }

private:
    QTemporaryDir folder; // of its socket
    QTemporaryFile errors;
    std::optional<ChildProcess> process;
    QString busAddress;
};

} // namespace quenthisar::demo
