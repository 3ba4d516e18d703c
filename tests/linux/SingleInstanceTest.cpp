// SPDX-License-Identifier: MIT
#include "demo/XServer.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>

#include <chrono>
#include <csignal>
#include <memory>
#include <set>
#include <string>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr auto limit = 20s;

/// Programs on a session bus of their own.
class SingleInstance : public testing::Test {
protected:
    using Program = std::unique_ptr<demo::ChildProcess>;

    Program start(const QStringList& arguments = {}) {
        return std::make_unique<demo::ChildProcess>(
            QStringLiteral(INSTANCE), arguments,
            demo::ChildProcess::Environment{{u"DBUS_SESSION_BUS_ADDRESS"_s, address}});
    }
    static std::string says(const Program& program) {
        return program->readLine(limit).value_or(u"nothing"_s).toStdString();
    }
    static int endOf(const Program& program) { return program->waitForEnd(limit).value_or(-2); }

    std::unique_ptr<demo::PrivateBus> bus = std::make_unique<demo::PrivateBus>();
    QString address = bus->address();

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
};

TEST_F(SingleInstance, LeavesExactlyOneOfTwoThatStartInOneInstant) {
    for (int i = 0; i < 100; ++i) {
        Program programs[] = {start(), start()};
        const std::string words[] = {says(programs[0]), says(programs[1])};
        ASSERT_EQ((std::set{words[0], words[1]}), (std::set<std::string>{"first", "second"})) << i;
        const auto& first = programs[words[0] == "first" ? 0 : 1];
        ASSERT_EQ(says(first), "activated") << i;
        // The next two meet its end.
        first->signal(i % 2 == 0 ? SIGKILL : SIGTERM);
        ASSERT_TRUE(first->waitForEnd(limit));
    }
}

/// Has the name, and is asked for its window, but never answers.
class Silent final : public QDBusVirtualObject {
public:
    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& /*message*/, const QDBusConnection& /*from*/) override {
        return isAsked = true;
    }
    bool isAsked = false;
};

TEST_F(SingleInstance, TakesOverFromAFirstThatEndsWithoutAnAnswer) {
    Silent silent;
    {
        auto first = QDBusConnection::connectToBus(address, u"first"_s);
        first.registerVirtualObject(u"/com/vornack/quenthisar"_s, &silent);
        ASSERT_TRUE(first.registerService(u"com.vornack.quenthisar"_s));
    }
    const auto second = start();
    const QDeadlineTimer deadline(limit);
    while (!silent.isAsked && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QDBusConnection::disconnectFromBus(u"first"_s);
    EXPECT_EQ(says(second), "first");
}

TEST_F(SingleInstance, DoesNotWaitLongForAFirstThatHangs) {
    const auto first = start();
    ASSERT_EQ(says(first), "first");
    first->signal(SIGSTOP);
    const auto second = start();
    EXPECT_EQ(says(second), "second");
    EXPECT_EQ(endOf(second), 0);
    first->signal(SIGCONT);
    EXPECT_EQ(says(first), "activated") << "later is better than never";
}

TEST_F(SingleInstance, EndsWhenAskedTo) {
    const auto first = start();
    ASSERT_EQ(says(first), "first");
    EXPECT_EQ(says(start({u"--quit"_s})), "asked");
    EXPECT_EQ(endOf(first), 0);
    EXPECT_EQ(says(start({u"--quit"_s})), "nobody");
}

TEST_F(SingleInstance, RunsWithoutABusAndWhenItIsLost) {
    const auto first = start();
    ASSERT_EQ(says(first), "first");
    bus.reset();
    const auto second = start();
    EXPECT_EQ(says(second), "first") << "it can't know";
    EXPECT_TRUE(first->isRunning());
    EXPECT_TRUE(second->isRunning());
}

} // namespace
} // namespace quenthisar
