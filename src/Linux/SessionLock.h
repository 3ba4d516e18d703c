// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/LogindSession.h"
#include "Linux/ScreenSaver.h"

#include <QTimer>

#include <chrono>
#include <functional>

namespace quenthisar {

/// Whether the session's input belongs to a screen locker: the session manager says so, a screen
/// saver is active, the machine is about to sleep, or the session was asked to lock a moment ago.
/// Without these services, and until they have answered, it does not. Main thread.
class SessionLock final : LogindFollower {
public:
    using Changed = std::function<void(bool isLocked)>;

    /// How long a demand to lock counts that no locker confirms: then nobody locks here.
    static constexpr std::chrono::seconds confirmation{10};

    /// `changed` is called from the main loop, once per change; not before the first reply.
    explicit SessionLock(Changed changed);
    SessionLock(const Bus& systemBus, const Bus& sessionBus, Changed changed,
                std::chrono::milliseconds confirmation = SessionLock::confirmation);

    bool isLocked() const { return locked; }

private:
    void lockedHintRead(bool isLocked) override;
    void sleepRead(bool isNear) override;
    void lockDemanded() override;
    void unlockDemanded() override;
    void logindGone() override;
    void update();

    Changed changed;
    bool locked = false;
    bool lockedHint = false, saverIsActive = false, sleepIsNear = false;
    QTimer demanded; // runs while a demand to lock awaits its confirmation
    LogindSession logind;
    ScreenSaver screenSaver;
};

} // namespace quenthisar
