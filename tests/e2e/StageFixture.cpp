// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include "demo/RuntimeFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QFile>

namespace quenthisar::e2e {

QByteArray readFile(const QString& file) {
    QFile in{file};
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray{};
}

void StageFixture::TearDown() {
    if (!stage) return;
    const auto all = demo::reportLines(stage->rig.dongle().since(0));
    EXPECT_TRUE(std::ranges::none_of(all, &ReportLine::isMalformed));
    EXPECT_TRUE(std::ranges::all_of(all, [](const ReportLine& line) {
        return line.isRequest == line.isProbe();
    })) << "the probe, and only it, is written as a request";
}

void StageFixture::enter(const demo::Stage::Options& options) {
    ASSERT_NO_FATAL_FAILURE(start(options));
    ASSERT_TRUE(stage->cross(soon)) << "crossing the edge does not take over";
    markNow();
}

void StageFixture::start(const demo::Stage::Options& options,
                         const std::function<void()>& prepare) {
    // What goes wrong here is this test's failure, not the end of the program.
    try {
        build(options);
        if (prepare) prepare();
        stage->rig.startProgram();
    } catch (const std::exception& error) {
        FAIL() << error.what();
    }
}

void StageFixture::build(demo::Stage::Options options) {
    demo::provideRuntimeFolder();
    if (options.programs.quenthisar.isEmpty())
        options.programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
    stage = std::make_unique<demo::Stage>(options);
}

void StageFixture::markNow() {
    ASSERT_TRUE(stage->hostDesk.catchUp(stage->host));
    ASSERT_TRUE(stage->targetDesk.catchUp(stage->target));
    hostMark = stage->hostDesk.mark();
    targetMark = stage->targetDesk.mark();
    dongleMark = stage->rig.dongle().mark();
}

void StageFixture::expectTyped(const QString& text) {
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(text, 0ms));
    EXPECT_TRUE(targetGetsText(text)) << typedOnTarget().toStdString();
    EXPECT_EQ(inputOnHost(), QStringList{});
}

void StageFixture::expectTypedOnHost(const QString& text) {
    ASSERT_NO_FATAL_FAILURE(markNow());
    ASSERT_TRUE(stage->hands.type(text, 0ms));
    const auto typed = [&] { return demo::DeskLines::typedText(stage->hostDesk.since(hostMark)); };
    EXPECT_TRUE(waitUntil([&] { return typed() == text; }, soon)) << typed().toStdString();
}

QStringList StageFixture::inputOnHost() {
    EXPECT_TRUE(stage->hostDesk.catchUp(stage->host));
    auto lines = stage->hostDesk.since(hostMark);
    lines.removeIf([](const QString& line) { return !demo::DeskLines::isInput(line); });
    return lines;
}

void StageFixture::hold(const Held& held, bool down) const {
    for (const auto key : held.keys) stage->hands.key(key, down);
    for (const auto button : held.buttons)
        stage->hands.button(static_cast<std::uint8_t>(button), down);
}

void StageFixture::expectHostHasInput() {
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(waitUntil([&] { return stage->hostShowsCursor(); }, soon));
    EXPECT_EQ(stage->host.held(), Held{});
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

void StageFixture::expectTakeover() {
    // Only once the input is held is it safe to type.
    ASSERT_TRUE(waitUntil([&] { return !stage->hostShowsCursor(); }, soon));
    ASSERT_NO_FATAL_FAILURE(expectTyped(u"On again"_s));
    stage->pressReturnChord();
    expectHostHasInput();
}

std::chrono::milliseconds StageFixture::timeOfReturn() const {
    const auto frozenAt = stage->host.pointer();
    QElapsedTimer elapsed;
    elapsed.start();
    stage->pressReturnChord();
    const auto moves = [&] {
        stage->hands.moveBy({-1, 0});
        return stage->host.pointer() != frozenAt;
    };
    EXPECT_TRUE(waitUntil(moves, soon));
    return std::chrono::milliseconds{elapsed.elapsed()};
}

std::uint8_t StageFixture::keyCode(char16_t character) const {
    const auto stroke = stage->host.strokeFor(character);
    EXPECT_TRUE(stroke);
    return stroke ? stroke->keyCode : std::uint8_t{0};
}

void StageFixture::pressHotkey(char16_t key, bool shifted) const {
    auto keys = demo::returnChord(stage->host);
    // Let go of last: without it, the other three are the return chord.
    if (shifted) keys.prepend(keyCodeOf(shiftKey));
    keys += keyCode(key);
    stage->hands.chord(keys);
}

void StageFixture::ask(const QString& method, const QVariantList& arguments) const {
    const auto name = u"faults"_s;
    {
        const auto bus = QDBusConnection::connectToBus(stage->rig.systemBusAddress(), name);
        auto message = QDBusMessage::createMethodCall(u"org.quenthisar.VirtualDongle"_s, u"/"_s,
                                                      u"org.quenthisar.VirtualDongle1"_s, method);
        message.setArguments(arguments);
        EXPECT_EQ(bus.call(message).type(), QDBusMessage::ReplyMessage) << method.toStdString();
    }
    QDBusConnection::disconnectFromBus(name);
}

std::optional<std::chrono::microseconds> StageFixture::waitForEvent(const QString& event) {
    const auto ending = u"\" "_s + event;
    std::optional<std::chrono::microseconds> time;
    const auto isThere = [&](const QStringList& lines) {
        const auto line =
            std::ranges::find_if(lines, [&](const QString& each) { return each.endsWith(ending); });
        if (line == lines.end()) return false;
        time = std::chrono::microseconds{line->section(u' ', 0, 0).toLongLong()};
        return true;
    };
    stage->rig.dongle().waitFor(dongleMark, isThere, soon);
    return time;
}

} // namespace quenthisar::e2e
