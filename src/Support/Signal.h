// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Subscription.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quenthisar {

/// A list of subscribers, called in the order in which they subscribed. Subscribers may subscribe
/// and unsubscribe while they are called: who comes during a call is not part of it, who goes is
/// not called any more.
template <class... Arguments>
class Signal {
public:
    using Subscriber = std::function<void(const Arguments&...)>;

    Subscription subscribe(Subscriber subscriber) {
        auto entry = std::make_shared<Subscriber>(std::move(subscriber));
        entries->push_back(entry);
        return Subscription([weak = std::weak_ptr<Entries>(entries), entry] {
            *entry = nullptr;
            if (const auto list = weak.lock()) std::erase(*list, entry);
        });
    }

    void operator()(const Arguments&... arguments) const {
        if (entries->empty()) return;
        const Entries current = *entries;
        for (const auto& entry : current) {
            // A copy: the subscriber may end its own subscription while it runs.
            const Subscriber subscriber = *entry;
            if (subscriber) subscriber(arguments...);
        }
    }

private:
    using Entries = std::vector<std::shared_ptr<Subscriber>>;
    std::shared_ptr<Entries> entries = std::make_shared<Entries>();
};

} // namespace quenthisar
