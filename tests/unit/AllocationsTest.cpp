// SPDX-License-Identifier: MIT
#include "support/Allocations.h"

#include "support/World.h"

#include <gtest/gtest.h>

#include <functional>

namespace quenthisar {
namespace {

/// A dongle that is connected, and a log of payloads that needs no memory for a while.
struct Stage : Witness, World {
    static constexpr std::size_t events = 100;

    Stage() : World(static_cast<Witness&>(*this)) {
        discover(0);
        app().dongleManager->connect(dongleID(0));
        clock.settle();
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
    f.app().eventTap->takeOver(World::dongleID(0));
    const auto expectNone = [&](const char* what, const std::function<void()>& event) {
        f.central.writes.clear();
        EXPECT_EQ(f.allocationsOf(event), 0U) << what;
        EXPECT_GE(f.central.writes.size(), Stage::events) << what;
    };
    expectNone("motion", [&] { f.moveBy(3, -2); });
    expectNone("keys", [&] {
        f.key(0, true);
        f.key(0, false);
    });
    expectNone("modifiers", [&] {
        f.setFlags(EventFlags::shift);
        f.setFlags(0);
    });
    expectNone("buttons", [&] {
        f.button(0, true);
        f.button(0, false);
    });
    expectNone("scrolling", [&] { f.scroll(1); });
    expectNone("a media key", [&] {
        f.mediaKey(0, true);
        f.mediaKey(0, false);
    });
}

TEST(Allocations, NoneForAMoveOffTheEdges) {
    Stage f;
    f.state().setBinding("D1", Edge::right, World::dongleID(0));
    for (int i = 0; i < 5; ++i)
        f.plug("far" + std::to_string(i), {1920.0 * (i + 2), 0, 1920, 1080});
    const auto before = allocations();
    for (int x = 600; x < 700; ++x) f.moveTo({static_cast<double>(x), 500});
    EXPECT_EQ(allocations(), before);
    EXPECT_FALSE(f.state().takeover->has_value());
}

} // namespace
} // namespace quenthisar
