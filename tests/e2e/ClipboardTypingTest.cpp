// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
#include "e2e/StageFixture.h"

#include <QElapsedTimer>

#include <atomic>
#include <csignal>

namespace quenthisar::e2e {

namespace {

using demo::SelectionOwner;
using std::chrono::microseconds;

constexpr auto pause = 74ms;
constexpr std::uint32_t leftShift = 0xFFE1, leftControl = 0xFFE3;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int slowness = 10;
#else
constexpr int slowness = 1;
#endif

microseconds now() {
    return std::chrono::duration_cast<microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

struct Stroke {
    microseconds time;
    QString keys, modifiers;
};

/// Long enough for all that happens beside it, so that its end never comes.
QString manyDigits() {
    return QStringLiteral("0123456789").repeated(1'000);
}

} // namespace

/// At the host, with the dongle connected.
class ClipboardTyping : public StageFixture {
protected:
    void SetUp() override {
        StageFixture::SetUp();
        if (!HasFatalFailure()) returnToHost();
    }

    void returnToHost() {
        stage->pressReturnChord();
        ASSERT_TRUE(stage->hostPointerMoves(soon));
        ASSERT_TRUE(stage->hostKeyboardWorks(soon));
        ASSERT_TRUE(nothingIsHeldOnTarget());
        markNow();
    }

    std::unique_ptr<SelectionOwner> clipboard(const QString& text) const {
        return std::make_unique<SelectionOwner>(text, stage->hostDisplay());
    }
    std::unique_ptr<SelectionOwner> clipboard(SelectionOwner::Script script) const {
        return std::make_unique<SelectionOwner>(std::move(script), stage->hostDisplay());
    }

    void pressHotkey() const {
        auto keys = demo::returnChord(stage->host);
        keys += keyCode(u'v');
        stage->hands.chord(keys);
    }

    /// The presses of `keys` alone, each of which the next report must release. Names as in the
    /// reports.
    QList<Stroke> strokes(const QStringList& keys) {
        const auto all = reports();
        QList<Stroke> result;
        for (qsizetype i = 0; i < all.size(); ++i) {
            const auto key = all[i].field(QStringLiteral("keys"));
            if (!keys.isEmpty() ? !keys.contains(key) : key.isEmpty() || key == u"none") continue;
            result += {all[i].time, key, all[i].field(QStringLiteral("modifiers"))};
            // A report that is on its way is not there yet.
            const bool isReleased =
                i + 1 == all.size() || (all[i + 1].isKeyboard() && all[i + 1].isAllUp());
            EXPECT_TRUE(isReleased)
                << all[i].what.toStdString() << ", then " << all[i + 1].what.toStdString();
        }
        return result;
    }

    static QStringList digits() {
        return QStringLiteral("0123456789").split(QString{}, Qt::SkipEmptyParts);
    }

    bool digitsArrive(qsizetype more) {
        const auto wanted = strokes(digits()).size() + more;
        return waitUntil([&] { return strokes(digits()).size() >= wanted; }, soon);
    }

    /// What has been typed of `manyDigits`: none is missing, changed or out of its place.
    void expectDigitsInOrder() {
        const auto typed = strokes(digits());
        for (qsizetype i = 0; i < typed.size(); ++i) {
            EXPECT_EQ(typed[i].keys, QString::number(i % 10)) << "digit " << i;
            EXPECT_EQ(typed[i].modifiers, u"none") << "digit " << i;
        }
    }
};

TEST_F(ClipboardTyping, ArrivesKeyByKeyAtItsPace) {
    const auto owner =
        clipboard(QStringLiteral("Hi \u201CU\u201D,\t\u00E9\u20AC\r\n~3\u2026 it is typed"));
    const auto start = now();
    pressHotkey();
    EXPECT_TRUE(targetGetsText(QStringLiteral("Hi \"U\",e\n~3... it is typed")))
        << typedOnTarget().toStdString();

    const auto typed = strokes({});
    QStringList keys, modifiers;
    for (const auto& stroke : typed) {
        keys += stroke.keys;
        modifiers += stroke.modifiers;
    }
    EXPECT_EQ(keys.join(u' '),
              u"h i space apostrophe u apostrophe comma tab e enter grave 3 period period period "
              "space i t space i s space t y p e d");
    EXPECT_EQ(modifiers.first(12).join(u' '),
              u"shift none none shift shift shift none none none none shift none");
    EXPECT_EQ(modifiers.sliced(12).count(QStringLiteral("none")), modifiers.size() - 12);

    auto fastest = microseconds::max();
    for (qsizetype i = 1; i < typed.size(); ++i) {
        EXPECT_GE(typed[i].time, start + i * pause) << "character " << i;
        fastest = std::min(fastest, typed[i].time - typed[i - 1].time);
    }
    EXPECT_LT(fastest, pause * 3 / 2) << "no longer pauses than that";
    EXPECT_EQ(typedOnHost(), QString{});
}

TEST_F(ClipboardTyping, LeavesTheHostItsKeys) {
    const auto owner = clipboard(manyDigits());
    pressHotkey();
    ASSERT_TRUE(digitsArrive(3));
    const auto words = QStringLiteral("Meanwhile, at HOME.");
    ASSERT_TRUE(stage->hands.type(words, 20ms));
    EXPECT_TRUE(stage->hostDesk.waitFor(
        hostMark,
        [&](const QStringList& lines) { return demo::DeskLines::typedText(lines) == words; }, soon))
        << typedOnHost().toStdString();
    EXPECT_TRUE(digitsArrive(3)) << "it was meanwhile";
    expectDigitsInOrder();
    EXPECT_EQ(strokes({}).size(), strokes(digits()).size()) << "and nothing else";
}

TEST_F(ClipboardTyping, GoesOnInATakeoverBesideTheUsersKeys) {
    const auto shift = stage->host.keyCodeOf(leftShift),
               control = stage->host.keyCodeOf(leftControl);
    ASSERT_TRUE(shift && control);
    const auto owner = clipboard(manyDigits());
    pressHotkey();
    ASSERT_TRUE(digitsArrive(3));
    ASSERT_TRUE(stage->cross(soon));
    ASSERT_TRUE(stage->hostDesk.catchUp(stage->host));
    hostMark = stage->hostDesk.mark();

    const auto words = QStringLiteral("Both Hands At Once, And Nothing Is Mixed Up");
    ASSERT_TRUE(stage->hands.type(words, 17ms));
    const auto wordsArrive = [&](const QStringList& lines) {
        auto text = demo::DeskLines::typedText(lines);
        text.removeIf([](QChar c) { return c.isDigit(); });
        return text == words;
    };
    EXPECT_TRUE(stage->targetDesk.waitFor(targetMark, wordsArrive, soon))
        << typedOnTarget().toStdString();

    // Held modifiers are the user's, and don't change what is typed.
    for (const auto modifier : {*shift, *control}) {
        stage->hands.key(modifier, true);
        EXPECT_TRUE(digitsArrive(3));
        stage->hands.key(modifier, false);
    }
    stage->hands.moveBy({-5, 3});
    stage->hands.click(1);
    EXPECT_TRUE(dongleGets([](const auto& all) {
        return std::ranges::any_of(all, [](const ReportLine& line) {
            return line.field(QStringLiteral("buttons")) == u"left";
        });
    }));
    EXPECT_EQ(inputOnHost(), QStringList{});
    expectDigitsInOrder();

    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(digitsArrive(3));
    EXPECT_TRUE(nothingIsHeldOnTarget());
    expectDigitsInOrder();
}

TEST_F(ClipboardTyping, ReturnsFirstWhenAskedForInATakeover) {
    const auto owner = clipboard(QStringLiteral("typed"));
    ASSERT_TRUE(stage->cross(soon));
    markNow();
    pressHotkey();
    EXPECT_TRUE(targetGetsText(QStringLiteral("typed"))) << typedOnTarget().toStdString();
    EXPECT_EQ(typedOnHost(), QString{});
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

TEST_F(ClipboardTyping, EndsWithTheProgramAtOnce) {
    const auto owner = clipboard(manyDigits());
    // On a busy machine one end may be slow, whatever the program does.
    auto fastest = microseconds::max();
    for (int tries = 0; tries < 8 && fastest > 200ms * slowness; ++tries) {
        if (tries > 0) stage->rig.startProgram();
        markNow();
        pressHotkey();
        ASSERT_TRUE(digitsArrive(3));
        const auto start = now();
        stage->rig.quenthisar().signal(SIGTERM);
        EXPECT_EQ(stage->rig.quenthisar().waitForEnd(atOnce * slowness), 0);
        fastest = std::min(fastest, now() - start);
        EXPECT_TRUE(nothingIsHeldOnTarget());
        expectDigitsInOrder();
        EXPECT_TRUE(dongleGets([](const auto& all) { return all.back().isAllUp(); }));
    }
    EXPECT_LE(fastest, 200ms * slowness);
}

TEST_F(ClipboardTyping, GivesUpOnAHangingOwnerOnce) {
    std::atomic<int> asked = 0;
    auto owner = clipboard([&](auto&, const auto&) { ++asked; });
    QElapsedTimer elapsed;
    elapsed.start();
    pressHotkey();
    ASSERT_TRUE(stage->cross(soon));
    EXPECT_GE(elapsed.elapsed(), 500);
    EXPECT_LT(elapsed.elapsed(), 5'000 * slowness);
    EXPECT_EQ(asked, 1) << "not again in another form";
    expectTakeover();
    EXPECT_EQ(strokes(digits()).size(), 0);

    owner.reset();
    owner = clipboard(manyDigits());
    markNow();
    pressHotkey();
    EXPECT_TRUE(digitsArrive(3));
}

namespace {

struct OddCase {
    const char* name;
    SelectionOwner::Script script;
    const char* typed; // at first
};

void PrintTo(const OddCase& odd, std::ostream* out) {
    *out << odd.name;
}

} // namespace

/// What an owner may say that is wrong, broken or endless.
class OddClipboard : public ClipboardTyping, public testing::WithParamInterface<OddCase> {};

TEST_P(OddClipboard, IsTypedAsFarAsItIsTextAndTheProgramGoesOn) {
    const auto typed = QString::fromLatin1(GetParam().typed);
    {
        const auto owner = clipboard(GetParam().script);
        // What takes long may be too late on a busy machine.
        EXPECT_TRUE(demo::retry(
            [&] {
                pressHotkey();
                return waitUntil([&] { return typedOnTarget().startsWith(typed); }, 3s);
            },
            2 * soon))
            << typedOnTarget().toStdString();
    }
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    ASSERT_TRUE(stage->cross(soon));
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());
}

INSTANTIATE_TEST_SUITE_P(
    Owners, OddClipboard,
    testing::Values(OddCase{"NoUtf8",
                            [](auto& self, const auto& request) {
                                self.give(request, "UTF8_STRING",
                                          "a\xFF"
                                          "b\xE2\x80"
                                          "c\xED\xA0\x80"
                                          "d\xF8\x88"
                                          "e\xC3");
                            },
                            "abcde"},
                    OddCase{"PiecesOfFourGigabytes",
                            [](auto& self, const auto& request) {
                                self.announcePieces(request, 0xFFFFFFFF);
                                for (const auto* piece : {"one \xE2\x80", "\x94 two", ""})
                                    self.givePiece(request, piece);
                            },
                            "one - two"},
                    OddCase{"PiecesOfNothing",
                            [](auto& self, const auto& request) {
                                self.announcePieces(request, 0);
                                for (const auto* piece : {"more than ", "that", ""})
                                    self.givePiece(request, piece);
                            },
                            "more than that"},
                    OddCase{"TwentyMegabytes",
                            [](auto& self, const auto& request) {
                                self.give(request, "UTF8_STRING", std::string(20 << 20, 'x'));
                            },
                            "xxxx"},
                    OddCase{"EndlessPieces",
                            [](auto& self, const auto& request) {
                                self.announcePieces(request);
                                while (self.givePiece(request, std::string(1 << 20, 'y'))) {
                                }
                            },
                            "yyyy"}),
    [](const auto& row) { return std::string{row.param.name}; });

} // namespace quenthisar::e2e
