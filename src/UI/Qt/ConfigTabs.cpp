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
    const auto add = [this](QWidget* tab, const QString& label, const QString& symbol) {
        addTab(new ScrollPage(tab), symbolIcon(symbol, secondaryColor, accentColor), label);
    };
    add(new DonglesTab(view), tr("Dongles"), QStringLiteral("dot.radiowaves.left.and.right"));
    add(new EdgesTab(view.state), tr("Edges"), QStringLiteral("rectangle.split.3x1"));
    add(new ProfilesTab(view.state), tr("Profiles"), QStringLiteral("square.stack.3d.up"));
    add(new SettingsTab(view.state), tr("Settings"), QStringLiteral("gearshape"));
}

} // namespace quenthisar
