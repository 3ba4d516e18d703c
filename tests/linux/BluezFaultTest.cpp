// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>
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
    return Report::keyboard(0, std::vector{static_cast<std::uint8_t>(4 + number % 200)});
}

enum class Phase { idle, connecting, probing, waiting };

/// What goes, and how far the link has come by then.
struct Fault {
    const char* name;
    Phase phase;
    QString method, undo;
    QVariantList arguments, undoArguments;
    const char* state; // meanwhile
};

const QVariantList none{}, off{false}, on{true};
const auto kill = u"KillDaemon"_s, stop = u"StopDaemon"_s, start = u"StartDaemon"_s,
           power = u"SetPowered"_s, adapter = u"SetAdapter"_s;

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

class BluezFault : public testing::TestWithParam<Fault> {
protected:
    void reach(Phase phase) {
        ASSERT_TRUE(user.waitFor(ourDongle));
        if (phase == Phase::idle) return;
        if (phase == Phase::connecting) stage.ask(u"SetInRange"_s, {QString(), false});
        if (phase == Phase::probing) stage.ask(u"SetProbe"_s, {QString(), u"silent"_s});
        user.connect();
        if (phase == Phase::connecting) {
            ASSERT_TRUE(stage.waitForFarEnd(u"\" connecting"_s));
            return;
        }
        if (phase == Phase::probing) {
            ASSERT_TRUE(stage.waitForFarEnd(u"report request"_s));
        } else {
            ASSERT_TRUE(user.waitFor("probe ok"));
            ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
            stage.ask(u"SetReading"_s, {QString(), false});
        }
        for (int number = 0; number < 500; ++number) user.send(key(number));
    }

    /// What it must have been told at the end of the phase.
    static Lines ending(Phase phase) {
        switch (phase) {
        case Phase::idle: return {};
        case Phase::connecting: return {"failed error"};
        case Phase::probing: return {"probe error", "disconnected error"};
        case Phase::waiting: return {"disconnected error"};
        }
        return {};
    }

    BluezStage stage;
    CentralUser user{stage.connect()};
};

TEST_P(BluezFault, EndsWhatWasUnderWayOnceAndBeginsAnewAfterwards) {
    const auto& fault = GetParam();
    reach(fault.phase);
    user.log.clear();
    const auto former = user.peripheral;
    stage.ask(fault.method, fault.arguments);
    ASSERT_TRUE(user.waitFor(fault.state)) << PrintToString(user.log);
    auto expected = ending(fault.phase);
    expected.emplace_back(fault.state);
    // A daemon that stops takes its adapter away first.
    std::erase_if(user.log, [&](const auto& line) {
        return fault.method == stop && line == "state unsupported";
    });
    EXPECT_EQ(user.log, expected);
    EXPECT_EQ(former->state(), PeripheralState::disconnected);
    EXPECT_EQ(former->services().size(), 0U);

    user.forget();
    const auto before = stage.received(u"descriptor"_s).size();
    stage.ask(u"SetInRange"_s, {QString(), true});
    stage.ask(u"SetReading"_s, {QString(), true});
    // The agent, too, has to be there again.
    stage.ask(u"SetProbe"_s, {QString(), u"encrypt"_s});
    stage.ask(fault.undo, fault.undoArguments);
    user.makeReady();
    EXPECT_EQ(user.peripheral, former);
    user.send(Report::allKeysUp());
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(Report::allKeysUp()))));
    EXPECT_EQ(user.count("disconnected error") + user.count("failed error"), 0);
    auto payloads = stage.received(u"descriptor"_s);
    payloads.erase(payloads.begin(), payloads.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_EQ(payloads, Lines{hex(Report::allKeysUp())}) << "nothing of before";
    EXPECT_EQ(stage.received(u"command"_s), Lines{});
}

INSTANTIATE_TEST_SUITE_P(
    Ways, BluezFault,
    testing::Values(
        Fault{"KilledIdle", Phase::idle, kill, start, none, none, "state resetting"},
        Fault{"KilledConnecting", Phase::connecting, kill, start, none, none, "state resetting"},
        Fault{"KilledProbing", Phase::probing, kill, start, none, none, "state resetting"},
        Fault{"KilledWaiting", Phase::waiting, kill, start, none, none, "state resetting"},
        Fault{"StoppedProbing", Phase::probing, stop, start, none, none, "state resetting"},
        Fault{"PoweredOffConnecting", Phase::connecting, power, power, off, on, "state off"},
        Fault{"PoweredOffWaiting", Phase::waiting, power, power, off, on, "state off"},
        Fault{"PulledOutProbing", Phase::probing, adapter, adapter, off, on, "state unsupported"}),
    [](const auto& row) { return std::string{row.param.name}; });

TEST(BluezLink, UsesTheNextAdapterWhileTheFirstIsBlocked) {
    BluezStage stage;
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor(ourDongle));
    stage.ask(u"SetBlocked"_s, {u"hci0"_s, true});
    ASSERT_TRUE(user.waitFor("state off"));
    user.forget();
    stage.ask(u"SetAdapter"_s, {u"hci1"_s, true});
    user.makeReady();
    stage.ask(u"SetBlocked"_s, {u"hci0"_s, false});
    user.log.clear();
    user.send(key(1));
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(1)))));
    EXPECT_EQ(user.log, Lines{}) << "one that comes back changes nothing";

    // Its way is the one that is left.
    stage.ask(u"SetAdapter"_s, {u"hci1"_s, false});
    ASSERT_TRUE(user.waitFor("disconnected error"));
    EXPECT_EQ(user.central.state(), CentralState::poweredOn);
    user.makeReady();
    user.send(key(2));
    EXPECT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(2)))));
}

TEST(BluezLink, IsNoneUntilTheServicesAreResolved) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady(); // whose objects stay
    stage.ask(u"Drop"_s, {QString()});
    ASSERT_TRUE(user.waitFor("disconnected error"));
    user.log.clear();
    stage.ask(u"SetConnect"_s, {QString(), u"unresolved"_s});
    user.connect();
    ASSERT_TRUE(waitUntil([&] { return stage.farEnd().filter(u"\" connected"_s).size() == 2; }));
    stage.ask(u"Drop"_s, {QString()});
    ASSERT_TRUE(user.waitFor("failed error"));
    EXPECT_EQ(user.log, Lines{"failed error"});
}

TEST(BluezLink, TellsOfADeviceWithoutTheService) {
    BluezStage stage;
    stage.ask(u"SetConnect"_s, {QString(), u"no-service"_s});
    CentralUser user(stage.connect());
    user.connect();
    EXPECT_TRUE(user.waitFor("services 0 ok"));
}

TEST(BluezLink, TellsANewNameOnlyWhenTheAttemptHasEnded) {
    BluezStage stage;
    stage.ask(u"SetConnect"_s, {QString(), u"silent"_s});
    CentralUser user(stage.connect());
    user.connect();
    ASSERT_TRUE(stage.waitForFarEnd(u"\" connecting"_s));
    stage.ask(u"SetName"_s, {QString(), u"Desk"_s});
    ASSERT_TRUE(waitUntil([&] { return user.peripheral->name() == "Desk"; }));
    EXPECT_EQ(user.count("discovered Desk"), 0);
    user.cancel();
    ASSERT_TRUE(user.waitFor("discovered Desk"));
    EXPECT_EQ(user.log[user.log.size() - 2], "disconnected ok");
}

TEST(BluezLink, GoesOverTheBusWhenAnotherProgramHasTheDescriptor) {
    BluezStage stage({}, {u"--disconnect-delay"_s, u"100"_s});
    CentralUser user(stage.connect());
    {
        CentralUser other(stage.connect());
        other.makeReady();
        ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
        user.connect();
        ASSERT_TRUE(user.waitFor("probe error")) << "the daemon allows only one writer";
        user.send(key(1));
        other.send(key(2));
        ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(2)))));
    }
    ASSERT_TRUE(stage.waitForFarEnd(u"descriptor closed"_s));
    user.send(key(3));
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(key(3)))));
    user.cancel();
    EXPECT_TRUE(user.waitFor("disconnected ok"));
}

TEST(BluezLink, KeepsOfWhatWaitedTooLongTheStateAlone) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady();
    ASSERT_TRUE(stage.waitForFarEnd(u"descriptor acquired"_s));
    stage.ask(u"SetReading"_s, {QString(), false});
    Lines sent;
    for (int number = 0; number < 1000; ++number) {
        user.send(key(number));
        sent.push_back(hex(key(number)));
    }
    user.send(Report::consumer(0xE9));
    user.send(Report::mouse({.buttons = 1, .dx = 5}));
    user.send(Report::allKeysUp());
    waitUntil([] { return false; }, 2100ms);
    stage.ask(u"SetReading"_s, {QString(), true});
    ASSERT_TRUE(stage.waitForFarEnd(QString::fromStdString(hex(Report::allKeysUp()))));

    auto arrived = stage.received(u"descriptor"_s);
    const Lines state{hex(Report::mouse({.buttons = 1})), hex(Report::allKeysUp())};
    ASSERT_GT(arrived.size(), 100U);
    ASSERT_LT(arrived.size(), sent.size());
    EXPECT_EQ(Lines(arrived.end() - 2, arrived.end()), state);
    arrived.resize(arrived.size() - 2); // what the descriptor had taken
    EXPECT_TRUE(std::ranges::equal(arrived, sent | std::views::take(arrived.size())));
}

} // namespace
} // namespace quenthisar
