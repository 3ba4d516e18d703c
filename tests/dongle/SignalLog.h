// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

namespace quenthisar::dongle {

/// The daemon's signals as texts, in order: "added PATH", "removed PATH", "PATH Name,RSSI" for
/// changed and invalidated properties, "owner gone".
class SignalLog final : public QObject {
    Q_OBJECT

public:
    explicit SignalLog(QDBusConnection bus);

    /// Runs the loop until a signal's text contains this. False after 10 s.
    bool waitFor(const QString& text);
    /// The place of the first whose text contains this; -1 if there is none.
    qsizetype indexOf(const QString& text) const;

    QStringList texts;

private:
    Q_SLOT void added(const QDBusMessage& signal);
    Q_SLOT void removed(const QDBusMessage& signal);
    Q_SLOT void changed(const QDBusMessage& signal);
    Q_SLOT void ownerChanged(const QDBusMessage& signal);
};

} // namespace quenthisar::dongle
