// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace quenthisar::test {

namespace {

using enum EventType;
using namespace EventFlags;

std::uint64_t lastFlags(const XStage& stage) {
    return stage.delivered.empty() ? 0 : stage.delivered.back().flags;
}

class XTap : public testing::TestWithParam<Server> {};
class XTakeover : public testing::TestWithParam<Server> {};

const auto servers = testing::Values(Server::xvfb, Server::xorg);
constexpr auto nameOf = [](const testing::TestParamInfo<Server>& info) {
    return info.param == Server::xorg ? "Xorg" : "Xvfb";
};
INSTANTIATE_TEST_SUITE_P(, XTap, servers, nameOf);
INSTANTIATE_TEST_SUITE_P(, XTakeover, servers, nameOf);

} // namespace

TEST_P(XTap, ReportsTheLastPositionOfAFastMoveInDisplayCoordinates) {
    XStage stage{GetParam()};
    stage.setMonitor(QStringLiteral("SECOND"), QStringLiteral("800/100x600/100+400+100"),
                     QStringLiteral("none"));
    ASSERT_TRUE(
        runUntil([&] { return stage.displays.screens().front().localizedName == "SECOND"; }));
    for (int i = 0; i < 100; ++i) stage.hands.moveTo(500 + i, 300);
    stage.hands.moveTo(1199, 160);
    EXPECT_TRUE(runUntil([&] {
        return !stage.delivered.empty() && stage.delivered.back().location == Point{799, 60};
    }));
    EXPECT_FALSE(stage.sees(flagsChanged));
}

TEST_P(XTap, ReportsAMoveThatIsMadeWhileThePointerIsAskedFor) {
    XStage stage{GetParam()};
    for (int round = 0; round < 50; ++round) {
        stage.hands.moveTo(100, 100 + round);
        QCoreApplication::processEvents();
        stage.hands.moveTo(200, 100 + round);
        ASSERT_TRUE(runUntil([&] {
            return !stage.delivered.empty() &&
                   stage.delivered.back().location == Point{200, 100.0 + round};
        })) << "round "
            << round;
    }
}

TEST_P(XTap, FollowsThePointerWhileAnotherClientHoldsIt) {
    XStage stage{GetParam()};
    stage.hands.moveTo(300, 300);
    ASSERT_TRUE(stage.hands.grabAll());
    stage.hands.moveTo(310, 320);
    EXPECT_TRUE(runUntil([&] {
        return !stage.delivered.empty() && stage.delivered.back().location == Point{310, 320};
    }));
}

TEST_P(XTakeover, KeepsAllInputFromTheOtherClientsAndGivesItBack) {
    XStage stage{GetParam()};
    stage.hands.moveTo(640, 400);
    stage.onEvent = [&](const TapEvent& event) {
        if (event.type == mouseMoved && event.location == Point{642, 400}) stage.takeOver();
    };
    stage.hands.moveTo(642, 400);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    stage.witness.seen();
    stage.delivered.clear();

    stage.hands.moveBy(3, -7);
    stage.hands.tap(keyA);
    Motion moved{3 + 5, -7 + 5};
    for (int i = 0; i < 500; ++i) {
        const int dx = i % 3 - 2, dy = 1 - i % 2;
        stage.hands.moveBy(dx, dy);
        moved.x += dx;
        moved.y += dy;
    }
    stage.hands.click(1);
    stage.hands.button(3, true);
    stage.hands.moveBy(5, 5);
    stage.hands.button(3, false);
    for (const auto wheel : std::to_array<std::uint8_t>({4, 5, 6, 7, 4})) stage.hands.click(wheel);
    stage.hands.click(9);
    ASSERT_TRUE(stage.waitFor(otherMouseUp));
    EXPECT_EQ(stage.witness.seen(), std::vector<int>{});
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{642, 400}));
    EXPECT_EQ(stage.motion(), moved);

    auto types = stage.types();
    std::erase(types, mouseMoved);
    EXPECT_EQ(types, (std::vector{keyDown, keyUp, leftMouseDown, leftMouseUp, rightMouseDown,
                                  rightMouseDragged, rightMouseUp, scrollWheel, scrollWheel,
                                  scrollWheel, otherMouseDown, otherMouseUp}));
    std::int64_t lines = 0;
    for (const auto& event : stage.delivered) lines += event.scrollDelta;
    EXPECT_EQ(lines, +1);

    stage.giveBack();
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{642, 400}));
    stage.hands.tap(keyA);
    stage.hands.click(1);
    EXPECT_EQ(stage.witness.seen(), (std::vector<int>{XCB_KEY_PRESS, XCB_KEY_RELEASE,
                                                      XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE}));
}

TEST_P(XTakeover, DeliversOnlyMotionThatWasMadeDuringIt) {
    XStage stage{GetParam()};
    stage.hands.moveTo(600, 400);
    for (int i = 0; i < 20; ++i) stage.hands.moveBy(10, 0);
    stage.takeOver();
    stage.hands.moveBy(0, 1);
    ASSERT_TRUE(runUntil([&] { return stage.motion().y == 1; }));
    EXPECT_EQ(stage.motion(), (Motion{0, 1}));

    // After a pause, the second of two fast moves waits for what follows.
    const auto pauseEnd = MotionPacer::Clock::now() + MotionPacer::interval;
    ASSERT_TRUE(runUntil([&] { return MotionPacer::Clock::now() > pauseEnd; }));
    stage.delivered.clear();
    stage.hands.moveBy(0, 50);
    stage.hands.moveBy(0, 50);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    stage.cursor.associateMouseAndMouseCursorPosition(true);
    stage.takeOver();
    stage.delivered.clear();
    stage.hands.moveBy(3, 0);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    EXPECT_EQ(stage.motion(), (Motion{3, 0}));

    stage.giveBack();
    stage.delivered.clear();
    stage.hands.moveTo(100, 100);
    EXPECT_TRUE(runUntil([&] {
        return !stage.delivered.empty() && stage.delivered.back().location == Point{100, 100};
    }));
}

TEST_P(XTakeover, TurnsPositionsOfSyntheticInputIntoMotion) {
    XStage stage{GetParam()};
    stage.hands.moveTo(640, 400);
    stage.takeOver();
    stage.hands.moveTo(640, 400);
    stage.hands.moveTo(400, 300);
    stage.hands.moveTo(400, 300);
    stage.hands.moveTo(410, 290);
    stage.hands.click(2);
    ASSERT_TRUE(stage.waitFor(otherMouseUp));
    EXPECT_EQ(stage.motion(), (Motion{-230, -110}));
    stage.giveBack();
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{640, 400}));
}

TEST_P(XTakeover, DeliversKeysByPositionAndMediaKeysAsSystemDefinedEvents) {
    XStage stage{GetParam()};
    stage.takeOver();
    for (const auto key : {keyA, volumeUp, keyF20, printScreen}) stage.hands.tap(key);
    ASSERT_TRUE(runUntil([&] { return stage.delivered.size() >= 6; }));
    ASSERT_EQ(stage.types(),
              (std::vector{keyDown, keyUp, systemDefined, systemDefined, keyDown, keyUp}));
    EXPECT_EQ(stage.delivered[0].keyCode, 0);
    EXPECT_EQ(stage.delivered[2].subtype, auxiliaryControlButtons);
    EXPECT_EQ(stage.delivered[2].data1, 0x0A00);
    EXPECT_EQ(stage.delivered[3].data1, 0x0B00);
    EXPECT_EQ(stage.delivered[4].keyCode, 0xFFFF);
}

TEST_P(XTakeover, DeliversModifiersAsFlagsOnly) {
    XStage stage{GetParam()};
    stage.takeOver();
    stage.hands.key(leftControl, true);
    stage.hands.key(leftShift, true);
    stage.hands.tap(keyA);
    stage.hands.key(leftShift, false);
    stage.hands.key(leftAlt, true);
    stage.hands.key(leftSuper, true);
    ASSERT_TRUE(runUntil([&] { return lastFlags(stage) == (control | option | command); }));
    EXPECT_EQ(stage.types(), (std::vector{flagsChanged, flagsChanged, keyDown, keyUp, flagsChanged,
                                          flagsChanged, flagsChanged}));
    EXPECT_EQ(stage.delivered[2].flags, control | shift);
}

TEST_P(XTakeover, FollowsTheKeymapToOtherModifierBits) {
    XStage stage{GetParam()};
    stage.takeOver();
    const auto setLayout = [&](const char* option) {
        demo::ChildProcess program(QStringLiteral("setxkbmap"),
                                   {QStringLiteral("-display"), stage.server.display(),
                                    QStringLiteral("-layout"), QStringLiteral("de"),
                                    QStringLiteral("-option"), QString::fromLatin1(option)});
        ASSERT_EQ(program.waitForEnd(std::chrono::seconds(20)), 0);
    };
    const auto flagsOf = [&](std::uint8_t key) {
        stage.delivered.clear();
        stage.hands.tap(key);
        runUntil([&] { return stage.delivered.size() >= 2; });
        EXPECT_EQ(stage.types(), (std::vector{flagsChanged, flagsChanged}));
        return stage.delivered.empty() ? 0 : stage.delivered.front().flags;
    };
    setLayout("altwin:swap_lalt_lwin");
    EXPECT_EQ(flagsOf(leftAlt), command);
    EXPECT_EQ(flagsOf(leftSuper), option);
    EXPECT_EQ(flagsOf(rightAlt), option) << "AltGr";
    setLayout("ctrl:nocaps");
    EXPECT_EQ(flagsOf(capsLock), control);
}

TEST_P(XTakeover, LeavesCapsLockAndNumLockAsTheyWere) {
    XStage stage{GetParam()};
    stage.hands.tap(numLock);
    const auto before = stage.hands.modifiers();
    ASSERT_EQ(before, XCB_MOD_MASK_2);
    stage.takeOver();
    stage.hands.tap(numLock);
    stage.hands.tap(capsLock);
    ASSERT_TRUE(runUntil([&] { return lastFlags(stage) == alphaShift; }));
    ASSERT_EQ(stage.hands.modifiers(), XCB_MOD_MASK_LOCK);
    EXPECT_EQ(stage.types(), (std::vector{keyDown, keyUp, flagsChanged}))
        << "only Caps Lock is a modifier";
    stage.giveBack();
    EXPECT_EQ(stage.hands.modifiers(), before);
}

TEST_P(XTakeover, DeliversEachRepeatOfAHeldKey) {
    XStage stage{GetParam()};
    stage.takeOver();
    stage.hands.key(keyA, true);
    const auto presses = [&] { return std::ranges::count(stage.types(), keyDown); };
    EXPECT_TRUE(runUntil([&] { return presses() >= 3; }));
    EXPECT_FALSE(stage.sees(keyUp));
    stage.hands.key(keyA, false);
    EXPECT_TRUE(stage.waitFor(keyUp));
}

TEST_P(XTakeover, WaitsForAnotherClientToLetGo) {
    XStage stage{GetParam()};
    stage.hands.moveTo(640, 400);
    ASSERT_TRUE(stage.hands.grabAll());
    stage.takeOver();
    stage.delivered.clear();
    stage.hands.moveBy(5, 0);
    stage.hands.tap(keyA);
    stage.hands.key(leftControl, true);
    stage.hands.key(leftControl, false);
    stage.hands.click(1);
    ASSERT_TRUE(stage.waitFor(leftMouseUp));
    EXPECT_EQ(stage.types(),
              (std::vector{mouseMoved, flagsChanged, flagsChanged, leftMouseDown, leftMouseUp}))
        << "keys still reach the other client";
    EXPECT_EQ(stage.motion(), (Motion{5, 0}));
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{640, 400}));

    constexpr auto line = "Quenthisar: input grab refused for over a second";
    EXPECT_TRUE(runUntil([&] { return !stage.log.lines.empty(); }));
    stage.hands.ungrabAll();
    stage.witness.seen();
    stage.delivered.clear();
    EXPECT_TRUE(runUntil([&] {
        stage.hands.tap(keyA);
        return stage.sees(keyUp);
    }));
    stage.witness.seen();
    stage.delivered.clear();
    stage.hands.moveBy(5, 0);
    stage.hands.click(1);
    ASSERT_TRUE(stage.waitFor(leftMouseUp));
    EXPECT_EQ(stage.witness.seen(), std::vector<int>{});
    std::erase_if(stage.delivered, [](const auto& e) {
        return e.keyCode == 0 && (e.type == keyUp || e.type == keyDown);
    });
    EXPECT_EQ(stage.types(), (std::vector{mouseMoved, leftMouseDown, leftMouseUp}));
    EXPECT_EQ(stage.log.lines, std::vector<std::string>{line});
}

TEST_P(XTakeover, EndsInsideItsOwnCallback) {
    XStage stage{GetParam()};
    stage.takeOver();
    stage.onEvent = [&](const TapEvent& event) {
        if (event.flags != (control | option | command)) return;
        stage.giveBack();
        stage.source.reset();
        stage.tap.reset();
    };
    stage.witness.seen();
    for (const auto key : {leftControl, leftAlt, leftSuper}) stage.hands.key(key, true);
    ASSERT_TRUE(runUntil([&] { return stage.tap == nullptr; }));
    stage.delivered.clear();
    stage.hands.tap(keyA);
    EXPECT_EQ(stage.witness.seen(), (std::vector<int>{XCB_KEY_PRESS, XCB_KEY_RELEASE}));
    EXPECT_TRUE(stage.taps.tapCreate(0, {}));
}

TEST_P(XTakeover, IsTakenUpAgainAfterTheConnectionWasLost) {
    XStage stage{GetParam()};
    stage.onEvent = [&](const TapEvent& event) {
        if (event.type == tapDisabledByTimeout) stage.tap->enable(true);
    };
    stage.takeOver();
    stage.hands.key(leftShift, true);
    stage.hands.key(keyA, true);
    stage.hands.button(2, true);
    ASSERT_TRUE(stage.waitFor(otherMouseDown));
    stage.hands.killAllBut(stage.witness);
    // Pressed for this computer, as the server dropped the grab by itself.
    stage.witness.seen();
    stage.hands.tap(keyF20);
    EXPECT_EQ(stage.witness.seen().size(), 2U);
    stage.hands.key(leftShift, false);
    stage.hands.key(keyA, false);
    stage.hands.button(2, false);
    stage.witness.seen();

    stage.delivered.clear();
    ASSERT_TRUE(stage.waitFor(flagsChanged));
    EXPECT_EQ(stage.types(),
              (std::vector{tapDisabledByTimeout, keyUp, otherMouseUp, flagsChanged}));
    EXPECT_EQ(lastFlags(stage), 0U);
    stage.hands.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyDown));
    EXPECT_TRUE(stage.witness.seen().empty());
    stage.giveBack();
}

TEST_P(XTakeover, LetsGoOfMediaKeysAtItsEnd) {
    XStage stage{GetParam()};
    stage.takeOver();
    stage.hands.key(volumeUp, true);
    ASSERT_TRUE(stage.waitFor(systemDefined));
    stage.delivered.clear();
    stage.cursor.associateMouseAndMouseCursorPosition(true);
    ASSERT_EQ(stage.types(), std::vector{systemDefined});
    EXPECT_EQ(stage.delivered.front().data1 >> 8 & 0xFF, 0x0B);
    stage.hands.key(volumeUp, false);
    stage.giveBack();
}

TEST_P(XTakeover, LeavesALockedSessionAlone) {
    XStage stage{GetParam()};
    stage.hands.moveTo(400, 300);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    stage.takeOver();
    for (const auto key : {leftControl, keyA, volumeUp}) stage.hands.key(key, true);
    stage.hands.button(1, true);
    ASSERT_TRUE(stage.waitFor(leftMouseDown));

    stage.delivered.clear();
    stage.session.setDeaf(true);
    EXPECT_EQ(stage.types(), (std::vector{keyUp, systemDefined, leftMouseUp, flagsChanged}));
    EXPECT_EQ(lastFlags(stage), 0U);
    for (const auto key : {keyA, volumeUp}) stage.hands.key(key, false);
    stage.hands.button(1, false);
    EXPECT_TRUE(runUntil([&] { return stage.hands.grabAll(); })) << "the locker's grab";
    stage.hands.moveTo(500, 300);
    stage.hands.tap(keyA);
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{500, 300}));
    stage.hands.ungrabAll();
    stage.witness.seen();

    stage.delivered.clear();
    stage.session.setDeaf(false);
    EXPECT_EQ(stage.types(), std::vector{flagsChanged}) << "of all that was typed meanwhile";
    EXPECT_EQ(lastFlags(stage), control);
    stage.hands.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyUp));
    EXPECT_TRUE(stage.witness.seen().empty());
    stage.hands.key(leftControl, false);

    // Free, it delivers no moves either.
    stage.giveBack();
    stage.session.setDeaf(true);
    stage.delivered.clear();
    stage.hands.moveTo(100, 100);
    stage.takeOver();
    stage.hands.moveTo(200, 100);
    stage.cursor.associateMouseAndMouseCursorPosition(true);
    stage.session.setDeaf(false);
    // Nothing tells when the server has heard of it.
    int x = 300;
    ASSERT_TRUE(runUntil([&] {
        stage.hands.moveTo(++x, 100);
        return !stage.delivered.empty();
    }));
    EXPECT_GT(stage.delivered.front().location.x, 300);
}

TEST_P(XTakeover, StaysIdleWhenTheServerIsGone) {
    XStage stage{GetParam()};
    stage.takeOver();
    stage.server.kill();
    ASSERT_TRUE(runUntil([&] { return !stage.taps.tapCreate(0, {}) && !stage.session.open(); }));
    stage.cursor.associateMouseAndMouseCursorPosition(true);
    stage.takeOver();
    EXPECT_TRUE(runUntil([&] { return stage.displays.screens().empty(); }));
    int turns = 0;
    QTimer end;
    end.setSingleShot(true);
    end.start(200);
    while (end.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ++turns;
    }
    EXPECT_LT(turns, 20);
}

} // namespace quenthisar::test
