// SPDX-License-Identifier: MIT
#include "UI/Qt/SettingsTab.h"
#include "UI/Qt/Switch.h"
#include "ui/UiFixture.h"

namespace quenthisar {
namespace {

struct SettingsTabTest : testing::Test, UiFixture {
    SettingsTab tab{state};

    SettingsTabTest() { present(tab); }

    Switch& toggle(const QString& text) {
        for (auto* found : tab.findChildren<Switch*>())
            if (found->text() == text) return *found;
        throw std::runtime_error(text.toStdString());
    }
};

TEST_F(SettingsTabTest, EachSwitchWritesItsOwnSettingAndFollowsIt) {
    struct Row {
        const char *text, *key;
        Published<bool> AppState::*field;
    };
    for (const auto& [text, key, field] :
         {Row{"Corner-slam target cursor on entry", "cornerSlam", &AppState::cornerSlam},
          Row{"Show takeover HUD", "hudEnabled", &AppState::hudEnabled},
          Row{"Allow switching on shared edges", "allowSharedEdges", &AppState::allowSharedEdges},
          Row{"Auto-connect configured dongles", "autoConnect", &AppState::autoConnect},
          Row{"Auto-capture on launch", "autoCapture", &AppState::autoCapture}}) {
        const bool before = *(state.*field);
        EXPECT_EQ(toggle(text).isChecked(), before) << text;
        defaults.writes.clear();
        toggle(text).click();
        EXPECT_EQ(*(state.*field), !before) << text;
        EXPECT_EQ(defaults.writes, std::vector<std::string>{key});
        state.*field = before;
        settle();
        EXPECT_EQ(toggle(text).isChecked(), before) << text;
    }
}

TEST_F(SettingsTabTest, LaunchAtLoginShowsWhatTheServiceSays) {
    auto& atLogin = toggle("Launch at login");
    loginItem.error = "no";
    atLogin.click();
    EXPECT_EQ(loginItem.calls, std::vector<std::string>{"register"});
    EXPECT_FALSE(atLogin.isChecked());
    loginItem.error.reset();
    atLogin.click();
    EXPECT_TRUE(atLogin.isChecked());
}

} // namespace
} // namespace quenthisar
