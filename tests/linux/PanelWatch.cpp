// SPDX-License-Identifier: MIT
#include "linux/PanelWatch.h"

#include <xcb/shape.h>

#include <algorithm>

namespace quenthisar::test {

namespace {

void select(xcb_connection_t* c, xcb_window_t window, std::uint32_t events) {
    xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(c);
}

} // namespace

PanelWatch::PanelWatch(const demo::XClient& client)
    : x(client), c(client.get()), opacity(client.atom("_NET_WM_WINDOW_OPACITY")) {
    select(c, x.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

std::vector<xcb_window_t> PanelWatch::children() const {
    const Owned<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(c, xcb_query_tree(c, x.root()), nullptr)};
    if (!tree) return {};
    const auto* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::vector<xcb_window_t> PanelWatch::panels() const {
    auto found = children();
    std::erase_if(found, [&](xcb_window_t window) {
        const Owned<xcb_get_window_attributes_reply_t> attributes{
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr)};
        return !attributes || !attributes->override_redirect ||
               attributes->map_state != XCB_MAP_STATE_VIEWABLE || !opacityOf(window);
    });
    return found;
}

QRect PanelWatch::frame(xcb_window_t window) const {
    const Owned<xcb_get_geometry_reply_t> reply{
        xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr)};
    return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
}

bool PanelWatch::takesInput(xcb_window_t window) const {
    const Owned<xcb_shape_get_rectangles_reply_t> reply{xcb_shape_get_rectangles_reply(
        c, xcb_shape_get_rectangles(c, window, XCB_SHAPE_SK_INPUT), nullptr)};
    return !reply || xcb_shape_get_rectangles_rectangles_length(reply.get()) > 0;
}

bool PanelWatch::isAbove(xcb_window_t panel, xcb_window_t client) const {
    const auto all = children();
    // The frame is the ancestor that is a child of the root window.
    for (auto window = client; window != XCB_WINDOW_NONE;) {
        if (const auto frame = std::ranges::find(all, window); frame != all.end())
            return std::find(frame, all.end(), panel) != all.end();
        const Owned<xcb_query_tree_reply_t> tree{
            xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr)};
        window = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
    }
    return false;
}

const std::map<xcb_window_t, PanelWatch::Fades>& PanelWatch::fades() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(c)}) {
        switch (event->response_type & 0x7F) {
        case XCB_CREATE_NOTIFY: {
            const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(*event);
            if (!created.override_redirect) break;
            select(c, created.window, XCB_EVENT_MASK_PROPERTY_CHANGE);
            // What changed before that is not told.
            if (const auto value = opacityOf(created.window))
                seen[created.window].in.insert(*value);
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
            const auto value = changed.atom == opacity ? opacityOf(changed.window) : std::nullopt;
            if (!value) break;
            auto& fade = seen[changed.window];
            (fade.isOpaque() ? fade.out : fade.in).insert(*value);
            break;
        }
        case XCB_UNMAP_NOTIFY: {
            const auto& gone = reinterpret_cast<const xcb_unmap_notify_event_t&>(*event);
            if (const auto fade = seen.find(gone.window); fade != seen.end())
                fade->second.isOver = true;
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            // The toolkit may make a window anew before it shows it.
            const auto& gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(*event);
            std::erase_if(seen, [&](const auto& each) {
                return each.first == gone.window && !each.second.isOver;
            });
            break;
        }
        default: break;
        }
    }
    return seen;
}

std::optional<std::uint32_t> PanelWatch::opacityOf(xcb_window_t window) const {
    const Owned<xcb_get_property_reply_t> reply{xcb_get_property_reply(
        c, xcb_get_property(c, false, window, opacity, XCB_ATOM_CARDINAL, 0, 1), nullptr)};
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t))
        return std::nullopt;
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

} // namespace quenthisar::test
