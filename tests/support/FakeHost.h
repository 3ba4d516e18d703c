// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AccessibilityTrust.h"
#include "Platform/LoginItemService.h"
#include "Platform/ProcessLauncher.h"
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

/// A login item that registers at once, or fails.
class FakeLoginItemService final : public LoginItemService {
public:
    LoginItemStatus status() override { return current; }
    std::optional<std::string> registerItem() override { return change(LoginItemStatus::enabled); }
    std::optional<std::string> unregisterItem() override {
        return change(LoginItemStatus::notRegistered);
    }

    LoginItemStatus current = LoginItemStatus::notRegistered;
    std::optional<std::string> error;

private:
    std::optional<std::string> change(LoginItemStatus next) {
        if (!error) current = next;
        return error;
    }
};

/// Starts nothing.
class FakeProcessLauncher final : public ProcessLauncher {
public:
    void launch(ProcessDescription /*process*/) override {}
};

class FakeSystemLog final : public SystemLog {
public:
    void log(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace quenthisar
