// SPDX-License-Identifier: MIT
#include "demo/ConfigurationWindow.h"
#include "demo/Hands.h"
#include "demo/ReportLine.h"
#include "demo/Rig.h"
#include "demo/RuntimeFolder.h"
#include "demo/SelectionOwner.h"
#include "e2e/SystemTray.h"
#include "support/StatusPanel.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>

namespace quenthisar::e2e {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto soon = 20s;

/// The program on a desktop that has no tray yet.
class StatusMenu : public testing::Test {
protected:
    void SetUp() override {
        demo::provideRuntimeFolder();
        host.switchOffAcceleration();
        try {
            rig = std::make_unique<demo::Rig>(demo::Rig::Options{
                .programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS)),
                .hostDisplay = hostServer.display(),
                .targetDisplay = targetServer.display()});
            rig->startProgram();
        } catch (const std::exception& error) {
            FAIL() << error.what();
        }
    }
    static bool waitUntil(const std::function<bool()>& done) {
        return StatusPanel::waitUntil(done, soon);
    }
    /// Two profiles, the first one active; the second one does something when it becomes active.
    void writeProfiles(const QString& command, const QString& chord) const {
        QFile file{rig->settingsFile()};
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        auto all = QJsonDocument::fromJson(file.readAll()).object();
        file.close();
        const auto bindings = all[u"edgeBindings"_s];
        const QJsonArray profiles{
            QJsonObject{{u"id"_s, workId}, {u"name"_s, u"Work"_s}, {u"bindings"_s, bindings}},
            QJsonObject{{u"id"_s, playId},
                        {u"name"_s, u"Play"_s},
                        {u"bindings"_s, bindings},
                        {u"activateCommand"_s, command},
                        {u"targetCommand"_s, chord}}};
        const auto text = QJsonDocument{profiles}.toJson(QJsonDocument::Compact).toBase64();
        all[u"profiles"_s] = QJsonObject{{u"$data"_s, QString::fromLatin1(text)}};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QJsonDocument{all}.toJson());
    }
    QString activeProfile() const {
        QFile file{rig->settingsFile()};
        if (!file.open(QIODevice::ReadOnly)) return {};
        return QJsonDocument::fromJson(file.readAll())[u"activeProfile"_s].toString();
    }
    bool dongleGets(const QString& keys) {
        return waitUntil([&] {
            return std::ranges::any_of(
                demo::reportLines(rig->dongle().since(0)),
                [&](const auto& line) { return line.what == u"keyboard "_s + keys; });
        });
    }
    /// How the program ends.
    std::optional<int> end() { return rig->quenthisar().waitForEnd(soon); }

    void moveTo(QPoint place) {
        const auto from = host.pointer();
        ASSERT_TRUE(from);
        hands.moveBy(place - *from);
    }
    /// Windows that show an icon's menu.
    int menusOnScreen() const {
        auto* c = host.get();
        const auto owned = [](auto* reply) {
            return std::unique_ptr<std::remove_pointer_t<decltype(reply)>, decltype(&std::free)>(
                reply, std::free);
        };
        const auto tree = owned(xcb_query_tree_reply(c, xcb_query_tree(c, host.root()), nullptr));
        const auto* children = tree ? xcb_query_tree_children(tree.get()) : nullptr;
        int count = 0;
        for (int i = 0; children && i < tree->children_len; ++i) {
            const auto window = owned(xcb_get_window_attributes_reply(
                c, xcb_get_window_attributes(c, children[i]), nullptr));
            const auto frame =
                owned(xcb_get_geometry_reply(c, xcb_get_geometry(c, children[i]), nullptr));
            count += window && frame && window->override_redirect &&
                     window->map_state == XCB_MAP_STATE_VIEWABLE && frame->height > 100;
        }
        return count;
    }

    const QString workId = u"11111111-2222-4333-8444-555555555501"_s,
                  playId = u"11111111-2222-4333-8444-555555555502"_s;
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
    demo::XServer hostServer, targetServer;
    demo::XClient host{hostServer.display()};
    demo::Hands hands{host};
    std::unique_ptr<demo::Rig> rig;
};

} // namespace

TEST_F(StatusMenu, DoesFromAPanelWhatItsItemsSay) {
    StatusPanel panel(rig->sessionBusAddress());
    ASSERT_TRUE(panel.waitForItem());
    const auto take = u"Take over"_s, capture = u"Capture"_s;
    // The panel never opens it: it follows by itself.
    ASSERT_TRUE(panel.waitForMenu([&](const PanelItem& menu) {
        return menu[capture].mark() == 1 && menu[take].children.size() == 1 &&
               menu[take].children[0].isEnabled();
    }));
    const auto menu = panel.menu();
    QStringList labels;
    for (const auto& item : menu.children) labels.append(item.label());
    EXPECT_EQ(labels, (QStringList{capture,
                                   u"Active: Local"_s,
                                   {},
                                   u"Profile"_s,
                                   take,
                                   u"Type Clipboard to Target"_s,
                                   {},
                                   u"Open Quenthisar"_s,
                                   u"Quit"_s}));
    const auto dongle = menu[take].children[0];
    EXPECT_TRUE(dongle.label().startsWith(u"Target ("_s));

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

    panel.click(menu[u"Quit"_s].id);
    EXPECT_EQ(end(), 0);
}

TEST_F(StatusMenu, SwitchesProfilesTypesAndOpensTheWindow) {
    const auto activated = rig->configurationFolder() + u"/activated"_s;
    rig->endProgram();
    writeProfiles(u"touch '%1'"_s.arg(activated), u"cmd+l"_s);
    rig->startProgram();
    StatusPanel panel(rig->sessionBusAddress());
    ASSERT_TRUE(panel.waitForItem());
    const auto profile = u"Profile"_s, take = u"Take over"_s, type = u"Type Clipboard to Target"_s;
    const auto marks = [&](int work, int play) {
        return panel.waitForMenu([&](const PanelItem& now) {
            const auto& items = now[profile].children;
            return items.size() == 2 && items[0].label() == u"Work" && items[0].mark() == work &&
                   items[1].label() == u"Play" && items[1].mark() == play;
        });
    };
    ASSERT_TRUE(marks(1, 0));
    panel.click(panel.menu()[profile][u"Play"_s].id);
    EXPECT_TRUE(marks(0, 1));
    EXPECT_TRUE(waitUntil([&] { return activeProfile() == playId; }));
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(activated); }));
    EXPECT_TRUE(dongleGets(u"modifiers=gui keys=l"_s));

    const demo::SelectionOwner clipboard(u"q"_s, hostServer.display());
    ASSERT_TRUE(panel.menu()[type].isEnabled());
    panel.click(panel.menu()[type].id);
    EXPECT_TRUE(dongleGets(u"modifiers=none keys=q"_s));

    EXPECT_EQ(demo::configurationWindow(host), xcb_window_t{XCB_NONE});
    panel.click(panel.menu()[u"Open Quenthisar"_s].id);
    EXPECT_TRUE(
        waitUntil([&] { return demo::configurationWindow(host) != xcb_window_t{XCB_NONE}; }));

    rig->dongle().process().signal(SIGKILL);
    EXPECT_TRUE(panel.waitForMenu([&](const PanelItem& now) {
        const auto& items = now[take].children;
        return items.size() == 1 && items[0].label() == u"No connected dongles" &&
               !items[0].isEnabled() && !now[type].isEnabled();
    }));
}

TEST_F(StatusMenu, OpensFromATrayOfWindowsWhereThereIsNoPanel) {
    const auto tray = std::make_unique<SystemTray>(hostServer.display());
    ASSERT_TRUE(waitUntil([&] { return tray->hasIcon(); }));
    moveTo(SystemTray::frame.center());
    // A second click on a menu that is about to come would choose from it.
    const auto opensBy = [&](std::uint8_t button) {
        const auto attempt = [&] {
            hands.click(button);
            if (demo::waitUntil([&] { return menusOnScreen() == 1; }, 2s)) return true;
            // Whatever came instead, or comes late: from the beginning.
            hands.chord({*host.keyCodeOf(0xFF1B)}); // Escape
            demo::waitUntil([&] { return menusOnScreen() == 0; }, 2s);
            return false;
        };
        return demo::retry(attempt, soon);
    };
    for (const auto button : {std::uint8_t{1}, std::uint8_t{3}}) {
        ASSERT_TRUE(opensBy(button));
        // Escape
        hands.key(*host.keyCodeOf(0xFF1B), true);
        hands.key(*host.keyCodeOf(0xFF1B), false);
        ASSERT_TRUE(waitUntil([&] { return menusOnScreen() == 0; }));
    }
    {
        StatusPanel panel(rig->sessionBusAddress());
        ASSERT_TRUE(panel.waitForItem());
        EXPECT_TRUE(waitUntil([&] { return !tray->hasIcon(); })) << "one icon is enough";
    }
    ASSERT_TRUE(waitUntil([&] { return tray->hasIcon(); })) << "the panel is gone";
    ASSERT_TRUE(opensBy(1));
    hands.chord({*host.keyCodeOf(0xFFE3), *host.keyCodeOf('q')}); // Control
    EXPECT_EQ(end(), 0);
}

} // namespace quenthisar::e2e
