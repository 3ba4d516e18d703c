// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

/// The places of what the menu holds.
enum Place : std::size_t { capture, active, profiles = 3, takeOver, type };

struct Fixture : AppDelegateFixture {
    Fixture() { launch(false); }

    MenuItem item(Place place) const { return statusBar.open().at(place); }
    MenuItem item(Place place, std::size_t inSubmenu) const {
        return item(place).submenu.value().at(inSubmenu);
    }
};

TEST(StatusMenu, SwitchesProfilesTakesOverAndTypes) {
    Fixture f;
    f.state().addProfile("Second");
    f.statusBar.choose(f.item(profiles, 1));
    EXPECT_EQ(f.state().activeIndex(), 1U);
    EXPECT_EQ(f.item(profiles, 0).state, false);
    EXPECT_EQ(f.item(profiles, 1).state, true);

    f.pasteboard.text = "a";
    f.statusBar.choose(f.item(type));
    EXPECT_TRUE(f.typing.waiting.empty()) << "no target";
    f.discover({A, B, C});
    f.connect({B, C});
    f.state().setNickname("Couch & TV", C);
    const auto couch = f.item(takeOver, 1);
    EXPECT_EQ(couch.title, "Couch & TV");
    f.trust.trusted = false;
    f.statusBar.choose(couch);
    EXPECT_FALSE(*f.state().takeover);
    EXPECT_EQ(f.trust.prompts, 1);
    f.trust.trusted = true;
    f.statusBar.choose({.action = MenuAction::takeOver, .representedObject = "no identifier"});
    EXPECT_FALSE(f.captures());
    f.statusBar.choose(couch);
    EXPECT_TRUE(f.captures());
    EXPECT_EQ(*f.state().takeover, (Takeover{C, std::nullopt, std::nullopt}));
    EXPECT_EQ(f.item(active).title, "Active: Couch & TV");
    EXPECT_TRUE(f.item(type).isEnabled);
    f.statusBar.choose(f.item(type));
    f.typing.run();
    EXPECT_EQ(f.sent(C).size(), 2U);
    f.statusBar.choose(f.item(capture));
    EXPECT_FALSE(f.captures());
}

TEST(StatusMenu, TellsHostsOnceOfManyChangesAndAfterThem) {
    Fixture f;
    f.clock.advance(1s);
    f.statusBar.updates = 0;
    for (int i = 0; i < 50; ++i) {
        f.state().activeMode = "Desk " + std::to_string(i);
        f.clock.advance(1ms);
    }
    EXPECT_EQ(f.statusBar.updates, 0);
    f.clock.advance(150ms);
    EXPECT_EQ(f.statusBar.updates, 1);
}

} // namespace
} // namespace quenthisar
