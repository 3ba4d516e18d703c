// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using Lines = std::vector<std::string>;

constexpr auto ourDongle = "discovered Zandrovelkin BLE";

Lines states(const CentralUser& user) {
    Lines result;
    for (const auto& line : user.log)
        if (line.starts_with("state ")) result.push_back(line);
    return result;
}

TEST(BluezPresence, IsUnsupportedUntilADaemonAppears) {
    BluezStage stage(BluezStage::Daemon::none);
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unsupported"));
    stage.startDaemon();
    ASSERT_TRUE(user.waitFor(ourDongle));
    EXPECT_EQ(user.log.back(), ourDongle);
}

TEST(BluezPresence, FollowsAnAdapterThatIsPulledOutAndPluggedIn) {
    BluezStage stage({}, {u"--no-adapter"_s});
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unsupported"));
    stage.ask(u"SetAdapter"_s, {true});
    user.makeReady();
    user.forget();
    stage.ask(u"SetAdapter"_s, {false});
    ASSERT_TRUE(user.waitFor("state unsupported"));
    EXPECT_EQ(user.count("disconnected error"), 1);
    EXPECT_EQ(states(user), Lines{"state unsupported"});
}

TEST(BluezPresence, IsUnauthorizedWhereTheBusDeniesAccess) {
    BluezStage stage;
    stage.ask(u"SetAccess"_s, {false});
    CentralUser user(stage.connect());
    ASSERT_TRUE(user.waitFor("state unauthorized"));
    stage.ask(u"SetAccess"_s, {true});
    stage.ask(u"KillDaemon"_s);
    stage.ask(u"StartDaemon"_s);
    user.makeReady();
}

TEST(BluezPresence, IsResettingWhenTheBusIsLost) {
    BluezStage stage;
    CentralUser user(stage.connect());
    user.makeReady();
    stage.endBus();
    EXPECT_TRUE(user.waitFor("state resetting"));
    EXPECT_EQ(user.count("disconnected error"), 1);
}

TEST(BluezPresence, IsUnsupportedWhenAnotherBusComesWithoutADaemon) {
    BluezStage stage;
    const demo::PrivateBus next;
    BluezCentral central(stage.connect(), [&] {
        return QDBusConnection::connectToBus(next.address(), u"the next bus"_s);
    });
    ASSERT_TRUE(waitUntil([&] { return central.state() == CentralState::poweredOn; }));
    stage.endBus();
    EXPECT_TRUE(waitUntil([&] { return central.state() == CentralState::resetting; }));
    EXPECT_TRUE(waitUntil([&] { return central.state() == CentralState::unsupported; }));
}

TEST(BluezPresence, IsUnsupportedWithoutABus) {
    CentralUser user(QDBusConnection(u"no such connection"_s));
    EXPECT_TRUE(user.waitFor("state unsupported"));
    EXPECT_EQ(user.central.state(), CentralState::unsupported);
}

} // namespace
} // namespace quenthisar
