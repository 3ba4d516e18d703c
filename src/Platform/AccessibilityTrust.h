// SPDX-License-Identifier: MIT
#pragma once

namespace quenthisar {

/// Whether this process may tap the host's input. Main thread.
class AccessibilityTrust {
public:
    virtual ~AccessibilityTrust() = default;

    virtual bool isProcessTrusted() = 0;

    /// Shows the system's prompt that tells the user how to grant it. Returns at once.
    virtual void prompt() = 0;
};

} // namespace quenthisar
