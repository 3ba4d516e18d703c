// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "BLE/DongleManager.h"
#include "Capture/EventTapController.h"
#include "Platform/AccessibilityTrust.h"
#include "Platform/MainQueue.h"
#include "Platform/Ports.h"
#include "Support/WeakGuard.h"

#include <memory>

namespace quenthisar {

/// Creates the store and the managers, and wires them: accessibility trust, the capture switch,
/// display changes. Lives for the whole process. Main thread.
class AppDelegate {
public:
    /// Loads the settings; nothing is on screen and nothing is captured yet.
    explicit AppDelegate(const Ports& ports);

    /// The start-up sequence. Called once, before the main loop runs.
    void applicationDidFinishLaunching();

    AppState state;
    // Present from launch on.
    std::unique_ptr<DongleManager> dongleManager;
    std::unique_ptr<EventTapController> eventTap;

private:
    void pollAccessibility();
    void captureAutomatically();
    void setCapture(bool on);
    void screensChanged();

    const Ports ports;
    std::unique_ptr<RepeatingTimer> axTimer;
    bool didAutoCapture = false; // at most once per process
    WeakGuard guard;
};

} // namespace quenthisar
