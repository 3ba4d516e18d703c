// SPDX-License-Identifier: MIT
#pragma once

#include "HidDevice.h"
#include "Journal.h"
#include "XTestTarget.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <span>

namespace quenthisar::dongle {

/// How a payload came in: a write request, a write command, or the descriptor of AcquireWrite.
enum class Way : std::uint8_t { request, command, descriptor };

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

/// The thing itself, beyond the air: it outlives the daemon that talks to it. Main thread, but for
/// the payloads of a descriptor.
class Dongle {
public:
    /// `display` empty: there is no target.
    Dongle(QString address, QString name, const QString& display);

    QString address() const { return ownAddress; }

    /// Whether its target can be reached, where it has one.
    bool hasTarget() const { return target && target->isUsable(); }

    /// Writes a line with what happened to it.
    void report(const QString& what) const;

    /// Any thread.
    void receive(Way way, std::span<const std::uint8_t> bytes);
    /// Releases everything, as the link is gone.
    void linkLost(const QString& reason);
    /// Releases everything and waits until the target has seen it.
    void shutDown();

    void rename(const QString& to);
    /// Empty: it advertises none. Changed by `rename` only.
    QString name;
    Faults faults;
    // The daemon's storage: paths of adapters.
    std::set<QString> rememberedBy, pairedWith;
    bool linked = false; // to any adapter; then it doesn't advertise
    int connections = 0; // so far

private:
    QString ownAddress;
    Origin origin; // of its lines
    std::unique_ptr<XTestTarget> target;
    std::unique_ptr<HidDevice> hid;
    std::mutex mutex; // payloads come on their reader's thread
};

} // namespace quenthisar::dongle
