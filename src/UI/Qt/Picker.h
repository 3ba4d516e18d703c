// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Binding.h"
#include "UI/Offer.h"

#include <QComboBox>

#include <optional>
#include <vector>

namespace quenthisar {

/// Sets one of a list of offers. Only a person's choice is written; being filled never is, nor is
/// a turn of the wheel, which belongs to the page.
class Picker final : public QComboBox {
public:
    using Selection = Binding<std::optional<Uuid>>;

    explicit Picker(QWidget* parent = nullptr);

    /// For screen readers: what is picked here.
    void setMeaning(const QString& meaning);
    /// Shows `next`, and what `selection` says of it. An open list stays open.
    void show(Selection selection, std::vector<Offer> next);
    void showPopup() override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void choose(int index);
    void fill(int index);
    void select();

    Selection selection;
    std::vector<Offer> offers;
};

} // namespace quenthisar
