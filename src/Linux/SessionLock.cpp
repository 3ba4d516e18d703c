// SPDX-License-Identifier: MIT
#include "Linux/SessionLock.h"

#include <utility>

namespace quenthisar {

SessionLock::SessionLock(Changed changed)
    : SessionLock(Bus::system(), Bus::session(), std::move(changed)) {}

SessionLock::SessionLock(const Bus& systemBus, const Bus& sessionBus, Changed handler,
                         std::chrono::milliseconds limit)
    : changed(std::move(handler)), logind(systemBus, *this),
      screenSaver(sessionBus, [this](bool isActive) {
          saverIsActive = isActive;
          update();
      }) {
    demanded.setSingleShot(true);
    demanded.setInterval(limit);
    QObject::connect(&demanded, &QTimer::timeout, &demanded, [this] { update(); });
}

void SessionLock::lockedHintRead(bool isLocked) {
    lockedHint = isLocked;
    update();
}

void SessionLock::sleepRead(bool isNear) {
    sleepIsNear = isNear;
    update();
}

void SessionLock::lockDemanded() {
    demanded.start();
    update();
}

void SessionLock::unlockDemanded() {
    demanded.stop();
    update();
}

void SessionLock::logindGone() {
    // An upgrade of it restarts it while the locker stays: give it the time to come back.
    if (std::exchange(lockedHint, false)) demanded.start();
    sleepIsNear = false;
    update();
}

void SessionLock::update() {
    // From here on, who confirmed it decides.
    if (lockedHint || saverIsActive) demanded.stop();
    const bool next = lockedHint || saverIsActive || sleepIsNear || demanded.isActive();
    if (next == locked) return;
    locked = next;
    changed(locked);
}

} // namespace quenthisar
