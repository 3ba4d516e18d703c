// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry/ScreenLayout.h"
#include "Model/Dongle.h"
#include "Model/Edge.h"
#include "Model/Profile.h"
#include "Model/Takeover.h"
#include "Platform/LoginItemService.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Support/Published.h"

#include <cstddef>
#include <functional>
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
    /// Loads every setting and lists the displays. The ports must outlive the store.
    AppState(UserDefaults& defaults, Displays& displays, LoginItemService& loginItem,
             ProcessLauncher& launcher, SystemLog& log);

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
    // What the login item's service says; kept there.
    Published<bool> launchAtLogin{objectWillChange, false};

    /// The first profile that has the active id; the first of all if none has.
    const Profile& activeProfile() const { return (*profiles)[activeIndex()]; }
    std::size_t activeIndex() const;

    /// Makes another profile active, stores that, and starts the hooks: the old profile's for its
    /// deactivation, then the new one's. Nothing happens for an unknown or the active profile.
    void switchProfile(Uuid to);

    /// Appends an empty profile; an empty name becomes a numbered one.
    void addProfile(const std::string& name);

    /// Never the last one. Deleting the active one makes the first remaining one active: no hook.
    void deleteProfile(Uuid id);

    /// An empty name is ignored.
    void renameProfile(const Uuid& id, const std::string& to);

    /// Applies `change` to a profile and stores the list.
    void updateProfile(const Uuid& id, const std::function<void(Profile&)>& change);

    /// Binds an edge of a display to a dongle in the active profile; none clears it.
    void setBinding(std::string_view screenUUID, Edge edge, const std::optional<Uuid>& dongleID);

    /// The dongle that the active profile binds to a display's edge.
    std::optional<Uuid> dongleID(std::string_view forScreen, Edge edge) const;

    /// The record of a known dongle, or null. Valid until `dongles` is assigned.
    const Dongle* dongle(const Uuid& id) const;

    /// Trims blanks at both ends; an empty nickname takes it away.
    void setNickname(std::string_view name, const Uuid& id);

    /// How fast the pointer moves on the target; 1.0 is as on the host. Nothing bounds it.
    void setSensitivity(double value, const Uuid& id);

    /// What the user interface calls a dongle, known or not.
    std::string displayName(const Uuid& id) const;

    /// The same where the user has given it no nickname.
    std::string defaultName(const Uuid& id) const;

    /// The dongle that has the input, or none.
    std::optional<Uuid> activeDongleID() const;

    /// Every dongle that any profile binds to an edge.
    std::set<Uuid> configuredDongleIDs() const;

    /// Stores the whole list; nothing if a text in it is no UTF-8.
    void saveProfiles();

    /// Asks the service, then shows what it says.
    void setLaunchAtLogin(bool on);

    /// Starts a hook in the host's shell, trimmed; a blank one is not started.
    void runShell(std::string_view command);

private:
    Published<bool> setting(const char* key, bool initial);
    void loadNicknames();
    void loadSensitivities();
    void loadProfiles();
    Bindings loadFlatBindings() const;

    UserDefaults& defaults;
    LoginItemService& loginItem;
    ProcessLauncher& launcher;
    SystemLog& log;
};

} // namespace quenthisar
