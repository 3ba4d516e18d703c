// SPDX-License-Identifier: MIT
#pragma once

#include "InputSink.h"

#include <QSocketNotifier>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace quenthisar::dongle {

/// An X server whose keys are pressed and whose pointer is moved through XTest. Input may come from
/// any one thread at a time, the rest from the main thread.
class XTestTarget final : public InputSink {
public:
    /// `display` such as ":1". `lost` is called once when the server goes away later, on the thread
    /// that finds out.
    XTestTarget(const std::string& display, std::function<void()> lost);
    ~XTestTarget() override;
    XTestTarget(const XTestTarget&) = delete;
    XTestTarget& operator=(const XTestTarget&) = delete;

    /// False if there is no such server, it lacks XTest, or it was lost.
    bool isUsable() const { return root != XCB_NONE; }
    /// Returns when the server has handled everything.
    void sync();

    void key(std::uint8_t code, bool down) override;
    void button(std::uint8_t number, bool down) override;
    void move(int dx, int dy) override;
    void flush() override;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    void takeSocket();
    void giveSocketBack();
    void drain();
    void checkConnection();

    std::unique_ptr<xcb_connection_t, Disconnect> connection;
    std::atomic<xcb_window_t> root = XCB_NONE;       // none once it is lost
    std::uint8_t opcode = 0;                         // of XTest
    std::vector<xcb_test_fake_input_request_t> made; // since the last flush
    bool ownsSocket = false;                         // to write to; xcb has it otherwise
    std::uint64_t untold = 0;                        // requests that xcb does not know of
    std::function<void()> onLost;
    std::unique_ptr<QSocketNotifier> readable;
};

} // namespace quenthisar::dongle
