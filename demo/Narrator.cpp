// SPDX-License-Identifier: MIT
#include "Narrator.h"

#include "ReportLine.h"

#include <cstdio>

namespace quenthisar::demo {

void Narrator::say(const QString& text) const {
    std::puts(text.toUtf8().constData());
    std::fflush(stdout);
}

void Narrator::begin(const QString& step) const {
    say(u'\n' + step);
}

void Narrator::report(const QString& dongleLine) {
    const auto line = reportLine(dongleLine);
    if (!line) return;
    if (first.count() == 0) first = line->time;
    const auto seconds = static_cast<double>((line->time - first).count()) / 1e6;
    say(QStringLiteral("  %1 s  %2").arg(seconds, 8, 'f', 3).arg(line->what));
}

void Narrator::finding(bool isGood, const QString& what, const QString& value) const {
    say(QStringLiteral("  %1  %2 %3").arg(isGood ? u"ok " : u"BAD", what.leftJustified(32), value));
}

} // namespace quenthisar::demo
