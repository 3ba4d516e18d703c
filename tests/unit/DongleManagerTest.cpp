// SPDX-License-Identifier: MIT
#include "BLE/DongleManager.h"

#include "support/FakeCentral.h"
#include "support/FakeDisplays.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"
#include "support/VirtualClock.h"
#include "unit/Ids.h"
#include "unit/Payloads.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <set>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Ids = std::vector<Uuid>;
using enum DongleConnectionState;

struct Fixture {
    VirtualClock clock;
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeCentral central{clock};
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    AppState state{defaults, displays, loginItem, launcher, log};
    std::optional<DongleManager> manager;

    /// Dongles that are seen from the start, in this order.
    explicit Fixture(const Ids& seen = {}) {
        manager.emplace(state, central, clock, log);
        clock.settle();
        for (const auto& id : seen) central.discover(peripheral(id));
    }

    std::shared_ptr<FakePeripheral> peripheral(const Uuid& id) {
        auto& place = known[id];
        if (!place)
            place = central.add(id, DongleManager::serviceUUID, DongleManager::inputCharUUID);
        return place;
    }

    /// Binds the dongle to an edge and switches automatic connections on.
    void bind(const Uuid& id) {
        state.autoConnect = true;
        state.profiles.modify([&](auto& profiles) { profiles.front().bindings["left|D1"] = id; });
    }

    DongleConnectionState stateOf(const Uuid& id) const { return state.dongle(id)->state; }

    std::map<Uuid, std::shared_ptr<FakePeripheral>> known;
};

TEST(DongleManager, ScansWhenBluetoothIsOnAndNamesItsState) {
    Fixture f;
    EXPECT_EQ(f.central.scans, Ids{DongleManager::serviceUUID});
    const std::vector<std::pair<CentralState, const char*>> words{
        {CentralState::poweredOff, "Off"},          {CentralState::resetting, "Resetting"},
        {CentralState::unsupported, "Unsupported"}, {CentralState::unauthorized, "Unauthorized"},
        {CentralState::unknown, "Unknown"},         {CentralState::poweredOn, "On"}};
    for (const auto& [power, word] : words) {
        f.central.setPower(power);
        f.clock.settle();
        EXPECT_EQ(*f.state.bluetoothState, word);
    }
    EXPECT_EQ(f.central.scans.size(), 2U) << "once per power on";
}

TEST(DongleManager, ConnectsAndProbesOnceWithTheOnlyRequestOfTheLink) {
    Fixture f({A});
    int changes = 0;
    const auto signal = f.state.objectWillChange.subscribe([&] { ++changes; });
    f.manager->connect(A);
    EXPECT_EQ(f.stateOf(A), connecting);
    f.clock.settle();
    EXPECT_EQ(f.stateOf(A), connected);
    EXPECT_EQ(changes, 2) << "one assignment for each state";
    const Payload keys = Report::keyboard(1, {});
    f.manager->send(keys, A);
    f.manager->send(Report::mouse({}), A);
    EXPECT_EQ(f.central.writes,
              (std::vector<Write>{{A, bytes({0}), WriteType::withResponse},
                                  {A, keys, WriteType::withoutResponse},
                                  {A, Report::mouse({}), WriteType::withoutResponse}}));
}

TEST(DongleManager, IsConnectedBeforeTheProbeIsAnsweredButHoldsTheSlot) {
    Fixture f({A, B});
    f.peripheral(A)->answersProbe = false;
    f.manager->connect(A);
    f.manager->connect(B);
    f.clock.settle();
    EXPECT_EQ(f.stateOf(A), connected);
    EXPECT_EQ(f.central.attempts, Ids{A});
    f.clock.advance(29'999ms);
    EXPECT_EQ(f.central.attempts, Ids{A});
    f.clock.advance(1ms);
    EXPECT_EQ(f.central.attempts, (Ids{A, B}));
    EXPECT_EQ(f.stateOf(A), connected) << "the time-out frees the slot and nothing else";
}

TEST(DongleManager, AFailedProbeIsLoggedAndTheDongleStaysUsable) {
    Fixture f({A, B});
    f.peripheral(A)->probeError = "not permitted";
    f.manager->connect(A);
    f.manager->connect(B);
    f.clock.settle();
    EXPECT_EQ(f.log.lines,
              (std::vector<std::string>{"Quenthisar: pairing/write failed for "
                                        "00000000-0000-4000-8000-00000000AAAA: not permitted"}));
    EXPECT_EQ(f.stateOf(A), connected);
    EXPECT_EQ(f.stateOf(B), connected) << "the slot is freed all the same";
}

TEST(DongleManager, ConnectsOneAfterTheOther) {
    Fixture f({A, B, C});
    f.peripheral(A)->answersConnect = false;
    f.manager->connect(A);
    f.manager->connect(B);
    f.manager->connect(B);
    f.manager->connect(A);
    f.clock.advance(10s);
    EXPECT_EQ(f.central.attempts, Ids{A});
    f.central.failToConnect(f.peripheral(A));
    EXPECT_EQ(f.stateOf(A), disconnected);
    f.clock.advance(100s);
    EXPECT_EQ(f.central.attempts, (Ids{A, B})) << "no doubles, no retry after a failure";
}

TEST(DongleManager, ATimedOutAttemptGoesOnAndMaySucceedLate) {
    Fixture f({A, B});
    f.peripheral(A)->answersConnect = false;
    f.manager->connect(A);
    f.manager->connect(B);
    f.clock.advance(30s);
    EXPECT_EQ(f.stateOf(A), connecting);
    EXPECT_EQ(f.stateOf(B), connected);
    EXPECT_TRUE(f.central.cancelled.empty());
    f.central.connected(f.peripheral(A));
    f.clock.settle();
    EXPECT_EQ(f.stateOf(A), connected);
}

TEST(DongleManager, DropsUnusableRequestsUntilOneIsUsable) {
    Fixture f({A, B, C});
    f.peripheral(A)->answersConnect = false;
    f.manager->connect(A);
    f.manager->connect(*Uuid::parse("00000000-0000-4000-8000-00000000DDDD"));
    f.peripheral(B)->link = PeripheralState::connected;
    f.manager->connect(B);
    f.manager->connect(C);
    f.central.failToConnect(f.peripheral(A));
    EXPECT_EQ(f.central.attempts, (Ids{A, C}));
}

TEST(DongleManager, ListsDonglesInOrderOfDiscoveryUnderTheirBestName) {
    Fixture f;
    f.peripheral(B)->peripheralName = std::nullopt;
    f.peripheral(C)->peripheralName = std::nullopt;
    f.peripheral(A)->link = PeripheralState::connected;
    f.central.discover(f.peripheral(B), {.localName = "Advertised"});
    f.central.discover(f.peripheral(A), {.localName = "Advertised"});
    f.central.discover(f.peripheral(C));
    EXPECT_EQ(*f.state.dongles, (std::vector<Dongle>{{B, "Advertised", disconnected},
                                                     {A, "Zandrovelkin BLE", connected},
                                                     {C, "Zandrovelkin", disconnected}}));
}

TEST(DongleManager, RediscoveryRenamesButKeepsAConnectedDongleConnected) {
    Fixture f({A, B});
    f.manager->connect(A);
    f.clock.settle();
    f.peripheral(B)->answersConnect = false;
    f.manager->connect(B);
    f.peripheral(A)->peripheralName = "New";
    f.central.discover(f.peripheral(A));
    f.peripheral(B)->link = PeripheralState::disconnected;
    f.central.discover(f.peripheral(B));
    EXPECT_EQ(*f.state.dongles,
              (std::vector<Dongle>{{A, "New", connected}, {B, "Zandrovelkin BLE", disconnected}}));
}

TEST(DongleManager, ConnectsBoundDonglesByItselfWhenDiscovered) {
    Fixture f;
    f.bind(A);
    f.central.discover(f.peripheral(B));
    f.central.discover(f.peripheral(A));
    EXPECT_EQ(f.central.attempts, Ids{A});
    f.state.autoConnect = false;
    Fixture off;
    off.bind(A);
    off.state.autoConnect = false;
    off.central.discover(off.peripheral(A));
    EXPECT_TRUE(off.central.attempts.empty());
}

TEST(DongleManager, ReconnectsASecondAfterADropIfTheRulesStillAllow) {
    Fixture f;
    f.bind(A);
    const auto a = f.peripheral(A);
    f.central.discover(a);
    f.clock.settle();
    f.central.drop(a);
    EXPECT_EQ(f.stateOf(A), disconnected);
    f.clock.advance(999ms);
    EXPECT_EQ(f.central.attempts.size(), 1U);
    f.clock.advance(1ms);
    EXPECT_EQ(f.central.attempts.size(), 2U);
    EXPECT_EQ(f.stateOf(A), connected);

    f.central.drop(a);
    f.state.autoConnect = false;
    f.clock.advance(1s);
    f.state.autoConnect = true;
    f.clock.advance(100s);
    EXPECT_EQ(f.central.attempts.size(), 2U) << "tested again after the second, and once only";
}

TEST(DongleManager, LeavesADongleThatTheUserDisconnectedAloneUntilConnect) {
    Fixture f;
    f.bind(A);
    f.central.discover(f.peripheral(A));
    f.clock.settle();
    f.manager->disconnect(A);
    f.clock.advance(100s);
    EXPECT_EQ(f.stateOf(A), disconnected);
    f.central.discover(f.peripheral(A));
    EXPECT_EQ(f.central.attempts, Ids{A});
    f.manager->connect(A);
    EXPECT_EQ(f.central.attempts, (Ids{A, A}));
    f.clock.settle();
    f.central.drop(f.peripheral(A));
    f.clock.advance(1s);
    EXPECT_EQ(f.central.attempts.size(), 3U) << "connect took the mark away";
}

TEST(DongleManager, ConnectTakesTheMarkAwayFromTheAttemptThatIsBeingCancelled) {
    Fixture f;
    f.bind(A);
    f.peripheral(A)->answersConnect = false;
    f.central.discover(f.peripheral(A));
    f.manager->disconnect(A);
    f.manager->connect(A);
    f.clock.advance(999ms);
    EXPECT_EQ(f.central.attempts, Ids{A}) << "it was in flight: nothing was queued";
    f.clock.advance(1ms);
    EXPECT_EQ(f.central.attempts, (Ids{A, A})) << "a drop like any other";
}

TEST(DongleManager, DisconnectTakesAPendingRequestBack) {
    Fixture f({A, B});
    f.peripheral(A)->answersConnect = false;
    f.manager->connect(A);
    f.manager->connect(B);
    f.manager->disconnect(B);
    f.manager->disconnect(C);
    f.central.failToConnect(f.peripheral(A));
    EXPECT_EQ(f.central.attempts, Ids{A});
    EXPECT_EQ(f.central.cancelled, Ids{B});
}

TEST(DongleManager, DropsPayloadsForDonglesThatAreNotReady) {
    Fixture f({A});
    f.manager->send(Report::allKeysUp(), A);
    f.manager->send(Report::allKeysUp(), B);
    f.manager->connect(A);
    f.manager->send(Report::allKeysUp(), A);
    f.clock.settle();
    f.central.drop(f.peripheral(A));
    f.manager->send(Report::allKeysUp(), A);
    EXPECT_TRUE(f.central.takePayloads(A).empty());
    EXPECT_TRUE(f.central.takePayloads(B).empty());
}

TEST(DongleManager, IdentifyWigglesThreePeriodsAndEndsWhereItBegan) {
    Fixture f({A});
    f.manager->connect(A);
    f.clock.settle();
    f.central.writes.clear();
    f.manager->identify(A);
    constexpr std::array wiggle{25, 15, 0, -15, -25, -25, -15, 0, 15, 25};
    for (int step = 0; step < 30; ++step) {
        f.clock.advance(19'999us);
        EXPECT_TRUE(f.central.writes.empty()) << step;
        f.clock.advance(1us);
        const int dx = wiggle.at(static_cast<std::size_t>(step % 10));
        EXPECT_EQ(f.central.takePayloads(A), Payloads{Report::mouse({.dx = dx})}) << step;
    }
    f.clock.advance(1s);
    EXPECT_TRUE(f.central.writes.empty());
}

TEST(DongleManager, WithoutTheServiceTheSlotIsFreedByTheTimeOut) {
    Fixture f({A, B});
    f.peripheral(A)->offered.clear();
    f.manager->connect(A);
    f.manager->connect(B);
    f.clock.advance(30s);
    EXPECT_EQ(f.stateOf(A), connecting);
    EXPECT_EQ(f.central.attempts, (Ids{A, B}));
}

TEST(DongleManager, DelayedActionsDoNothingOnceItIsGone) {
    Fixture f;
    f.bind(A);
    f.central.discover(f.peripheral(A));
    f.clock.settle();
    f.central.drop(f.peripheral(A));
    f.manager.reset();
    f.clock.advance(60s);
    EXPECT_EQ(f.central.attempts, Ids{A});
}

} // namespace
} // namespace quenthisar
