// SPDX-License-Identifier: MIT
#include "demo/ChildProcess.h"
#include "demo/Hands.h"
#include "demo/Recorder.h"
#include "demo/XServer.h"
#include "linux/PanelWatch.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

namespace quenthisar::test {

namespace {

/// Opacities of a fade. Sanitizers take so much time that fewer are seen; a jump has two at most.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t steps = 4;
#else
constexpr std::size_t steps = 8;
#endif

using namespace std::chrono_literals;
using demo::ChildProcess;
using demo::waitUntil;

constexpr auto soon = 10s;
constexpr std::uint32_t ground = 0x808080;

/// A window of another program: gray, and it counts the clicks on it and the times that it loses
/// the focus.
class Client {
public:
    enum class Size { part, fullScreen };

    Client(const QString& display, Size size) : x(display), window(xcb_generate_id(x.get())) {
        auto* c = x.get();
        const std::array<std::uint32_t, 2> values{ground, XCB_EVENT_MASK_BUTTON_PRESS |
                                                              XCB_EVENT_MASK_FOCUS_CHANGE};
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, x.root(), 100, 100, 900, 600, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
        const auto fullScreen = x.atom("_NET_WM_STATE_FULLSCREEN");
        if (size == Size::fullScreen)
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, x.atom("_NET_WM_STATE"),
                                XCB_ATOM_ATOM, 32, 1, &fullScreen);
    }

    xcb_window_t id() const { return window; }
    /// A window manager that has just started may overlook it once.
    bool appears(bool isManaged) const {
        if (hasFocus()) return true;
        if (!isShown())
            xcb_map_window(x.get(), window);
        else if (!isManaged)
            xcb_set_input_focus(x.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        xcb_flush(x.get());
        return false;
    }
    bool isShown() const {
        const Owned<xcb_get_window_attributes_reply_t> reply{xcb_get_window_attributes_reply(
            x.get(), xcb_get_window_attributes(x.get(), window), nullptr)};
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    bool fillsTheScreen() const {
        const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(x.get())).data;
        const Owned<xcb_get_geometry_reply_t> size{
            xcb_get_geometry_reply(x.get(), xcb_get_geometry(x.get(), window), nullptr)};
        return size && size->width == screen.width_in_pixels &&
               size->height == screen.height_in_pixels;
    }
    bool hasFocus() const {
        const Owned<xcb_get_input_focus_reply_t> reply{
            xcb_get_input_focus_reply(x.get(), xcb_get_input_focus(x.get()), nullptr)};
        return reply && reply->focus == window;
    }

    struct Seen {
        std::vector<QPoint> clicks; // in the root window
        int focusLosses = 0;
    };
    /// Since the last call.
    Seen seen() const {
        Seen result;
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(x.get())}) {
            const auto type = event->response_type & 0x7F;
            const auto& click = reinterpret_cast<const xcb_button_press_event_t&>(*event);
            if (type == XCB_BUTTON_PRESS) result.clicks.emplace_back(click.root_x, click.root_y);
            if (type == XCB_FOCUS_OUT) ++result.focusLosses;
        }
        return result;
    }

private:
    const demo::XClient x;
    const xcb_window_t window;
};

bool isManaged(const demo::XClient& x) {
    const auto cookie = xcb_get_property(x.get(), false, x.root(),
                                         x.atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
    const Owned<xcb_get_property_reply_t> reply{xcb_get_property_reply(x.get(), cookie, nullptr)};
    return reply && xcb_get_property_value_length(reply.get()) > 0;
}

bool isComposited(const demo::XClient& x) {
    const Owned<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(
        x.get(), xcb_get_selection_owner(x.get(), x.atom("_NET_WM_CM_S0")), nullptr)};
    return reply && reply->owner != XCB_WINDOW_NONE;
}

/// A desktop on which a program shows the panel.
struct PanelStage {
    explicit PanelStage(const QString& size = QStringLiteral("1280x800")) : server(size) {}

    std::unique_ptr<ChildProcess> start(const QString& program, const QStringList& arguments = {},
                                        ChildProcess::Environment environment = {}) const {
        environment.emplace_back(QStringLiteral("DISPLAY"), server.display());
        environment.emplace_back(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
        environment.emplace_back(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        return std::make_unique<ChildProcess>(program, arguments, environment);
    }
    void run(const QString& command) const {
        const auto words = QProcess::splitCommand(command);
        EXPECT_EQ(start(words.front(), words.mid(1))->waitForEnd(20s), 0) << qPrintable(command);
    }
    std::unique_ptr<ChildProcess> startPanel(const QString& arguments,
                                             ChildProcess::Environment environment = {}) const {
        return start(QStringLiteral(PANEL), arguments.split(u' '), std::move(environment));
    }
    /// The one that is shown, at its full opacity.
    std::optional<xcb_window_t> panel() {
        std::optional<xcb_window_t> shown;
        waitUntil(
            [&] {
                for (const auto& [window, fade] : watch.fades())
                    if (fade.isOpaque() && !fade.isOver) shown = window;
                return shown.has_value();
            },
            soon);
        return shown;
    }
    bool startWindowManager() {
        windowManager = start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
        return waitUntil([&] { return isManaged(x); }, soon);
    }
    bool startCompositor() {
        compositor = start(QStringLiteral("picom"),
                           {QStringLiteral("--config"), QStringLiteral("/dev/null"),
                            QStringLiteral("--backend"), QStringLiteral("xrender")});
        return waitUntil([&] { return isComposited(x); }, soon);
    }
    bool moveTo(QPoint place) const {
        xcb_warp_pointer(x.get(), XCB_WINDOW_NONE, x.root(), 0, 0, 0, 0,
                         static_cast<std::int16_t>(place.x()),
                         static_cast<std::int16_t>(place.y()));
        return x.pointer() == place;
    }

    QTemporaryDir folder;
    demo::XServer server;
    const demo::XClient x{server.display()};
    const demo::Hands hands{x};
    PanelWatch watch{x};
    std::unique_ptr<ChildProcess> windowManager, compositor;
};

struct Desktop {
    const char* name;
    bool isManaged = false, isComposited = false, isFullScreen = false;
};
class PanelOnADesktop : public testing::TestWithParam<Desktop> {};

INSTANTIATE_TEST_SUITE_P(
    , PanelOnADesktop,
    testing::Values(Desktop{.name = "Bare"}, Desktop{.name = "Managed", .isManaged = true},
                    Desktop{.name = "Composited", .isManaged = true, .isComposited = true},
                    Desktop{.name = "FullScreen", .isManaged = true, .isFullScreen = true},
                    Desktop{.name = "CompositedFullScreen",
                            .isManaged = true,
                            .isComposited = true,
                            .isFullScreen = true}),
    [](const auto& row) { return row.param.name; });

} // namespace

TEST_P(PanelOnADesktop, IsSeenAboveTheWindowThatKeepsFocusAndClicks) {
    const auto& desktop = GetParam();
    PanelStage stage;
    ASSERT_TRUE(!desktop.isManaged || stage.startWindowManager());
    ASSERT_TRUE(!desktop.isComposited || stage.startCompositor());
    const Client client(stage.server.display(),
                        desktop.isFullScreen ? Client::Size::fullScreen : Client::Size::part);
    ASSERT_TRUE(waitUntil(
        [&] {
            return client.appears(desktop.isManaged) &&
                   (!desktop.isFullScreen || client.fillsTheScreen());
        },
        soon));
    client.seen();

    const auto program = stage.startPanel(QStringLiteral("600 500 400"));
    const auto panel = stage.panel();
    ASSERT_TRUE(panel);
    const auto frame = stage.watch.frame(*panel);
    const auto middle = frame.center();
    EXPECT_NEAR(middle.x(), 500, 1);
    EXPECT_NEAR(middle.y(), 400, 1);
    EXPECT_TRUE(stage.watch.isAbove(*panel, client.id()));
    const QPoint dot(frame.left() + 8 + 24 + 7, middle.y());
    const auto isSeen = [&] {
        const auto picture = stage.x.picture();
        return picture.pixelColor(dot).hsvSaturation() > 100 &&
               (picture.pixel(frame.topLeft()) & 0xFFFFFF) == ground;
    };
    EXPECT_TRUE(waitUntil(isSeen, soon)) << "its dot, and around it the window beneath";
    const auto picture = stage.x.picture();
    int dark = 0; // on its left end: what is darker than a shadow on the ground
    for (int x = frame.left(); x < frame.left() + 24; ++x)
        for (int y = frame.top(); y <= frame.bottom(); ++y)
            if (picture.pixelColor(x, y).value() < 0x50) ++dark;
    EXPECT_EQ(dark, 0) << "nothing was left undrawn";

    for (const auto place : {middle, dot}) {
        ASSERT_TRUE(stage.moveTo(place));
        stage.hands.click(1);
        Client::Seen seen;
        EXPECT_TRUE(waitUntil(
            [&] {
                seen = client.seen();
                return !seen.clicks.empty();
            },
            soon));
        EXPECT_EQ(seen.clicks, std::vector{place});
        EXPECT_EQ(seen.focusLosses, 0);
    }
    EXPECT_TRUE(client.hasFocus());
    EXPECT_TRUE(stage.watch.isAbove(*panel, client.id())) << "after a click, too";
    EXPECT_TRUE(waitUntil(isSeen, soon));
}

TEST(XPanel, FadesInManyStepsAndGoesByItself) {
    PanelStage stage;
    PanelWatch::Fades best;
    // A busy machine may leave out some; a jump would be one, however often it is tried.
    for (int attempt = 0; attempt < 10 && (best.in.size() < steps || best.out.size() < steps);
         ++attempt) {
        stage.watch.forget();
        const auto program = stage.startPanel(QStringLiteral("0.5"));
        ASSERT_TRUE(waitUntil(
            [&] {
                const auto& all = stage.watch.fades();
                return !all.empty() && all.begin()->second.isOver;
            },
            soon));
        const auto fade = stage.watch.fades().begin()->second;
        if (best.in.size() < fade.in.size()) best.in = fade.in;
        if (best.out.size() < fade.out.size()) best.out = fade.out;
    }
    EXPECT_GE(best.in.size(), steps);
    EXPECT_GE(best.out.size(), steps);
}

struct Scale {
    const char* name;
    const char* variable;
    const char* value;
    double left, right; // the factors of the two displays
};
class PlaceOfAPanel : public testing::TestWithParam<Scale> {};

INSTANTIATE_TEST_SUITE_P(, PlaceOfAPanel,
                         testing::Values(Scale{"One", "QT_SCALE_FACTOR", "1", 1, 1},
                                         Scale{"Two", "QT_SCALE_FACTOR", "2", 2, 2},
                                         Scale{"OneAndAHalf", "QT_SCALE_FACTOR", "1.5", 1.5, 1.5},
                                         Scale{"EachItsOwn", "QT_SCREEN_SCALE_FACTORS",
                                               "LEFT=2;RIGHT=1", 2, 1}),
                         [](const auto& row) { return row.param.name; });

/// The primary display is the right one, and neither begins at the root window's origin.
TEST_P(PlaceOfAPanel, IsInPixelsWhateverTheDrawingIsScaledBy) {
    constexpr QRect left(0, 150, 1024, 768), right(1024, 40, 1280, 900);
    constexpr int margin = 12;
    PanelStage stage(QStringLiteral("2400x1000"));
    stage.run(QStringLiteral("xrandr --setmonitor *RIGHT 1280/300x900/200+1024+40 screen"));
    stage.run(QStringLiteral("xrandr --setmonitor LEFT 1024/300x768/200+0+150 none"));
    const auto& scale = GetParam();
    const ChildProcess::Environment environment{
        {QString::fromLatin1(scale.variable), QString::fromLatin1(scale.value)}};

    const auto frameAt = [&](const QString& anchor, const ChildProcess::Environment& settings) {
        const auto program = stage.startPanel(QStringLiteral("600 ") + anchor, settings);
        const auto panel = stage.panel();
        const auto frame = panel ? stage.watch.frame(*panel) : QRect();
        program->signal(SIGKILL);
        program->waitForEnd(soon);
        EXPECT_TRUE(waitUntil([&] { return stage.watch.panels().empty(); }, soon));
        stage.watch.forget();
        return frame;
    };
    const auto plain = frameAt(QStringLiteral("0 0"), {}).size();
    struct Row {
        const char* edge;
        QRect display;
        QPoint anchor; // in the root window
        double scale;
    };
    for (const auto& row :
         {Row{"left", left, {120, 534}, scale.left}, Row{"bottom", left, {512, 838}, scale.left},
          Row{"top", right, {1664, 120}, scale.right},
          Row{"right", right, {2184, 490}, scale.right}}) {
        const auto frame = frameAt(QStringLiteral("%1 %2")
                                       .arg(row.anchor.x() - right.x())
                                       .arg(right.y() + right.height() - row.anchor.y()),
                                   environment);
        EXPECT_NEAR(frame.width(), plain.width() * row.scale, 1) << row.edge;
        EXPECT_NEAR(frame.height(), plain.height() * row.scale, 1) << row.edge;
        const auto within = [&](int lower, int length, int anchor, int size) {
            return std::clamp(anchor - size / 2.0, lower + margin + 0.0,
                              lower + length - size - margin + 0.0);
        };
        const auto& display = row.display;
        EXPECT_NEAR(frame.x(), within(display.x(), display.width(), row.anchor.x(), frame.width()),
                    0.5)
            << row.edge;
        EXPECT_NEAR(frame.y(),
                    within(display.y(), display.height(), row.anchor.y(), frame.height()), 0.5)
            << row.edge;
    }
}

} // namespace quenthisar::test
