// SPDX-License-Identifier: MIT
#include "AppState.h"

#include "Model/StoredProfiles.h"
#include "unit/Fakes.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using Texts = std::vector<std::string>;

const Uuid P = *Uuid::parse("00000000-0000-4000-8000-0000000000F1");
const Uuid Q = *Uuid::parse("00000000-0000-4000-8000-0000000000F2");
const Uuid R = *Uuid::parse("00000000-0000-4000-8000-0000000000F3");

DefaultsDictionary texts(std::initializer_list<std::pair<std::string, const char*>> entries) {
    DefaultsDictionary dictionary;
    for (const auto& [key, text] : entries) dictionary[key] = {std::string{text}};
    return dictionary;
}

struct AppStateTest : testing::Test, Fakes {
    AppState load() { return AppState(defaults, displays, loginItem, launcher, log); }

    /// With three profiles, of which P is active.
    AppState loadThree() {
        const std::vector<Profile> three{{P, "P", {}, "on", "off", ""}, {Q, "Q"}, {R, "R"}};
        defaults.storeData("profiles", encodeProfiles(three).value());
        return load();
    }
    std::vector<Profile> stored() const {
        return decodeProfiles(defaults.data("profiles")).value();
    }
};

TEST_F(AppStateTest, StartsWithOneDefaultProfileThatIsStored) {
    const AppState state = load();
    const auto id = *state.activeProfileID;
    EXPECT_EQ(*state.profiles, (std::vector<Profile>{{id, "Default", {}, "", "", ""}}));
    EXPECT_EQ(stored(), *state.profiles);
    EXPECT_EQ(defaults.writes, (Texts{"profiles", "cornerSlam", "autoConnect", "autoCapture",
                                      "hudEnabled", "allowSharedEdges"}))
        << "no active profile yet, and nothing of the host's";
    EXPECT_TRUE(*state.hudEnabled);
    for (const auto* off : {&state.cornerSlam, &state.autoConnect, &state.autoCapture})
        EXPECT_FALSE(**off);
}

TEST_F(AppStateTest, TakesFlatBindingsOnlyWhenNoProfileListIsReadable) {
    auto flat = texts({{"left|D1", "00000000-0000-4000-8000-00000000aaaa"}, {"top|D1", "no id"}});
    defaults.store("edgeBindings", flat);
    for (const char* unreadable : {"", "[]", "{}", R"([{"name":"no id"}])"}) {
        defaults.storeData("profiles", unreadable);
        EXPECT_EQ(load().activeProfile().bindings, (Bindings{{"left|D1", A}})) << unreadable;
    }
    EXPECT_TRUE(loadThree().activeProfile().bindings.empty());

    defaults.storeData("profiles", "");
    flat["top|D1"] = {7.0}; // no text: rejects them all
    defaults.store("edgeBindings", flat);
    EXPECT_EQ(load().activeProfile().bindings, Bindings{});
}

TEST_F(AppStateTest, ReadsWhatIsStoredAsFarAsItMakesSense) {
    DefaultsDictionary numbers;
    numbers[A.text()] = {1.5};
    numbers["nonsense"] = {2.0};
    defaults.store("sensitivities", numbers);
    defaults.store("dongleNicknames", texts({{A.text(), " Desk "}, {"x", "y"}}));
    defaults.store("hudEnabled", false);
    EXPECT_EQ(*load().sensitivities, (std::map<Uuid, double>{{A, 1.5}}));
    EXPECT_EQ(*load().nicknames, (std::map<Uuid, std::string>{{A, " Desk "}}));
    EXPECT_FALSE(*load().hudEnabled);

    numbers["nonsense"] = {std::string{"2.0"}}; // spoils its dictionary
    defaults.store("sensitivities", numbers);
    defaults.store("hudEnabled", std::string{"false"});
    EXPECT_TRUE(load().sensitivities->empty());
    EXPECT_TRUE(*load().hudEnabled);
    EXPECT_EQ(valueOf<bool>(defaults, "hudEnabled"), true) << "written back";
}

TEST_F(AppStateTest, ActivatesTheStoredProfileIfItStillExists) {
    using Value = decltype(DefaultsValue::value);
    for (const auto& [value, name] :
         {std::pair{Value{Q.text()}, "Q"}, {A.text(), "P"}, {true, "P"}}) {
        defaults.store("activeProfile", value);
        EXPECT_EQ(loadThree().activeProfile().name, name);
    }
}

} // namespace
} // namespace quenthisar
