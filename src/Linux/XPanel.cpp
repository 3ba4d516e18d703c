// SPDX-License-Identifier: MIT
#include "Linux/XPanel.h"

#include "Linux/XConnection.h"
#include "Linux/XToolkit.h"

#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

namespace quenthisar {

namespace {

constexpr std::uint8_t inputShape = 2; // SHAPE_SK_INPUT

/// The toolkit writes an opacity at its next turn only: a fade would arrive in one jump.
void flush() {
    if (auto* connection = XToolkit::connection()) xcb_flush(connection);
}

/// The pixel of the root window that begins at a point of the framework's space.
QPoint pixelFrom(Point point, const DesktopSpace& space) {
    const auto root = space.rootFromFramework({point.x, point.y, 0, 0});
    return {static_cast<int>(std::lround(root.x)), static_cast<int>(std::lround(root.y))};
}

/// The toolkit's display at a pixel; null where it knows none.
QScreen* toolkitScreen(QPoint pixel) {
    for (auto* screen : QGuiApplication::screens()) {
        const auto size = QSizeF(screen->size()) * screen->devicePixelRatio();
        if (QRectF(screen->geometry().topLeft(), size).contains(pixel)) return screen;
    }
    return nullptr;
}

} // namespace

XPanel::XPanel(const DesktopSpace& desktop, std::unique_ptr<QWidget> widget)
    : space(desktop), content(std::move(widget)) {
    // One that a window manager manages would eat clicks.
    content->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                            Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    content->setAttribute(Qt::WA_TranslucentBackground);
    content->setAttribute(Qt::WA_ShowWithoutActivating);
    content->resize(content->sizeHint());
    QObject::connect(&animation, &QVariantAnimation::valueChanged, &animation,
                     [this](const QVariant& value) { setAlpha(value.toDouble()); });
    QObject::connect(&animation, &QVariantAnimation::finished, &animation, [this] {
        // It may own this panel, which must not go while its animation calls.
        if (completed) QTimer::singleShot(0, std::exchange(completed, nullptr));
    });
}

XPanel::~XPanel() = default;

bool XPanel::isComposited() {
    auto* connection = XToolkit::connection();
    if (!connection) return false;
    int display = 0, screen = 0;
    char* host = nullptr;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
    const auto name = "_NET_WM_CM_S" + std::to_string(screen);
    const auto atomCookie =
        xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.data());
    const XOwned<xcb_intern_atom_reply_t> atom{
        xcb_intern_atom_reply(connection, atomCookie, nullptr)};
    if (!atom) return false;
    const auto ownerCookie = xcb_get_selection_owner(connection, atom->atom);
    const XOwned<xcb_get_selection_owner_reply_t> owner{
        xcb_get_selection_owner_reply(connection, ownerCookie, nullptr)};
    return owner && owner->owner != XCB_WINDOW_NONE;
}

Size XPanel::fittingSize(Point on) {
    if (auto* known = toolkitScreen(pixelFrom(on, space))) content->setScreen(known);
    content->resize(content->sizeHint()); // which may depend on its display
    const auto* screen = content->screen();
    const auto size = QSizeF(content->size()) * (screen ? screen->devicePixelRatio() : 1);
    return {std::round(size.width()), std::round(size.height())};
}

void XPanel::setFrameOrigin(Point next) {
    content->winId(); // makes its window
    const auto height = std::round(content->height() * content->devicePixelRatioF());
    place = pixelFrom({next.x, next.y + height}, space);
    tellToolkit();
    placeExactly();
}

/// The toolkit may make it anew when it comes on screen, which the widget's own id does not show.
std::uint32_t XPanel::window() const {
    return static_cast<std::uint32_t>(content->windowHandle()->winId());
}

/// Its measure of places: it scales sizes, but not where displays begin.
void XPanel::tellToolkit() const {
    const auto* screen = content->screen();
    if (!screen) return;
    const auto begin = screen->geometry().topLeft();
    content->move(begin + (QPointF(place - begin) / screen->devicePixelRatio()).toPoint());
}

/// Past the toolkit, which knows no odd pixels when it scales.
void XPanel::placeExactly() const {
    auto* connection = XToolkit::connection();
    if (!connection) return;
    const std::array values{std::int32_t{place.x()}, std::int32_t{place.y()}};
    xcb_configure_window(connection, window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values.data());
    flush();
}

void XPanel::setAlpha(double alpha) {
    content->setWindowOpacity(alpha);
    flush();
}

void XPanel::orderFrontRegardless() {
    content->show();
    content->raise();
    placeExactly();
    takeNoInput();
}

/// The toolkit forgets to ask for it when it makes the window anew.
void XPanel::takeNoInput() const {
    auto* connection = XToolkit::connection();
    if (!connection) return;
    const auto nothing = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, nothing, 0, nullptr);
    xcb_xfixes_set_window_shape_region(connection, window(), inputShape, 0, 0, nothing);
    xcb_xfixes_destroy_region(connection, nothing);
    flush();
}

void XPanel::orderOut() {
    animation.stop();
    completed = nullptr;
    content->hide();
    flush();
}

void XPanel::animateAlpha(double alpha, Seconds duration, std::function<void()> completion) {
    animation.stop();
    completed = nullptr;
    animation.setStartValue(content->windowOpacity());
    animation.setEndValue(alpha);
    animation.setDuration(
        static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count()));
    completed = std::move(completion);
    animation.start();
}

} // namespace quenthisar
