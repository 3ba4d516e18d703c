// SPDX-License-Identifier: MIT
#pragma once

namespace quenthisar {

class AccessibilityTrust;
class Central;
class ConfigWindows;
class Cursor;
class Displays;
class EventTaps;
class HUDPanels;
class HotkeyService;
class LoginItemService;
class MainQueue;
class Pasteboard;
class ProcessLauncher;
class SerialQueue;
class StatusBar;
class SystemLog;
class UserDefaults;

/// Everything that the operating system does for the application. All outlive the application
/// delegate.
struct Ports {
    MainQueue& queue;
    UserDefaults& defaults;
    Displays& displays;
    EventTaps& taps;
    Cursor& cursor;
    AccessibilityTrust& trust;
    Central& central;
    LoginItemService& loginItem;
    ProcessLauncher& launcher;
    SystemLog& log;
    HotkeyService& hotkeys;
    HUDPanels& panels;
    Pasteboard& pasteboard;
    SerialQueue& typingQueue;
    StatusBar& statusBar;
    ConfigWindows& windows;
};

} // namespace quenthisar
