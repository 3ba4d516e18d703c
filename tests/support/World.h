// SPDX-License-Identifier: MIT
#pragma once

#include "AppDelegate.h"
#include "support/FakeCentral.h"
#include "support/FakeDisplays.h"
#include "support/FakeEventTaps.h"
#include "support/FakeHost.h"
#include "support/FakeShell.h"
#include "support/FakeUserDefaults.h"
#include "support/VirtualClock.h"
#include "support/VirtualThread.h"
#include "support/Witness.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenthisar {

/// The whole application with a fake behind every port: a host with its displays and its input, and
/// six dongles, A to F, somewhere in the air. It is launched when something first needs it, with
/// capture on. Tells a witness what comes of what a test does.
class World : Cursor, ProcessLauncher, SystemLog {
public:
    static constexpr std::size_t dongleCount = 6;

    explicit World(Witness& witness);
    ~World() override;
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    static const Uuid& dongleID(std::size_t dongle);
    /// `dongleCount` for an id that is none of theirs.
    static std::size_t index(const Uuid& ofDongle);
    /// "A" to "F"; the whole text of an id that is none of theirs.
    static std::string dongleName(const Uuid& id);

    AppDelegate& app();
    AppState& state() { return app().state; }

    // The host. A display that is plugged in again moves; the first one is the primary.
    void plug(const std::string& uuid, const Rect& frame);
    void unplug(const std::string& uuid);

    /// To a place on the host's displays; a drag while a button is down.
    void moveTo(Point location);
    /// By the mouse's own measure: in a takeover the cursor stays where it is.
    void moveBy(std::int64_t dx, std::int64_t dy);
    void button(std::size_t which, bool down); // left, right, other
    /// A host key code; the modifiers' own (55 to 62) change the flags.
    void key(std::int64_t code, bool down);
    void setFlags(std::uint64_t flags);
    void scroll(std::int64_t lines);
    void mediaKey(std::int64_t keyType, bool down);
    void disableTap(EventType why);

    // The air.
    FakePeripheral& peripheral(std::size_t dongle);
    void discover(std::size_t dongle);
    void linkUp(std::size_t dongle);
    void failLink(std::size_t dongle);
    void drop(std::size_t dongle);
    /// From now on; answers a probe that waits, too.
    void answerProbes(std::size_t dongle, const std::optional<std::string>& error);

    /// A hotkey, by its key and modifiers; those of its keys are events of their own.
    void pressHotkey(std::uint32_t keyCode, std::uint32_t modifiers);
    /// From now on tells the witness what the panels do.
    void watchPanels();

    /// As a profile's own chord is sent.
    void sendChord(std::string_view text, std::size_t dongle);
    /// Tells the witness which settings were written since it was last asked.
    void showWrittenSettings();

    /// The id of the first profile of this name; an unknown one if there is none.
    Uuid profile(const std::string& name);

    VirtualClock clock;
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeCentral central{clock};
    FakeLoginItemService loginItem;
    FakeEventTaps taps;
    FakeHotkeyService hotkeys;
    FakePanels panels{clock};
    FakePasteboard pasteboard;
    bool cursorFrozen = false;
    int cursorHidden = 0; // hides less shows

private:
    void associateMouseAndMouseCursorPosition(bool connected) override;
    void displayHideCursor() override;
    void displayShowCursor() override;
    void launch(ProcessDescription process) override;
    void log(std::string_view line) override;

    void subscribe();
    void arrangeDisplays();
    void answerProbe(const Uuid& id, const std::optional<std::string>& error);
    void post(const TapEvent& event);
    EventType motionType() const;
    std::uint64_t flags() const;

    Witness& witness;
    std::array<std::shared_ptr<FakePeripheral>, dongleCount> peripherals;
    std::set<Uuid> waitingProbes;
    std::vector<std::pair<std::string, Rect>> plugged;
    Point cursor;
    std::array<bool, 3> buttons{};
    std::uint64_t heldModifiers = 0; // by host key code
    FakeAccessibilityTrust trust;
    VirtualThread typing{clock};
    FakeStatusBar statusBar;
    FakeConfigWindows windows;
    std::optional<AppDelegate> delegate;
    std::vector<Subscription> subscriptions;
};

} // namespace quenthisar
