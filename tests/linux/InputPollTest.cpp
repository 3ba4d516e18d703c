// SPDX-License-Identifier: MIT
#include "Linux/InputPoll.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

/// A main loop that watches an input of single bytes.
class InputPollTest : public testing::Test {
protected:
    InputPollTest() {
        QObject::connect(&notifier, &QSocketNotifier::activated, [this] {
            ++throughLoop;
            take();
        });
        InputPoll::start(ends[0], [this](auto) { take(); });
    }
    ~InputPollTest() override {
        InputPoll::stop(ends[0]);
        for (const int end : ends) ::close(end);
    }

    static std::array<int, 2> makeEnds() {
        std::array<int, 2> made{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, made.data()), 0);
        return made;
    }
    void type() const { EXPECT_EQ(::write(ends[1], "k", 1), 1); }
    void take() {
        char byte = 0;
        EXPECT_EQ(::read(ends[0], &byte, 1), 1);
        ++taken;
        handle();
    }
    /// Runs the loop until something quits it.
    void run() {
        constexpr auto farTooLong = 2s;
        QTimer::singleShot(farTooLong, &application, [] { QCoreApplication::exit(1); });
        EXPECT_EQ(QCoreApplication::exec(), 0);
    }
    /// The same while each millisecond brings input.
    void typeAndRun(const std::function<void()>& afterAHundred) {
        std::atomic<bool> typing = true;
        std::thread typist([&] {
            for (int i = 0; typing; ++i) {
                type();
                if (i == 100) afterAHundred();
                std::this_thread::sleep_for(1ms);
            }
        });
        run();
        typing = false;
        typist.join();
    }

    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
    const std::array<int, 2> ends = makeEnds();
    QSocketNotifier notifier{ends[0], QSocketNotifier::Read};
    std::function<void()> handle = [] {
        InputPoll::noteEvent();
        InputPoll::notePayload();
    };
    int throughLoop = 0, taken = 0;
};

TEST_F(InputPollTest, HandsPlainInputOnPastALoopWhoseTimersAndDescriptorsGoOn) {
    const auto other = makeEnds();
    QSocketNotifier otherNotifier(other[0], QSocketNotifier::Read);
    QObject::connect(&otherNotifier, &QSocketNotifier::activated, [] { QCoreApplication::quit(); });
    typeAndRun([&] { EXPECT_EQ(::write(other[1], "q", 1), 1); });
    for (const int end : other) ::close(end);
    QTimer::singleShot(100, [] { QCoreApplication::quit(); });
    typeAndRun([] {});
    EXPECT_GE(taken, 50);
    // Both may be ready in one instant.
    EXPECT_LE(throughLoop, taken / 4);
}

TEST_F(InputPollTest, ReturnsToTheLoopForWhatInputBringsAbout) {
    const std::function<void()> kinds[] = {
        [] { InputPoll::stir(); },      // told
        [] { InputPoll::noteEvent(); }, // an event that became no payload
        [&] {                           // a takeover that ends, and the next one
            InputPoll::stop(ends[0]);
            InputPoll::start(ends[0], [this](auto) { take(); });
        },
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(&kind - kinds);
        handle = [&] {
            kind();
            QTimer::singleShot(1, [] { QCoreApplication::quit(); });
        };
        QTimer::singleShot(10ms, [this] { type(); });
        run();
    }
    EXPECT_EQ(taken, std::ssize(kinds));
}

} // namespace
} // namespace quenthisar
