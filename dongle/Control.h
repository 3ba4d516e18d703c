// SPDX-License-Identifier: MIT
#pragma once

#include "Daemon.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

#include <functional>

namespace quenthisar::dongle {

/// Faults on demand: org.quenthisar.VirtualDongle1 at "/" of the bus name
/// org.quenthisar.VirtualDongle, which stays when org.bluez goes. `dongle` is an address, or empty
/// for the first one; an unknown one and an unknown word are answered with an error. A fault holds
/// until it is set again.
class Control final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quenthisar.VirtualDongle1")

public:
    Control(Daemon& daemon, const Dongles& dongles, std::function<void()> busLost);

    /// False if the bus or the name isn't to be had.
    bool serve();

    /// The link is lost, now.
    Q_SCRIPTABLE Q_INVOKABLE void Drop(const QString& dongle);
    /// Out of range it loses its link, isn't seen, and attempts fail after a time.
    Q_SCRIPTABLE Q_INVOKABLE void SetInRange(const QString& dongle, bool inRange);
    Q_SCRIPTABLE Q_INVOKABLE void SetName(const QString& dongle, const QString& name);
    /// How the probe is answered: "accept", "refuse", "silent" (the link is lost after 30 s),
    /// "encrypt" (asks to be paired first).
    Q_SCRIPTABLE Q_INVOKABLE void SetProbe(const QString& dongle, const QString& mode);
    /// How Connect goes: "accept", "refuse", "silent" (never answered), "unresolved" (connected,
    /// but ServicesResolved stays false), "no-service",
    /// "unannounced" (Connected is never signalled as true).
    Q_SCRIPTABLE Q_INVOKABLE void SetConnect(const QString& dongle, const QString& mode);
    /// AcquireWrite: "accept", "refuse", "missing" (an unknown method).
    Q_SCRIPTABLE Q_INVOKABLE void SetAcquire(const QString& dongle, const QString& mode);
    /// The service's objects against ServicesResolved: "before", "after", "mixed".
    Q_SCRIPTABLE Q_INVOKABLE void SetObjects(const QString& dongle, const QString& mode);
    /// Whether the descriptor of AcquireWrite is read.
    Q_SCRIPTABLE Q_INVOKABLE void SetReading(const QString& dongle, bool reading);
    /// The daemon closes the descriptor, though the link lives.
    Q_SCRIPTABLE Q_INVOKABLE void CloseDescriptor(const QString& dongle);

    /// `adapter` such as "hci0", which is meant where none is named.
    Q_SCRIPTABLE Q_INVOKABLE void SetPowered(const QString& adapter, bool on);
    Q_SCRIPTABLE Q_INVOKABLE void SetPowered(bool on) { SetPowered(firstAdapter, on); }
    /// Plugs the adapter in or pulls it out. Any number of them sees the same dongles.
    Q_SCRIPTABLE Q_INVOKABLE void SetAdapter(const QString& adapter, bool present);
    Q_SCRIPTABLE Q_INVOKABLE void SetAdapter(bool present) { SetAdapter(firstAdapter, present); }
    /// Whether rfkill keeps it off; then nobody can switch it on.
    Q_SCRIPTABLE Q_INVOKABLE void SetBlocked(const QString& adapter, bool blocked);
    /// Whether calls to the daemon are allowed, or answered as access denied.
    Q_SCRIPTABLE Q_INVOKABLE void SetAccess(bool granted);
    /// The daemon ends: it removes its objects first, or it is killed and says nothing.
    Q_SCRIPTABLE Q_INVOKABLE void StopDaemon();
    Q_SCRIPTABLE Q_INVOKABLE void KillDaemon();
    Q_SCRIPTABLE Q_INVOKABLE void StartDaemon();

private:
    Q_SLOT void busDisconnected();

    Dongle* find(const QString& address);
    bool isAdapter(const QString& name);
    void changed(const Dongle& dongle);
    void refuse(const QString& text);
    template <class Fault, class Table>
    void setFault(const QString& address, const QString& word, Fault Faults::*fault,
                  const Table& table);

    const QString firstAdapter = QStringLiteral("hci0");
    Daemon& daemon;
    const Dongles& dongles;
    std::function<void()> onBusLost;
    QDBusConnection bus;
};

} // namespace quenthisar::dongle
