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

/// The text of a settings file with these profiles, the first one active: connects and captures by
/// itself, the display's right edge bound to the dongle.
QByteArray settingsText(const QString& displayUuid, const QString& dongleUuid,
                        const QList<StoredProfile>& profiles);

/// What a settings file says; empty if it is none.
QJsonObject readSettings(const QString& file);
/// False if it can't be written.
bool writeFile(const QString& file, const QByteArray& bytes);
/// The same for all of it; null where there is none.
QByteArray readFile(const QString& file);

} // namespace quenthisar::e2e
