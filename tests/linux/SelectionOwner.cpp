// SPDX-License-Identifier: MIT
#include "linux/SelectionOwner.h"

#include <array>
#include <cstring>
#include <string_view>
#include <sys/socket.h>
#include <utility>

namespace quenthisar::test {

SelectionOwner::SelectionOwner(Script answers) : script(std::move(answers)) {
    auto* c = connection->get();
    const auto window = xcb_generate_id(c);
    xcb_create_window(c, 0, window, connection->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, atom("CLIPBOARD"), XCB_CURRENT_TIME);
    connection->rootSize(); // the server has come to it
    thread = std::thread([this] { run(); });
}

SelectionOwner::~SelectionOwner() {
    die();
    thread.join();
}

void SelectionOwner::die() {
    ::shutdown(xcb_get_file_descriptor(connection->get()), SHUT_RDWR);
}

void SelectionOwner::run() {
    while (const auto event = next())
        if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST)
            script(*this, reinterpret_cast<const Request&>(*event));
}

XOwned<xcb_generic_event_t> SelectionOwner::next() {
    connection->flush();
    return XOwned<xcb_generic_event_t>{xcb_wait_for_event(connection->get())};
}

xcb_atom_t SelectionOwner::atom(const std::string& name) {
    const XOwned<xcb_intern_atom_reply_t> reply{
        xcb_intern_atom_reply(connection->get(),
                              xcb_intern_atom(connection->get(), false,
                                              static_cast<std::uint16_t>(name.size()), name.data()),
                              nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool SelectionOwner::isFor(const Request& request, const char* target) {
    return request.target == atom(target);
}

void SelectionOwner::put(const Request& request, const char* type, const std::string& bytes,
                         std::uint8_t format) {
    constexpr std::size_t step = 4 << 20; // what fits into a request
    auto mode = XCB_PROP_MODE_REPLACE;
    for (std::size_t at = 0; at == 0 || at < bytes.size(); at += step) {
        const auto part = std::string_view{bytes}.substr(at, step);
        xcb_change_property(connection->get(), static_cast<std::uint8_t>(mode), request.requestor,
                            request.property, atom(type), format,
                            static_cast<std::uint32_t>(part.size() / (format / 8U)), part.data());
        mode = XCB_PROP_MODE_APPEND;
    }
    connection->flush();
}

void SelectionOwner::notify(const Request& request, bool isThere) {
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = isThere ? request.property : xcb_atom_t{XCB_ATOM_NONE};
    std::array<char, 32> event{};
    std::memcpy(event.data(), &answer, sizeof answer);
    xcb_send_event(connection->get(), false, request.requestor, 0, event.data());
    connection->flush();
}

void SelectionOwner::give(const Request& request, const char* type, const std::string& bytes,
                          std::uint8_t format) {
    put(request, type, bytes, format);
    notify(request);
}

bool SelectionOwner::announcePieces(const Request& request, std::uint32_t size) {
    const std::array<std::uint32_t, 1> events{XCB_EVENT_MASK_PROPERTY_CHANGE |
                                              XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_change_window_attributes(connection->get(), request.requestor, XCB_CW_EVENT_MASK,
                                 events.data());
    std::string bytes(sizeof size, '\0');
    std::memcpy(bytes.data(), &size, sizeof size);
    give(request, "INCR", bytes, 32);
    return waitUntilTaken(request);
}

bool SelectionOwner::givePiece(const Request& request, const std::string& bytes, const char* type) {
    put(request, type, bytes);
    return waitUntilTaken(request);
}

bool SelectionOwner::waitUntilTaken(const Request& request) {
    while (const auto event = next()) {
        const auto type = event->response_type & 0x7F;
        if (type == 0 || type == XCB_DESTROY_NOTIFY) return false;
        if (type != XCB_PROPERTY_NOTIFY) continue;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if (change.window == request.requestor && change.atom == request.property &&
            change.state == XCB_PROPERTY_DELETE)
            return true;
    }
    return false;
}

} // namespace quenthisar::test
