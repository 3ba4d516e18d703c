// SPDX-License-Identifier: MIT
#include "Control.h"

#include <QDBusError>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

template <class Fault>
using Word = std::pair<QStringView, Fault>;

constexpr auto probeWords = std::to_array<Word<ProbeFault>>({
    {u"accept", ProbeFault::accept},
    {u"refuse", ProbeFault::refuse},
    {u"silent", ProbeFault::silent},
    {u"encrypt", ProbeFault::encrypt},
});
constexpr auto connectWords = std::to_array<Word<ConnectFault>>({
    {u"accept", ConnectFault::accept},
    {u"refuse", ConnectFault::refuse},
    {u"silent", ConnectFault::silent},
    {u"unresolved", ConnectFault::unresolved},
    {u"no-service", ConnectFault::noService},
    {u"unannounced", ConnectFault::unannounced},
});
constexpr auto acquireWords = std::to_array<Word<AcquireFault>>({
    {u"accept", AcquireFault::accept},
    {u"refuse", AcquireFault::refuse},
    {u"missing", AcquireFault::missing},
});
constexpr auto objectWords = std::to_array<Word<ObjectOrder>>({
    {u"before", ObjectOrder::before},
    {u"after", ObjectOrder::after},
    {u"mixed", ObjectOrder::mixed},
});

} // namespace

Control::Control(Daemon& theDaemon, const Dongles& theDongles, std::function<void()> busLost)
    : daemon(theDaemon), dongles(theDongles), onBusLost(std::move(busLost)),
      bus(QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"control"_s)) {}

bool Control::serve() {
    return bus.isConnected() &&
           bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                       u"Disconnected"_s, this, SLOT(busDisconnected())) &&
           bus.registerObject(u"/"_s, this, QDBusConnection::ExportScriptableInvokables) &&
           bus.registerService(u"org.quenthisar.VirtualDongle"_s);
}

void Control::busDisconnected() {
    onBusLost();
}

void Control::refuse(const QString& text) {
    sendErrorReply(QDBusError::InvalidArgs, text);
}

Dongle* Control::find(const QString& address) {
    const auto it = std::ranges::find_if(dongles, [&](const auto& dongle) {
        return address.isEmpty() || dongle->address() == address;
    });
    if (it != dongles.end()) return it->get();
    refuse(u"No dongle "_s + address);
    return nullptr;
}

bool Control::isAdapter(const QString& name) {
    static const QRegularExpression hci{u"^hci[0-9]$"_s};
    const bool isOne = hci.match(name).hasMatch();
    if (!isOne) refuse(u"No adapter's name: "_s + name);
    return isOne;
}

void Control::changed(const Dongle& dongle) {
    for (auto* adapter : daemon.adapters()) adapter->dongleChanged(dongle);
}

template <class Fault, class Table>
void Control::setFault(const QString& address, const QString& word, Fault Faults::*fault,
                       const Table& table) {
    auto* dongle = find(address);
    if (dongle == nullptr) return;
    const auto row = std::ranges::find_if(table, [&](const auto& r) { return word == r.first; });
    if (row == table.end())
        refuse(u"No such mode: "_s + word);
    else
        dongle->faults.*fault = row->second;
}

void Control::Drop(const QString& address) {
    const auto* dongle = find(address);
    auto* device = dongle != nullptr ? daemon.deviceOf(*dongle) : nullptr;
    if (device == nullptr) return;
    device->loseLink(u"lost"_s);
    changed(*dongle);
}

void Control::SetInRange(const QString& address, bool inRange) {
    if (auto* dongle = find(address)) {
        dongle->faults.inRange = inRange;
        changed(*dongle);
    }
}

void Control::SetName(const QString& address, const QString& name) {
    if (auto* dongle = find(address)) {
        dongle->rename(name);
        changed(*dongle);
    }
}

void Control::SetProbe(const QString& address, const QString& mode) {
    setFault(address, mode, &Faults::probe, probeWords);
}

void Control::SetConnect(const QString& address, const QString& mode) {
    setFault(address, mode, &Faults::connect, connectWords);
}

void Control::SetAcquire(const QString& address, const QString& mode) {
    setFault(address, mode, &Faults::acquire, acquireWords);
}

void Control::SetObjects(const QString& address, const QString& mode) {
    setFault(address, mode, &Faults::objects, objectWords);
}

void Control::SetReading(const QString& address, bool reading) {
    auto* dongle = find(address);
    if (dongle == nullptr) return;
    dongle->faults.reading = reading;
    if (auto* device = daemon.deviceOf(*dongle)) device->setReading(reading);
}

void Control::CloseDescriptor(const QString& address) {
    const auto* dongle = find(address);
    auto* device = dongle != nullptr ? daemon.deviceOf(*dongle) : nullptr;
    if (device != nullptr) device->closeDescriptor();
}

void Control::SetPowered(const QString& adapter, bool on) {
    if (isAdapter(adapter)) daemon.setPowered(adapter, on);
}

void Control::SetAdapter(const QString& adapter, bool present) {
    if (isAdapter(adapter)) daemon.setAdapter(adapter, present);
}

void Control::SetBlocked(const QString& adapter, bool blocked) {
    if (isAdapter(adapter)) daemon.setBlocked(adapter, blocked);
}

void Control::SetAccess(bool granted) {
    daemon.setAccess(granted);
}

void Control::StopDaemon() {
    daemon.stop();
}

void Control::KillDaemon() {
    daemon.kill();
}

void Control::StartDaemon() {
    if (!daemon.start()) refuse(u"The name org.bluez is taken"_s);
}

} // namespace quenthisar::dongle
