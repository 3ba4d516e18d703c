// SPDX-License-Identifier: MIT
#include "ConfigurationWindow.h"

#include "Recorder.h"

#include <cstdlib>
#include <memory>
#include <string_view>

namespace quenthisar::demo {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

constexpr std::string_view title = "Quenthisar";
constexpr std::uint32_t longestTitle = 64; // in words

bool isViewable(const XClient& client, xcb_window_t window) {
    auto* c = client.get();
    const Reply<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr)};
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool isTitled(const XClient& client, xcb_window_t window) {
    auto* c = client.get();
    const Reply<xcb_get_property_reply_t> name{xcb_get_property_reply(
        c,
        xcb_get_property(c, 0, window, client.atom("_NET_WM_NAME"), XCB_ATOM_ANY, 0, longestTitle),
        nullptr)};
    return name &&
           title == std::string_view{
                        static_cast<const char*>(xcb_get_property_value(name.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(name.get()))};
}

/// A window manager may have put it into a frame of its own.
xcb_window_t find(const XClient& client, xcb_window_t below) {
    auto* c = client.get();
    const Reply<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(c, xcb_query_tree(c, below), nullptr)};
    if (!tree) return XCB_NONE;
    const auto* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        if (isTitled(client, children[i]) && isViewable(client, children[i])) return children[i];
        if (const auto found = find(client, children[i]); found != XCB_NONE) return found;
    }
    return XCB_NONE;
}

} // namespace

xcb_window_t configurationWindow(const XClient& client) {
    return find(client, client.root());
}

void askToClose(const XClient& client, xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = client.atom("WM_PROTOCOLS");
    message.data.data32[0] = client.atom("WM_DELETE_WINDOW");
    xcb_send_event(client.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(client.get());
}

xcb_window_t focusedWindow(const XClient& client) {
    const Reply<xcb_get_input_focus_reply_t> focus{
        xcb_get_input_focus_reply(client.get(), xcb_get_input_focus(client.get()), nullptr)};
    return focus ? focus->focus : xcb_window_t{XCB_NONE};
}

bool closeConfigurationWindow(const XClient& client, xcb_window_t focus,
                              std::chrono::milliseconds limit) {
    xcb_window_t window = XCB_NONE;
    const auto isOpen = [&] {
        window = configurationWindow(client);
        return window != XCB_NONE;
    };
    if (!waitUntil(isOpen, limit)) return false;
    askToClose(client, window);
    if (!waitUntil([&] { return !isViewable(client, window); }, limit)) return false;
    xcb_set_input_focus(client.get(), XCB_INPUT_FOCUS_PARENT, focus, XCB_CURRENT_TIME);
    return waitUntil([&] { return focusedWindow(client) == focus; }, limit);
}

} // namespace quenthisar::demo
