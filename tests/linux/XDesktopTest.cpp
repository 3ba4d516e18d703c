// SPDX-License-Identifier: MIT
#include "linux/XorgStage.h"

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <QCoreApplication>

namespace quenthisar::test {

namespace {

using enum EventType;
using namespace EventFlags;
using Clock = std::chrono::steady_clock;

void run(const XStage& stage, const char* command) {
    stage.run(QString::fromLatin1(command));
}

bool isOnADisplay(XStage& stage) {
    const auto at = stage.hands.pointer();
    const auto screens = stage.displays.screens();
    return std::ranges::any_of(screens, [&](const Screen& screen) {
        const auto frame = stage.space.rootFromFramework(screen.frame);
        return frame.x <= at.x && at.x < frame.maxX() && frame.y <= at.y && at.y < frame.maxY();
    });
}

} // namespace

TEST(XDesktop, KeepsThePaceOfALinkInAFlood) {
    XorgStage stage;
    run(stage, "xset m 1/1 1000");
    stage.takeOver();
    Clock::time_point first, last;
    stage.onEvent = [&](const TapEvent&) {
        last = Clock::now();
        if (stage.delivered.size() == 1) first = last;
    };
    constexpr int events = 8000;
    for (int i = 0; i < events; i += 40) {
        stage.mouse.moveManyTimes(40, 1, -1);
        if (i == events / 2) stage.keyboard.tap(keyA);
        QCoreApplication::processEvents();
    }
    stage.finish();
    EXPECT_EQ(stage.motion(), (Motion{events, -events}));
    const auto moves = std::ranges::count(stage.types(), mouseMoved);
    const auto limit = (last - first) / MotionPacer::atOnceAfter;
    // Keys and buttons deliver what came before them at once.
    EXPECT_LE(moves, limit + 1 + 4);

    std::int64_t before = 0;
    for (const auto& event : stage.delivered) {
        if (event.type == keyDown) break;
        before += event.deltaX;
    }
    EXPECT_EQ(before, events / 2 + 40);
}

TEST(XDesktop, KnowsTheButtonsOfTheLeftHanded) {
    constexpr auto swapForMouse = "xinput set-button-map mouse 3 2 1";
    constexpr auto swapForPointer = R"(xmodmap -e "pointer = 3 2 1")";
    XorgStage stage;
    for (const auto* swap : {swapForMouse, swapForPointer}) {
        run(stage, swap);
        const bool isSwapped = swap == swapForMouse; // and then swapped back
        ASSERT_TRUE(stage.hands.grabAll());
        for (const bool isPending : {true, false}) {
            stage.takeOver();
            stage.delivered.clear();
            stage.mouse.click(isSwapped ? 3 : 1);
            stage.mouse.click(isSwapped ? 1 : 3);
            stage.finish();
            EXPECT_EQ(stage.typesWithoutMotion(),
                      (std::vector{leftMouseDown, leftMouseUp, rightMouseDown, rightMouseUp,
                                   otherMouseDown, otherMouseUp}))
                << swap << (isPending ? ", pending" : "");
            stage.hands.ungrabAll();
            stage.giveBack();
        }
    }
    run(stage, "xinput set-button-map mouse 1 2 3");
    stage.takeOver();
    stage.delivered.clear();
    stage.mouse.click(3);
    EXPECT_TRUE(stage.waitFor(leftMouseUp)) << "swapped for the pointer only";
}

TEST(XDesktop, HearsAKeyboardThatIsPluggedInDuringATakeover) {
    XorgStage stage;
    run(stage, "xinput disable keyboard");
    run(stage, "xinput disable tablet");
    stage.mouse.moveBy(1, 1);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    stage.takeOver();
    stage.delivered.clear();
    run(stage, "xinput enable keyboard");
    run(stage, "xinput enable tablet");
    const demo::InputTestDevice plugged(stage.socket("keyboard")), pen(stage.socket("tablet"));
    pen.moveTo(30000, 30000);
    stage.mouse.moveBy(0, 5);
    plugged.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyUp));
    EXPECT_EQ(stage.typesWithoutMotion(), (std::vector{keyDown, keyUp}));
    EXPECT_LT(std::abs(stage.motion().x), 10);
    plugged.key(leftShift, true);
    plugged.key(keyA, true);
    run(stage, "xinput disable keyboard");
    ASSERT_TRUE(runUntil([&] {
        return std::ranges::count(stage.types(), keyUp) == 2 &&
               std::ranges::count(stage.types(), flagsChanged) == 2;
    })) << "what is unplugged is released";
    stage.giveBack();
    EXPECT_EQ(stage.hands.modifiers(), 0);
}

TEST(XDesktop, FollowsTheDisplays) {
    XorgStage stage;
    run(stage, "xset m 1/1 1000");
    run(stage, "xrandr --output DUMMY1 --primary");
    ASSERT_TRUE(runUntil([&] { return stage.displays.screens().front().frame.width == 1024; }));
    stage.hands.moveTo(1281, 4);
    ASSERT_TRUE(runUntil([&] {
        return !stage.delivered.empty() && stage.delivered.back().location == Point{1, 4};
    }));
    int changes = 0;
    stage.displays.onChange([&] {
        ++changes;
        stage.displays.screens();
    });
    for (const auto* change :
         {"xrandr --output DUMMY1 --off", "xrandr --output DUMMY1 --mode 1024x768 --pos 1280x0",
          "xrandr --output DUMMY1 --off --fb 2304x800",
          "xrandr --output DUMMY1 --mode 1024x768 --pos 0x0 --output DUMMY0 --pos 1024x0",
          "xrandr --output DUMMY0 --off --fb 2304x800",
          "xrandr --output DUMMY0 --mode 1280x800 --pos 0x0 --output DUMMY1 --pos 1280x0",
          "xrandr --output DUMMY0 --primary"}) {
        stage.hands.moveTo(1700, 700);
        stage.takeOver();
        changes = 0;
        run(stage, change);
        EXPECT_TRUE(runUntil([&] { return changes > 0; })) << change;
        stage.delivered.clear();
        stage.mouse.moveBy(3, 4);
        stage.mouse.moveBy(-1, -9);
        stage.finish();
        EXPECT_EQ(stage.motion(), (Motion{2, -5})) << change;
        stage.giveBack();
        EXPECT_TRUE(isOnADisplay(stage)) << change;
        stage.delivered.clear();
        stage.mouse.moveBy(-1, -2);
        EXPECT_TRUE(runUntil([&] {
            const auto at = stage.hands.pointer();
            return !stage.delivered.empty() &&
                   stage.delivered.back().location ==
                       stage.space.globalFromRoot({double(at.x), double(at.y)});
        })) << change;
    }
}

TEST(XDesktop, FollowsTheKeymap) {
    XorgStage stage;
    stage.takeOver();
    const auto flagsOf = [&](std::uint8_t key) {
        stage.delivered.clear();
        stage.keyboard.key(key, true);
        stage.keyboard.tap(keyA);
        stage.keyboard.key(key, false);
        runUntil([&] { return stage.delivered.size() >= 4; });
        EXPECT_EQ(stage.types(), (std::vector{flagsChanged, keyDown, keyUp, flagsChanged}));
        EXPECT_EQ(stage.delivered.front().flags, stage.delivered[1].flags);
        EXPECT_EQ(stage.delivered[1].keyCode, 0) << "by position";
        return stage.delivered.front().flags;
    };
    EXPECT_EQ(flagsOf(leftAlt), option);
    run(stage, "setxkbmap de");
    EXPECT_EQ(flagsOf(rightAlt), option) << "AltGr";
    EXPECT_EQ(flagsOf(leftSuper), command);
    run(stage, "setxkbmap fr -option altwin:swap_alt_win");
    EXPECT_EQ(flagsOf(leftAlt), command);
    EXPECT_EQ(flagsOf(leftSuper), option);
    run(stage, "setxkbmap us -option ctrl:nocaps");
    EXPECT_EQ(flagsOf(capsLock), control);
}

TEST(XDesktop, TakesOverTheFirstOfSeveralPointers) {
    XorgStage stage;
    run(stage, "xset m 1/1 1000");
    run(stage, "xinput create-master second");
    run(stage, "xinput reattach tablet 9");
    stage.mouse.moveBy(1, 0);
    stage.delivered.clear();
    stage.tablet.moveTo(100, 100);
    stage.takeOver();
    stage.tablet.moveTo(20000, 30000);
    stage.tablet.click(1);
    stage.mouse.moveBy(1, 1);
    stage.keyboard.tap(keyA);
    stage.finish();
    EXPECT_EQ(stage.typesWithoutMotion(),
              (std::vector{keyDown, keyUp, otherMouseDown, otherMouseUp}));
    EXPECT_EQ(stage.motion(), (Motion{1, 1}));
    run(stage, "xinput remove-master 9");
    stage.delivered.clear();
    stage.mouse.moveBy(-2, 1);
    stage.finish();
    EXPECT_EQ(stage.motion(), (Motion{-2, 1}));
    stage.giveBack();
}

} // namespace quenthisar::test
