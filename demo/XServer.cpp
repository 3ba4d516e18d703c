// SPDX-License-Identifier: MIT
#include "XServer.h"

#include <stdexcept>

namespace quenthisar::demo {

namespace {

constexpr std::chrono::seconds startLimit{20};

QString firstLine(ChildProcess& process, const char* what) {
    const auto line = process.readLine(startLimit);
    if (!line || line->isEmpty()) throw std::runtime_error(std::string{what} + " does not start");
    return *line;
}

} // namespace

XServer::XServer(const QString& size)
    : process(QStringLiteral("Xvfb"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
               QStringLiteral("0"), size + QStringLiteral("x24"), QStringLiteral("-nolisten"),
               QStringLiteral("tcp"), QStringLiteral("-noreset")}),
      displayName(u':' + firstLine(process, "Xvfb")) {}

PrivateBus::PrivateBus()
    : process(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--session"), QStringLiteral("--nofork"),
               QStringLiteral("--print-address")}),
      busAddress(firstLine(process, "dbus-daemon")) {}

} // namespace quenthisar::demo
