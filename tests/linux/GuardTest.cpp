// SPDX-License-Identifier: MIT
#include "Linux/Guard.h"
#include "linux/BluezStage.h"
#include "support/Guards.h"

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace quenthisar {

using namespace Qt::StringLiterals;

/// On a bus where a user's dongle is linked.
class GuardProcess : public testing::Test {
protected:
    void SetUp() override {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", stage.busAddress().toUtf8()); // the guard's, too
        user.central.onLinks([this](const QStringList& paths) { links = paths; });
        user.makeReady();
        ASSERT_EQ(links, QStringList{u"/org/bluez/hci0/dev_C0_00_00_00_00_01"_s});
    }
    void TearDown() override { qunsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    BluezStage stage{{}, {u"--disconnect-delay"_s, u"100"_s}};
    CentralUser user{stage.connect()};
    QStringList links;
};

TEST_F(GuardProcess, EndsAllLinksThatItWasToldOfWhenTheProgramEnds) {
    std::optional<Guard> guard(std::in_place);
    guard->setDongles({"/org/bluez/hci0/dev_nobody", links.front().toStdString()});
    guard.reset();
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
    EXPECT_TRUE(waitUntil([this] { return links.isEmpty(); }));
}

TEST_F(GuardProcess, IsToldTheLatestThoughItWasStoppedMeanwhile) {
    std::optional<Guard> guard(std::in_place);
    const auto processes = test::guardsOf(::getpid());
    ASSERT_FALSE(processes.empty());
    const auto process = processes.back(); // earlier ones may be about to end
    ::kill(process, SIGSTOP);
    // More than the socket holds.
    for (std::uint32_t resource = 1; guard->isToldAll() && resource < 100'000; ++resource)
        guard->setInputHolder(resource);
    guard->setDongles({links.front().toStdString()});
    guard->setInputHolder(0);
    ASSERT_FALSE(guard->isToldAll());
    ::kill(process, SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return guard->isToldAll(); }));
    guard.reset();
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
}

} // namespace quenthisar
