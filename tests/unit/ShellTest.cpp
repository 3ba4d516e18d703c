// SPDX-License-Identifier: MIT
#include "Capture/TargetMacro.h"
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Fixture = AppDelegateFixture;

constexpr std::uint32_t chord = 0x1900, chordAndShift = 0x1B00;
constexpr std::array<std::uint32_t, 10> digit{0, 18, 19, 20, 21, 23, 22, 26, 28, 25};
constexpr std::uint32_t keyV = 9;

Payload key(std::uint8_t modifier, std::uint8_t usage) {
    return Report::keyboard(modifier, std::array{usage});
}

} // namespace

TEST(Hotkeys, AreNineteenInATableWithIdsInItsOrder) {
    Fixture f;
    f.hotkeys.taken = {{digit[5], chord}};
    f.launch();
    ASSERT_EQ(f.hotkeys.asked.size(), 19U);
    const auto expectAt = [&](std::uint32_t id, FakeHotkeyService::Combination combination) {
        EXPECT_EQ(f.hotkeys.asked[id - 1].first, combination) << id;
        EXPECT_EQ(f.hotkeys.asked[id - 1].second, (HotkeyIdentity{0x514E5448, id}));
    };
    expectAt(1, {keyV, chord});
    for (std::uint32_t n = 1; n <= 9; ++n) {
        expectAt(2 * n, {digit[n], chord});
        expectAt(2 * n + 1, {digit[n], chordAndShift});
    }
    EXPECT_EQ(f.hotkeys.registered.size(), 18U);

    // What has no handler does nothing, and the others are unaffected.
    for (const auto* name : {"2", "3", "4", "5", "6"}) f.state().addProfile(name);
    f.hotkeys.press(digit[6], chord);
    f.hotkeys.handler({.id = 10});
    f.hotkeys.handler({.id = 99});
    EXPECT_EQ(f.state().activeProfile().name, "6");
    f.hotkeys.handler({.id = 8});
    EXPECT_EQ(f.state().activeProfile().name, "4");
}

TEST(Hotkeys, SwitchProfilesByTheirPlace) {
    Fixture f;
    f.launch();
    f.state().addProfile("Second");
    f.state().addProfile("Third");
    f.hotkeys.press(digit[3], chord);
    EXPECT_EQ(f.state().activeProfile().name, "Third");
    f.hotkeys.press(digit[4], chord);
    EXPECT_EQ(f.state().activeProfile().name, "Third");
}

TEST(Hotkeys, TakeOverTheNthConnectedDongleWhileCaptureRuns) {
    Fixture f;
    f.launch(false);
    f.discover({A, B, C});
    f.connect({A, C});
    f.hotkeys.press(digit[2], chordAndShift);
    EXPECT_FALSE(*f.state().takeover) << "capture is off";
    f.delegate->eventTap->start();
    f.hotkeys.press(digit[3], chordAndShift);
    EXPECT_FALSE(*f.state().takeover);
    f.hotkeys.press(digit[2], chordAndShift);
    EXPECT_EQ(*f.state().takeover, (Takeover{C, std::nullopt, std::nullopt}));
    f.hotkeys.press(digit[1], chordAndShift);
    EXPECT_EQ((*f.state().takeover)->dongleID, C);
}

TEST(Hotkeys, DoNothingOnceTheApplicationIsGone) {
    Fixture f;
    f.launch();
    f.delegate.reset();
    f.hotkeys.press(digit[1], chord);
    f.hotkeys.press(keyV, chord);
}

TEST(ClipboardTarget, IsTheTakeoverThenABoundThenAnyConnectedDongle) {
    Fixture f;
    f.launch();
    f.pasteboard.text = "x";
    const auto target = [&] {
        f.hotkeys.press(keyV, chord);
        f.typing.run();
        std::vector<Uuid> got;
        for (const auto& id : {A, B, C})
            if (!f.sent(id).empty()) got.push_back(id);
        return got;
    };
    f.discover({A, B, C});
    EXPECT_EQ(target(), std::vector<Uuid>{});
    f.connect({B, C});
    EXPECT_EQ(target(), std::vector{B});
    f.state().addProfile("Other");
    f.bind(A, Edge::left, 0);
    f.bind(C, Edge::left, 1); // any profile's bindings count
    EXPECT_EQ(target(), std::vector{C});
    f.delegate->eventTap->takeOver(B);
    f.sent(B);
    EXPECT_EQ(target(), std::vector{B});
}

TEST(ClipboardTyper, TypesAPressAndARelease74MsApart) {
    Fixture f;
    f.launch();
    f.discover({A});
    f.connect({A});
    f.pasteboard.text = "Hi\r\n";
    std::vector<std::pair<VirtualClock::Nanoseconds, Payload>> typed;
    f.central.onWrite = [&](const Write& write) {
        typed.emplace_back(f.clock.now(), write.payload);
    };
    const auto start = f.clock.now();
    f.hotkeys.press(keyV, chord);
    EXPECT_TRUE(typed.empty()) << "never inside the call";
    f.typing.run();
    const auto up = Report::allKeysUp();
    EXPECT_EQ(typed, (std::vector<std::pair<VirtualClock::Nanoseconds, Payload>>{
                         {start, key(0x02, 0x0B)},
                         {start, up},
                         {start + 74ms, key(0, 0x0C)},
                         {start + 74ms, up},
                         {start + 148ms, key(0, 0x28)},
                         {start + 148ms, up}}));
}

TEST(ClipboardTyper, IgnoresWhatIsAskedDuringARunAndTypesAgainAfterIt) {
    Fixture f;
    f.launch();
    f.discover({A});
    f.connect({A});
    f.pasteboard.text = "\xF0\x9F\x98\x80"; // nothing that can be typed
    f.hotkeys.press(keyV, chord);
    f.pasteboard.text = "";
    f.hotkeys.press(keyV, chord);
    f.pasteboard.text.reset();
    f.hotkeys.press(keyV, chord);
    EXPECT_TRUE(f.typing.waiting.empty());

    f.pasteboard.text = "ab";
    f.hotkeys.press(keyV, chord);
    f.typing.onSleep = [&] { f.hotkeys.press(keyV, chord); };
    f.typing.run();
    f.typing.onSleep = nullptr;
    EXPECT_EQ(f.sent(A).size(), 4U);
    f.hotkeys.press(keyV, chord);
    f.typing.run();
    EXPECT_EQ(f.sent(A).size(), 4U);
}

TEST(ClipboardTyper, TypesForHoursAndLeavesTheUsersOwnKeysAlone) {
    Fixture f;
    f.launch();
    f.discover({A});
    f.connect({A});
    f.delegate->eventTap->takeOver(A);
    f.pasteboard.text = std::string(0x100000, 'a') + "b";
    f.central.writes.clear();
    std::size_t typed = 0, own = 0;
    f.central.onWrite = [&](const Write& write) {
        EXPECT_NE(write.payload, key(0, 0x05)) << "the text is cut";
        typed += write.payload == key(0, 0x04);
        own += write.payload == key(0, 0x07);
        f.central.writes.clear();
    };
    int sleeps = 0;
    f.typing.onSleep = [&] {
        if (++sleeps % 0x40000 == 0) f.taps.post({.type = EventType::keyDown, .keyCode = 2}); // D
    };
    f.hotkeys.press(keyV, chord);
    f.typing.run();
    EXPECT_EQ(typed, 0x100000U);
    EXPECT_EQ(own, 4U);
    EXPECT_GT(f.clock.now(), 21h);
}

TEST(ClipboardTyper, EndsWithItsQueue) {
    Fixture f;
    f.launch();
    f.discover({A});
    f.connect({A});
    f.pasteboard.text = "abc";
    f.hotkeys.press(keyV, chord);
    f.typing.isGoing = true;
    f.typing.run();
    EXPECT_EQ(f.sent(A), (Payloads{key(0, 0x04), Report::allKeysUp()}));

    f.typing.isGoing = false;
    f.hotkeys.press(keyV, chord);
    f.delegate.reset();
    f.typing.run(); // a run that has not begun
    EXPECT_TRUE(f.sent(A).empty());
}

TEST(TakeoverObserver, ShowsAndHidesThePanelAfterTheAssignment) {
    Fixture f;
    f.launch();
    f.discover({A, B});
    f.connect({A, B});
    f.bind(A, Edge::right);
    f.state().setNickname("Desk", A);
    f.taps.post({.type = EventType::mouseMoved, .location = {1919, 500}});
    EXPECT_TRUE(f.panels.made.empty());
    f.clock.settle();
    ASSERT_EQ(f.panels.views, (std::vector<HUDView>{{"Desk", Palette::color(A)}}));
    EXPECT_EQ(f.panels.made[0]->origin, (Point{1608, 495}));
    f.delegate->eventTap->stop();
    f.clock.advance(300ms);
    EXPECT_EQ(f.panels.shown(), 0);
    EXPECT_EQ(f.panels.made[0]->fades.back(), (std::pair<double, Seconds>{0, 300ms}));

    // Without an edge, near the top.
    f.delegate->eventTap->start();
    f.delegate->eventTap->takeOver(B);
    f.clock.settle();
    EXPECT_EQ(f.panels.made.at(1)->origin, (Point{810, 890}));
    f.clock.advance(2600ms);
    EXPECT_EQ(f.panels.made[1]->fades.size(), 2U);

    // Switched off, a takeover hides what is there.
    f.state().takeover = Takeover{A, std::nullopt, std::nullopt};
    f.clock.settle();
    f.state().hudEnabled = false;
    f.state().takeover = Takeover{B, std::nullopt, std::nullopt};
    f.clock.settle();
    ASSERT_EQ(f.panels.made.size(), 3U);
    EXPECT_EQ(f.panels.made[2]->fades.back(), (std::pair<double, Seconds>{0, 300ms}));
}

TEST(TakeoverObserver, DoesNotSkipWhatIsThereAtLaunch) {
    Fixture f;
    f.create();
    f.state().takeover = Takeover{A, std::nullopt, std::nullopt};
    f.finishLaunching();
    EXPECT_EQ(f.panels.shown(), 1);
}

TEST(TakeoverObserver, PlacesThePanelInsideTheCrossedEdge) {
    Fixture f;
    f.panels.size = {100, 40};
    f.launch();
    f.displays.add("D2", {1920, 200, 1000, 600}); // its lower side is at 280 from below
    f.displays.changed();
    f.discover({A});
    f.connect({A});
    const auto originAt = [&](Edge edge, const char* screen) {
        f.state().takeover = Takeover{A, edge, screen};
        f.clock.settle();
        return f.panels.made.back()->origin;
    };
    EXPECT_EQ(originAt(Edge::top, "D2"), (Point{2370, 780}));
    EXPECT_EQ(originAt(Edge::bottom, "D2"), (Point{2370, 340}));
    EXPECT_EQ(originAt(Edge::left, "D2"), (Point{1990, 560}));
    EXPECT_EQ(originAt(Edge::right, "D2"), (Point{2750, 560}));
    EXPECT_EQ(originAt(Edge::left, "gone"), (Point{910, 940}));
}

TEST(ProfileObserver, SendsTheChordToTheFirstConnectedBoundDongle) {
    Fixture f;
    f.launch();
    f.discover({A, B, C});
    f.connect({B, C});
    f.state().addProfile("Second");
    const auto second = f.state().profiles->at(1).id;
    f.state().updateProfile(second, [](Profile& profile) { profile.targetCommand = "cmd+l"; });
    f.state().switchProfile(second);
    f.clock.advance(1s);
    EXPECT_TRUE(f.sent(B).empty() && f.sent(C).empty()) << "none is bound";

    f.bind(C, Edge::left, 1);
    f.bind(B, Edge::right, 1);
    f.bind(A, Edge::top, 1);
    f.state().switchProfile(f.state().profiles->at(0).id);
    f.state().switchProfile(second);
    EXPECT_TRUE(f.sent(B).empty()) << "only after the assignment";
    f.clock.advance(1s);
    EXPECT_EQ(f.sent(B), (Payloads{key(0x08, 0x0F), Report::allKeysUp()}));
    EXPECT_TRUE(f.sent(C).empty());
}

TEST(ProfileObserver, SendsNothingForTheProfileOfTheLaunch) {
    Fixture f;
    f.launch();
    f.state().updateProfile(f.state().profiles->at(0).id,
                            [](Profile& profile) { profile.targetCommand = "cmd+l"; });
    f.bind(A, Edge::left);
    // The same settings at the next launch.
    f.delegate.reset();
    f.launch();
    f.discover({A});
    f.connect({A});
    f.clock.advance(1s);
    EXPECT_TRUE(f.sent(A).empty());
}

} // namespace quenthisar
