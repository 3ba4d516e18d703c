// SPDX-License-Identifier: MIT
#include "XServer.h"

#include <stdexcept>

namespace quenthisar::demo {

namespace {

constexpr std::chrono::seconds startLimit{20};

// Servers warn of harmless things; what they wrote matters only if they don't start.
QString pathOf(QTemporaryFile& file) {
    return file.open() ? file.fileName() : QString{};
}

QString firstLine(ChildProcess& process, const char* what, QTemporaryFile& errors) {
    const auto line = process.readLine(startLimit);
    if (!line || line->isEmpty())
        throw std::runtime_error(std::string{what} + " does not start\n" +
                                 errors.readAll().toStdString());
    return *line;
}

QStringList arguments(const QString& size, const QString& frameBufferFolder) {
    QStringList result{QStringLiteral("-displayfd"), QStringLiteral("1"),
                       QStringLiteral("-screen"),    QStringLiteral("0"),
                       size + QStringLiteral("x24"), QStringLiteral("-nolisten"),
                       QStringLiteral("tcp"),        QStringLiteral("-noreset")};
    if (!frameBufferFolder.isEmpty()) result += {QStringLiteral("-fbdir"), frameBufferFolder};
    return result;
}

} // namespace

XServer::XServer(const QString& size, const QString& frameBufferFolder)
    : XServer(QStringLiteral("Xvfb"), arguments(size, frameBufferFolder)) {}

XServer::XServer(const QString& program, const QStringList& arguments)
    : process(program, arguments, {}, pathOf(errors)),
      displayName(u':' + firstLine(process, qPrintable(program), errors)) {}

NestedXServer::NestedXServer(QSize size, const QString& title)
    : process(QStringLiteral("Xephyr"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
               QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
               QStringLiteral("-title"), title,
               // Its own way of taking all input would be in the way of the one to be seen.
               QStringLiteral("-no-host-grab"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
               QStringLiteral("-noreset")},
              {}, pathOf(errors)),
      displayName(u':' + firstLine(process, "Xephyr", errors)) {}

void PrivateBus::start() {
    process.emplace(QStringLiteral("dbus-daemon"),
                    QStringList{QStringLiteral("--session"), QStringLiteral("--nofork"),
                                QStringLiteral("--print-address"),
                                QStringLiteral("--address=unix:path=") +
                                    folder.filePath(QStringLiteral("bus"))},
                    ChildProcess::Environment{}, pathOf(errors));
    // Without the identity of this one, which the next does not share.
    busAddress = firstLine(*process, "dbus-daemon", errors).section(u',', 0, 0);
}

} // namespace quenthisar::demo
