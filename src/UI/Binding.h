// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace quenthisar {

/// A value that a control shows and changes. What the two refer to must outlive the control.
template <class Value>
struct Binding {
    std::function<Value()> get;
    std::function<void(Value)> set;
};

} // namespace quenthisar
