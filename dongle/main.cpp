// SPDX-License-Identifier: MIT

// The virtual dongle; README.md beside this file tells how to use it.

#include "Control.h"
#include "Daemon.h"
#include "Journal.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace quenthisar::dongle;

namespace {

/// SIGTERM and SIGINT become readable here. Before any thread starts, so that all of them wait.
int blockSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    std::signal(SIGPIPE, SIG_IGN);
    if (pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0) return -1;
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

int fail(const QString& text) {
    std::fprintf(stderr, "virtual-dongle: %s\n", qPrintable(text));
    return 1;
}

Dongles makeDongles(const QCommandLineParser& arguments) {
    const auto addresses = arguments.values(u"address"_s);
    const auto names = arguments.values(u"name"_s);
    const auto displays = arguments.values(u"display"_s);
    Dongles dongles;
    const auto count = std::max({addresses.size(), names.size(), qsizetype{1}});
    for (qsizetype i = 0; i < count; ++i) {
        const auto usual = u"C0:00:00:00:00:%1"_s.arg(i + 1, 2, 16, QChar{u'0'}).toUpper();
        dongles.push_back(
            std::make_unique<Dongle>(i < addresses.size() ? addresses[i].toUpper() : usual,
                                     i < names.size() ? names[i] : u"Zandrovelkin BLE"_s,
                                     displays.size() == 1 ? displays[0] : displays.value(i)));
    }
    return dongles;
}

std::chrono::milliseconds milliseconds(const QString& text) {
    return std::chrono::milliseconds{std::max(0, text.toInt())};
}

} // namespace

int main(int argc, char** argv) {
    const int signals = blockSignals();
    const QCoreApplication application{argc, argv};
    if (signals < 0) return fail(u"signals cannot be caught"_s);

    QCommandLineParser arguments;
    arguments.setApplicationDescription(
        u"Plays a Bluetooth daemon with dongles on the bus DBUS_SYSTEM_BUS_ADDRESS."_s);
    arguments.addHelpOption();
    arguments.addOptions({
        {u"address"_s, u"A dongle's address (repeatable)."_s, u"AA:BB:CC:DD:EE:FF"_s},
        {u"name"_s, u"Its name, the n-th for the n-th dongle; empty for none."_s, u"text"_s},
        {u"display"_s, u"Its target, the n-th for the n-th dongle; a single one for all."_s,
         u":N"_s},
        {u"known"_s, u"The daemon knows the dongles from before, undiscovered."_s},
        {u"no-adapter"_s, u"Starts without an adapter."_s},
        {u"powered-off"_s, u"Starts with the adapter off."_s},
        {u"connect-timeout"_s, u"Until Connect fails when out of range."_s, u"ms"_s, u"41000"_s},
        {u"line-delay"_s, u"How long lines wait to be written together."_s, u"ms"_s, u"0"_s},
        {u"disconnect-delay"_s, u"Until Disconnect is done."_s, u"ms"_s, u"2000"_s},
    });
    arguments.process(application);
    // Never the computer's own bus by accident.
    if (!qEnvironmentVariableIsSet("DBUS_SYSTEM_BUS_ADDRESS"))
        return fail(u"DBUS_SYSTEM_BUS_ADDRESS must name a private bus"_s);

    delayJournal(milliseconds(arguments.value(u"line-delay"_s)));
    const auto dongles = makeDongles(arguments);
    if (arguments.isSet(u"known"_s))
        for (const auto& dongle : dongles) dongle->rememberedBy.insert(u"/org/bluez/hci0"_s);
    if (arguments.isSet(u"display"_s))
        for (const auto& dongle : dongles)
            if (!dongle->hasTarget()) dongle->report(u"without a target"_s);

    // The daemon's end has its lines too.
    const struct AtTheEnd {
        ~AtTheEnd() { flushJournal(); }
    } flushing;
    Daemon daemon{{.delays = {.failedConnect = milliseconds(arguments.value(u"connect-timeout"_s)),
                              .disconnect = milliseconds(arguments.value(u"disconnect-delay"_s))},
                   .adapter = !arguments.isSet(u"no-adapter"_s),
                   .powered = !arguments.isSet(u"powered-off"_s)},
                  dongles};
    Control control{daemon, dongles, [] { QCoreApplication::exit(1); }};
    if (!control.serve()) return fail(u"no bus, or another virtual dongle is on it"_s);
    if (!daemon.start()) return fail(u"the name org.bluez is taken"_s);
    printLine(u"ready"_s);

    const QSocketNotifier quit{signals, QSocketNotifier::Read};
    QObject::connect(&quit, &QSocketNotifier::activated, &application,
                     [] { QCoreApplication::exit(0); });
    const int status = QCoreApplication::exec();
    for (const auto& dongle : dongles) {
        if (auto* device = daemon.deviceOf(*dongle)) device->setReading(false);
        dongle->shutDown();
    }
    return status;
}
