// SPDX-License-Identifier: MIT
#include "Linux/XInputSession.h"

#include <QTimer>

#include <utility>

namespace quenthisar {

XInputSession::XInputSession(const DesktopSpace& desktop, SystemLog& systemLog)
    : space(desktop), log(systemLog) {}

bool XInputSession::open() {
    if (link && !link->isLost()) return true;
    // It may be the one that is calling.
    QTimer::singleShot(0, [retired = std::shared_ptr(std::move(link))] {});
    link = XInputLink::open(space, {.deliver =
                                        [this](const TapEvent& event) {
                                            const auto current = receiver;
                                            if (current) (*current)(event);
                                        },
                                    .refusedForLong = [this] { logRefusal(); }});
    if (!link) return false;
    link->listen(receiver != nullptr);
    if (frozen) link->freeze();
    link->setHidden(hidden);
    return true;
}

void XInputSession::setReceiver(std::shared_ptr<const Receiver> next) {
    receiver = std::move(next);
    if (link) link->listen(receiver != nullptr);
}

void XInputSession::setFrozen(bool on) {
    frozen = on;
    if (!link) return;
    if (on)
        link->freeze();
    else
        link->thaw();
}

void XInputSession::setHidden(bool on) {
    hidden = on;
    if (link) link->setHidden(on);
}

void XInputSession::logRefusal() {
    if (!std::exchange(refusalLogged, true))
        log.log("Quenthisar: input grab refused for over a second");
}

} // namespace quenthisar
