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

using Texts = std::vector<std::string>;

const Uuid P = *Uuid::parse("00000000-0000-4000-8000-0000000000F1");
const Uuid Q = *Uuid::parse("00000000-0000-4000-8000-0000000000F2");
const Uuid R = *Uuid::parse("00000000-0000-4000-8000-0000000000F3");

ProcessDescription shell(const std::string& command) {
    return {"/bin/zsh", {"-c", command}};
}

/// Three profiles: P is active and has hooks, Q has hooks, R has none.
struct Fixture {
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    AppState state{threeProfiles(), displays, loginItem, launcher, log};

    Fixture() { defaults.writes.clear(); }

    Texts names() const {
        Texts names;
        for (const auto& profile : *state.profiles) names.push_back(profile.name);
        return names;
    }

    bool isStored() const { return decodeProfiles(defaults.data("profiles")) == *state.profiles; }

private:
    FakeUserDefaults& threeProfiles() {
        defaults.storeData("profiles", encodeProfiles({{P, "P", {}, "P on", "P off", ""},
                                                       {Q, "Q", {}, "Q on", "Q off", ""},
                                                       {R, "R", {}, "", "", ""}})
                                           .value());
        return defaults;
    }
};

TEST(Profiles, ASwitchPublishesThenStoresThenStartsBothHooks) {
    Fixture f;
    const auto stream = f.state.activeProfileID.subscribe([&](const Uuid& next) {
        if (next == P) return;
        EXPECT_TRUE(f.defaults.writes.empty());
        EXPECT_TRUE(f.launcher.launched.empty());
    });
    f.launcher.onLaunch = [&] { EXPECT_EQ(f.defaults.writes, Texts{"activeProfile"}); };
    f.state.switchProfile(Q);
    EXPECT_EQ(f.state.activeProfile().name, "Q");
    EXPECT_EQ(valueOf<std::string>(f.defaults, "activeProfile"), Q.text());
    EXPECT_EQ(f.launcher.launched,
              (std::vector<ProcessDescription>{shell("P off"), shell("Q on")}));
}

TEST(Profiles, ASwitchToTheActiveOrAnUnknownProfileDoesNothing) {
    Fixture f;
    f.state.switchProfile(P);
    f.state.switchProfile(A);
    EXPECT_EQ(*f.state.activeProfileID, P);
    EXPECT_TRUE(f.defaults.writes.empty());
    EXPECT_TRUE(f.launcher.launched.empty());
}

TEST(Profiles, HooksAreTrimmedAndBlankOnesAreNotStarted) {
    Fixture f;
    f.state.updateProfile(P, [](Profile& p) { p.deactivateCommand = " \n\t"; });
    f.state.updateProfile(Q, [](Profile& p) { p.activateCommand = "  open -a Notes\n"; });
    f.state.switchProfile(Q);
    EXPECT_EQ(f.launcher.launched, std::vector<ProcessDescription>{shell("open -a Notes")});
}

TEST(Profiles, NewOnesGoToTheEndAndAnEmptyNameIsNumbered) {
    Fixture f;
    f.state.addProfile("");
    f.state.addProfile(" ");
    EXPECT_EQ(f.names(), (Texts{"P", "Q", "R", "Profile 4", " "}));
    EXPECT_TRUE(f.isStored());
    f.state.deleteProfile(Q);
    f.state.deleteProfile(R);
    f.state.addProfile("");
    EXPECT_EQ(f.names(), (Texts{"P", "Profile 4", " ", "Profile 4"}));
    EXPECT_EQ(*f.state.activeProfileID, P);
    EXPECT_TRUE(f.launcher.launched.empty());
}

TEST(Profiles, DeletingTheActiveOnePublishesTheFirstButStoresNoChoice) {
    Fixture f;
    f.state.switchProfile(Q);
    f.launcher.launched.clear();
    f.defaults.writes.clear();
    std::vector<Uuid> published;
    const auto stream =
        f.state.activeProfileID.subscribe([&](const Uuid& id) { published.push_back(id); });
    f.state.deleteProfile(Q);
    EXPECT_EQ(published, (std::vector<Uuid>{Q, P}));
    EXPECT_EQ(f.defaults.writes, Texts{"profiles"});
    EXPECT_TRUE(f.launcher.launched.empty());
    EXPECT_TRUE(f.isStored());
}

TEST(Profiles, TheLastOneStays) {
    Fixture f;
    f.state.deleteProfile(f.state.profiles->front().id); // an id of the list that is replaced
    EXPECT_EQ(f.state.activeProfile().name, "Q");
    f.state.deleteProfile(Q);
    f.defaults.writes.clear();
    f.state.deleteProfile(R);
    EXPECT_EQ(f.names(), Texts{"R"});
    EXPECT_TRUE(f.defaults.writes.empty());
}

TEST(Profiles, AnIdThatIsStoredTwiceDoesNotEmptyTheList) {
    Fixture f;
    f.state.profiles = {{P, "P", {}, "", "", ""}, {P, "again", {}, "", "", ""}};
    f.state.deleteProfile(P);
    EXPECT_EQ(f.names(), (Texts{"P", "again"}));
}

TEST(Profiles, RenamingIgnoresTheEmptyNameAndNothingElse) {
    Fixture f;
    f.state.renameProfile(P, "");
    f.state.renameProfile(A, "nobody");
    EXPECT_TRUE(f.defaults.writes.empty());
    f.state.renameProfile(P, "  ");
    EXPECT_EQ(f.names(), (Texts{"  ", "Q", "R"}));
    EXPECT_TRUE(f.isStored());
}

TEST(Profiles, AChangeInPlaceIsOneAssignment) {
    Fixture f;
    int changes = 0;
    const auto signal = f.state.objectWillChange.subscribe([&] { ++changes; });
    f.state.updateProfile(P, [](Profile& p) { p.targetCommand = "cmd+l "; });
    EXPECT_EQ(changes, 1);
    f.state.setNickname("Desk", A);
    EXPECT_EQ(changes, 2);
    f.state.setSensitivity(2.0, A);
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(f.state.profiles->front().targetCommand, "cmd+l ");
    EXPECT_TRUE(f.isStored());
}

TEST(Profiles, BindingsAreSetReplacedAndClearedInTheActiveProfileOnly) {
    Fixture f;
    f.state.switchProfile(Q);
    f.state.setBinding("D1", Edge::left, A);
    f.state.setBinding("D1", Edge::left, B);
    f.state.setBinding("D2", Edge::top, A);
    f.state.setBinding("D2", Edge::top, std::nullopt);
    EXPECT_EQ(f.state.activeProfile().bindings, (Bindings{{"left|D1", B}}));
    EXPECT_TRUE(f.state.profiles->front().bindings.empty());
    f.defaults.writes.clear();
    f.state.setBinding("D9", Edge::top, std::nullopt);
    EXPECT_EQ(f.defaults.writes, Texts{"profiles"}) << "written all the same";
}

TEST(Nicknames, AreTrimmedOfBlanksAndTakenAwayByNothing) {
    Fixture f;
    f.state.setNickname("  Desk PC\t", A);
    f.state.setNickname("\n", B);
    EXPECT_EQ(f.state.displayName(A), "Desk PC");
    EXPECT_EQ(f.state.displayName(B), "\n");
    f.state.setNickname(" ", A);
    EXPECT_EQ(*f.state.nicknames, (std::map<Uuid, std::string>{{B, "\n"}}));
    EXPECT_EQ(valueOf<DefaultsDictionary>(f.defaults, "dongleNicknames"),
              (DefaultsDictionary{{B.text(), {std::string{"\n"}}}}));
}

TEST(Sensitivities, AreStoredUnchecked) {
    Fixture f;
    f.state.setSensitivity(0.0, A);
    f.state.setSensitivity(-7.5, B);
    EXPECT_EQ(valueOf<DefaultsDictionary>(f.defaults, "sensitivities"),
              (DefaultsDictionary{{A.text(), {0.0}}, {B.text(), {-7.5}}}));
}

TEST(LaunchAtLogin, ShowsWhatTheServiceSays) {
    Fixture f;
    f.state.setLaunchAtLogin(true);
    f.state.setLaunchAtLogin(true);
    EXPECT_TRUE(*f.state.launchAtLogin);
    EXPECT_EQ(f.loginItem.calls, Texts{"register"});
    f.state.setLaunchAtLogin(false);
    EXPECT_FALSE(*f.state.launchAtLogin);
    f.state.setLaunchAtLogin(false);
    EXPECT_EQ(f.loginItem.calls, (Texts{"register", "unregister"}));
    EXPECT_TRUE(f.defaults.writes.empty());
    EXPECT_TRUE(f.log.lines.empty());
}

TEST(LaunchAtLogin, AwaitingApprovalCountsAsOnAndIsNotTakenBack) {
    Fixture f;
    f.loginItem.current = LoginItemStatus::requiresApproval;
    f.state.setLaunchAtLogin(false);
    EXPECT_TRUE(*f.state.launchAtLogin);
    EXPECT_TRUE(f.loginItem.calls.empty());
    f.state.setLaunchAtLogin(true);
    EXPECT_EQ(f.loginItem.calls, Texts{"register"});
}

TEST(LaunchAtLogin, AFailureIsLoggedAndChangesNothing) {
    Fixture f;
    f.loginItem.error = "no space left";
    f.state.setLaunchAtLogin(true);
    EXPECT_FALSE(*f.state.launchAtLogin);
    EXPECT_EQ(f.log.lines, Texts{"Quenthisar login item change failed: no space left"});
}

} // namespace
} // namespace quenthisar
