// SPDX-License-Identifier: MIT
// The settings file: read, loaded by the store, written by it and read again.
#include "AppState.h"
#include "Linux/JsonSettings.h"
#include "support/FakeDisplays.h"
#include "support/FakeHost.h"

#include "Target.h"

#include <algorithm>
#include <array>

namespace quenthisar {

namespace {

using fuzz::require;

/// The settings without a file.
class MemoryDefaults final : public UserDefaults {
public:
    explicit MemoryDefaults(JsonSettings read) : settings(std::move(read)) {}

    std::optional<DefaultsValue> object(std::string_view key) const override {
        return settings.object(key);
    }
    void set(std::string_view key, DefaultsValue value) override { settings.set(key, value); }

    JsonSettings settings;
};

struct Loaded {
    explicit Loaded(UserDefaults& defaults) : state(defaults, displays, loginItem, launcher, log) {}

    FakeDisplays displays;
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    AppState state;
};

JsonSettings read(const std::string& text) {
    auto settings = JsonSettings::parse(text);
    require(settings.has_value(), "can't read what it wrote");
    return std::move(*settings);
}

constexpr std::array keys{"dongleNicknames", "sensitivities", "profiles",  "edgeBindings",
                          "activeProfile",   "cornerSlam",    "hudEnabled"};

/// What is read of a setting can be stored again, and is the same then.
void checkValues(JsonSettings& settings) {
    for (const auto* key : keys) {
        const auto value = settings.object(key);
        // What no setting has is not kept as it was.
        if (!value || std::holds_alternative<std::monostate>(value->value)) continue;
        settings.set(key, *value);
        require(settings.object(key) == value, "keeps another value than it was given");
        require(!settings.set(key, *value), "sees a change where there is none");
    }
}

void checkState(const AppState& state) {
    require(!state.profiles->empty(), "there is no profile");
    require(std::ranges::count(*state.profiles, *state.activeProfileID, &Profile::id) > 0,
            "the active profile is none of them");
    for (const auto& [id, name] : *state.nicknames)
        require(!state.displayName(id).empty(), "a dongle has no name");
}

/// With the first start of the next version in mind: everything that the user can change.
void changeAll(AppState& state) {
    const Uuid id{{1, 2, 3}};
    state.cornerSlam = !*state.cornerSlam;
    state.setNickname("Desk", id);
    state.setSensitivity(1.5, id);
    state.setBinding("A", Edge::top, id);
    state.addProfile("");
    state.renameProfile(state.profiles->front().id, "First");
    state.switchProfile(state.profiles->back().id);
    checkState(state);
}

void checkSame(const AppState& a, const AppState& b) {
    require(*a.profiles == *b.profiles, "other profiles after a restart");
    require(*a.activeProfileID == *b.activeProfileID, "another active profile after a restart");
    require(*a.nicknames == *b.nicknames, "other nicknames after a restart");
    require(*a.sensitivities == *b.sensitivities, "other speeds after a restart");
    require(*a.cornerSlam == *b.cornerSlam && *a.hudEnabled == *b.hudEnabled,
            "other settings after a restart");
}

} // namespace

void fuzz::run(Bytes input) {
    const auto text = textOf(input);
    auto settings = JsonSettings::parse(QByteArrayView(text.data(), std::ssize(text)));
    if (!settings) return;
    const auto written = settings->text();
    require(read(written).text() == written, "is written differently each time");

    MemoryDefaults defaults(std::move(*settings));
    {
        Loaded first(defaults);
        checkState(first.state);
        MemoryDefaults stored(read(defaults.settings.text()));
        Loaded second(stored);
        checkSame(first.state, second.state);
        changeAll(first.state);
        MemoryDefaults changed(read(defaults.settings.text()));
        Loaded third(changed);
        checkSame(first.state, third.state);
    }
    checkValues(defaults.settings);
}

} // namespace quenthisar
