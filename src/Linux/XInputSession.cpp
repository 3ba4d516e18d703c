// SPDX-License-Identifier: MIT
#include "Linux/XInputSession.h"

#include "Linux/InputPoll.h"

#include <utility>

namespace quenthisar {

namespace {

constexpr std::chrono::seconds recoveryInterval{1};

} // namespace

XInputSession::XInputSession(const DesktopSpace& desktop, SystemLog& systemLog,
                             HolderObserver observer)
    : space(desktop), log(systemLog), holderObserver(std::move(observer)) {
    recovery.setSingleShot(true);
    QObject::connect(&recovery, &QTimer::timeout, &recovery, [this] { recover(); });
}

bool XInputSession::open() {
    if (isOpen()) return true;
    // It may be the one that is calling.
    QTimer::singleShot(0, [retired = std::shared_ptr(std::move(link))] {});
    link = XInputLink::open(
        space, {.deliver = [this](const TapEvent& event) { deliver(event); },
                .pressHotkey = [this](const HotkeyIdentity& identity) { pressHotkey(identity); },
                .refusedForLong = [this] { logRefusal(); },
                .lost =
                    [this] {
                        reportHolder();
                        recovery.start(0);
                    }});
    if (!link) return false;
    // One that another client has got meanwhile is lost.
    for (const auto& hotkey : hotkeys) link->addHotkey(hotkey);
    apply();
    return true;
}

bool XInputSession::addHotkey(const Hotkey& hotkey) {
    if (!open() || !link->addHotkey(hotkey)) return false;
    hotkeys.push_back(hotkey);
    return true;
}

void XInputSession::pressHotkey(const HotkeyIdentity& identity) const {
    if (hotkeyHandler && !deaf) hotkeyHandler(identity);
}

void XInputSession::setReceiver(std::shared_ptr<const Receiver> next) {
    receiver = std::move(next);
    if (link) link->listen(receiver && !deaf);
}

void XInputSession::setFrozen(bool on) {
    // What ends a takeover lets go of keys and buttons, not of media keys.
    if (frozen && !on)
        for (const auto& event : delivered.mediaReleases(0)) deliver(event);
    frozen = on;
    apply();
    if (on) delivered.begin(link ? link->flags() : 0);
}

void XInputSession::setHidden(bool on) {
    hidden = on;
    if (link) link->setHidden(on && !deaf);
}

void XInputSession::setDeaf(bool on) {
    if (deaf == on) return;
    // The receiver may end the takeover on any of these.
    if (on) releaseDelivered(0);
    deaf = on;
    apply();
    if (!on && link) releaseDelivered(link->flags());
}

/// Brings the connection to what tap, cursor and locker want.
void XInputSession::apply() {
    if (!link) return;
    link->listen(receiver && !deaf);
    if (frozen && !deaf)
        link->freeze();
    else
        link->thaw();
    link->setHidden(hidden && !deaf);
    reportHolder();
}

void XInputSession::recover() {
    if (receiver)
        deliver({.type = EventType::tapDisabledByTimeout});
    else if (!hotkeys.empty())
        open();
    // What went up meanwhile, nobody has delivered; what is still down repeats.
    if (isOpen())
        releaseDelivered(deaf ? 0 : link->flags());
    else if (receiver || !hotkeys.empty())
        recovery.start(recoveryInterval);
}

void XInputSession::deliver(const TapEvent& event) {
    const auto current = receiver;
    if (!current) return;
    delivered.note(event);
    InputPoll::noteEvent();
    (*current)(event);
}

void XInputSession::releaseDelivered(std::uint64_t flags) {
    if (!frozen) return;
    for (const auto& event : delivered.releases(flags))
        if (frozen) deliver(event);
}

void XInputSession::reportHolder() {
    if (holderObserver) holderObserver(isOpen() ? link->holder() : 0);
}

void XInputSession::logRefusal() {
    if (!std::exchange(refusalLogged, true))
        log.log("Quenthisar: input grab refused for over a second");
}

} // namespace quenthisar
