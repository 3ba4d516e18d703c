// SPDX-License-Identifier: MIT
#include "LoginItem.h"

namespace quenthisar::LoginItem {

bool isOn(LoginItemService& service) {
    const auto status = service.status();
    return status == LoginItemStatus::enabled || status == LoginItemStatus::requiresApproval;
}

void setEnabled(bool on, LoginItemService& service, SystemLog& log) {
    // An item that awaits approval is not enabled: only the user takes it back.
    if (on == (service.status() == LoginItemStatus::enabled)) return;
    const auto error = on ? service.registerItem() : service.unregisterItem();
    if (error) log.log("Quenthisar login item change failed: " + *error);
}

} // namespace quenthisar::LoginItem
