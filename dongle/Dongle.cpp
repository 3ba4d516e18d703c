// SPDX-License-Identifier: MIT
#include "Dongle.h"

#include <span>
#include <string>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

const char* wayName(Way way) {
    switch (way) {
    case Way::request: return "request";
    case Way::command: return "command";
    case Way::descriptor: return "descriptor";
    }
    return {};
}

} // namespace

Dongle::Dongle(QString address, QString itsName, const QString& display)
    : name(std::move(itsName)), ownAddress(std::move(address)),
      origin(journalOrigin(ownAddress, name)) {
    if (display.isEmpty()) return;
    target =
        std::make_unique<XTestTarget>(display.toStdString(), [this] { report(u"target lost"_s); });
    if (target->isUsable()) hid = std::make_unique<HidDevice>(*target);
}

void Dongle::report(const QString& what) const {
    journal(ownAddress, name, what);
}

void Dongle::rename(const QString& to) {
    const std::lock_guard lock{mutex};
    name = to;
    origin = journalOrigin(ownAddress, name);
}

void Dongle::receive(Way way, std::span<const std::uint8_t> payload) {
    const auto arrival = Clock::now();
    const auto decoded = decode(payload);
    const std::lock_guard lock{mutex};
    if (hid) hid->apply(decoded);
    // What it costs to write it down is no part of what a target waits for.
    journal(
        origin,
        [way,
         bytes = QByteArray{reinterpret_cast<const char*>(payload.data()),
                            static_cast<qsizetype>(payload.size())},
         decoded] {
            std::string what{"report "};
            what.append(wayName(way)).append(1, ' ');
            what.append(bytes.isEmpty() ? "-"_ba : bytes.toHex()).append(1, ' ');
            return what.append(describe(decoded));
        },
        arrival);
}

void Dongle::linkLost(const QString& reason) {
    {
        const std::lock_guard lock{mutex};
        if (hid) hid->releaseAll();
    }
    report(u"disconnected "_s + reason);
}

void Dongle::shutDown() {
    if (!hid) return;
    const std::lock_guard lock{mutex};
    hid->releaseAll();
    target->sync();
}

} // namespace quenthisar::dongle
