// SPDX-License-Identifier: MIT
#include "UI/Qt/EdgesTab.h"

#include "UI/Qt/EdgeRow.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/Picker.h"
#include "UI/Qt/ScreenMapWidget.h"
#include "UI/Qt/Typography.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace quenthisar {

namespace {

// In points.
constexpr int padding = 16, spacing = 12, rowSpacing = 4, pickerWidth = 180;

} // namespace

EdgesTab::EdgesTab(AppState& appState, QWidget* parent)
    : StateView(appState, parent), model{appState}, context{*appState.activeProfileID, {}},
      profilePicker(new Picker), map(new ScreenMapWidget(profilePicker)), details(new QWidget),
      screenName(new Label({}, TextRole::headline)), rows{},
      noDisplays(new Label(tr("No displays detected."), TextRole::caption, TextColor::secondary)) {
    std::ranges::transform(allEdges, rows.begin(), [](Edge edge) { return new EdgeRow(edge); });
    auto* note = new Label(tr("Click a display, then assign a dongle to each edge."),
                           TextRole::caption, TextColor::secondary);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(makeProfileRow());
    layout->addWidget(note);
    layout->addWidget(map);
    layout->addWidget(makeDetails());
    layout->addWidget(noDisplays);
    layout->addStretch();
    refresh();
}

QWidget* EdgesTab::makeProfileRow() {
    profilePicker->setFixedWidth(pickerWidth);
    profilePicker->setMeaning(tr("Profile"));
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(new Label(tr("Profile"), TextRole::body, TextColor::secondary));
    layout->addWidget(profilePicker);
    layout->addStretch();
    return row;
}

QWidget* EdgesTab::makeDetails() {
    screenName->cutLongText();
    auto* layout = new QVBoxLayout(details);
    layout->setContentsMargins({});
    layout->setSpacing(rowSpacing);
    layout->addWidget(screenName);
    for (auto* row : rows) layout->addWidget(row);
    return details;
}

void EdgesTab::refresh() {
    const auto screen = model.activeScreen();
    const Context next{*state.activeProfileID, screen ? std::optional{screen->uuid} : std::nullopt};
    // What was opened for another display or profile must not change this one.
    if (next != context)
        for (auto* row : rows) row->close();
    context = next;

    profilePicker->show(model.profile(), model.profileOffers());
    auto view = model.map();
    view.onSelect = [this](const std::string& uuid) {
        model.selectedScreen = uuid;
        refresh();
    };
    map->show(std::move(view));
    details->setVisible(screen.has_value());
    noDisplays->setVisible(!screen);
    if (screen) showDetails(*screen);
}

void EdgesTab::showDetails(const ScreenInfo& screen) {
    screenName->setText(shownName(screen.name));
    for (auto* row : rows) row->show(model, screen);
}

} // namespace quenthisar
