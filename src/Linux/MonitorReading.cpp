// SPDX-License-Identifier: MIT
#include "Linux/Monitor.h"

#include <xcb/randr.h>

namespace quenthisar {

namespace {

/// 32 KiB, in units of 4 bytes; real ones have up to 8 blocks of 128 bytes.
constexpr std::uint32_t edidLimit = 8192;

std::string nameOf(const XConnection& connection, xcb_atom_t atom) {
    const XOwned<xcb_get_atom_name_reply_t> reply{xcb_get_atom_name_reply(
        connection.get(), xcb_get_atom_name(connection.get(), atom), nullptr)};
    if (!reply) return {};
    const auto length = static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()));
    return {xcb_get_atom_name_name(reply.get()), length};
}

QByteArray edidOf(const XConnection& connection, xcb_randr_output_t output, xcb_atom_t property) {
    if (property == XCB_ATOM_NONE) return {};
    const auto cookie = xcb_randr_get_output_property(connection.get(), output, property,
                                                      XCB_ATOM_ANY, 0, edidLimit, false, false);
    const XOwned<xcb_randr_get_output_property_reply_t> reply{
        xcb_randr_get_output_property_reply(connection.get(), cookie, nullptr)};
    if (!reply || reply->format != 8) return {};
    return {reinterpret_cast<const char*>(xcb_randr_get_output_property_data(reply.get())),
            xcb_randr_get_output_property_data_length(reply.get())};
}

} // namespace

std::vector<Monitor> readMonitors(const XConnection& connection) {
    const auto cookie = xcb_randr_get_monitors(connection.get(), connection.root(), true);
    const XOwned<xcb_randr_get_monitors_reply_t> reply{
        xcb_randr_get_monitors_reply(connection.get(), cookie, nullptr)};
    if (!reply) return {};
    const auto edidProperty = connection.atom("EDID");

    std::vector<Monitor> result;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const auto& info = *it.data;
        const auto* outputs = xcb_randr_monitor_info_outputs(&info);
        const bool hasOutput = xcb_randr_monitor_info_outputs_length(&info) > 0;
        result.push_back({
            .number = hasOutput ? outputs[0] : info.name,
            .name = nameOf(connection, info.name),
            .frame = {double(info.x), double(info.y), double(info.width), double(info.height)},
            .isPrimary = info.primary != 0,
            .edid = hasOutput ? edidOf(connection, outputs[0], edidProperty) : QByteArray{},
        });
    }
    return result;
}

} // namespace quenthisar
