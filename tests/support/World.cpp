// SPDX-License-Identifier: MIT
#include "support/World.h"

#include "Capture/TargetMacro.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace quenthisar {

namespace {

struct ModifierKey {
    std::int64_t code;
    std::uint64_t flag;
};

constexpr auto modifierKeys = std::to_array<ModifierKey>({
    {55, EventFlags::command}, // the left ones first
    {56, EventFlags::shift},
    {58, EventFlags::option},
    {59, EventFlags::control},
    {57, EventFlags::alphaShift},
    {54, EventFlags::command},
    {60, EventFlags::shift},
    {61, EventFlags::option},
    {62, EventFlags::control},
});

constexpr std::uint64_t bit(std::int64_t code) {
    return std::uint64_t{1} << static_cast<unsigned>(code);
}

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string inWords(const std::optional<Takeover>& takeover) {
    if (!takeover) return "takeover none";
    auto words = "takeover " + World::dongleName(takeover->dongleID);
    if (takeover->edge)
        words += ' ' + bindingKey(*takeover->edge, takeover->screenUUID.value_or("nowhere"));
    return words;
}

} // namespace

World::World(Witness& w) : witness(w) {
    central.onWrite = [this](const Write& write) {
        if (write.type == WriteType::withResponse && !peripheral(index(write.id)).answersProbe)
            waitingProbes.insert(write.id);
        witness.wrote(write);
    };
    central.onDrop = [this](const Uuid& id) {
        witness.linkLost(id);
        answerProbe(id, "link lost");
    };
    central.onRequest = [this](std::string_view what, const Uuid& id) {
        if (subscriptions.empty()) return; // the first scan, while the program is launched
        const bool ofDongle = index(id) < dongleCount;
        witness.happened(std::string{what} + " asked for" + (ofDongle ? ' ' + dongleName(id) : ""));
    };
}

World::~World() {
    typing.end(); // as the program does: a run may be under way
}

const Uuid& World::dongleID(std::size_t dongle) {
    static const auto ids = [] {
        std::array<Uuid, dongleCount> list;
        for (std::size_t i = 0; i < dongleCount; ++i) {
            const auto digits = static_cast<std::uint8_t>(0xAA + 0x11 * i);
            list.at(i) = *Uuid::parse("00000000-0000-4000-8000-000000000000");
            list.at(i).bytes[14] = list.at(i).bytes[15] = digits;
        }
        return list;
    }();
    return ids.at(dongle);
}

std::size_t World::index(const Uuid& ofDongle) {
    std::size_t i = 0;
    while (i < dongleCount && dongleID(i) != ofDongle) ++i;
    return i;
}

std::string World::dongleName(const Uuid& id) {
    const auto i = index(id);
    return i < dongleCount ? std::string{static_cast<char>('A' + i)} : id.text();
}

AppDelegate& World::app() {
    if (delegate) return *delegate;
    if (plugged.empty()) plug("D1", {0, 0, 1920, 1080});
    delegate.emplace(Ports{clock, defaults, displays, taps, *this, trust, central, loginItem, *this,
                           *this, hotkeys, panels, pasteboard, typing, statusBar, windows});
    delegate->applicationDidFinishLaunching();
    clock.settle();
    delegate->eventTap->start();
    defaults.writes.clear();
    subscribe();
    return *delegate;
}

void World::subscribe() {
    auto& state = delegate->state;
    const auto keep = [this](auto& field, auto tell) {
        // The first call tells the value that the field has.
        subscriptions.push_back(field.subscribe([tell, current = true](const auto& next) mutable {
            if (!std::exchange(current, false)) tell(next);
        }));
    };
    keep(state.captureEnabled,
         [this](bool on) { witness.happened(on ? "captureEnabled on" : "captureEnabled off"); });
    keep(state.activeMode,
         [this](const std::string& mode) { witness.happened("activeMode " + mode); });
    keep(state.bluetoothState,
         [this](const std::string& word) { witness.happened("bluetoothState " + word); });
    keep(state.takeover, [this](const std::optional<Takeover>& next) {
        witness.takeoverWillBe(next);
        witness.happened(inWords(next));
    });
    keep(state.activeProfileID, [this, &state](const Uuid& id) {
        const auto it = std::ranges::find(*state.profiles, id, &Profile::id);
        witness.profileWillBe(id);
        witness.happened("profile " + (it == state.profiles->end() ? "unknown" : it->name));
    });
    keep(state.dongles, [this, &state](const std::vector<Dongle>& next) {
        for (const auto& dongle : next) {
            const auto name = dongleName(dongle.id);
            const Dongle* before = state.dongle(dongle.id);
            if (!before)
                witness.happened(name + " listed as " + quoted(dongle.name) + ", " +
                                 std::string{rawText(dongle.state)});
            else if (before->name != dongle.name)
                witness.happened(name + " renamed to " + quoted(dongle.name));
            if (before && before->state != dongle.state)
                witness.happened(name + ' ' + std::string{rawText(dongle.state)});
        }
    });
}

void World::plug(const std::string& uuid, const Rect& frame) {
    const auto it = std::ranges::find(plugged, uuid, &std::pair<std::string, Rect>::first);
    if (it == plugged.end())
        plugged.emplace_back(uuid, frame);
    else
        it->second = frame;
    arrangeDisplays();
}

void World::unplug(const std::string& uuid) {
    if (plugged.size() > 1)
        std::erase_if(plugged, [&](const auto& display) { return display.first == uuid; });
    arrangeDisplays();
}

void World::arrangeDisplays() {
    displays.list.clear();
    displays.uuids.clear();
    for (const auto& [uuid, frame] : plugged) displays.add(uuid, frame);
    if (delegate) displays.changed();
}

void World::post(const TapEvent& event) {
    app();
    witness.willPost(event);
    witness.posted(event, taps.post(event));
}

EventType World::motionType() const {
    if (buttons[0]) return EventType::leftMouseDragged;
    if (buttons[1]) return EventType::rightMouseDragged;
    return buttons[2] ? EventType::otherMouseDragged : EventType::mouseMoved;
}

void World::moveTo(Point location) {
    if (!cursorFrozen) cursor = location;
    post({.type = motionType(), .location = location});
}

void World::moveBy(std::int64_t dx, std::int64_t dy) {
    app();
    if (!cursorFrozen)
        cursor = {cursor.x + static_cast<double>(dx), cursor.y + static_cast<double>(dy)};
    post({.type = motionType(), .location = cursor, .deltaX = dx, .deltaY = dy});
}

void World::button(std::size_t which, bool down) {
    constexpr std::array downs{EventType::leftMouseDown, EventType::rightMouseDown,
                               EventType::otherMouseDown};
    constexpr std::array ups{EventType::leftMouseUp, EventType::rightMouseUp,
                             EventType::otherMouseUp};
    buttons.at(which) = down;
    post({.type = (down ? downs : ups).at(which)});
}

std::uint64_t World::flags() const {
    std::uint64_t result = 0;
    for (const auto& key : modifierKeys)
        if (heldModifiers & bit(key.code)) result |= key.flag;
    return result;
}

void World::key(std::int64_t code, bool down) {
    if (std::ranges::find(modifierKeys, code, &ModifierKey::code) != modifierKeys.end()) {
        heldModifiers = down ? heldModifiers | bit(code) : heldModifiers & ~bit(code);
        return post({.type = EventType::flagsChanged, .flags = flags(), .keyCode = code});
    }
    post({.type = down ? EventType::keyDown : EventType::keyUp, .flags = flags(), .keyCode = code});
}

void World::setFlags(std::uint64_t next) {
    heldModifiers = 0;
    for (const auto& key : std::span{modifierKeys}.first(5))
        if (next & key.flag) heldModifiers |= bit(key.code);
    post({.type = EventType::flagsChanged, .flags = next});
}

void World::scroll(std::int64_t lines) {
    post({.type = EventType::scrollWheel, .scrollDelta = lines});
}

void World::mediaKey(std::int64_t keyType, bool down) {
    post({.type = EventType::systemDefined,
          .subtype = auxiliaryControlButtons,
          .data1 = keyType << 16 | (down ? 0x0A00 : 0x0B00)});
}

void World::disableTap(EventType why) {
    app();
    if (!taps.hasSource) return;
    taps.notify(why);
    witness.happened(taps.enabled ? "tap enabled again" : "tap disabled");
}

FakePeripheral& World::peripheral(std::size_t dongle) {
    auto& place = peripherals.at(dongle);
    if (!place)
        place =
            central.add(dongleID(dongle), DongleManager::serviceUUID, DongleManager::inputCharUUID);
    return *place;
}

void World::discover(std::size_t dongle) {
    app();
    central.discover(peripheral(dongle).shared_from_this());
}

void World::linkUp(std::size_t dongle) {
    auto& it = peripheral(dongle);
    if (it.link == PeripheralState::connecting) central.connected(it.shared_from_this());
}

void World::failLink(std::size_t dongle) {
    auto& it = peripheral(dongle);
    if (it.link == PeripheralState::connecting) central.failToConnect(it.shared_from_this());
}

void World::drop(std::size_t dongle) {
    auto& it = peripheral(dongle);
    if (it.link != PeripheralState::disconnected) central.drop(it.shared_from_this());
}

void World::answerProbes(std::size_t dongle, const std::optional<std::string>& error) {
    auto& it = peripheral(dongle);
    it.answersProbe = true;
    it.probeError = error;
    answerProbe(it.id, error);
}

/// If one waits.
void World::answerProbe(const Uuid& id, const std::optional<std::string>& error) {
    if (waitingProbes.erase(id) == 0) return;
    auto& it = peripheral(index(id));
    if (it.delegate) it.delegate->didWriteValue(it, {DongleManager::inputCharUUID, "input"}, error);
}

Uuid World::profile(const std::string& name) {
    const auto it = std::ranges::find(*state().profiles, name, &Profile::name);
    return it != state().profiles->end() ? it->id : Uuid{};
}

void World::pressHotkey(std::uint32_t keyCode, std::uint32_t modifiers) {
    app();
    hotkeys.press(keyCode, modifiers);
}

void World::watchPanels() {
    panels.onChange = [this](const FakePanel& panel, std::string_view what) {
        auto line = "panel " + quoted(panel.view.target) + ' ' + std::string{what};
        if (what == "comes")
            line += " at " + std::to_string(std::lround(panel.origin.x)) + ' ' +
                    std::to_string(std::lround(panel.origin.y));
        witness.happened(line);
    };
}

void World::sendChord(std::string_view text, std::size_t dongle) {
    TargetMacro::send(text, dongleID(dongle), *app().dongleManager, clock);
}

void World::showWrittenSettings() {
    for (const auto& key : std::exchange(defaults.writes, {})) {
        const auto value = valueOf<bool>(defaults, key);
        witness.happened("stored " + key + (value ? (*value ? " on" : " off") : ""));
    }
}

void World::associateMouseAndMouseCursorPosition(bool connected) {
    cursorFrozen = !connected;
    witness.happened(connected ? "cursor freed" : "cursor frozen");
}

void World::displayHideCursor() {
    ++cursorHidden;
    witness.happened("cursor hidden");
}

void World::displayShowCursor() {
    --cursorHidden;
    witness.happened("cursor shown");
}

void World::launch(ProcessDescription process) {
    auto words = "started " + process.executable;
    for (const auto& argument : process.arguments) words += ' ' + quoted(argument);
    witness.happened(words);
}

void World::log(std::string_view line) {
    witness.happened("log " + std::string{line});
}

} // namespace quenthisar
