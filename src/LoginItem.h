// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/LoginItemService.h"
#include "Platform/SystemLog.h"

namespace quenthisar {

/// Launch at login, as the desktop's service sees it.
namespace LoginItem {

/// Whether the service will start the application, or will once the user approves.
bool isOn(LoginItemService& service);

/// Registers or unregisters the application. What fails is logged and goes no further.
void setEnabled(bool on, LoginItemService& service, SystemLog& log);

} // namespace LoginItem
} // namespace quenthisar
