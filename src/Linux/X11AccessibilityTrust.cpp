// SPDX-License-Identifier: MIT
#include "Linux/X11AccessibilityTrust.h"

#include "Linux/XInputLink.h"

namespace quenthisar {

namespace {

bool isWaylandSession() {
    return qgetenv("XDG_SESSION_TYPE") == "wayland" ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QString missing() {
    return isWaylandSession()
               ? QStringLiteral("This is a Wayland session. Wayland does not let a program use the "
                                "keyboard and the mouse for another computer.")
               : QStringLiteral("The X server of this session is missing, or it lacks version 2.2 "
                                "of its input extension (XInput).");
}

} // namespace

X11AccessibilityTrust::~X11AccessibilityTrust() {
    delete dialog;
}

bool X11AccessibilityTrust::isProcessTrusted() {
    if (isWaylandSession()) return false;
    if (!serverSuffices) serverSuffices = XInputLink::isSupported();
    return serverSuffices;
}

void X11AccessibilityTrust::prompt() {
    if (!dialog) {
        dialog = new QMessageBox(
            QMessageBox::Information, QStringLiteral("Quenthisar needs an X11 session"),
            QStringLiteral("Quenthisar cannot share the keyboard and the mouse in this session."),
            QMessageBox::Ok);
        dialog->setTextFormat(Qt::PlainText);
        dialog->setInformativeText(
            missing() +
            QStringLiteral("\n\nTo change that, log out. On the login screen choose your name, "
                           "open the menu of sessions (often a gear in a corner), choose an entry "
                           "with \"X11\" or \"Xorg\" in its name, and log in."));
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setModal(false);
    }
    dialog->show();
    dialog->raise();
}

} // namespace quenthisar
