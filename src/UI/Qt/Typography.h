// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QString>

#include <cstdint>
#include <string>

namespace quenthisar {

/// What a text is for; decides its size and weight.
enum class TextRole : std::uint8_t { body, headline, callout, caption, caption2 };

/// A name that anybody may have given, as it is shown: as it stands, but on one line and without
/// marks that turn the direction of what stands beside it.
QString shownName(const std::string& name);

/// The desktop's family in the size of the role.
QFont font(TextRole role);

} // namespace quenthisar
