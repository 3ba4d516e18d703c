// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

namespace quenthisar {

/// The case among `all` whose `rawText` is exactly `text`.
template <class Cases>
constexpr auto caseWithRawText(const Cases& all, std::string_view text)
    -> std::optional<typename Cases::value_type> {
    const auto it =
        std::ranges::find_if(all, [text](const auto value) { return rawText(value) == text; });
    return it != all.end() ? std::optional{*it} : std::nullopt;
}

} // namespace quenthisar
