// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "UI/Binding.h"
#include "UI/Offer.h"
#include "UI/ScreenMapView.h"

#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// What the edges' tab shows and changes: which dongle each edge of a display leads to in the
/// active profile. Main thread.
struct EdgesModel {
    AppState& state;
    /// The display that the user clicked.
    std::optional<std::string> selectedScreen{};

    /// The display being edited: the selected one if it is there, else the first; none if there is
    /// no display.
    std::optional<ScreenInfo> activeScreen() const;

    /// The active profile.
    Binding<std::optional<Uuid>> profile() const;
    std::vector<Offer> profileOffers() const;

    /// The dongle behind an edge, or none. Acts on the profile that is active when it is called.
    Binding<std::optional<Uuid>> binding(const ScreenInfo& screen, Edge edge) const;

    /// Whether an edge can be bound: some of it is exposed, or shared edges are allowed.
    bool canBind(const ScreenInfo& screen, Edge edge) const;

    /// None, every known dongle, and last the one that is bound, should nobody know it.
    std::vector<Offer> dongleOffers(const std::optional<Uuid>& bound) const;

    /// The map of this moment, without its `onSelect`.
    ScreenMapView map() const;
};

/// As rows show it: "Top".
std::string title(Edge edge);

} // namespace quenthisar
