// SPDX-License-Identifier: MIT
#include "Linux/TrayStatusItem.h"
#include "demo/XServer.h"
#include "support/RunUntil.h"
#include "support/StatusPanel.h"

#include <QApplication>
#include <QDBusVariant>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace quenthisar {

namespace {

using namespace Qt::StringLiterals;

/// A status item with a menu that the test writes, on a bus of its own.
struct Tray : testing::Test {
    ~Tray() override {
        status.reset();
        panel.reset();
        QDBusConnection::disconnectFromBus(u"tray"_s);
    }

    void start() {
        status = std::make_unique<TrayStatusItem>(
            bus, [](const QString& name, int pixels, const QColor& tint) {
                QPixmap image(name == "menubar"_L1 ? QSize(pixels, pixels) : QSize());
                image.fill(tint);
                return image;
            });
        status->setImage({.name = "menubar", .accessibilityDescription = "Quenthisar"});
        status->setMenu({.menuNeedsUpdate =
                             [this](Menu& menu) {
                                 menu = items;
                                 ++builds;
                             },
                         .choose = [this](const MenuItem& item) { chosen.push_back(item); }});
    }
    void showOnPanel() {
        panel = std::make_unique<StatusPanel>(session.address());
        start();
        ASSERT_TRUE(panel->waitForItem());
        // The first answer to the item itself, so that it knows the panel.
        ASSERT_TRUE(test::runUntil([&] { return builds > 0; }));
        settle();
    }
    /// What has been sent until now has arrived.
    void settle() { panel->menu(); }

    static MenuItem profile(const char* title, const char* id, bool isActive = false) {
        return {.title = title,
                .action = MenuAction::selectProfile,
                .state = isActive,
                .representedObject = id};
    }

    Menu items{
        {.title = "Capture", .action = MenuAction::toggleCaptureMenu, .state = true},
        {.title = "A & B_C <b>", .isEnabled = false},
        {.isSeparator = true},
        {.title = "Profile", .submenu = Menu{profile("Work", "W", true), profile("Play", "P")}},
        {.title = "Open", .action = MenuAction::showWindow, .keyEquivalent = "o"},
    };
    int builds = 0;
    std::vector<MenuItem> chosen;

    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    [[maybe_unused]] const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application{argumentCount, list};
    demo::PrivateBus session;
    QDBusConnection bus = QDBusConnection::connectToBus(session.address(), u"tray"_s);
    std::unique_ptr<StatusPanel> panel;
    std::unique_ptr<TrayStatusItem> status;
};

} // namespace

TEST_F(Tray, TellsOfWhatHasChangedAndOnlyThen) {
    showOnPanel();
    const auto before = panel->menu();
    const auto update = [this] {
        panel->layoutUpdates = 0;
        panel->updated.clear();
        status->menuMayHaveChanged();
        settle();
    };
    update();
    EXPECT_EQ(panel->layoutUpdates, 0);
    EXPECT_TRUE(panel->updated.empty());

    items[0].state = false;
    update();
    EXPECT_EQ(panel->layoutUpdates, 0) << "the same items";
    ASSERT_EQ(panel->updated.size(), 1U);
    EXPECT_EQ(panel->updated[0].id, before.children[0].id);
    EXPECT_EQ(panel->updated[0].mark(), 0);
    EXPECT_EQ(panel->signatures.filter(u"a(ia{sv})a(ias)"_s).size(), 1);

    items[3].submenu->pop_back();
    update();
    EXPECT_EQ(panel->layoutUpdates, 1);
    EXPECT_FALSE(panel->aboutToShow()) << "nobody told, but nothing has changed";
    items[0].state = true;
    EXPECT_TRUE(panel->aboutToShow());
}

TEST_F(Tray, NeverTakesOneItemForAnother) {
    showOnPanel();
    const auto before = panel->menu()[u"Profile"_s];
    items[3].submenu = Menu{profile("New", "N"), profile("Play", "P")};
    status->menuMayHaveChanged();
    for (const auto& item : before.children) panel->click(item.id);
    ASSERT_TRUE(test::runUntil([&] { return !chosen.empty(); }));
    settle();
    ASSERT_EQ(chosen.size(), 1U) << "what is gone can't be chosen";
    EXPECT_EQ(chosen[0].representedObject, "P");
    const int added = panel->menu()[u"Profile"_s][u"New"_s].id;
    EXPECT_EQ(std::ranges::count(before.children, added, &PanelItem::id), 0);
}

} // namespace quenthisar
