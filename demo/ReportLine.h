// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace quenthisar::demo {

/// A payload, as a line of the virtual dongle tells of it. `what` is such as "probe",
/// "keyboard modifiers=shift keys=a,enter" or "mouse buttons=left dx=-5 dy=3 wheel=0".
struct ReportLine {
    std::chrono::microseconds time{}; // CLOCK_MONOTONIC
    QString address;
    QString name;
    bool isRequest = false; // written with response
    QString what;

    bool isProbe() const { return what == u"probe"; }
    bool isKeyboard() const { return what.startsWith(u"keyboard "); }
    bool isMouse() const { return what.startsWith(u"mouse "); }
    bool isMalformed() const { return what.startsWith(u"malformed"); }

    /// The text after "field="; empty if there is no such field.
    QString field(const QString& name) const;
    QPoint motion() const;
    int wheel() const { return field(QStringLiteral("wheel")).toInt(); }
    /// Whether it says that nothing is held.
    bool isAllUp() const;
};

/// None if the line tells of something else.
std::optional<ReportLine> reportLine(const QString& line);
/// Those that are.
QList<ReportLine> reportLines(const QStringList& lines);

} // namespace quenthisar::demo
