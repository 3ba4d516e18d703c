// SPDX-License-Identifier: MIT
#include "UI/Qt/DonglesTab.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/DongleCard.h"
#include "UI/Qt/GroupBox.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/Switch.h"
#include "UI/Qt/SymbolView.h"
#include "UI/Qt/Typography.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr int padding = 16, spacing = 12, captureSpacing = 4, warningSymbolSize = 18;

QColor warningColor() {
    return standardColor(NamedColor::orange);
}

} // namespace

DonglesTab::DonglesTab(const ConfigView& view, QWidget* parent)
    : StateView(view.state, parent), model{view.state, view.actions}, warning(makeWarning()),
      capture(new Switch(model.capture(), tr("Capture enabled"))),
      active(new Label({}, TextRole::callout)),
      bluetooth(new Label({}, TextRole::caption, TextColor::secondary)),
      noDongles(new Label(tr("No dongles found. Power one on - it connects automatically."),
                          TextRole::caption, TextColor::secondary)),
      cardsLayout(new QVBoxLayout) {
    noDongles->setWordWrap(true);
    cardsLayout->setSpacing(spacing);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(warning);
    layout->addWidget(makeCaptureBox());
    layout->addWidget(bluetooth);
    layout->addWidget(noDongles);
    layout->addLayout(cardsLayout);
    layout->addStretch();
    refresh();
}

GroupBox* DonglesTab::makeWarning() {
    auto* symbol = new SymbolView(QStringLiteral("exclamationmark.triangle.fill"),
                                  warningSymbolSize, warningColor);
    auto* grant = new QPushButton(tr("Grant..."));
    grant->setAccessibleDescription(tr("Tells what capturing input needs"));
    connect(grant, &QPushButton::clicked, this, [this] { model.actions.promptAX(); });

    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(symbol);
    row->addWidget(new Label(tr("Accessibility required to capture input")));
    row->addStretch();
    row->addWidget(grant);
    auto* box = new GroupBox;
    box->content()->addLayout(row);
    return box;
}

GroupBox* DonglesTab::makeCaptureBox() {
    // In line with the switch; it may name another computer.
    active->setContentsMargins(Switch::inset, 0, 0, 0);
    active->cutLongText();
    auto* box = new GroupBox;
    box->content()->setSpacing(captureSpacing);
    box->content()->addWidget(capture);
    box->content()->addWidget(active);
    return box;
}

void DonglesTab::refresh() {
    warning->setVisible(!*state.axTrusted);
    capture->refresh();
    active->setText(shownName(model.activeText()));
    active->setColor(model.isLocal() ? TextColor::secondary : TextColor::accent);
    bluetooth->setText(QString::fromStdString(model.bluetoothText()));
    noDongles->setVisible(state.dongles->empty());
    if (!std::ranges::equal(cards, *state.dongles, {}, &DongleCard::id, &Dongle::id)) matchCards();
    for (std::size_t position = 0; position < cards.size(); ++position)
        cards[position]->refresh((*state.dongles)[position]);
}

/// A card whose dongle is still there is kept, with the focus and what is being typed in it.
void DonglesTab::matchCards() {
    auto previous = std::exchange(cards, {});
    for (const auto& dongle : *state.dongles) {
        const auto it = std::ranges::find(previous, dongle.id, &DongleCard::id);
        if (it != previous.end()) {
            cards.push_back(*it);
            previous.erase(it);
        } else {
            cards.push_back(new DongleCard(model, dongle.id, this));
        }
    }
    for (auto* gone : previous) {
        gone->hide();
        cardsLayout->removeWidget(gone);
        gone->deleteLater(); // it may hold the button that was clicked
    }
    QWidget* before = capture;
    for (int position = 0; auto* card : cards) {
        if (cardsLayout->indexOf(card) != position) cardsLayout->insertWidget(position, card);
        ++position;
        before = card->orderAfter(before);
    }
}

} // namespace quenthisar
