// SPDX-License-Identifier: MIT
#include "Host.h"

#include "demo/XorgServer.h"

namespace quenthisar::bench {

Host::Host()
    : server(demo::startXorg(folder.path())),
      xClient(server.display()), itsDevices{.mouse = deviceAt("mouse"),
                                            .keyboard = deviceAt("keyboard")} {
    demo::useKeymapOfDesktops(server);
    xClient.switchOffAcceleration();
}

demo::InputTestDevice Host::deviceAt(const char* socket) const {
    return demo::InputTestDevice{folder.filePath(QString::fromLatin1(socket)),
                                 demo::InputTestDevice::Return::atOnce};
}

} // namespace quenthisar::bench
