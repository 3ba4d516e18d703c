// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What a real daemon was seen to do, and what this side must make of it.
namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using testing::PrintToString;
using Lines = std::vector<std::string>;

QDBusMessage acquireWrite() {
    auto call = QDBusMessage::createMethodCall(
        u"org.bluez"_s, u"/org/bluez/hci0/dev_C0_00_00_00_00_01/service0007/char0008"_s,
        u"org.bluez.GattCharacteristic1"_s, u"AcquireWrite"_s);
    call << QVariantMap{};
    return call;
}

// A daemon that discovers while it connects hears of the link from the socket before the kernel
// reports it, and then tells nobody.
TEST(BluezRecovery, IsConnectedByTheAnswerWhereTheLinkIsNotAnnounced) {
    BluezStage stage;
    stage.ask(u"SetConnect"_s, {QString(), u"unannounced"_s});
    CentralUser user(stage.connect());
    user.makeReady();
    stage.ask(u"Drop"_s, {QString()});
    EXPECT_TRUE(user.waitFor("disconnected error")) << PrintToString(user.log);
    user.makeReady();
}

// After a daemon was killed its successor answers so while the controller still does what the
// first one asked of it, and nothing comes of it.
TEST(BluezRecovery, AsksForDiscoveryAnewWhereItIsSaidToBeInProgress) {
    BluezStage stage;
    const auto bus = stage.connect();
    const auto start = QDBusMessage::createMethodCall(u"org.bluez"_s, u"/org/bluez/hci0"_s,
                                                      u"org.bluez.Adapter1"_s, u"StartDiscovery"_s);
    // The adapter comes some time after the daemon.
    ASSERT_TRUE(waitUntil([&] { return bus.call(start).type() == QDBusMessage::ReplyMessage; }));
    CentralUser user(bus);
    EXPECT_TRUE(stage.waitForFarEnd(u"discovering off"_s));
    EXPECT_TRUE(waitUntil([&] { return stage.farEnd().filter(u"discovering on"_s).size() == 2; }));
    user.makeReady();
}

TEST(BluezRecovery, WaitsForAnotherClientThatHasTheCharacteristicToItself) {
    BluezStage stage;
    { CentralUser(stage.connect()).makeReady(); }
    ASSERT_TRUE(stage.waitForFarEnd(u"answer ok"_s));
    auto other = std::make_optional(stage.connect().call(acquireWrite()));
    ASSERT_EQ(other->type(), QDBusMessage::ReplyMessage) << other->errorMessage().toStdString();

    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("probe error"));
    const auto key = Report::keyboard(0, std::vector<std::uint8_t>{4});
    user.send(key);
    user.send(Report::allKeysUp());
    other.reset();
    EXPECT_TRUE(waitUntil([&] { return stage.received(u"descriptor"_s).size() == 2; }));
    EXPECT_EQ(stage.received(u"descriptor"_s), (Lines{hex(key), hex(Report::allKeysUp())}));
    EXPECT_EQ(stage.received(u"command"_s), Lines{});
}

TEST(BluezRecovery, AcquiresAnotherDescriptorWhenItsOwnIsClosedAndTheLinkLives) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady();
    Lines sent;
    for (std::uint8_t usage = 4; usage < 8; ++usage) {
        if (usage == 6) stage.ask(u"CloseDescriptor"_s, {QString()});
        const auto key = Report::keyboard(0, std::vector{usage});
        user.send(key);
        sent.push_back(hex(key));
        ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(sent.back())));
    }
    EXPECT_EQ(stage.received(u"descriptor"_s), sent);
    EXPECT_EQ(stage.received(u"command"_s), Lines{});
}

TEST(BluezRecovery, ComesToItWhenAccessIsGrantedLater) {
    BluezStage stage;
    stage.ask(u"SetAccess"_s, {false});
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unauthorized"));
    stage.ask(u"SetAccess"_s, {true});
    EXPECT_TRUE(user.waitFor("state on")) << PrintToString(user.log);
    EXPECT_EQ(user.count("state unauthorized"), 1);
}

} // namespace
} // namespace quenthisar
