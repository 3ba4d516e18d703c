// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace quenthisar {

/// `$XDG_CONFIG_HOME`, or else `.config` in the user's home. The toolkit takes a relative path
/// there for what it says, and the root folder where `$HOME` is not set.
QString configFolder();

} // namespace quenthisar
