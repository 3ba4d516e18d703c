// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "BLE/DongleManager.h"
#include "Capture/ClipboardTyper.h"
#include "Capture/EventTapController.h"
#include "HotkeyManager.h"
#include "Platform/AccessibilityTrust.h"
#include "Platform/MainQueue.h"
#include "Platform/Ports.h"
#include "Platform/StatusItem.h"
#include "Support/WeakGuard.h"
#include "UI/ConfigView.h"
#include "UI/TakeoverHUD.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// Creates the store and the managers, and wires them: accessibility trust, the capture switch,
/// display changes, the status menu, hotkeys, the panel and the chord of a profile. Lives for the
/// whole process. Main thread.
class AppDelegate {
public:
    /// Loads the settings; nothing is on screen and nothing is captured yet.
    explicit AppDelegate(const Ports& ports);

    /// The start-up sequence. Called once, before the main loop runs.
    void applicationDidFinishLaunching();

    /// Builds the status menu anew.
    void menuNeedsUpdate(Menu& menu) const;

    // What the status menu's items do. A represented object that is no identifier does nothing.

    /// Prompts instead where capture is not allowed.
    void toggleCaptureMenu();
    void selectProfile(const std::optional<std::string>& representedObject);
    /// Switches capture on first.
    void takeOver(const std::optional<std::string>& representedObject);
    /// Types the clipboard's text on its target, if there is one.
    void pasteMenu();
    /// Brings the configuration window to the front; the first call creates it.
    void showWindow();

    AppState state;
    // Present from launch on.
    std::unique_ptr<DongleManager> dongleManager;
    std::unique_ptr<EventTapController> eventTap;
    std::shared_ptr<ClipboardTyper> clipboard;

private:
    void installStatusItem();
    void choose(const MenuItem& item);
    void storeWillChange();

    void registerHotkeys();
    void switchToProfile(std::size_t number);
    void takeOverDongle(std::size_t number);

    void observeTakeover();
    void takeoverChanged(const std::optional<Takeover>& takeover);
    void profileActivated(const Uuid& id);
    std::optional<Point> hudAnchor(std::optional<Edge> edge,
                                   const std::optional<std::string>& screenUUID) const;
    /// Where clipboard text goes to.
    std::optional<Uuid> clipboardTarget() const;

    void pollAccessibility();
    void captureAutomatically();
    void setCapture(bool on);
    void screensChanged();

    const Ports ports;
    HotkeyManager hotkeys;
    TakeoverHUD hud;
    std::unique_ptr<StatusItem> statusItem;
    Subscription menuObserver;
    bool isMenuUpdateDue = false;
    std::unique_ptr<ConfigWindow> window; // none before it is first shown
    std::unique_ptr<RepeatingTimer> axTimer;
    bool didAutoCapture = false; // at most once per process
    std::vector<Subscription> cancellables;
    WeakGuard guard;
};

} // namespace quenthisar
