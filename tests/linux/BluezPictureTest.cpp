// SPDX-License-Identifier: MIT
#include "dongle/ObjectTree.h"
#include "linux/BluezStage.h"

#include <QDBusPendingCall>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using Lines = std::vector<std::string>;

const auto adapterInterface = u"org.bluez.Adapter1"_s;
const auto deviceInterface = u"org.bluez.Device1"_s;
const auto ourService = u"f1e00000-64f2-4b5d-9c51-3e2a5d0d8b10"_s;

/// A daemon whose objects a test lays out one by one. It agrees to every call.
class Objects {
public:
    explicit Objects(BluezStage& stage) : bus(stage.connect()), tree(bus) {
        tree.onCall([this](const QDBusMessage& call) {
            calls += call.path() + u' ' + call.member();
            if (call.member() == u"StartDiscovery")
                tree.set(call.path(), adapterInterface, u"Discovering"_s, true);
            tree.reply(call);
            return true;
        });
        bus.registerVirtualObject(u"/"_s, &tree, QDBusConnection::SubPath);
    }

    void appear() { bus.registerService(u"org.bluez"_s); }
    void addAdapter(const QString& path, bool powered) {
        tree.add(path, {{adapterInterface, {{u"Powered"_s, powered}}}});
    }
    bool waitForCall(const QString& call) const {
        return waitUntil([&] { return calls.contains(call); });
    }
    void setPowered(const QString& path, bool on) {
        tree.set(path, adapterInterface, u"Powered"_s, on);
    }
    /// `more` adds to a device without a name that offers our service.
    QString addDevice(const QString& adapter, const QString& address, const QVariantMap& more) {
        auto path = adapter + u"/dev_"_s + QString(address).replace(u':', u'_');
        QVariantMap device{{u"Address"_s, address},
                           {u"Alias"_s, QString(address).replace(u':', u'-')},
                           {u"UUIDs"_s, QStringList{ourService.toUpper()}},
                           {u"Adapter"_s, QVariant::fromValue(QDBusObjectPath(adapter))}};
        device.insert(more);
        tree.add(path, {{deviceInterface, device}});
        return path;
    }

    QDBusConnection bus;
    dongle::ObjectTree tree;
    QStringList calls;
};

QVariantMap onAir(const QString& name) {
    return {{u"Name"_s, name}, {u"RSSI"_s, QVariant::fromValue(short{-50})}};
}

TEST(BluezPicture, DiscoversWhatIsOnTheAirOrHeldAndNothingElse) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    auto stranger = onAir(u"stranger"_s);
    stranger[u"UUIDs"_s] = QStringList{u"0000180f-0000-1000-8000-00805f9b34fb"_s};
    daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, onAir(u"near"_s));
    daemon.addDevice(hci, u"C0:00:00:00:00:02"_s, stranger);
    const auto bonded =
        daemon.addDevice(hci, u"C0:00:00:00:00:03"_s, {{u"Name"_s, u"out of range"_s}});
    daemon.addDevice(hci, u"C0:00:00:00:00:04"_s,
                     {{u"Alias"_s, u"held"_s}, {u"Connected"_s, true}});
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("discovered held"));
    ASSERT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
    daemon.addDevice(hci, u"C0:00:00:00:00:05"_s, {});
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    EXPECT_EQ(user.log, (Lines{"state unknown", "state on", "discovered near", "discovered held",
                               "discovered (nameless)"}));

    daemon.tree.set(bonded, deviceInterface, u"RSSI"_s, QVariant::fromValue(short{-90}));
    EXPECT_TRUE(user.waitFor("discovered out of range"));
}

TEST(BluezPicture, DoesNotDiscoverWhatAStartingDaemonRemembers) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unsupported"));
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, {{u"Name"_s, u"remembered"_s}});
    ASSERT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
    daemon.addDevice(hci, u"C0:00:00:00:00:02"_s, {});
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    EXPECT_EQ(user.count("discovered remembered"), 0);
}

TEST(BluezPicture, LetsAnotherPoweredAdapterTakeThePlaceOfTheFirst) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    const auto blocked = u"/org/bluez/hci0"_s, first = u"/org/bluez/hci1"_s,
               second = u"/org/bluez/hci2"_s;
    daemon.addAdapter(blocked, false);
    daemon.addAdapter(first, true);
    daemon.addAdapter(second, true);
    QVariantMap ready = onAir(u"dongle"_s);
    ready.insert({{u"Connected"_s, true}, {u"ServicesResolved"_s, true}});
    daemon.addDevice(first, u"C0:00:00:00:00:01"_s, ready);
    daemon.addDevice(second, u"C0:00:00:00:00:01"_s, onAir(u"dongle"_s));
    daemon.addDevice(second, u"C0:00:00:00:00:02"_s, onAir(u"other"_s));
    daemon.appear();
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("connected"));
    EXPECT_EQ(user.count("discovered other"), 0);

    // The first in order, but one is in use.
    daemon.setPowered(blocked, true);
    daemon.addDevice(first, u"C0:00:00:00:00:03"_s, onAir(u"third"_s));
    ASSERT_TRUE(user.waitFor("discovered third"));
    EXPECT_EQ(user.count("disconnected error"), 0);
    daemon.setPowered(first, false);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    ASSERT_TRUE(daemon.waitForCall(blocked + u" StartDiscovery"_s));
    daemon.tree.remove(blocked);
    ASSERT_TRUE(user.waitFor("discovered other"));
    EXPECT_TRUE(daemon.waitForCall(second + u" StartDiscovery"_s));
    EXPECT_EQ(user.central.state(), CentralState::poweredOn);
    EXPECT_EQ(user.count("state on"), 1);
}

TEST(BluezPicture, IgnoresSignalsOfAnyoneButTheDaemon) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage), impostor(stage);
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state on"));
    impostor.addDevice(hci, u"C0:00:00:00:00:09"_s, onAir(u"impostor"_s));
    // A call that the bus delivers after that signal.
    auto ping = impostor.bus.asyncCall(QDBusMessage::createMethodCall(
        daemon.bus.baseService(), u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s,
        u"GetManagedObjects"_s));
    ASSERT_TRUE(waitUntil([&] { return ping.isFinished(); }));
    daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, onAir(u"dongle"_s));
    ASSERT_TRUE(user.waitFor("discovered dongle"));
    EXPECT_EQ(user.count("discovered impostor"), 0);
}

TEST(BluezPicture, RejectsAPairingWithoutAProbe) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    auto held = onAir(u"held"_s);
    held.insert({{u"Connected"_s, true}, {u"ServicesResolved"_s, true}});
    const auto device = daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, held);
    daemon.appear();
    const auto bus = stage.connect();
    CentralUser user(bus);
    user.connect();
    ASSERT_TRUE(user.waitFor("connected"));
    auto question =
        QDBusMessage::createMethodCall(bus.baseService(), u"/com/vornack/quenthisar/agent"_s,
                                       u"org.bluez.Agent1"_s, u"RequestAuthorization"_s);
    question << QVariant::fromValue(QDBusObjectPath(device));
    auto answer = daemon.bus.asyncCall(question);
    ASSERT_TRUE(waitUntil([&] { return answer.isFinished(); }));
    EXPECT_EQ(answer.error().name().toStdString(), "org.bluez.Error.Rejected");
}

} // namespace
} // namespace quenthisar
