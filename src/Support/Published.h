// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Signal.h"

#include <functional>
#include <utility>

namespace quenthisar {

/// A field that tells its observers of every assignment, repeats included. Main thread only.
///
/// An assignment raises the store-wide signal, hands the new value to the field's subscribers, and
/// only then changes the field: who reads it meanwhile finds the previous value. `didSet` comes
/// last.
template <class Value>
class Published {
public:
    using DidSet = std::function<void(const Value&)>;

    Published(const Signal<>& willChange, Value initial, DidSet didSet = {})
        : storeWillChange(willChange), value(std::move(initial)), didSet(std::move(didSet)) {}
    Published(const Published&) = delete;

    Published& operator=(const Published&) = delete;
    Published& operator=(Value next) {
        storeWillChange();
        stream(next);
        value = std::move(next);
        if (didSet) didSet(value);
        return *this;
    }

    /// Changes the value in place, which is one assignment.
    template <class Change>
    void modify(Change change) {
        Value next = value;
        change(next);
        *this = std::move(next);
    }

    const Value& operator*() const { return value; }
    const Value* operator->() const { return &value; }

    /// Calls `subscriber` at once with the current value, then with each one that is assigned.
    Subscription subscribe(std::function<void(const Value&)> subscriber) {
        subscriber(value);
        return stream.subscribe(std::move(subscriber));
    }

private:
    const Signal<>& storeWillChange;
    Signal<Value> stream;
    Value value;
    DidSet didSet;
};

} // namespace quenthisar
