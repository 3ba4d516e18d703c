// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include <algorithm>
#include <cmath>

namespace quenthisar::test {

using enum EventType;
using Types = std::vector<EventType>;

TEST(XDevices, AddUpTheirSlowedMotionWhereverThePointerIsHeld) {
    XStage stage;
    stage.run(R"(xinput set-prop mouse "Device Accel Constant Deceleration" 1.7)");
    for (const auto place : {QPoint{640, 400},
                             {0, 0},
                             {2303, 0},
                             {0, 799},
                             {2303, 767},
                             {1279, 799},
                             {0, 400},
                             {640, 0}}) {
        stage.neighbour.moveTo(place.x(), place.y());
        stage.takeOver();
        stage.delivered.clear();
        QPoint moved;
        for (int i = 1; i <= 60; ++i) {
            const int dx = i % 13 - 3, dy = 7 - i % 19;
            stage.mouse.moveBy(dx, dy);
            moved += {dx, dy};
        }
        stage.finish();
        EXPECT_NEAR(stage.motion().x(), moved.x() / 1.7, 1);
        EXPECT_NEAR(stage.motion().y(), moved.y() / 1.7, 1);
        EXPECT_EQ(stage.neighbour.pointer(), place);
        stage.giveBack();
        EXPECT_EQ(stage.neighbour.pointer(), place);
    }
}

TEST(XDevices, KeepThePaceOfALinkInAFlood) {
    XStage stage;
    stage.takeOver();
    MotionPacer::Clock::time_point first, last;
    stage.onEvent = [&](const TapEvent&) {
        last = MotionPacer::Clock::now();
        if (stage.delivered.size() == 1) first = last;
    };
    constexpr int events = 8000;
    for (int i = 0; i < events; i += 40) {
        stage.mouse.moveManyTimes(40, 1, -1);
        if (i == events / 2) stage.keyboard.tap(keyA);
        QCoreApplication::processEvents();
    }
    stage.finish();
    EXPECT_EQ(stage.motion(), (QPoint{events, -events}));
    // Keys and buttons deliver what came before them at once.
    EXPECT_LE(stage.count(mouseMoved), (last - first) / MotionPacer::atOnceAfter + 1 + 4);
    const auto key = std::ranges::find(stage.delivered, keyDown, &TapEvent::type);
    stage.delivered.erase(key, stage.delivered.end());
    EXPECT_EQ(stage.motion().x(), events / 2 + 40);
}

TEST(XDevices, ScrollByLines) {
    XStage stage;
    ASSERT_TRUE(stage.neighbour.grabAll());
    for (const bool isPending : {true, false}) {
        stage.takeOver();
        stage.delivered.clear();
        stage.mouse.scroll(-360);
        stage.mouse.scroll(120);
        for (int i = 0; i < 3; ++i) stage.mouse.scroll(40);
        stage.mouse.scroll(0, 240);
        // As a mouse does whose wheel is buttons.
        for (const int button : {4, 4, 5, 6}) stage.mouse.click(button);
        stage.finish();
        std::vector<std::int64_t> lines;
        for (const auto& event : stage.delivered)
            if (event.type != mouseMoved) lines.push_back(event.scrollDelta);
        EXPECT_EQ(lines, (std::vector<std::int64_t>{1, 1, 1, -1, -1, 1, 1, -1, 0, 0})) << isPending;
        stage.neighbour.ungrabAll();
        stage.giveBack();
    }
}

TEST(XDevices, AreHeardWhenPluggedInAndReleasedWhenUnplugged) {
    XStage stage;
    for (const auto* device : {"xinput disable keyboard", "xinput disable tablet"})
        stage.run(device);
    stage.mouse.moveBy(1, 1);
    ASSERT_TRUE(stage.waitFor(mouseMoved));
    stage.takeOver();
    stage.delivered.clear();
    for (const auto* device : {"xinput enable keyboard", "xinput enable tablet"}) stage.run(device);
    const demo::InputTestDevice plugged(stage.socket("keyboard")), pen(stage.socket("tablet"));
    stage.mouse.moveBy(0, 5);
    ASSERT_TRUE(stage.waitFor(mouseMoved)); // the devices are known
    pen.moveTo(30000, 30000);
    plugged.tap(keyA);
    ASSERT_TRUE(stage.waitFor(keyUp));
    EXPECT_EQ(stage.typesWithoutMotion(), (Types{keyDown, keyUp}));
    EXPECT_LT(std::abs(stage.motion().x()), 10);
    plugged.key(leftShift, true);
    plugged.key(keyA, true);
    stage.run("xinput disable keyboard");
    ASSERT_TRUE(
        runUntil([&] { return stage.count(keyUp) == 2 && stage.count(flagsChanged) == 2; }));
    stage.giveBack();
    EXPECT_EQ(stage.neighbour.modifiers(), 0);
}

} // namespace quenthisar::test
