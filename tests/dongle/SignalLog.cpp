// SPDX-License-Identifier: MIT
#include "SignalLog.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDeadlineTimer>

#include <algorithm>
#include <chrono>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

QString pathOf(const QDBusMessage& signal) {
    return signal.arguments().value(0).value<QDBusObjectPath>().path();
}

} // namespace

SignalLog::SignalLog(QDBusConnection bus) {
    const auto manager = u"org.freedesktop.DBus.ObjectManager"_s;
    const auto daemon = u"org.freedesktop.DBus"_s;
    bus.connect({}, u"/"_s, manager, u"InterfacesAdded"_s, this, SLOT(added(QDBusMessage)));
    bus.connect({}, u"/"_s, manager, u"InterfacesRemoved"_s, this, SLOT(removed(QDBusMessage)));
    bus.connect({}, {}, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
                SLOT(changed(QDBusMessage)));
    bus.connect(daemon, {}, daemon, u"NameOwnerChanged"_s, {u"org.bluez"_s}, {}, this,
                SLOT(ownerChanged(QDBusMessage)));
}

void SignalLog::added(const QDBusMessage& signal) {
    texts += u"added "_s + pathOf(signal);
}

void SignalLog::removed(const QDBusMessage& signal) {
    texts += u"removed "_s + pathOf(signal);
}

void SignalLog::changed(const QDBusMessage& signal) {
    auto names = qdbus_cast<QVariantMap>(signal.arguments().value(1)).keys();
    names += signal.arguments().value(2).toStringList();
    texts += signal.path() + u' ' + names.join(u',');
}

void SignalLog::ownerChanged(const QDBusMessage& signal) {
    if (signal.arguments().value(2).toString().isEmpty()) texts += u"owner gone"_s;
}

bool SignalLog::waitFor(const QString& text) {
    const QDeadlineTimer deadline{std::chrono::seconds{10}};
    while (indexOf(text) < 0) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

qsizetype SignalLog::indexOf(const QString& text) const {
    const auto it =
        std::ranges::find_if(texts, [&](const QString& line) { return line.contains(text); });
    return it != texts.end() ? it - texts.begin() : -1;
}

} // namespace quenthisar::dongle
