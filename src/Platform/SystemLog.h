// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace quenthisar {

/// The system log. Never anything about input goes there.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Writes one line. `line` holds no line break of its own.
    virtual void log(std::string_view line) = 0;
};

} // namespace quenthisar
