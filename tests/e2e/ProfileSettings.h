// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

namespace quenthisar::e2e {

/// A profile as the settings hold it. All of them bind the same edge.
struct StoredProfile {
    QString name{};
    QString activateCommand{}; // a hook, run by the shell
};

/// The identifier of the n-th of them, from 1.
QString profileId(qsizetype number);

/// Settings with these profiles, the first one active: connects and captures by itself, the
/// display's right edge bound to the dongle. Throws std::runtime_error if they can't be written.
void writeProfiles(const QString& file, const QString& displayUuid, const QString& dongleUuid,
                   const QList<StoredProfile>& profiles);

/// What a settings file says, with the profiles, a document in the document, as they mean; empty if
/// it is none.
QJsonObject readSettings(const QString& file);

} // namespace quenthisar::e2e
