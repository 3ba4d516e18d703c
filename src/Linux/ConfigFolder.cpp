// SPDX-License-Identifier: MIT
#include "Linux/ConfigFolder.h"

#include <QDir>
#include <QFile>

#include <pwd.h>
#include <unistd.h>

namespace quenthisar {

namespace {

/// The variable's path; empty where it is none that may be used.
QString absolutePath(const char* variable) {
    const auto path = QFile::decodeName(qgetenv(variable));
    return QDir::isAbsolutePath(path) ? path : QString();
}

QString homeFolder() {
    if (auto home = absolutePath("HOME"); !home.isEmpty()) return home;
    const auto* user = ::getpwuid(::getuid());
    return user ? QFile::decodeName(user->pw_dir) : QDir::rootPath();
}

} // namespace

QString configFolder() {
    const auto folder = absolutePath("XDG_CONFIG_HOME");
    return folder.isEmpty() ? homeFolder() + QStringLiteral("/.config") : folder;
}

} // namespace quenthisar
