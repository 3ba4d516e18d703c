// SPDX-License-Identifier: MIT
#include "SelectionOwner.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <sys/socket.h>
#include <utility>

namespace quenthisar::demo {

void SelectionOwner::Free::operator()(void* memory) const {
    std::free(memory);
}

SelectionOwner::SelectionOwner(Script answers, const QString& display)
    : client(display), script(std::move(answers)) {
    auto* c = client.get();
    const auto window = xcb_generate_id(c);
    xcb_create_window(c, 0, window, client.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, client.atom("CLIPBOARD"), XCB_CURRENT_TIME);
    static_cast<void>(client.pointer()); // the server has come to it
    thread = std::thread([this] { run(); });
}

SelectionOwner::SelectionOwner(const QString& text, const QString& display)
    : SelectionOwner(
          [bytes = text.toStdString()](auto& self, const auto& request) {
              if (self.isFor(request, "UTF8_STRING"))
                  self.give(request, "UTF8_STRING", bytes);
              else
                  self.notify(request, false);
          },
          display) {}

SelectionOwner::~SelectionOwner() {
    die();
    thread.join();
}

void SelectionOwner::die() {
    ::shutdown(xcb_get_file_descriptor(client.get()), SHUT_RDWR);
}

void SelectionOwner::run() {
    while (const auto event = next())
        if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST)
            script(*this, reinterpret_cast<const Request&>(*event));
}

std::unique_ptr<xcb_generic_event_t, SelectionOwner::Free> SelectionOwner::next() {
    xcb_flush(client.get());
    return std::unique_ptr<xcb_generic_event_t, Free>{xcb_wait_for_event(client.get())};
}

bool SelectionOwner::isFor(const Request& request, const char* target) {
    return request.target == client.atom(target);
}

void SelectionOwner::put(const Request& request, const char* type, const std::string& bytes,
                         std::uint8_t format) {
    constexpr std::size_t step = 4 << 20; // what fits into a request
    auto mode = XCB_PROP_MODE_REPLACE;
    for (std::size_t at = 0; at == 0 || at < bytes.size(); at += step) {
        const auto part = std::string_view{bytes}.substr(at, step);
        xcb_change_property(client.get(), static_cast<std::uint8_t>(mode), request.requestor,
                            request.property, client.atom(type), format,
                            static_cast<std::uint32_t>(part.size() / (format / 8U)), part.data());
        mode = XCB_PROP_MODE_APPEND;
    }
    xcb_flush(client.get());
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
    xcb_send_event(client.get(), false, request.requestor, 0, event.data());
    xcb_flush(client.get());
}

void SelectionOwner::give(const Request& request, const char* type, const std::string& bytes,
                          std::uint8_t format) {
    put(request, type, bytes, format);
    notify(request);
}

bool SelectionOwner::announcePieces(const Request& request, std::uint32_t size) {
    const std::array<std::uint32_t, 1> events{XCB_EVENT_MASK_PROPERTY_CHANGE |
                                              XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_change_window_attributes(client.get(), request.requestor, XCB_CW_EVENT_MASK, events.data());
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

} // namespace quenthisar::demo
