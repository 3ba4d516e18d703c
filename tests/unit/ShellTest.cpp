// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Fixture = AppDelegateFixture;

constexpr std::uint32_t chord = 0x1900, chordAndShift = 0x1B00;
constexpr std::array<std::uint32_t, 10> digit{0, 18, 19, 20, 21, 23, 22, 26, 28, 25};
constexpr std::uint32_t keyV = 9;

Payload key(std::uint8_t usage) {
    return Report::keyboard(0, std::array{usage});
}

TEST(Hotkeys, AreNineteenOfWhichEachWorksWithoutTheOthers) {
    Fixture f;
    f.hotkeys.taken = {{digit[5], chord}};
    f.launch();
    for (const auto* name : {"2", "3", "4", "5", "6", "7", "8"}) f.state().addProfile(name);
    for (std::size_t n = 9; n > 0; --n) {
        f.hotkeys.press(digit[n], chord);
        const std::size_t expected = n == 9 ? 1 : n == 5 ? 6 : n; // none, taken
        EXPECT_EQ(f.state().activeIndex() + 1, expected) << n;
    }
    EXPECT_EQ(f.hotkeys.registered.size(), 18U);
    f.hotkeys.handler({.id = 99}); // nobody's
}

TEST(ClipboardTyper, TypesAMillionKeysAndEndsWithItsQueue) {
    Fixture f;
    f.launch();
    f.bringUp(A);
    for (const auto& nothing : {std::optional<std::string>{"\xF0\x9F\x98\x80"}, {""}, {}}) {
        f.pasteboard.text = nothing;
        f.hotkeys.press(keyV, chord);
    }
    EXPECT_TRUE(f.typing.waiting.empty());
    f.pasteboard.text = std::string(0x100000, 'a') + "b";
    std::size_t typed = 0;
    f.central.onWrite = [&](const Write& write) {
        EXPECT_NE(write.payload, key(0x05)) << "the text is cut";
        typed += write.payload == key(0x04);
        f.central.writes.clear();
    };
    f.hotkeys.press(keyV, chord);
    f.typing.run();
    EXPECT_EQ(typed, 0x100000U);

    f.central.onWrite = nullptr;
    f.hotkeys.press(keyV, chord);
    f.typing.isGoing = true;
    f.typing.run();
    EXPECT_EQ(f.sent(A), (Payloads{key(0x04), Report::allKeysUp()}));
}

TEST(TakeoverObserver, PlacesThePanelInsideTheCrossedEdge) {
    Fixture f;
    f.panels.size = {100, 40};
    f.launch();
    f.displays.add("D2", {1920, 200, 1000, 600}); // its lower side is at 280 from below
    f.displays.changed();
    f.bringUp(A);
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

} // namespace
} // namespace quenthisar
