// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>

#include <cstdint>

namespace quenthisar {

/// What a text is for; decides its size and weight.
enum class TextRole : std::uint8_t { body, headline, callout, caption, caption2 };

/// The desktop's family in the size of the role.
QFont font(TextRole role);

} // namespace quenthisar
