// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>

#include <functional>

namespace quenthisar {

/// Answers the daemon's questions about pairing: a device may pair if this program has just asked
/// it to, and nothing else is granted. It has neither keys nor a screen. Not the desktop's agent,
/// which keeps answering for everything else. Main thread.
class BluezAgent final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.bluez.Agent1")

public:
    using IsOurs = std::function<bool(const QDBusMessage&)>;
    using MayPair = std::function<bool(const QString& devicePath)>;

    /// Serves at `path` on `bus`. `isOurs` tells the daemon's calls from those of strangers.
    BluezAgent(QDBusConnection bus, const QString& path, IsOurs isOurs, MayPair mayPair);
    ~BluezAgent() override;
    /// Goes on there; without effect where it serves already.
    void serveOn(const QDBusConnection& next);

    Q_SLOT void Release() {}
    Q_SLOT void Cancel() {}
    Q_SLOT void RequestAuthorization(const QDBusObjectPath& device);
    Q_SLOT QString RequestPinCode(const QDBusObjectPath& device);
    Q_SLOT void DisplayPinCode(const QDBusObjectPath& device, const QString& pinCode);
    Q_SLOT uint RequestPasskey(const QDBusObjectPath& device);
    Q_SLOT void DisplayPasskey(const QDBusObjectPath& device, uint passkey, ushort entered);
    Q_SLOT void RequestConfirmation(const QDBusObjectPath& device, uint passkey);
    Q_SLOT void AuthorizeService(const QDBusObjectPath& device, const QString& uuid);

private:
    void reject();

    QDBusConnection bus;
    QString path;
    IsOurs isOurs;
    MayPair mayPair;
};

} // namespace quenthisar
