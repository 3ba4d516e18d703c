// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>

namespace quenthisar {

/// Keeps one subscriber subscribed; its destruction ends the subscription. May outlive the signal.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancelAction(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept
        : cancelAction(std::exchange(other.cancelAction, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        std::swap(cancelAction, other.cancelAction);
        return *this;
    }
    ~Subscription() {
        if (cancelAction) cancelAction();
    }

private:
    std::function<void()> cancelAction;
};

} // namespace quenthisar
