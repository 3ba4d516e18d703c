// SPDX-License-Identifier: MIT
#pragma once

#include "UI/DonglesModel.h"
#include "UI/Qt/StateView.h"

#include <vector>

class QVBoxLayout;

namespace quenthisar {

class DongleCard;
class GroupBox;
class Label;
class Switch;

/// Capture, the state of Bluetooth, and the dongles.
class DonglesTab final : public StateView {
public:
    explicit DonglesTab(const ConfigView& view, QWidget* parent = nullptr);

protected:
    void refresh() override;

private:
    GroupBox* makeWarning();
    GroupBox* makeCaptureBox();
    void matchCards();

    DonglesModel model;
    GroupBox* warning;
    Switch* capture;
    Label *active, *bluetooth, *noDongles;
    QVBoxLayout* cardsLayout;
    std::vector<DongleCard*> cards; // in the order of the dongles
};

} // namespace quenthisar
