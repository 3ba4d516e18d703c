// SPDX-License-Identifier: MIT
#pragma once

#include "UI/DonglesModel.h"
#include "UI/Qt/GroupBox.h"

class QPushButton;

namespace quenthisar {

class DigitsLabel;
class Label;
class SpeedSlider;
class Swatch;
class TextField;

/// One dongle: its link, its nickname and its speed. The model outlives the card.
class DongleCard final : public GroupBox {
public:
    DongleCard(const DonglesModel& dongles, const Uuid& dongle, QWidget* parent = nullptr);

    void refresh(const Dongle& dongle);
    /// Sets where the keyboard goes after `before`, and tells where it goes on from.
    QWidget* orderAfter(QWidget* before);

    const Uuid id;

private:
    QWidget* makeTopRow();
    QWidget* makeSpeedRow();
    void showActions(DongleConnectionState state);
    void nameControls();

    const DonglesModel& model;
    Swatch *link, *color;
    TextField* nickname;
    QPushButton *identify, *connectButton, *disconnectButton;
    Label* connecting;
    SpeedSlider* slider;
    DigitsLabel* speed;
};

} // namespace quenthisar
