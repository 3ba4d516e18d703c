// SPDX-License-Identifier: MIT
#include "XClient.h"

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <xcb/randr.h>

namespace quenthisar::demo {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

constexpr std::uint32_t returnSymbol = 0xFF0D;

} // namespace

XClient::XClient(const QString& display) {
    int number = 0;
    connection.reset(xcb_connect(display.toLatin1().constData(), &number));
    if (xcb_connection_has_error(get()) != 0)
        throw std::runtime_error("no X server at " + display.toStdString());
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(get()));
    for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
    screen = screens.data;
}

std::optional<XClient::Held> XClient::held() const {
    const auto keysCookie = xcb_query_keymap(get());
    const auto pointerCookie = xcb_query_pointer(get(), root());
    const Reply<xcb_query_keymap_reply_t> keys{xcb_query_keymap_reply(get(), keysCookie, nullptr)};
    const Reply<xcb_query_pointer_reply_t> at{
        xcb_query_pointer_reply(get(), pointerCookie, nullptr)};
    if (!keys || !at) return std::nullopt;
    Held result;
    for (unsigned code = 0; code < 256; ++code)
        if ((keys->keys[code / 8] >> (code % 8) & 1) != 0)
            result.keys += static_cast<std::uint8_t>(code);
    for (int button = 1; button <= 5; ++button)
        if ((at->mask >> (7 + button) & 1) != 0) result.buttons += button;
    return result;
}

std::optional<QPoint> XClient::pointer() const {
    const Reply<xcb_query_pointer_reply_t> reply{
        xcb_query_pointer_reply(get(), xcb_query_pointer(get(), root()), nullptr)};
    if (!reply) return std::nullopt;
    return QPoint{reply->root_x, reply->root_y};
}

std::optional<XClient::Stroke> XClient::find(std::uint32_t keySymbol) const {
    const auto* setup = xcb_get_setup(get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> reply{xcb_get_keyboard_mapping_reply(
        get(), xcb_get_keyboard_mapping(get(), setup->min_keycode, count), nullptr)};
    if (!reply) return std::nullopt;
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    const auto width = reply->keysyms_per_keycode;
    // The lowest key code, be it with Shift: the high ones are keys that most keyboards lack.
    for (int key = 0; key < count; ++key)
        for (int level = 0; level < 2 && level < width; ++level)
            if (symbols[key * width + level] == keySymbol)
                return Stroke{.keyCode = static_cast<std::uint8_t>(setup->min_keycode + key),
                              .shifted = level == 1};
    return std::nullopt;
}

std::optional<XClient::Stroke> XClient::strokeFor(QChar character) const {
    // The symbols of Latin-1 are its code points.
    return find(character == u'\n' ? returnSymbol : character.unicode());
}

std::optional<std::uint8_t> XClient::keyCodeOf(std::uint32_t keySymbol) const {
    const auto stroke = find(keySymbol);
    if (!stroke || stroke->shifted) return std::nullopt;
    return stroke->keyCode;
}

QImage XClient::picture() const {
    const Reply<xcb_get_image_reply_t> reply{xcb_get_image_reply(
        get(),
        xcb_get_image(get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(), 0, 0, screen->width_in_pixels,
                      screen->height_in_pixels, ~std::uint32_t{0}),
        nullptr)};
    constexpr int bytesPerPixel = 4;
    const auto stride = screen->width_in_pixels * bytesPerPixel;
    if (!reply || (reply->depth != 24 && reply->depth != 32) ||
        xcb_get_image_data_length(reply.get()) < stride * screen->height_in_pixels)
        return {};
    return QImage{xcb_get_image_data(reply.get()), screen->width_in_pixels,
                  screen->height_in_pixels, stride, QImage::Format_RGB32}
        .copy();
}

QList<xcb_window_t> XClient::windowsWith(std::string_view property) const {
    const auto name = atom(property);
    const Reply<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(get(), xcb_query_tree(get(), root()), nullptr)};
    QList<xcb_window_t> result;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const auto stateCookie = xcb_get_window_attributes(get(), window);
        const auto valueCookie =
            xcb_get_property(get(), 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
        const Reply<xcb_get_window_attributes_reply_t> state{
            xcb_get_window_attributes_reply(get(), stateCookie, nullptr)};
        const Reply<xcb_get_property_reply_t> value{
            xcb_get_property_reply(get(), valueCookie, nullptr)};
        if (state && state->map_state == XCB_MAP_STATE_VIEWABLE && value &&
            value->type != XCB_ATOM_NONE)
            result += window;
    }
    return result;
}

xcb_atom_t XClient::atom(std::string_view name) const {
    const Reply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        get(), xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

QByteArray XClient::edidOf(std::uint32_t output) const {
    const auto property = atom("EDID");
    if (property == XCB_ATOM_NONE) return {};
    const Reply<xcb_randr_get_output_property_reply_t> reply{xcb_randr_get_output_property_reply(
        get(), xcb_randr_get_output_property(get(), output, property, XCB_ATOM_ANY, 0, 1024, 0, 0),
        nullptr)};
    if (!reply || reply->format != 8) return {};
    return {reinterpret_cast<const char*>(xcb_randr_get_output_property_data(reply.get())),
            xcb_randr_get_output_property_data_length(reply.get())};
}

QList<XClient::Monitor> XClient::monitors() const {
    const Reply<xcb_randr_get_monitors_reply_t> reply{
        xcb_randr_get_monitors_reply(get(), xcb_randr_get_monitors(get(), root(), 1), nullptr)};
    QList<Monitor> result;
    if (!reply) return result;
    for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each)) {
        const auto& info = *each.data;
        const Reply<xcb_get_atom_name_reply_t> name{
            xcb_get_atom_name_reply(get(), xcb_get_atom_name(get(), info.name), nullptr)};
        Monitor monitor{.name = {},
                        .frame = QRect{info.x, info.y, info.width, info.height},
                        .isPrimary = info.primary != 0,
                        .edid = {}};
        if (name)
            monitor.name = QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                                             xcb_get_atom_name_name_length(name.get()));
        if (xcb_randr_monitor_info_outputs_length(each.data) > 0)
            monitor.edid = edidOf(*xcb_randr_monitor_info_outputs(each.data));
        result += monitor;
    }
    return result;
}

void XClient::switchOffAcceleration() const {
    xcb_change_pointer_control(get(), 1, 1, 0, 1, 1);
    xcb_flush(get());
}

} // namespace quenthisar::demo
