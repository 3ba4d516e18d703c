// SPDX-License-Identifier: MIT
#include "Linux/XPasteboard.h"
#include "demo/RuntimeFolder.h"
#include "demo/SelectionOwner.h"
#include "demo/XServer.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMimeData>

#include <chrono>
#include <optional>

namespace quenthisar::test {
namespace {

using namespace std::chrono_literals;
using demo::SelectionOwner;
using Request = SelectionOwner::Request;
using Text = std::optional<std::string>;

constexpr std::size_t longest = std::size_t{16} << 20;

/// A server, and the toolkit as one of its clients.
class XPasteboardTest : public testing::Test {
protected:
    /// What the pasteboard says; no freeze, as the toolkit's 15 s are.
    Text read() {
        const QDeadlineTimer deadline(10s);
        auto text = pasteboard.string();
        EXPECT_FALSE(deadline.hasExpired());
        return text;
    }

    /// What takes long: a busy machine may need more than one try.
    Text readLong() {
        for (int tries = 0; tries < 20; ++tries)
            if (auto text = read()) return text;
        ADD_FAILURE() << "never in time";
        return std::string{};
    }

    demo::XServer server;

private:
    struct Environment {
        explicit Environment(const QString& display) {
            demo::provideRuntimeFolder();
            qputenv("DISPLAY", display.toUtf8());
            qputenv("QT_QPA_PLATFORM", "xcb");
        }
    } environment{server.display()};
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QGuiApplication application{argumentCount, list};

protected:
    XPasteboard pasteboard;
};

TEST_F(XPasteboardTest, HasNothingWithoutAnOwner) {
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(XPasteboardTest, GivesTheTextInTheBestFormThatTheOwnerHas) {
    const struct {
        const char* target;
        const char* type;
        const char* bytes;
        const char* text;
    } rows[] = {
        {"UTF8_STRING", "UTF8_STRING", "na\xC3\xAFve", "na\xC3\xAFve"},
        {"UTF8_STRING", "UTF8_STRING", "", ""},
        {"text/plain;charset=utf-8", "text/plain;charset=utf-8", "\xE2\x82\xAC", "\xE2\x82\xAC"},
        {"STRING", "STRING", "na\xEFve\x80\xFF", "na\xC3\xAFve\xC2\x80\xC3\xBF"}};
    for (const auto& row : rows) {
        SelectionOwner owner([&row](auto& self, const auto& request) {
            if (self.isFor(request, row.target))
                self.give(request, row.type, row.bytes);
            else
                self.notify(request, false);
        });
        EXPECT_EQ(read(), row.text) << row.target;
    }
}

TEST_F(XPasteboardTest, TriesTheNextFormWhenAnOwnerLiesAboutOne) {
    using Lie = std::function<void(SelectionOwner&, const Request&)>;
    const std::pair<const char*, Lie> lies[] = {
        {"another type", [](auto& self, const auto& r) { self.give(r, "COMPOUND_TEXT", "lie"); }},
        {"16 bits", [](auto& self, const auto& r) { self.give(r, "UTF8_STRING", "lies", 16); }},
        {"32 bits", [](auto& self, const auto& r) { self.give(r, "UTF8_STRING", "lies", 32); }},
        {"nothing there", [](auto& self, const auto& r) { self.notify(r); }},
        {"pieces that change",
         [](auto& self, const auto& r) {
             if (self.announcePieces(r) && self.givePiece(r, "lie"))
                 self.givePiece(r, "lie", "STRING");
         }},
    };
    for (const auto& [what, lie] : lies) {
        SelectionOwner owner([&lie = lie](auto& self, const auto& request) {
            if (self.isFor(request, "UTF8_STRING"))
                lie(self, request);
            else
                self.give(request, "STRING", "true");
        });
        EXPECT_EQ(read(), "true") << what;
    }
}

TEST_F(XPasteboardTest, JoinsPieces) {
    SelectionOwner owner([](auto& self, const auto& request) {
        // What is announced is a lower bound at best.
        self.announcePieces(request, 0xFFFFFFFF);
        for (const auto* piece : {"one, ", "two, ", "\xE2\x82", "\xAC", ""})
            self.givePiece(request, piece);
    });
    EXPECT_EQ(read(), "one, two, \xE2\x82\xAC");
    EXPECT_EQ(read(), "one, two, \xE2\x82\xAC") << "and again";
}

TEST_F(XPasteboardTest, CutsOffWhatIsTooLong) {
    const std::string piece(1 << 20, 'x');
    const std::string whole(longest + 5, 'x');
    const std::string latin1(longest / 2 + 5, '\xEF'); // twice as long in UTF-8
    {
        SelectionOwner owner([&](auto& self, const auto& request) {
            self.announcePieces(request);
            while (self.givePiece(request, piece)) {
            }
        });
        EXPECT_TRUE(readLong() == whole.substr(5));
    }
    for (const auto& [type, bytes] : {std::pair{"UTF8_STRING", &whole}, {"STRING", &latin1}}) {
        SelectionOwner owner([&, t = type, b = bytes](auto& self, const auto& request) {
            self.give(request, t, *b);
        });
        EXPECT_EQ(readLong()->size(), longest) << type;
    }
}

TEST_F(XPasteboardTest, GivesUpOnAnOwnerThatDoesNotFinish) {
    const std::pair<const char*, SelectionOwner::Script> rows[] = {
        {"hangs", [](auto&, const auto&) {}},
        {"dies", [](auto& self, const auto&) { self.die(); }},
        {"dies in the middle",
         [](auto& self, const auto& request) {
             if (self.announcePieces(request) && self.givePiece(request, "half")) self.die();
         }},
        {"hangs in the middle",
         [](auto& self, const auto& request) {
             if (self.announcePieces(request)) self.givePiece(request, "half");
         }},
        {"never ends",
         [](auto& self, const auto& request) {
             self.announcePieces(request);
             while (self.givePiece(request, "x")) {
             }
         }},
        {"refuses everything",
         [](auto& self, const auto& request) { self.notify(request, false); }},
        {"answers another question",
         [](auto& self, auto request) {
             request.target = XCB_ATOM_PIXMAP;
             self.give(request, "UTF8_STRING", "lie");
         }},
    };
    for (const auto& [what, script] : rows) {
        SelectionOwner owner(script);
        EXPECT_EQ(read(), std::nullopt) << what;
    }
    SelectionOwner prompt(
        [](auto& self, const auto& request) { self.give(request, "UTF8_STRING", "next"); });
    EXPECT_EQ(read(), "next") << "what came before does not matter";
}

TEST_F(XPasteboardTest, TakesOurOwnTextFromTheToolkit) {
    auto* clipboard = QGuiApplication::clipboard();
    clipboard->setText(QStringLiteral("own \u20AC"));
    ASSERT_TRUE(clipboard->ownsClipboard());
    EXPECT_EQ(read(), "own \xE2\x82\xAC");
    clipboard->setMimeData(std::make_unique<QMimeData>().release());
    ASSERT_TRUE(clipboard->ownsClipboard());
    EXPECT_EQ(read(), std::nullopt) << "no text";

    SelectionOwner owner(
        [](auto& self, const auto& request) { self.give(request, "UTF8_STRING", "theirs"); });
    EXPECT_EQ(read(), "theirs") << "whatever the toolkit still believes";
}

TEST(XPasteboard, HasNothingWhenTheServerIsLostOrMissing) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the toolkit ends the program without its server
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    const QGuiApplication application(argumentCount, list);

    std::optional<demo::XServer> server{std::in_place};
    qputenv("DISPLAY", server->display().toUtf8());
    XPasteboard pasteboard;
    {
        SelectionOwner owner([&](auto&, const auto&) { server->kill(); });
        EXPECT_EQ(pasteboard.string(), std::nullopt) << "lost in the middle";
    }
    server.reset();
    EXPECT_EQ(pasteboard.string(), std::nullopt) << "missing";
    server.emplace();
    qputenv("DISPLAY", server->display().toUtf8());
    SelectionOwner owner(
        [](auto& self, const auto& request) { self.give(request, "UTF8_STRING", "back"); });
    EXPECT_EQ(pasteboard.string(), "back");
}

} // namespace
} // namespace quenthisar::test
