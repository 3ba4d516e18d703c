// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/LoginItemService.h"

#include <QString>

namespace quenthisar {

/// The login item as an autostart entry of the desktop. `Hidden=true` in it is how desktops note
/// that the user switched it off: it then awaits his approval.
class AutostartItem final : public LoginItemService {
public:
    /// `$XDG_CONFIG_HOME/autostart/com.vornack.quenthisar.desktop`, or the same in `~/.config`.
    static QString standardPath();

    /// `path` of the entry, `program` that it starts, absolute.
    AutostartItem(QString path, QString program);

    LoginItemStatus status() override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    QString path;
    QString program;
};

} // namespace quenthisar
