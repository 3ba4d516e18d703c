// SPDX-License-Identifier: MIT
#include "Journal.h"

#include <cstdio>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

QString quoted(const QString& text) {
    QString result = u"\""_s;
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\') {
            result += u'\\';
            result += c;
        } else if (c.isPrint() || c.isSurrogate()) {
            result += c;
        } else {
            result += u"\\u%1"_s.arg(static_cast<uint>(c.unicode()), 4, 16, QChar{u'0'});
        }
    }
    return result + u'"';
}

} // namespace

void journal(const QString& who, const QString& name, const QString& what, Clock::time_point time) {
    using namespace std::chrono;
    const auto at = duration_cast<microseconds>(time.time_since_epoch()).count();
    printLine(QString::number(at) + u' ' + who + u' ' + quoted(name) + u' ' + what);
}

void printLine(const QString& line) {
    const auto bytes = (line + u'\n').toUtf8();
    // A reader that went away is no reason to stop.
    static_cast<void>(
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout));
    static_cast<void>(std::fflush(stdout));
}

} // namespace quenthisar::dongle
