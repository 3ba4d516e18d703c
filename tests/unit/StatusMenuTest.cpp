// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

struct Fixture : AppDelegateFixture {
    void pair(const std::vector<Uuid>& found, const std::vector<Uuid>& connected) {
        discover(found);
        connect(connected);
    }
    /// An item of the menu as it opens now, or of one of its submenus.
    MenuItem item(const std::string& title, const std::string& inSubmenu = {}) const {
        auto menu = statusBar.open();
        if (!inSubmenu.empty()) menu = find(menu, inSubmenu).submenu.value();
        return find(menu, title);
    }
    void choose(const std::string& title, const std::string& inSubmenu = {}) const {
        statusBar.choose(item(title, inSubmenu));
    }

private:
    static MenuItem find(const Menu& menu, const std::string& title) {
        const auto found = std::ranges::find(menu, title, &MenuItem::title);
        EXPECT_NE(found, menu.end()) << title;
        return found != menu.end() ? *found : MenuItem{.submenu = Menu{}};
    }
};

std::vector<std::string> titles(const Menu& menu) {
    std::vector<std::string> result;
    for (const auto& item : menu) result.push_back(item.isSeparator ? "-" : item.title);
    return result;
}

} // namespace

TEST(StatusItem, HasItsTemplateImageAndGoesWithTheApplication) {
    Fixture f;
    f.launch();
    EXPECT_EQ(f.statusBar.items, 1);
    ASSERT_TRUE(f.statusBar.image);
    EXPECT_EQ(f.statusBar.image->name, "menubar");
    EXPECT_TRUE(f.statusBar.image->isTemplate);
    EXPECT_EQ(f.statusBar.image->width, 18);
    EXPECT_EQ(f.statusBar.image->height, 18);
    EXPECT_EQ(f.statusBar.image->accessibilityDescription, "Quenthisar");
    const auto delegate = f.statusBar.delegate;
    f.delegate.reset();
    EXPECT_EQ(f.statusBar.items, 0);
    Menu menu;
    delegate.menuNeedsUpdate(menu);
    delegate.choose({.action = MenuAction::pasteMenu});
}

TEST(StatusMenu, HoldsItsTableOnceAtEachOpening) {
    Fixture f;
    f.launch(false);
    const Menu expected{
        {.title = "Capture", .action = MenuAction::toggleCaptureMenu, .state = false},
        {.title = "Active: Local", .isEnabled = false},
        {.isSeparator = true},
        {.title = "Profile",
         .submenu = Menu{{.title = "Default",
                          .action = MenuAction::selectProfile,
                          .state = true,
                          .representedObject = f.state().activeProfileID->text()}}},
        {.title = "Take over",
         .submenu = Menu{{.title = "No connected dongles", .isEnabled = false}}},
        {.title = "Type Clipboard to Target", .action = MenuAction::pasteMenu, .isEnabled = false},
        {.isSeparator = true},
        {.title = "Open Quenthisar", .action = MenuAction::showWindow, .keyEquivalent = "o"},
        {.title = "Quit", .action = MenuAction::terminate, .keyEquivalent = "q"},
    };
    EXPECT_EQ(f.statusBar.open(), expected);
    EXPECT_EQ(f.statusBar.open(), expected);
}

TEST(StatusMenu, ChecksTheActiveProfileOnlyAndSwitches) {
    Fixture f;
    f.launch();
    f.state().addProfile("Second");
    f.state().addProfile("Second");
    const auto checks = [&] {
        std::vector<bool> result;
        const auto profile = f.item("Profile");
        for (const auto& item : *profile.submenu) result.push_back(item.state.value());
        return result;
    };
    const auto profiles = *f.item("Profile").submenu;
    EXPECT_EQ(titles(profiles), (std::vector<std::string>{"Default", "Second", "Second"}));
    EXPECT_EQ(checks(), (std::vector{true, false, false}));
    f.statusBar.choose(profiles[2]);
    EXPECT_EQ(checks(), (std::vector{false, false, true}));
    EXPECT_EQ(valueOf<std::string>(f.defaults, "activeProfile"),
              f.state().profiles->at(2).id.text());
}

TEST(StatusMenu, TogglesCaptureOrPrompts) {
    Fixture f;
    f.launch(false);
    f.choose("Capture");
    EXPECT_TRUE(f.captures());
    EXPECT_EQ(f.item("Capture").state, true);
    f.choose("Capture");
    EXPECT_FALSE(f.captures());
    f.trust.trusted = false;
    f.choose("Capture");
    EXPECT_EQ(f.item("Capture").state, false);
    EXPECT_EQ(f.trust.prompts, 1);
}

TEST(StatusMenu, TakesOverAConnectedDongleWithCaptureOn) {
    Fixture f;
    f.launch(false);
    f.pair({A, B, C}, {B, C});
    f.state().dongles.modify([](auto& list) { list.at(1).name = "Desk BLE"; });
    f.state().setNickname("Couch & TV", C);
    const auto dongles = *f.item("Take over").submenu;
    EXPECT_EQ(titles(dongles), (std::vector<std::string>{"Desk (BBBB)", "Couch & TV"}));
    for (const auto& item : dongles) EXPECT_FALSE(item.state);
    EXPECT_EQ(dongles[1].representedObject, C.text());

    f.trust.trusted = false;
    f.statusBar.choose(dongles[1]);
    EXPECT_FALSE(*f.state().takeover);
    EXPECT_EQ(f.trust.prompts, 1);

    f.trust.trusted = true;
    f.statusBar.choose(dongles[1]);
    EXPECT_TRUE(f.captures());
    EXPECT_EQ(*f.state().takeover, (Takeover{C, std::nullopt, std::nullopt}));
    EXPECT_EQ(titles(f.statusBar.open())[1], "Active: Couch & TV");
    f.statusBar.choose(dongles[0]);
    EXPECT_EQ((*f.state().takeover)->dongleID, C) << "one at a time";
    EXPECT_EQ(f.trust.prompts, 1);
}

TEST(StatusMenu, TypesTheClipboardWhereThereIsATarget) {
    Fixture f;
    f.launch();
    f.pasteboard.text = "a";
    f.choose("Type Clipboard to Target");
    EXPECT_TRUE(f.typing.waiting.empty());
    f.pair({A}, {A});
    EXPECT_TRUE(f.item("Type Clipboard to Target").isEnabled);
    f.choose("Type Clipboard to Target");
    f.typing.run();
    EXPECT_EQ(f.sent(A).size(), 2U);
}

TEST(StatusMenu, IgnoresWhatIsNoIdentifierOrIsGone) {
    Fixture f;
    f.launch(false);
    f.pair({A}, {});
    const auto before = *f.state().activeProfileID;
    for (const auto& object : std::vector<std::optional<std::string>>{
             {}, "", "Default", before.text() + "0", B.text()}) {
        f.statusBar.choose({.action = MenuAction::selectProfile, .representedObject = object});
        EXPECT_EQ(*f.state().activeProfileID, before);
        f.statusBar.choose({.action = MenuAction::takeOver, .representedObject = object});
        EXPECT_EQ(f.captures(), object == B.text()) << "no capture without an identifier";
        EXPECT_FALSE(*f.state().takeover);
    }
}

TEST(StatusMenu, TellsHostsOnceOfManyChangesAndAfterThem) {
    Fixture f;
    f.launch(false);
    f.clock.advance(1s);
    f.statusBar.updates = 0;
    f.clock.advance(10s);
    EXPECT_EQ(f.statusBar.updates, 0) << "nothing changes";
    for (int i = 0; i < 50; ++i) {
        f.state().activeMode = "Desk " + std::to_string(i);
        f.clock.advance(1ms);
    }
    EXPECT_EQ(f.statusBar.updates, 0);
    f.clock.advance(50ms);
    EXPECT_EQ(f.statusBar.updates, 1);
    f.state().captureEnabled = true;
    f.clock.advance(100ms);
    EXPECT_EQ(f.statusBar.updates, 2);
    f.state().captureEnabled = false;
    f.delegate.reset();
    f.clock.advance(1s);
    EXPECT_EQ(f.statusBar.updates, 2);
}

} // namespace quenthisar
