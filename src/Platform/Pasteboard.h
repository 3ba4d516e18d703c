// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace quenthisar {

/// The general pasteboard: what the user has copied. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Its plain text: meant to be UTF-8, but it comes from any program. None if there is no text,
    /// or if whoever holds it does not hand it over within 500 ms, for which this call waits. A
    /// text of more than 16 MiB is cut off there.
    virtual std::optional<std::string> string() = 0;
};

} // namespace quenthisar
