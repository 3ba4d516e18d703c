// SPDX-License-Identifier: MIT
#include "UI/Qt/ConfigWindowWidget.h"

#include "UI/Qt/ConfigTabs.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr QSize windowSize{480, 628}, tabsSize{480, 600};
/// What a window manager draws around a window.
constexpr QSize frameAllowance{8, 36};

} // namespace

ConfigWindowWidget::ConfigWindowWidget(const ConfigView& view, Activate activateWindow)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                           Qt::WindowCloseButtonHint),
      activate(std::move(activateWindow)) {
    setWindowTitle(QStringLiteral("Quenthisar"));
    auto* tabs = new ConfigTabs(view);
    tabs->setMaximumSize(tabsSize);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(tabs);

    const auto onKeys = [this](QKeyCombination keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    // Not the toolkit's standard keys, which some desktops lack.
    onKeys(Qt::CTRL | Qt::Key_W, [this] { close(); });
    onKeys(Qt::CTRL | Qt::Key_Q, [] { QApplication::quit(); });

    fit();
    center();
}

void ConfigWindowWidget::center() {
    const auto available = screen()->availableGeometry();
    move(available.center() - QRect({}, size() + frameAllowance).center());
}

/// Where it was; but its screen may be gone, and a window is moved by its title.
void ConfigWindowWidget::comeBack(QPoint place) {
    const QRect title(place, QSize(width(), frameAllowance.height()));
    const auto shows = [&](const QScreen* one) { return one->geometry().intersects(title); };
    if (std::ranges::any_of(QGuiApplication::screens(), shows))
        move(place);
    else
        center();
}

void ConfigWindowWidget::makeKeyAndOrderFront() {
    if (closedAt && !isVisible()) comeBack(*std::exchange(closedAt, std::nullopt));
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
    if (activate) activate(winId());
}

void ConfigWindowWidget::closeEvent(QCloseEvent* event) {
    closedAt = pos();
    QWidget::closeEvent(event);
}

void ConfigWindowWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    connect(windowHandle(), &QWindow::screenChanged, this, &ConfigWindowWidget::follow,
            Qt::UniqueConnection);
    follow(screen());
}

void ConfigWindowWidget::follow(QScreen* screen) {
    disconnect(screenSize);
    if (!screen) return;
    screenSize =
        connect(screen, &QScreen::availableGeometryChanged, this, &ConfigWindowWidget::fit);
    fit();
}

void ConfigWindowWidget::fit() {
    const auto room = screen()->availableSize() - frameAllowance;
    const auto next = windowSize.boundedTo(room);
    if (next != size() || minimumSize() != next) setFixedSize(next);
}

} // namespace quenthisar
