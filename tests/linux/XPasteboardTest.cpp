// SPDX-License-Identifier: MIT
#include "Linux/XPasteboard.h"
#include "demo/RuntimeFolder.h"
#include "demo/SelectionOwner.h"
#include "demo/XServer.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QGuiApplication>

#include <chrono>
#include <optional>

namespace quenthisar::test {
namespace {

using demo::SelectionOwner;
using Text = std::optional<std::string>;

/// A server, and the toolkit as one of its clients.
struct XPasteboardTest : testing::Test {
    /// What the pasteboard says; no freeze, as the toolkit's 15 s are.
    Text read() {
        const QDeadlineTimer deadline(std::chrono::seconds{10});
        auto text = pasteboard.string();
        EXPECT_FALSE(deadline.hasExpired());
        return text;
    }

    demo::XServer server;
    struct Environment {
        explicit Environment(const demo::XServer& server) {
            demo::provideRuntimeFolder();
            qputenv("DISPLAY", server.display().toUtf8());
            qputenv("QT_QPA_PLATFORM", "xcb");
        }
    } environment{server};
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QGuiApplication application{argumentCount, list};
    XPasteboard pasteboard;
};

/// An owner that answers so when asked for a form, and has the next one otherwise.
SelectionOwner::Script only(const char* target, const SelectionOwner::Script& answer,
                            const char* otherwise = nullptr) {
    return [=](auto& self, const auto& request) {
        if (self.isFor(request, target))
            answer(self, request);
        else if (otherwise)
            self.give(request, "STRING", otherwise);
        else
            self.notify(request, false);
    };
}

SelectionOwner::Script gives(const char* type, const char* bytes) {
    return [=](auto& self, const auto& request) { self.give(request, type, bytes); };
}

TEST_F(XPasteboardTest, GivesTheTextInTheBestFormThatTheOwnerReallyHasInTime) {
    EXPECT_EQ(read(), std::nullopt) << "nobody has any";
    constexpr auto utf8 = "UTF8_STRING", latin1 = "STRING";
    const struct {
        const char* what;
        SelectionOwner::Script script;
        Text text;
    } rows[] = {
        {utf8, only(utf8, gives(utf8, "na\xC3\xAFve")), "na\xC3\xAFve"},
        {latin1, only(latin1, gives(latin1, "na\xEFve\x80\xFF")), "na\xC3\xAFve\xC2\x80\xC3\xBF"},
        {"another type", only(utf8, gives("COMPOUND_TEXT", "lie"), "true"), "true"},
        {"pieces",
         [](auto& self, const auto& request) {
             // What is announced is a lower bound at best.
             self.announcePieces(request, 0xFFFFFFFF);
             for (const auto* piece : {"one, ", "two, ", "\xE2\x82", "\xAC", ""})
                 self.givePiece(request, piece);
         },
         "one, two, \xE2\x82\xAC"},
        {"hangs in the middle",
         [](auto& self, const auto& request) {
             if (self.announcePieces(request)) self.givePiece(request, "half");
         },
         std::nullopt},
        {"never ends",
         [](auto& self, const auto& request) {
             self.announcePieces(request);
             while (self.givePiece(request, "x")) {
             }
         },
         std::nullopt},
        {"dies", [](auto& self, const auto&) { self.die(); }, std::nullopt},
        {"what came before does not matter", gives(utf8, "next"), "next"},
    };
    for (const auto& row : rows) {
        const SelectionOwner owner(row.script);
        EXPECT_EQ(read(), row.text) << row.what;
    }
}

} // namespace
} // namespace quenthisar::test
