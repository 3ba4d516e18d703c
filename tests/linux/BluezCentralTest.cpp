// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <QDeadlineTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

/// What it was told of the dongle, without how the daemon came up.
Lines fromDiscovery(const CentralUser& user) {
    return {std::ranges::find(user.log, ourDongle), user.log.end()};
}

TEST(BluezCentral, TakesADongleFromTheAirToPayloadsInOrderAndBackToTheAir) {
    BluezStage stage({}, {u"--disconnect-delay"_s, u"100"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("characteristics 1 ok"));
    EXPECT_EQ(user.peripheral->identifier().text(), "B1ABD9C5-1662-54E1-9230-D2D423FEAF18");
    EXPECT_EQ(user.peripheral->state(), PeripheralState::connected);

    // Waiting neither for the probe's answer nor for the descriptor.
    const auto sent = user.sendKeys(250);
    EXPECT_TRUE(runUntil([&] { return stage.received(u"descriptor"_s).size() >= sent.size(); }));
    EXPECT_EQ(stage.received(u"descriptor"_s), sent);
    EXPECT_EQ(stage.received(u"request"_s), Lines{hex(Report::pairingProbe)});
    EXPECT_EQ(stage.received(u"command"_s), Lines{});
    EXPECT_EQ(fromDiscovery(user),
              (Lines{ourDongle, "connected", "services 1 ok", "characteristics 1 ok", "probe ok"}));

    user.log.clear();
    user.cancel();
    ASSERT_TRUE(user.waitFor(ourDongle));
    EXPECT_EQ(user.log, (Lines{"disconnected ok", ourDongle}));
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
}

TEST(BluezCentral, WorksWithDaemonsAndDonglesThatDiffer) {
    struct Difference {
        QString method, mode, way; // of the payloads
    };
    const Difference differences[] = {
        {u"SetObjects"_s, u"after"_s, u"descriptor"_s},
        {u"SetAcquire"_s, u"refuse"_s, u"command"_s},
        // A daemon that discovers while it connects hears of the link from the socket before the
        // kernel reports it, and then tells nobody.
        {u"SetConnect"_s, u"unannounced"_s, u"descriptor"_s},
    };
    for (const auto& each : differences) {
        SCOPED_TRACE(each.method.toStdString() + ' ' + each.mode.toStdString());
        BluezStage stage;
        stage.ask(each.method, {QString(), each.mode});
        CentralUser user(stage.connect());
        user.makeReady();
        const auto sent = user.sendKeys(50);
        EXPECT_TRUE(runUntil([&] { return stage.received(each.way).size() >= sent.size(); }));
        EXPECT_EQ(stage.received(each.way), sent);
        stage.ask(u"Drop"_s, {QString()});
        ASSERT_TRUE(user.waitFor("disconnected error"));
        user.log.clear();
        user.makeReady();
    }
}

TEST(BluezCentral, EndsAnAttemptWhenItIsRefusedOrWhenAsked) {
    BluezStage stage;
    stage.ask(u"SetConnect"_s, {QString(), u"refuse"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(user.waitFor("failed error"));
    EXPECT_EQ(fromDiscovery(user), (Lines{ourDongle, "failed error"}));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::disconnected);

    user.log.clear();
    stage.ask(u"SetConnect"_s, {QString(), u"silent"_s});
    user.connect();
    ASSERT_TRUE(stage.waitForFarEnd(u"\" connecting"_s));
    EXPECT_EQ(user.peripheral->state(), PeripheralState::connecting);
    user.cancel();
    ASSERT_TRUE(user.waitFor("disconnected ok"));
    EXPECT_TRUE(stage.waitForFarEnd(u"connecting canceled"_s));
}

/// On a link that is ready, whose far end can be kept from reading.
class BluezPayloads : public testing::Test {
protected:
    void SetUp() override {
        user.makeReady();
        ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
    }
    void setReading(bool reading) { stage.ask(u"SetReading"_s, {QString(), reading}); }

    BluezStage stage{{}, {u"--disconnect-delay"_s, u"100"_s}};
    CentralUser user{stage.connect()};
};

TEST_F(BluezPayloads, AreAllHandedOverWhenTheProgramEnds) {
    setReading(false);
    for (int number = 0; number < 2000; ++number) user.send(Report::mouse({.dx = 1}));
    const auto sent = user.sendKeys(400);
    setReading(true);
    EXPECT_TRUE(user.central.drain(10s));
    // The loop does not run any more.
    Lines arrived;
    const QDeadlineTimer limit(10s);
    while (std::ranges::find(arrived, sent.back()) == arrived.end() && !limit.hasExpired()) {
        QThread::msleep(1);
        arrived = stage.received(u"descriptor"_s);
    }
    const auto motions =
        std::erase_if(arrived, [](const auto& payload) { return payload.starts_with("02"); });
    EXPECT_EQ(arrived, sent) << "more than the descriptor takes at once";
    EXPECT_GE(motions, BluezPayloadQueue::motionLimit);
    EXPECT_LT(motions, 1000U) << "motion is thinned";
}

TEST_F(BluezPayloads, EndTheLinkThatTakesNoneForTooLong) {
    setReading(false);
    user.sendKeys(6000);
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
}

TEST_F(BluezPayloads, OfADaemonThatWasKilledAreNotSentByTheNext) {
    setReading(false);
    user.sendKeys(500);
    user.log.clear();
    stage.ask(u"KillDaemon"_s);
    ASSERT_TRUE(user.waitFor("state resetting"));
    EXPECT_EQ(user.log, (Lines{"disconnected error", "state resetting"}));

    user.log.clear();
    const auto before = stage.received(u"descriptor"_s).size();
    setReading(true);
    stage.ask(u"StartDaemon"_s);
    ASSERT_TRUE(user.waitFor(ourDongle));
    user.makeReady();
    user.send(Report::allKeysUp());
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(Report::allKeysUp()))));
    EXPECT_EQ(stage.received(u"descriptor"_s).size(), before + 1) << "nothing of before";
}

} // namespace
} // namespace quenthisar
