// SPDX-License-Identifier: MIT
#include "UI/Qt/ProfileCard.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Hints.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/SymbolButton.h"
#include "UI/Qt/TextField.h"
#include "UI/Qt/Typography.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr int nameWidth = 150, rowSpacing = 6;
/// Around a symbol in its button.
constexpr int symbolPadding = 5;

QColor dangerColor() {
    return standardColor(NamedColor::red);
}

} // namespace

ProfileCard::ProfileCard(const ProfilesModel& profilesModel, const Uuid& profile,
                         Remove removeProfile, QWidget* parent)
    : GroupBox({}, parent), id(profile), model(profilesModel), remove(std::move(removeProfile)),
      marker(new SymbolButton(QStringLiteral("circle"), secondaryColor, {})),
      name(new TextField(model.name(id), tr("Name"), {})),
      hotkey(new Label({}, TextRole::caption2, TextColor::secondary)),
      trash(new SymbolButton(QStringLiteral("trash"), dangerColor, {})),
      activate(makeField(model.activate(id), tr("On activate - run on Mac (shell)"),
                         tr("A shell command that runs on this computer, here called the Mac, when "
                            "the profile becomes active."))),
      deactivate(makeField(model.deactivate(id), tr("On deactivate - run on Mac (shell)"),
                           tr("A shell command that runs on this computer, here called the Mac, "
                              "when another profile becomes active."))),
      target(makeField(model.target(id), tr("On activate - send to target (e.g. cmd+l)"),
                       tr("Keys that are pressed on the target when the profile becomes active: "
                          "cmd is Super (the Windows key), opt is Alt."))) {
    // The symbols of the top row stand in line with the fields below.
    auto* fields = new QVBoxLayout;
    fields->setContentsMargins(symbolPadding, 0, symbolPadding, 0);
    fields->setSpacing(rowSpacing);
    for (auto* field : {activate, deactivate, target}) fields->addWidget(field);
    auto margins = content()->contentsMargins();
    margins -= QMargins(symbolPadding, 0, symbolPadding, 0);
    content()->setContentsMargins(margins);
    content()->setSpacing(rowSpacing);
    content()->addWidget(makeTopRow());
    content()->addLayout(fields);
}

TextField* ProfileCard::makeField(Binding<std::string> text, const QString& placeholder,
                                  const QString& explanation) {
    auto* field = new TextField(std::move(text), placeholder, {});
    field->setToolTip(explanation);
    return field;
}

QWidget* ProfileCard::makeTopRow() {
    // To screen readers: one of a group. The cards' bindings keep the others off.
    marker->setCheckable(true);
    marker->setAutoExclusive(true);
    connect(marker, &QAbstractButton::clicked, this, [this] {
        model.state.switchProfile(id);
        marker->setChecked(*model.state.activeProfileID == id);
    });
    connect(trash, &QAbstractButton::clicked, this, [this] { remove(id); });
    marker->setToolTip(tr("Make this profile active"));
    trash->setToolTip(tr("Delete this profile"));
    name->setFixedWidth(nameWidth);
    hotkey->setToolTip(tr("Option is Alt or AltGr, Command is Super (the Windows key)."));

    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(marker);
    layout->addWidget(name);
    layout->addWidget(hotkey);
    layout->addStretch();
    layout->addWidget(trash);
    return row;
}

void ProfileCard::refresh(std::size_t position) {
    const bool isActive = *model.state.activeProfileID == id;
    marker->setChecked(isActive);
    marker->setSymbol(isActive ? QStringLiteral("largecircle.fill.circle")
                               : QStringLiteral("circle"),
                      isActive ? Tint{accentColor} : Tint{secondaryColor});
    hotkey->setText(QString::fromStdString(ProfilesModel::hotkey(position)));
    trash->setVisible(model.canDelete());
    for (auto* field : {name, activate, deactivate, target}) field->refresh();

    // By number where a person types the name, which must not be read out with each letter.
    const auto number = QString::number(position + 1);
    const auto title = shownName(model.name(id).get());
    using quenthisar::setAccessibleName;
    setAccessibleName(*marker, tr("Make profile %1 active").arg(title));
    setAccessibleName(*trash, tr("Delete profile %1").arg(title));
    setAccessibleName(*name, tr("Name of profile %1").arg(number));
    for (auto* field : {activate, deactivate, target})
        setAccessibleName(*field, tr("%1, profile %2").arg(field->placeholderText(), number));
}

QWidget* ProfileCard::orderAfter(QWidget* before) {
    for (QWidget* control :
         std::initializer_list<QWidget*>{marker, name, trash, activate, deactivate, target}) {
        if (before) setTabOrder(before, control);
        before = control;
    }
    return before;
}

} // namespace quenthisar
