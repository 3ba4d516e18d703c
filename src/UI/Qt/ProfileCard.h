// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ProfilesModel.h"
#include "UI/Qt/GroupBox.h"

#include <array>
#include <cstddef>
#include <functional>

namespace quenthisar {

class Label;
class SymbolButton;
class TextField;

/// Edits one profile.
class ProfileCard final : public GroupBox {
public:
    using Remove = std::function<void(const Uuid&)>;

    /// The model outlives the card.
    ProfileCard(const ProfilesModel& profilesModel, const Uuid& profile, Remove removeProfile,
                QWidget* parent = nullptr);

    /// Shows the profile, which stands at `position` of the list.
    void refresh(std::size_t position);
    /// Brings its controls into the order of Tab, after `before` if there is one; the last one.
    QWidget* orderAfter(QWidget* before);

    const Uuid id;

private:
    QWidget* makeTopRow();
    TextField* makeField(Binding<std::string> text, const QString& placeholder,
                         const QString& explanation);

    const ProfilesModel& model;
    Remove remove;
    SymbolButton* marker;
    TextField* name;
    Label* hotkey;
    SymbolButton* trash;
    TextField *activate, *deactivate, *target;
};

} // namespace quenthisar
