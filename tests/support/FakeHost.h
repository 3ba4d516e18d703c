// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AccessibilityTrust.h"
#include "Platform/SystemLog.h"

#include <string>
#include <vector>

namespace quenthisar {

class FakeAccessibilityTrust final : public AccessibilityTrust {
public:
    bool isProcessTrusted() override { return trusted; }
    void prompt() override { ++prompts; }

    bool trusted = true;
    int prompts = 0;
};

class FakeSystemLog final : public SystemLog {
public:
    void log(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace quenthisar
