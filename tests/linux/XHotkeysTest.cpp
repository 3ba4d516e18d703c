// SPDX-License-Identifier: MIT
#include "Linux/XHotkeys.h"
#include "linux/XStage.h"

namespace quenthisar::test {

namespace {

// X key codes, by position.
constexpr std::uint8_t key1 = 10;
// Virtual key codes.
constexpr std::uint32_t digit1 = 18;
constexpr std::uint32_t chord = 0x1900, chordAndShift = 0x1B00;

using Keys = std::vector<std::uint8_t>;
const Keys chord1{leftControl, leftAlt, leftSuper, key1};
const Keys shiftChord1{leftControl, leftAlt, leftSuper, leftShift, key1};

struct HotkeyStage : XStage {
    HotkeyStage() {
        hotkeys.installEventHandler([this](auto& identity) { pressed.push_back(identity.id); });
    }
    bool add(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) {
        return hotkeys.registerEventHotKey(keyCode, modifiers, {.id = id}).has_value();
    }
    void press(const Keys& keys) const {
        for (const auto key : keys) keyboard.key(key, true);
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) keyboard.key(*key, false);
    }
    /// The hotkeys that answered since the last call.
    bool arrive(const std::vector<std::uint32_t>& ids) {
        const bool arrived = runUntil([&] { return pressed == ids; });
        pressed.clear();
        return arrived;
    }
    /// Sooner or later: after a change that nothing tells of.
    bool answerTo(const Keys& keys) {
        pressed.clear();
        return runUntil([&] {
            press(keys);
            return !pressed.empty();
        });
    }

    XHotkeys hotkeys{session};
    std::vector<std::uint32_t> pressed;
};

} // namespace

TEST(XHotkeys, FireOncePerPressWhateverLocksAreOnAndNobodyElseSeesThem) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(digit1, chord, 2));
    ASSERT_TRUE(stage.add(digit1, chordAndShift, 3));
    stage.neighbour.seen();
    stage.press(chord1);
    stage.press(shiftChord1);
    stage.press({leftControl, rightAlt, leftSuper, key1});
    EXPECT_TRUE(stage.arrive({2, 3, 2}));
    EXPECT_EQ(stage.neighbour.seen().size(), 20U) << "the modifiers alone, each down and up";
    for (const auto lock : {capsLock, numLock, capsLock, numLock}) {
        stage.keyboard.tap(lock);
        stage.press(chord1);
    }
    EXPECT_TRUE(stage.arrive({2, 2, 2, 2}));
    stage.press({leftControl, leftAlt, key1});
    stage.press({leftControl, leftSuper, key1});
    stage.press({key1});
    stage.press(shiftChord1);
    EXPECT_TRUE(stage.arrive({3})) << "the chord and nothing else";
}

TEST(XHotkeys, WaitForTheReturnInATakeoverAndSurviveALostConnection) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(digit1, chord, 2));
    stage.onEvent = [&](const TapEvent& event) {
        constexpr auto all = EventFlags::control | EventFlags::option | EventFlags::command;
        if ((event.flags & all) == all) stage.cursor.associateMouseAndMouseCursorPosition(true);
    };
    stage.takeOver();
    for (const auto key : {leftControl, leftAlt, leftSuper}) stage.keyboard.key(key, true);
    ASSERT_TRUE(runUntil([&] { return stage.neighbour.grabAll(); })) << "the input is given back";
    stage.neighbour.ungrabAll();
    stage.keyboard.tap(key1);
    EXPECT_TRUE(stage.arrive({2}));
    for (const auto key : {leftControl, leftAlt, leftSuper}) stage.keyboard.key(key, false);

    stage.takeOver();
    stage.tap->enable(false);
    stage.loseConnection();
    stage.giveBack();
    EXPECT_TRUE(stage.answerTo(chord1));
}

} // namespace quenthisar::test
