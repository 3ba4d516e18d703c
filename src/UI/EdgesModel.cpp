// SPDX-License-Identifier: MIT
#include "UI/EdgesModel.h"

#include <algorithm>

namespace quenthisar {

std::optional<ScreenInfo> EdgesModel::activeScreen() const {
    const auto& screens = *state.screens;
    if (screens.empty()) return std::nullopt;
    if (!selectedScreen) return screens.front();
    const auto it = std::ranges::find(screens, *selectedScreen, &ScreenInfo::uuid);
    return it != screens.end() ? *it : screens.front();
}

Binding<std::optional<Uuid>> EdgesModel::profile() const {
    return {[&state = state] { return std::optional{*state.activeProfileID}; },
            [&state = state](const std::optional<Uuid>& id) {
                if (id) state.switchProfile(*id);
            }};
}

std::vector<Offer> EdgesModel::profileOffers() const {
    std::vector<Offer> offers;
    for (const auto& profile : *state.profiles) offers.push_back({profile.id, profile.name});
    return offers;
}

Binding<std::optional<Uuid>> EdgesModel::binding(const ScreenInfo& screen, Edge edge) const {
    return {[&state = state, uuid = screen.uuid, edge] { return state.dongleID(uuid, edge); },
            [&state = state, uuid = screen.uuid, edge](const std::optional<Uuid>& dongleID) {
                state.setBinding(uuid, edge, dongleID);
            }};
}

bool EdgesModel::canBind(const ScreenInfo& screen, Edge edge) const {
    return *state.allowSharedEdges ||
           !ScreenLayout::exposedSegments(screen, edge, *state.screens).empty();
}

std::vector<Offer> EdgesModel::dongleOffers(const std::optional<Uuid>& bound) const {
    const auto offer = [&](const Uuid& id) {
        return Offer{id, state.displayName(id), Palette::color(id)};
    };
    std::vector<Offer> offers{{std::nullopt, "None"}};
    for (const auto& dongle : *state.dongles) offers.push_back(offer(dongle.id));
    if (bound && !state.dongle(*bound)) {
        offers.push_back(offer(*bound));
        offers.back().isAvailable = false;
    }
    return offers;
}

ScreenMapView EdgesModel::map() const {
    const auto active = activeScreen();
    return {.screens = *state.screens,
            .selectedUUID = active ? std::optional{active->uuid} : std::nullopt,
            .edgeColor = [&state = state](const ScreenInfo& screen,
                                          Edge edge) -> std::optional<NamedColor> {
                const auto dongleID = state.dongleID(screen.uuid, edge);
                return dongleID ? std::optional{Palette::color(*dongleID)} : std::nullopt;
            },
            .onSelect = {},
            .allowSharedEdges = *state.allowSharedEdges,
            .barThickness = 4};
}

std::string title(Edge edge) {
    std::string text{rawText(edge)};
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

} // namespace quenthisar
