// SPDX-License-Identifier: MIT
#include "UI/Qt/TextField.h"

#include "UI/Qt/Typography.h"

#include <QFocusEvent>
#include <QStyleOptionFrame>

#include <utility>

namespace quenthisar {

TextField::TextField(Binding<std::string> text, const QString& placeholderText,
                     const QString& accessibleName, QWidget* parent)
    : QLineEdit(parent), binding(std::move(text)) {
    constexpr int horizontalPadding = 4;
    setFont(quenthisar::font(TextRole::body));
    setTextMargins(horizontalPadding, 0, horizontalPadding, 0);
    setPlaceholder(placeholderText);
    setAccessibleName(accessibleName);
    // Also what is set through accessibility, dropped or undone.
    connect(this, &QLineEdit::textChanged, this, &TextField::write);
    show(binding.get());
}

void TextField::write(const QString& text) {
    if (isShowing) return;
    isEdited = true;
    binding.set(text.toStdString());
    lastSeen = binding.get();
}

void TextField::refresh() {
    auto stored = binding.get();
    if (stored == lastSeen) return;
    if (isEdited && hasFocus())
        lastSeen = std::move(stored);
    else
        show(stored);
}

void TextField::show(const std::string& stored) {
    lastSeen = stored;
    isEdited = false;
    const auto next = QString::fromStdString(stored);
    if (next == text()) return;
    isShowing = true;
    setText(next);
    if (!hasFocus()) setCursorPosition(0); // the beginning of a long one is seen
    isShowing = false;
}

void TextField::setPlaceholder(const QString& text) {
    placeholder = text;
    cutPlaceholder();
}

void TextField::cutPlaceholder() {
    constexpr int cursorRoom = 4; // the toolkit's, around the text
    QStyleOptionFrame option;
    initStyleOption(&option);
    const auto room =
        style()->subElementRect(QStyle::SE_LineEditContents, &option, this) - textMargins();
    setPlaceholderText(
        fontMetrics().elidedText(placeholder, Qt::ElideMiddle, room.width() - cursorRoom));
}

void TextField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    cutPlaceholder();
}

void TextField::reload() {
    show(binding.get());
}

void TextField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    const auto reason = event->reason();
    if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) reload();
}

void TextField::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    reload();
}

} // namespace quenthisar
