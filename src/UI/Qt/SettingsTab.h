// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Qt/StateView.h"
#include "UI/SettingsModel.h"

#include <span>
#include <vector>

namespace quenthisar {

class GroupBox;
class Switch;

/// The preferences, and what the hotkeys do.
class SettingsTab final : public StateView {
public:
    explicit SettingsTab(AppState& appState, QWidget* parent = nullptr);

protected:
    void refresh() override;

private:
    GroupBox* makeSwitches(const QString& title, std::span<const SettingsModel::Toggle> toggles);
    GroupBox* makeShortcuts();

    SettingsModel model;
    std::vector<Switch*> switches;
};

} // namespace quenthisar
