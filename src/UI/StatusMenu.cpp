// SPDX-License-Identifier: MIT
#include "UI/StatusMenu.h"

#include "AppState.h"

#include <utility>

namespace quenthisar::StatusMenu {

namespace {

MenuItem disabled(std::string title) {
    return {.title = std::move(title), .isEnabled = false};
}

Menu profileItems(const AppState& state) {
    Menu menu;
    for (const auto& profile : *state.profiles)
        menu.push_back({.title = profile.name,
                        .action = MenuAction::selectProfile,
                        .state = profile.id == *state.activeProfileID,
                        .representedObject = profile.id.text()});
    return menu;
}

Menu takeOverItems(const AppState& state) {
    Menu menu;
    for (const auto& dongle : *state.dongles)
        if (dongle.state == DongleConnectionState::connected)
            menu.push_back({.title = state.displayName(dongle.id),
                            .action = MenuAction::takeOver,
                            .representedObject = dongle.id.text()});
    if (menu.empty()) menu.push_back(disabled("No connected dongles"));
    return menu;
}

} // namespace

Menu items(const AppState& state, bool hasClipboardTarget) {
    return {
        {.title = "Capture",
         .action = MenuAction::toggleCaptureMenu,
         .state = *state.captureEnabled},
        disabled("Active: " + *state.activeMode),
        {.isSeparator = true},
        {.title = "Profile", .submenu = profileItems(state)},
        {.title = "Take over", .submenu = takeOverItems(state)},
        {.title = "Type Clipboard to Target",
         .action = MenuAction::pasteMenu,
         .isEnabled = hasClipboardTarget},
        {.isSeparator = true},
        {.title = "Open Quenthisar", .action = MenuAction::showWindow, .keyEquivalent = "o"},
        {.title = "Quit", .action = MenuAction::terminate, .keyEquivalent = "q"},
    };
}

} // namespace quenthisar::StatusMenu
