// SPDX-License-Identifier: MIT
#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

#include <limits>

namespace quenthisar {
namespace {

/// A takeover of A without an edge, at the speed factor given.
struct Remote : TakeoverFixture {
    explicit Remote(std::optional<double> factor = std::nullopt) {
        if (factor) setFactor(*factor);
        controller.takeOver(A);
    }
    void setFactor(double factor) {
        state.sensitivities.modify([&](auto& map) { map[A] = factor; });
    }
};

Payload keys(int modifiers, std::initializer_list<int> usages) {
    Payload payload = bytes({1, modifiers});
    std::size_t place = 9;
    for (const int usage : usages) payload.at(place++) = static_cast<std::uint8_t>(usage);
    return payload;
}

Payload moved(std::int16_t dx, std::int16_t dy = 0, int buttons = 0) {
    return bytes({2, 0, buttons, dx >> 8 & 0xFF, dx & 0xFF, dy >> 8 & 0xFF, dy & 0xFF});
}

TEST(Forwarding, SendsTheHeldKeysInOrderOfPressingWithFreshModifiers) {
    Remote f;
    f.key(EventType::keyDown, 11);
    f.key(EventType::keyDown, 0, EventFlags::shift);
    f.key(EventType::keyDown, 0, EventFlags::shift); // auto-repeat
    f.key(EventType::keyUp, 11);
    f.key(EventType::keyUp, 8); // was never down here
    f.key(EventType::keyUp, 0);
    EXPECT_EQ(f.sent(), (Payloads{keys(0, {0x05}), keys(2, {0x05, 0x04}), keys(2, {0x05, 0x04}),
                                  keys(0, {0x04}), keys(0, {0x04}), keys(0, {})}));
}

TEST(Forwarding, ASeventhKeyWaitsUntilOneOfSixIsReleased) {
    Remote f;
    for (const int code : {0, 11, 8, 2, 14, 3, 5}) f.key(EventType::keyDown, code);
    EXPECT_EQ(f.sent().back(), keys(0, {4, 5, 6, 7, 8, 9}));
    f.key(EventType::keyUp, 0);
    EXPECT_EQ(f.sent(), Payloads{keys(0, {5, 6, 7, 8, 9, 10})});
}

TEST(Forwarding, SendsAReportForKeysThatTheTableLacks) {
    Remote f;
    f.key(EventType::keyDown, 0);
    f.key(EventType::keyDown, 105, EventFlags::command);
    f.key(EventType::keyUp, 105);
    EXPECT_EQ(f.sent(), (Payloads{keys(0, {4}), keys(8, {4}), keys(0, {4})}));
}

TEST(Forwarding, ModifiersReachTheTargetAsBitsAndCapsLockNotAtAll) {
    Remote f;
    f.flags(EventFlags::alphaShift);
    f.flags(EventFlags::alphaShift | EventFlags::control);
    f.key(EventType::keyDown, 0, EventFlags::control | EventFlags::alphaShift);
    f.flags(EventFlags::option);
    EXPECT_EQ(f.sent(), (Payloads{keys(0, {}), keys(1, {}), keys(1, {4}), keys(4, {4})}));
}

TEST(Forwarding, ButtonsBeyondTheSecondShareABit) {
    Remote f;
    f.post(EventType::leftMouseDown);
    f.post(EventType::otherMouseDown);
    f.post(EventType::rightMouseDown);
    f.post(EventType::otherMouseDown);
    f.post(EventType::otherMouseUp);
    f.taps.post({.type = EventType::rightMouseDragged, .deltaX = 3, .deltaY = -1});
    f.taps.post({.type = EventType::scrollWheel, .scrollDelta = -2});
    f.post(EventType::leftMouseUp);
    f.post(EventType::rightMouseUp);
    EXPECT_EQ(f.sent(),
              (Payloads{bytes({2, 0, 1}), bytes({2, 0, 5}), bytes({2, 0, 7}), bytes({2, 0, 7}),
                        bytes({2, 0, 3}), moved(3, -1, 3), bytes({2, 0, 3, 0, 0, 0, 0, 0xFF, 0xFE}),
                        bytes({2, 0, 2}), bytes({2})}));
}

TEST(Forwarding, EveryKindOfMotionIsSentANullMoveToo) {
    Remote f;
    for (const auto type : {EventType::mouseMoved, EventType::leftMouseDragged,
                            EventType::rightMouseDragged, EventType::otherMouseDragged})
        f.taps.post({.type = type, .deltaX = 2, .deltaY = 1});
    f.motion(0, 0);
    f.motion(40000, -40000);
    EXPECT_EQ(f.sent(), (Payloads{moved(2, 1), moved(2, 1), moved(2, 1), moved(2, 1), moved(0),
                                  moved(0x7FFF, -0x8000)}));
}

TEST(Forwarding, FractionsAreCarriedTowardsZeroWithTheirSign) {
    Remote f(0.5);
    for (const std::int64_t dx : {1, 1, -1, -1, -3}) f.motion(dx, -dx);
    EXPECT_EQ(f.sent(), (Payloads{moved(0), moved(1, -1), moved(0), moved(-1, 1), moved(-1, 1)}));
}

TEST(Forwarding, AFactorOfExactlyOneLeavesTheRemaindersAlone) {
    Remote f(0.5);
    f.motion(1, 0);
    f.setFactor(1.0);
    f.motion(1, 0);
    f.setFactor(0.5);
    f.motion(1, 0);
    EXPECT_EQ(f.sent(), (Payloads{moved(0), moved(1), moved(1)}));
}

TEST(Forwarding, EntryForgetsTheRemaindersOfTheLastTakeover) {
    Remote f(0.5);
    f.motion(1, 1);
    f.flags(EventFlags::control | EventFlags::option | EventFlags::command);
    f.controller.takeOver(A);
    f.sent();
    f.motion(1, 1);
    EXPECT_EQ(f.sent(), Payloads{moved(0)});
}

TEST(Forwarding, FactorsThatNoPointerHasDoNoHarm) {
    Remote f(std::numeric_limits<double>::infinity());
    f.motion(0, 1);
    f.setFactor(1e300);
    f.motion(1, -1);
    f.setFactor(2.0);
    f.motion(1, 1);
    EXPECT_EQ(f.sent(), (Payloads{moved(0), moved(0x7FFF, -0x8000), moved(2, 2)}));
}

TEST(Forwarding, MediaKeysBecomeConsumerReports) {
    Remote f;
    f.mediaKey(16, 0x0A);
    f.mediaKey(16, 0x0B);
    f.mediaKey(14, 0x0A);    // eject: no usage
    f.mediaKey(16, 0x0A, 7); // another kind of system event
    EXPECT_EQ(f.sent(), (Payloads{bytes({4, 0, 0, 0, 0xCD}), bytes({4})}));
}

} // namespace
} // namespace quenthisar
