// SPDX-License-Identifier: MIT
#include "dongle/PayloadReader.h"

#include <gtest/gtest.h>

#include <future>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace quenthisar::dongle {
namespace {

using namespace std::chrono_literals;

/// A reader, and the far end of its socket.
class PayloadReaderTest : public testing::Test {
protected:
    PayloadReaderTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        far = ends[0];
        near = ends[1];
    }
    ~PayloadReaderTest() override { hangUp(); }

    void hangUp() {
        if (far >= 0) ::close(far);
        far = -1;
    }
    void send(std::uint8_t number) const { EXPECT_EQ(::send(far, &number, 1, 0), 1); }

    PayloadReader::Handlers handlers() {
        return {.take =
                    [this](std::span<const std::uint8_t> payload) {
                        const std::lock_guard lock{mutex};
                        taken.push_back(payload[0]);
                        changed.notify_all();
                    },
                .ended = [this] { ended.set_value(); }};
    }
    bool waitFor(std::size_t count, std::chrono::milliseconds limit = 10s) {
        std::unique_lock lock{mutex};
        return changed.wait_for(lock, limit, [&] { return taken.size() >= count; });
    }

    int far = -1, near = -1;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::uint8_t> taken;
    std::promise<void> ended;
};

TEST_F(PayloadReaderTest, TakesAllInOrderButNothingWhileItDoesNotRead) {
    constexpr std::uint8_t count = 200;
    PayloadReader reader{near, handlers(), true};
    for (std::uint8_t i = 0; i < count; ++i) {
        if (i % 50 == 49) reader.setReading(i % 100 == 49);
        send(i);
    }
    reader.setReading(false);
    send(count);
    EXPECT_FALSE(waitFor(count + 1U, 50ms));
    reader.setReading(true);
    ASSERT_TRUE(waitFor(count + 1U));
    for (std::size_t i = 0; i <= count; ++i) EXPECT_EQ(taken[i], i);
}

TEST_F(PayloadReaderTest, DrainsOnTheCallersThreadAndTellsTheEndOnce) {
    {
        PayloadReader reader{near, handlers(), true};
        for (std::uint8_t i = 0; i < 100; ++i) send(i);
        reader.drain();
        EXPECT_EQ(taken.size(), 100);
        reader.setReading(true);
        hangUp();
        EXPECT_EQ(ended.get_future().wait_for(10s), std::future_status::ready);
    }
    EXPECT_EQ(taken.size(), 100);
}

} // namespace
} // namespace quenthisar::dongle
