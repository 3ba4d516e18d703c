// SPDX-License-Identifier: MIT
// Shows a takeover without hardware. Ends with 0 only if what it shows is so.
#include "Interrupt.h"
#include "RuntimeFolder.h"
#include "Story.h"
#include "TargetWindow.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace quenthisar::demo;

constexpr unsigned longestPlay = 180; // s

bool run(const QCommandLineParser& parser, const Programs& programs) {
    const auto picture = QFileInfo{parser.value(QStringLiteral("picture"))}.absoluteFilePath();
    if (parser.isSet(QStringLiteral("virtual"))) return runTargetWindow(programs, picture);
    // Whatever waits in vain in spite of all limits: the children end with their parent.
    std::signal(SIGALRM, [](int) { ::_exit(1); });
    ::alarm(longestPlay);
    return playStory(programs, picture);
}

} // namespace

int main(int argc, char** argv) {
    // Pictures are painted without a display; what is started gets a display of its own.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    provideRuntimeFolder();
    const QGuiApplication app{argc, argv};

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Plays a takeover on two X servers of its own, with a virtual dongle between them."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("virtual"),
          QStringLiteral("Runs on this desktop instead, with a window as the target.")},
         {QStringLiteral("picture"), QStringLiteral("Where the picture of both screens goes."),
          QStringLiteral("file"), QStringLiteral("takeover.png")},
         {QStringLiteral("programs"), QStringLiteral("The folder of the programs."),
          QStringLiteral("folder"), QCoreApplication::applicationDirPath()},
         {QStringLiteral("quenthisar"), QStringLiteral("The program to show."),
          QStringLiteral("file")}});
    parser.process(app);

    auto programs = Programs::in(parser.value(QStringLiteral("programs")));
    if (parser.isSet(QStringLiteral("quenthisar")))
        programs.quenthisar = parser.value(QStringLiteral("quenthisar"));
    noteInterrupts();
    try {
        return run(parser, programs) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "demonstrate: %s\n", error.what());
        return 1;
    }
}
