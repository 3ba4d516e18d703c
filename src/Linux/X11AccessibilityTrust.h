// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AccessibilityTrust.h"

#include <QMessageBox>
#include <QPointer>

namespace quenthisar {

/// An X11 session with XInput 2.2 lets its clients tap the input; a Wayland session does not, and
/// the X server inside it covers X windows only.
class X11AccessibilityTrust final : public AccessibilityTrust {
public:
    ~X11AccessibilityTrust() override;

    bool isProcessTrusted() override;
    /// One dialog however often this is called; it does not block.
    void prompt() override;

private:
    bool serverSuffices = false; // once it does, it does for good
    QPointer<QMessageBox> dialog;
};

} // namespace quenthisar
