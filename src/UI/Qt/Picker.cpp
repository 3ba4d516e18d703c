// SPDX-License-Identifier: MIT
#include "UI/Qt/Picker.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Hints.h"
#include "UI/Qt/Symbols.h"
#include "UI/Qt/Typography.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QScreen>
#include <QStandardItemModel>
#include <QStylePainter>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr int symbolSize = 10, widestList = 420;

} // namespace

Picker::Picker(QWidget* parent) : QComboBox(parent) {
    setFont(quenthisar::font(TextRole::body));
    setIconSize({symbolSize, symbolSize});
    // Long names are cut, they don't widen the window.
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(1);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::activated, this, &Picker::choose);
}

void Picker::setMeaning(const QString& meaning) {
    quenthisar::setAccessibleName(*this, meaning);
    // The toolkit gives them the choice as the name.
    quenthisar::setAccessibleDescription(*this, meaning);
}

void Picker::show(Selection next, std::vector<Offer> nextOffers) {
    selection = std::move(next);
    // Row by row, so that an open list keeps its place.
    const auto previous = std::exchange(offers, std::move(nextOffers));
    for (std::size_t row = 0; row < offers.size(); ++row) {
        const auto index = static_cast<int>(row);
        if (row >= previous.size()) addItem({});
        if (row >= previous.size() || previous[row] != offers[row]) fill(index);
    }
    while (count() > static_cast<int>(offers.size())) removeItem(count() - 1);
    select();
}

void Picker::fill(int index) {
    const auto& offer = offers[static_cast<std::size_t>(index)];
    const auto title = shownName(offer.title);
    setItemText(index, title);
    setItemData(index, hint(title), Qt::ToolTipRole);
    setItemIcon(index, offer.color
                           ? symbolIcon(QStringLiteral("circle.fill"), standardColor(*offer.color))
                           : QIcon());
    static_cast<QStandardItemModel*>(model())->item(index)->setEnabled(offer.isAvailable);
}

void Picker::select() {
    const auto it = std::ranges::find(offers, selection.get(), &Offer::id);
    setCurrentIndex(it != offers.end() ? static_cast<int>(it - offers.begin()) : -1);
    // A long name may be cut.
    const auto title = currentText();
    setToolTip(hint(it != offers.end() && !it->isAvailable
                        ? tr("%1 has not been found since the program was started.").arg(title)
                        : title));
}

void Picker::choose(int index) {
    const auto id = offers[static_cast<std::size_t>(index)].id;
    if (id != selection.get()) selection.set(id);
    select();
}

void Picker::changeEvent(QEvent* event) {
    QComboBox::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    for (int index = 0; index < count(); ++index) fill(index);
}

/// The toolkit would make the list as wide as its longest name, up to the whole screen.
void Picker::showPopup() {
    QComboBox::showPopup();
    auto* list = view()->window();
    const int widest = std::max(widestList, width());
    if (list->width() <= widest) return;
    const auto room = screen()->availableGeometry();
    const int left = std::min(mapToGlobal(QPoint()).x(), room.x() + room.width() - widest);
    list->setGeometry(std::max(left, room.x()), list->y(), widest, list->height());
}

/// The style would cut a long name off.
void Picker::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const auto field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    constexpr int symbolRoom = symbolSize + 8;
    option.currentText = option.fontMetrics.elidedText(
        option.currentText, Qt::ElideMiddle,
        field.width() - (option.currentIcon.isNull() ? 4 : symbolRoom));
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void Picker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace quenthisar
