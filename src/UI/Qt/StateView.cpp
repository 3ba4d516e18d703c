// SPDX-License-Identifier: MIT
#include "UI/Qt/StateView.h"

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

void StateView::showEvent(QShowEvent* event) {
    refreshNow();
    QWidget::showEvent(event);
}

} // namespace quenthisar
