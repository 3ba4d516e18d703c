// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quenthisar {
namespace {

enum class Phase { idle, connecting, probing, waiting };

/// How far the link has come, and what goes then.
struct Fault {
    const char* name;
    Phase phase;
    const char* method;
    const char* state; // meanwhile
};

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
        user.sendKeys(500);
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
    const auto method = QString::fromLatin1(fault.method);
    const bool isOfTheAdapter = method.startsWith(u"Set");
    reach(fault.phase);
    user.log.clear();
    const auto former = user.peripheral;
    stage.ask(method, isOfTheAdapter ? QVariantList{false} : QVariantList{});
    ASSERT_TRUE(user.waitFor(fault.state)) << testing::PrintToString(user.log);
    auto expected = ending(fault.phase);
    expected.emplace_back(fault.state);
    // A daemon that stops takes its adapter away first.
    std::erase_if(user.log, [&](const auto& line) {
        return method == u"StopDaemon" && line == "state unsupported";
    });
    EXPECT_EQ(user.log, expected);
    EXPECT_EQ(former->state(), PeripheralState::disconnected);
    EXPECT_EQ(former->services().size(), 0U);

    user.log.clear();
    user.peripheral.reset();
    const auto before = stage.received(u"descriptor"_s).size();
    stage.ask(u"SetInRange"_s, {QString(), true});
    stage.ask(u"SetReading"_s, {QString(), true});
    // The agent, too, has to be there again.
    stage.ask(u"SetProbe"_s, {QString(), u"encrypt"_s});
    if (isOfTheAdapter)
        stage.ask(method, {true});
    else
        stage.ask(u"StartDaemon"_s);
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
    testing::Values(Fault{"KilledIdle", Phase::idle, "KillDaemon", "state resetting"},
                    Fault{"KilledConnecting", Phase::connecting, "KillDaemon", "state resetting"},
                    Fault{"KilledProbing", Phase::probing, "KillDaemon", "state resetting"},
                    Fault{"KilledWaiting", Phase::waiting, "KillDaemon", "state resetting"},
                    Fault{"StoppedProbing", Phase::probing, "StopDaemon", "state resetting"},
                    Fault{"PoweredOffConnecting", Phase::connecting, "SetPowered", "state off"},
                    Fault{"PoweredOffWaiting", Phase::waiting, "SetPowered", "state off"},
                    Fault{"PulledOutProbing", Phase::probing, "SetAdapter", "state unsupported"}),
    [](const auto& row) { return std::string{row.param.name}; });

} // namespace
} // namespace quenthisar
