// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Binding.h"

#include <QLineEdit>

#include <string>

namespace quenthisar {

/// A field that stores each change of its text at once, whoever makes it.
///
/// What was typed stays as it was typed until the field is left, even if the store keeps another
/// text; then the field shows what is stored. Another window on top is no leaving.
class TextField final : public QLineEdit {
public:
    TextField(Binding<std::string> text, const QString& placeholderText,
              const QString& accessibleName, QWidget* parent = nullptr);

    /// What stands in it while it is empty; what finds no room loses its middle.
    void setPlaceholder(const QString& text);
    /// Shows the stored text. Changes nothing while it is what the field has last seen.
    void refresh();
    /// Shows the stored text, also in place of what was typed.
    void reload();

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void write(const QString& text);
    void show(const std::string& stored);
    void cutPlaceholder();

    Binding<std::string> binding;
    std::string lastSeen; // in the store
    QString placeholder;  // all of it
    bool isShowing = false, isEdited = false;
};

} // namespace quenthisar
