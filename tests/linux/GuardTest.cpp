// SPDX-License-Identifier: MIT
#include "Linux/Guard.h"
#include "linux/BluezStage.h"
#include "support/Guards.h"

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace quenthisar {

TEST(GuardProcess, EndsTheLatestLinksAfterTheProgramThoughItWasStoppedMeanwhile) {
    BluezStage stage({}, {u"--disconnect-delay"_s, u"100"_s});
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", stage.busAddress().toUtf8()); // the guard's, too
    CentralUser user(stage.connect());
    QStringList links;
    user.central.onLinks([&](const QStringList& paths) { links = paths; });
    user.makeReady();
    ASSERT_EQ(links, QStringList{u"/org/bluez/hci0/dev_C0_00_00_00_00_01"_s});

    std::optional<Guard> guard(std::in_place);
    const auto processes = test::guardsOf(::getpid());
    ASSERT_EQ(processes.size(), 1U);
    ::kill(processes.front(), SIGSTOP);
    // More than the socket holds.
    for (std::uint32_t resource = 1; guard->isToldAll() && resource < 100'000; ++resource)
        guard->setInputHolder(resource);
    guard->setDongles({"/org/bluez/hci0/dev_nobody", links.front().toStdString()});
    guard->setInputHolder(0);
    ASSERT_FALSE(guard->isToldAll());
    ::kill(processes.front(), SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return guard->isToldAll(); }));
    guard.reset();
    EXPECT_TRUE(stage.waitForFarEnd(u"disconnected host"_s));
    EXPECT_TRUE(waitUntil([&] { return links.isEmpty(); }));
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

} // namespace quenthisar
