// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace quenthisar {

/// What a menu shows of a title that anybody may have written: on one line, of bearable length, and
/// without marks that change the direction of what stands beside it. Long ones lose their middle:
/// what tells dongles of one name apart is at the end.
QString menuTitle(const std::string& title);

} // namespace quenthisar
