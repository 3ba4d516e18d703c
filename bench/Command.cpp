// SPDX-License-Identifier: MIT
#include "Command.h"

#include "demo/Interrupt.h"
#include "demo/RuntimeFolder.h"

#include <QCoreApplication>

#include <cstdio>
#include <exception>

namespace quenthisar::bench {

int runCommand(int argc, char** argv, const Command& command) {
    using namespace Qt::StringLiterals;
    demo::provideRuntimeFolder();
    const QCoreApplication app{argc, argv};
    QCommandLineParser parser;
    parser.setApplicationDescription(command.description);
    parser.addHelpOption();
    parser.addOptions(command.options);
    parser.addOption({u"programs"_s, u"The folder of the programs."_s, u"folder"_s,
                      QCoreApplication::applicationDirPath()});
    parser.process(app);
    demo::noteInterrupts();
    try {
        return command.run(parser);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", command.name, error.what());
        return 1;
    }
}

} // namespace quenthisar::bench
