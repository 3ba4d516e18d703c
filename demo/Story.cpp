// SPDX-License-Identifier: MIT
#include "Story.h"

#include "DeskLines.h"
#include "Interrupt.h"
#include "Narrator.h"
#include "Picture.h"
#include "ReportLine.h"
#include "SelectionOwner.h"
#include "Stage.h"

#include <QThread>

#include <algorithm>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

/// How long what is waited for may take on a busy machine.
constexpr auto soon = 20s;

const QString copied = QStringLiteral("Copied: d\u00E9j\u00E0 vu\u2026\n");
const QString typedOfIt = QStringLiteral("Copied: deja vu...\n");
const QString words = QStringLiteral("Hello, Target!\nOne keyboard, one mouse: two computers.\n");
const QString wordsAtHome = QStringLiteral("Back at home.");

QString shown(QString text) {
    return u'"' + text.replace(u'\n', QStringLiteral("\\n")) + u'"';
}

class Story {
public:
    Story(const Programs& programs, QString picture)
        : picturePath(std::move(picture)),
          stage({.programs = programs,
                 .onDongleLine = [this](const QString& line) { narrator.report(line); }}) {}

    bool play() {
        connect();
        typeClipboard();
        cross();
        typeWords();
        takePicture();
        useMouse();
        goBack();
        return verdict();
    }

private:
    void connect() {
        narrator.begin(QStringLiteral("Quenthisar finds the dongle and connects"));
        stage.rig.startProgram();
    }

    void typeClipboard() {
        narrator.begin(QStringLiteral("Control, Option, Command and V: the host's clipboard is "
                                      "typed on the target: ") +
                       shown(copied));
        hostMark = stage.hostDesk.mark();
        targetMark = stage.targetDesk.mark();
        const SelectionOwner clipboard(copied, stage.hostDisplay());
        auto keys = returnChord(stage.host);
        if (const auto v = stage.host.strokeFor(u'v')) keys += v->keyCode;
        for (const auto key : keys) {
            stage.hands.key(key, true);
            pause(40); // as fingers do
        }
        for (const auto key : keys) stage.hands.key(key, false);
        const auto isThere = [this] {
            stage.rig.dongle().mark(); // prints what arrived
            pasted = DeskLines::typedText(stage.targetDesk.since(targetMark));
            return pasted.size() >= typedOfIt.size();
        };
        waitUntil(isThere, 10s);
        isPastedAtHome = !DeskLines::typedText(stage.hostDesk.since(hostMark)).isEmpty();
    }

    void cross() {
        narrator.begin(QStringLiteral("The pointer crosses the right edge of the host's screen"));
        glide(stage.hands, {18, 1}, 30);
        if (!stage.cross(20s)) throw std::runtime_error("crossing the edge does not take over");
        hostMark = stage.hostDesk.mark();
        targetMark = stage.targetDesk.mark();
        frozenAt = stage.host.pointer();
        isPanelShown = waitUntil(
            [this] { return !stage.host.windowsWith("_NET_WM_WINDOW_OPACITY").isEmpty(); }, 2s);
        glide(stage.hands, {-22, 9}, 12);
    }

    void typeWords() {
        narrator.begin(QStringLiteral("Typed on the host's keyboard: ") + shown(words));
        type(words);
        received = waitForText(stage.targetDesk, targetMark, words);
    }

    void useMouse() {
        narrator.begin(QStringLiteral("The mouse moves, clicks and scrolls"));
        const auto before = stage.target.pointer();
        glide(stage.hands, {9, 12}, 10);
        stage.hands.click(1);
        stage.hands.button(4, true);
        stage.hands.button(4, false);
        stage.targetDesk.waitFor(
            targetMark,
            [](const QStringList& lines) { return lines.contains(QStringLiteral("wheel 0,120")); },
            soon);
        const auto lines = stage.targetDesk.since(targetMark);
        isClicked = std::ranges::any_of(
            lines, [](const QString& line) { return line.startsWith(u"button release left"); });
        isScrolled = lines.contains(QStringLiteral("wheel 0,120"));
        if (const auto after = stage.target.pointer(); before && after) moved = *after - *before;
    }

    void goBack() {
        narrator.begin(QStringLiteral("Control, Option and Command together: back to the host"));
        isFrozen = stage.host.pointer() == frozenAt;
        hostSaw = inputOf(stage.hostDesk.since(hostMark));
        stage.pressReturnChord();
        isBack = stage.hostPointerMoves(soon);
        const auto mark = stage.hostDesk.mark();
        type(wordsAtHome);
        receivedAtHome = waitForText(stage.hostDesk, mark, wordsAtHome);
        isAllUp = waitUntil([this] { return stage.target.held() == XClient::Held{}; }, soon);
        targetSawAfter = DeskLines::typedText(stage.targetDesk.since(targetMark)) != received;
    }

    bool verdict() {
        narrator.begin(QStringLiteral("What came of it"));
        bool isGood = true;
        const auto find = [&](bool good, const char* what, const QString& value) {
            isGood = isGood && good;
            narrator.finding(good, QString::fromLatin1(what), value);
        };
        find(pasted == typedOfIt && !isPastedAtHome, "typed from the clipboard", shown(pasted));
        find(isPanelShown, "the panel on the host",
             isPanelShown ? QStringLiteral("shown") : QStringLiteral("not shown"));
        find(received == words, "the target received", shown(received));
        find(hostSaw.isEmpty(), "the host received of it",
             hostSaw.isEmpty() ? QStringLiteral("nothing") : hostSaw.join(QStringLiteral(", ")));
        find(isFrozen, "the host's pointer meanwhile",
             isFrozen ? QStringLiteral("stood still") : QStringLiteral("moved"));
        find(moved == QPoint(90, 120) && isClicked && isScrolled, "mouse on the target",
             QStringLiteral("moved by %1, %2%3%4")
                 .arg(moved.x())
                 .arg(moved.y())
                 .arg(isClicked ? u", clicked" : u"", isScrolled ? u", scrolled" : u""));
        find(isBack && receivedAtHome == wordsAtHome && !targetSawAfter,
             "after the return, the host got", shown(receivedAtHome));
        find(isAllUp, "held down on the target",
             isAllUp ? QStringLiteral("nothing") : QStringLiteral("something"));
        find(isPictured, "picture of both screens",
             isPictured ? picturePath : QStringLiteral("not saved"));
        return isGood;
    }

    void takePicture() {
        const Shot host{stage.host.picture(), QStringLiteral("Host")};
        const Shot target{stage.target.picture(), QStringLiteral("Target")};
        if (host.image.isNull() || target.image.isNull()) return;
        const auto caption = QStringLiteral("In a takeover: what is copied and typed on the host, "
                                            "the target receives through its dongle");
        isPictured = sideBySide(host, target, caption).save(picturePath);
    }

    /// A motion that an eye can follow.
    void glide(const Hands& hands, QPoint step, int steps) {
        for (; steps > 0; --steps) {
            hands.moveBy(step);
            pause(10);
        }
    }

    void type(const QString& text) {
        for (const auto character : text) {
            if (!stage.hands.type(character, 0ms))
                throw std::runtime_error("the keymap lacks a character of the text");
            pause(25);
        }
    }

    /// Prints what arrived in the meantime.
    void pause(unsigned long milliseconds) {
        throwIfInterrupted();
        QThread::msleep(milliseconds);
        stage.rig.dongle().mark();
    }

    static QString waitForText(Recorder& desk, qsizetype mark, const QString& text) {
        const auto isThere = [&](const QStringList& lines) {
            return DeskLines::typedText(lines).size() >= text.size();
        };
        desk.waitFor(mark, isThere, soon);
        return DeskLines::typedText(desk.since(mark));
    }

    static QStringList inputOf(const QStringList& lines) {
        QStringList result;
        for (const auto& line : lines)
            if (DeskLines::isInput(line)) result += line;
        return result;
    }

    const QString picturePath;
    Narrator narrator;
    Stage stage;
    qsizetype hostMark = 0, targetMark = 0;
    std::optional<QPoint> frozenAt;
    QString pasted, received, receivedAtHome;
    QStringList hostSaw;
    QPoint moved;
    bool isPastedAtHome = false, isPanelShown = false, isClicked = false, isScrolled = false,
         isFrozen = false, isBack = false, isAllUp = false, targetSawAfter = false,
         isPictured = false;
};

} // namespace

bool playStory(const Programs& programs, const QString& picture) {
    return Story{programs, picture}.play();
}

} // namespace quenthisar::demo
