// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/StatusItem.h"

namespace quenthisar {

class AppState;

/// The status item's menu: what is on and active, the profiles, the connected dongles, and the way
/// to the window.
namespace StatusMenu {

/// As the store is now. Represented objects are identifiers in upper case.
Menu items(const AppState& state, bool hasClipboardTarget);

} // namespace StatusMenu
} // namespace quenthisar
