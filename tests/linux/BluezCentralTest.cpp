// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <QDBusPendingCall>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::PrintToString;
using Lines = std::vector<std::string>;

constexpr auto ourDongle = "discovered Zandrovelkin BLE";

Payload key(int number) {
    const auto usage = static_cast<std::uint8_t>(4 + number % 200);
    return Report::keyboard(static_cast<std::uint8_t>(number / 200 % 16), std::vector{usage});
}

/// What it was told of the dongle, without how the daemon came up.
Lines fromDiscovery(const CentralUser& user) {
    return {std::ranges::find(user.log, ourDongle), user.log.end()};
}

void sendKeys(const CentralUser& user, int count, Lines& sent) {
    for (int number = 0; number < count; ++number) {
        user.send(key(number));
        sent.push_back(hex(key(number)));
    }
}

TEST(BluezCentral, TakesADongleFromTheAirToPayloadsInOrder) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("characteristics 1 ok"));
    EXPECT_EQ(user.peripheral->identifier().text(), "B1ABD9C5-1662-54E1-9230-D2D423FEAF18");
    EXPECT_EQ(user.peripheral->state(), PeripheralState::connected);

    // Waiting neither for the probe's answer nor for the descriptor.
    Lines sent;
    sendKeys(user, 250, sent);
    EXPECT_TRUE(waitUntil([&] { return stage.received(u"descriptor"_s).size() >= sent.size(); }));
    EXPECT_EQ(stage.received(u"descriptor"_s), sent);
    EXPECT_EQ(stage.received(u"request"_s), Lines{hex(Report::pairingProbe)});
    EXPECT_EQ(stage.received(u"command"_s), Lines{});
    EXPECT_EQ(fromDiscovery(user),
              (Lines{ourDongle, "connected", "services 1 ok", "characteristics 1 ok", "probe ok"}));
}

TEST(BluezCentral, FindsServicesAnnouncedBeforeOrAfterTheyAreResolved) {
    for (const auto& order : {u"before"_s, u"after"_s}) {
        BluezStage stage;
        stage.ask(u"SetObjects"_s, {QString(), order});
        CentralUser user(stage.connect());
        user.makeReady();
        EXPECT_EQ(user.count("characteristics 1 ok"), 1) << order.toStdString();
    }
}

TEST(BluezCentral, SendsOverTheBusWhereNoDescriptorIsToBeHad) {
    for (const auto& fault : {u"refuse"_s, u"missing"_s}) {
        BluezStage stage;
        stage.ask(u"SetAcquire"_s, {QString(), fault});
        CentralUser user(stage.connect());
        user.makeReady();
        Lines sent;
        sendKeys(user, 50, sent);
        EXPECT_TRUE(waitUntil([&] { return stage.received(u"command"_s).size() >= sent.size(); }));
        EXPECT_EQ(stage.received(u"command"_s), sent) << fault.toStdString();
    }
}

TEST(BluezCentral, StaysConnectedWhenTheProbeIsRefused) {
    BluezStage stage;
    stage.ask(u"SetProbe"_s, {QString(), u"refuse"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("probe error"));
    user.send(key(1));
    EXPECT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(1)))));
    EXPECT_EQ(user.log.back(), "probe error");
}

TEST(BluezCentral, GrantsThePairingThatItsProbeAsksForAndNoOther) {
    BluezStage stage;
    stage.ask(u"SetProbe"_s, {QString(), u"encrypt"_s});
    const auto bus = stage.connect();
    CentralUser user(bus);
    user.makeReady();
    EXPECT_TRUE(stage.waitForFarEnd(u"pairing granted"_s));

    auto stranger =
        QDBusMessage::createMethodCall(bus.baseService(), u"/com/vornack/quenthisar/agent"_s,
                                       u"org.bluez.Agent1"_s, u"RequestAuthorization"_s);
    stranger << QVariant::fromValue(QDBusObjectPath(u"/org/bluez/hci0/dev_C0_00_00_00_00_01"_s));
    auto answer = stage.connect().asyncCall(stranger);
    EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); }));
    EXPECT_EQ(answer.error().name().toStdString(), "org.bluez.Error.Rejected");
}

TEST(BluezCentral, AnswersTheWriteUnderWayBeforeItReportsALostLinkOnce) {
    BluezStage stage;
    stage.ask(u"SetProbe"_s, {QString(), u"silent"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(stage.waitForFarEnd(u"report request"_s));
    stage.ask(u"Drop"_s, {QString()});
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.peripheral->services().size(), 0U);
    stage.ask(u"SetProbe"_s, {QString(), u"accept"_s});
    user.makeReady();
    EXPECT_EQ(fromDiscovery(user),
              (Lines{ourDongle, "connected", "services 1 ok", "characteristics 1 ok", "probe error",
                     "disconnected error", "connected", "services 1 ok", "characteristics 1 ok",
                     "probe ok"}));
}

TEST(BluezCentral, ReportsARefusedAttempt) {
    BluezStage stage;
    stage.ask(u"SetConnect"_s, {QString(), u"refuse"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("failed error"));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
    EXPECT_EQ(fromDiscovery(user), (Lines{ourDongle, "failed error"}));
}

TEST(BluezCentral, EndsAnAttemptWhenAsked) {
    BluezStage stage;
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor(ourDongle));
    stage.ask(u"SetInRange"_s, {QString(), false});
    user.connect();
    ASSERT_TRUE(stage.waitForFarEnd(u"\" connecting"_s));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::connecting);
    user.cancel();
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnecting);
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_TRUE(stage.waitForFarEnd(u"connecting canceled"_s));
    EXPECT_EQ(user.count("failed error"), 0);
}

TEST(BluezCentral, EndsTheDaemonsLinkAndDiscoversTheDongleAgain) {
    BluezStage stage({}, {u"--disconnect-delay"_s, u"100"_s});
    CentralUser user(stage.connect());
    user.makeReady();
    user.cancel();
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
    EXPECT_TRUE(waitUntil([&] { return user.count(ourDongle) == 2; }));
    EXPECT_EQ(user.count("disconnected error"), 0);
}

TEST(BluezCentral, TakesOverALinkThatTheDaemonHoldsFromAnEarlierRun) {
    BluezStage stage;
    { CentralUser(stage.connect()).makeReady(); }
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor(ourDongle));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);
    user.makeReady();
    user.send(key(7));
    EXPECT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(7)))));
    EXPECT_EQ(stage.farEnd().filter(u"\" connecting"_s).size(), 1);
}

TEST(BluezCentral, TellsANewNameAsADiscovery) {
    BluezStage stage({}, {u"--name"_s, QString()});
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("discovered (nameless)"));
    stage.ask(u"SetName"_s, {QString(), u"Desk"_s});
    EXPECT_TRUE(user.waitFor("discovered Desk"));
    EXPECT_EQ(std::ranges::count_if(
                  user.log, [](const auto& line) { return line.starts_with("discovered"); }),
              2)
        << PrintToString(user.log);
}

TEST(BluezCentral, ThinsMotionButNoKeysWhileTheLinkTakesNothing) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady();
    ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
    stage.ask(u"SetReading"_s, {QString(), false});
    Lines keys;
    constexpr int motions = 2000;
    for (int number = 1; number <= motions; ++number) {
        user.send(Report::mouse({.dx = number}));
        if (number % 10 == 0) {
            keys.push_back(hex(key(number)));
            user.send(key(number));
        }
    }
    stage.ask(u"SetReading"_s, {QString(), true});
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(motions)))));

    Lines arrivedKeys, arrivedMotions;
    for (const auto& payload : stage.received(u"descriptor"_s))
        (payload.starts_with("01") ? arrivedKeys : arrivedMotions).push_back(payload);
    EXPECT_EQ(arrivedKeys, keys);
    EXPECT_LT(arrivedMotions.size(), motions / 2U);
    // The newest ones are there without a gap.
    ASSERT_GE(arrivedMotions.size(), BluezPayloadQueue::motionLimit);
    const auto newest = arrivedMotions.end() - BluezPayloadQueue::motionLimit;
    EXPECT_EQ(*newest, hex(Report::mouse({.dx = motions - 63})));
    EXPECT_EQ(arrivedMotions.back(), hex(Report::mouse({.dx = motions})));
    EXPECT_EQ(user.count("disconnected error"), 0);
}

TEST(BluezCentral, HandsEverythingOverWithoutTheEventLoopWhenTheProgramEnds) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady();
    Lines sent;
    sendKeys(user, 1, sent);
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(sent.back())));
    stage.ask(u"SetReading"_s, {QString(), false});
    sendKeys(user, 400, sent); // more than the descriptor takes at once
    stage.ask(u"SetReading"_s, {QString(), true});
    user.central.drain(10s);
    EXPECT_TRUE(waitUntil([&] { return stage.received(u"descriptor"_s) == sent; }));
}

TEST(BluezCentral, EndsALinkThatTakesNothingForTooLong) {
    BluezStage stage({}, {u"--disconnect-delay"_s, u"100"_s});
    CentralUser user(stage.connect());
    user.makeReady();
    ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
    stage.ask(u"SetReading"_s, {QString(), false});
    Lines sent;
    sendKeys(user, 6000, sent);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
}

} // namespace
} // namespace quenthisar
