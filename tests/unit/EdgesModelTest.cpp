// SPDX-License-Identifier: MIT
#include "UI/EdgesModel.h"
#include "Model/StoredProfiles.h"
#include "UI/ProfilesModel.h"
#include "support/FakeDisplays.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"
#include "unit/Ids.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using Bound = std::optional<Uuid>;

/// Two displays side by side, two known dongles, two profiles.
struct Fixture {
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    AppState state{defaults, twoDisplays(), loginItem, launcher, log};
    EdgesModel edges{state};
    ProfilesModel profiles{state};
    Uuid first = state.profiles->front().id, second;

    Fixture() {
        state.addProfile("Second");
        second = state.profiles->back().id;
        state.dongles = {{A, "Zandrovelkin BLE"}, {B, "Other"}};
        defaults.writes.clear();
    }

    const ScreenInfo& screen(std::size_t which) const { return (*state.screens)[which]; }
    std::string activeUuid() const {
        const auto screen = edges.activeScreen();
        return screen ? screen->uuid : "none";
    }
    bool isStored() const { return decodeProfiles(defaults.data("profiles")) == *state.profiles; }

private:
    FakeDisplays& twoDisplays() {
        displays.add("D1", {0, 0, 1920, 1080});
        displays.add("D2", {1920, 0, 1920, 1080});
        return displays;
    }
};

TEST(EdgesModel, EditsTheSelectedDisplayOrElseTheFirst) {
    Fixture f;
    EXPECT_EQ(f.activeUuid(), "D1");
    f.edges.selectedScreen = "D2";
    EXPECT_EQ(f.activeUuid(), "D2");
    f.state.screens.modify([](auto& list) { list.pop_back(); });
    EXPECT_EQ(f.activeUuid(), "D1");
    EXPECT_EQ(f.edges.map().selectedUUID, "D1");
    f.state.screens = std::vector<ScreenInfo>{};
    EXPECT_EQ(f.activeUuid(), "none");
    EXPECT_EQ(f.edges.map().selectedUUID, std::nullopt);
}

TEST(EdgesModel, BindsAnEdgeInTheProfileThatIsActive) {
    Fixture f;
    const auto binding = f.edges.binding(f.screen(0), Edge::left);
    EXPECT_EQ(binding.get(), Bound{});
    binding.set(A);
    EXPECT_EQ(binding.get(), Bound{A});
    EXPECT_EQ(f.edges.map().edgeColor(f.screen(0), Edge::left), Palette::color(A));
    EXPECT_EQ(f.edges.map().edgeColor(f.screen(1), Edge::left), std::nullopt);

    f.edges.profile().set(f.second);
    EXPECT_EQ(binding.get(), Bound{});
    binding.set(B);
    f.edges.profile().set(f.first);
    EXPECT_EQ(binding.get(), Bound{A});
    binding.set(std::nullopt);
    EXPECT_TRUE(f.state.profiles->front().bindings.empty());
    EXPECT_TRUE(f.isStored());
}

TEST(EdgesModel, AnEdgeBetweenDisplaysNeedsSharedEdges) {
    Fixture f;
    EXPECT_FALSE(f.edges.canBind(f.screen(0), Edge::right));
    EXPECT_TRUE(f.edges.canBind(f.screen(0), Edge::left));
    EXPECT_TRUE(f.edges.canBind(f.screen(1), Edge::right));
    f.state.allowSharedEdges = true;
    EXPECT_TRUE(f.edges.canBind(f.screen(0), Edge::right));
    EXPECT_TRUE(f.edges.map().allowSharedEdges);
}

TEST(EdgesModel, OffersNoneThenEveryKnownDongleThenAnUnknownOneThatIsBound) {
    Fixture f;
    f.state.setNickname("Desk", B);
    using Offers = std::vector<Offer>;
    const Offers known{{std::nullopt, "None"},
                       {A, "Zandrovelkin (AAAA)", Palette::color(A)},
                       {B, "Desk", Palette::color(B)}};
    EXPECT_EQ(f.edges.dongleOffers(std::nullopt), known);
    EXPECT_EQ(f.edges.dongleOffers(A), known);
    Offers withUnknown = known;
    withUnknown.push_back({C, "Zandrovelkin (CCCC)", Palette::color(C), false});
    EXPECT_EQ(f.edges.dongleOffers(C), withUnknown);
    EXPECT_EQ(f.edges.profileOffers(), (Offers{{f.first, "Default"}, {f.second, "Second"}}));
}

TEST(ProfilesModel, EachTextWritesThroughUntrimmed) {
    Fixture f;
    f.profiles.name(f.second).set(" Desk ");
    f.profiles.activate(f.second).set("on ");
    f.profiles.deactivate(f.second).set("off");
    f.profiles.target(f.second).set("cmd+l");
    EXPECT_EQ(f.state.profiles->back(), (Profile{f.second, " Desk ", {}, "on ", "off", "cmd+l"}));
    EXPECT_EQ(f.profiles.activate(f.second).get(), "on ");
    EXPECT_EQ(f.profiles.target(f.second).get(), "cmd+l");
    EXPECT_TRUE(f.isStored());
    EXPECT_EQ(f.defaults.writes.size(), 4U);

    f.profiles.name(f.second).set("");
    EXPECT_EQ(f.profiles.name(f.second).get(), " Desk ");
}

TEST(ProfilesModel, ADeletedProfileReadsEmptyAndTakesNothing) {
    Fixture f;
    const auto name = f.profiles.name(f.second);
    const auto hook = f.profiles.deactivate(f.second);
    EXPECT_TRUE(f.profiles.canDelete());
    f.state.deleteProfile(f.second);
    EXPECT_FALSE(f.profiles.canDelete());
    f.defaults.writes.clear();
    name.set("x");
    hook.set("x");
    EXPECT_EQ(name.get(), "");
    EXPECT_EQ(hook.get(), "");
    EXPECT_TRUE(f.defaults.writes.empty());
}

TEST(ProfilesModel, AddsUnderTheNewNameAndEmptiesIt) {
    Fixture f;
    f.profiles.newName = "Games";
    f.profiles.add();
    EXPECT_EQ(f.profiles.newName, "");
    f.profiles.add();
    EXPECT_EQ((*f.state.profiles)[2].name, "Games");
    EXPECT_EQ((*f.state.profiles)[3].name, "Profile 4");
    EXPECT_EQ(ProfilesModel::hotkey(2), "Control-Option-Command-3");
}

} // namespace
} // namespace quenthisar
