// SPDX-License-Identifier: MIT
#include "e2e/WindowFixture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>

#include <csignal>

namespace quenthisar::e2e {

namespace {

constexpr auto wordLimit = 1000ms * sanitizerFactor, returnLimit = 50ms * sanitizerFactor;

/// What befalls the daemon or its adapter, and how it is undone.
struct Misfortune {
    const char* name;
    QString method, undo;
    QString word;     // for Bluetooth, meanwhile
    bool isOfAdapter; // else of the daemon
};

void PrintTo(const Misfortune& misfortune, std::ostream* out) {
    *out << misfortune.name;
}

} // namespace

/// Connected, with the window open, where it tells of Bluetooth.
class ToldFault : public WindowFixture {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(open({}));
        label = find(Role::label, u"Bluetooth: On"_s);
        ASSERT_TRUE(label && isReady());
    }

    bool says(const QString& word) const {
        return waitUntil([&] { return label->name() == u"Bluetooth: "_s + word; }, soon);
    }
    void expectWord(const std::function<void()>& befall, const QString& word) const {
        QElapsedTimer elapsed;
        elapsed.start();
        befall();
        EXPECT_TRUE(says(word)) << label->name().toStdString();
        EXPECT_LE(elapsed.elapsed(), wordLimit.count()) << word.toStdString();
    }

    std::optional<Accessible> label;
};

class AdapterFault : public ToldFault, public testing::WithParamInterface<Misfortune> {
protected:
    static QVariantList arguments(bool isOn) {
        return GetParam().isOfAdapter ? QVariantList{firstAdapter, isOn} : QVariantList{};
    }
    void befall() {
        expectWord([&] { ask(GetParam().method, arguments(false)); }, GetParam().word);
    }
    /// Afterwards the dongle is connected without anybody's help.
    void undo() {
        dongleMark = stage->rig.dongle().mark();
        expectWord([&] { ask(GetParam().undo, arguments(true)); }, u"On"_s);
        ASSERT_TRUE(isReady()) << "the connection does not return";
    }

    /// Whether one in a takeover is over; from the chord to the pointer's first motion.
    std::chrono::milliseconds returnDuringIt() {
        holdSome();
        befall();
        EXPECT_TRUE(nothingIsHeldOnTarget());
        hold(some(), false);
        const auto frozenAt = stage->host.pointer();
        stage->hands.moveBy({-25, 13});
        EXPECT_EQ(stage->host.pointer(), frozenAt);
        return timeOfReturn();
    }
};

TEST_P(AdapterFault, IsToldAtOnceAndOverWithoutHelp) {
    {
        SCOPED_TRACE("connecting");
        dongleMark = stage->rig.dongle().mark();
        ask(u"SetConnect"_s, {firstDongle, u"silent"_s});
        ask(u"Drop"_s, {firstDongle});
        ASSERT_TRUE(waitForEvent(u"connecting"_s));
        befall();
        ask(u"SetConnect"_s, {firstDongle, u"accept"_s});
        ASSERT_NO_FATAL_FAILURE(undo());
    }
    auto fastest = std::chrono::milliseconds::max();
    // A busy machine gets another try.
    for (int attempt = 0; attempt < 3 && fastest > returnLimit; ++attempt) {
        SCOPED_TRACE("in a takeover");
        ASSERT_TRUE(stage->cross(soon));
        fastest = std::min(fastest, returnDuringIt());
        ASSERT_NO_FATAL_FAILURE(undo());
    }
    EXPECT_LE(fastest, returnLimit);
    EXPECT_TRUE(stage->cross(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

INSTANTIATE_TEST_SUITE_P(Ways, AdapterFault,
                         testing::Values(Misfortune{"DaemonKilled", u"KillDaemon"_s,
                                                    u"StartDaemon"_s, u"Resetting"_s, false},
                                         Misfortune{"SwitchedOff", u"SetPowered"_s, u"SetPowered"_s,
                                                    u"Off"_s, true},
                                         Misfortune{"Unplugged", u"SetAdapter"_s, u"SetAdapter"_s,
                                                    u"Unsupported"_s, true}),
                         [](const auto& row) { return std::string{row.param.name}; });

/// A bus of the desktop ends in a takeover.
using LossOfABus = ToldFault;

TEST_F(LossOfABus, OfTheSystemIsToldAndOverWhenItIsBack) {
    ASSERT_TRUE(stage->cross(soon));
    holdSome();
    expectWord([&] { stage->rig.systemBusProgram().end(); }, u"Resetting"_s);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    hold(some(), false);
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));

    stage->rig.systemBusProgram().start();
    stage->rig.startDongle();
    EXPECT_TRUE(says(u"On"_s));
    EXPECT_TRUE(stage->cross(soon)) << "the link does not come back";
    expectTyped(u"Back"_s);
}

TEST_F(LossOfABus, OfTheSessionChangesNothingAndIsOverWhenItIsBack) {
    desktop.reset();
    ASSERT_TRUE(stage->cross(soon));
    stage->rig.sessionBusProgram().end();
    expectTyped(u"Still"_s);
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->cross(soon));
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());

    stage->rig.sessionBusProgram().start();
    const auto name = u"session again"_s;
    const auto bus = QDBusConnection::connectToBus(stage->rig.sessionBusAddress(), name);
    const auto item = u"org.kde.StatusNotifierItem-%1-1"_s.arg(stage->rig.quenthisar().pid());
    for (const auto& own : {u"com.vornack.quenthisar"_s, item})
        EXPECT_TRUE(
            waitUntil([&] { return bus.interface()->isServiceRegistered(own).value(); }, soon))
            << own.toStdString();
    QDBusConnection::disconnectFromBus(name);
    EXPECT_EQ(stage->rig.startOnceMore()->waitForEnd(soon), 0) << "the first does not answer";
    stage->rig.quenthisar().signal(SIGTERM);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
}

} // namespace quenthisar::e2e
