// SPDX-License-Identifier: MIT
#include "Desk.h"

#include "DeskLines.h"

#include <stdexcept>

namespace quenthisar::demo {

Desk::Desk(const Programs& programs, const QString& role, const QString& display)
    : Recorder(programs.desk, {QStringLiteral("--role"), role},
               {{QStringLiteral("DISPLAY"), display},
                {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")},
                // One unit of the window is one pixel of the server, whatever the user's scale.
                {QStringLiteral("QT_ENABLE_HIGHDPI_SCALING"), QStringLiteral("0")},
                {QStringLiteral("QT_SCALE_FACTOR"), QString{}}}) {
    if (!waitForLine(QStringLiteral("ready"), std::chrono::seconds{20}))
        throw std::runtime_error("the desk of the " + role.toStdString() + " does not start");
    const QString tag = QStringLiteral("window ");
    for (const auto& line : since(0))
        if (line.startsWith(tag)) window = line.mid(tag.size()).toUInt();
}

bool Desk::catchUp(const XClient& client) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = client.atom(DeskLines::catchUpMessage);
    message.data.data32[0] = ++catchUps;
    // Without a mask it goes to the window's creator, after all that the server sent there before.
    xcb_send_event(client.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(client.get());
    return waitForLine(DeskLines::caughtUp(catchUps), std::chrono::seconds{10});
}

} // namespace quenthisar::demo
