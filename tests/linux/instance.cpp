// SPDX-License-Identifier: MIT
// A program that may run once. Says "first" or "second", and what it is asked for as the first.
#include "Linux/SingleInstance.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const auto say = [](const char* word) {
        std::puts(word);
        std::fflush(stdout);
    };
    quenthisar::SingleInstance instance;
    say(instance.isFirst() ? "first" : "second");
    if (!instance.isFirst()) return 0;
    const QCoreApplication application(argc, argv);
    instance.onActivate([&] { say("activated"); });
    instance.onQuit([] { QCoreApplication::quit(); });
    return QCoreApplication::exec();
}
