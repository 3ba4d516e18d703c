// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Platform/Displays.h"

namespace quenthisar {

namespace {

constexpr Seconds accessibilityPollInterval{1.0};

} // namespace

AppDelegate::AppDelegate(const Ports& platform)
    : state(platform.defaults, platform.displays, platform.loginItem, platform.launcher,
            platform.log),
      ports(platform) {}

void AppDelegate::applicationDidFinishLaunching() {
    dongleManager = std::make_unique<DongleManager>(state, ports.central, ports.queue, ports.log);
    eventTap =
        std::make_unique<EventTapController>(state, *dongleManager, ports.taps, ports.cursor);
    state.axTrusted = ports.trust.isProcessTrusted();
    axTimer =
        ports.queue.every(accessibilityPollInterval, guard.bind([this] { pollAccessibility(); }));
    ports.displays.onChange(guard.bind([this] { screensChanged(); }));
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

void AppDelegate::screensChanged() {
    state.screens = ScreenLayout::current(ports.displays);
}

} // namespace quenthisar
