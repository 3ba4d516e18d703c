// SPDX-License-Identifier: MIT
#include "Linux/ScreenSaver.h"

#include <array>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String interface { "org.freedesktop.ScreenSaver" };
/// Desktops differ in where it is.
constexpr std::array paths{QLatin1String{"/org/freedesktop/ScreenSaver"},
                           QLatin1String{"/ScreenSaver"}};

} // namespace

ScreenSaver::ScreenSaver(const Bus& bus, std::function<void(bool)> handler)
    : read(std::move(handler)), service(bus, interface, [this] {
          read(false);
          ask(0);
      }) {
    for (const auto& path : paths)
        service.subscribe(path, interface, u"ActiveChanged"_s, this,
                          SLOT(activeChanged(QDBusMessage)));
}

void ScreenSaver::ask(int pathNumber) {
    if (pathNumber == std::ssize(paths)) return; // it doesn't tell
    const auto path = paths.at(static_cast<std::size_t>(pathNumber));
    service.call(path, interface, u"GetActive"_s, {},
                 [this, pathNumber](const QDBusMessage& reply) {
                     if (reply.signature() == "b"_L1)
                         read(reply.arguments().at(0).toBool());
                     else
                         ask(pathNumber + 1);
                 });
}

void ScreenSaver::activeChanged(const QDBusMessage& signal) {
    if (service.sent(signal) && signal.signature() == "b"_L1)
        read(signal.arguments().at(0).toBool());
}

} // namespace quenthisar
