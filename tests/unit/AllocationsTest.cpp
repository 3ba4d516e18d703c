// SPDX-License-Identifier: MIT
#include "support/Allocations.h"

#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

#include <functional>

namespace quenthisar {
namespace {

/// A takeover, and a log of payloads that needs no memory for a while.
struct Stage : TakeoverFixture {
    static constexpr std::size_t events = 100;

    Stage() {
        bind(A, Edge::right);
        moveTo(1918, 500);
        central.takePayloads(A);
        central.writes.reserve(4 * events);
    }

    std::size_t allocationsOf(const std::function<void()>& event) const {
        const auto before = allocations();
        for (std::size_t i = 0; i < events; ++i) event();
        return allocations() - before;
    }
};

TEST(Allocations, AreCounted) {
    const auto before = allocations();
    const auto one = std::make_unique<int>(1);
    EXPECT_EQ(allocations(), before + 1);
}

TEST(Allocations, NoneForAnyForwardedEvent) {
    Stage f;
    ASSERT_TRUE(f.isRemote());
    const auto expectNone = [&](const char* what, const std::function<void()>& event) {
        f.central.takePayloads(A);
        EXPECT_EQ(f.allocationsOf(event), 0U) << what;
        EXPECT_GE(f.sent().size(), Stage::events) << what;
    };
    expectNone("motion", [&] { f.motion(3, -2); });
    expectNone("keys", [&] {
        f.key(EventType::keyDown, 0);
        f.key(EventType::keyUp, 0);
    });
    expectNone("modifiers", [&] {
        f.flags(EventFlags::shift);
        f.flags(0);
    });
    expectNone("buttons", [&] {
        f.post(EventType::leftMouseDown);
        f.post(EventType::leftMouseUp);
    });
    expectNone("scrolling",
               [&] { f.taps.post({.type = EventType::scrollWheel, .scrollDelta = 1}); });
    expectNone("a media key", [&] {
        f.mediaKey(0, 0x0A);
        f.mediaKey(0, 0x0B);
    });
}

TEST(Allocations, NoneForAMoveOffTheEdges) {
    TakeoverFixture f;
    f.bind(A, Edge::right);
    for (int i = 0; i < 5; ++i)
        f.addDisplay("far" + std::to_string(i), {1920.0 * (i + 2), 0, 1920, 1080});
    const auto before = allocations();
    for (int x = 600; x < 700; ++x) f.moveTo(x, 500);
    EXPECT_EQ(allocations(), before);
    EXPECT_FALSE(f.isRemote());
}

} // namespace
} // namespace quenthisar
