// SPDX-License-Identifier: MIT
#pragma once

#include "HidDevice.h"
#include "XTestTarget.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <set>

namespace quenthisar::dongle {

/// How a payload came in: a write request, a write command, or the descriptor of AcquireWrite.
enum class Way { request, command, descriptor };

enum class ProbeFault { accept, refuse, silent, encrypt };
enum class ConnectFault { accept, refuse, silent, unresolved, noService, unannounced };
enum class AcquireFault { accept, refuse, missing };
/// Whether the service's objects appear before ServicesResolved or after it.
enum class ObjectOrder { before, after, mixed };

struct Faults {
    ProbeFault probe = ProbeFault::accept;
    ConnectFault connect = ConnectFault::accept;
    AcquireFault acquire = AcquireFault::accept;
    ObjectOrder objects = ObjectOrder::mixed;
    bool inRange = true;
    bool reading = true; // takes payloads from the descriptor
};

/// The thing itself, beyond the air: it outlives the daemon that talks to it. Main thread.
class Dongle {
public:
    /// `display` empty: there is no target.
    Dongle(QString address, QString name, const QString& display);

    QString address() const { return ownAddress; }

    /// Whether its target can be reached, where it has one.
    bool hasTarget() const { return target && target->isUsable(); }

    /// Writes a line with what happened to it.
    void report(const QString& what) const;

    void receive(Way way, const QByteArray& bytes);
    /// Releases everything, as the link is gone.
    void linkLost(const QString& reason);
    /// Releases everything and waits until the target has seen it.
    void shutDown();

    QString name; // empty: it advertises none
    Faults faults;
    // The daemon's storage: paths of adapters.
    std::set<QString> rememberedBy, pairedWith;
    bool linked = false; // to any adapter; then it doesn't advertise
    int connections = 0; // so far

private:
    QString ownAddress;
    std::unique_ptr<XTestTarget> target;
    std::unique_ptr<HidDevice> hid;
};

} // namespace quenthisar::dongle
