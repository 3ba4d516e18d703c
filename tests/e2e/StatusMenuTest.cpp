// SPDX-License-Identifier: MIT
#include "demo/ConfigurationWindow.h"
#include "e2e/ProfileSettings.h"
#include "e2e/StageFixture.h"
#include "support/RunUntil.h"
#include "support/StatusPanel.h"

#include <QRect>

#include <csignal>
#include <cstdlib>
#include <memory>

namespace quenthisar::e2e {

/// The program on a desktop that has no tray yet.
class StatusMenu : public StageFixture {
protected:
    void SetUp() override { start({}); }

    static bool waitUntil(const std::function<bool()>& done) { return test::runUntil(done, soon); }
    /// How the program ends.
    std::optional<int> end() { return stage->rig.quenthisar().waitForEnd(soon); }

    /// As tall as a menu, at least.
    auto windows() const {
        return std::ranges::count_if(
            stage->host.windowsWith("_NET_WM_WINDOW_TYPE"), [&](xcb_window_t window) {
                auto* c = stage->host.get();
                auto* frame = xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr);
                const bool isTall = frame && frame->height > 100;
                std::free(frame);
                return isTall;
            });
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
    EXPECT_EQ(end(), 0);
}

TEST_F(StatusMenu, SwitchesProfilesTypesAndOpensTheWindow) {
    const auto activated = stage->rig.configurationFolder() + u"/activated"_s;
    const auto settings = stage->rig.settingsFile();
    stage->rig.endProgram();
    writeProfiles(settings, stage->rig.displayUuid(), stage->rig.dongleId(),
                  {{.name = u"Work"_s},
                   {.name = u"Play"_s,
                    .activateCommand = u"echo x > '%1'"_s.arg(activated),
                    .targetCommand = u"cmd+l"_s}});
    stage->rig.startProgram();
    StatusPanel panel(stage->rig.sessionBusAddress());
    ASSERT_TRUE(panel.waitForItem());
    const auto marks = [&](int work, int play) {
        return panel.waitForMenu([&](const PanelItem& now) {
            const auto& items = now[profile];
            return items[u"Work"_s].mark() == work && items[u"Play"_s].mark() == play;
        });
    };
    const auto types = [this](const QString& keys) {
        return dongleGetsAny(
            [&](const ReportLine& line) { return line.what == u"keyboard "_s + keys; });
    };
    ASSERT_TRUE(marks(1, 0));
    panel.click(panel.menu()[profile][u"Play"_s].id);
    EXPECT_TRUE(marks(0, 1));
    EXPECT_TRUE(
        waitUntil([&] { return readSettings(settings)[u"activeProfile"_s] == profileId(2); }));
    EXPECT_TRUE(waitUntil([&] { return !readFile(activated).isEmpty(); }));
    EXPECT_TRUE(types(u"modifiers=gui keys=l"_s));

    const demo::SelectionOwner clipboard(u"q"_s, stage->hostDisplay());
    panel.click(panel.menu()[type].id);
    EXPECT_TRUE(types(u"modifiers=none keys=q"_s));

    EXPECT_EQ(demo::configurationWindow(stage->host), xcb_window_t{XCB_NONE});
    panel.click(panel.menu()[open].id);
    EXPECT_TRUE(waitUntil(
        [&] { return demo::configurationWindow(stage->host) != xcb_window_t{XCB_NONE}; }));

    stage->rig.dongle().process().signal(SIGKILL);
    EXPECT_TRUE(panel.waitForMenu([&](const PanelItem& now) {
        const auto& items = now[take].children;
        return items.size() == 1 && items[0].label() == u"No connected dongles" &&
               !items[0].isEnabled() && !now[type].isEnabled();
    }));
}

namespace {

/// A tray into which programs put windows (XEmbed), for one icon.
class SystemTray {
public:
    explicit SystemTray(const QString& display)
        : client(display), c(client.get()), window(xcb_generate_id(c)) {
        const std::uint32_t values[]{1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, client.root(), frame.x(), frame.y(),
                          frame.width(), frame.height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                          values);
        xcb_map_window(c, window);
        const auto selection = client.atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(c, window, selection, XCB_CURRENT_TIME);
        const xcb_client_message_event_t message{
            .response_type = XCB_CLIENT_MESSAGE,
            .format = 32,
            .sequence = 0,
            .window = client.root(),
            .type = client.atom("MANAGER"),
            .data = {.data32 = {XCB_CURRENT_TIME, selection, window}}};
        xcb_send_event(c, false, client.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(c);
    }

    /// Takes in what has come since. Whether an icon is there.
    bool hasIcon() {
        while (auto* event = xcb_poll_for_event(c)) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
            const auto* destroyed = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
            const int type = event->response_type & 0x7F;
            constexpr std::uint32_t requestDock = 0;
            if (type == XCB_CLIENT_MESSAGE &&
                message->type == client.atom("_NET_SYSTEM_TRAY_OPCODE") &&
                message->data.data32[1] == requestDock)
                embed(message->data.data32[2]);
            if (type == XCB_DESTROY_NOTIFY && destroyed->window == icon) icon = XCB_WINDOW_NONE;
            std::free(event);
        }
        return icon != XCB_WINDOW_NONE;
    }

    static constexpr QRect frame{600, 100, 24, 24};

private:
    void embed(xcb_window_t comer) {
        icon = comer;
        xcb_reparent_window(c, icon, window, 0, 0);
        const std::uint32_t size[]{frame.width(), frame.height()};
        xcb_configure_window(c, icon, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
        xcb_map_window(c, icon);
        xcb_flush(c);
    }

    demo::XClient client;
    xcb_connection_t* c;
    xcb_window_t window, icon = XCB_WINDOW_NONE;
};

} // namespace

TEST_F(StatusMenu, OpensFromATrayOfWindowsWhereThereIsNoPanel) {
    SystemTray tray{stage->hostDisplay()};
    ASSERT_TRUE(waitUntil([&] { return tray.hasIcon(); }));
    const auto atFirst = windows();
    stage->hands.moveBy(SystemTray::frame.center() - stage->host.pointer().value_or(QPoint{}));
    for (const auto button : {std::uint8_t{1}, std::uint8_t{3}}) {
        // A second click on a menu that is about to come would choose from it.
        const auto opens = [&] {
            stage->hands.click(button);
            if (demo::waitUntil([&] { return windows() > atFirst; }, 2s)) return true;
            stage->hands.chord({keyCodeOf(escapeKey)});
            return false;
        };
        ASSERT_TRUE(demo::retry(opens, soon)) << "button " << int{button};
        // A menu has the keyboard a moment after its window is there.
        const auto closes = [&] {
            stage->hands.chord({keyCodeOf(escapeKey)});
            return demo::waitUntil([&] { return windows() == atFirst; }, 2s);
        };
        ASSERT_TRUE(demo::retry(closes, soon)) << "button " << int{button};
    }
    {
        StatusPanel panel(stage->rig.sessionBusAddress());
        ASSERT_TRUE(panel.waitForItem());
        EXPECT_TRUE(waitUntil([&] { return !tray.hasIcon(); })) << "one icon is enough";
    }
    EXPECT_TRUE(waitUntil([&] { return tray.hasIcon(); })) << "the panel is gone";
}

} // namespace quenthisar::e2e
