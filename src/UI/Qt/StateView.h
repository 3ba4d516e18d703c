// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "Support/Subscription.h"

#include <QWidget>

namespace quenthisar {

/// A part of the window that shows the store. Main thread.
///
/// Any number of assignments make one `refresh`, later; while the view is not on screen they make
/// none before it is shown again.
class StateView : public QWidget {
public:
    StateView(const StateView&) = delete;
    StateView& operator=(const StateView&) = delete;

protected:
    /// The state outlives the view. A subclass calls `refresh` at the end of its constructor.
    explicit StateView(AppState& appState, QWidget* parent = nullptr);

    /// Changes what differs from the store, and nothing else: a person may be typing in it.
    virtual void refresh() = 0;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

    AppState& state;

private:
    void invalidate();
    void refreshNow();

    bool isStale = false, isQueued = false;
    Subscription subscription;
};

} // namespace quenthisar
