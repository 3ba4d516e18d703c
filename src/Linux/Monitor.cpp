// SPDX-License-Identifier: MIT
#include "Linux/Monitor.h"

#include "Linux/NameSpace.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace quenthisar {

namespace {

// A base block holds four descriptors of 18 bytes; a text is marked 0, 0, 0, kind, 0 and stands in
// the last 13, ended by a line feed.
constexpr qsizetype firstDescriptor = 54, descriptorSize = 18, descriptors = 4, textOffset = 5;
constexpr char modelName = '\xFC';

} // namespace

void putPrimaryFirst(std::vector<Monitor>& monitors) {
    auto primary = std::ranges::find(monitors, true, &Monitor::isPrimary);
    if (primary == monitors.end())
        primary = std::ranges::min_element(
            monitors, {}, [](const Monitor& m) { return std::tuple(m.frame.y, m.frame.x); });
    if (primary != monitors.end()) std::rotate(monitors.begin(), primary, primary + 1);
}

std::string displayName(const Monitor& monitor) {
    for (qsizetype number = 0; number < descriptors; ++number) {
        const auto descriptor =
            monitor.edid.mid(firstDescriptor + number * descriptorSize, descriptorSize);
        if (descriptor.size() < descriptorSize) break;
        if (!descriptor.startsWith(QByteArray(3, '\0')) || descriptor[3] != modelName) continue;
        auto text = descriptor.mid(textOffset);
        if (const auto end = text.indexOf('\n'); end >= 0) text.truncate(end);
        text = text.trimmed();
        const auto isPrintable = [](char c) { return ' ' <= c && c <= '~'; };
        if (!text.isEmpty() && std::ranges::all_of(text, isPrintable)) return text.toStdString();
    }
    return monitor.name;
}

Uuid displayIdentifier(const Monitor& monitor, const std::vector<Monitor>& monitors) {
    auto identity = monitor.edid;
    if (identity.isEmpty() || std::ranges::count(monitors, identity, &Monitor::edid) > 1)
        identity += QByteArray::fromStdString(monitor.name);
    return version5(identity);
}

} // namespace quenthisar
