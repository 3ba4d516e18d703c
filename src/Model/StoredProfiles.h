// SPDX-License-Identifier: MIT
#pragma once

#include "Model/Profile.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar {

/// The list as one compact JSON array in UTF-8. None if a text in it is no UTF-8.
std::optional<std::string> encodeProfiles(const std::vector<Profile>& profiles);

/// The list that `json` holds, whole or not at all. A binding whose text is no UUID is dropped by
/// itself; anything else of the wrong shape rejects the list.
std::optional<std::vector<Profile>> decodeProfiles(std::string_view json);

} // namespace quenthisar
