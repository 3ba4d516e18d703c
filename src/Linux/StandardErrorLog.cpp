// SPDX-License-Identifier: MIT
#include "Linux/StandardErrorLog.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace quenthisar {

void StandardErrorLog::log(std::string_view line) {
    std::string text{line};
    // What a daemon or a file's name puts into it must not pass for a line of its own.
    std::ranges::replace_if(
        text, [](char c) { return '\0' <= c && c < ' '; }, ' ');
    text += '\n';
    // One call, so that lines of several processes don't mix.
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace quenthisar
