// SPDX-License-Identifier: MIT
#include "Linux/SessionLock.h"

#include "demo/FakeLogind.h"
#include "demo/XServer.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using demo::FakeLogind;
using Changes = std::vector<bool>;

/// So long that no test sees the end of it.
constexpr auto never = 10min;

class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override { application = std::make_unique<QCoreApplication>(argumentCount, list); }
    void TearDown() override { application.reset(); }

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    std::unique_ptr<QCoreApplication> application;
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

bool waitUntil(const std::function<bool()>& reached) {
    const QDeadlineTimer deadline(15s);
    while (!reached()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

/// A connection of its own, as another program has.
class Client {
public:
    explicit Client(const demo::PrivateBus& to)
        : bus(QDBusConnection::connectToBus(to.address(), nextName())) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { QDBusConnection::disconnectFromBus(bus.name()); }

    /// The signal is on the bus, before all that anybody sends later, when this returns.
    void signal(const QString& path, const QString& interface, const QString& member,
                const QVariantList& arguments = {}) const {
        auto message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        bus.send(message);
        EXPECT_TRUE(bus.interface()->registeredServiceNames().isValid());
    }

    QDBusConnection bus;

private:
    static QString nextName() {
        static int number = 0;
        return u"client-%1"_s.arg(++number);
    }
};

/// A screen saver that serves at one of the two usual paths.
class FakeScreenSaver final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    FakeScreenSaver(const demo::PrivateBus& bus, QString at, bool active)
        : client(bus), path(std::move(at)), isActive(active) {
        EXPECT_TRUE(client.bus.registerObject(path, this, QDBusConnection::ExportAllSlots));
        EXPECT_TRUE(client.bus.registerService(u"org.freedesktop.ScreenSaver"_s));
    }

    void setActive(bool active) {
        isActive = active;
        client.signal(path, u"org.freedesktop.ScreenSaver"_s, u"ActiveChanged"_s, {active});
    }

    Q_SLOT bool GetActive() { return isActive; }

private:
    Client client;
    QString path;
    bool isActive;
};

struct SessionLockTest : testing::Test {
    ~SessionLockTest() override { qunsetenv("XDG_SESSION_ID"); }

    void startLogind(FakeLogind::Options options = {}) {
        logind.emplace(systemBus.address(), std::move(options));
    }
    void follow(std::chrono::milliseconds confirmation = never) {
        lock.emplace(
            system.bus, session.bus,
            [this](bool isLocked) {
                EXPECT_EQ(isLocked, lock->isLocked());
                changes.push_back(isLocked);
            },
            confirmation);
        EXPECT_FALSE(lock->isLocked()) << "nobody has answered yet";
    }
    /// Follows a session that is unlocked; its manager's answers have been read.
    void followUnlocked(FakeLogind::Options options = {},
                        std::chrono::milliseconds confirmation = never) {
        options.lockedHint = true;
        startLogind(std::move(options));
        follow(confirmation);
        ASSERT_TRUE(become(true));
        logind->setLockedHint(false);
        ASSERT_TRUE(become(false));
        changes.clear();
    }
    void sleepAndWakeUp() {
        for (const bool isNear : {true, false}) {
            logind->emitPrepareForSleep(isNear);
            ASSERT_TRUE(become(isNear)) << testing::PrintToString(changes);
        }
        changes.clear();
    }
    bool become(bool isLocked) {
        return waitUntil([&] { return lock->isLocked() == isLocked; });
    }

    const demo::PrivateBus systemBus, sessionBus;
    const Client system{systemBus}, session{sessionBus};
    std::optional<FakeLogind> logind;
    std::optional<SessionLock> lock;
    Changes changes;
};

TEST_F(SessionLockTest, FollowsTheHintThatItFindsAtItsStart) {
    startLogind({.lockedHint = true});
    follow();
    ASSERT_TRUE(become(true));
    logind->setLockedHint(false);
    ASSERT_TRUE(become(false));
    logind->setLockedHint(true);
    ASSERT_TRUE(become(true));
    EXPECT_EQ(changes, (Changes{true, false, true}));
}

TEST_F(SessionLockTest, FindsTheSessionOfAUsersServiceAndOfARemoteShell) {
    for (const char* processSession : {"", "2"}) {
        followUnlocked({.processSession = QString::fromLatin1(processSession),
                        .processSessionType = u"tty"_s,
                        .displaySession = u"7"_s});
        if (*processSession) logind->setLockedHint(true, QString::fromLatin1(processSession));
        sleepAndWakeUp();
        logind->setLockedHint(true, u"7"_s);
        ASSERT_TRUE(become(true)) << processSession;
        logind->setLockedHint(false, u"7"_s);
        ASSERT_TRUE(become(false)) << processSession;
        logind.reset();
    }
    // Where no session is graphical (one started by hand on a console), its own counts.
    followUnlocked(
        {.processSession = u"2"_s, .processSessionType = u"tty"_s, .displaySession = {}});
    logind->setLockedHint(true, u"2"_s);
    EXPECT_TRUE(become(true));
}

TEST_F(SessionLockTest, FindsTheSessionThatTheEnvironmentNames) {
    qputenv("XDG_SESSION_ID", "7");
    startLogind({.lockedHint = true, .processSession = {}, .displaySession = u"7"_s});
    follow();
    EXPECT_TRUE(become(true));
}

TEST_F(SessionLockTest, ADemandCountsUntilTheLockerDecides) {
    followUnlocked();
    logind->emitLock();
    ASSERT_TRUE(become(true));
    logind->setLockedHint(true);
    logind->setLockedHint(false);
    ASSERT_TRUE(become(false)) << "the locker came and went";
    logind->emitLock();
    ASSERT_TRUE(become(true));
    logind->emitUnlock();
    ASSERT_TRUE(become(false));
    EXPECT_EQ(changes, (Changes{true, false, true, false}));
    logind->setLockedHint(true);
    ASSERT_TRUE(become(true));
    logind->emitUnlock();
    logind->emitLock();
    logind->setLockedHint(false);
    ASSERT_TRUE(become(false)) << "an unlock that the locker ignores is none, nor a second lock";
    EXPECT_EQ(changes, (Changes{true, false, true, false, true, false}));
}

TEST_F(SessionLockTest, ADemandThatNobodyAnswersIsDropped) {
    followUnlocked({}, 50ms);
    logind->emitLock();
    ASSERT_TRUE(waitUntil([&] { return changes.size() == 2; }));
    EXPECT_EQ(changes, (Changes{true, false}));
}

TEST_F(SessionLockTest, IsLockedFromBeforeSleepUntilItWakesUp) {
    startLogind({.preparesForSleep = true});
    follow();
    ASSERT_TRUE(become(true));
    logind->emitPrepareForSleep(false);
    ASSERT_TRUE(become(false));
    EXPECT_EQ(changes, (Changes{true, false}));
}

TEST_F(SessionLockTest, AManagerThatGoesLeavesItLockedOnlyForAMoment) {
    startLogind({.lockedHint = true});
    follow(50ms);
    ASSERT_TRUE(become(true));
    logind.reset();
    ASSERT_TRUE(become(false));
    startLogind({.lockedHint = true});
    ASSERT_TRUE(become(true)) << "read anew";
    logind->emitPrepareForSleep(true);
    logind.reset();
    ASSERT_TRUE(become(false));
    EXPECT_EQ(changes, (Changes{true, false, true, false}));
}

TEST_F(SessionLockTest, AManagerThatIsRestartedDoesNotUnlockIt) {
    startLogind({.lockedHint = true});
    follow();
    ASSERT_TRUE(become(true));
    QDBusServiceWatcher watcher(u"org.freedesktop.login1"_s, system.bus);
    bool isGone = false;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, [&] { isGone = true; });
    logind.reset();
    ASSERT_TRUE(waitUntil([&] { return isGone; }));
    QCoreApplication::processEvents();
    EXPECT_TRUE(lock->isLocked()) << "it may come back";
}

TEST_F(SessionLockTest, FollowsAScreenSaverAtEitherPlace) {
    for (const auto& path : {u"/ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s}) {
        follow();
        changes.clear();
        std::optional<FakeScreenSaver> saver;
        saver.emplace(sessionBus, path, true);
        ASSERT_TRUE(become(true)) << "one that comes later";
        saver->setActive(false);
        ASSERT_TRUE(become(false));
        saver->setActive(true);
        ASSERT_TRUE(become(true));
        saver.reset();
        ASSERT_TRUE(become(false)) << "one that went is not active";
        EXPECT_EQ(changes, (Changes{true, false, true, false}));
    }
}

TEST_F(SessionLockTest, StrangersAndOtherSessionsAreNotHeard) {
    const FakeScreenSaver saver{sessionBus, u"/ScreenSaver"_s, false};
    followUnlocked();
    const Client stranger{systemBus};
    const auto path = u"/org/freedesktop/login1/session/_31"_s;
    stranger.signal(path, u"org.freedesktop.login1.Session"_s, u"Lock"_s);
    stranger.signal(
        path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
        {u"org.freedesktop.login1.Session"_s, QVariantMap{{u"LockedHint"_s, true}}, QStringList{}});
    stranger.signal(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
                    u"PrepareForSleep"_s, {true});
    Client{sessionBus}.signal(u"/ScreenSaver"_s, u"org.freedesktop.ScreenSaver"_s,
                              u"ActiveChanged"_s, {true});
    logind->emitLock(u"9"_s);
    logind->setLockedHint(true, u"9"_s);
    // What follows from the rightful senders is seen after it, and undoes nothing of it.
    sleepAndWakeUp();
    EXPECT_FALSE(lock->isLocked());
}

TEST_F(SessionLockTest, WithoutABusItIsNotLocked) {
    const QDBusConnection none{u"no such connection"_s};
    SessionLock lonely(none, none, [](bool) { FAIL(); });
    QCoreApplication::processEvents();
    EXPECT_FALSE(lonely.isLocked());
}

TEST_F(SessionLockTest, WhatLockedItEndsWithItsBus) {
    std::optional<demo::PrivateBus> bus{std::in_place};
    const Client desktop{*bus};
    FakeScreenSaver saver{*bus, u"/ScreenSaver"_s, true};
    lock.emplace(system.bus, desktop.bus, [](bool) {});
    ASSERT_TRUE(become(true));
    bus.reset();
    EXPECT_TRUE(become(false));
}

} // namespace
} // namespace quenthisar

#include "SessionLockTest.moc"
