// SPDX-License-Identifier: MIT
#include "DeskLines.h"

namespace quenthisar::demo::DeskLines {

namespace {

QString at(QPoint place) {
    return QStringLiteral("%1,%2").arg(place.x()).arg(place.y());
}

// Control characters would end or hide in a line.
QString quoted(const QString& text) {
    QString result;
    for (const auto c : text) {
        if (c == u'\r' || c == u'\n')
            result += QStringLiteral("\\n");
        else if (c == u'\\' || c == u'"')
            result += u'\\' + QString{c};
        else if (c.isPrint())
            result += c;
    }
    return u'"' + result + u'"';
}

QString unquoted(const QString& line) {
    const auto begin = line.indexOf(u'"') + 1;
    const auto end = line.lastIndexOf(u'"');
    QString result;
    for (auto i = begin; i > 0 && i < end; ++i) {
        if (line[i] != u'\\')
            result += line[i];
        else if (++i < end)
            result += line[i] == u'n' ? QChar{u'\n'} : line[i];
    }
    return result;
}

} // namespace

QString keyPress(quint32 keyCode, const QString& text, bool isRepeat) {
    return QStringLiteral("key %1 %2 %3")
        .arg(isRepeat ? u"repeat" : u"press", QString::number(keyCode), quoted(text));
}

QString keyRelease(quint32 keyCode) {
    return QStringLiteral("key release %1").arg(keyCode);
}

QString button(bool isPress, Qt::MouseButton button, QPoint place) {
    const auto name = button == Qt::LeftButton     ? u"left"
                      : button == Qt::RightButton  ? u"right"
                      : button == Qt::MiddleButton ? u"middle"
                                                   : u"other";
    return QStringLiteral("button %1 %2 %3").arg(isPress ? u"press" : u"release", name, at(place));
}

QString motion(QPoint place) {
    return QStringLiteral("motion ") + at(place);
}

QString wheel(QPoint angle) {
    return QStringLiteral("wheel ") + at(angle);
}

QString caughtUp(quint32 number) {
    return QStringLiteral("caught up %1").arg(number);
}

bool isInput(const QString& line) {
    return line.startsWith(u"key ") || line.startsWith(u"button ") || line.startsWith(u"motion ") ||
           line.startsWith(u"wheel ");
}

QString typedText(const QStringList& lines) {
    QString result;
    for (const auto& line : lines)
        if (line.startsWith(u"key press ") || line.startsWith(u"key repeat "))
            result += unquoted(line);
    return result;
}

} // namespace quenthisar::demo::DeskLines
