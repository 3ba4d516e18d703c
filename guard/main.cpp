// SPDX-License-Identifier: MIT
// The guard: gives the desktop back when the program hangs while it holds the session's input, and
// releases the targets when it dies. The program starts it, with a socket as its standard input.
#include "Rescue.h"
#include "Watch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace quenthisar::guard;
using std::chrono::milliseconds;

constexpr useconds_t shortRest = 100'000; // us

/// In milliseconds, for poll; -1: for ever.
int waitFor(const Watch& watch) {
    const auto deadline = watch.deadline();
    if (!deadline) return -1;
    const auto left = std::chrono::ceil<milliseconds>(*deadline - Watch::Clock::now());
    return static_cast<int>(std::max(left, milliseconds{0}).count());
}

/// False when the program has ended.
bool takeMessage(Watch& watch) {
    std::array<char, 4096> buffer{};
    const auto length = ::recv(STDIN_FILENO, buffer.data(), buffer.size(), 0);
    if (length < 0) return errno == EINTR;
    if (length == 0) return false;
    watch.take({buffer.data(), static_cast<std::size_t>(length)}, Watch::Clock::now());
    return true;
}

} // namespace

int main() {
    // Whoever ends the program's whole group or session is not to end this before it.
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) std::signal(number, SIG_IGN);

    XRescue server;
    Watch watch;
    for (;;) {
        std::array<pollfd, 2> inputs{{{STDIN_FILENO, POLLIN, 0}, {server.descriptor(), POLLIN, 0}}};
        const int ready = ::poll(inputs.data(), inputs.size(), waitFor(watch));
        // Only the end of the channel is the end of the program.
        if (ready < 0 && errno != EINTR) ::usleep(shortRest);
        if (ready > 0 && inputs[0].revents != 0 && !takeMessage(watch)) break;
        if (ready > 0 && inputs[1].revents != 0) server.drain();
        if (const auto resource = watch.expired(Watch::Clock::now())) server.killClient(*resource);
    }
    disconnectDongles(watch.dongles());
    return 0;
}
