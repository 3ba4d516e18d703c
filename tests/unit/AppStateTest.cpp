// SPDX-License-Identifier: MIT
#include "AppState.h"

#include "Model/StoredProfiles.h"
#include "support/FakeDisplays.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"
#include "unit/Ids.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

const Uuid P = *Uuid::parse("00000000-0000-4000-8000-0000000000F1");
const Uuid Q = *Uuid::parse("00000000-0000-4000-8000-0000000000F2");

struct Fixture {
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;

    Fixture() { displays.add("D1", {0, 0, 1920, 1080}); }

    void storeProfiles(const std::vector<Profile>& profiles) {
        defaults.storeData("profiles", encodeProfiles(profiles).value());
    }

    AppState load() { return AppState(defaults, displays, loginItem, launcher, log); }
};

DefaultsDictionary texts(std::initializer_list<std::pair<const char*, const char*>> entries) {
    DefaultsDictionary dictionary;
    for (const auto& [key, text] : entries) dictionary[key] = {std::string{text}};
    return dictionary;
}

TEST(AppState, StartsWithOneDefaultProfileThatIsStored) {
    Fixture f;
    const AppState state = f.load();
    ASSERT_EQ(state.profiles->size(), 1U);
    EXPECT_EQ(state.activeProfile(),
              (Profile{state.profiles->front().id, "Default", {}, "", "", ""}));
    EXPECT_EQ(*state.activeProfileID, state.profiles->front().id);
    EXPECT_EQ(decodeProfiles(f.defaults.data("profiles")), *state.profiles);
    EXPECT_EQ(f.defaults.writes,
              (std::vector<std::string>{"profiles", "cornerSlam", "autoConnect", "autoCapture",
                                        "hudEnabled", "allowSharedEdges"}))
        << "no active profile yet, and nothing of the host's";
    for (const char* key : {"cornerSlam", "autoConnect", "autoCapture", "allowSharedEdges"})
        EXPECT_EQ(valueOf<bool>(f.defaults, key), false) << key;
    EXPECT_EQ(valueOf<bool>(f.defaults, "hudEnabled"), true);
    EXPECT_EQ(*state.activeMode, "Local");
    EXPECT_EQ(*state.bluetoothState, "Unknown");
    ASSERT_EQ(state.screens->size(), 1U);
    EXPECT_EQ(state.screens->front().uuid, "D1");
}

TEST(AppState, TakesFlatBindingsOnlyWhenNoProfileListIsReadable) {
    const auto flat =
        texts({{"left|D1", "00000000-0000-4000-8000-00000000aaaa"}, {"top|D1", "nonsense"}});
    for (const char* unreadable : {"", "[]", "{}", R"([{"name":"no id"}])"}) {
        Fixture f;
        f.defaults.storeData("profiles", unreadable);
        f.defaults.store("edgeBindings", flat);
        EXPECT_EQ(f.load().activeProfile().bindings, (Bindings{{"left|D1", A}})) << unreadable;
        EXPECT_EQ(f.defaults.values["edgeBindings"].value, decltype(DefaultsValue::value){flat});
    }
    Fixture f;
    f.storeProfiles({{P, "Stored", {}, "", "", ""}});
    f.defaults.store("edgeBindings", flat);
    EXPECT_EQ(f.load().activeProfile(), (Profile{P, "Stored", {}, "", "", ""}));
}

TEST(AppState, OneFlatBindingThatIsNoTextRejectsThemAll) {
    Fixture f;
    auto flat = texts({{"left|D1", "00000000-0000-4000-8000-00000000AAAA"}});
    flat["top|D1"] = {7.0};
    f.defaults.store("edgeBindings", flat);
    EXPECT_EQ(f.load().activeProfile().bindings, Bindings{});
}

TEST(AppState, ActivatesTheStoredProfileIfItStillExists) {
    Fixture f;
    f.storeProfiles({{P, "First", {}, "", "", ""}, {Q, "Second", {}, "", "", ""}});
    f.defaults.store("activeProfile", Q.text());
    EXPECT_EQ(f.load().activeProfile().name, "Second");
    f.defaults.store("activeProfile", A.text());
    EXPECT_EQ(f.load().activeProfile().name, "First");
    f.defaults.store("activeProfile", true);
    EXPECT_EQ(f.load().activeIndex(), 0U);
}

TEST(AppState, AWrongValueSpoilsItsDictionaryAndAWrongKeyOnlyItsEntry) {
    Fixture f;
    DefaultsDictionary numbers;
    numbers[A.text()] = {1.5};
    numbers["nonsense"] = {2.0};
    f.defaults.store("sensitivities", numbers);
    f.defaults.store("dongleNicknames", texts({{A.text().c_str(), " Desk "}, {"x", "y"}}));
    EXPECT_EQ(*f.load().sensitivities, (std::map<Uuid, double>{{A, 1.5}}));
    EXPECT_EQ(*f.load().nicknames, (std::map<Uuid, std::string>{{A, " Desk "}}));

    numbers["nonsense"] = {std::string{"2.0"}};
    f.defaults.store("sensitivities", numbers);
    EXPECT_TRUE(f.load().sensitivities->empty());
}

TEST(AppState, ReadsBooleanSettingsOnlyFromBooleans) {
    Fixture f;
    f.defaults.store("hudEnabled", false);
    f.defaults.store("autoConnect", true);
    EXPECT_FALSE(*f.load().hudEnabled);
    EXPECT_TRUE(*f.load().autoConnect);
    f.defaults.store("hudEnabled", std::string{"false"});
    EXPECT_TRUE(*f.load().hudEnabled);
    EXPECT_EQ(valueOf<bool>(f.defaults, "hudEnabled"), true) << "written back";
}

TEST(AppState, StoresASettingAtEachAssignmentAfterTheFieldChanged) {
    Fixture f;
    AppState state = f.load();
    f.defaults.writes.clear();
    int changes = 0;
    const auto subscription = state.objectWillChange.subscribe([&] { ++changes; });
    state.cornerSlam = true;
    state.cornerSlam = true;
    state.captureEnabled = true;
    EXPECT_EQ(f.defaults.writes, (std::vector<std::string>{"cornerSlam", "cornerSlam"}));
    EXPECT_EQ(changes, 3);
}

TEST(AppState, NamesDonglesByNicknameElseByNameAndTheEndOfTheirId) {
    Fixture f;
    f.defaults.store("dongleNicknames",
                     texts({{A.text().c_str(), "Desk BLE"}, {B.text().c_str(), ""}}));
    AppState state = f.load();
    EXPECT_EQ(state.displayName(A), "Desk BLE");
    EXPECT_EQ(state.displayName(B), "Zandrovelkin (BBBB)");
    state.dongles = {{B, " BLE Two BLE BLEx", DongleConnectionState::connected}};
    EXPECT_EQ(state.displayName(B), " Twox (BBBB)");
}

TEST(AppState, LooksUpBindingsInTheActiveProfileButKnowsThoseOfAll) {
    Fixture f;
    f.storeProfiles({{P, "First", {{"left|D1", A}}, "", "", ""},
                     {Q, "Second", {{"left|D1", B}, {"top|D2", B}}, "", "", ""}});
    f.defaults.store("activeProfile", Q.text());
    const AppState state = f.load();
    EXPECT_EQ(state.dongleID("D1", Edge::left), B);
    EXPECT_EQ(state.dongleID("D1", Edge::right), std::nullopt);
    EXPECT_EQ(state.configuredDongleIDs(), (std::set<Uuid>{A, B}));
}

TEST(AppState, KeepsTheStoredListWhenATextIsNoUtf8) {
    Fixture f;
    AppState state = f.load();
    const auto stored = f.defaults.data("profiles");
    state.profiles.modify([](auto& profiles) { profiles.front().name = "\xFF"; });
    state.saveProfiles();
    EXPECT_EQ(f.defaults.data("profiles"), stored);
}

} // namespace
} // namespace quenthisar
