// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

namespace quenthisar::test {

using enum EventType;
using namespace EventFlags;
using Types = std::vector<EventType>;
const std::vector<int> nothing;

TEST(XTakeover, KeepsAllInputFromTheOtherClientsAndGivesItBack) {
    XStage stage;
    stage.neighbour.moveTo(640, 400);
    stage.onEvent = [&](const TapEvent& event) {
        if (event.type == mouseMoved && event.location == Point{642, 400}) stage.takeOver();
    };
    stage.mouse.moveBy(2, 0);
    ASSERT_TRUE(stage.waitForLocation({642, 400}));
    stage.neighbour.seen();
    stage.delivered.clear();

    for (const auto key : {keyA, keyF20, printScreen, volumeUp}) stage.keyboard.tap(key);
    QPoint moved{5, 5};
    for (int i = 0; i < 500; ++i) {
        const int dx = i % 3 - 2, dy = 1 - i % 2;
        stage.mouse.moveBy(dx, dy);
        moved += {dx, dy};
    }
    stage.mouse.click(1);
    stage.mouse.button(3, true);
    stage.mouse.moveBy(5, 5);
    stage.mouse.button(3, false);
    stage.finish();
    EXPECT_EQ(stage.neighbour.seen(), nothing);
    EXPECT_EQ(stage.neighbour.pointer(), (QPoint{642, 400}));
    EXPECT_EQ(stage.motion(), moved);
    std::erase_if(stage.delivered, [](const auto& event) { return event.type == mouseMoved; });
    ASSERT_EQ(stage.types(), (Types{keyDown, keyUp, keyDown, keyUp, systemDefined, systemDefined,
                                    leftMouseDown, leftMouseUp, rightMouseDown, rightMouseDragged,
                                    rightMouseUp, otherMouseDown, otherMouseUp}));
    EXPECT_EQ(stage.delivered[0].keyCode, 0);
    EXPECT_EQ(stage.delivered[2].keyCode, 0xFFFF);
    EXPECT_EQ(stage.delivered[4].subtype, auxiliaryControlButtons);
    EXPECT_EQ(stage.delivered[4].data1, 0x0A00);
    EXPECT_EQ(stage.delivered[5].data1, 0x0B00);

    stage.delivered.clear();
    stage.keyboard.key(keyA, true);
    ASSERT_TRUE(runUntil([&] { return stage.count(keyDown) >= 3; })) << "it repeats";
    EXPECT_FALSE(stage.sees(keyUp));
    stage.keyboard.key(keyA, false);
    stage.keyboard.key(volumeUp, true);
    ASSERT_TRUE(stage.waitFor(systemDefined));
    EXPECT_EQ(stage.count(keyUp), 1);
    stage.delivered.clear();
    stage.giveBack();
    ASSERT_EQ(stage.types(), Types{systemDefined}) << "nobody else lets go of it";
    EXPECT_EQ(stage.delivered[0].data1, 0x0B00);
    EXPECT_EQ(stage.neighbour.pointer(), (QPoint{642, 400}));
    stage.keyboard.key(volumeUp, false);
    stage.neighbour.seen();
    stage.keyboard.tap(keyA);
    stage.mouse.click(1);
    EXPECT_EQ(stage.neighbour.seen(), (std::vector<int>{XCB_KEY_PRESS, XCB_KEY_RELEASE,
                                                        XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE}));
}

TEST(XTakeover, LeavesLocksAsTheyWereAndNoModifierBehind) {
    XStage stage;
    for (const auto lock : {numLock, capsLock}) stage.keyboard.tap(lock);
    const auto before = stage.neighbour.modifiers();
    ASSERT_EQ(before, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    stage.keyboard.key(leftControl, true);
    stage.takeOver();
    stage.keyboard.tap(keyA);
    stage.keyboard.key(leftControl, false);
    stage.keyboard.tap(capsLock);
    stage.keyboard.tap(numLock);
    stage.keyboard.key(leftShift, true);
    stage.keyboard.tap(keyA);
    ASSERT_TRUE(runUntil([&] { return stage.count(keyUp) == 3; }));
    EXPECT_EQ(stage.types(), (Types{keyDown, keyUp, flagsChanged, flagsChanged, keyDown, keyUp,
                                    flagsChanged, keyDown, keyUp}))
        << "Num Lock is a key like any other";
    EXPECT_EQ(stage.delivered[0].flags, control | alphaShift);
    EXPECT_EQ(stage.delivered[2].flags, alphaShift);
    EXPECT_EQ(stage.delivered[7].flags, shift);
    stage.giveBack();
    EXPECT_EQ(stage.neighbour.modifiers(), before | XCB_MOD_MASK_SHIFT) << "it is still held";
    stage.keyboard.key(leftShift, false);
    stage.keyboard.tap(keyA);
    EXPECT_EQ(stage.neighbour.modifiers(), before) << "the device has them too";
}

TEST(XTakeover, WaitsForAMenuToLetGo) {
    XStage stage;
    stage.neighbour.moveTo(640, 400);
    ASSERT_TRUE(stage.neighbour.grabAll());
    stage.takeOver();
    stage.delivered.clear();
    stage.mouse.moveBy(5, -2);
    stage.keyboard.tap(keyA);
    stage.keyboard.tap(leftControl);
    stage.finish();
    EXPECT_EQ(stage.types(),
              (Types{mouseMoved, flagsChanged, flagsChanged, otherMouseDown, otherMouseUp}))
        << "keys still reach the menu";
    EXPECT_EQ(stage.motion(), (QPoint{5, -2}));
    EXPECT_EQ(stage.neighbour.pointer(), (QPoint{640, 400}));
    EXPECT_TRUE(runUntil([&] { return !stage.log.lines.empty(); }));

    stage.neighbour.ungrabAll();
    stage.delivered.clear();
    EXPECT_TRUE(runUntil([&] {
        stage.keyboard.tap(keyA);
        return stage.sees(keyUp);
    }));
    stage.finish();
    stage.neighbour.seen();
    stage.delivered.clear();
    stage.mouse.moveBy(-3, 4);
    stage.mouse.click(1);
    stage.finish();
    EXPECT_EQ(stage.types(),
              (Types{mouseMoved, leftMouseDown, leftMouseUp, otherMouseDown, otherMouseUp}));
    EXPECT_EQ(stage.neighbour.seen(), nothing);
    EXPECT_EQ(stage.log.lines,
              std::vector<std::string>{"Quenthisar: input grab refused for over a second"});
}

TEST(XTakeover, BeginsInADragOnceItEnds) {
    XStage stage;
    stage.mouse.button(1, true);
    stage.takeOver();
    const auto place = stage.neighbour.pointer();
    stage.mouse.moveBy(6, 0);
    stage.keyboard.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyUp));
    EXPECT_TRUE(stage.sees(leftMouseDragged));
    EXPECT_FALSE(stage.sees(mouseMoved));
    stage.mouse.button(1, false);
    ASSERT_TRUE(stage.waitFor(leftMouseUp));
    EXPECT_EQ(stage.neighbour.pointer(), place);
    ASSERT_TRUE(runUntil([&] {
        stage.neighbour.seen();
        stage.delivered.clear();
        stage.mouse.click(1);
        return stage.waitFor(leftMouseUp) && stage.neighbour.seen().empty();
    }));
}

TEST(XTakeover, IsTakenUpAgainAfterTheConnectionWasLost) {
    XStage stage;
    stage.onEvent = [&](const TapEvent& event) {
        if (event.type == tapDisabledByTimeout) stage.tap->enable(true);
    };
    stage.takeOver();
    stage.keyboard.key(leftShift, true);
    stage.keyboard.key(keyA, true);
    stage.mouse.button(2, true);
    ASSERT_TRUE(stage.waitFor(otherMouseDown));
    stage.loseConnection();
    // For this computer, as the server drops the grab by itself.
    stage.neighbour.seen();
    stage.keyboard.tap(keyF20);
    EXPECT_EQ(stage.neighbour.seen().size(), 2U);
    stage.keyboard.key(leftShift, false);
    stage.keyboard.key(keyA, false);
    stage.mouse.button(2, false);
    stage.neighbour.seen();

    stage.delivered.clear();
    ASSERT_TRUE(stage.waitFor(flagsChanged));
    EXPECT_EQ(stage.types(), (Types{tapDisabledByTimeout, keyUp, otherMouseUp, flagsChanged}));
    EXPECT_EQ(stage.lastFlags(), 0U);
    stage.keyboard.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyDown));
    EXPECT_EQ(stage.neighbour.seen(), nothing);

    // Lost once more, and given back before anybody has noticed.
    stage.loseConnection();
    stage.giveBack();
    stage.keyboard.tap(keyA);
    EXPECT_EQ(stage.neighbour.seen().size(), 2U);
    stage.delivered.clear();
    EXPECT_TRUE(runUntil([&] {
        stage.mouse.moveBy(1, 0);
        return stage.sees(mouseMoved);
    }));
}

} // namespace quenthisar::test
