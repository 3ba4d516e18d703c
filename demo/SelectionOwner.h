// SPDX-License-Identifier: MIT
#pragma once

#include "XClient.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace quenthisar::demo {

/// A program that holds the CLIPBOARD selection and answers as its script says. The script
/// runs on a thread of the owner's; it has ended when the owner is gone.
class SelectionOwner {
public:
    using Request = xcb_selection_request_event_t;
    using Script = std::function<void(SelectionOwner&, const Request&)>;

    /// It holds the selection when this returns. Throws std::runtime_error if there is no such
    /// server.
    explicit SelectionOwner(Script script,
                            const QString& display = qEnvironmentVariable("DISPLAY"));
    /// One with a text that it hands over at once.
    SelectionOwner(const QString& text, const QString& display);
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner&) = delete;
    SelectionOwner& operator=(const SelectionOwner&) = delete;

    // For the script.

    /// Puts the property that was asked for; `bytes` in units of `format` bits.
    void put(const Request& request, const char* type, const std::string& bytes,
             std::uint8_t format = 8);
    /// Says that the property is there, or that there is none.
    void notify(const Request& request, bool isThere = true);
    void give(const Request& request, const char* type, const std::string& bytes,
              std::uint8_t format = 8);
    /// Announces pieces, and waits until the requestor wants the first.
    bool announcePieces(const Request& request, std::uint32_t size = 1);
    /// Puts a piece and waits until it is taken. False when the requestor has gone.
    bool givePiece(const Request& request, const std::string& bytes,
                   const char* type = "UTF8_STRING");
    bool isFor(const Request& request, const char* target);
    /// Ends the connection, as the end of the program does.
    void die();

private:
    bool waitUntilTaken(const Request& request);
    struct Free {
        void operator()(void* memory) const;
    };
    std::unique_ptr<xcb_generic_event_t, Free> next();
    void run();

    const XClient client;
    const Script script;
    std::thread thread;
};

} // namespace quenthisar::demo
