// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XInputSession.h"
#include "Platform/Cursor.h"

namespace quenthisar {

/// The cursor of an X session. Freezing it also takes all input from the other clients.
class XCursor final : public Cursor {
public:
    explicit XCursor(XInputSession& input) : session(input) {}

    void associateMouseAndMouseCursorPosition(bool connected) override {
        session.setFrozen(!connected);
    }
    void displayHideCursor() override { session.setHidden(true); }
    void displayShowCursor() override { session.setHidden(false); }

private:
    XInputSession& session;
};

} // namespace quenthisar
