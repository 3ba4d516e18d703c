// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DeliveredInput.h"
#include "Linux/DesktopSpace.h"
#include "Linux/XInputLink.h"
#include "Platform/HotkeyService.h"
#include "Platform/SystemLog.h"

#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quenthisar {

/// The session's input, which the tap and the cursor share: it keeps what they want of it, also
/// while there is no connection. Outlives both. Main thread.
class XInputSession {
public:
    using Receiver = std::function<void(const TapEvent&)>;
    /// Gets a resource of the connection that holds the session's input, or 0 when none does.
    using HolderObserver = std::function<void(std::uint32_t resource)>;

    XInputSession(const DesktopSpace& desktop, SystemLog& systemLog, HolderObserver observer = {});

    /// Opens the connection where there is none, or a lost one; false when that fails.
    bool open();

    /// Who gets the events, or null. May be called from inside the receiver. When the connection
    /// is lost, the receiver is told that its tap is disabled, and again while `open` fails.
    void setReceiver(std::shared_ptr<const Receiver> next);
    void setFrozen(bool on);
    void setHidden(bool on);

    void setHotkeyHandler(HotkeyService::Handler handler) { hotkeyHandler = std::move(handler); }
    /// False when another client has the combination, or there is no connection.
    bool addHotkey(const Hotkey& hotkey);

    /// While deaf, nothing is delivered, no hotkey answers and nothing is held, whatever is wanted:
    /// the input is a screen locker's. What was delivered as down is released first. Not to be
    /// called from inside the receiver.
    void setDeaf(bool on);

private:
    bool isOpen() const { return link && !link->isLost(); }
    void apply();
    void recover();
    void deliver(const TapEvent& event);
    void releaseDelivered(std::uint64_t flags);
    void pressHotkey(const HotkeyIdentity& identity) const;
    void reportHolder();
    void logRefusal();

    const DesktopSpace& space;
    SystemLog& log;
    HolderObserver holderObserver;
    std::shared_ptr<const Receiver> receiver;
    std::unique_ptr<XInputLink> link;
    HotkeyService::Handler hotkeyHandler;
    std::vector<Hotkey> hotkeys;
    DeliveredInput delivered;
    QTimer recovery;
    bool frozen = false, hidden = false, deaf = false;
    bool refusalLogged = false;
};

} // namespace quenthisar
