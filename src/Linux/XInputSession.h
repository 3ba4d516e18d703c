// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DesktopSpace.h"
#include "Linux/XInputLink.h"
#include "Platform/SystemLog.h"

#include <memory>

namespace quenthisar {

/// The session's input, which the tap and the cursor share: it keeps what they want of it, also
/// while there is no connection. Outlives both. Main thread.
class XInputSession {
public:
    using Receiver = std::function<void(const TapEvent&)>;

    XInputSession(const DesktopSpace& desktop, SystemLog& systemLog);

    /// Opens the connection where there is none, or a lost one; false when that fails.
    bool open();

    /// Who gets the events, or null. May be called from inside the receiver.
    void setReceiver(std::shared_ptr<const Receiver> next);
    void setFrozen(bool on);
    void setHidden(bool on);

private:
    void logRefusal();

    const DesktopSpace& space;
    SystemLog& log;
    std::shared_ptr<const Receiver> receiver;
    std::unique_ptr<XInputLink> link;
    bool frozen = false, hidden = false;
    bool refusalLogged = false;
};

} // namespace quenthisar
