// SPDX-License-Identifier: MIT
// What the core does with one event: time, and how often it asks for memory. The ports are fakes
// that do next to nothing.
#include "TakeoverFixture.h"
#include "support/Allocations.h"
#include "unit/AppDelegateFixture.h"

#include "Capture/KeycodeMap.h"
#include "Model/StoredProfiles.h"

#include <benchmark/benchmark.h>

#include <array>
#include <limits>
#include <string>

namespace quenthisar {
namespace {

constexpr Rect display{0, 0, 1920, 1080};

std::string displayName(std::int64_t number) {
    // As long as the identifiers of real displays.
    return "4F1E6A2C-0000-5000-8000-0000000000" + std::to_string(10 + number);
}

Uuid numbered(std::uint32_t number) {
    Uuid id = *Uuid::parse("10000000-0000-4000-8000-000000000000");
    for (std::size_t i = 0; i < 4; ++i)
        id.bytes.at(15 - i) = static_cast<std::uint8_t>(number >> (8 * i));
    return id;
}

/// Reports how often memory was asked for, per iteration.
class Counted {
public:
    explicit Counted(benchmark::State& running) : state(running) {}
    ~Counted() {
        state.counters["allocations"] = benchmark::Counter(
            static_cast<double>(allocations() - before), benchmark::Counter::kAvgIterations);
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    benchmark::State& state;
    const std::size_t before = allocations();
};

/// Displays in a row, the last of them with its right edge bound.
struct Host : TakeoverFixture {
    explicit Host(std::int64_t displayCount = 1) {
        for (std::int64_t i = 1; i < displayCount; ++i)
            addDisplay(displayName(i),
                       {display.width * static_cast<double>(i), 0, display.width, display.height});
        lastDisplay = displayCount == 1 ? "D1" : displayName(displayCount - 1);
        edge = display.width * static_cast<double>(displayCount) - 1;
        bind(A, Edge::right, lastDisplay);
        central.writes.reserve(payloadsAtOnce);
    }
    void takeOver() {
        moveTo(edge, 500);
        central.writes.clear();
    }
    /// A log that has room: it is no part of what is measured.
    void forget() {
        if (central.writes.size() > payloadsAtOnce - 8) central.writes.clear();
    }

    static constexpr std::size_t payloadsAtOnce = 4096;
    std::string lastDisplay;
    double edge = 0;
};

/// A thousand dongles, and as many profiles that each bind all edges. The edge leads to the last.
void addThousands(Host& host) {
    constexpr std::uint32_t many = 1000;
    host.state.dongles.modify([](auto& dongles) {
        for (std::uint32_t i = 0; i < many; ++i)
            dongles.push_back({.id = numbered(i), .name = "Dongle " + std::to_string(i)});
    });
    host.state.profiles.modify([&](auto& profiles) {
        for (std::uint32_t i = 0; i < many; ++i) {
            Profile profile{.id = numbered(many + i), .name = "Profile " + std::to_string(i)};
            for (const auto side : {Edge::left, Edge::right, Edge::top, Edge::bottom})
                profile.bindings[bindingKey(side, host.lastDisplay)] = numbered(i);
            profiles.push_back(std::move(profile));
        }
    });
    host.bind(numbered(many - 1), Edge::right, host.lastDisplay);
}

void localMove(benchmark::State& state) {
    Host host{state.range(0)};
    const double middle = host.edge - display.width / 2;
    const Counted counted{state};
    double step = 0;
    while (state.KeepRunning())
        benchmark::DoNotOptimize(host.moveTo(middle + (step = 1 - step), 500));
}
BENCHMARK(localMove)->Name("local move, off the edges, displays")->Arg(1)->Arg(6)->Arg(50);

/// The dongle isn't connected: all is looked up each time, and nothing comes of it.
void moveAtEdge(benchmark::State& state, Host& host) {
    host.manager.disconnect(A);
    host.clock.settle();
    const Counted counted{state};
    double step = 0;
    while (state.KeepRunning())
        benchmark::DoNotOptimize(host.moveTo(host.edge, 500 + (step = 1 - step)));
}
void localMoveAtEdge(benchmark::State& state) {
    Host host{state.range(0)};
    moveAtEdge(state, host);
}
BENCHMARK(localMoveAtEdge)->Name("local move, at a bound edge, displays")->Arg(1)->Arg(6)->Arg(50);

void localMoveAmongThousands(benchmark::State& state) {
    Host host{6};
    addThousands(host);
    moveAtEdge(state, host);
}
BENCHMARK(localMoveAmongThousands)
    ->Name("local move, at a bound edge, 1,000 dongles, profiles, bindings");

void forwarded(benchmark::State& state, Host& host, const std::function<void()>& event) {
    host.takeOver();
    const Counted counted{state};
    while (state.KeepRunning()) {
        event();
        host.forget();
    }
}

void forwardedMove(benchmark::State& state) {
    Host host;
    host.state.setSensitivity(static_cast<double>(state.range(0)) / 100, A);
    forwarded(state, host, [&] { host.motion(3, -2); });
}
BENCHMARK(forwardedMove)->Name("forwarded move, factor in percent")->Arg(100)->Arg(150);

void forwardedKey(benchmark::State& state) {
    Host host;
    forwarded(state, host, [&] {
        host.key(EventType::keyDown, 0);
        host.key(EventType::keyUp, 0);
    });
}
BENCHMARK(forwardedKey)->Name("forwarded key, press and release");

void forwardedScroll(benchmark::State& state) {
    Host host;
    forwarded(state, host,
              [&] { host.taps.post({.type = EventType::scrollWheel, .scrollDelta = 1}); });
}
BENCHMARK(forwardedScroll)->Name("forwarded scrolling, one line");

void forwardedMediaKey(benchmark::State& state) {
    Host host;
    forwarded(state, host, [&] {
        host.mediaKey(0, 0x0A);
        host.mediaKey(0, 0x0B);
    });
}
BENCHMARK(forwardedMediaKey)->Name("forwarded media key, press and release");

void send(benchmark::State& state) {
    Host host;
    const auto payload = Report::mouse({.dx = 1});
    const Counted counted{state};
    while (state.KeepRunning()) {
        host.manager.send(payload, A);
        host.forget();
    }
}
BENCHMARK(send)->Name("send");

void assignment(benchmark::State& state) {
    AppDelegateFixture f;
    f.launch();
    f.discover({A, B});
    f.connect({A, B});
    auto dongles = *f.state().dongles;
    const Counted counted{state};
    while (state.KeepRunning()) {
        std::swap(dongles.front(), dongles.back());
        f.state().dongles = dongles;
        f.clock.settle();
    }
}
BENCHMARK(assignment)->Name("assignment of the dongles, all observers");

void loadProfiles(benchmark::State& state) {
    Host host;
    addThousands(host);
    const auto text = encodeProfiles(*host.state.profiles).value_or("");
    const Counted counted{state};
    while (state.KeepRunning()) benchmark::DoNotOptimize(decodeProfiles(text));
}
BENCHMARK(loadProfiles)->Name("1,000 stored profiles read")->Unit(benchmark::kMillisecond);

void convertClipboard(benchmark::State& state, std::string_view piece) {
    constexpr std::size_t size = 1 << 20;
    std::string text;
    while (text.size() < size) text += piece;
    const Counted counted{state};
    while (state.KeepRunning())
        benchmark::DoNotOptimize(
            KeycodeMap::asciiBytes(text, std::numeric_limits<std::size_t>::max()));
}
BENCHMARK_CAPTURE(convertClipboard, ascii, "The quick brown fox jumps over the lazy dog.\n")
    ->Name("1 MiB of clipboard text, English")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(convertClipboard, french, "Dès Noël où un zéphyr haï me vêt de glaçons.\n")
    ->Name("1 MiB of clipboard text, French")
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quenthisar

BENCHMARK_MAIN();
