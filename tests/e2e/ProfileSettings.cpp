// SPDX-License-Identifier: MIT
#include "e2e/ProfileSettings.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace quenthisar::e2e {

QString profileId(qsizetype number) {
    return QStringLiteral("00000000-0000-4000-8000-%1").arg(number, 12, 10, QLatin1Char('0'));
}

QByteArray settingsText(const QString& displayUuid, const QString& dongleUuid,
                        const QList<StoredProfile>& profiles) {
    QJsonArray list;
    for (const auto& profile : profiles)
        list.append(QJsonObject{{QStringLiteral("id"), profileId(list.size() + 1)},
                                {QStringLiteral("name"), profile.name},
                                {QStringLiteral("bindings"),
                                 QJsonObject{{QStringLiteral("right|") + displayUuid, dongleUuid}}},
                                {QStringLiteral("activateCommand"), profile.activateCommand}});
    const auto bytes = QJsonDocument{list}.toJson(QJsonDocument::Compact).toBase64();
    return QJsonDocument{
        QJsonObject{{QStringLiteral("autoConnect"), true},
                    {QStringLiteral("autoCapture"), true},
                    {QStringLiteral("activeProfile"), profileId(1)},
                    {QStringLiteral("profiles"),
                     QJsonObject{{QStringLiteral("$data"), QString::fromLatin1(bytes)}}}}}
        .toJson();
}

QJsonObject readSettings(const QString& file) {
    return QJsonDocument::fromJson(readFile(file)).object();
}

bool writeFile(const QString& file, const QByteArray& bytes) {
    QFile out{file};
    return out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.flush();
}

QByteArray readFile(const QString& file) {
    QFile in{file};
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray{};
}

} // namespace quenthisar::e2e
