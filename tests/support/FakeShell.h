// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HotkeyService.h"
#include "Platform/Pasteboard.h"
#include "Platform/StatusItem.h"
#include "UI/ConfigView.h"
#include "UI/HUDView.h"
#include "support/VirtualClock.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenthisar {

/// Hotkeys that a test presses.
class FakeHotkeyService final : public HotkeyService {
public:
    struct Combination {
        std::uint32_t keyCode = 0, modifiers = 0;
        auto operator<=>(const Combination&) const = default;
    };

    void installEventHandler(Handler next) override { handler = std::move(next); }
    std::optional<HotkeyRef> registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                 const HotkeyIdentity& identity) override {
        registered.emplace_back(Combination{keyCode, modifiers}, identity);
        return static_cast<HotkeyRef>(registered.size());
    }

    /// Nothing happens if nobody has registered it.
    void press(std::uint32_t keyCode, std::uint32_t modifiers) {
        for (const auto& [combination, identity] : registered)
            if (combination == Combination{keyCode, modifiers}) handler(identity);
    }

    Handler handler;
    std::vector<std::pair<Combination, HotkeyIdentity>> registered;
};

/// A status bar whose item nobody sees.
class FakeStatusBar final : public StatusBar {
public:
    std::unique_ptr<StatusItem> statusItem() override { return std::make_unique<Item>(); }

private:
    struct Item final : StatusItem {
        void setImage(const StatusImage& /*next*/) override {}
        void setMenu(MenuDelegate /*next*/) override {}
        void menuMayHaveChanged() override {}
    };
};

class FakePasteboard final : public Pasteboard {
public:
    std::optional<std::string> string() override { return text; }
    std::optional<std::string> text;
};

class FakePanels;

/// A panel that does what it is told at once, but for its animations, which take their time.
class FakePanel final : public Panel, public std::enable_shared_from_this<FakePanel> {
public:
    FakePanel(FakePanels& factory, HUDView content) : panels(factory), view(std::move(content)) {}

    Size fittingSize(Point /*on*/) override { return {300, 90}; }
    void setFrameOrigin(Point next) override { origin = next; }
    void setAlpha(double /*next*/) override {}
    void orderFrontRegardless() override { show(true); }
    void orderOut() override { show(false); }
    void animateAlpha(double next, Seconds duration, std::function<void()> completion) override;

    FakePanels& panels;
    const HUDView view;
    Point origin;

private:
    void show(bool next);

    bool isShown = false;
    std::size_t fades = 0;
};

class FakePanels final : public HUDPanels {
public:
    explicit FakePanels(VirtualClock& virtualClock) : clock(virtualClock) {}

    std::shared_ptr<Panel> create(const HUDView& view) override {
        return std::make_shared<FakePanel>(*this, view);
    }
    int shown() const { return onScreen; }

    VirtualClock& clock;
    /// Called when a panel comes or goes, and when it begins to fade.
    std::function<void(const FakePanel&, std::string_view what)> onChange;

private:
    friend FakePanel;
    void changed(const FakePanel& panel, std::string_view what) const {
        if (onChange) onChange(panel, what);
    }

    int onScreen = 0;
};

inline void FakePanel::show(bool next) {
    if (std::exchange(isShown, next) == next) return;
    panels.onScreen += next ? 1 : -1;
    panels.changed(*this, next ? "comes" : "goes");
}

inline void FakePanel::animateAlpha(double next, Seconds duration,
                                    std::function<void()> completion) {
    panels.changed(*this, next > 0 ? "fades in" : "fades out");
    panels.clock.after(duration,
                       [self = shared_from_this(), number = ++fades, done = std::move(completion)] {
                           if (number == self->fades && done) done(); // or another one has begun
                       });
}

/// Makes windows that nobody sees, or what a test wants.
class FakeConfigWindows final : public ConfigWindows {
public:
    struct Window final : ConfigWindow {
        void makeKeyAndOrderFront() override {}
    };

    std::unique_ptr<ConfigWindow> create(const ConfigView& view) override { return make(view); }

    std::function<std::unique_ptr<ConfigWindow>(const ConfigView&)> make =
        [](const ConfigView& /*view*/) { return std::make_unique<Window>(); };
};

} // namespace quenthisar
