// SPDX-License-Identifier: MIT
#include "Binding.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>

namespace quenthisar::demo {

namespace {

QString identifierOf(const QByteArray& bytes) {
    static const QUuid dns{QStringLiteral("6ba7b810-9dad-11d1-80b4-00c04fd430c8")};
    static const QUuid nameSpace =
        QUuid::createUuidV5(dns, QByteArrayLiteral("com.vornack.quenthisar"));
    return QUuid::createUuidV5(nameSpace, bytes).toString(QUuid::WithoutBraces).toUpper();
}

} // namespace

std::optional<BoundEdge> rightEdge(const XClient& client) {
    const auto monitors = client.monitors();
    if (monitors.isEmpty()) return std::nullopt;
    auto chosen = std::ranges::find(monitors, true, &XClient::Monitor::isPrimary);
    if (chosen == monitors.end()) chosen = monitors.begin();
    const auto right = [](const XClient::Monitor& monitor) { return monitor.frame.right(); };
    if (const auto outermost = std::ranges::max_element(monitors, {}, right);
        right(*outermost) > right(*chosen))
        chosen = outermost;

    return BoundEdge{.monitor = *chosen, .displayUuid = displayUuid(*chosen, monitors)};
}

QString displayUuid(const XClient::Monitor& monitor, const QList<XClient::Monitor>& monitors) {
    const auto twins = std::ranges::count(monitors, monitor.edid, &XClient::Monitor::edid);
    const auto isUnique = !monitor.edid.isEmpty() && twins == 1;
    return identifierOf(isUnique ? monitor.edid : monitor.edid + monitor.name.toUtf8());
}

QString dongleUuid(const QString& address) {
    return identifierOf(address.toUtf8());
}

QByteArray settingsText(const Settings& settings) {
    const QJsonObject bindings{
        {QStringLiteral("right|") + settings.displayUuid, settings.dongleUuid}};
    const QJsonObject values{{QStringLiteral("autoConnect"), true},
                             {QStringLiteral("autoCapture"), true},
                             {QStringLiteral("cornerSlam"), settings.cornerSlam},
                             {QStringLiteral("edgeBindings"), bindings}};
    return QJsonDocument{values}.toJson();
}

bool writeSettings(const QString& configurationFolder, const Settings& settings) {
    const QDir folder{configurationFolder + QStringLiteral("/quenthisar")};
    if (!folder.mkpath(QStringLiteral("."))) return false;
    const auto bytes = settingsText(settings);
    QFile file{folder.filePath(QStringLiteral("defaults.json"))};
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace quenthisar::demo
