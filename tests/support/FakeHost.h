// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AccessibilityTrust.h"
#include "Platform/LoginItemService.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SystemLog.h"

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

class FakeAccessibilityTrust final : public AccessibilityTrust {
public:
    bool isProcessTrusted() override {
        if (answers.empty()) return trusted;
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
    void prompt() override {
        ++prompts;
        if (onPrompt) onPrompt();
    }

    bool trusted = true;
    std::deque<bool> answers; // before that
    int prompts = 0;
    std::function<void()> onPrompt;
};

/// A login item that registers at once, or fails, or awaits the user's approval.
class FakeLoginItemService final : public LoginItemService {
public:
    LoginItemStatus status() override { return current; }
    std::optional<std::string> registerItem() override {
        return change("register", afterRegistering);
    }
    std::optional<std::string> unregisterItem() override {
        return change("unregister", LoginItemStatus::notRegistered);
    }

    LoginItemStatus current = LoginItemStatus::notRegistered;
    LoginItemStatus afterRegistering = LoginItemStatus::enabled;
    std::optional<std::string> error;
    std::vector<std::string> calls;

private:
    std::optional<std::string> change(const char* call, LoginItemStatus next) {
        calls.emplace_back(call);
        if (!error) current = next;
        return error;
    }
};

class FakeProcessLauncher final : public ProcessLauncher {
public:
    void launch(ProcessDescription process) override {
        launched.push_back(std::move(process));
        if (onLaunch) onLaunch();
    }

    std::vector<ProcessDescription> launched;
    std::function<void()> onLaunch;
};

class FakeSystemLog final : public SystemLog {
public:
    void log(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace quenthisar
