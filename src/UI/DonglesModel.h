// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "UI/Binding.h"
#include "UI/ConfigView.h"

#include <string>

namespace quenthisar {

/// What the dongles' tab shows and changes. Main thread.
struct DonglesModel {
    AppState& state;
    ConfigActions actions;

    /// What the slider of the speed spans.
    static constexpr double slowest = 0.25, fastest = 3.0;

    /// Whether capture runs. A change only asks for it, and may be refused.
    Binding<bool> capture() const;

    bool isLocal() const;
    std::string activeText() const;
    std::string bluetoothText() const;

    /// Empty where there is none.
    Binding<std::string> nickname(const Uuid& id) const;
    /// What stands in the nickname's field while that is empty.
    std::string placeholder(const Uuid& id) const;

    /// 1.0 where none is stored; what is stored may lie outside of the slider.
    Binding<double> sensitivity(const Uuid& id) const;
    static std::string speedText(double sensitivity);
};

} // namespace quenthisar
