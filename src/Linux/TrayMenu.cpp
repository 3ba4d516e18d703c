// SPDX-License-Identifier: MIT
#include "Linux/TrayMenu.h"

#include "Linux/MenuTitle.h"

#include <QCursor>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

constexpr int widestTitle = 400; // in points

QString withoutMnemonic(QString title) {
    return title.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

/// Command is Control here.
QKeySequence keySequence(const std::string& keyEquivalent) {
    return QKeySequence(QStringLiteral("Ctrl+") + QString::fromStdString(keyEquivalent));
}

} // namespace

TrayMenu::TrayMenu(MenuDelegate menuDelegate) : delegate(std::move(menuDelegate)) {
    connect(this, &QMenu::aboutToShow, this, &TrayMenu::rebuild);
}

void TrayMenu::openAtPointer() {
    popup(QCursor::pos());
}

void TrayMenu::rebuild() {
    Menu items;
    delegate.menuNeedsUpdate(items);
    clear();
    submenus.clear();
    fill(*this, items);
}

void TrayMenu::fill(QMenu& menu, const Menu& items) {
    for (const auto& item : items) {
        if (item.isSeparator) {
            menu.addSeparator();
            continue;
        }
        const auto title = withoutMnemonic(
            fontMetrics().elidedText(menuTitle(item.title), Qt::ElideMiddle, widestTitle));
        if (item.submenu) {
            auto& submenu = *submenus.emplace_back(std::make_unique<QMenu>(title));
            fill(submenu, *item.submenu);
            menu.addMenu(&submenu);
            submenu.setEnabled(item.isEnabled);
            continue;
        }
        auto* action = menu.addAction(title);
        action->setEnabled(item.isEnabled);
        action->setCheckable(item.state.has_value());
        action->setChecked(item.state.value_or(false));
        if (!item.keyEquivalent.empty()) {
            action->setShortcut(keySequence(item.keyEquivalent));
            action->setShortcutVisibleInContextMenu(true);
        }
        if (item.action != MenuAction::none)
            connect(action, &QAction::triggered, this, [this, item] { delegate.choose(item); });
    }
}

void TrayMenu::keyPressEvent(QKeyEvent* event) {
    const QKeySequence pressed(event->keyCombination());
    const auto all = actions();
    const auto action = std::ranges::find_if(
        all, [&](const QAction* each) { return each->isEnabled() && each->shortcut() == pressed; });
    if (action == all.end()) return QMenu::keyPressEvent(event);
    close();
    (*action)->trigger();
}

} // namespace quenthisar
