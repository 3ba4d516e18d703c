// SPDX-License-Identifier: MIT
#include "UI/Qt/SettingsTab.h"
#include "UI/Qt/Switch.h"
#include "ui/UiFixture.h"

namespace quenthisar {
namespace {

TEST(SettingsTab, EachSwitchWritesItsOwnSettingAndFollowsIt) {
    UiFixture f;
    SettingsTab tab{f.state};
    f.present(tab);
    std::map<QString, Switch*> switches;
    for (auto* found : tab.findChildren<Switch*>()) switches[found->text()] = found;
    const std::pair<const char*, Published<bool> AppState::*> rows[]{
        {"Corner-slam target cursor on entry", &AppState::cornerSlam},
        {"Show takeover HUD", &AppState::hudEnabled},
        {"Allow switching on shared edges", &AppState::allowSharedEdges},
        {"Auto-connect configured dongles", &AppState::autoConnect},
        {"Auto-capture on launch", &AppState::autoCapture}};
    for (const auto& [text, field] : rows) {
        const bool before = *(f.state.*field);
        f.defaults.writes.clear();
        switches.at(text)->click();
        EXPECT_EQ(*(f.state.*field), !before) << text;
        EXPECT_EQ(f.defaults.writes.size(), 1U) << text;
        f.state.*field = before;
        f.settle();
        EXPECT_EQ(switches.at(text)->isChecked(), before) << text;
    }
    auto& atLogin = *switches.at("Launch at login");
    f.loginItem.error = "no";
    atLogin.click();
    EXPECT_FALSE(atLogin.isChecked()) << "it shows what the service says";
    f.loginItem.error.reset();
    atLogin.click();
    EXPECT_TRUE(atLogin.isChecked());
    f.loginItem.current = LoginItemStatus::requiresApproval;
    atLogin.click();
    EXPECT_TRUE(atLogin.isChecked()) << "what awaits approval is not taken back";
}

} // namespace
} // namespace quenthisar
