// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BusPeer.h"

#include <QVariantMap>

namespace quenthisar {

/// What follows the session manager. Main thread.
class LogindFollower {
public:
    /// Also after each reading, changed or not.
    virtual void lockedHintRead(bool isLocked) = 0;
    /// True before the machine sleeps, false after it woke up.
    virtual void sleepRead(bool isNear) = 0;
    virtual void lockDemanded() = 0;
    virtual void unlockDemanded() = 0;
    /// Nothing is known any more; if the manager comes back, all is read anew.
    virtual void logindGone() = 0;

protected:
    ~LogindFollower() = default;
};

/// This user's graphical session as the session manager (logind) knows it. Main thread.
class LogindSession final : public QObject {
    Q_OBJECT

public:
    LogindSession(const Bus& bus, LogindFollower& follower);

private:
    /// Where the session is looked for, in this order.
    enum class Source {
        process,
        environment, // XDG_SESSION_ID
        user,        // a service of the user's has no session of its own
        leftOver,    // what was found first and is not graphical
    };

    Q_SLOT void propertiesChanged(const QDBusMessage& signal);
    Q_SLOT void lock(const QDBusMessage& signal);
    Q_SLOT void unlock(const QDBusMessage& signal);
    Q_SLOT void prepareForSleep(const QDBusMessage& signal);
    Q_SLOT void sessionAdded(const QDBusMessage& signal);
    Q_SLOT void sessionRemoved(const QDBusMessage& signal);

    void ownerChanged();
    void find(Source source);
    void ask(const QString& method, const QVariantList& arguments, Source next);
    void consider(const QString& path, Source next);
    void take(const QString& path, const QVariantMap& properties);
    bool isOurs(const QDBusMessage& signal) const;

    LogindFollower& follower;
    QString session;  // its object path; empty while it is unknown
    QString leftOver; // see Source
    BusPeer logind;
};

} // namespace quenthisar
