// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace quenthisar {

/// Lets callbacks that outlive their owner do nothing once it is gone. Declared as the owner's last
/// member, so that it goes first. Not thread-safe: bind, run and destroy on one thread.
class WeakGuard {
public:
    WeakGuard() = default;
    WeakGuard(const WeakGuard&) = delete;
    WeakGuard& operator=(const WeakGuard&) = delete;

    /// `action`, as long as this guard lives.
    template <class Action>
    auto bind(Action action) const {
        return [weak = std::weak_ptr<const Token>(token),
                action = std::move(action)](auto&&... arguments) mutable {
            if (!weak.expired()) action(std::forward<decltype(arguments)>(arguments)...);
        };
    }

private:
    struct Token {};
    std::shared_ptr<const Token> token = std::make_shared<const Token>();
};

} // namespace quenthisar
