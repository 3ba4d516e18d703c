// SPDX-License-Identifier: MIT
#pragma once

#include "UI/EdgesModel.h"
#include "UI/Qt/StateView.h"

#include <array>
#include <optional>
#include <string>

namespace quenthisar {

class EdgeRow;
class Label;
class Picker;
class ScreenMapWidget;

/// Leads each edge of a display, which is picked on a map, to a dongle.
class EdgesTab final : public StateView {
public:
    explicit EdgesTab(AppState& appState, QWidget* parent = nullptr);

protected:
    void refresh() override;

private:
    QWidget* makeProfileRow();
    QWidget* makeDetails();
    void showDetails(const ScreenInfo& screen);

    /// What the pickers of the edges act on.
    struct Context {
        Uuid profile;
        std::optional<std::string> screen;
        bool operator==(const Context&) const = default;
    };

    EdgesModel model;
    Context context;
    Picker* profilePicker;
    ScreenMapWidget* map;
    QWidget* details;
    Label* screenName;
    std::array<EdgeRow*, allEdges.size()> rows;
    Label* noDisplays;
};

} // namespace quenthisar
