// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include "Linux/XcbXkb.h"
#include "demo/XorgServer.h"

#include <QApplication>

#include <gtest/gtest.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>

namespace quenthisar::test {

namespace {

class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QApplication>(argumentCount, list);
    }
    void TearDown() override { application.reset(); }

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    std::unique_ptr<QApplication> application;
};

/// The pointer and the keyboard that each server begins with.
constexpr std::array<xcb_input_device_id_t, 2> masters{2, 3};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

} // namespace

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto start = std::chrono::steady_clock::now();
    QTimer wakeUp;
    wakeUp.start(20);
    while (!done()) {
        if (std::chrono::steady_clock::now() - start > limit) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool Injector::grabAll(Menu kind) const {
    if (kind == Menu::xinput2) return grabMasters();
    auto* c = connection->get();
    const auto pointer = xcb_grab_pointer(c, false, connection->root(), XCB_EVENT_MASK_BUTTON_PRESS,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                                          XCB_NONE, XCB_CURRENT_TIME);
    const auto keyboard = xcb_grab_keyboard(c, false, connection->root(), XCB_CURRENT_TIME,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XOwned<xcb_grab_pointer_reply_t> first{xcb_grab_pointer_reply(c, pointer, nullptr)};
    const XOwned<xcb_grab_keyboard_reply_t> second{xcb_grab_keyboard_reply(c, keyboard, nullptr)};
    return first && second && first->status == XCB_GRAB_STATUS_SUCCESS &&
           second->status == XCB_GRAB_STATUS_SUCCESS;
}

bool Injector::grabMasters() const {
    auto* c = connection->get();
    const XOwned<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    const std::uint32_t mask = 0;
    return std::ranges::all_of(masters, [&](xcb_input_device_id_t master) {
        const auto cookie = xcb_input_xi_grab_device(
            c, connection->root(), XCB_CURRENT_TIME, XCB_NONE, master, XCB_INPUT_GRAB_MODE_22_ASYNC,
            XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &mask);
        const XOwned<xcb_input_xi_grab_device_reply_t> reply{
            xcb_input_xi_grab_device_reply(c, cookie, nullptr)};
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    });
}

void Injector::ungrabAll(Menu kind) const {
    if (kind == Menu::xinput2) {
        for (const auto master : masters)
            xcb_input_xi_ungrab_device(connection->get(), XCB_CURRENT_TIME, master);
    }
    xcb_ungrab_pointer(connection->get(), XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection->get(), XCB_CURRENT_TIME);
    sync();
}

Injector::Pointer Injector::pointer() const {
    const XOwned<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(
        connection->get(), xcb_query_pointer(connection->get(), connection->root()), nullptr)};
    return reply ? Pointer{reply->root_x, reply->root_y} : Pointer{-1, -1};
}

int Injector::modifiers() const {
    const XOwned<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(
        connection->get(), xcb_query_pointer(connection->get(), connection->root()), nullptr)};
    return reply ? reply->mask & 0xFF : -1;
}

void Injector::killAllBut(const Witness& witness) const {
    const auto idsOfAClient = xcb_get_setup(connection->get())->resource_id_mask + 1;
    const std::array survivors{xcb_generate_id(connection->get()) / idsOfAClient,
                               witness.window / idsOfAClient};
    // A client dies with any of its resources.
    for (xcb_window_t client = 1; client < 8; ++client)
        for (xcb_window_t resource = 0; resource < 8; ++resource)
            if (std::ranges::count(survivors, client) == 0)
                xcb_kill_client(connection->get(), client * idsOfAClient + resource);
    sync();
}

void Injector::focus(xcb_window_t window) const {
    xcb_set_input_focus(connection->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    sync();
}

void Injector::lockGroup(std::uint8_t group) const {
    auto* c = connection->get();
    const XOwned<xcb_xkb_use_extension_reply_t> use{
        xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr)};
    xcb_xkb_latch_lock_state(c, XCB_XKB_ID_USE_CORE_KBD, 0, 0, true, group, 0, false, 0);
    sync();
}

void Injector::sync() const {
    const XOwned<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(
        connection->get(), xcb_get_input_focus(connection->get()), nullptr)};
}

void Injector::fake(std::uint8_t type, std::uint8_t detail, int x, int y) const {
    const bool isPosition = type == XCB_MOTION_NOTIFY && detail == 0;
    xcb_test_fake_input(connection->get(), type, detail, XCB_CURRENT_TIME,
                        isPosition ? connection->root() : xcb_window_t{XCB_WINDOW_NONE},
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    sync();
}

Witness::Witness() {
    auto* c = connection->get();
    window = xcb_generate_id(c);
    const auto size = connection->rootSize();
    const std::array<std::uint32_t, 2> values{
        1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
               XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, connection->root(), 0, 0, size.width,
                      size.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(c, window);
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    seen();
}

std::vector<int> Witness::seen() const {
    auto* c = connection->get();
    const XOwned<xcb_get_input_focus_reply_t> sync{
        xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)};
    std::vector<int> types;
    for (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(c)}; event;
         event.reset(xcb_poll_for_event(c))) {
        const int type = event->response_type & 0x7F;
        if (XCB_KEY_PRESS <= type && type <= XCB_MOTION_NOTIFY) types.push_back(type);
    }
    return types;
}

XStage::Environment::Environment(const demo::XServer& server) {
    qputenv("DISPLAY", server.display().toUtf8());
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("XDG_SESSION_TYPE");
}

XStage::XStage(Server kind)
    : server(kind == Server::xorg ? demo::startXorg(folder.path()) : demo::XServer{}) {
    if (kind == Server::xorg) demo::useKeymapOfDesktops(server);
    displays.screens();
    tap = taps.tapCreate(~std::uint64_t{0}, [this](const TapEvent& event) {
        delivered.push_back(event);
        onEvent(event);
        return TapVerdict::swallow;
    });
    source = taps.addToMainRunLoop(*tap);
    tap->enable(true);
    // Taking over waits for replies: after it the server knows what the tap wants.
    takeOver();
    giveBack();
    delivered.clear();
}

XStage::~XStage() {
    source.reset();
    tap.reset();
}

void XStage::setMonitor(const QString& name, const QString& geometry, const QString& output) const {
    run(QStringLiteral("xrandr --setmonitor *%1 %2 %3").arg(name, geometry, output));
}

void XStage::run(const QString& command) const {
    const auto words = QProcess::splitCommand(command);
    demo::ChildProcess process(words.front(), words.mid(1));
    EXPECT_EQ(process.waitForEnd(std::chrono::seconds(20)), 0) << qPrintable(command);
}

void XStage::takeOver() {
    cursor.associateMouseAndMouseCursorPosition(false);
    cursor.displayHideCursor();
}

void XStage::giveBack() {
    cursor.associateMouseAndMouseCursorPosition(true);
    cursor.displayShowCursor();
    // Nobody waits for the server to do it, except us.
    EXPECT_TRUE(runUntil([&] { return hands.grabAll(); }));
    hands.ungrabAll();
}

void XStage::loseConnections() const {
    const auto end = QStringLiteral(".X11-unix/X") + server.display().mid(1);
    for (int descriptor = 0; descriptor < FD_SETSIZE; ++descriptor) {
        sockaddr_un peer{};
        socklen_t size = sizeof peer - 1;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) != 0) continue;
        // An abstract name begins with a zero.
        const auto path = QByteArray(peer.sun_path, sizeof peer.sun_path).replace('\0', "");
        if (peer.sun_family == AF_UNIX && path.endsWith(end.toUtf8()) &&
            descriptor != hands.descriptor() && descriptor != witness.descriptor())
            ::shutdown(descriptor, SHUT_RDWR);
    }
}

bool XStage::waitFor(EventType type) {
    return runUntil([&] { return sees(type); });
}

Motion XStage::motion() const {
    Motion sum;
    for (const auto& event : delivered) {
        sum.x += event.deltaX;
        sum.y += event.deltaY;
    }
    return sum;
}

std::vector<EventType> XStage::types() const {
    std::vector<EventType> result;
    for (const auto& event : delivered) result.push_back(event.type);
    return result;
}

bool XStage::sees(EventType type) const {
    return std::ranges::count(delivered, type, &TapEvent::type) > 0;
}

} // namespace quenthisar::test
