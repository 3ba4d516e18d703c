// SPDX-License-Identifier: MIT
#include "UI/ProfilesModel.h"

#include <algorithm>

namespace quenthisar {

namespace {

std::string text(const AppState& state, const Uuid& id, std::string Profile::*field) {
    const auto it = std::ranges::find(*state.profiles, id, &Profile::id);
    return it != state.profiles->end() ? (*it).*field : std::string{};
}

} // namespace

Binding<std::string> ProfilesModel::name(const Uuid& id) const {
    return {[&state = state, id] { return text(state, id, &Profile::name); },
            [&state = state, id](const std::string& next) { state.renameProfile(id, next); }};
}

Binding<std::string> ProfilesModel::activate(const Uuid& id) const {
    return command(id, &Profile::activateCommand);
}

Binding<std::string> ProfilesModel::deactivate(const Uuid& id) const {
    return command(id, &Profile::deactivateCommand);
}

Binding<std::string> ProfilesModel::target(const Uuid& id) const {
    return command(id, &Profile::targetCommand);
}

Binding<std::string> ProfilesModel::command(const Uuid& id, std::string Profile::*field) const {
    return {[&state = state, id, field] { return text(state, id, field); },
            [&state = state, id, field](const std::string& next) {
                state.updateProfile(id, [&](Profile& profile) { profile.*field = next; });
            }};
}

void ProfilesModel::add() {
    state.addProfile(newName);
    newName.clear();
}

std::string ProfilesModel::hotkey(std::size_t position) {
    return "Control-Option-Command-" + std::to_string(position + 1);
}

} // namespace quenthisar
