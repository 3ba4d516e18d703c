// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry/ScreenLayout.h"
#include "Model/Dongle.h"
#include "Model/Edge.h"
#include "Model/Profile.h"
#include "Model/Takeover.h"
#include "Platform/UserDefaults.h"
#include "Support/Published.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar {

/// The one store that everything shares: what is known about dongles, displays and the takeover,
/// and the user's settings, which it loads when it is constructed and writes through. Main thread.
class AppState {
public:
    /// Loads every setting and lists the displays. Both ports must outlive the store.
    AppState(UserDefaults& defaults, Displays& displays);

    /// Raised once for every assignment of any field, before it takes effect.
    Signal<> objectWillChange;

    // The link: written by the dongle manager.
    Published<std::vector<Dongle>> dongles{objectWillChange, {}}; // in order of first discovery
    Published<std::string> bluetoothState{objectWillChange, "Unknown"};

    // The takeover: written by the event tap controller.
    Published<bool> captureEnabled{objectWillChange, false};      // true while the event tap runs
    Published<std::string> activeMode{objectWillChange, "Local"}; // "Local" or a dongle's name
    Published<std::optional<Takeover>> takeover{objectWillChange, std::nullopt};

    // The host: written by the application delegate.
    Published<bool> axTrusted{objectWillChange, false};
    Published<std::vector<ScreenInfo>> screens{objectWillChange, {}};

    // Never empty; `activeProfileID` is always the id of one of them.
    Published<std::vector<Profile>> profiles{objectWillChange, {}};
    Published<Uuid> activeProfileID{objectWillChange, Uuid::random()};
    // Keys need not belong to a dongle in `dongles`.
    Published<std::map<Uuid, std::string>> nicknames{objectWillChange, {}};
    Published<std::map<Uuid, double>> sensitivities{objectWillChange, {}};

    // Settings: each assignment stores the value under the field's name.
    Published<bool> cornerSlam = setting("cornerSlam", false);
    Published<bool> autoConnect = setting("autoConnect", false);
    Published<bool> autoCapture = setting("autoCapture", false);
    Published<bool> hudEnabled = setting("hudEnabled", true);
    Published<bool> allowSharedEdges = setting("allowSharedEdges", false);

    /// The first profile that has the active id; the first of all if none has.
    const Profile& activeProfile() const { return (*profiles)[activeIndex()]; }
    std::size_t activeIndex() const;

    /// The dongle that the active profile binds to a display's edge.
    std::optional<Uuid> dongleID(std::string_view forScreen, Edge edge) const;

    /// The record of a known dongle, or null. Valid until `dongles` is assigned.
    const Dongle* dongle(const Uuid& id) const;

    /// What the user interface calls a dongle, known or not.
    std::string displayName(const Uuid& id) const;

    /// Every dongle that any profile binds to an edge.
    std::set<Uuid> configuredDongleIDs() const;

    /// Stores the whole list; nothing if a text in it is no UTF-8.
    void saveProfiles();

private:
    Published<bool> setting(const char* key, bool initial);
    void loadNicknames();
    void loadSensitivities();
    void loadProfiles();
    Bindings loadFlatBindings() const;

    UserDefaults& defaults;
};

} // namespace quenthisar
