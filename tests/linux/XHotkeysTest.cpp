// SPDX-License-Identifier: MIT
#include "Linux/XHotkeys.h"
#include "linux/XStage.h"

#include <xcb/xinput.h>

namespace quenthisar::test {

namespace {

// X key codes, by position.
constexpr std::uint8_t key1 = 10, keyV = 55, keyY = 29;
// Virtual key codes.
constexpr std::uint32_t digit1 = 18, letterV = 9, letterY = 16;
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

TEST(XHotkeys, AreOnePressHoweverLongTheyAreHeld) {
    XStage stage;
    stage.run("xset r rate 200 30");
    // On a connection of its own, to see each event.
    const auto connection = XConnection::open();
    auto* c = connection->get();
    const XOwned<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    XKeyboard keyboard;
    ASSERT_TRUE(keyboard.open(*connection));
    XHotkeyGrabs grabs(*connection, keyboard);
    ASSERT_TRUE(grabs.add({digit1, chord, {.id = 2}}));
    for (const auto key : chord1) stage.keyboard.key(key, true);
    int presses = 0, repeats = 0;
    EXPECT_TRUE(runUntil([&] {
        while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(c)}) {
            const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(*event);
            if ((event->response_type & 0x7F) != XCB_GE_GENERIC ||
                press.event_type != XCB_INPUT_KEY_PRESS)
                continue;
            if (grabs.match(press)) ++presses;
            if (press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) ++repeats;
        }
        return repeats >= 10;
    }));
    EXPECT_EQ(presses, 1);
}

TEST(XHotkeys, StayWithTheirPlaceInEachKeymap) {
    HotkeyStage stage;
    const Keys chordY{leftControl, leftAlt, leftSuper, keyY};
    ASSERT_TRUE(stage.add(letterY, chord, 1));
    stage.run("setxkbmap de"); // Y and Z change places
    EXPECT_TRUE(stage.answerTo(chordY));
    EXPECT_TRUE(stage.answerTo({leftControl, rightAlt, leftSuper, keyY})) << "AltGr";
    stage.run("setxkbmap us");
    EXPECT_TRUE(stage.answerTo(chordY));
    stage.run("setxkbmap -symbols us(basic)"); // without modifiers
    stage.neighbour.seen();
    stage.press(chordY);
    for (int turns = 0; turns < 10; ++turns) QCoreApplication::processEvents();
    EXPECT_EQ(stage.neighbour.seen().size(), 8U) << "nobody has it";
    stage.run("setxkbmap us -symbols pc+us+inet(evdev)");
    EXPECT_TRUE(stage.answerTo(chordY));
}

TEST(XHotkeys, FailAloneWhereAnotherProgramWasFirst) {
    HotkeyStage stage;
    const auto rival = XConnection::open();
    auto* c = rival->get();
    const std::uint32_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4,
                        mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    xcb_grab_key(c, true, rival->root(), modifiers, keyV, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XOwned<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    const auto cookie = xcb_input_xi_passive_grab_device(
        c, XCB_CURRENT_TIME, rival->root(), XCB_CURSOR_NONE, key1, XCB_INPUT_DEVICE_ALL_MASTER, 1,
        1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
        XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, &modifiers);
    const XOwned<xcb_input_xi_passive_grab_device_reply_t> reply{
        xcb_input_xi_passive_grab_device_reply(c, cookie, nullptr)};
    EXPECT_FALSE(stage.add(letterV, chord, 1));
    EXPECT_FALSE(stage.add(digit1, chord, 2));
    ASSERT_TRUE(stage.add(digit1, chordAndShift, 3));
    stage.press(chord1);
    stage.press({leftControl, leftAlt, leftSuper, keyV});
    stage.press(shiftChord1);
    EXPECT_TRUE(stage.arrive({3}));
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
