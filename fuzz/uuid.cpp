// SPDX-License-Identifier: MIT
// Identifiers, as they stand in settings and come from the Bluetooth daemon.
#include "Support/Uuid.h"

#include "Target.h"

#include <algorithm>

namespace quenthisar {

void fuzz::run(Bytes input) {
    const auto text = textOf(input);
    if (const auto id = Uuid::parse(text)) {
        const auto upper = [](char c) { return 'a' <= c && c <= 'f' ? char(c - 'a' + 'A') : c; };
        require(std::ranges::equal(id->text(), text, {}, {}, upper), "reads what is not there");
        require(Uuid::parse(id->text()) == id, "does not read its own text");
    }
    Uuid raw;
    std::ranges::copy(input.first(std::min(input.size(), raw.bytes.size())), raw.bytes.begin());
    require(Uuid::parse(raw.text()) == raw, "does not read the text of some bytes");
}

} // namespace quenthisar
