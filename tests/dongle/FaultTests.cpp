// SPDX-License-Identifier: MIT
#include "SignalLog.h"
#include "Target.h"
#include "VirtualDongle.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quenthisar::dongle {
namespace {

using namespace Qt::StringLiterals;

const QString adapterInterface = u"org.bluez.Adapter1"_s;
const QString deviceInterface = u"org.bluez.Device1"_s;
const QString characteristicInterface = u"org.bluez.GattCharacteristic1"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;
const QString firstAdapter = u"/org/bluez/hci0"_s, secondAdapter = u"/org/bluez/hci1"_s;

/// QtDBus wants an application.
struct VirtualDongleFaults : testing::Test {
    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    QCoreApplication application{argc, argv};
};

QDBusMessage acquireWrite(VirtualDongle& dongle) {
    return dongle.call(dongle.characteristic, characteristicInterface, u"AcquireWrite"_s,
                       {QVariantMap{}});
}

int descriptorOf(const QDBusMessage& reply) {
    return ::dup(reply.arguments().value(0).value<QDBusUnixFileDescriptor>().fileDescriptor());
}

QByteArray keyboard(int number) {
    QByteArray payload(15, '\0');
    payload[0] = 1;
    payload[1] = static_cast<char>(number / 200);
    payload[9] = static_cast<char>(4 + number % 200);
    return payload;
}

TEST_F(VirtualDongleFaults, ReadsAllThatWaitsInOrderWhenItReadsAgain) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    const int descriptor = descriptorOf(acquireWrite(dongle));
    ASSERT_GE(descriptor, 0);
    dongle.fault(u"SetReading"_s, {QString{}, false});
    int sent = 0;
    while (::send(descriptor, keyboard(sent).constData(), 15, MSG_DONTWAIT | MSG_NOSIGNAL) == 15)
        ++sent;
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_GT(sent, 100);
    dongle.fault(u"SetReading"_s, {QString{}, true});
    for (int number = 0; number < sent; ++number) {
        const auto expected =
            u"report descriptor "_s + QString::fromLatin1(keyboard(number).toHex());
        const auto line = dongle.waitFor(u"report"_s);
        ASSERT_TRUE(line && line->startsWith(expected)) << number;
    }
    ::close(descriptor);
}

TEST_F(VirtualDongleFaults, HandsTheDescriptorToOneClientAtATime) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    const int descriptor = descriptorOf(acquireWrite(dongle));
    ASSERT_GE(descriptor, 0);
    const auto refusal = acquireWrite(dongle);
    EXPECT_EQ(refusal.errorName(), u"org.bluez.Error.NotPermitted"_s);
    EXPECT_EQ(refusal.errorMessage(), u"Write acquired"_s);
    ::close(descriptor);
    ASSERT_TRUE(dongle.waitFor(u"descriptor closed"_s));
    EXPECT_EQ(acquireWrite(dongle).errorName(), QString{});
}

TEST_F(VirtualDongleFaults, ConnectsAsAsked) {
    VirtualDongle dongle;
    dongle.call(firstAdapter, adapterInterface, u"StartDiscovery"_s);
    ASSERT_TRUE(dongle.waitFor(u"discovered"_s));

    dongle.fault(u"SetConnect"_s, {QString{}, u"refuse"_s});
    const auto refusal = dongle.call(dongle.device, deviceInterface, u"Connect"_s);
    EXPECT_EQ(refusal.errorName(), u"org.bluez.Error.Failed"_s);
    EXPECT_EQ(refusal.errorMessage(), u"le-connection-abort-by-local"_s);

    dongle.fault(u"SetConnect"_s, {QString{}, u"silent"_s});
    const auto attempt = [&] {
        return dongle.bus().asyncCall(QDBusMessage::createMethodCall(
            u"org.bluez"_s, dongle.device, deviceInterface, u"Connect"_s));
    };
    auto canceled = attempt();
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(),
              u"org.bluez.Error.InProgress"_s);
    dongle.call(dongle.device, deviceInterface, u"Disconnect"_s);
    canceled.waitForFinished();
    EXPECT_EQ(canceled.error().message(), u"br-connection-canceled"_s);
    auto aborted = attempt();
    // Faults come another way: the attempt is under way only once a second one is refused.
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(),
              u"org.bluez.Error.InProgress"_s);
    dongle.fault(u"SetPowered"_s, {false});
    aborted.waitForFinished();
    EXPECT_EQ(aborted.error().message(), u"le-connection-abort-by-local"_s);
    dongle.fault(u"SetPowered"_s, {true});

    dongle.fault(u"SetConnect"_s, {QString{}, u"no-service"_s});
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(), QString{});
    ASSERT_TRUE(dongle.waitFor(u"resolved"_s));
    EXPECT_EQ(acquireWrite(dongle).errorName(), u"org.freedesktop.DBus.Error.UnknownObject"_s);

    dongle.fault(u"Drop"_s, {QString{}});
    dongle.fault(u"SetConnect"_s, {QString{}, u"unresolved"_s});
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(), QString{});
    EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"Connected"_s), QVariant{true});
    EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"ServicesResolved"_s),
              QVariant{false});
}

TEST_F(VirtualDongleFaults, ShowsItsObjectsBeforeOrAfterTheyAreResolved) {
    for (const auto& order : {u"before"_s, u"after"_s}) {
        VirtualDongle dongle;
        SignalLog log{dongle.bus()};
        dongle.fault(u"SetObjects"_s, {QString{}, order});
        ASSERT_TRUE(dongle.connectDongle());
        ASSERT_TRUE(log.waitFor(u"ServicesResolved"_s));
        ASSERT_TRUE(log.waitFor(u"added "_s + dongle.characteristic));
        EXPECT_EQ(log.indexOf(u"added "_s + dongle.characteristic) <
                      log.indexOf(u"ServicesResolved"_s),
                  order == u"before")
            << qPrintable(log.texts.join(u'\n'));
    }
}

TEST_F(VirtualDongleFaults, AdvertisesAnotherName) {
    VirtualDongle dongle;
    SignalLog log{dongle.bus()};
    dongle.call(firstAdapter, adapterInterface, u"StartDiscovery"_s);
    ASSERT_TRUE(dongle.waitFor(u"discovered"_s));
    dongle.fault(u"SetName"_s, {QString{}, u"Desk"_s});
    EXPECT_TRUE(log.waitFor(dongle.device + u" Alias,Name"_s));
    EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"Name"_s), QVariant{u"Desk"_s});
}

TEST_F(VirtualDongleFaults, RemovesItsObjectsBeforeItStops) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    SignalLog log{dongle.bus()};
    dongle.fault(u"StopDaemon"_s);
    ASSERT_TRUE(log.waitFor(u"owner gone"_s));
    EXPECT_EQ(log.texts.last(), u"owner gone"_s);
    const auto device = log.indexOf(u"removed "_s + dongle.device);
    EXPECT_GE(device, 0);
    EXPECT_LT(device, log.texts.indexOf(u"removed "_s + firstAdapter));
    dongle.fault(u"StartDaemon"_s);
    ASSERT_TRUE(log.waitFor(u"added "_s + dongle.device));
    EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"RSSI"_s), QVariant{})
        << "what it remembers is not on the air";
}

TEST_F(VirtualDongleFaults, DeniesAccess) {
    VirtualDongle dongle;
    const auto filter = [&] {
        return dongle.call(firstAdapter, adapterInterface, u"SetDiscoveryFilter"_s, {QVariantMap{}})
            .errorName();
    };
    dongle.fault(u"SetAccess"_s, {false});
    EXPECT_EQ(filter(), u"org.freedesktop.DBus.Error.AccessDenied"_s);
    dongle.fault(u"SetAccess"_s, {true});
    EXPECT_EQ(filter(), QString{});
}

TEST_F(VirtualDongleFaults, SeesADongleThroughEachAdapterButLinksItToOne) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    dongle.fault(u"SetAdapter"_s, {u"hci1"_s, true});
    ASSERT_TRUE(dongle.waitFor(u"powered on"_s));
    SignalLog log{dongle.bus()};
    const auto other = QString{dongle.device}.replace(firstAdapter, secondAdapter);
    dongle.call(secondAdapter, adapterInterface, u"StartDiscovery"_s);
    ASSERT_TRUE(dongle.waitFor(u"discovering on"_s));
    dongle.fault(u"SetAdapter"_s, {u"hci0"_s, false});
    EXPECT_EQ(dongle.waitFor(u"disconnected"_s), u"disconnected removed"_s);
    ASSERT_TRUE(log.waitFor(u"added "_s + other));
    EXPECT_LT(log.indexOf(u"removed "_s + dongle.device), log.indexOf(u"added "_s + other))
        << "it advertised while it was linked";
    EXPECT_EQ(dongle.call(other, deviceInterface, u"Connect"_s).errorName(), QString{});
}

TEST_F(VirtualDongleFaults, CannotBeSwitchedOnWhileBlocked) {
    VirtualDongle dongle;
    const auto isPowered = [&] {
        return dongle.property(firstAdapter, adapterInterface, u"Powered"_s).toBool();
    };
    const auto switchOn = [&] {
        return dongle.call(
            firstAdapter, propertiesInterface, u"Set"_s,
            {adapterInterface, u"Powered"_s, QVariant::fromValue(QDBusVariant{true})});
    };
    dongle.fault(u"SetBlocked"_s, {u"hci0"_s, true});
    EXPECT_FALSE(isPowered());
    EXPECT_EQ(switchOn().errorName(), u"org.bluez.Error.Blocked"_s);
    dongle.fault(u"SetPowered"_s, {true});
    EXPECT_FALSE(isPowered());
    EXPECT_EQ(dongle.call(firstAdapter, adapterInterface, u"StartDiscovery"_s).errorName(),
              u"org.bluez.Error.NotReady"_s);
    dongle.fault(u"SetBlocked"_s, {u"hci0"_s, false});
    EXPECT_TRUE(isPowered());
}

TEST_F(VirtualDongleFaults, GivesEachDongleItsOwnTarget) {
    const demo::XServer firstServer, secondServer;
    std::array<Target, 2> targets{Target{firstServer.display()}, Target{secondServer.display()}};
    VirtualDongle dongles{{u"--name"_s, u"One"_s, u"--name"_s, u"Two"_s, u"--display"_s,
                           firstServer.display(), u"--display"_s, secondServer.display()}};
    const auto first = dongles.device, second = first.chopped(1) + u'2';
    dongles.call(firstAdapter, adapterInterface, u"StartDiscovery"_s);
    ASSERT_TRUE(dongles.waitFor(u"discovered"_s) && dongles.waitFor(u"discovered"_s));
    for (const auto& device : {second, first}) {
        EXPECT_EQ(dongles.call(device, deviceInterface, u"Connect"_s).errorName(), QString{});
        ASSERT_TRUE(dongles.waitFor(u"resolved"_s));
        dongles.characteristic.replace(0, first.size(), device);
        EXPECT_EQ(dongles.write(keyboard(0), u"command"_s), QString{});
        EXPECT_EQ(targets[device == second ? 1 : 0].events(1), "+38 ");
    }
    // A fault is one dongle's alone.
    dongles.fault(u"Drop"_s, {u"C0:00:00:00:00:02"_s});
    EXPECT_EQ(targets[1].events(1), "-38 ");
    EXPECT_EQ(dongles.property(first, deviceInterface, u"Connected"_s), QVariant{true});
}

TEST_F(VirtualDongleFaults, RefusesWhatItDoesNotKnow) {
    VirtualDongle dongle;
    const auto invalid = u"org.freedesktop.DBus.Error.InvalidArgs"_s;
    EXPECT_EQ(dongle.fault(u"Drop"_s, {u"C0:00:00:00:00:77"_s}).errorName(), invalid);
    EXPECT_EQ(dongle.fault(u"SetProbe"_s, {QString{}, u"maybe"_s}).errorName(), invalid);
    EXPECT_EQ(dongle.fault(u"SetBlocked"_s, {u"../hci0"_s, true}).errorName(), invalid);
}

} // namespace
} // namespace quenthisar::dongle
