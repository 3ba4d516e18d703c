// SPDX-License-Identifier: MIT
#pragma once

namespace quenthisar {

/// The host's cursor. Main thread.
class Cursor {
public:
    virtual ~Cursor() = default;

    /// False freezes the cursor where it is, while motion goes on arriving at the tap as deltas;
    /// true lets it follow the mouse again, from where it was frozen.
    virtual void associateMouseAndMouseCursorPosition(bool connected) = 0;

    virtual void displayHideCursor() = 0;
    virtual void displayShowCursor() = 0;
};

} // namespace quenthisar
