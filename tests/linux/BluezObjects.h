// SPDX-License-Identifier: MIT
#pragma once

#include "dongle/ObjectTree.h"
#include "linux/BluezStage.h"

#include <QDBusArgument>
#include <gtest/gtest.h>

#include <set>

namespace quenthisar {

inline const auto hci = u"/org/bluez/hci0"_s;
inline const auto adapterInterface = u"org.bluez.Adapter1"_s;
inline const auto deviceInterface = u"org.bluez.Device1"_s;
inline const auto ourService = u"f1e00000-64f2-4b5d-9c51-3e2a5d0d8b10"_s;
inline const auto ourCharacteristic = u"f1e00001-64f2-4b5d-9c51-3e2a5d0d8b10"_s;

/// A daemon whose objects a test lays out one by one. It agrees to every call but to those that the
/// test wants refused or unanswered.
class Objects {
public:
    explicit Objects(BluezStage& stage) : bus(stage.connect()), tree(bus) {
        tree.onCall([this](const QDBusMessage& call) { return answer(call); });
        bus.registerVirtualObject(u"/"_s, &tree, QDBusConnection::SubPath);
    }

    void appear() { bus.registerService(u"org.bluez"_s); }
    void addAdapter(const QString& path, bool powered) {
        tree.add(path, {{adapterInterface, {{u"Powered"_s, powered}}}});
    }
    bool waitForCall(const QString& call) const {
        return waitUntil([&] { return calls.contains(call); });
    }
    /// The n-th device of an adapter without a name, which offers our service; `more` adds to it.
    QString addDevice(int number, const QVariantMap& more, const QString& adapter = hci) {
        const auto address = u"C0:00:00:00:00:%1"_s.arg(number, 2, 16, QChar(u'0'));
        auto path = adapter + u"/dev_"_s + QString(address).replace(u':', u'_');
        QVariantMap device{{u"Address"_s, address},
                           {u"Alias"_s, QString(address).replace(u':', u'-')},
                           {u"UUIDs"_s, QStringList{ourService.toUpper()}},
                           {u"Adapter"_s, QVariant::fromValue(QDBusObjectPath(adapter))}};
        device.insert(more);
        tree.add(path, {{deviceInterface, device}});
        return path;
    }
    /// Our service with its characteristic.
    void addService(const QString& device) {
        const auto service = device + u"/service0001"_s;
        tree.add(service, {{u"org.bluez.GattService1"_s,
                            {{u"UUID"_s, ourService},
                             {u"Device"_s, QVariant::fromValue(QDBusObjectPath(device))}}}});
        tree.add(service + u"/char0002"_s,
                 {{u"org.bluez.GattCharacteristic1"_s,
                   {{u"UUID"_s, ourCharacteristic},
                    {u"Service"_s, QVariant::fromValue(QDBusObjectPath(service))}}}});
    }

    QDBusConnection bus;
    dongle::ObjectTree tree;
    QStringList calls;
    QVariantMap filter; // of the last SetDiscoveryFilter
    std::set<QString> unanswered, refused;
    QString refusal = u"org.bluez.Error.Failed"_s;
    Lines written; // by WriteValue, not refused

private:
    bool answer(const QDBusMessage& call) {
        calls += call.path() + u' ' + call.member();
        if (unanswered.contains(call.member())) return true;
        if (refused.contains(call.member())) {
            tree.fail(call, refusal, u"no"_s);
            return true;
        }
        if (call.member() == u"SetDiscoveryFilter")
            filter = qdbus_cast<QVariantMap>(call.arguments().value(0));
        if (call.member() == u"WriteValue")
            written.push_back(call.arguments().value(0).toByteArray().toHex().toStdString());
        if (call.member() == u"StartDiscovery")
            tree.set(call.path(), adapterInterface, u"Discovering"_s, true);
        tree.reply(call);
        return true;
    }
};

inline QVariantMap onAir(const QString& name) {
    return {{u"Name"_s, name}, {u"RSSI"_s, QVariant::fromValue(short{-50})}};
}

/// A link that the daemon has held since before.
inline QVariantMap linked(const QString& name) {
    auto device = onAir(name);
    device.insert({{u"Connected"_s, true}, {u"ServicesResolved"_s, true}});
    return device;
}

/// With a bus of its own, to which a daemon and its user can come.
class LaidOutDaemon : public testing::Test {
protected:
    /// A dongle that is linked and has its service.
    QString addLinkedDongle() {
        daemon.addAdapter(hci, true);
        auto device = daemon.addDevice(1, linked(u"dongle"_s));
        daemon.addService(device);
        daemon.appear();
        return device;
    }

    BluezStage stage{BluezStage::Daemon::none};
    Objects daemon{stage};
};

} // namespace quenthisar
