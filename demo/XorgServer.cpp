// SPDX-License-Identifier: MIT
#include "XorgServer.h"

#include <QFile>

#include <stdexcept>

namespace quenthisar::demo {

namespace {

// The one that may start for those at the console only is a script before it.
constexpr auto program = "/usr/lib/xorg/Xorg";
constexpr std::chrono::seconds keymapLimit{20};

/// %1 is the folder. What is plugged into this computer is left alone.
constexpr auto configuration = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Monitor"
    Identifier "first"
    Modeline "1280x800" 83.5 1280 1352 1480 1680 800 803 809 831
    Option "PreferredMode" "1280x800"
    Option "Primary" "true"
EndSection
Section "Monitor"
    Identifier "second"
    Modeline "1024x768" 63.5 1024 1072 1176 1328 768 771 775 798
    Option "Enable" "true"
    Option "PreferredMode" "1024x768"
    Option "Position" "1280 0"
EndSection
Section "Device"
    Identifier "video"
    Driver "dummy"
    VideoRam 32768
    Option "Monitor-DUMMY0" "first"
    Option "Monitor-DUMMY1" "second"
EndSection
Section "Screen"
    Identifier "screen"
    Device "video"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Virtual 3000 2000
    EndSubSection
EndSection
Section "InputDevice"
    Identifier "mouse"
    Driver "inputtest"
    Option "DeviceType" "Pointer"
    Option "SocketPath" "%1/mouse"
EndSection
Section "InputDevice"
    Identifier "keyboard"
    Driver "inputtest"
    Option "DeviceType" "Keyboard"
    Option "SocketPath" "%1/keyboard"
EndSection
Section "InputDevice"
    Identifier "tablet"
    Driver "inputtest"
    Option "DeviceType" "PointerAbsolute"
    Option "SocketPath" "%1/tablet"
EndSection
Section "ServerLayout"
    Identifier "layout"
    Screen "screen"
    InputDevice "mouse" "CorePointer"
    InputDevice "keyboard" "CoreKeyboard"
    InputDevice "tablet" "SendCoreEvents"
EndSection
)";

} // namespace

XServer startXorg(const QString& folder) {
    const auto path = folder + QStringLiteral("/configuration");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(QString::fromLatin1(configuration).arg(folder).toUtf8()) < 0)
        throw std::runtime_error("Xorg's configuration can't be written");
    file.close();
    return {QString::fromLatin1(program),
            {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-config"), path,
             // A folder without configurations: this computer's own are not for this server.
             QStringLiteral("-configdir"), folder, QStringLiteral("-logfile"),
             folder + QStringLiteral("/log"), QStringLiteral("-noreset"),
             QStringLiteral("-novtswitch"), QStringLiteral("-nolisten"), QStringLiteral("tcp")}};
}

void useKeymapOfDesktops(const XServer& xorg) {
    ChildProcess process{QStringLiteral("setxkbmap"),
                         {QStringLiteral("-display"), xorg.display(), QStringLiteral("-rules"),
                          QStringLiteral("evdev"), QStringLiteral("us")}};
    if (process.waitForEnd(keymapLimit) != 0)
        throw std::runtime_error("setxkbmap does not set the keymap");
}

} // namespace quenthisar::demo
