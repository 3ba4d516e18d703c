// SPDX-License-Identifier: MIT
#include "demo/XClient.h"
#include "linux/BluezStage.h"

#include <QDBusArgument>

#include <csignal>
#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Held = demo::XClient::Held;

TEST(VirtualDongle, PressesOnItsTargetAndReleasesWhenTheLinkDropsOrItIsToldToQuit) {
    const demo::XServer server;
    const demo::XClient target{server.display()};
    BluezStage stage{{}, {u"--display"_s, server.display()}};
    CentralUser user{stage.connect()};
    for (const bool quits : {false, true}) {
        user.log.clear();
        user.makeReady();
        user.send(Report::keyboard(2, std::vector<std::uint8_t>{4}));
        user.send(Report::mouse({.buttons = 1, .dx = 10, .dy = -4}));
        EXPECT_TRUE(waitUntil([&] { return target.held() == Held{{38, 50}, {1}}; }));
        EXPECT_EQ(target.pointer(), quits ? QPoint(660, 392) : QPoint(650, 396));
        if (quits) {
            stage.program().signal(SIGTERM);
            EXPECT_EQ(stage.program().waitForEnd(10s), 0);
        } else {
            stage.ask(u"Drop"_s, {QString{}});
            ASSERT_TRUE(user.waitFor("disconnected error"));
        }
        EXPECT_TRUE(waitUntil([&] { return target.held() == Held{}; }));
    }
}

/// Keeps in which order the daemon's end tells of a link.
class Order final : public QObject {
    Q_OBJECT

public:
    explicit Order(QDBusConnection bus) {
        bus.connect({}, u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s, u"InterfacesAdded"_s, this,
                    SLOT(take(QDBusMessage)));
        bus.connect({}, {}, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
                    SLOT(take(QDBusMessage)));
    }
    QStringList told;

private:
    Q_SLOT void take(const QDBusMessage& signal) {
        const auto what = signal.arguments().value(0).value<QDBusObjectPath>().path();
        if (what.contains(u"/char")) told += u"characteristic"_s;
        const auto changed = qdbus_cast<QVariantMap>(signal.arguments().value(1));
        if (changed.contains(u"ServicesResolved"_s)) told += u"resolved"_s;
    }
};

TEST(VirtualDongle, ShowsItsObjectsBeforeOrAfterTheyAreResolved) {
    for (const auto& [when, expected] :
         {std::pair{u"before"_s, QStringList{u"characteristic"_s, u"resolved"_s}},
          {u"after"_s, {u"resolved"_s, u"characteristic"_s}}}) {
        BluezStage stage;
        stage.ask(u"SetObjects"_s, {QString{}, when});
        const Order order{stage.connect()};
        CentralUser{stage.connect()}.makeReady();
        waitUntil([&] { return order.told.size() >= 2; });
        EXPECT_EQ(order.told, expected);
    }
}

} // namespace
} // namespace quenthisar

#include "VirtualDongleTests.moc"
