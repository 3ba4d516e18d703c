// SPDX-License-Identifier: MIT
#include "UI/Qt/StateView.h"

#include <QEvent>
#include <QMetaObject>

#include <utility>

namespace quenthisar {

StateView::StateView(AppState& appState, QWidget* parent)
    : QWidget(parent), state(appState),
      subscription(state.objectWillChange.subscribe([this] { invalidate(); })) {}

void StateView::invalidate() {
    isStale = true;
    if (!isVisible() || std::exchange(isQueued, true)) return;
    // Later: the assignment has not taken effect yet, and others may follow.
    QMetaObject::invokeMethod(
        this,
        [this] {
            isQueued = false;
            if (isVisible()) refreshNow();
        },
        Qt::QueuedConnection);
}

void StateView::refreshNow() {
    if (std::exchange(isStale, false)) refresh();
}

/// What a view has handed on may be a colour that the desktop shows otherwise from now on.
void StateView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) invalidate();
    QWidget::changeEvent(event);
}

void StateView::showEvent(QShowEvent* event) {
    refreshNow();
    QWidget::showEvent(event);
}

} // namespace quenthisar
