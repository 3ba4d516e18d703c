// SPDX-License-Identifier: MIT
#include "UI/Qt/SettingsTab.h"

#include "UI/Qt/GroupBox.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/Switch.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quenthisar {

namespace {

// In points.
constexpr int padding = 16, boxSpacing = 14, switchSpacing = 6, shortcutSpacing = 5;
constexpr int keysWidth = 168;

QLayout* makeShortcut(const SettingsModel::Shortcut& shortcut, const QString& explanation) {
    auto* keys = new Label(QLatin1String(shortcut.keys), TextRole::caption);
    keys->setFixedWidth(keysWidth);
    auto* meaning =
        new Label(QLatin1String(shortcut.meaning), TextRole::caption, TextColor::secondary);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(Switch::inset, 0, 0, 0); // in line with the notes
    row->setSpacing(8);
    for (auto* label : {keys, meaning}) {
        label->setToolTip(explanation);
        row->addWidget(label);
    }
    row->addStretch();
    return row;
}

} // namespace

SettingsTab::SettingsTab(AppState& appState, QWidget* parent)
    : StateView(appState, parent), model{appState} {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(boxSpacing);

    auto* takeover = makeSwitches(tr("Takeover"), model.takeover());
    for (const auto* text : SettingsModel::takeoverNotes) {
        auto* note = new Label(QLatin1String(text), TextRole::caption, TextColor::secondary);
        note->setWordWrap(true);
        note->setIndent(Switch::inset);
        note->setToolTip(tr("The Mac is this computer. Option is Alt or AltGr, Command is Super "
                            "(the Windows key)."));
        takeover->content()->addWidget(note);
    }
    layout->addWidget(takeover);
    layout->addWidget(makeSwitches(tr("Startup"), model.startup()));
    layout->addWidget(makeShortcuts());
    layout->addStretch();
    refresh();
}

GroupBox* SettingsTab::makeSwitches(const QString& title,
                                    std::span<const SettingsModel::Toggle> toggles) {
    auto* box = new GroupBox(title);
    box->content()->setSpacing(switchSpacing);
    for (const auto& toggle : toggles) {
        switches.push_back(new Switch(toggle.value, QLatin1String(toggle.text)));
        box->content()->addWidget(switches.back());
    }
    return box;
}

GroupBox* SettingsTab::makeShortcuts() {
    auto* box = new GroupBox(tr("Shortcuts"));
    box->content()->setSpacing(shortcutSpacing);
    for (const auto& shortcut : SettingsModel::shortcuts)
        box->content()->addLayout(makeShortcut(
            shortcut, tr("Ctrl is Control, Opt is Alt or AltGr, Cmd is Super (the Windows key). "
                         "The Mac is this computer.")));
    return box;
}

void SettingsTab::refresh() {
    for (auto* toggle : switches) toggle->refresh();
}

} // namespace quenthisar
