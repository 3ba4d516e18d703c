// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "UI/Binding.h"

#include <cstddef>
#include <string>

namespace quenthisar {

/// What the profiles' tab shows and changes. Each binding reads and writes through to the first
/// profile with that id: empty text, and no effect, once it is deleted. Main thread.
struct ProfilesModel {
    AppState& state;
    /// What stands in the new profile's field.
    std::string newName{};

    Binding<std::string> name(const Uuid& id) const;
    Binding<std::string> activate(const Uuid& id) const;
    Binding<std::string> deactivate(const Uuid& id) const;
    Binding<std::string> target(const Uuid& id) const;

    /// Adds a profile under `newName`, then empties that.
    void add();

    bool canDelete() const { return state.profiles->size() >= 2; }

    /// The keys that make the profile at a position active, first 0.
    static std::string hotkey(std::size_t position);

private:
    Binding<std::string> command(const Uuid& id, std::string Profile::*field) const;
};

} // namespace quenthisar
