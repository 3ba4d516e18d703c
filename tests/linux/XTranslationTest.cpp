// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"
#include "Linux/DeliveredInput.h"
#include "Linux/DesktopSpace.h"
#include "Linux/HostKeys.h"
#include "Linux/Monitor.h"
#include "Linux/MotionPacer.h"
#include "Linux/XTestMotion.h"

#include <gtest/gtest.h>

#include <array>

namespace quenthisar::test {

namespace {

using namespace std::chrono_literals;

// What the Linux kernel calls the key of each HID usage from 0x04 on; 0 where the host has none.
constexpr auto kernelCodes = std::to_array<std::uint32_t>(
    {30, 48, 46, 32, 18, 33, 34, 35, 23, 36,  37,  38,  50,  49,  24,  25,  16,  19,  31, 20,
     22, 47, 17, 45, 21, 44, 2,  3,  4,  5,   6,   7,   8,   9,   10,  11,  28,  1,   14, 15,
     57, 12, 13, 26, 27, 43, 0,  39, 40, 41,  51,  52,  53,  0,   59,  60,  61,  62,  63, 64,
     65, 66, 67, 68, 87, 88, 0,  0,  0,  110, 102, 104, 111, 107, 109, 106, 105, 108, 103});

MotionPacer::Clock::time_point at(std::chrono::microseconds time) {
    return MotionPacer::Clock::time_point{1h + time};
}

constexpr FineMotion pixels(double x, double y) {
    return {static_cast<std::int64_t>(x * finePerPixel),
            static_cast<std::int64_t>(y * finePerPixel)};
}

Monitor monitor(const char* name, Rect frame, const char* edid = "", bool isPrimary = false) {
    return {.number = 1, .name = name, .frame = frame, .isPrimary = isPrimary, .edid = edid};
}

} // namespace

TEST(HostKeys, TakeEveryKeyToItsUsage) {
    std::uint8_t usage = 0x04;
    for (const auto code : kernelCodes) {
        if (code != 0) {
            const auto key = hostKey(code + 8);
            ASSERT_EQ(key.kind, HostKey::Kind::key) << "kernel code " << code;
            EXPECT_EQ(KeycodeMap::usage(key.code), usage) << "kernel code " << code;
        }
        ++usage;
    }
    EXPECT_EQ(KeycodeMap::usage(hostKey(8 + 96).code), std::nullopt) << "Enter of the keypad";
    EXPECT_EQ(KeycodeMap::consumerUsage(hostKey(8 + 164).code), 0xCD);
    EXPECT_EQ(hostKey(8 + 161).kind, HostKey::Kind::swallowed) << "Eject";
}

TEST(MotionPacer, SumsWhatComesTooFast) {
    MotionPacer pacer;
    EXPECT_TRUE(pacer.add(pixels(1, 0), at(0ms)));
    EXPECT_FALSE(pacer.add(pixels(1, 2), at(1ms)));
    EXPECT_FALSE(pacer.add(pixels(1, 2), at(6'999us)));
    ASSERT_EQ(pacer.due(), at(8ms));
    const auto delta = pacer.take(at(8ms));
    ASSERT_TRUE(delta);
    EXPECT_EQ(delta->x, 2);
    EXPECT_EQ(delta->y, 4);
    EXPECT_TRUE(pacer.add(pixels(1, 0), at(15ms))) << "a mouse of 125 Hz that came early";
}

TEST(MotionPacer, CarriesFractionsOver) {
    MotionPacer pacer;
    std::int64_t x = 0, y = 0;
    for (int i = 1; i <= 1000; ++i) {
        if (const auto delta = pacer.add(pixels(0.3, -0.7), at(i * 10ms))) {
            x += delta->x;
            y += delta->y;
        }
    }
    EXPECT_EQ(x, 299) << "0.3 is a little less than 0.3 in binary";
    EXPECT_EQ(y, -699);
    EXPECT_FALSE(pacer.due()) << "no whole pixel is left";
}

TEST(DeliveredInput, IsTakenBackByReleases) {
    using enum EventType;
    DeliveredInput input;
    input.begin(EventFlags::shift);
    EXPECT_TRUE(input.releases(EventFlags::shift).empty());

    const auto media = [](std::int64_t type, int state) {
        return TapEvent{
            .type = systemDefined, .subtype = auxiliaryControlButtons, .data1 = type << 16 | state};
    };
    for (const auto& event : std::to_array<TapEvent>({{.type = keyDown, .keyCode = 0},
                                                      {.type = keyDown, .keyCode = 1},
                                                      {.type = keyDown, .keyCode = 1},
                                                      {.type = keyUp, .keyCode = 0},
                                                      media(7, 0x0A00),
                                                      media(0, 0x0A00),
                                                      media(7, 0x0B00),
                                                      {.type = leftMouseDown},
                                                      {.type = otherMouseDown},
                                                      {.type = leftMouseUp},
                                                      {.type = rightMouseDown},
                                                      {.type = scrollWheel, .scrollDelta = 1},
                                                      {.type = flagsChanged, .flags = 3}}))
        input.note(event);
    std::vector<TapEvent> releases = input.releases(0);
    std::vector<EventType> types;
    for (const auto& event : releases) types.push_back(event.type);
    EXPECT_EQ(types, (std::vector{keyUp, systemDefined, rightMouseUp, otherMouseUp, flagsChanged}));
    EXPECT_EQ(releases[0].keyCode, 1);
    EXPECT_EQ(releases[1].data1, 0x0B00);
    EXPECT_EQ(releases[4].flags, 0U);
    for (const auto& event : releases) input.note(event);
    EXPECT_TRUE(input.releases(0).empty());
}

TEST(XTestMotion, KeepsItsSumWhenTheServerIsAheadOfTheEvents) {
    XTestMotion motion;
    motion.start({1279, 400});
    const auto position = [](std::int64_t x, std::int64_t y) {
        return XPointers::Values{{x * finePerPixel, y * finePerPixel}};
    };
    EXPECT_EQ(motion.motion(position(5, -3), {1279, 400}), pixels(5, -3));
    EXPECT_EQ(motion.motion(position(1000, 300), {900, 310}), pixels(-379, -90));
    EXPECT_EQ(motion.motion(position(900, 310), {900, 310}), pixels(0, 0));
    EXPECT_EQ(motion.motion(position(1279, 400), {1279, 400}), pixels(379, 90));
}

TEST(Monitors, StartWithThePrimaryOneOrTheTopmostThenLeftmost) {
    std::vector monitors{monitor("A", {0, 100, 10, 10}), monitor("B", {10, 0, 10, 10}),
                         monitor("C", {5, 0, 10, 10})};
    putPrimaryFirst(monitors);
    EXPECT_EQ(monitors[0].name, "C");
    EXPECT_EQ(monitors[1].name, "A");
    monitors[2].isPrimary = true;
    putPrimaryFirst(monitors);
    EXPECT_EQ(monitors[0].name, "B");
    std::vector<Monitor> none;
    putPrimaryFirst(none);
}

TEST(Monitors, KeepTheirIdentityOnAnotherConnectorUnlessAnEqualOneIsThere) {
    const auto first = monitor("DP-1", {}, "edid"), moved = monitor("DP-2", {}, "edid");
    const auto nameless = monitor("DP-1", {});
    EXPECT_EQ(displayIdentifier(first, {first}), displayIdentifier(moved, {moved}));
    EXPECT_NE(displayIdentifier(first, {first, moved}), displayIdentifier(moved, {first, moved}));
    EXPECT_NE(displayIdentifier(nameless, {nameless}),
              displayIdentifier(monitor("DP-2", {}), {monitor("DP-2", {})}));
}

TEST(Monitors, AreCalledByTheModelThatTheyName) {
    auto named = monitor("DP-1", {});
    named.edid = QByteArray(54, '\1') + QByteArray(18, '\1') +
                 QByteArray("\0\0\0\xFC\0Model 27\n    ", 18) + QByteArray(36, '\0');
    EXPECT_EQ(displayName(named), "Model 27");
    named.edid.truncate(80);
    EXPECT_EQ(displayName(named), "DP-1");
}

TEST(DesktopSpace, TurnsAroundThePrimaryDisplay) {
    DesktopSpace space;
    space.setPrimary({1920, 200, 1280, 1024});
    EXPECT_EQ(space.globalFromRoot({1919, 300}), (Point{-1, 100}));
    EXPECT_EQ(space.frameworkFromRoot({1920, 200, 1280, 1024}), (Rect{0, 0, 1280, 1024}));
    const Rect left{0, 0, 1920, 1080};
    EXPECT_EQ(space.frameworkFromRoot(left), (Rect{-1920, 144, 1920, 1080}));
    EXPECT_EQ(space.rootFromFramework(space.frameworkFromRoot(left)), left);
}

} // namespace quenthisar::test
