// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Capture/TargetMacro.h"
#include "Platform/Displays.h"
#include "UI/StatusMenu.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace quenthisar {

namespace {

constexpr Seconds accessibilityPollInterval{1.0};
constexpr Seconds hudAutoHide{2.6};
/// Many changes make one new menu, and the beginning of a takeover does not wait for it.
constexpr Seconds menuUpdateDelay{0.1};
/// How far inside the crossed edge the panel's centre is, in points.
constexpr double hudInsideTopOrBottom = 80, hudInsideLeftOrRight = 120;

constexpr std::uint32_t keyCodeV = 9;
/// Of the keys 1 to 9 above the letters.
constexpr std::array<std::uint32_t, 9> digitKeyCodes{18, 19, 20, 21, 23, 22, 26, 28, 25};
constexpr std::uint32_t chordModifiers =
    HotkeyModifiers::control | HotkeyModifiers::option | HotkeyModifiers::command;

constexpr bool isConnected(const Dongle& dongle) {
    return dongle.state == DongleConnectionState::connected;
}

} // namespace

AppDelegate::AppDelegate(const Ports& platform)
    : state(platform.defaults, platform.displays, platform.loginItem, platform.launcher,
            platform.log),
      ports(platform), hotkeys(platform.hotkeys),
      hud(platform.queue, platform.displays, platform.panels) {}

void AppDelegate::applicationDidFinishLaunching() {
    dongleManager = std::make_unique<DongleManager>(state, ports.central, ports.queue, ports.log);
    eventTap =
        std::make_unique<EventTapController>(state, *dongleManager, ports.taps, ports.cursor);
    clipboard = std::make_shared<ClipboardTyper>(*dongleManager, ports.pasteboard,
                                                 ports.typingQueue, ports.queue);
    state.axTrusted = ports.trust.isProcessTrusted();
    installStatusItem();
    registerHotkeys();
    observeTakeover();
    axTimer =
        ports.queue.every(accessibilityPollInterval, guard.bind([this] { pollAccessibility(); }));
    ports.displays.onChange(guard.bind([this] { screensChanged(); }));
    showWindow();
    captureAutomatically();
}

void AppDelegate::pollAccessibility() {
    const bool trusted = ports.trust.isProcessTrusted();
    if (trusted != *state.axTrusted) state.axTrusted = trusted;
    captureAutomatically();
}

void AppDelegate::captureAutomatically() {
    if (!*state.autoCapture || didAutoCapture || !ports.trust.isProcessTrusted()) return;
    didAutoCapture = true;
    setCapture(true);
}

void AppDelegate::setCapture(bool on) {
    if (!on) return eventTap->stop();
    if (!ports.trust.isProcessTrusted()) return ports.trust.prompt();
    eventTap->start();
}

void AppDelegate::showWindow() {
    if (!window) {
        ConfigActions actions{
            .connect = guard.bind([this](const Uuid& id) { dongleManager->connect(id); }),
            .disconnect = guard.bind([this](const Uuid& id) { dongleManager->disconnect(id); }),
            .identify = guard.bind([this](const Uuid& id) { dongleManager->identify(id); }),
            .toggleCapture = guard.bind([this](bool on) { setCapture(on); }),
            .promptAX = [&trust = ports.trust] { trust.prompt(); },
        };
        window = ports.windows.create({state, std::move(actions)});
    }
    window->makeKeyAndOrderFront();
}

void AppDelegate::screensChanged() {
    state.screens = ScreenLayout::current(ports.displays);
}

void AppDelegate::installStatusItem() {
    statusItem = ports.statusBar.statusItem();
    statusItem->setImage({.name = "menubar",
                          .width = 18,
                          .height = 18,
                          .isTemplate = true,
                          .accessibilityDescription = "Quenthisar"});
    statusItem->setMenu(
        {.menuNeedsUpdate = guard.bind([this](Menu& menu) { menuNeedsUpdate(menu); }),
         .choose = guard.bind([this](const MenuItem& item) { choose(item); })});
    menuObserver = state.objectWillChange.subscribe([this] { storeWillChange(); });
}

/// For hosts that show what they read before the menu opens.
void AppDelegate::storeWillChange() {
    if (std::exchange(isMenuUpdateDue, true)) return;
    ports.queue.after(menuUpdateDelay, guard.bind([this] {
        isMenuUpdateDue = false;
        statusItem->menuMayHaveChanged();
    }));
}

void AppDelegate::menuNeedsUpdate(Menu& menu) const {
    menu = StatusMenu::items(state, clipboardTarget().has_value());
}

void AppDelegate::choose(const MenuItem& item) {
    switch (item.action) {
    case MenuAction::toggleCaptureMenu: return toggleCaptureMenu();
    case MenuAction::selectProfile: return selectProfile(item.representedObject);
    case MenuAction::takeOver: return takeOver(item.representedObject);
    case MenuAction::pasteMenu: return pasteMenu();
    case MenuAction::showWindow: return showWindow();
    case MenuAction::none:
    case MenuAction::terminate: return;
    }
}

void AppDelegate::toggleCaptureMenu() {
    setCapture(!*state.captureEnabled);
}

void AppDelegate::selectProfile(const std::optional<std::string>& representedObject) {
    if (const auto id = Uuid::parse(representedObject.value_or(""))) state.switchProfile(*id);
}

void AppDelegate::takeOver(const std::optional<std::string>& representedObject) {
    const auto id = Uuid::parse(representedObject.value_or(""));
    if (!id) return;
    if (!*state.captureEnabled) setCapture(true);
    eventTap->takeOver(*id);
}

void AppDelegate::pasteMenu() {
    if (const auto target = clipboardTarget()) clipboard->typeClipboard(*target);
}

void AppDelegate::registerHotkeys() {
    hotkeys.registerHotkey(keyCodeV, chordModifiers, guard.bind([this] { pasteMenu(); }));
    for (std::size_t number = 1; number <= digitKeyCodes.size(); ++number) {
        const auto keyCode = digitKeyCodes[number - 1];
        hotkeys.registerHotkey(keyCode, chordModifiers,
                               guard.bind([this, number] { switchToProfile(number); }));
        hotkeys.registerHotkey(keyCode, chordModifiers | HotkeyModifiers::shift,
                               guard.bind([this, number] { takeOverDongle(number); }));
    }
}

void AppDelegate::switchToProfile(std::size_t number) {
    if (state.profiles->size() >= number) state.switchProfile((*state.profiles)[number - 1].id);
}

/// Counts the connected ones only.
void AppDelegate::takeOverDongle(std::size_t number) {
    for (const auto& dongle : *state.dongles)
        if (isConnected(dongle) && --number == 0) return eventTap->takeOver(dongle.id);
}

/// Values are delivered by the main run loop, after the assignment that they come from.
void AppDelegate::observeTakeover() {
    cancellables.push_back(state.takeover.subscribe([this](const std::optional<Takeover>& next) {
        ports.queue.async(guard.bind([this, next] { takeoverChanged(next); }));
    }));
    cancellables.push_back(
        state.activeProfileID.subscribe([this, isFirst = true](const Uuid& next) mutable {
            if (!std::exchange(isFirst, false))
                ports.queue.async(guard.bind([this, next] { profileActivated(next); }));
        }));
}

void AppDelegate::takeoverChanged(const std::optional<Takeover>& takeover) {
    if (!takeover || !*state.hudEnabled) return hud.hide(true);
    const auto& id = takeover->dongleID;
    hud.show({state.displayName(id), Palette::color(id)},
             hudAnchor(takeover->edge, takeover->screenUUID), hudAutoHide);
}

/// The profile's chord goes to one dongle at most.
void AppDelegate::profileActivated(const Uuid& id) {
    const auto profile = std::ranges::find(*state.profiles, id, &Profile::id);
    if (profile == state.profiles->end() || profile->targetCommand.empty()) return;
    std::set<Uuid> bound;
    for (const auto& [edge, dongleID] : profile->bindings) bound.insert(dongleID);
    const auto dongle = std::ranges::find_if(
        *state.dongles, [&](const Dongle& d) { return isConnected(d) && bound.contains(d.id); });
    if (dongle != state.dongles->end())
        TargetMacro::send(profile->targetCommand, dongle->id, *dongleManager, ports.queue);
}

std::optional<Point> AppDelegate::hudAnchor(std::optional<Edge> edge,
                                            const std::optional<std::string>& screenUUID) const {
    if (!edge || !screenUUID) return std::nullopt;
    const auto info = std::ranges::find(*state.screens, *screenUUID, &ScreenInfo::uuid);
    if (info == state.screens->end()) return std::nullopt;
    const auto screens = ports.displays.screens();
    const auto screen =
        std::ranges::find(screens, std::optional{info->displayID}, &Screen::screenNumber);
    if (screen == screens.end()) return std::nullopt;
    const auto& f = screen->frame;
    const Point middle{f.minX() + f.width / 2, f.minY() + f.height / 2};
    switch (*edge) {
    case Edge::top: return Point{middle.x, f.maxY() - hudInsideTopOrBottom};
    case Edge::bottom: return Point{middle.x, f.minY() + hudInsideTopOrBottom};
    case Edge::left: return Point{f.minX() + hudInsideLeftOrRight, middle.y};
    case Edge::right: return Point{f.maxX() - hudInsideLeftOrRight, middle.y};
    }
    return std::nullopt;
}

std::optional<Uuid> AppDelegate::clipboardTarget() const {
    if (const auto active = state.activeDongleID()) return active;
    const auto firstConnected = [this](const auto& isWanted) {
        const auto dongle = std::ranges::find_if(
            *state.dongles, [&](const Dongle& d) { return isConnected(d) && isWanted(d); });
        return dongle != state.dongles->end() ? std::optional{dongle->id} : std::nullopt;
    };
    const auto configured = state.configuredDongleIDs();
    const auto bound = firstConnected([&](const Dongle& d) { return configured.contains(d.id); });
    return bound ? bound : firstConnected([](const Dongle&) { return true; });
}

} // namespace quenthisar
