// SPDX-License-Identifier: MIT
#include "ReportLine.h"

#include <QRegularExpression>

namespace quenthisar::demo {

QString ReportLine::field(const QString& name) const {
    for (const auto& word : what.split(u' '))
        if (word.startsWith(name + u'=')) return word.mid(name.size() + 1);
    return {};
}

QPoint ReportLine::motion() const {
    return {field(QStringLiteral("dx")).toInt(), field(QStringLiteral("dy")).toInt()};
}

bool ReportLine::isAllUp() const {
    const auto isNone = [this](const QString& name) {
        const auto value = field(name);
        return value.isEmpty() || value == u"none";
    };
    if (isKeyboard()) return isNone(QStringLiteral("modifiers")) && isNone(QStringLiteral("keys"));
    return isMouse() && isNone(QStringLiteral("buttons"));
}

std::optional<ReportLine> reportLine(const QString& line) {
    static const QRegularExpression form{QStringLiteral(
        R"re(^(\d+) (\S+) "((?:[^"\\]|\\.)*)" report (\w+) ([0-9a-fA-F]*) (.+)$)re")};
    const auto match = form.match(line);
    if (!match.hasMatch()) return std::nullopt;
    return ReportLine{.time = std::chrono::microseconds{match.captured(1).toLongLong()},
                      .address = match.captured(2),
                      .name = match.captured(3),
                      .isRequest = match.captured(4) == u"request",
                      .what = match.captured(6)};
}

QList<ReportLine> reportLines(const QStringList& lines) {
    QList<ReportLine> result;
    for (const auto& line : lines)
        if (const auto parsed = reportLine(line)) result += *parsed;
    return result;
}

} // namespace quenthisar::demo
