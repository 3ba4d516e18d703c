// SPDX-License-Identifier: MIT
#include "linux/Onlooker.h"
#include "linux/XorgStage.h"

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <QCoreApplication>

#include <cmath>

namespace quenthisar::test {

namespace {

using enum EventType;
using namespace EventFlags;

std::int64_t lines(const XStage& stage) {
    std::int64_t sum = 0;
    for (const auto& event : stage.delivered) sum += event.scrollDelta;
    return sum;
}

} // namespace

TEST(XDevices, ShowOtherClientsFocusChangesOnly) {
    XorgStage stage;
    Onlooker onlooker(stage.witness.window);
    stage.mouse.moveBy(1, 1);
    stage.keyboard.tap(keyA);
    EXPECT_GE(onlooker.seen().size(), 3U);

    stage.takeOver();
    stage.mouse.moveBy(30, -20);
    stage.keyboard.tap(keyA);
    stage.keyboard.tap(leftShift);
    stage.mouse.click(1);
    stage.mouse.scroll(240, 120);
    stage.tablet.moveTo(10000, 10000);
    stage.finish();
    stage.giveBack();
    auto seen = onlooker.seen();
    std::erase_if(seen, [](int type) {
        return type == XCB_INPUT_FOCUS_IN || type == XCB_INPUT_FOCUS_OUT ||
               type == XCB_INPUT_ENTER || type == XCB_INPUT_LEAVE;
    });
    EXPECT_EQ(seen, std::vector<int>{});

    stage.mouse.moveBy(1, 1);
    stage.keyboard.tap(keyA);
    EXPECT_EQ(onlooker.seen(),
              (std::vector<int>{XCB_INPUT_MOTION, XCB_INPUT_KEY_PRESS, XCB_INPUT_KEY_RELEASE}));
}

TEST(XDevices, AddUpTheirAcceleratedMotionWhereverThePointerIsHeld) {
    XorgStage stage;
    stage.run(QStringLiteral(R"(xinput set-prop mouse "Device Accel Constant Deceleration" 1.7)"));
    Onlooker onlooker;
    using Place = Injector::Pointer;
    for (const auto place : {Place{640, 400}, Place{0, 0}, Place{2303, 0}, Place{0, 799},
                             Place{2303, 767}, Place{1279, 799}, Place{0, 400}, Place{640, 0}}) {
        stage.hands.moveTo(place.x, place.y);
        stage.takeOver();
        stage.delivered.clear();
        onlooker.seen();
        const auto before = onlooker.motion();
        for (int i = 1; i <= 60; ++i) stage.mouse.moveBy(i % 13 - 3, 7 - i % 19);
        stage.finish();
        onlooker.seen();
        const auto moved = stage.motion();
        const auto x = onlooker.motion().x - before.x, y = onlooker.motion().y - before.y;
        EXPECT_LT(std::abs(x - moved.x * finePerPixel), finePerPixel);
        EXPECT_LT(std::abs(y - moved.y * finePerPixel), finePerPixel);
        EXPECT_NE(x % finePerPixel, 0) << "it has fractions";
        EXPECT_EQ(stage.hands.pointer(), place);
        stage.giveBack();
        EXPECT_EQ(stage.hands.pointer(), place);
    }
}

TEST(XDevices, RepeatAHeldKeyUntilItIsReleased) {
    XorgStage stage;
    stage.takeOver();
    stage.keyboard.key(keyA, true);
    ASSERT_TRUE(runUntil([&] { return std::ranges::count(stage.types(), keyDown) >= 3; }));
    EXPECT_FALSE(stage.sees(keyUp));
    stage.keyboard.key(keyA, false);
    ASSERT_TRUE(stage.waitFor(keyUp));
    const auto presses = std::ranges::count(stage.types(), keyDown);
    stage.finish();
    EXPECT_EQ(std::ranges::count(stage.types(), keyDown), presses);
}

TEST(XDevices, LeaveNoModifierBehindThatIsHeldAcrossACrossing) {
    XorgStage stage;
    stage.keyboard.key(leftControl, true);
    stage.takeOver();
    stage.keyboard.tap(keyA);
    stage.keyboard.key(leftControl, false);
    stage.keyboard.key(leftShift, true);
    stage.keyboard.tap(keyA);
    ASSERT_TRUE(runUntil([&] { return stage.delivered.size() >= 6; }));
    EXPECT_EQ(stage.types(),
              (std::vector{keyDown, keyUp, flagsChanged, flagsChanged, keyDown, keyUp}));
    EXPECT_EQ(stage.delivered[0].flags, control);
    EXPECT_EQ(stage.delivered[2].flags, 0U);
    EXPECT_EQ(stage.delivered[4].flags, shift);
    stage.giveBack();
    EXPECT_EQ(stage.hands.modifiers(), XCB_MOD_MASK_SHIFT) << "it is still held";
    stage.keyboard.key(leftShift, false);
    EXPECT_EQ(stage.hands.modifiers(), 0);
}

TEST(XDevices, HaveTheirLocksPutBack) {
    XorgStage stage;
    stage.keyboard.tap(numLock);
    stage.keyboard.tap(capsLock);
    const auto before = stage.hands.modifiers();
    ASSERT_EQ(before, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    stage.takeOver();
    stage.keyboard.tap(keyA);
    stage.keyboard.tap(capsLock);
    stage.keyboard.tap(numLock);
    ASSERT_TRUE(runUntil([&] { return stage.delivered.size() >= 5; }));
    EXPECT_EQ(stage.delivered[0].flags, alphaShift);
    EXPECT_EQ(stage.hands.modifiers(), 0);
    EXPECT_EQ(stage.types(), (std::vector{keyDown, keyUp, flagsChanged, keyDown, keyUp}));
    stage.giveBack();
    EXPECT_EQ(stage.hands.modifiers(), before);
    stage.keyboard.tap(keyA);
    EXPECT_EQ(stage.hands.modifiers(), before) << "the device has them too";
}

TEST(XDevices, AreTakenOverInADragOnceItEnds) {
    XorgStage stage;
    stage.mouse.button(1, true);
    stage.witness.seen();
    stage.takeOver();
    const auto place = stage.hands.pointer();
    stage.mouse.moveBy(6, 0);
    stage.keyboard.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyUp));
    EXPECT_TRUE(stage.sees(leftMouseDragged));
    EXPECT_FALSE(stage.sees(mouseMoved));
    stage.mouse.button(1, false);
    stage.delivered.clear();
    ASSERT_TRUE(stage.waitFor(leftMouseUp));
    EXPECT_EQ(stage.hands.pointer(), place);
    stage.witness.seen();
    stage.delivered.clear();
    ASSERT_TRUE(runUntil([&] {
        stage.mouse.click(1);
        return stage.sees(leftMouseUp) && stage.witness.seen().empty();
    }));
}

TEST(XDevices, ScrollByLines) {
    XorgStage stage;
    ASSERT_TRUE(stage.hands.grabAll());
    for (const bool isPending : {true, false}) {
        stage.takeOver();
        stage.delivered.clear();
        stage.mouse.scroll(-360);
        stage.mouse.scroll(120);
        for (int i = 0; i < 3; ++i) stage.mouse.scroll(40);
        stage.mouse.scroll(0, 240);
        stage.mouse.scroll(0, -120);
        stage.finish();
        EXPECT_EQ(lines(stage), 3 - 1 - 1) << isPending;
        EXPECT_EQ(stage.types(), (std::vector{scrollWheel, scrollWheel, scrollWheel, scrollWheel,
                                              scrollWheel, otherMouseDown, otherMouseUp}))
            << isPending;
        stage.delivered.clear();
        // As a mouse does whose wheel is buttons.
        stage.mouse.click(4), stage.mouse.click(4), stage.mouse.click(5), stage.mouse.click(6);
        stage.finish();
        EXPECT_EQ(lines(stage), +1) << isPending;
        EXPECT_EQ(stage.typesWithoutMotion(), (std::vector{scrollWheel, scrollWheel, scrollWheel,
                                                           otherMouseDown, otherMouseUp}))
            << isPending;
        stage.hands.ungrabAll();
        stage.giveBack();
    }
}

TEST(XDevices, WithPositionsMoveByTheDifferences) {
    XorgStage stage;
    // The middle of a pixel of the whole desktop, of both displays.
    const auto moveTo = [&](int x, int y) {
        stage.tablet.moveTo((x + 0.5) * 65536 / (1280 + 1024), (y + 0.5) * 65536 / 800);
    };
    moveTo(500, 500);
    moveTo(2000, 400);
    stage.takeOver();
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{2000, 400}));
    moveTo(1900, 420);
    moveTo(100, 450);
    moveTo(110, 300);
    stage.finish();
    EXPECT_NEAR(double(stage.motion().x), 110 - 2000, 1);
    EXPECT_NEAR(double(stage.motion().y), 300 - 400, 1);

    stage.giveBack();
    EXPECT_EQ(stage.hands.pointer(), (Injector::Pointer{2000, 400}));

    stage.run(QStringLiteral("xrandr --output DUMMY1 --off"));
    stage.tablet.moveTo(32768, 32768);
    stage.takeOver();
    stage.delivered.clear();
    stage.tablet.moveTo(32768 + 65536.0 / 4, 32768 - 65536.0 / 8);
    stage.finish();
    EXPECT_NEAR(double(stage.motion().x), 1280.0 / 4, 1) << "of a smaller desktop";
    EXPECT_NEAR(double(stage.motion().y), -800.0 / 8, 1);
}

TEST(XDevices, WaitForAMenuOfEitherKind) {
    XorgStage stage;
    stage.run(QStringLiteral("xset m 1/1 1000"));
    for (const auto menu : {Injector::Menu::core, Injector::Menu::xinput2}) {
        ASSERT_TRUE(stage.hands.grabAll(menu));
        stage.takeOver();
        stage.delivered.clear();
        stage.mouse.moveBy(7, -2);
        stage.keyboard.tap(keyA);
        stage.finish();
        EXPECT_EQ(stage.types(), (std::vector{mouseMoved, otherMouseDown, otherMouseUp}));
        EXPECT_EQ(stage.motion(), (Motion{7, -2}));
        stage.hands.ungrabAll(menu);
        ASSERT_TRUE(runUntil([&] {
            stage.keyboard.tap(keyA);
            return stage.sees(keyUp);
        }));
        stage.witness.seen();
        stage.delivered.clear();
        stage.mouse.moveBy(-3, 4);
        stage.finish();
        EXPECT_EQ(stage.motion(), (Motion{-3, 4}));
        EXPECT_EQ(stage.witness.seen(), std::vector<int>{});
        stage.giveBack();
    }
}

TEST(XDevices, SurviveTheLossOfTheConnectionAtAnyMoment) {
    XorgStage stage;
    for (int moment = 0; moment < 8; ++moment) {
        const auto loseAt = [&](int when) {
            if (moment == when) stage.loseConnections();
        };
        loseAt(0);
        stage.takeOver();
        loseAt(1);
        stage.mouse.moveManyTimes(50, 3, 1);
        stage.keyboard.key(leftControl, true);
        loseAt(2);
        QCoreApplication::processEvents();
        loseAt(3);
        stage.mouse.button(1, true);
        stage.keyboard.key(leftControl, false);
        QCoreApplication::processEvents();
        loseAt(4);
        stage.mouse.button(1, false);
        stage.run(QStringLiteral("setxkbmap us"));
        loseAt(5);
        stage.cursor.associateMouseAndMouseCursorPosition(true);
        loseAt(6);
        stage.cursor.displayShowCursor();
        stage.giveBack();
        loseAt(7);
        stage.tap->enable(false);
        stage.witness.seen();
        stage.keyboard.tap(keyA);
        EXPECT_EQ(stage.witness.seen().size(), 2U) << moment;
        stage.delivered.clear();
        ASSERT_TRUE(runUntil([&] {
            stage.tap->enable(true);
            stage.mouse.moveBy(1, 0);
            return stage.sees(mouseMoved);
        })) << moment;
        EXPECT_TRUE(runUntil([&] { return stage.displays.screens().size() == 2; })) << moment;
    }
}

} // namespace quenthisar::test
