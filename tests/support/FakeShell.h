// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HotkeyService.h"
#include "Platform/Pasteboard.h"
#include "Platform/SerialQueue.h"
#include "Platform/StatusItem.h"
#include "UI/ConfigView.h"
#include "UI/HUDView.h"
#include "support/VirtualClock.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenthisar {

/// Hotkeys that a test presses; `taken` are those that another program holds.
class FakeHotkeyService final : public HotkeyService {
public:
    struct Combination {
        std::uint32_t keyCode = 0, modifiers = 0;
        auto operator<=>(const Combination&) const = default;
    };

    void installEventHandler(Handler next) override { handler = std::move(next); }
    std::optional<HotkeyRef> registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                 const HotkeyIdentity& identity) override {
        const Combination combination{keyCode, modifiers};
        asked.emplace_back(combination, identity);
        if (taken.contains(combination)) return std::nullopt;
        registered.emplace_back(combination, identity);
        return static_cast<HotkeyRef>(registered.size());
    }

    /// Nothing happens if nobody has registered it.
    void press(std::uint32_t keyCode, std::uint32_t modifiers) {
        for (const auto& [combination, identity] : registered)
            if (combination == Combination{keyCode, modifiers}) handler(identity);
    }

    Handler handler;
    std::set<Combination> taken;
    std::vector<std::pair<Combination, HotkeyIdentity>> asked, registered;
};

/// A status bar whose item a test opens. It keeps no copy of the menu, but counts how often a host
/// that does would have been told.
class FakeStatusBar final : public StatusBar {
public:
    std::unique_ptr<StatusItem> statusItem() override { return std::make_unique<Item>(*this); }

    Menu open() const {
        Menu menu{{.title = "of the last time"}};
        delegate.menuNeedsUpdate(menu);
        return menu;
    }
    void choose(const MenuItem& item) const { delegate.choose(item); }

    int items = 0; // there now
    MenuDelegate delegate;
    int updates = 0;

private:
    struct Item final : StatusItem {
        explicit Item(FakeStatusBar& owner) : bar(owner) { ++bar.items; }
        ~Item() override { --bar.items; }
        void setImage(const StatusImage& /*next*/) override {}
        void setMenu(MenuDelegate next) override { bar.delegate = std::move(next); }
        void menuMayHaveChanged() override { ++bar.updates; }

        FakeStatusBar& bar;
    };
};

class FakePasteboard final : public Pasteboard {
public:
    std::optional<std::string> string() override { return text; }
    std::optional<std::string> text;
};

/// A thread in virtual time: what waits there runs when the test says so, and its sleeps pass on
/// the clock.
class FakeSerialQueue final : public SerialQueue {
public:
    explicit FakeSerialQueue(VirtualClock& virtualClock) : clock(virtualClock) {}

    void async(std::function<void()> action) override { waiting.push_back(std::move(action)); }
    bool sleepForTimeInterval(Seconds interval) override {
        clock.advance(std::chrono::round<VirtualClock::Nanoseconds>(interval));
        return !isGoing;
    }

    void run() {
        while (!waiting.empty()) {
            const auto action = std::move(waiting.front());
            waiting.pop_front();
            action();
        }
    }

    VirtualClock& clock;
    std::deque<std::function<void()>> waiting;
    bool isGoing = false;
};

class FakePanels;

/// A panel that does what it is told at once, but for its animations, which take their time.
class FakePanel final : public Panel {
public:
    FakePanel(FakePanels& factory, HUDView content) : panels(factory), view(std::move(content)) {}

    Size fittingSize(Point on) override;
    void setFrameOrigin(Point next) override { origin = next; }
    void setAlpha(double next) override { alpha = next; }
    void orderFrontRegardless() override { show(true); }
    void orderOut() override { show(false); }
    void animateAlpha(double next, Seconds duration, std::function<void()> completion) override;

    FakePanels& panels;
    const HUDView view;
    Point origin, askedOn;
    double alpha = 1;
    bool isShown = false;
    std::vector<std::pair<double, Seconds>> fades;

private:
    void show(bool next);
};

class FakePanels final : public HUDPanels {
public:
    explicit FakePanels(VirtualClock& virtualClock) : clock(virtualClock) {}

    std::shared_ptr<Panel> create(const HUDView& view) override {
        views.push_back(view);
        made.push_back(std::make_shared<FakePanel>(*this, view));
        return made.back();
    }
    int shown() const { return onScreen; }

    VirtualClock& clock;
    Size size{300, 90};
    std::vector<HUDView> views;
    std::vector<std::shared_ptr<FakePanel>> made;
    /// Called when a panel comes or goes, and when it begins to fade.
    std::function<void(const FakePanel&, std::string_view what)> onChange;

private:
    friend FakePanel;
    void changed(const FakePanel& panel, std::string_view what) const {
        if (onChange) onChange(panel, what);
    }

    int onScreen = 0;
};

inline Size FakePanel::fittingSize(Point on) {
    askedOn = on;
    return panels.size;
}

inline void FakePanel::show(bool next) {
    if (std::exchange(isShown, next) == next) return;
    panels.onScreen += next ? 1 : -1;
    panels.changed(*this, next ? "comes" : "goes");
}

inline void FakePanel::animateAlpha(double next, Seconds duration,
                                    std::function<void()> completion) {
    fades.emplace_back(next, duration);
    panels.changed(*this, next > 0 ? "fades in" : "fades out");
    const auto number = fades.size();
    panels.clock.after(duration, [this, number, next, done = std::move(completion)] {
        if (number != fades.size()) return; // another one has begun
        alpha = next;
        if (done) done();
    });
}

/// Makes windows that only remember how often they were brought to the front.
class FakeConfigWindows final : public ConfigWindows {
public:
    struct Window final : ConfigWindow {
        explicit Window(int& counter) : shown(counter) {}
        void makeKeyAndOrderFront() override { ++shown; }
        int& shown;
    };

    std::unique_ptr<ConfigWindow> create(const ConfigView& view) override {
        actions.push_back(view.actions);
        return std::make_unique<Window>(shown);
    }

    std::vector<ConfigActions> actions; // of each window that was made
    int shown = 0;
};

} // namespace quenthisar
