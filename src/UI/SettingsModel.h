// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "UI/Binding.h"

#include <array>

namespace quenthisar {

/// What the settings' tab shows and changes. Main thread.
struct SettingsModel {
    AppState& state;

    struct Toggle {
        const char* text;
        Binding<bool> value;
    };
    struct Shortcut {
        const char *keys, *meaning;
    };

    std::array<Toggle, 3> takeover() const;
    std::array<Toggle, 3> startup() const;

    static constexpr std::array takeoverNotes{
        "Shared edges sit between two displays (e.g. a monitor wired to both the Mac and another "
        "PC). Enabling this lets you bind them, but depending on cursor speed the app may not "
        "catch the edge before macOS hands the pointer to the other display.",
        "Cross a bound edge to take over. Hold Control-Option-Command to return.",
    };

    /// Only shown here: the hotkeys themselves are registered elsewhere.
    static constexpr std::array<Shortcut, 4> shortcuts{{
        {"Ctrl-Opt-Cmd-V", "Type clipboard to the active target"},
        {"Ctrl-Opt-Cmd-(1-9)", "Switch profile"},
        {"Ctrl-Opt-Cmd-Shift-(1-9)", "Take over dongle N"},
        {"Ctrl-Opt-Cmd held", "Return to the Mac"},
    }};

private:
    Binding<bool> bind(Published<bool> AppState::*field) const;
};

} // namespace quenthisar
