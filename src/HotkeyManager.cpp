// SPDX-License-Identifier: MIT
#include "HotkeyManager.h"

#include <utility>

namespace quenthisar {

namespace {

constexpr std::uint32_t signature = 0x514E5448; // "QNTH"

} // namespace

HotkeyManager::HotkeyManager(HotkeyService& hotkeyService) : service(hotkeyService) {
    service.installEventHandler(
        guard.bind([this](const HotkeyIdentity& identity) { dispatch(identity); }));
}

std::uint32_t HotkeyManager::registerHotkey(std::uint32_t keyCode, std::uint32_t modifiers,
                                            std::function<void()> handler) {
    const auto id = nextID++;
    if (const auto ref = service.registerEventHotKey(keyCode, modifiers, {signature, id})) {
        refs[id] = *ref;
        handlers[id] = std::move(handler);
    }
    return id;
}

void HotkeyManager::dispatch(const HotkeyIdentity& identity) const {
    const auto handler = handlers.find(identity.id);
    if (handler != handlers.end()) handler->second();
}

} // namespace quenthisar
