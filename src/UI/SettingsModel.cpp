// SPDX-License-Identifier: MIT
#include "UI/SettingsModel.h"

namespace quenthisar {

std::array<SettingsModel::Toggle, 3> SettingsModel::takeover() const {
    return {{
        {"Corner-slam target cursor on entry", bind(&AppState::cornerSlam)},
        {"Show takeover HUD", bind(&AppState::hudEnabled)},
        {"Allow switching on shared edges", bind(&AppState::allowSharedEdges)},
    }};
}

std::array<SettingsModel::Toggle, 3> SettingsModel::startup() const {
    return {{
        {"Launch at login",
         {[&state = state] { return *state.launchAtLogin; },
          [&state = state](bool on) { state.setLaunchAtLogin(on); }}},
        {"Auto-connect configured dongles", bind(&AppState::autoConnect)},
        {"Auto-capture on launch", bind(&AppState::autoCapture)},
    }};
}

Binding<bool> SettingsModel::bind(Published<bool> AppState::*field) const {
    return {[&state = state, field] { return *(state.*field); },
            [&state = state, field](bool on) { state.*field = on; }};
}

} // namespace quenthisar
