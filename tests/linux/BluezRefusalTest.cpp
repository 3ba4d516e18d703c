// SPDX-License-Identifier: MIT
#include "linux/BluezObjects.h"

#include <QDBusPendingCall>

namespace quenthisar {
namespace {

using BluezRefusal = LaidOutDaemon;

QVariant path(const QString& text) {
    return QVariant::fromValue(QDBusObjectPath(text));
}

/// What the agent of a client answers to `asker`: the name of the error, empty for none.
std::string answerOfAgent(const QDBusConnection& client, const QDBusConnection& asker,
                          const QString& method, const QVariantList& arguments) {
    auto question = QDBusMessage::createMethodCall(
        client.baseService(), u"/com/vornack/quenthisar/agent"_s, u"org.bluez.Agent1"_s, method);
    question.setArguments(arguments);
    auto reply = asker.asyncCall(question);
    if (!waitUntil([&] { return reply.isFinished(); })) return "no answer";
    return reply.error().name().toStdString();
}

TEST_F(BluezRefusal, GrantsAuthorizationToTheDeviceThatIsProbedAndRejectsAllElse) {
    const auto device = addLinkedDongle();
    daemon.unanswered = {u"WriteValue"_s};
    const auto bus = stage.connect();
    CentralUser user(bus);
    user.connect();
    ASSERT_TRUE(daemon.waitForCall(device + u"/service0001/char0002 WriteValue"_s));
    const auto authorize = u"RequestAuthorization"_s;
    const auto ours = path(device), other = path(hci + u"/dev_C0_00_00_00_00_02"_s);
    EXPECT_EQ(answerOfAgent(bus, daemon.bus, authorize, {ours}), "");
    constexpr auto rejected = "org.bluez.Error.Rejected";
    EXPECT_EQ(answerOfAgent(bus, stage.connect(), authorize, {ours}), rejected) << "a stranger";
    const std::pair<QString, QVariantList> others[] = {
        {authorize, {other}},
        {u"RequestPinCode"_s, {ours}},
        {u"RequestPasskey"_s, {ours}},
        {u"DisplayPinCode"_s, {ours, u"0000"_s}},
        {u"DisplayPasskey"_s, {ours, 0U, QVariant::fromValue(ushort{0})}},
        {u"RequestConfirmation"_s, {ours, 123456U}},
        {u"AuthorizeService"_s, {ours, ourService}},
    };
    for (const auto& [method, arguments] : others)
        EXPECT_EQ(answerOfAgent(bus, daemon.bus, method, arguments), rejected)
            << method.toStdString();

    user.cancel();
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_EQ(answerOfAgent(bus, daemon.bus, authorize, {ours}), rejected)
        << "nothing is probed any more";
    EXPECT_TRUE(daemon.calls.contains(u"/org/bluez RegisterAgent"_s));
    EXPECT_FALSE(daemon.calls.contains(u"/org/bluez RequestDefaultAgent"_s));
}

TEST_F(BluezRefusal, AsksForDiscoveryAgain) {
    daemon.addAdapter(hci, true);
    daemon.refused = {u"SetDiscoveryFilter"_s};
    daemon.appear();
    const CentralUser user(stage.connect());
    ASSERT_TRUE(daemon.waitForCall(hci + u" SetDiscoveryFilter"_s));
    // After a daemon was killed its successor answers so while the controller still does what the
    // first one asked of it, and nothing comes of it.
    daemon.refused = {u"StartDiscovery"_s};
    daemon.refusal = u"org.bluez.Error.InProgress"_s;
    ASSERT_TRUE(daemon.waitForCall(hci + u" StopDiscovery"_s));
    daemon.refused = {};
    daemon.calls.clear();
    EXPECT_TRUE(daemon.waitForCall(hci + u" StartDiscovery"_s));
}

TEST_F(BluezRefusal, WorksWithoutAnAgentAndEndsItsLinkWhateverTheDaemonSays) {
    addLinkedDongle();
    daemon.refused = {u"RegisterAgent"_s, u"AcquireWrite"_s, u"Disconnect"_s};
    CentralUser user(stage.connect());
    user.makeReady();
    user.send(Report::allKeysUp());
    EXPECT_TRUE(waitUntil([&] { return daemon.written.size() == 2; }));
    user.cancel();
    EXPECT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
}

TEST_F(BluezRefusal, WritesWhatWasRefusedWhileAnotherProgramHadTheDescriptor) {
    const auto device = addLinkedDongle(); // no descriptor is handed out
    CentralUser user(stage.connect());
    user.makeReady();
    user.send(Report::allKeysUp());
    ASSERT_TRUE(waitUntil([&] { return daemon.written.size() == 2; }));
    daemon.refusal = u"org.bluez.Error.NotPermitted"_s;
    daemon.refused = {u"WriteValue"_s, u"AcquireWrite"_s};
    daemon.written.clear();
    daemon.calls.clear();
    const auto sent = user.sendKeys(2);
    ASSERT_TRUE(daemon.waitForCall(device + u"/service0001/char0002 AcquireWrite"_s));
    daemon.refused = {};
    EXPECT_TRUE(waitUntil([&] { return daemon.written.size() == 2; }));
    EXPECT_EQ(daemon.written, sent);
}

/// So a daemon does when it learns the address behind a random one while pairing.
TEST_F(BluezRefusal, KeepsADongleWhoseAddressChangesOnItsLink) {
    const auto device = addLinkedDongle();
    CentralUser user(stage.connect());
    user.makeReady();
    const auto before = user.peripheral;
    daemon.tree.set(device, deviceInterface, u"Address"_s, u"00:00:00:00:00:AA"_s);
    daemon.tree.set(device, deviceInterface, u"UUIDs"_s, QStringList{ourService});
    daemon.tree.flush();
    daemon.tree.set(device, deviceInterface, u"Connected"_s, false);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.peripheral, before);
    EXPECT_EQ(user.count("discovered dongle"), 1);
}

} // namespace
} // namespace quenthisar
