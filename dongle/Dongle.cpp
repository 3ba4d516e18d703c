// SPDX-License-Identifier: MIT
#include "Dongle.h"

#include "Journal.h"

#include <cstdint>
#include <span>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

QString wayName(Way way) {
    switch (way) {
    case Way::request: return u"request"_s;
    case Way::command: return u"command"_s;
    case Way::descriptor: return u"descriptor"_s;
    }
    return {};
}

} // namespace

Dongle::Dongle(QString address, QString itsName, const QString& display)
    : name(std::move(itsName)), ownAddress(std::move(address)) {
    if (display.isEmpty()) return;
    target =
        std::make_unique<XTestTarget>(display.toStdString(), [this] { report(u"target lost"_s); });
    if (target->isUsable()) hid = std::make_unique<HidDevice>(*target);
}

void Dongle::report(const QString& what) const {
    journal(ownAddress, name, what);
}

void Dongle::receive(Way way, const QByteArray& bytes) {
    const auto arrival = Clock::now();
    const auto decoded = decode({reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                 static_cast<std::size_t>(bytes.size())});
    if (hid) hid->apply(decoded);
    const auto hex = bytes.isEmpty() ? u"-"_s : QString::fromLatin1(bytes.toHex());
    journal(ownAddress, name,
            u"report "_s + wayName(way) + u' ' + hex + u' ' +
                QString::fromStdString(describe(decoded)),
            arrival);
}

void Dongle::linkLost(const QString& reason) {
    if (hid) hid->releaseAll();
    report(u"disconnected "_s + reason);
}

void Dongle::shutDown() {
    if (!hid) return;
    hid->releaseAll();
    target->sync();
}

} // namespace quenthisar::dongle
