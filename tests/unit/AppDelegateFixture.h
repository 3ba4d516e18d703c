// SPDX-License-Identifier: MIT
#pragma once

#include "AppDelegate.h"

#include "support/FakeCentral.h"
#include "support/FakeDisplays.h"
#include "support/FakeEventTaps.h"
#include "support/FakeHost.h"
#include "support/FakeShell.h"
#include "support/FakeUserDefaults.h"
#include "support/VirtualClock.h"
#include "unit/Ids.h"
#include "unit/Payloads.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace quenthisar {

/// The application with a fake behind every port; a display D1 of 1920 x 1080.
struct AppDelegateFixture {
    VirtualClock clock;
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeEventTaps taps;
    FakeAccessibilityTrust trust;
    FakeCentral central{clock};
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    FakeHotkeyService hotkeys;
    FakePanels panels{clock};
    FakePasteboard pasteboard;
    FakeSerialQueue typing{clock};
    FakeStatusBar statusBar;
    FakeConfigWindows windows;
    std::map<Uuid, std::shared_ptr<FakePeripheral>> dongles;
    std::optional<AppDelegate> delegate;

    void create(bool autoCapture = true) {
        defaults.store("autoCapture", autoCapture);
        displays.add("D1", {0, 0, 1920, 1080});
        delegate.emplace(Ports{clock, defaults, displays, taps, taps, trust, central, loginItem,
                               launcher, log, hotkeys, panels, pasteboard, typing, statusBar,
                               windows});
    }
    void finishLaunching() {
        delegate->applicationDidFinishLaunching();
        clock.settle();
    }
    void launch(bool autoCapture = true) {
        create(autoCapture);
        finishLaunching();
    }
    AppState& state() { return delegate->state; }
    bool captures() { return *state().captureEnabled; }

    /// They are discovered in this order.
    void discover(const std::vector<Uuid>& ids) {
        for (const auto& id : ids) {
            dongles[id] = central.add(id, DongleManager::serviceUUID, DongleManager::inputCharUUID);
            central.discover(dongles[id]);
        }
    }
    void connect(const std::vector<Uuid>& ids) {
        for (const auto& id : ids) delegate->dongleManager->connect(id);
        clock.settle();
        central.writes.clear();
    }
    void bind(const Uuid& id, Edge edge, std::size_t profile = 0) {
        state().profiles.modify(
            [&](auto& list) { list.at(profile).bindings[bindingKey(edge, "D1")] = id; });
    }
    Payloads sent(const Uuid& id) { return central.takePayloads(id); }
};

} // namespace quenthisar
