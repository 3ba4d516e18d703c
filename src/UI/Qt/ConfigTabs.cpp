// SPDX-License-Identifier: MIT
#include "UI/Qt/ConfigTabs.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/DonglesTab.h"
#include "UI/Qt/EdgesTab.h"
#include "UI/Qt/ProfilesTab.h"
#include "UI/Qt/ScrollPage.h"
#include "UI/Qt/SettingsTab.h"
#include "UI/Qt/Symbols.h"

namespace quenthisar {

namespace {

constexpr int iconSide = 16; // in points

} // namespace

ConfigTabs::ConfigTabs(const ConfigView& view, QWidget* parent) : QTabWidget(parent) {
    setDocumentMode(true);
    setIconSize({iconSide, iconSide});
    const auto add = [this](auto makeTab, const QString& label, const QString& symbol) {
        addTab(new ScrollPage(makeTab), symbolIcon(symbol, secondaryColor, accentColor), label);
    };
    auto& state = view.state;
    add([view] { return new DonglesTab(view); }, tr("Dongles"),
        QStringLiteral("dot.radiowaves.left.and.right"));
    add([&state] { return new EdgesTab(state); }, tr("Edges"),
        QStringLiteral("rectangle.split.3x1"));
    add([&state] { return new ProfilesTab(state); }, tr("Profiles"),
        QStringLiteral("square.stack.3d.up"));
    add([&state] { return new SettingsTab(state); }, tr("Settings"), QStringLiteral("gearshape"));
}

} // namespace quenthisar
