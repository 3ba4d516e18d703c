// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace quenthisar {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// The application as a login item: whether the desktop starts it when the user logs in. Main
/// thread.
class LoginItemService {
public:
    virtual ~LoginItemService() = default;

    virtual LoginItemStatus status() = 0;

    /// What went wrong, or none.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace quenthisar
