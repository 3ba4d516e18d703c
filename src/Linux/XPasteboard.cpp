// SPDX-License-Identifier: MIT
#include "Linux/XPasteboard.h"

#include "Linux/PastedText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <poll.h>
#include <xcb/xcbext.h>

namespace quenthisar {

namespace {

using Clock = std::chrono::steady_clock;
using Progress = PastedText::Progress;

constexpr std::chrono::milliseconds timeLimit{500};
constexpr std::size_t longestText = std::size_t{16} << 20;

/// A connection whose server is waited for until a deadline, and no longer.
class Patience {
public:
    Patience(const XConnection& server, Clock::time_point until)
        : connection(server), deadline(until) {}

    bool isLate() const { return Clock::now() >= deadline; }

    /// Until the server sends something. False when it is too late, or the server is lost.
    bool wait() const {
        connection.flush();
        if (xcb_connection_has_error(connection.get()) != 0 || isLate()) return false;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd socket{xcb_get_file_descriptor(connection.get()), POLLIN, 0};
        ::poll(&socket, 1, std::max(0, static_cast<int>(left.count())));
        return true;
    }

    /// The reply to a request; null if it fails, or it is too late.
    template <class Reply>
    XOwned<Reply> reply(unsigned sequence) const {
        void* memory = nullptr;
        xcb_generic_error_t* failure = nullptr;
        while (xcb_poll_for_reply(connection.get(), sequence, &memory, &failure) == 0) {
            if (wait()) continue;
            xcb_discard_reply(connection.get(), sequence);
            return nullptr;
        }
        std::free(failure);
        return XOwned<Reply>{static_cast<Reply*>(memory)};
    }

private:
    const XConnection& connection;
    const Clock::time_point deadline;
};

/// The selection asked for in one form, with a window of its own: what an owner says too late, or
/// goes on saying, reaches nobody. Every wait ends at the deadline.
class SelectionRequest {
public:
    SelectionRequest(const XConnection& server, const XPasteboard::Atoms& names,
                     const Patience& waiting)
        : connection(server), atoms(names), patience(waiting) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection.get(), 0, window, connection.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
    }
    SelectionRequest(const SelectionRequest&) = delete;
    SelectionRequest& operator=(const SelectionRequest&) = delete;
    ~SelectionRequest() {
        xcb_destroy_window(connection.get(), window);
        connection.flush();
    }

    /// None if the owner has none in this form, or if it is too late.
    std::optional<std::string> text(xcb_atom_t target) {
        xcb_convert_selection(connection.get(), window, atoms.clipboard, target, atoms.property,
                              XCB_CURRENT_TIME);
        if (!isAnswered(target)) return std::nullopt;
        PastedText text(longestText);
        auto progress = take(text);
        while (progress == Progress::more && nextIsThere()) progress = take(text);
        if (progress != Progress::complete) return std::nullopt;
        return std::move(text).text();
    }

private:
    bool isAnswered(xcb_atom_t target) {
        while (const auto event = next(XCB_SELECTION_NOTIFY)) {
            const auto& answer = reinterpret_cast<const xcb_selection_notify_event_t&>(*event);
            if (answer.requestor == window && answer.selection == atoms.clipboard &&
                answer.target == target)
                return answer.property == atoms.property;
        }
        return false;
    }

    /// Waits until the owner has put the next piece; false when it is too late.
    bool nextIsThere() {
        while (const auto event = next(XCB_PROPERTY_NOTIFY)) {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
            if (change.window == window && change.atom == atoms.property &&
                change.state == XCB_PROPERTY_NEW_VALUE)
                return true;
        }
        return false;
    }

    /// Hands on the property, at most about as much of it as `text` has room for. When that is all,
    /// it is deleted, which has the owner put the next piece.
    Progress take(PastedText& text) {
        const auto words = static_cast<std::uint32_t>((text.room() + 3) / 4);
        const auto cookie = xcb_get_property(connection.get(), true, window, atoms.property,
                                             XCB_GET_PROPERTY_TYPE_ANY, 0, words);
        const auto reply = patience.reply<xcb_get_property_reply_t>(cookie.sequence);
        if (!reply) return Progress::refused; // it is too late
        return text.take(
            {.type = typeOf(reply->type),
             .format = reply->format,
             .bytes = {static_cast<const char*>(xcb_get_property_value(reply.get())),
                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))},
             .isAll = reply->bytes_after == 0});
    }

    PastedText::Type typeOf(xcb_atom_t atom) const {
        if (atom == XCB_ATOM_NONE) return PastedText::Type::none;
        if (atom == atoms.incr) return PastedText::Type::pieces;
        if (atom == XCB_ATOM_STRING) return PastedText::Type::latin1;
        const bool isUtf8 = atom == atoms.utf8String || atom == atoms.utf8Plain;
        return isUtf8 ? PastedText::Type::utf8 : PastedText::Type::other;
    }

    /// The next event of a kind; null when it is too late. All others are of no interest.
    XOwned<xcb_generic_event_t> next(int type) {
        do {
            while (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())}) {
                if ((event->response_type & 0x7F) == type) return event;
                if (patience.isLate()) return nullptr;
            }
        } while (patience.wait());
        return nullptr;
    }

    const XConnection& connection;
    const XPasteboard::Atoms& atoms;
    const xcb_window_t window = xcb_generate_id(connection.get());
    const Patience& patience;
};

/// True when the toolkit has the selection. The server is asked: the toolkit overlooks its loss
/// when it had it for less than a millisecond.
bool isOwn(const XConnection& connection, xcb_atom_t selection, const Patience& patience) {
    const auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Other platforms may have such an interface, but no clipboard there.
    if (!toolkit || QGuiApplication::platformName() != u"xcb")
        return QGuiApplication::clipboard()->ownsClipboard();
    const auto cookie = xcb_get_selection_owner(connection.get(), selection);
    const auto reply = patience.reply<xcb_get_selection_owner_reply_t>(cookie.sequence);
    const auto* setup = xcb_get_setup(toolkit->connection());
    return reply && (reply->owner & ~setup->resource_id_mask) == setup->resource_id_base;
}

std::optional<std::string> ownText() {
    const auto* data = QGuiApplication::clipboard()->mimeData();
    if (!data || !data->hasText()) return std::nullopt;
    auto text = data->text().toStdString();
    if (text.size() > longestText) text.resize(longestText);
    return text;
}

} // namespace

void XPasteboard::open() {
    connection = XConnection::open();
    if (!connection) return;
    // Together: one round trip.
    const auto ask = [this](std::string_view name) {
        return xcb_intern_atom(connection->get(), false, static_cast<std::uint16_t>(name.size()),
                               name.data());
    };
    const std::array cookies{ask("CLIPBOARD"), ask("UTF8_STRING"), ask("text/plain;charset=utf-8"),
                             ask("INCR"), ask("QUENTHISAR_PASTEBOARD")};
    const std::array names{&atoms.clipboard, &atoms.utf8String, &atoms.utf8Plain, &atoms.incr,
                           &atoms.property};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const XOwned<xcb_intern_atom_reply_t> reply{
            xcb_intern_atom_reply(connection->get(), cookies.at(i), nullptr)};
        *names.at(i) = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
}

std::optional<std::string> XPasteboard::string() {
    if (!connection || connection->isLost()) open();
    if (!connection) return std::nullopt;
    const Patience patience(*connection, Clock::now() + timeLimit);
    // Nobody but this loop could answer for ours.
    if (isOwn(*connection, atoms.clipboard, patience)) return ownText();
    for (const auto target : {atoms.utf8String, atoms.utf8Plain, xcb_atom_t{XCB_ATOM_STRING}}) {
        if (auto text = SelectionRequest(*connection, atoms, patience).text(target)) return text;
        if (patience.isLate()) break;
    }
    return std::nullopt;
}

} // namespace quenthisar
