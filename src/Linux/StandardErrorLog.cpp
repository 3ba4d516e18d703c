// SPDX-License-Identifier: MIT
#include "Linux/StandardErrorLog.h"

#include <cstdio>
#include <string>

namespace quenthisar {

void StandardErrorLog::log(std::string_view line) {
    std::string text{line};
    text += '\n';
    // One call, so that lines of several processes don't mix.
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace quenthisar
