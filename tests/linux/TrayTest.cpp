// SPDX-License-Identifier: MIT
#include "Linux/TrayStatusItem.h"
#include "demo/XServer.h"
#include "support/StatusPanel.h"

#include <QApplication>
#include <QDBusVariant>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quenthisar {

void PrintTo(const MenuItem& item, std::ostream* out) {
    *out << item.title;
}

namespace {

using namespace Qt::StringLiterals;

/// A status item with a menu that the test writes, on a bus of its own.
class Tray : public testing::Test {
protected:
    void start() {
        status = std::make_unique<TrayStatusItem>(
            bus, [this](const QString& name, int pixels, const QColor& tint) {
                QPixmap image(hasImage && name == "menubar"_L1 ? QSize(pixels, pixels) : QSize());
                image.fill(tint);
                return image;
            });
        status->setImage({.name = "menubar",
                          .width = 18,
                          .height = 18,
                          .isTemplate = true,
                          .accessibilityDescription = "Quenthisar"});
        status->setMenu({.menuNeedsUpdate =
                             [this](Menu& menu) {
                                 menu = items;
                                 ++builds;
                             },
                         .choose = [this](const MenuItem& item) { chosen.push_back(item); }});
    }
    void showOnPanel() {
        panel = std::make_unique<StatusPanel>(session->address());
        start();
        ASSERT_TRUE(panel->waitForItem());
        // The first answer to the item itself, so that it knows the panel.
        ASSERT_TRUE(StatusPanel::waitUntil([&] { return builds > 0; }));
        panel->menu();
    }
    /// What has been sent until now has arrived.
    void settle() { panel->menu(); }
    static int idOf(const PanelItem& parent, const char* label) {
        return parent[QString::fromUtf8(label)].id;
    }

    Menu items{
        {.title = "Capture", .action = MenuAction::toggleCaptureMenu, .state = true},
        {.title = "Active: Local", .isEnabled = false},
        {.isSeparator = true},
        {.title = "Profile",
         .submenu = Menu{{.title = "Work",
                          .action = MenuAction::selectProfile,
                          .state = true,
                          .representedObject = "W"},
                         {.title = "Play",
                          .action = MenuAction::selectProfile,
                          .state = false,
                          .representedObject = "P"}}},
        {.title = "Open", .action = MenuAction::showWindow, .keyEquivalent = "o"},
    };
    bool hasImage = true;
    int builds = 0;
    std::vector<MenuItem> chosen;

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    [[maybe_unused]] const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application{argumentCount, list};

protected:
    std::unique_ptr<demo::PrivateBus> session = std::make_unique<demo::PrivateBus>();
    QDBusConnection bus = QDBusConnection::connectToBus(session->address(), u"tray"_s);
    std::unique_ptr<StatusPanel> panel;
    std::unique_ptr<TrayStatusItem> status;

    void TearDown() override {
        status.reset();
        panel.reset();
        QDBusConnection::disconnectFromBus(u"tray"_s);
    }
};

} // namespace

TEST_F(Tray, IsFoundByPanelsWheneverTheyCome) {
    start();
    for (int round = 0; round < 3; ++round) {
        panel = std::make_unique<StatusPanel>(session->address());
        ASSERT_TRUE(panel->waitForItem()) << round;
        EXPECT_EQ(panel->items.size(), 1) << round;
        ASSERT_TRUE(panel->waitForMenu([](const PanelItem& menu) {
            return menu.children.size() == 5;
        })) << round;
        panel.reset();
    }
}

TEST_F(Tray, FollowsWhetherAnythingShowsIt) {
    panel = std::make_unique<StatusPanel>(session->address(), false);
    start();
    ASSERT_TRUE(panel->waitForItem()) << "a host that comes later finds it";
    const auto isBuilt = [this] {
        const int before = builds;
        status->menuMayHaveChanged();
        return builds > before;
    };
    panel->itemProperty(u"Title"_s);
    EXPECT_FALSE(isBuilt());
    panel->setHost(true);
    EXPECT_TRUE(StatusPanel::waitUntil(isBuilt));
    panel->setHost(false);
    EXPECT_TRUE(StatusPanel::waitUntil([&] { return !isBuilt(); }));
}

TEST_F(Tray, TellsThePanelWhatItIs) {
    showOnPanel();
    EXPECT_EQ(panel->itemProperty(u"Title"_s), u"Quenthisar"_s);
    EXPECT_EQ(panel->itemProperty(u"IconAccessibleDesc"_s), u"Quenthisar"_s);
    EXPECT_EQ(panel->itemProperty(u"Status"_s), u"Active"_s);
    EXPECT_EQ(panel->itemProperty(u"ItemIsMenu"_s), true);
    const auto pixmaps =
        qdbus_cast<QList<StatusNotifierPixmap>>(panel->itemProperty(u"IconPixmap"_s));
    ASSERT_GT(pixmaps.size(), 3);
    for (const auto& pixmap : pixmaps) {
        ASSERT_EQ(pixmap.argb.size(), 4 * pixmap.width * pixmap.height);
        // Opaque, and bright in the middle, dark at the rim.
        const auto middle = 4 * (pixmap.width * (pixmap.height / 2) + pixmap.width / 2);
        EXPECT_EQ(pixmap.argb.sliced(middle, 4), QByteArray::fromHex("fff6f6f6"));
        EXPECT_EQ(pixmap.argb.first(4), QByteArray::fromHex("ff303030"));
    }
}

TEST_F(Tray, GoesWithoutAnImageWhereThereIsNone) {
    hasImage = false;
    showOnPanel();
    EXPECT_TRUE(
        qdbus_cast<QList<StatusNotifierPixmap>>(panel->itemProperty(u"IconPixmap"_s)).isEmpty());
    EXPECT_EQ(panel->menu().children.size(), 5U);
}

TEST_F(Tray, HandsOverTheMenuBeforeItIsOpened) {
    showOnPanel();
    const auto menu = panel->menu();
    ASSERT_EQ(menu.children.size(), 5U);
    const auto& capture = menu.children[0];
    EXPECT_EQ(capture.label(), u"Capture"_s);
    EXPECT_EQ(capture.mark(), 1);
    EXPECT_EQ(capture.properties[u"toggle-type"_s], u"checkmark"_s);
    EXPECT_TRUE(capture.isEnabled());
    EXPECT_FALSE(menu.children[1].isEnabled());
    EXPECT_EQ(menu.children[1].mark(), -1);
    EXPECT_EQ(menu.children[2].properties[u"type"_s], u"separator"_s);
    const auto& profiles = menu.children[3];
    EXPECT_TRUE(profiles.isEnabled());
    EXPECT_EQ(profiles.properties[u"children-display"_s], u"submenu"_s);
    ASSERT_EQ(profiles.children.size(), 2U);
    EXPECT_EQ(profiles.children[0].mark(), 1);
    EXPECT_EQ(profiles.children[1].mark(), 0);
    EXPECT_EQ(qdbus_cast<QList<QStringList>>(menu.children[4].properties[u"shortcut"_s]),
              (QList<QStringList>{{u"Control"_s, u"o"_s}}));
    EXPECT_EQ(panel->menu(profiles.id).children.size(), 2U);
    EXPECT_EQ(panel->signatures.last(), u"u(ia{sv}av)"_s);
    EXPECT_EQ(panel->menu(99).properties.size(), 0);
}

TEST_F(Tray, ShowsTitlesAsTheyStandWhateverStandsInThem) {
    items.clear();
    for (const char* title :
         {"A & B && _C_ <b>D</b>", "two\nlines\tand\x01more", "\u202Eexe.\u2066txt",
          "\u05E9\u05D5\u05DC\u05D7\u05DF (9F3A)", "\xFF"})
        items.push_back({.title = title, .action = MenuAction::showWindow});
    items.push_back({.title = "Nickname of some length " + std::string(5000, 'x') + " (9F3A)"});
    std::string marks = "e";
    for (int i = 0; i < 1000; ++i) marks += "\u0301";
    items.push_back({.title = marks});
    showOnPanel();
    const auto menu = panel->menu();
    ASSERT_EQ(menu.children.size(), items.size());
    EXPECT_EQ(menu.children[0].label(), u"A & B && __C__ <b>D</b>"_s);
    EXPECT_EQ(menu.children[1].label(), u"two lines and more"_s);
    EXPECT_EQ(menu.children[2].label(), u"exe.txt"_s);
    EXPECT_EQ(menu.children[3].label(), u"\u05E9\u05D5\u05DC\u05D7\u05DF (9F3A)"_s);
    EXPECT_EQ(menu.children[4].label(), u"\uFFFD"_s);
    EXPECT_TRUE(menu.children[5].label().startsWith(u"Nickname of some length xxx"_s));
    EXPECT_TRUE(menu.children[5].label().endsWith(u"x (9F3A)"_s));
    EXPECT_LT(menu.children[5].label().size(), 70);
    EXPECT_LT(menu.children[6].label().size(), 70);
}

TEST_F(Tray, TellsOfWhatHasChangedAndOnlyThen) {
    showOnPanel();
    const auto before = panel->menu();
    panel->layoutUpdates = 0;
    panel->updated.clear();
    status->menuMayHaveChanged();
    settle();
    EXPECT_EQ(panel->layoutUpdates, 0);
    EXPECT_TRUE(panel->updated.empty());

    items[0].state = false;
    items[1].title = "Active: Desk";
    status->menuMayHaveChanged();
    settle();
    EXPECT_EQ(panel->layoutUpdates, 0) << "the same items";
    ASSERT_EQ(panel->updated.size(), 2U);
    EXPECT_EQ(panel->updated[0].id, before.children[0].id);
    EXPECT_EQ(panel->updated[0].mark(), 0);
    EXPECT_EQ(panel->updated[1].label(), u"Active: Desk"_s);
    EXPECT_EQ(panel->signatures.filter(u"a(ia{sv})a(ias)"_s).size(), 1);

    items[3].submenu->erase(items[3].submenu->begin());
    status->menuMayHaveChanged();
    settle();
    EXPECT_EQ(panel->layoutUpdates, 1);
    EXPECT_EQ(panel->menu()[u"Profile"_s].children.size(), 1U);

    EXPECT_FALSE(panel->aboutToShow()) << "nobody told, but nothing has changed";
    items[0].state = true;
    EXPECT_TRUE(panel->aboutToShow());
    EXPECT_EQ(panel->menu().children[0].mark(), 1);
}

TEST_F(Tray, DoesWhatIsChosenAndSetsTheMarkBack) {
    showOnPanel();
    const auto menu = panel->menu();
    panel->updated.clear();
    for (const auto* label : {"Capture", "Active: Local", "Open"}) panel->click(idOf(menu, label));
    panel->click(idOf(menu[u"Profile"_s], "Play"));
    panel->click(menu[u"Profile"_s].id);
    panel->click(0);
    panel->click(4711);
    ASSERT_TRUE(StatusPanel::waitUntil([&] { return chosen.size() >= 3; }));
    settle();
    EXPECT_EQ(chosen, (std::vector{items[0], items[4], items[3].submenu->at(1)}));
    ASSERT_FALSE(panel->updated.empty());
    EXPECT_EQ(panel->updated[0].id, menu.children[0].id);
    EXPECT_EQ(panel->updated[0].mark(), 1) << "it was not switched off";
}

TEST_F(Tray, NeverTakesOneItemForAnother) {
    showOnPanel();
    const auto before = panel->menu()[u"Profile"_s];
    auto& profiles = *items[3].submenu;
    profiles.erase(profiles.begin());
    profiles.insert(profiles.begin(), {.title = "New",
                                       .action = MenuAction::selectProfile,
                                       .state = false,
                                       .representedObject = "N"});
    status->menuMayHaveChanged();
    panel->click(idOf(before, "Work"));
    panel->click(idOf(before, "Play"));
    ASSERT_TRUE(StatusPanel::waitUntil([&] { return !chosen.empty(); }));
    settle();
    ASSERT_EQ(chosen.size(), 1U) << "what is gone can't be chosen";
    EXPECT_EQ(chosen[0].representedObject, "P");
    std::set<int> ids;
    for (const auto& item : before.children) ids.insert(item.id);
    EXPECT_FALSE(ids.contains(idOf(panel->menu()[u"Profile"_s], "New")));
}

TEST_F(Tray, CostsNothingWhileNobodyShowsIt) {
    start();
    for (int i = 0; i < 100; ++i) status->menuMayHaveChanged();
    EXPECT_EQ(builds, 0);
}

TEST_F(Tray, LivesOnWithoutItsBus) {
    showOnPanel();
    panel.reset();
    session.reset();
    EXPECT_TRUE(StatusPanel::waitUntil([&] { return !bus.isConnected(); }));
    items[0].state = false;
    status->menuMayHaveChanged();
}

} // namespace quenthisar
