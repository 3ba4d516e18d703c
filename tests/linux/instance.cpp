// SPDX-License-Identifier: MIT
// A program that may run once. Says "first" or "second", and what it is asked for as the first;
// with any argument it asks the first to end.
#include "Linux/SingleInstance.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const auto say = [](const char* word) {
        std::puts(word);
        std::fflush(stdout);
    };
    if (argc > 1) {
        say(quenthisar::SingleInstance::askToQuit() ? "asked" : "nobody");
        return 0;
    }
    quenthisar::SingleInstance instance;
    say(instance.isFirst() ? "first" : "second");
    if (!instance.isFirst()) return 0;
    const QCoreApplication application(argc, argv);
    instance.onActivate([&] { say("activated"); });
    instance.onQuit([] { QCoreApplication::quit(); });
    return QCoreApplication::exec();
}
