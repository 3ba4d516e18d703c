// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QThread>

#include <memory>

namespace quenthisar::demo {

/// A session manager (logind) on a bus, with the sessions that it is told of. It serves from a
/// thread of its own until destroyed, so that whoever uses it may wait without a loop. Each change
/// is on the bus when its function returns.
class FakeLogind {
public:
    /// What the manager answers to those who look for their session.
    struct Options {
        bool lockedHint = false;
        bool preparesForSleep = false;
        /// Of the asking process; empty where it belongs to no session, as a user's service.
        QString processSession = QStringLiteral("1");
        QString processSessionType = QStringLiteral("x11");
        /// The user's graphical session; empty where there is none.
        QString displaySession = QStringLiteral("1");
    };

    /// Throws std::runtime_error if the name cannot be had.
    explicit FakeLogind(const QString& busAddress);
    FakeLogind(const QString& busAddress, Options options);
    ~FakeLogind();
    FakeLogind(const FakeLogind&) = delete;
    FakeLogind& operator=(const FakeLogind&) = delete;

    /// Of `session`, or else of all.
    void setLockedHint(bool isLocked);
    void setLockedHint(bool isLocked, const QString& session);
    void emitLock(const QString& session = QStringLiteral("1"));
    void emitUnlock(const QString& session = QStringLiteral("1"));
    void emitPrepareForSleep(bool isNear);

private:
    class Server;

    /// Runs `action` on the server, there.
    template <class Action>
    void serve(Action action);

    QThread thread;
    std::unique_ptr<Server> server;
};

} // namespace quenthisar::demo
