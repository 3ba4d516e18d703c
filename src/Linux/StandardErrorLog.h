// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

namespace quenthisar {

/// Standard error, which the desktop's journal keeps.
class StandardErrorLog final : public SystemLog {
public:
    void log(std::string_view line) override;
};

} // namespace quenthisar
