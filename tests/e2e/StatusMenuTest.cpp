// SPDX-License-Identifier: MIT
#include "demo/ConfigurationWindow.h"
#include "e2e/StageFixture.h"
#include "support/StatusPanel.h"

namespace quenthisar::e2e {

/// The program on a desktop that has no tray yet.
class StatusMenu : public StageFixture {
protected:
    void SetUp() override { start({}); }

    /// Whether its window is on screen, by and by.
    bool isOpen(bool wanted) const {
        const auto isSo = [&] {
            return (demo::configurationWindow(stage->host) != XCB_NONE) == wanted;
        };
        return waitUntil(isSo, soon);
    }

    const QString capture = u"Capture"_s, profile = u"Profile"_s, take = u"Take over"_s,
                  type = u"Type Clipboard to Target"_s, open = u"Open Quenthisar"_s,
                  quit = u"Quit"_s;
};

TEST_F(StatusMenu, DoesFromAPanelWhatItsItemsSay) {
    StatusPanel panel(stage->rig.sessionBusAddress());
    ASSERT_TRUE(panel.waitForItem());
    // The panel never opens it: it follows by itself.
    ASSERT_TRUE(panel.waitForMenu([&](const PanelItem& menu) {
        return menu[capture].mark() == 1 && menu[take].children.size() == 1 &&
               menu[take].children[0].isEnabled();
    }));
    const auto menu = panel.menu();
    QStringList labels;
    for (const auto& item : menu.children) labels.append(item.label());
    EXPECT_EQ(labels,
              (QStringList{capture, u"Active: Local"_s, {}, profile, take, type, {}, open, quit}));
    const auto dongle = menu[take].children[0];
    EXPECT_EQ(dongle.label(), stage->rig.dongleName());

    panel.click(menu[open].id);
    ASSERT_TRUE(isOpen(true));
    demo::askToClose(stage->host, demo::configurationWindow(stage->host));
    ASSERT_TRUE(isOpen(false));
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());
    EXPECT_EQ(stage->rig.startOnceMore()->waitForEnd(soon), 0) << "the first does not answer";
    EXPECT_TRUE(isOpen(true));

    const auto captures = [&](int on) {
        return panel.waitForMenu([&](const PanelItem& now) { return now[capture].mark() == on; });
    };
    panel.click(menu[capture].id);
    ASSERT_TRUE(captures(0));
    panel.click(dongle.id);
    ASSERT_TRUE(captures(1)) << "taking over needs it";
    ASSERT_TRUE(panel.waitForMenu([&](const PanelItem& now) {
        return now.children.at(1).label() == u"Active: "_s + dongle.label();
    }));
    panel.click(menu[capture].id);
    ASSERT_TRUE(captures(0));
    EXPECT_EQ(panel.menu().children.at(1).label(), u"Active: Local"_s);

    panel.click(menu[quit].id);
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
}

} // namespace quenthisar::e2e
