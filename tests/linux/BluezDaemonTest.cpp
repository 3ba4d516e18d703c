// SPDX-License-Identifier: MIT
#include "dongle/ObjectTree.h"
#include "linux/BluezStage.h"

#include <QDBusArgument>
#include <QDBusPendingCall>

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

const auto hci = u"/org/bluez/hci0"_s;
const auto ourService = u"f1e00000-64f2-4b5d-9c51-3e2a5d0d8b10"_s;
const auto ourCharacteristic = u"f1e00001-64f2-4b5d-9c51-3e2a5d0d8b10"_s;

QVariant path(const QString& text) {
    return QVariant::fromValue(QDBusObjectPath(text));
}

QVariantMap onAir(const QString& name) {
    return {{u"Name"_s, name}, {u"RSSI"_s, QVariant::fromValue(short{-50})}};
}

/// A daemon with one adapter, whose objects a test lays out one by one. It agrees to every call but
/// to those that the test wants refused or unanswered.
class LaidOutDaemon : public testing::Test {
protected:
    LaidOutDaemon() {
        tree.onCall([this](const QDBusMessage& call) { return answer(call); });
        bus.registerVirtualObject(u"/"_s, &tree, QDBusConnection::SubPath);
        tree.add(hci, {{u"org.bluez.Adapter1"_s, {{u"Powered"_s, true}}}});
    }

    void appear() { bus.registerService(u"org.bluez"_s); }
    bool waitForCall(const QString& call) const {
        return runUntil([&] { return calls.contains(call); });
    }
    /// The n-th device, which offers our service; `more` adds to it.
    QString addDevice(int number, const QVariantMap& more) {
        const auto address = u"C0:00:00:00:00:%1"_s.arg(number, 2, 16, QChar(u'0'));
        auto device = hci + u"/dev_"_s + QString(address).replace(u':', u'_');
        QVariantMap properties{{u"Address"_s, address},
                               {u"UUIDs"_s, QStringList{ourService.toUpper()}},
                               {u"Adapter"_s, path(hci)}};
        properties.insert(more);
        tree.add(device, {{u"org.bluez.Device1"_s, properties}});
        return device;
    }
    /// What the agent of a client answers to `asker`: the name of the error, empty for none.
    static std::string answerOfAgent(const QDBusConnection& client, const QDBusConnection& asker,
                                     const QString& method, const QVariantList& arguments) {
        auto question =
            QDBusMessage::createMethodCall(client.baseService(), u"/com/vornack/quenthisar/agent"_s,
                                           u"org.bluez.Agent1"_s, method);
        question.setArguments(arguments);
        auto reply = asker.asyncCall(question);
        if (!runUntil([&] { return reply.isFinished(); })) return "no answer";
        return reply.error().name().toStdString();
    }

    BluezStage stage{BluezStage::Daemon::none};
    QDBusConnection bus = stage.connect();
    dongle::ObjectTree tree{bus};
    QStringList calls;
    QVariantMap filter; // of the last SetDiscoveryFilter
    QString unanswered, refused;

private:
    bool answer(const QDBusMessage& call) {
        calls += call.path() + u' ' + call.member();
        if (call.member() == unanswered) return true;
        if (call.member() == refused) {
            tree.fail(call, u"org.bluez.Error.InProgress"_s, u"no"_s);
            return true;
        }
        if (call.member() == u"SetDiscoveryFilter")
            filter = qdbus_cast<QVariantMap>(call.arguments().value(0));
        tree.reply(call);
        return true;
    }
};

TEST_F(LaidOutDaemon, HasWhatIsOnTheAirOrHeldDiscoveredAndNothingElse) {
    // Bluetooth devices choose their own names and services.
    auto wrong = onAir(u"wrong"_s);
    wrong[u"UUIDs"_s] = QStringList{u""_s, u"f1e00000"_s, ourService + u'0'};
    addDevice(5, wrong);
    const auto near = addDevice(2, onAir(u"near"_s));
    addDevice(3, {{u"Name"_s, u"out of range"_s}});
    addDevice(4, {{u"Alias"_s, u"held"_s}, {u"Connected"_s, true}});
    appear();
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("discovered held"));
    ASSERT_TRUE(waitForCall(hci + u" StartDiscovery"_s));
    EXPECT_EQ(user.log, (Lines{"state unknown", "state on", "discovered near", "discovered held"}));

    tree.remove(near);
    addDevice(2, onAir(u"near"_s));
    EXPECT_TRUE(runUntil([&] { return user.count("discovered near") == 2; })) << "it was absent";
    // No service here: the filters of all clients merge.
    EXPECT_EQ(filter, (QVariantMap{{u"Transport"_s, u"le"_s}}));
}

TEST_F(LaidOutDaemon, IsAskedForDiscoveryAgain) {
    // After a daemon was killed its successor answers so while the controller still does what the
    // first one asked of it, and nothing comes of it.
    refused = u"StartDiscovery"_s;
    appear();
    const CentralUser user(stage.connect());
    ASSERT_TRUE(waitForCall(hci + u" StopDiscovery"_s));
    refused.clear();
    calls.clear();
    EXPECT_TRUE(waitForCall(hci + u" StartDiscovery"_s));
}

TEST_F(LaidOutDaemon, IsGrantedAuthorizationForTheDeviceThatIsProbedAndNothingElse) {
    unanswered = u"WriteValue"_s;
    auto linked = onAir(u"dongle"_s);
    linked.insert({{u"Connected"_s, true}, {u"ServicesResolved"_s, true}});
    const auto device = addDevice(1, linked);
    const auto service = device + u"/service0001"_s, characteristic = service + u"/char0002"_s;
    tree.add(service, {{u"org.bluez.GattService1"_s,
                        {{u"UUID"_s, ourService}, {u"Device"_s, path(device)}}}});
    tree.add(characteristic, {{u"org.bluez.GattCharacteristic1"_s,
                               {{u"UUID"_s, ourCharacteristic}, {u"Service"_s, path(service)}}}});
    appear();
    const auto client = stage.connect();
    CentralUser user(client);
    user.connect();
    ASSERT_TRUE(waitForCall(characteristic + u" WriteValue"_s));
    const auto authorize = u"RequestAuthorization"_s;
    const auto ours = path(device), other = path(hci + u"/dev_C0_00_00_00_00_02"_s);
    EXPECT_EQ(answerOfAgent(client, bus, authorize, {ours}), "");
    constexpr auto rejected = "org.bluez.Error.Rejected";
    EXPECT_EQ(answerOfAgent(client, stage.connect(), authorize, {ours}), rejected) << "a stranger";
    EXPECT_EQ(answerOfAgent(client, bus, authorize, {other}), rejected);
    EXPECT_EQ(answerOfAgent(client, bus, u"RequestConfirmation"_s, {ours, 123456U}), rejected);
    user.cancel();
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_EQ(answerOfAgent(client, bus, authorize, {ours}), rejected) << "nothing is probed now";
    EXPECT_FALSE(calls.contains(u"/org/bluez RequestDefaultAgent"_s));
}

} // namespace
} // namespace quenthisar
