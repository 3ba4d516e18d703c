// SPDX-License-Identifier: MIT
#include "linux/BluezObjects.h"

#include <QDBusPendingCall>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using Lines = std::vector<std::string>;

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
    // No service here: the filters of all clients merge.
    EXPECT_EQ(daemon.filter, (QVariantMap{{u"Transport"_s, u"le"_s}}));
}

TEST(BluezPicture, DiscoversAgainWhatWasAbsent) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    daemon.appear();
    CentralUser user(stage.connect());
    for (int times = 1; times <= 2; ++times) {
        const auto device = daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, onAir(u"dongle"_s));
        ASSERT_TRUE(waitUntil([&] { return user.count("discovered dongle") == times; }));
        daemon.tree.remove(device);
    }
}

TEST(BluezPicture, TakesARemovedObjectForALostLink) {
    BluezStage stage(BluezStage::Daemon::none);
    Objects daemon(stage);
    const auto hci = u"/org/bluez/hci0"_s;
    daemon.addAdapter(hci, true);
    const auto device = daemon.addDevice(hci, u"C0:00:00:00:00:01"_s, linked(u"dongle"_s));
    daemon.appear();
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("connected"));
    daemon.tree.remove(device);
    EXPECT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
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
    daemon.addDevice(first, u"C0:00:00:00:00:01"_s, linked(u"dongle"_s));
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

} // namespace
} // namespace quenthisar
