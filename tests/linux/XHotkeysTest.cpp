// SPDX-License-Identifier: MIT
#include "Linux/XHotkeys.h"
#include "linux/XorgStage.h"

#include <gtest/gtest.h>

#include <xcb/xinput.h>

#include <QFile>

namespace quenthisar::test {

namespace {

using EventType::keyDown;

// X key codes, by position.
constexpr std::uint8_t key1 = 10, keyV = 55, keyY = 29;
// Virtual key codes.
constexpr std::uint32_t digit1 = 18, letterV = 9, letterY = 16;
constexpr std::uint32_t chord = 0x1900, chordAndShift = 0x1B00;

/// A program that got there first.
class Rival {
public:
    void grabCore(std::uint8_t key, std::uint16_t modifiers) const {
        const XOwned<xcb_generic_error_t> error{xcb_request_check(
            connection->get(),
            xcb_grab_key_checked(connection->get(), true, connection->root(), modifiers, key,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC))};
        EXPECT_FALSE(error);
    }
    void grabInput(std::uint8_t key, std::uint32_t modifiers) const {
        auto* c = connection->get();
        const XOwned<xcb_input_xi_query_version_reply_t> version{
            xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
        const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const XOwned<xcb_input_xi_passive_grab_device_reply_t> reply{
            xcb_input_xi_passive_grab_device_reply(
                c,
                xcb_input_xi_passive_grab_device(
                    c, XCB_CURRENT_TIME, connection->root(), XCB_CURSOR_NONE, key,
                    XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                    XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                    XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, &modifiers),
                nullptr)};
        EXPECT_TRUE(reply && reply->num_modifiers == 0);
    }

private:
    std::unique_ptr<XConnection> connection = XConnection::open();
};

struct HotkeyStage : XStage {
    HotkeyStage() {
        hotkeys.installEventHandler(
            [this](const HotkeyIdentity& identity) { pressed.push_back(identity.id); });
    }
    bool add(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) {
        return hotkeys.registerEventHotKey(keyCode, modifiers, {.id = id}).has_value();
    }
    void press(const std::vector<std::uint8_t>& keys) const {
        for (const auto key : keys) hands.key(key, true);
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) hands.key(*key, false);
    }
    bool waitFor(const std::vector<std::uint32_t>& ids) {
        return runUntil([&] { return pressed == ids; });
    }
    void setLayout(const QString& layout) const {
        demo::ChildProcess program(
            QStringLiteral("setxkbmap"),
            {QStringLiteral("-display"), server.display(), QStringLiteral("-layout"), layout});
        EXPECT_EQ(program.waitForEnd(std::chrono::seconds(20)), 0);
    }

    XHotkeys hotkeys{session};
    std::vector<std::uint32_t> pressed;
};

} // namespace

TEST(XHotkeys, FireOncePerPressWhateverLocksAreOnAndNobodyElseSeesThem) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(digit1, chord, 2));
    ASSERT_TRUE(stage.add(digit1, chordAndShift, 3));
    stage.witness.seen();
    stage.press({leftControl, leftAlt, leftSuper, key1});
    stage.press({leftControl, leftAlt, leftSuper, leftShift, key1});
    stage.press({leftControl, rightAlt, leftSuper, key1});
    EXPECT_TRUE(stage.waitFor({2, 3, 2}));
    std::size_t keys = stage.witness.seen().size();
    EXPECT_EQ(keys, 20U) << "the modifiers alone, each down and up";

    stage.pressed.clear();
    stage.hands.tap(capsLock);
    stage.press({leftControl, leftAlt, leftSuper, key1});
    stage.hands.tap(numLock);
    stage.press({leftControl, leftAlt, leftSuper, key1});
    stage.hands.tap(capsLock);
    stage.press({leftControl, leftAlt, leftSuper, key1});
    stage.hands.tap(numLock);
    EXPECT_TRUE(stage.waitFor({2, 2, 2}));

    stage.pressed.clear();
    stage.press({leftControl, leftAlt, key1});
    stage.press({leftControl, leftSuper, key1});
    stage.press({key1});
    stage.press({leftControl, leftAlt, leftSuper, leftShift, key1});
    EXPECT_TRUE(stage.waitFor({3})) << "the chord and nothing else";
}

TEST(XHotkeys, AreOnePressHoweverLongTheyAreHeld) {
    XorgStage stage;
    stage.run(QStringLiteral("xset r rate 200 30"));
    // A program with the same hotkey on a connection of its own, to see each event.
    const auto connection = XConnection::open();
    auto* c = connection->get();
    const XOwned<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    XKeyboard keyboard;
    ASSERT_TRUE(version && keyboard.open(*connection));
    XHotkeyGrabs grabs(*connection, keyboard);
    ASSERT_TRUE(grabs.add({digit1, chord, {.id = 2}}));
    int presses = 0, repeats = 0;
    const std::array keys{leftControl, leftAlt, leftSuper, key1};
    for (const auto key : keys) stage.keyboard.key(key, true);
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
    for (const auto key : keys) stage.keyboard.key(key, false);
}

TEST(XHotkeys, WorkWhicheverWindowIsFocused) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(digit1, chord, 2));
    const Witness other; // takes the focus
    stage.press({leftControl, leftAlt, leftSuper, key1});
    EXPECT_TRUE(stage.waitFor({2}));
    EXPECT_EQ(stage.witness.seen().size(), 0U);
    EXPECT_EQ(other.seen().size(), 6U);
    stage.hands.focus(XCB_INPUT_FOCUS_POINTER_ROOT);
    stage.press({leftControl, leftAlt, leftSuper, key1});
    EXPECT_TRUE(stage.waitFor({2, 2}));
}

TEST(XHotkeys, StayWithTheirPlaceOnTheKeyboard) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(letterY, chord, 1));
    stage.setLayout(QStringLiteral("de")); // Y and Z change places
    EXPECT_TRUE(runUntil([&] {
        stage.press({leftControl, leftAlt, leftSuper, keyY});
        return !stage.pressed.empty();
    }));
    stage.setLayout(QStringLiteral("us"));
    stage.pressed.clear();
    EXPECT_TRUE(runUntil([&] {
        stage.press({leftControl, leftAlt, leftSuper, keyY});
        return !stage.pressed.empty();
    }));
}

TEST(XHotkeys, WorkInEachGroupOfALayout) {
    HotkeyStage stage;
    stage.setLayout(QStringLiteral("us,de"));
    ASSERT_TRUE(stage.add(letterY, chord, 1));
    ASSERT_TRUE(stage.add(digit1, chordAndShift, 3));
    const auto expectAll = [&](std::uint8_t option) {
        stage.pressed.clear();
        stage.press({leftControl, option, leftSuper, keyY});
        stage.press({leftControl, option, leftSuper, leftShift, key1});
        EXPECT_TRUE(stage.waitFor({1, 3})) << "option is key " << int{option};
    };
    expectAll(leftAlt);
    stage.hands.lockGroup(1);
    expectAll(leftAlt);
    expectAll(rightAlt); // AltGr there
    stage.hands.tap(capsLock);
    expectAll(leftAlt);
    stage.hands.tap(capsLock);
    stage.hands.lockGroup(0);
    expectAll(leftAlt);
}

TEST(XHotkeys, WaitForAKeymapThatHasTheirModifiers) {
    HotkeyStage stage;
    const auto path = stage.folder.filePath(QStringLiteral("keymap")); // without modifiers
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"text(xkb_keymap {
        xkb_keycodes { include "evdev+aliases(qwerty)" };
        xkb_types { include "complete" };
        xkb_compatibility { include "complete" };
        xkb_symbols { include "us(basic)" };
    };)text");
    file.close();
    stage.run(QStringLiteral("xkbcomp -w0 %1 %2").arg(path, stage.server.display()));
    XInputSession session{stage.space, stage.log}; // as at the start of the program
    XHotkeys hotkeys{session};
    int presses = 0;
    hotkeys.installEventHandler([&](const HotkeyIdentity&) { ++presses; });
    ASSERT_TRUE(hotkeys.registerEventHotKey(digit1, chord, {.id = 2}));
    stage.witness.seen();
    stage.press({leftControl, leftAlt, leftSuper, key1});
    EXPECT_EQ(stage.witness.seen().size(), 8U) << "nobody has it";
    stage.setLayout(QStringLiteral("us"));
    EXPECT_TRUE(runUntil([&] {
        stage.press({leftControl, leftAlt, leftSuper, key1});
        return presses > 0;
    }));
}

TEST(XHotkeys, FailAloneWhereAnotherProgramWasFirst) {
    HotkeyStage stage;
    const Rival rival;
    rival.grabCore(keyV, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
    rival.grabInput(key1, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
    EXPECT_FALSE(stage.add(letterV, chord, 1));
    EXPECT_FALSE(stage.add(digit1, chord, 2));
    ASSERT_TRUE(stage.add(digit1, chordAndShift, 3));
    for (const auto key : {key1, keyV}) stage.press({leftControl, leftAlt, leftSuper, key});
    stage.press({leftControl, leftAlt, leftSuper, leftShift, key1});
    EXPECT_TRUE(stage.waitFor({3}));
}

TEST(XHotkeys, WaitForTheReturnInATakeoverAndSurviveALostConnection) {
    HotkeyStage stage;
    ASSERT_TRUE(stage.add(digit1, chord, 2));
    stage.onEvent = [&](const TapEvent& event) {
        if (event.type == EventType::tapDisabledByTimeout) stage.tap->enable(true);
        constexpr auto all = EventFlags::control | EventFlags::option | EventFlags::command;
        if ((event.flags & all) == all) stage.cursor.associateMouseAndMouseCursorPosition(true);
    };
    stage.takeOver();
    for (const auto key : {leftControl, leftAlt, leftSuper}) stage.hands.key(key, true);
    ASSERT_TRUE(runUntil([&] { return stage.hands.grabAll(); })) << "the input is given back";
    stage.hands.ungrabAll();
    stage.hands.tap(key1);
    EXPECT_TRUE(stage.waitFor({2}));
    for (const auto key : {leftControl, leftAlt, leftSuper}) stage.hands.key(key, false);

    stage.pressed.clear();
    stage.hands.killAllBut(stage.witness);
    EXPECT_TRUE(runUntil([&] {
        stage.press({leftControl, leftAlt, leftSuper, key1});
        return !stage.pressed.empty();
    }));
}

} // namespace quenthisar::test
