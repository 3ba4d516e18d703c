// SPDX-License-Identifier: MIT
#pragma once

#include "AppDelegate.h"

#include "support/FakeShell.h"
#include "support/VirtualThread.h"
#include "unit/Fakes.h"

#include <optional>

namespace quenthisar {

/// The application with a fake behind every port.
struct AppDelegateFixture : Fakes {
    FakeAccessibilityTrust trust;
    FakeHotkeyService hotkeys;
    FakePanels panels{clock};
    FakePasteboard pasteboard;
    VirtualThread typing{clock};
    FakeStatusBar statusBar;
    FakeConfigWindows windows;
    std::optional<AppDelegate> delegate;

    void launch(bool autoCapture = true) {
        defaults.store("autoCapture", autoCapture);
        delegate.emplace(Ports{clock, defaults, displays, taps, taps, trust, central, loginItem,
                               launcher, log, hotkeys, panels, pasteboard, typing, statusBar,
                               windows});
        delegate->applicationDidFinishLaunching();
        clock.settle();
    }
    AppState& state() { return delegate->state; }
    bool captures() { return *state().captureEnabled; }

    void connect(const Ids& ids) {
        for (const auto& id : ids) delegate->dongleManager->connect(id);
        clock.settle();
        central.writes.clear();
    }
};

} // namespace quenthisar
