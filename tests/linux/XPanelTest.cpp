// SPDX-License-Identifier: MIT
#include "Linux/XPanel.h"
#include "Linux/XConnection.h"
#include "demo/ChildProcess.h"
#include "demo/ConfigurationWindow.h"
#include "demo/RuntimeFolder.h"
#include "demo/XServer.h"
#include "support/RunUntil.h"

#include <QApplication>
#include <QPainter>

#include <gtest/gtest.h>
#include <xcb/shape.h>

#include <set>

namespace quenthisar::test {

namespace {

constexpr auto opacityProperty = "_NET_WM_WINDOW_OPACITY";
constexpr QSize contentSize{200, 40};
constexpr Rect right{1024, 40, 1280, 900};

/// Opacities of a fade. Sanitizers take so much time that fewer are seen; a jump has two at most.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t steps = 4;
#else
constexpr std::size_t steps = 8;
#endif

class Content final : public QWidget {
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).fillRect(rect(), Qt::red); }
};

struct Scale {
    const char* name;
    const char* variable;
    const char* value;
    double left, right; // the factors of the two displays
};

/// Two displays, and the toolkit on them. The primary one is the right one, and neither begins at
/// the root window's origin.
struct PanelStage {
    explicit PanelStage(const Scale& scale) {
        demo::provideRuntimeFolder();
        qputenv("DISPLAY", server.display().toUtf8());
        qputenv("QT_QPA_PLATFORM", "xcb");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:"); // or libdbus would start one
        for (const auto* monitor :
             {"*RIGHT 1280/300x900/200+1024+40 screen", "LEFT 1024/300x768/200+0+150 none"}) {
            const auto words = QStringLiteral("--setmonitor %1").arg(QLatin1StringView{monitor});
            demo::ChildProcess xrandr(QStringLiteral("xrandr"), words.split(u' '));
            EXPECT_EQ(xrandr.waitForEnd(std::chrono::seconds(20)), 0);
        }
        qputenv(scale.variable, scale.value);
        application.emplace(argumentCount, list);
        qunsetenv(scale.variable);
        space.setPrimary(right);
    }

    std::unique_ptr<XPanel> panel() const {
        auto content = std::make_unique<Content>();
        content->setFixedSize(contentSize);
        auto panel = std::make_unique<XPanel>(space, std::move(content));
        panel->setAlpha(0);
        return panel;
    }

    // Of the panel on screen, as any other client sees it.

    xcb_window_t window() const { return x.windowsWith(opacityProperty).value(0); }
    std::uint32_t opacity() const {
        const auto cookie =
            xcb_get_property(c, false, window(), x.atom(opacityProperty), XCB_ATOM_CARDINAL, 0, 1);
        const XOwned<xcb_get_property_reply_t> reply{xcb_get_property_reply(c, cookie, nullptr)};
        if (!reply || xcb_get_property_value_length(reply.get()) == 0) return 0;
        return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    }
    QRect frame() const {
        const XOwned<xcb_get_geometry_reply_t> reply{
            xcb_get_geometry_reply(c, xcb_get_geometry(c, window()), nullptr)};
        return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
    }
    bool takesInput() const {
        const auto cookie = xcb_shape_get_rectangles(c, window(), XCB_SHAPE_SK_INPUT);
        const XOwned<xcb_shape_get_rectangles_reply_t> reply{
            xcb_shape_get_rectangles_reply(c, cookie, nullptr)};
        return !reply || xcb_shape_get_rectangles_rectangles_length(reply.get()) > 0;
    }
    /// The opacities that it has on the way.
    std::set<std::uint32_t> fade(XPanel& panel, double alpha) const {
        std::set<std::uint32_t> seen;
        bool isOver = false;
        panel.animateAlpha(alpha, Seconds{0.25}, [&] { isOver = true; });
        EXPECT_TRUE(runUntil([&] {
            seen.insert(opacity());
            return isOver;
        }));
        return seen;
    }

    demo::XServer server{QStringLiteral("2400x1000")};
    const demo::XClient x{server.display()};
    xcb_connection_t* const c = x.get();
    DesktopSpace space;
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    std::optional<QApplication> application;
};

class PanelOnScreen : public testing::TestWithParam<Scale> {};

INSTANTIATE_TEST_SUITE_P(Scales, PanelOnScreen,
                         testing::Values(Scale{"Two", "QT_SCALE_FACTOR", "2", 2, 2},
                                         Scale{"OneAndAHalf", "QT_SCALE_FACTOR", "1.5", 1.5, 1.5},
                                         Scale{"EachItsOwn", "QT_SCREEN_SCALE_FACTORS",
                                               "LEFT=2;RIGHT=1", 2, 1}),
                         [](const auto& row) { return row.param.name; });

} // namespace

TEST_P(PanelOnScreen, IsSeenInItsPlaceOnEachDisplayAndInNobodysWay) {
    PanelStage stage(GetParam());
    const auto panel = stage.panel();
    for (const auto& [corner, factor] :
         {std::pair{QPoint(101, 533), GetParam().left}, {QPoint(1667, 123), GetParam().right}}) {
        const auto frame = QRect(corner, contentSize * factor);
        const Point origin{frame.x() - right.x, right.maxY() - frame.y() - frame.height()};
        const auto size = panel->fittingSize(origin);
        EXPECT_EQ(QSizeF(size.width, size.height), QSizeF(frame.size()));
        panel->setFrameOrigin(origin);
        panel->orderFrontRegardless();
        panel->setAlpha(1);
        EXPECT_TRUE(runUntil([&] { return stage.frame() == frame; }));
        EXPECT_TRUE(runUntil([&] {
            return stage.x.picture().pixelColor(frame.center()) == QColor(Qt::red);
        })) << "it is seen";
        EXPECT_FALSE(stage.takesInput());
        EXPECT_NE(demo::focusedWindow(stage.x), stage.window());
        panel->orderOut();
    }
}

TEST(XPanel, FadesInManySteps) {
    const PanelStage stage({"", "QT_SCALE_FACTOR", "1", 1, 1});
    const auto panel = stage.panel();
    panel->orderFrontRegardless();
    std::size_t in = 0, out = 0;
    // A busy machine may leave out some; a jump would be one, however often it is tried.
    for (int attempt = 0; attempt < 10 && (in < steps || out < steps); ++attempt) {
        in = std::max(in, stage.fade(*panel, 1).size());
        out = std::max(out, stage.fade(*panel, 0).size());
    }
    EXPECT_GE(in, steps);
    EXPECT_GE(out, steps);
}

} // namespace quenthisar::test
