// SPDX-License-Identifier: MIT
#pragma once

#include "UI/EdgesModel.h"

#include <QWidget>

namespace quenthisar {

class Label;
class Picker;

/// Binds one edge of the display being edited, or says why it can't be bound.
class EdgeRow final : public QWidget {
public:
    explicit EdgeRow(Edge rowEdge, QWidget* parent = nullptr);

    void show(const EdgesModel& model, const ScreenInfo& screen);
    /// An open list of offers is not for what comes now.
    void close();

private:
    const Edge edge;
    Picker* picker;
    Label* note;
};

} // namespace quenthisar
