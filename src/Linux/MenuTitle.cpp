// SPDX-License-Identifier: MIT
#include "Linux/MenuTitle.h"

#include "Support/Text.h"

#include <QTextBoundaryFinder>

namespace quenthisar {

namespace {

// In UTF-16 code units.
constexpr qsizetype longest = 60, head = 42, tail = 16;

/// Where the character that `at` is in begins; the scalar value that `at` is in if that is too far
/// away.
qsizetype boundary(const QString& text, qsizetype at, qsizetype atLeast) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(at);
    const auto found = finder.isAtBoundary() ? at : finder.toPreviousBoundary();
    const auto place = found > atLeast ? found : at;
    return text[place].isLowSurrogate() ? place - 1 : place; // the finder may say so, too
}

} // namespace

QString menuTitle(const std::string& title) {
    auto text = QString::fromStdString(Text::onOneLine(title));
    if (text.size() <= longest) return text;
    const auto end = boundary(text, head, 0);
    const auto begin = boundary(text, text.size() - tail, text.size() - 2 * tail);
    return text.first(end) + QChar(u'…') + text.sliced(begin);
}

} // namespace quenthisar
