// SPDX-License-Identifier: MIT
#include "AppState.h"

#include "LoginItem.h"
#include "Model/StoredProfiles.h"
#include "Support/Text.h"

#include <algorithm>

namespace quenthisar {

namespace {

/// The dictionary under `key` with the values read as `Value`; none if any value is something else.
template <class Value>
std::optional<std::map<std::string, Value>> uniformDictionary(const UserDefaults& defaults,
                                                              std::string_view key) {
    const auto dictionary = valueOf<DefaultsDictionary>(defaults, key);
    if (!dictionary) return std::nullopt;
    std::map<std::string, Value> result;
    for (const auto& [name, entry] : *dictionary) {
        const auto* value = std::get_if<Value>(&entry.value);
        if (!value) return std::nullopt;
        result.emplace(name, *value);
    }
    return result;
}

/// The entries of `dictionary` whose key is a dongle's UUID.
template <class Value>
std::map<Uuid, Value> keyedByUuid(const std::map<std::string, Value>& dictionary) {
    std::map<Uuid, Value> result;
    for (const auto& [name, value] : dictionary)
        if (const auto id = Uuid::parse(name)) result.insert_or_assign(*id, value);
    return result;
}

/// The reverse of `keyedByUuid`, ready to be stored.
template <class Value>
DefaultsDictionary keyedByText(const std::map<Uuid, Value>& map) {
    DefaultsDictionary dictionary;
    for (const auto& [id, value] : map)
        dictionary.insert_or_assign(id.text(), DefaultsValue{value});
    return dictionary;
}

bool hasProfile(const std::vector<Profile>& profiles, const Uuid& id) {
    return std::ranges::find(profiles, id, &Profile::id) != profiles.end();
}

std::string without(std::string_view part, std::string_view text) {
    std::string result;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part)) {
        result += text.substr(0, at);
        text.remove_prefix(at + part.size());
    }
    return result.append(text);
}

} // namespace

AppState::AppState(UserDefaults& defaultsStore, Displays& displays, LoginItemService& service,
                   ProcessLauncher& processLauncher, SystemLog& systemLog)
    : defaults(defaultsStore), loginItem(service), launcher(processLauncher), log(systemLog) {
    loadNicknames();
    loadSensitivities();
    loadProfiles();
    cornerSlam = valueOf<bool>(defaults, "cornerSlam").value_or(false);
    autoConnect = valueOf<bool>(defaults, "autoConnect").value_or(false);
    autoCapture = valueOf<bool>(defaults, "autoCapture").value_or(false);
    hudEnabled = valueOf<bool>(defaults, "hudEnabled").value_or(true);
    allowSharedEdges = valueOf<bool>(defaults, "allowSharedEdges").value_or(false);
    launchAtLogin = LoginItem::isOn(loginItem);
    screens = ScreenLayout::current(displays);
}

Published<bool> AppState::setting(const char* key, bool initial) {
    return {objectWillChange, initial,
            [this, key](const bool& value) { defaults.set(key, {value}); }};
}

void AppState::loadNicknames() {
    if (const auto stored = uniformDictionary<std::string>(defaults, "dongleNicknames"))
        nicknames = keyedByUuid(*stored);
}

void AppState::loadSensitivities() {
    if (const auto stored = uniformDictionary<double>(defaults, "sensitivities"))
        sensitivities = keyedByUuid(*stored);
}

Bindings AppState::loadFlatBindings() const {
    Bindings bindings;
    const auto stored = uniformDictionary<std::string>(defaults, "edgeBindings");
    if (!stored) return bindings;
    for (const auto& [key, text] : *stored)
        if (const auto id = Uuid::parse(text)) bindings.emplace(key, *id);
    return bindings;
}

void AppState::loadProfiles() {
    std::optional<std::vector<Profile>> stored;
    if (const auto data = valueOf<DefaultsData>(defaults, "profiles"))
        stored = decodeProfiles({reinterpret_cast<const char*>(data->data()), data->size()});
    if (stored && !stored->empty()) {
        profiles = std::move(*stored);
    } else {
        profiles = {{.id = Uuid::random(), .name = "Default", .bindings = loadFlatBindings()}};
        saveProfiles();
    }

    const auto text = valueOf<std::string>(defaults, "activeProfile");
    const auto id = text ? Uuid::parse(*text) : std::nullopt;
    activeProfileID = id && hasProfile(*profiles, *id) ? *id : profiles->front().id;
}

void AppState::saveProfiles() {
    if (const auto json = encodeProfiles(*profiles))
        defaults.set("profiles", {DefaultsData(json->begin(), json->end())});
}

std::size_t AppState::activeIndex() const {
    const auto it = std::ranges::find(*profiles, *activeProfileID, &Profile::id);
    return it == profiles->end() ? 0 : static_cast<std::size_t>(it - profiles->begin());
}

void AppState::switchProfile(Uuid to) {
    if (to == *activeProfileID || !hasProfile(*profiles, to)) return;
    const std::string deactivateCommand = activeProfile().deactivateCommand;
    activeProfileID = to;
    defaults.set("activeProfile", {to.text()});
    runShell(deactivateCommand);
    runShell(activeProfile().activateCommand);
}

void AppState::addProfile(const std::string& name) {
    const auto numbered = "Profile " + std::to_string(profiles->size() + 1);
    profiles.modify([&](auto& list) {
        list.push_back({.id = Uuid::random(), .name = name.empty() ? numbered : name});
    });
    saveProfiles();
}

void AppState::deleteProfile(Uuid id) {
    // A stored list may hold an id twice; the list must not get empty by that either.
    if (std::ranges::count(*profiles, id, &Profile::id) == std::ssize(*profiles)) return;
    if (profiles->size() < 2) return;
    profiles.modify(
        [&](auto& list) { std::erase_if(list, [&](const Profile& p) { return p.id == id; }); });
    if (*activeProfileID == id) activeProfileID = profiles->front().id;
    saveProfiles();
}

void AppState::renameProfile(const Uuid& id, const std::string& to) {
    if (to.empty()) return;
    updateProfile(id, [&](Profile& profile) { profile.name = to; });
}

void AppState::updateProfile(const Uuid& id, const std::function<void(Profile&)>& change) {
    if (!hasProfile(*profiles, id)) return;
    profiles.modify([&](auto& list) { change(*std::ranges::find(list, id, &Profile::id)); });
    saveProfiles();
}

void AppState::setBinding(std::string_view screenUUID, Edge edge,
                          const std::optional<Uuid>& dongleID) {
    profiles.modify([&](auto& list) {
        auto& bindings = list[activeIndex()].bindings;
        const auto key = bindingKey(edge, screenUUID);
        if (dongleID)
            bindings.insert_or_assign(key, *dongleID);
        else
            bindings.erase(key);
    });
    saveProfiles();
}

std::optional<Uuid> AppState::dongleID(std::string_view forScreen, Edge edge) const {
    const auto& bindings = activeProfile().bindings;
    const auto it = bindings.find(bindingKey(edge, forScreen));
    return it != bindings.end() ? std::optional{it->second} : std::nullopt;
}

const Dongle* AppState::dongle(const Uuid& id) const {
    const auto it = std::ranges::find(*dongles, id, &Dongle::id);
    return it != dongles->end() ? &*it : nullptr;
}

void AppState::setNickname(std::string_view name, const Uuid& id) {
    const std::string trimmed{Text::trimmedOfBlanks(name)};
    nicknames.modify([&](auto& map) {
        if (trimmed.empty())
            map.erase(id);
        else
            map.insert_or_assign(id, trimmed);
    });
    defaults.set("dongleNicknames", {keyedByText(*nicknames)});
}

void AppState::setSensitivity(double value, const Uuid& id) {
    sensitivities.modify([&](auto& map) { map.insert_or_assign(id, value); });
    defaults.set("sensitivities", {keyedByText(*sensitivities)});
}

std::string AppState::displayName(const Uuid& id) const {
    const auto nickname = nicknames->find(id);
    if (nickname != nicknames->end() && !nickname->second.empty()) return nickname->second;
    return defaultName(id);
}

std::string AppState::defaultName(const Uuid& id) const {
    const Dongle* known = dongle(id);
    const std::string_view name = known ? std::string_view{known->name} : "Zandrovelkin";
    return without(" BLE", name) + " (" + id.text().substr(32) + ")";
}

std::optional<Uuid> AppState::activeDongleID() const {
    return *takeover ? std::optional{(*takeover)->dongleID} : std::nullopt;
}

std::set<Uuid> AppState::configuredDongleIDs() const {
    std::set<Uuid> result;
    for (const auto& profile : *profiles)
        for (const auto& [key, dongleID] : profile.bindings) result.insert(dongleID);
    return result;
}

void AppState::setLaunchAtLogin(bool on) {
    LoginItem::setEnabled(on, loginItem, log);
    launchAtLogin = LoginItem::isOn(loginItem);
}

void AppState::runShell(std::string_view command) {
    const auto trimmed = Text::trimmedOfWhitespaceAndNewlines(command);
    if (!trimmed.empty()) launcher.launch({"/bin/zsh", {"-c", std::string{trimmed}}});
}

} // namespace quenthisar
