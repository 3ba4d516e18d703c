// SPDX-License-Identifier: MIT
#include "Dongle.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <utility>
#include <vector>

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

/// With the way as much as a function holds without memory of its own.
using Usual = std::array<std::uint8_t, 15>;

std::string lineOf(Way way, std::span<const std::uint8_t> payload) {
    const auto bytes = QByteArray{reinterpret_cast<const char*>(payload.data()),
                                  static_cast<qsizetype>(payload.size())};
    std::string line{"report "};
    line.append(wayName(way)).append(1, ' ');
    line.append(bytes.isEmpty() ? "-"_ba : bytes.toHex()).append(1, ' ');
    return line.append(describe(decode(payload)));
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
    const std::lock_guard lock{mutex};
    if (hid) hid->apply(decode(payload));
    // What it costs to write it down is no part of what a target waits for.
    Usual usual;
    if (payload.size() == usual.size()) {
        std::ranges::copy(payload, usual.begin());
        journal(
            origin, [way, usual] { return lineOf(way, usual); }, arrival);
    } else {
        journal(
            origin,
            [way, bytes = std::vector(payload.begin(), payload.end())] {
                return lineOf(way, bytes);
            },
            arrival);
    }
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
