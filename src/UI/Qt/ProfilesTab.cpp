// SPDX-License-Identifier: MIT
#include "UI/Qt/ProfilesTab.h"

#include "UI/Qt/Label.h"
#include "UI/Qt/ProfileCard.h"
#include "UI/Qt/ScrollPage.h"
#include "UI/Qt/TextField.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr int padding = 16, spacing = 12, newNameWidth = 180;

Label* makeNote(const QString& text, TextRole role, const QString& explanation) {
    auto* note = new Label(text, role, TextColor::secondary);
    note->setWordWrap(true);
    note->setToolTip(explanation);
    return note;
}

} // namespace

ProfilesTab::ProfilesTab(AppState& appState, QWidget* parent)
    : StateView(appState, parent), model{appState}, cardsLayout(new QVBoxLayout),
      newName(new TextField({[this] { return model.newName; },
                             [this](const std::string& text) { model.newName = text; }},
                            tr("New profile name"), tr("New profile name"))),
      addButton(new QPushButton(tr("Add"))) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(makeNote(
        tr("Each profile is its own set of edge bindings. Switch with the menu bar or "
           "Control-Option-Command plus a number."),
        TextRole::caption, tr("Option is Alt or AltGr, Command is Super (the Windows key).")));
    cardsLayout->setSpacing(spacing);
    layout->addLayout(cardsLayout);
    layout->addWidget(makeNewRow());
    layout->addWidget(makeNote(
        tr("Shell hooks run on the Mac (m1ddc to switch a monitor, curl for a webhook). The "
           "target field sends a key chord to the active dongle in this profile. Keep this config "
           "trusted - it runs what you type."),
        TextRole::caption2, tr("The Mac is this computer.")));
    layout->addStretch();
    refresh();
}

QWidget* ProfilesTab::makeNewRow() {
    newName->setFixedWidth(newNameWidth);
    addButton->setAccessibleName(tr("Add profile"));
    addButton->setAutoDefault(false);
    connect(addButton, &QPushButton::clicked, this, &ProfilesTab::add);
    // An unnamed profile is the button's: Return may be pressed once too often.
    connect(newName, &QLineEdit::returnPressed, this, [this] {
        if (!newName->text().isEmpty()) add();
    });
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(newName);
    layout->addWidget(addButton);
    layout->addStretch();
    return row;
}

void ProfilesTab::add() {
    model.add();
    newName->reload();
    refresh();
    // First the row that is used on, then what has come: where there is no room for both, that
    // counts.
    ScrollPage::reveal(*newName);
    ScrollPage::reveal(*cards.back());
}

/// Of a double click the second one meets the card that has moved up.
void ProfilesTab::remove(const Uuid& id) {
    if (removal.isValid() && !removal.hasExpired(QApplication::doubleClickInterval())) return;
    removal.start();
    model.state.deleteProfile(id);
}

void ProfilesTab::refresh() {
    const auto ids = [](const auto& list, auto id) {
        std::vector<Uuid> result;
        std::ranges::transform(list, std::back_inserter(result), id);
        return result;
    };
    const auto shown = ids(cards, [](const auto* card) { return card->id; });
    if (shown != ids(*state.profiles, &Profile::id)) matchCards();
    for (std::size_t position = 0; position < cards.size(); ++position)
        cards[position]->refresh(position);
}

/// A card whose profile is still there is kept, with the focus and what is being typed in it.
void ProfilesTab::matchCards() {
    auto previous = std::exchange(cards, {});
    for (const auto& profile : *state.profiles) {
        const auto it = std::ranges::find(previous, profile.id, &ProfileCard::id);
        if (it != previous.end()) {
            cards.push_back(*it);
            previous.erase(it);
        } else {
            cards.push_back(new ProfileCard(
                model, profile.id, [this](const Uuid& id) { remove(id); }, this));
        }
    }
    for (auto* gone : previous) {
        gone->hide();
        cardsLayout->removeWidget(gone);
        gone->deleteLater(); // it may hold the button that was clicked
    }
    QWidget* before = nullptr;
    for (int position = 0; auto* card : cards) {
        if (cardsLayout->indexOf(card) != position) cardsLayout->insertWidget(position, card);
        card->show(); // at once: Tab passes over what is not on screen
        ++position;
        before = card->orderAfter(before);
    }
    setTabOrder(before, newName);
    setTabOrder(newName, addButton);
}

} // namespace quenthisar
