// SPDX-License-Identifier: MIT
#include "linux/BluezObjects.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

const auto hci = u"/org/bluez/hci0"_s;
const auto agentPath = u"/com/vornack/quenthisar/agent"_s, agentInterface = u"org.bluez.Agent1"_s;
constexpr auto rejected = "org.bluez.Error.Rejected";

/// A daemon with one adapter and one dongle that is linked and has its service.
struct RefusingDaemon {
    RefusingDaemon() {
        daemon.addAdapter(hci, true);
        device = daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, linked(u"dongle"_s));
        daemon.addService(device);
        daemon.appear();
    }
    BluezStage stage{BluezStage::Daemon::none};
    Objects daemon{stage};
    QString device;
};

QVariant path(const QString& text) {
    return QVariant::fromValue(QDBusObjectPath(text));
}

TEST(BluezAgent, GrantsAuthorizationToTheDeviceThatIsProbedAndRejectsAllElse) {
    RefusingDaemon far;
    far.daemon.unanswered = {u"WriteValue"_s};
    const auto bus = far.stage.connect();
    CentralUser user(bus);
    user.connect();
    const auto asksAgent = [&](const QString& method, const QVariantList& arguments) {
        return far.daemon.ask(bus, agentPath, agentInterface, method, arguments);
    };
    const auto authorize = u"RequestAuthorization"_s;
    ASSERT_TRUE(user.waitFor("connected"));
    ASSERT_TRUE(far.daemon.waitForCall(far.device + u"/service0001/char0002 WriteValue"_s));
    EXPECT_EQ(asksAgent(authorize, {path(far.device)}), "");
    EXPECT_EQ(asksAgent(authorize, {path(hci + u"/dev_C0_00_00_00_00_02"_s)}), rejected);
    EXPECT_EQ(asksAgent(u"RequestPinCode"_s, {path(far.device)}), rejected);
    EXPECT_EQ(asksAgent(u"RequestPasskey"_s, {path(far.device)}), rejected);
    EXPECT_EQ(asksAgent(u"DisplayPinCode"_s, {path(far.device), u"0000"_s}), rejected);
    EXPECT_EQ(
        asksAgent(u"DisplayPasskey"_s, {path(far.device), 0U, QVariant::fromValue(ushort{0})}),
        rejected);
    EXPECT_EQ(asksAgent(u"RequestConfirmation"_s, {path(far.device), 123456U}), rejected);
    EXPECT_EQ(asksAgent(u"AuthorizeService"_s, {path(far.device), ourService}), rejected);

    user.cancel();
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_EQ(asksAgent(authorize, {path(far.device)}), rejected) << "nothing is probed any more";
    EXPECT_TRUE(far.daemon.calls.contains(u"/org/bluez RegisterAgent"_s));
    EXPECT_FALSE(far.daemon.calls.contains(u"/org/bluez RequestDefaultAgent"_s));
}

TEST(BluezRefusal, AsksForDiscoveryAgain) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    daemon.addAdapter(hci, true);
    daemon.refused = {u"SetDiscoveryFilter"_s};
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(daemon.waitForCall(hci + u" SetDiscoveryFilter"_s));
    daemon.refused = {};
    EXPECT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
}

TEST(BluezRefusal, WorksWithoutAnAgentAndEndsItsLinkWhateverTheDaemonSays) {
    RefusingDaemon far;
    far.daemon.refused = {u"RegisterAgent"_s, u"AcquireWrite"_s, u"Disconnect"_s};
    CentralUser user(far.stage.connect());
    user.makeReady();
    user.send(Report::allKeysUp());
    const auto write = far.device + u"/service0001/char0002 WriteValue"_s;
    EXPECT_TRUE(waitUntil([&] { return far.daemon.calls.count(write) == 2; }));
    user.cancel();
    EXPECT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
}

TEST(BluezRefusal, WritesWhatWasRefusedWhileAnotherProgramHadTheDescriptor) {
    RefusingDaemon far; // it hands out no descriptor
    CentralUser user(far.stage.connect());
    user.makeReady();
    user.send(Report::allKeysUp());
    ASSERT_TRUE(waitUntil([&] { return far.daemon.written.size() == 2; }));
    far.daemon.refusal = u"org.bluez.Error.NotPermitted"_s;
    far.daemon.refused = {u"WriteValue"_s, u"AcquireWrite"_s};
    far.daemon.written.clear();
    far.daemon.calls.clear();
    const std::vector<Payload> keys{Report::keyboard(0, std::vector<std::uint8_t>{4}),
                                    Report::allKeysUp()};
    for (const auto& key : keys) user.send(key);
    ASSERT_TRUE(far.daemon.waitForCall(far.device + u"/service0001/char0002 AcquireWrite"_s));
    far.daemon.refused = {};
    EXPECT_TRUE(waitUntil([&] { return far.daemon.written.size() == 2; }));
    for (qsizetype i = 0; i < far.daemon.written.size(); ++i)
        EXPECT_EQ(far.daemon.written[i].toHex().toStdString(),
                  hex(keys[static_cast<std::size_t>(i)]));
}

/// Bluetooth devices choose their own names and services, and daemons differ.
TEST(BluezRefusal, IgnoresWhatMakesNoSense) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    daemon.addAdapter(hci, true);
    daemon.tree.add(u"/org/bluez/hci1"_s, {{adapterInterface, {}}});
    daemon.tree.add(u"/org/bluez/hci2"_s, {{adapterInterface, {{u"Powered"_s, path(hci)}}}});
    daemon.tree.add(u"/org/bluez/nothing"_s, {});
    daemon.tree.add(hci + u"/dev_empty"_s, {{deviceInterface, {}}});
    // What stands in place of a property, each in a device of its own.
    const std::pair<QString, QVariant> wrong[] = {
        {u"Address"_s, {}},
        {u"Address"_s, 7},
        {u"Address"_s, u""_s},
        {u"Address"_s, u"C0:00:00:00:00"_s},
        {u"Address"_s, u"C0:00:00:00:00:0G"_s},
        {u"Address"_s, QByteArray("C0:00:00:00:00:01")},
        {u"UUIDs"_s, {}},
        {u"UUIDs"_s, 7},
        {u"UUIDs"_s, QStringList{u""_s, u"f1e00000"_s, ourService + u'0'}},
        {u"Adapter"_s, {}},
        {u"Adapter"_s, hci},
        {u"Adapter"_s, path(u"/org/bluez/hci7"_s)},
    };
    int number = 0;
    for (const auto& [name, value] : wrong) {
        auto device = onAir(u"wrong"_s);
        device.insert({{u"Address"_s, u"C0:00:00:00:01:0%1"_s.arg(number % 10)},
                       {u"UUIDs"_s, QStringList{ourService}},
                       {u"Adapter"_s, path(hci)}});
        device.remove(name);
        if (value.isValid()) device[name] = value;
        daemon.tree.add(hci + u"/dev_%1"_s.arg(number++), {{deviceInterface, device}});
    }
    daemon.appear();
    CentralUser user(stage.connect());
    const auto near =
        daemon.addDevice(hci, u"c0:00:00:00:00:01"_s,
                         {{u"Name"_s, QString(100'000, u'\u202E')}, {u"RSSI"_s, u"loud"_s}});
    ASSERT_TRUE(waitUntil([&] { return user.peripheral != nullptr; }));
    EXPECT_EQ(user.count("discovered wrong"), 0);
    EXPECT_EQ(user.peripheral->identifier().text(), "B1ABD9C5-1662-54E1-9230-D2D423FEAF18");

    daemon.tree.set(near, deviceInterface, u"UUIDs"_s, QVariantMap{{u"a"_s, 1}});
    daemon.tree.set(near, deviceInterface, u"Name"_s, 12);
    ASSERT_TRUE(user.waitFor("discovered 12"));
    daemon.tree.set(near, deviceInterface, u"Name"_s, QVariant::fromValue(QVariantList{1, 2}));
    daemon.tree.set(near, deviceInterface, u"Alias"_s, QVariant{});
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    // What the daemon never added, and signals of other shapes.
    auto stray = QDBusMessage::createSignal(
        hci + u"/dev_stray"_s, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    stray << deviceInterface << QVariantMap{{u"RSSI"_s, 1}} << QStringList{};
    daemon.bus.send(stray);
    stray.setArguments({deviceInterface});
    daemon.bus.send(stray);
    for (const auto& member : {u"InterfacesAdded"_s, u"InterfacesRemoved"_s}) {
        auto shapeless =
            QDBusMessage::createSignal(u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s, member);
        shapeless << near;
        daemon.bus.send(shapeless);
    }
    daemon.addDevice(hci, u"C0:00:00:00:00:02"_s, onAir(u"last"_s));
    EXPECT_TRUE(user.waitFor("discovered last"));
    EXPECT_EQ(user.central.state(), CentralState::poweredOn);
}

/// So a daemon does when it learns the address behind a random one while pairing.
TEST(BluezRefusal, KeepsADongleWhoseAddressChangesOnItsLink) {
    RefusingDaemon far;
    CentralUser user(far.stage.connect());
    user.makeReady();
    const auto before = user.peripheral;
    far.daemon.tree.set(far.device, deviceInterface, u"Address"_s, u"00:00:00:00:00:AA"_s);
    far.daemon.tree.set(far.device, deviceInterface, u"UUIDs"_s, QStringList{ourService});
    far.daemon.tree.flush();
    far.daemon.tree.set(far.device, deviceInterface, u"Connected"_s, false);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.peripheral, before);
    EXPECT_EQ(user.count("discovered dongle"), 1);
}

} // namespace
} // namespace quenthisar
