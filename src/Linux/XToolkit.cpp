// SPDX-License-Identifier: MIT
#include "Linux/XToolkit.h"

#include "Linux/XcbXkb.h"

#include <QGuiApplication>

namespace quenthisar::XToolkit {

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

void ignoreButtonStates() {
    auto* c = connection();
    if (!c) return;
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_POINTER_BUTTONS;
    xcb_xkb_select_events_aux(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0,
                              0, &details);
    xcb_flush(c);
}

} // namespace quenthisar::XToolkit
