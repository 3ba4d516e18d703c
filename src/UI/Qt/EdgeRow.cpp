// SPDX-License-Identifier: MIT
#include "UI/Qt/EdgeRow.h"

#include "UI/Qt/Drawing.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/Picker.h"
#include "UI/Qt/Typography.h"

#include <QHBoxLayout>

namespace quenthisar {

EdgeRow::EdgeRow(Edge rowEdge, QWidget* parent)
    : QWidget(parent), edge(rowEdge), picker(new Picker),
      note(new Label(tr("Between displays - not available"), TextRole::caption,
                     TextColor::secondary)) {
    constexpr int labelWidth = 64; // in points
    auto* label = new Label(QString::fromStdString(title(edge)));
    label->setFixedWidth(labelWidth);
    label->setBuddy(picker);
    note->setToolTip(tr("The pointer passes to the display next to it here. The settings can allow "
                        "switching on such edges all the same."));
    // Rows stay where they are when an edge can be bound no more.
    setFixedHeight(controlHeight);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(label);
    layout->addWidget(picker, 1);
    layout->addWidget(note, 1);
}

void EdgeRow::show(const EdgesModel& model, const ScreenInfo& screen) {
    const auto binding = model.binding(screen, edge);
    picker->setMeaning(
        tr("%1 edge of %2").arg(QString::fromStdString(title(edge)), shownName(screen.name)));
    picker->show(binding, model.dongleOffers(binding.get()));
    const bool canBind = model.canBind(screen, edge);
    picker->setVisible(canBind);
    note->setVisible(!canBind);
}

void EdgeRow::close() {
    picker->hidePopup();
}

} // namespace quenthisar
