// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"

#include <functional>
#include <memory>

namespace quenthisar {

class AppState;

/// How the configuration window reaches the managers. Main thread.
struct ConfigActions {
    std::function<void(const Uuid&)> connect;
    std::function<void(const Uuid&)> disconnect;
    std::function<void(const Uuid&)> identify;
    std::function<void(bool)> toggleCapture;
    std::function<void()> promptAX;
};

/// What the configuration window shows. `state` outlives the window.
struct ConfigView {
    AppState& state;
    ConfigActions actions;
};

/// The configuration window. Closing hides it.
class ConfigWindow {
public:
    virtual ~ConfigWindow() = default;

    /// Shows it, also from its minimised form, above the others and with the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
};

/// Makes the window. Main thread.
class ConfigWindows {
public:
    virtual ~ConfigWindows() = default;

    /// Centred, and not on screen yet.
    virtual std::unique_ptr<ConfigWindow> create(const ConfigView& view) = 0;
};

} // namespace quenthisar
