// SPDX-License-Identifier: MIT
// Shows the panel of a takeover: panel SECONDS [X Y]. It is centred on the point X Y in the
// framework's space, if given, and goes after so many seconds.
#include "Linux/QtMainQueue.h"
#include "Linux/XDisplays.h"
#include "Linux/XPanel.h"
#include "UI/Qt/HUDWidget.h"
#include "UI/TakeoverHUD.h"

#include <QApplication>

#include <cstdlib>

namespace {

struct Panels final : quenthisar::HUDPanels {
    std::shared_ptr<quenthisar::Panel> create(const quenthisar::HUDView& view) override {
        auto widget = std::make_unique<quenthisar::HUDWidget>(view);
        if (!quenthisar::XPanel::isComposited()) widget->makeSolid();
        return std::make_shared<quenthisar::XPanel>(space, std::move(widget));
    }
    quenthisar::DesktopSpace space;
};

} // namespace

int main(int argc, char** argv) {
    using namespace quenthisar;
    const QApplication application(argc, argv);
    if (argc < 2) return EXIT_FAILURE;
    QtMainQueue queue;
    Panels panels;
    XDisplays displays(panels.space);
    TakeoverHUD hud(queue, displays, panels);
    std::optional<Point> anchor;
    if (argc > 3) anchor = Point{std::atof(argv[2]), std::atof(argv[3])};
    hud.show({"Studio", NamedColor::green}, anchor, Seconds{std::atof(argv[1])});
    return QApplication::exec();
}
