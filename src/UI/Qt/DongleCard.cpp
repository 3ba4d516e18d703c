// SPDX-License-Identifier: MIT
#include "UI/Qt/DongleCard.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/DigitsLabel.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/SpeedSlider.h"
#include "UI/Qt/Swatch.h"
#include "UI/Qt/TextField.h"
#include "UI/Qt/Typography.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace quenthisar {

namespace {

// In points.
constexpr int linkSize = 9, colorSize = 10, spacing = 8;
constexpr double colorRadius = 2;
constexpr int nicknameWidth = 150, speedLabelWidth = 50, speedWidth = 44;

QColor linkColor(DongleConnectionState state) {
    switch (state) {
    case DongleConnectionState::disconnected: return 0x8E8E93;
    case DongleConnectionState::connecting: return standardColor(NamedColor::yellow);
    case DongleConnectionState::connected: return standardColor(NamedColor::green);
    }
    return {};
}

QString linkText(DongleConnectionState state) {
    switch (state) {
    case DongleConnectionState::disconnected: return DongleCard::tr("Disconnected");
    case DongleConnectionState::connecting: return DongleCard::tr("Connecting");
    case DongleConnectionState::connected: return DongleCard::tr("Connected");
    }
    return {};
}

void setShown(QWidget& widget, bool isShown) {
    if (widget.isHidden() == isShown) widget.setVisible(isShown);
}

} // namespace

DongleCard::DongleCard(const DonglesModel& dongles, const Uuid& dongle, QWidget* parent)
    : GroupBox({}, parent), id(dongle), model(dongles), link(new Swatch(linkSize, linkSize / 2.0)),
      color(new Swatch(colorSize, colorRadius)),
      nickname(new TextField(model.nickname(id), {}, {})),
      identify(new QPushButton(tr("Identify"))), connectButton(new QPushButton(tr("Connect"))),
      disconnectButton(new QPushButton(tr("Disconnect"))),
      connecting(new Label(tr("Connecting..."), TextRole::caption, TextColor::secondary)),
      slider(
          new SpeedSlider(model.sensitivity(id), {DonglesModel::slowest, DonglesModel::fastest})),
      speed(new DigitsLabel) {
    content()->setSpacing(spacing);
    content()->addWidget(makeTopRow());
    content()->addWidget(makeSpeedRow());
    color->setMeaning(tr("Its colour at the edges and in the panel"));
    nickname->setToolTip(tr("A name for the computer that this dongle is plugged into"));
    identify->setToolTip(tr("Wiggle the pointer of the computer that this dongle is plugged into"));
    slider->setToolTip(tr("How fast the pointer moves there"));

    const auto callsWithID = [this](const auto& action) { return [this, &action] { action(id); }; };
    connect(identify, &QPushButton::clicked, this, callsWithID(model.actions.identify));
    connect(connectButton, &QPushButton::clicked, this, callsWithID(model.actions.connect));
    connect(disconnectButton, &QPushButton::clicked, this, callsWithID(model.actions.disconnect));
}

QWidget* DongleCard::makeTopRow() {
    nickname->setFixedWidth(nicknameWidth);
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(spacing);
    for (QWidget* widget : std::initializer_list<QWidget*>{link, color, nickname})
        layout->addWidget(widget);
    layout->addStretch();
    for (QWidget* widget :
         std::initializer_list<QWidget*>{identify, connectButton, connecting, disconnectButton})
        layout->addWidget(widget);
    return row;
}

QWidget* DongleCard::makeSpeedRow() {
    auto* label = new Label(tr("Speed"), TextRole::caption);
    label->setFixedWidth(speedLabelWidth);
    label->setBuddy(slider);
    speed->setFixedWidth(speedWidth);
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(spacing);
    layout->addWidget(label);
    layout->addWidget(slider);
    layout->addWidget(speed);
    return row;
}

void DongleCard::refresh(const Dongle& dongle) {
    link->setColor(linkColor(dongle.state));
    link->setMeaning(linkText(dongle.state));
    color->setColor(standardColor(Palette::color(id)));
    nickname->refresh();
    slider->refresh();
    speed->setText(QString::fromStdString(DonglesModel::speedText(model.sensitivity(id).get())));
    showActions(dongle.state);
    nameControls();
}

/// The toolkit would pass the keyboard from a button that vanishes on to the slider, which the same
/// keys move.
void DongleCard::showActions(DongleConnectionState state) {
    using State = DongleConnectionState;
    const bool isConnected = state == State::connected;
    const bool isDisconnected = state == State::disconnected;
    const auto* focused = window()->focusWidget();
    const bool takesFocus =
        (!isConnected && (focused == identify || focused == disconnectButton)) ||
        (!isDisconnected && focused == connectButton);
    if (takesFocus) {
        QWidget* next = nickname;
        if (isConnected) next = disconnectButton;
        if (isDisconnected) next = connectButton;
        next->show();
        next->setFocus(Qt::OtherFocusReason);
    }
    setShown(*identify, isConnected);
    setShown(*connectButton, isDisconnected);
    setShown(*connecting, state == State::connecting);
    setShown(*disconnectButton, isConnected);
}

/// By the default name: the nickname changes with each letter that is typed.
void DongleCard::nameControls() {
    const auto name = shownName(model.placeholder(id));
    if (name == accessibleName()) return;
    nickname->setPlaceholder(name);
    setAccessibleName(name);
    nickname->setAccessibleName(tr("Nickname of %1").arg(name));
    identify->setAccessibleName(tr("Identify %1").arg(name));
    connectButton->setAccessibleName(tr("Connect %1").arg(name));
    disconnectButton->setAccessibleName(tr("Disconnect %1").arg(name));
    slider->setAccessibleName(tr("Speed of %1").arg(name));
}

QWidget* DongleCard::orderAfter(QWidget* before) {
    for (QWidget* control : std::initializer_list<QWidget*>{nickname, identify, connectButton,
                                                            disconnectButton, slider}) {
        if (before->nextInFocusChain() != control) setTabOrder(before, control);
        before = control;
    }
    return before;
}

} // namespace quenthisar
