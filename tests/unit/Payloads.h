// SPDX-License-Identifier: MIT
#pragma once

#include "Protocol/Report.h"

#include <cstddef>
#include <initializer_list>
#include <vector>

namespace quenthisar {

/// A payload from its first bytes; the rest is zero.
inline Payload bytes(std::initializer_list<int> first) {
    Payload payload{};
    std::size_t place = 0;
    for (const int byte : first) payload.at(place++) = static_cast<std::uint8_t>(byte);
    return payload;
}

using Payloads = std::vector<Payload>;

} // namespace quenthisar
