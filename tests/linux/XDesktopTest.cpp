// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include <QElapsedTimer>

namespace quenthisar::test {

using enum EventType;
using namespace EventFlags;

TEST(XDesktop, HasTheDisplaysAsTheyWereUntilTheirChangeIsToldOfOnce) {
    XStage stage;
    const auto before = stage.displays.screens();
    ASSERT_EQ(before.size(), 2U);
    EXPECT_EQ(before[0].frame, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(before[1].frame, (Rect{1280, 32, 1024, 768}));
    const auto uuid = [&](const Screen& of) {
        return stage.displays.displayUUID(*of.screenNumber).value_or("none");
    };
    const auto first = uuid(before[0]), second = uuid(before[1]);
    EXPECT_TRUE(Uuid::parse(first));
    EXPECT_NE(first, second);

    const auto corner = [&] { return stage.space.globalFromRoot({1280, 20}); };
    int changes = 0;
    stage.displays.onChange([&] { ++changes; });
    stage.run("xrandr --output DUMMY1 --primary");
    stage.run("xrandr --output DUMMY1 --pos 1280x20");
    QElapsedTimer quiet;
    quiet.start();
    // Whoever asks meanwhile must not move the locations of those that have the old list.
    ASSERT_TRUE(runUntil([&] {
        if (changes > 0) return true;
        EXPECT_EQ(stage.displays.screens().front().frame, before[0].frame);
        EXPECT_EQ(corner(), (Point{1280, 20}));
        return testing::Test::HasFailure();
    }));
    EXPECT_EQ(changes, 1);
    EXPECT_GE(quiet.elapsed(), 200) << "more may follow";
    EXPECT_EQ(corner(), (Point{1280, 20})) << "nobody has asked for the new list";

    const auto screens = stage.displays.screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1024, 768}));
    EXPECT_EQ(screens[1].frame, (Rect{-1280, -12, 1280, 800}));
    EXPECT_EQ(uuid(screens[0]), second);
    EXPECT_EQ(uuid(screens[1]), first);
    stage.neighbour.moveTo(1281, 24);
    EXPECT_TRUE(stage.waitForLocation({1, 4}));
}

TEST(XDesktop, MayChangeItsKeymapInATakeover) {
    XStage stage;
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
    stage.run("setxkbmap de");
    EXPECT_EQ(flagsOf(rightAlt), option) << "AltGr";
    EXPECT_EQ(flagsOf(leftSuper), command);
    stage.run("setxkbmap fr -option altwin:swap_alt_win");
    EXPECT_EQ(flagsOf(leftAlt), command);
    EXPECT_EQ(flagsOf(leftSuper), option);
    stage.run("setxkbmap us -option ctrl:nocaps");
    EXPECT_EQ(flagsOf(capsLock), control);
    stage.run("setxkbmap us -option altwin:menu_win");
    EXPECT_EQ(flagsOf(menuKey), command) << "a modifier now, and no key any more";
}

} // namespace quenthisar::test
