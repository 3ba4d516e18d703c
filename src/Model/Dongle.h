// SPDX-License-Identifier: MIT
#pragma once

#include "Support/RawText.h"
#include "Support/Uuid.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quenthisar {

enum class DongleConnectionState { disconnected, connecting, connected };

inline constexpr std::array allDongleConnectionStates{DongleConnectionState::disconnected,
                                                      DongleConnectionState::connecting,
                                                      DongleConnectionState::connected};

constexpr std::string_view rawText(DongleConnectionState state) {
    switch (state) {
    case DongleConnectionState::disconnected: return "disconnected";
    case DongleConnectionState::connecting: return "connecting";
    case DongleConnectionState::connected: return "connected";
    }
    return {};
}

/// Case-sensitive.
constexpr std::optional<DongleConnectionState> dongleConnectionStateFrom(std::string_view text) {
    return caseWithRawText(allDongleConnectionStates, text);
}

/// One dongle as the user sees it. `id` stays for life, the rest follows the link.
struct Dongle {
    Uuid id;
    std::string name;
    DongleConnectionState state = DongleConnectionState::disconnected;

    bool operator==(const Dongle&) const = default;
};

} // namespace quenthisar
