// SPDX-License-Identifier: MIT
// A computer's desktop on the display of DISPLAY, for the demonstration and for tests.
#include "DeskWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>

#include <cstdio>

namespace {

using quenthisar::demo::DeskWindow;

DeskWindow::Look hostLook() {
    return {.title = QStringLiteral("This computer"),
            .subtitle = QStringLiteral("Keyboard and mouse are plugged in here"),
            .dark = QColor{0x1B, 0x25, 0x4B},
            .light = QColor{0x3C, 0x5A, 0x9A},
            .rightEdgeIsBound = true};
}

DeskWindow::Look targetLook() {
    return {.title = QStringLiteral("Target"),
            .subtitle = QStringLiteral("A dongle is plugged in here"),
            .dark = QColor{0x10, 0x3B, 0x3A},
            .light = QColor{0x2B, 0x7D, 0x6C}};
}

QRect parsedGeometry(const QString& text) {
    int width = 0, height = 0, x = 0, y = 0;
    const auto read =
        std::sscanf(text.toLatin1().constData(), "%dx%d%d%d", &width, &height, &x, &y);
    return read >= 2 ? QRect{x, y, width, height} : QRect{};
}

} // namespace

int main(int argc, char** argv) {
    QApplication app{argc, argv};
    // A witness must see every motion by itself.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);

    QCommandLineParser parser;
    const QCommandLineOption role{QStringLiteral("role"), QStringLiteral("host or target"),
                                  QStringLiteral("role"), QStringLiteral("host")};
    const QCommandLineOption geometry{QStringLiteral("geometry"),
                                      QStringLiteral("WxH+X+Y; the whole screen without it"),
                                      QStringLiteral("geometry")};
    parser.addOptions({role, geometry});
    parser.addHelpOption();
    parser.process(app);

    DeskWindow window{parser.value(role) == u"target" ? targetLook() : hostLook(),
                      [](const QString& line) {
                          std::puts(line.toUtf8().constData());
                          std::fflush(stdout);
                      }};
    const auto place = parsedGeometry(parser.value(geometry));
    window.setGeometry(place.isEmpty() ? app.primaryScreen()->geometry() : place);
    window.show();
    window.activateWindow();
    return QApplication::exec();
}
