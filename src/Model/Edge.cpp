// SPDX-License-Identifier: MIT
#include "Model/Edge.h"

namespace quenthisar {

std::string bindingKey(Edge edge, std::string_view screenUUID) {
    std::string key{rawText(edge)};
    key += '|';
    key += screenUUID;
    return key;
}

} // namespace quenthisar
