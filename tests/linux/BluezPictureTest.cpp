// SPDX-License-Identifier: MIT
#include "linux/BluezObjects.h"

#include <QDBusPendingCall>

namespace quenthisar {
namespace {

using BluezPictureTest = LaidOutDaemon;

TEST_F(BluezPictureTest, DiscoversWhatIsOnTheAirOrHeldAndNothingElse) {
    daemon.addAdapter(hci, true);
    daemon.tree.add(u"/org/bluez/hci1"_s, {{adapterInterface, {}}});
    daemon.tree.add(hci + u"/dev_empty"_s, {{deviceInterface, {}}});
    // Bluetooth devices choose their own names and services, and daemons differ.
    const std::pair<QString, QVariant> wrong[] = {
        {u"UUIDs"_s, QStringList{u"0000180f-0000-1000-8000-00805f9b34fb"_s}},
        {u"UUIDs"_s, QStringList{u""_s, u"f1e00000"_s, ourService + u'0'}},
        {u"UUIDs"_s, 7},
        {u"Address"_s, 7},
        {u"Address"_s, u"C0:00:00:00:00:0G"_s},
        {u"Adapter"_s, hci},
        {u"Adapter"_s, QVariant::fromValue(QDBusObjectPath(u"/org/bluez/hci7"_s))},
    };
    int number = 5;
    for (const auto& [name, value] : wrong) {
        auto device = onAir(u"wrong"_s);
        device[name] = value;
        daemon.addDevice(++number, device);
    }
    const auto near = daemon.addDevice(2, onAir(u"near"_s));
    const auto bonded = daemon.addDevice(3, {{u"Name"_s, u"out of range"_s}});
    daemon.addDevice(4, {{u"Alias"_s, u"held"_s}, {u"Connected"_s, true}});
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("discovered held"));
    ASSERT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
    daemon.addDevice(1, {{u"Address"_s, u"c0:00:00:00:00:01"_s}, {u"RSSI"_s, u"loud"_s}});
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    EXPECT_EQ(user.log, (Lines{"state unknown", "state on", "discovered near", "discovered held",
                               "discovered (nameless)"}));
    EXPECT_EQ(user.peripheral->identifier().text(), "B1ABD9C5-1662-54E1-9230-D2D423FEAF18");

    daemon.tree.set(bonded, deviceInterface, u"RSSI"_s, QVariant::fromValue(short{-90}));
    EXPECT_TRUE(user.waitFor("discovered out of range"));
    daemon.tree.remove(near);
    daemon.addDevice(2, onAir(u"near"_s));
    EXPECT_TRUE(waitUntil([&] { return user.count("discovered near") == 2; })) << "it was absent";
    // No service here: the filters of all clients merge.
    EXPECT_EQ(daemon.filter, (QVariantMap{{u"Transport"_s, u"le"_s}}));
}

TEST_F(BluezPictureTest, TakesARemovedObjectForALostLink) {
    const auto device = addLinkedDongle();
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("connected"));
    daemon.tree.remove(device);
    EXPECT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
}

TEST_F(BluezPictureTest, DoesNotDiscoverWhatAStartingDaemonRemembers) {
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unsupported"));
    daemon.addAdapter(hci, true);
    daemon.addDevice(1, {{u"Name"_s, u"remembered"_s}});
    ASSERT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
    daemon.addDevice(2, {});
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    EXPECT_EQ(user.count("discovered remembered"), 0);
}

TEST_F(BluezPictureTest, LetsAnotherPoweredAdapterTakeThePlaceOfTheFirst) {
    const auto blocked = hci, first = u"/org/bluez/hci1"_s, second = u"/org/bluez/hci2"_s;
    daemon.addAdapter(blocked, false);
    daemon.addAdapter(first, true);
    daemon.addAdapter(second, true);
    daemon.addDevice(1, linked(u"dongle"_s), first);
    daemon.addDevice(1, onAir(u"dongle"_s), second);
    daemon.addDevice(2, onAir(u"other"_s), second);
    daemon.appear();
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("connected"));
    EXPECT_EQ(user.count("discovered other"), 0);

    // The first in order, but one is in use.
    const auto setPowered = [&](const QString& adapter, bool on) {
        daemon.tree.set(adapter, adapterInterface, u"Powered"_s, on);
    };
    setPowered(blocked, true);
    daemon.addDevice(3, onAir(u"third"_s), first);
    ASSERT_TRUE(user.waitFor("discovered third"));
    EXPECT_EQ(user.count("disconnected error"), 0);
    setPowered(first, false);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    ASSERT_TRUE(daemon.waitForCall(blocked + u" StartDiscovery"_s));
    daemon.tree.remove(blocked);
    ASSERT_TRUE(user.waitFor("discovered other"));
    EXPECT_TRUE(daemon.waitForCall(second + u" StartDiscovery"_s));
    EXPECT_EQ(user.central.state(), CentralState::poweredOn);
    EXPECT_EQ(user.count("state on"), 1);
}

TEST_F(BluezPictureTest, IgnoresSignalsOfAnyoneButTheDaemon) {
    Objects impostor(stage);
    daemon.addAdapter(hci, true);
    daemon.appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state on"));
    impostor.addDevice(9, onAir(u"impostor"_s));
    // A call that the bus delivers after that signal.
    auto ping = impostor.bus.asyncCall(QDBusMessage::createMethodCall(
        daemon.bus.baseService(), u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s,
        u"GetManagedObjects"_s));
    ASSERT_TRUE(waitUntil([&] { return ping.isFinished(); }));
    daemon.addDevice(1, onAir(u"dongle"_s));
    ASSERT_TRUE(user.waitFor("discovered dongle"));
    EXPECT_EQ(user.count("discovered impostor"), 0);
}

} // namespace
} // namespace quenthisar
