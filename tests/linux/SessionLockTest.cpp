// SPDX-License-Identifier: MIT
#include "Linux/SessionLock.h"

#include "demo/FakeLogind.h"
#include "demo/XServer.h"
#include "support/RunUntil.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace quenthisar {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using demo::FakeLogind;
using test::runUntil;
using Changes = std::vector<bool>;

const auto saverInterface = u"org.freedesktop.ScreenSaver"_s;

/// As another program has.
QDBusConnection connectionTo(const demo::PrivateBus& bus) {
    static int number = 0;
    return QDBusConnection::connectToBus(bus.address(), QString::number(++number));
}

/// The signal is on the bus, before all that anybody sends later, when this returns.
void emitSignal(const QDBusConnection& from, const QString& path, const QString& interface,
                const QString& member, const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createSignal(path, interface, member);
    message.setArguments(arguments);
    from.send(message);
    EXPECT_TRUE(from.interface()->registeredServiceNames().isValid());
}

/// A screen saver that serves at one of the two usual paths.
class FakeScreenSaver final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    FakeScreenSaver(const demo::PrivateBus& at, const QString& path) : bus(connectionTo(at)) {
        EXPECT_TRUE(bus.registerObject(path, this, QDBusConnection::ExportAllSlots));
        EXPECT_TRUE(bus.registerService(u"org.freedesktop.ScreenSaver"_s));
    }
    void end() { EXPECT_TRUE(bus.unregisterService(u"org.freedesktop.ScreenSaver"_s)); }
    Q_SLOT bool GetActive() const { return true; }

    QDBusConnection bus;
};

struct SessionLockTest : testing::Test {
    /// A demand that nobody confirms counts for so long; by default, no test sees the end of it.
    void follow(std::chrono::milliseconds confirmation = 10min) {
        lock.emplace(
            system, session, [this](bool isLocked) { changes.push_back(isLocked); }, confirmation);
        EXPECT_FALSE(lock->isLocked()) << "nobody has answered yet";
    }
    /// Follows a session that is locked, and its manager's answers have been read.
    void followLocked(FakeLogind::Options options = {},
                      std::chrono::milliseconds confirmation = 10min) {
        options.lockedHint = true;
        logind.emplace(systemBus.address(), std::move(options));
        follow(confirmation);
        ASSERT_TRUE(becomes(true));
    }
    void followUnlocked(std::chrono::milliseconds confirmation = 10min) {
        followLocked({}, confirmation);
        logind->setLockedHint(false);
        ASSERT_TRUE(becomes(false));
        changes.clear();
    }
    bool becomes(bool isLocked) {
        return runUntil([&] { return lock->isLocked() == isLocked; });
    }

    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
    const demo::PrivateBus systemBus, sessionBus;
    QDBusConnection system = connectionTo(systemBus), session = connectionTo(sessionBus);
    std::optional<FakeLogind> logind;
    std::optional<SessionLock> lock;
    Changes changes;
};

TEST_F(SessionLockTest, FollowsTheGraphicalSessionElseItsOwn) {
    // As a user's service, over a remote shell, and on a console without anything graphical.
    for (const auto& [own, graphical, followed] :
         {std::tuple{u""_s, u"7"_s, u"7"_s}, {u"2"_s, u"7"_s, u"7"_s}, {u"2"_s, u""_s, u"2"_s}}) {
        followLocked(
            {.processSession = own, .processSessionType = u"tty"_s, .displaySession = graphical});
        logind->setLockedHint(false, followed);
        ASSERT_TRUE(becomes(false)) << own.toStdString() << ", " << graphical.toStdString();
        logind.reset();
    }
}

TEST_F(SessionLockTest, ADemandCountsUntilTheLockerDecides) {
    followUnlocked();
    logind->emitLock();
    ASSERT_TRUE(becomes(true));
    logind->setLockedHint(true);
    logind->emitUnlock();
    logind->emitLock();
    logind->setLockedHint(false);
    ASSERT_TRUE(becomes(false)) << "an unlock that the locker ignores is none, nor a second lock";
    EXPECT_EQ(changes, (Changes{true, false}));
}

TEST_F(SessionLockTest, FollowsAScreenSaverAtEitherPlace) {
    for (const auto& path : {u"/ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s}) {
        follow();
        FakeScreenSaver saver{sessionBus, path};
        ASSERT_TRUE(becomes(true)) << "one that comes later";
        for (const bool isActive : {false, true}) {
            emitSignal(saver.bus, path, saverInterface, u"ActiveChanged"_s, {isActive});
            ASSERT_TRUE(becomes(isActive));
        }
        saver.end();
        ASSERT_TRUE(becomes(false)) << "one that went is not active";
    }
}

TEST_F(SessionLockTest, StrangersAndOtherSessionsAreNotHeard) {
    followUnlocked();
    const auto stranger = connectionTo(systemBus);
    const auto path = u"/org/freedesktop/login1/session/_31"_s;
    const auto interface = u"org.freedesktop.login1.Session"_s;
    emitSignal(stranger, path, interface, u"Lock"_s);
    emitSignal(stranger, path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
               {interface, QVariantMap{{u"LockedHint"_s, true}}, QStringList{}});
    emitSignal(stranger, u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
               u"PrepareForSleep"_s, {true});
    emitSignal(connectionTo(sessionBus), u"/ScreenSaver"_s, saverInterface, u"ActiveChanged"_s,
               {true});
    logind->emitLock(u"9"_s);
    logind->setLockedHint(true, u"9"_s);
    // What follows from the rightful sender is seen after it, and undoes nothing of it.
    logind->emitPrepareForSleep(true);
    ASSERT_TRUE(becomes(true));
    logind->emitPrepareForSleep(false);
    EXPECT_TRUE(becomes(false));
    EXPECT_EQ(changes, (Changes{true, false}));
}

} // namespace
} // namespace quenthisar

#include "SessionLockTest.moc"
