// SPDX-License-Identifier: MIT
#include "Linux/MenuTitle.h"

#include <QTextBoundaryFinder>

namespace quenthisar {

namespace {

// In UTF-16 code units.
constexpr qsizetype longest = 60, head = 42, tail = 16;

bool breaksTheLine(QChar c) {
    return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
           c.category() == QChar::Separator_Paragraph;
}

bool turnsTheDirection(QChar c) {
    switch (c.direction()) {
    case QChar::DirLRE:
    case QChar::DirLRO:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI: return true;
    default: return false;
    }
}

/// Where the character that `at` is in begins; `at` itself if that is too far away.
qsizetype boundary(const QString& text, qsizetype at, qsizetype atLeast) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(at);
    if (finder.isAtBoundary()) return at;
    const auto found = finder.toPreviousBoundary();
    return found > atLeast ? found : at;
}

} // namespace

QString menuTitle(const std::string& title) {
    QString text;
    for (const QChar c : QString::fromStdString(title))
        if (!turnsTheDirection(c)) text += breaksTheLine(c) ? QChar(u' ') : c;
    if (text.size() <= longest) return text;
    const auto end = boundary(text, head, 0);
    const auto begin = boundary(text, text.size() - tail, text.size() - 2 * tail);
    return text.first(end) + QChar(u'…') + text.sliced(begin);
}

} // namespace quenthisar
