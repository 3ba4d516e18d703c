// SPDX-License-Identifier: MIT
#include "Linux/LogindSession.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String managerPath{"/org/freedesktop/login1"};
constexpr QLatin1String managerInterface{"org.freedesktop.login1.Manager"};
constexpr QLatin1String sessionInterface{"org.freedesktop.login1.Session"};
constexpr QLatin1String userPath{"/org/freedesktop/login1/user/self"};
constexpr QLatin1String userInterface{"org.freedesktop.login1.User"};
constexpr QLatin1String propertiesInterface{"org.freedesktop.DBus.Properties"};

/// The property in the reply to `Get`.
QVariant propertyIn(const QDBusMessage& reply) {
    if (reply.signature() != "v"_L1) return {};
    return reply.arguments().at(0).value<QDBusVariant>().variant();
}

/// The path of the user's graphical session, a pair of its name and its path; empty if none.
QString displayPath(const QDBusMessage& reply) {
    const auto value = propertyIn(reply);
    if (value.metaType() != QMetaType::fromType<QDBusArgument>()) return {};
    const auto pair = value.value<QDBusArgument>();
    if (pair.currentSignature() != "(so)"_L1) return {};
    QString name;
    QDBusObjectPath path;
    pair.beginStructure();
    pair >> name >> path;
    pair.endStructure();
    return name.isEmpty() ? QString() : path.path();
}

bool isGraphical(const QVariantMap& session) {
    const auto type = session.value(u"Type"_s).toString();
    return type == "x11"_L1 || type == "wayland"_L1 || type == "mir"_L1;
}

} // namespace

LogindSession::LogindSession(const Bus& bus, LogindFollower& follower)
    : follower(follower), logind(bus, u"org.freedesktop.login1"_s, [this] { ownerChanged(); }) {
    logind.subscribe({}, propertiesInterface, u"PropertiesChanged"_s, this,
                     SLOT(propertiesChanged(QDBusMessage)), sessionInterface);
    logind.subscribe({}, sessionInterface, u"Lock"_s, this, SLOT(lock(QDBusMessage)));
    logind.subscribe({}, sessionInterface, u"Unlock"_s, this, SLOT(unlock(QDBusMessage)));
    logind.subscribe(managerPath, managerInterface, u"PrepareForSleep"_s, this,
                     SLOT(prepareForSleep(QDBusMessage)));
    logind.subscribe(managerPath, managerInterface, u"SessionNew"_s, this,
                     SLOT(sessionAdded(QDBusMessage)));
    logind.subscribe(managerPath, managerInterface, u"SessionRemoved"_s, this,
                     SLOT(sessionRemoved(QDBusMessage)));
}

void LogindSession::ownerChanged() {
    session.clear();
    if (!logind.isThere()) return follower.logindGone();
    logind.get(
        managerPath, managerInterface, u"PreparingForSleep"_s,
        [this](const QDBusMessage& reply) { follower.sleepRead(propertyIn(reply).toBool()); });
    find(Source::process);
}

void LogindSession::find(Source source) {
    switch (source) {
    case Source::process:
        leftOver.clear();
        // Zero is whoever asks; our own idea of our number may be that of a container.
        return ask(u"GetSessionByPID"_s, {QVariant::fromValue(0U)}, Source::environment);
    case Source::environment:
        if (const auto id = qEnvironmentVariable("XDG_SESSION_ID"); !id.isEmpty())
            return ask(u"GetSession"_s, {id}, Source::user);
        return find(Source::user);
    case Source::user:
        return logind.get(userPath, userInterface, u"Display"_s, [this](const QDBusMessage& reply) {
            consider(displayPath(reply), Source::leftOver);
        });
    case Source::leftOver: return consider(leftOver, Source::leftOver);
    }
}

void LogindSession::ask(const QString& method, const QVariantList& arguments, Source next) {
    logind.call(managerPath, managerInterface, method, arguments,
                [this, next](const QDBusMessage& reply) {
                    if (reply.signature() == "o"_L1)
                        consider(reply.arguments().at(0).value<QDBusObjectPath>().path(), next);
                    else
                        find(next);
                });
}

void LogindSession::consider(const QString& path, Source next) {
    if (path.isEmpty()) {
        if (leftOver.isEmpty()) return; // until one appears
        return find(Source::leftOver);
    }
    logind.getAll(path, sessionInterface, [this, path, next](const QDBusMessage& reply) {
        if (reply.signature() != "a{sv}"_L1) {
            if (path == leftOver) return; // it ended meanwhile
            return find(next);
        }
        const auto properties = qdbus_cast<QVariantMap>(reply.arguments().at(0));
        // A program that was started over a remote shell, say, is shown on another session.
        if (isGraphical(properties) || next == Source::leftOver) return take(path, properties);
        leftOver = path;
        find(Source::user);
    });
}

void LogindSession::take(const QString& path, const QVariantMap& properties) {
    session = path;
    follower.lockedHintRead(properties.value(u"LockedHint"_s).toBool());
}

bool LogindSession::isOurs(const QDBusMessage& signal) const {
    return logind.sent(signal) && !session.isEmpty() && signal.path() == session;
}

void LogindSession::propertiesChanged(const QDBusMessage& signal) {
    if (!isOurs(signal) || signal.signature() != "sa{sv}as"_L1) return;
    const auto changed = qdbus_cast<QVariantMap>(signal.arguments().at(1));
    if (const auto hint = changed.find(u"LockedHint"_s); hint != changed.end())
        follower.lockedHintRead(hint->toBool());
    else if (signal.arguments().at(2).toStringList().contains(u"LockedHint"_s))
        consider(session, Source::leftOver);
}

void LogindSession::lock(const QDBusMessage& signal) {
    if (isOurs(signal)) follower.lockDemanded();
}

void LogindSession::unlock(const QDBusMessage& signal) {
    if (isOurs(signal)) follower.unlockDemanded();
}

void LogindSession::prepareForSleep(const QDBusMessage& signal) {
    if (logind.sent(signal) && signal.signature() == "b"_L1)
        follower.sleepRead(signal.arguments().at(0).toBool());
}

void LogindSession::sessionAdded(const QDBusMessage& signal) {
    if (logind.sent(signal) && session.isEmpty()) find(Source::process);
}

void LogindSession::sessionRemoved(const QDBusMessage& signal) {
    if (!logind.sent(signal) || signal.signature() != "so"_L1) return;
    if (signal.arguments().at(1).value<QDBusObjectPath>().path() != session) return;
    session.clear();
    follower.lockedHintRead(false);
    find(Source::process);
}

} // namespace quenthisar
