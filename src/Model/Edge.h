// SPDX-License-Identifier: MIT
#pragma once

#include "Support/RawText.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quenthisar {

/// An edge of a display.
enum class Edge { top, bottom, left, right };

/// In the order in which lists show them.
inline constexpr std::array allEdges{Edge::top, Edge::bottom, Edge::left, Edge::right};

constexpr std::string_view rawText(Edge edge) {
    switch (edge) {
    case Edge::top: return "top";
    case Edge::bottom: return "bottom";
    case Edge::left: return "left";
    case Edge::right: return "right";
    }
    return {};
}

/// Case-sensitive.
constexpr std::optional<Edge> edgeFrom(std::string_view text) {
    return caseWithRawText(allEdges, text);
}

/// The key under which a profile binds `edge` of the display `screenUUID`.
std::string bindingKey(Edge edge, std::string_view screenUUID);

} // namespace quenthisar
