// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ProfilesModel.h"
#include "UI/Qt/StateView.h"

#include <QElapsedTimer>

#include <vector>

class QPushButton;
class QVBoxLayout;

namespace quenthisar {

class ProfileCard;
class TextField;

/// Edits the profiles: one card for each, which stays the same as long as the profile is there.
class ProfilesTab final : public StateView {
public:
    explicit ProfilesTab(AppState& appState, QWidget* parent = nullptr);

protected:
    void refresh() override;

private:
    QWidget* makeNewRow();
    void add();
    void remove(const Uuid& id);
    void matchCards();

    ProfilesModel model;
    QVBoxLayout* cardsLayout;
    std::vector<ProfileCard*> cards; // one for each profile
    TextField* newName;
    QPushButton* addButton;
    QElapsedTimer removal; // since the last one
};

} // namespace quenthisar
