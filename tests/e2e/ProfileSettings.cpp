// SPDX-License-Identifier: MIT
#include "e2e/ProfileSettings.h"

#include "e2e/StageFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace quenthisar::e2e {

QString profileId(qsizetype number) {
    return u"00000000-0000-4000-8000-%1"_s.arg(number, 12, 10, QLatin1Char('0'));
}

void writeProfiles(const QString& file, const QString& displayUuid, const QString& dongleUuid,
                   const QList<StoredProfile>& profiles) {
    QJsonArray list;
    for (const auto& profile : profiles)
        list.append(
            QJsonObject{{u"id"_s, profileId(list.size() + 1)},
                        {u"name"_s, profile.name},
                        {u"bindings"_s, QJsonObject{{u"right|"_s + displayUuid, dongleUuid}}},
                        {u"activateCommand"_s, profile.activateCommand}});
    const auto bytes = QJsonDocument{list}.toJson(QJsonDocument::Compact).toBase64();
    const QJsonObject all{{u"autoConnect"_s, true},
                          {u"autoCapture"_s, true},
                          {u"activeProfile"_s, profileId(1)},
                          {u"profiles"_s, QJsonObject{{u"$data"_s, QString::fromLatin1(bytes)}}}};
    if (!writeFile(file, QJsonDocument{all}.toJson()))
        throw std::runtime_error("no settings can be written");
}

QJsonObject readSettings(const QString& file) {
    auto all = QJsonDocument::fromJson(readFile(file)).object();
    const auto profiles = all[u"profiles"_s][u"$data"_s].toString().toLatin1();
    if (!profiles.isEmpty())
        all[u"profiles"_s] = QJsonDocument::fromJson(QByteArray::fromBase64(profiles)).array();
    return all;
}

} // namespace quenthisar::e2e
