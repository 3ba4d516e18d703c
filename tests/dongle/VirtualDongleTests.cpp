// SPDX-License-Identifier: MIT
#include "Target.h"
#include "VirtualDongle.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QTimer>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quenthisar::dongle {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QString deviceInterface = u"org.bluez.Device1"_s;
const QString characteristicInterface = u"org.bluez.GattCharacteristic1"_s;
const QByteArray probe(15, '\0');
const QByteArray shiftA = QByteArray::fromHex("010200000000000000040000000000");
const QByteArray leftDownAndMove = QByteArray::fromHex("020001000afffc0000000000000000");
const QByteArray leftDownAndWheel = QByteArray::fromHex("020001000000000001000000000000");

/// QtDBus wants an application.
struct VirtualDongleTest : testing::Test {
    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    QCoreApplication application{argc, argv};
};

/// Grants or rejects whatever it is asked, and stops the loop that waits for it.
struct Agent final : QDBusVirtualObject {
    explicit Agent(bool grants) : granting(grants) {}

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        asked =
            message.member() + u' ' + message.arguments().value(0).value<QDBusObjectPath>().path();
        bus.send(granting ? message.createReply()
                          : message.createErrorReply(u"org.bluez.Error.Rejected"_s, u"no"_s));
        loop.quit();
        return true;
    }

    bool granting;
    QString asked;
    QEventLoop loop;
};

int acquire(VirtualDongle& dongle) {
    const auto reply = dongle.call(dongle.characteristic, characteristicInterface,
                                   u"AcquireWrite"_s, {QVariantMap{}});
    EXPECT_EQ(reply.errorName(), QString{});
    const auto descriptor = reply.arguments().value(0).value<QDBusUnixFileDescriptor>();
    return ::dup(descriptor.fileDescriptor());
}

TEST_F(VirtualDongleTest, PressesOnTheTargetAndReleasesWhenTheLinkDrops) {
    const demo::XServer server;
    Target target{server.display()};
    VirtualDongle dongle{{u"--display"_s, server.display()}};
    ASSERT_TRUE(dongle.connectDongle());

    EXPECT_EQ(dongle.write(probe, u"request"_s), QString{});
    EXPECT_EQ(dongle.waitFor(u"report"_s),
              u"report request 000000000000000000000000000000 probe"_s);
    EXPECT_EQ(dongle.write(shiftA, u"command"_s), QString{});
    EXPECT_EQ(dongle.waitFor(u"report"_s), u"report command 010200000000000000040000000000 "
                                           "keyboard modifiers=shift keys=a"_s);
    EXPECT_EQ(target.events(2), "+50 +38 ");

    const int descriptor = acquire(dongle);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(dongle.write(shiftA, u"command"_s), u"org.bluez.Error.NotPermitted"_s);
    ASSERT_EQ(::send(descriptor, leftDownAndMove.constData(), 15, MSG_NOSIGNAL), 15);
    EXPECT_EQ(dongle.waitFor(u"report"_s), u"report descriptor 020001000afffc0000000000000000 "
                                           "mouse buttons=left dx=10 dy=-4 wheel=0"_s);
    EXPECT_EQ(target.events(2), "+button1 650,396 ");
    ASSERT_EQ(::send(descriptor, leftDownAndWheel.constData(), 15, MSG_NOSIGNAL), 15);
    EXPECT_EQ(target.events(2), "+button4 -button4 ");

    dongle.fault(u"Drop"_s, {QString{}});
    EXPECT_EQ(dongle.waitFor(u"disconnected"_s), u"disconnected lost"_s);
    EXPECT_EQ(target.events(3), "-50 -38 -button1 ");
    EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"Connected"_s), QVariant{false});
    char byte = 0;
    EXPECT_EQ(::recv(descriptor, &byte, 1, 0), 0) << "the far end closes the descriptor";
    ::close(descriptor);
}

TEST_F(VirtualDongleTest, ReleasesWhenToldToQuit) {
    const demo::XServer server;
    Target target{server.display()};
    VirtualDongle dongle{{u"--display"_s, server.display()}};
    ASSERT_TRUE(dongle.connectDongle());
    dongle.write(shiftA, u"command"_s);
    EXPECT_EQ(target.events(2), "+50 +38 ");
    dongle.process().signal(SIGTERM);
    EXPECT_EQ(dongle.process().waitForEnd(10s), 0);
    EXPECT_EQ(target.events(2), "-50 -38 ");
}

TEST_F(VirtualDongleTest, GoesOnWithoutItsTarget) {
    demo::XServer server;
    VirtualDongle dongle{{u"--display"_s, server.display()}};
    ASSERT_TRUE(dongle.connectDongle());
    server.kill();
    EXPECT_TRUE(dongle.waitFor(u"target lost"_s));
    EXPECT_EQ(dongle.write(shiftA, u"command"_s), QString{});
    EXPECT_TRUE(dongle.waitFor(u"report command"_s));
}

TEST_F(VirtualDongleTest, RefusesTheDescriptorWhileARequestIsUnderWay) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    dongle.fault(u"SetProbe"_s, {QString{}, u"silent"_s});
    dongle.send(dongle.characteristic, characteristicInterface, u"WriteValue"_s,
                {probe, QVariantMap{{u"type"_s, u"request"_s}}});
    ASSERT_TRUE(dongle.waitFor(u"report request"_s));
    EXPECT_EQ(dongle
                  .call(dongle.characteristic, characteristicInterface, u"AcquireWrite"_s,
                        {QVariantMap{}})
                  .errorName(),
              u"org.bluez.Error.InProgress"_s);
    EXPECT_EQ(dongle.write(shiftA, u"command"_s), u"org.bluez.Error.InProgress"_s);
}

TEST_F(VirtualDongleTest, FailsAsAsked) {
    VirtualDongle dongle{{u"--connect-timeout"_s, u"300"_s}};
    ASSERT_TRUE(dongle.connectDongle());

    dongle.fault(u"SetProbe"_s, {QString{}, u"refuse"_s});
    EXPECT_EQ(dongle.write(probe, u"request"_s), u"org.bluez.Error.Failed"_s);
    dongle.fault(u"SetAcquire"_s, {QString{}, u"refuse"_s});
    EXPECT_EQ(dongle
                  .call(dongle.characteristic, characteristicInterface, u"AcquireWrite"_s,
                        {QVariantMap{}})
                  .errorName(),
              u"org.bluez.Error.NotSupported"_s);

    dongle.fault(u"SetInRange"_s, {QString{}, false});
    EXPECT_EQ(dongle.waitFor(u"disconnected"_s), u"disconnected out of range"_s);
    EXPECT_EQ(dongle.write(shiftA, u"command"_s), u"org.bluez.Error.Failed"_s);
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(),
              u"org.bluez.Error.Failed"_s);
    dongle.fault(u"SetInRange"_s, {QString{}, true});
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(), QString{});

    dongle.fault(u"SetPowered"_s, {false});
    EXPECT_EQ(dongle.waitFor(u"disconnected"_s), u"disconnected powered off"_s);
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(),
              u"org.bluez.Error.NotReady"_s);
}

TEST_F(VirtualDongleTest, AsksTheAgentBeforeItTakesTheProbe) {
    for (const bool granting : {false, true}) {
        VirtualDongle dongle;
        Agent agent{granting};
        dongle.bus().registerVirtualObject(u"/agent"_s, &agent);
        dongle.call(u"/org/bluez"_s, u"org.bluez.AgentManager1"_s, u"RegisterAgent"_s,
                    {QVariant::fromValue(QDBusObjectPath{u"/agent"_s}), u"NoInputNoOutput"_s});
        ASSERT_TRUE(dongle.connectDongle());
        dongle.fault(u"SetProbe"_s, {QString{}, u"encrypt"_s});
        dongle.send(dongle.characteristic, characteristicInterface, u"WriteValue"_s,
                    {probe, QVariantMap{{u"type"_s, u"request"_s}}});
        QTimer limit;
        limit.callOnTimeout(&agent.loop, &QEventLoop::quit);
        limit.start(10s);
        agent.loop.exec();
        EXPECT_EQ(agent.asked, u"RequestAuthorization "_s + dongle.device);
        EXPECT_EQ(dongle.waitFor(u"answer"_s),
                  granting ? u"answer ok"_s : u"answer org.bluez.Error.NotPermitted"_s);
        EXPECT_EQ(dongle.property(dongle.device, deviceInterface, u"Paired"_s), QVariant{granting});
    }
}

TEST_F(VirtualDongleTest, ComesBackAfterTheDaemonWasKilled) {
    VirtualDongle dongle;
    ASSERT_TRUE(dongle.connectDongle());
    dongle.fault(u"KillDaemon"_s);
    EXPECT_EQ(dongle.waitFor(u"disconnected"_s), u"disconnected removed"_s);
    EXPECT_EQ(dongle.call(u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s).errorName(),
              u"org.freedesktop.DBus.Error.ServiceUnknown"_s);
    dongle.fault(u"StartDaemon"_s);
    ASSERT_TRUE(dongle.waitFor(u"adapter added"_s));
    EXPECT_EQ(dongle.call(dongle.device, deviceInterface, u"Connect"_s).errorName(), QString{});
}

} // namespace
} // namespace quenthisar::dongle
