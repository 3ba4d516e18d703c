// SPDX-License-Identifier: MIT
#include "UI/DonglesModel.h"

#include <array>
#include <charconv>

namespace quenthisar {

Binding<bool> DonglesModel::capture() const {
    return {[&state = state] { return *state.captureEnabled; }, actions.toggleCapture};
}

bool DonglesModel::isLocal() const {
    return *state.activeMode == "Local";
}

std::string DonglesModel::activeText() const {
    return "Active: " + *state.activeMode;
}

std::string DonglesModel::bluetoothText() const {
    return "Bluetooth: " + *state.bluetoothState;
}

Binding<std::string> DonglesModel::nickname(const Uuid& id) const {
    return {[&state = state, id] {
                const auto it = state.nicknames->find(id);
                return it != state.nicknames->end() ? it->second : std::string{};
            },
            [&state = state, id](const std::string& next) { state.setNickname(next, id); }};
}

std::string DonglesModel::placeholder(const Uuid& id) const {
    return state.defaultName(id);
}

Binding<double> DonglesModel::sensitivity(const Uuid& id) const {
    return {[&state = state, id] {
                const auto it = state.sensitivities->find(id);
                return it != state.sensitivities->end() ? it->second : 1.0;
            },
            [&state = state, id](double next) { state.setSensitivity(next, id); }};
}

std::string DonglesModel::speedText(double sensitivity) {
    // A stored number may have 300 digits.
    std::array<char, 512> text{};
    // Not printf, which has the point of the user's country.
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), sensitivity,
                                            std::chars_format::fixed, 2);
    return std::string(text.data(), end) + 'x';
}

} // namespace quenthisar
