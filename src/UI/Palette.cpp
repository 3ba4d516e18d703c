// SPDX-License-Identifier: MIT
#include "UI/Palette.h"

#include <numeric>

namespace quenthisar {

NamedColor Palette::color(const Uuid& forDongle) {
    const auto& bytes = forDongle.bytes;
    return colors[std::accumulate(bytes.begin(), bytes.end(), std::size_t{0}) % colors.size()];
}

} // namespace quenthisar
