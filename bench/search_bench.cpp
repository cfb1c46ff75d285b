// On the virtual clock: a search of 256 silent addresses at one baud rate against the waits that the search
// itself asks for, and the exact against the fast search of a line of 20 modules at all eight rates.

#include "bench/figures.h"
#include "link/baud.h"
#include "map/fast_search.h"
#include "map/search.h"
#include "sim/module_factory.h"
#include "sim/simulated_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <algorithm>
#include <cstdio>

namespace kavro {

namespace {

constexpr std::int64_t Addresses = 256;
constexpr std::int64_t ProbesPerAddress = 2; // without and with checksum
constexpr std::int64_t BaudChangePauseMs = 1000;
constexpr std::size_t Baud9600Code = 3;

constexpr int LineModules = 20;
constexpr double GoalSeconds = 180;
constexpr const char* Models[] = {"8250", "8410", "8310", "8210", "8510"};

/// A session with COM1 on that line, which it searches as a whole.
struct BenchSession {
    explicit BenchSession(SimulatedLine& line) : Session(Ports(line), Clock) {
        Session.Line.CommPort(1).PortOpen(true);
        Session.SearchHighAddress = Addresses - 1;
    }

    SerialPorts Ports(SimulatedLine& line) {
        SerialPorts ports;
        ports[0] = std::make_unique<SimulatedPort>(line, Clock);
        return ports;
    }

    VirtualClock Clock;
    kavro::Session Session;
};

bool SilentLine() {
    SimulatedLine silent;
    BenchSession bench(silent);
    Session& session = bench.Session;
    session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;

    const double start = Seconds(CLOCK_MONOTONIC);
    NetworkSearch(session, {}).Run();
    const double wallMs = (Seconds(CLOCK_MONOTONIC) - start) * 1e3;

    const std::int64_t named = BaudChangePauseMs + Addresses * ProbesPerAddress * session.Line.ReplyTimeout;
    const std::int64_t spent = bench.Clock.GetTickCount();
    std::printf("search: %lld silent addresses at one baud rate, found %d\n",
                static_cast<long long>(Addresses), session.ModuleCount);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "named", "search", "ratio", "goal");
    std::printf("  %-34s %10lld %10lld %8.4f %8s\n", "waits, virtual milliseconds",
                static_cast<long long>(named), static_cast<long long>(spent),
                static_cast<double>(spent) / static_cast<double>(named), "1");
    std::printf("  %-34s %10s %10.2f\n", "real milliseconds", "", wallMs);
    return spent == named;
}

SimulatedLine LineOf20(int turnAroundMs, int latencyMs) {
    SimulatedLine line;
    line.TurnAroundMicroseconds = std::int64_t{1000} * turnAroundMs;
    line.LineFaults.LatencyMs = latencyMs;
    for (int i = 0; i < LineModules; ++i)
        line.Add(MakeModule(Models[i % 5], 1 + 12 * i, BaudFromCode(static_cast<std::int16_t>(i % 8)),
                            i % 3 == 0));
    return line;
}

bool FastAgainstExact(const char* name, int turnAroundMs, int latencyMs) {
    SimulatedLine lines[] = {LineOf20(turnAroundMs, latencyMs), LineOf20(turnAroundMs, latencyMs)};
    BenchSession exact(lines[0]), fast(lines[1]);
    for (BenchSession* bench : {&exact, &fast})
        for (int code = 0; code < BaudCodeCount; ++code)
            bench->Session.Line.SettingsOf(1).BaudEnabled[static_cast<std::size_t>(code)] = 1;
    NetworkSearch(exact.Session, {}).Run();
    FastSearch(fast.Session, {}).Run();
    const double seconds[] = {static_cast<double>(exact.Clock.GetTickCount()) / 1e3,
                              static_cast<double>(fast.Clock.GetTickCount()) / 1e3};
    const bool hasGoal = turnAroundMs == 2 && latencyMs == 0;
    std::printf("  %-34s %10.1f %10.1f %8.3f %8s   found %d, %d\n", name, seconds[0], seconds[1],
                seconds[1] / seconds[0], hasGoal ? "180 s" : "", exact.Session.ModuleCount,
                fast.Session.ModuleCount);
    return std::ranges::includes(fast.Session.Device, exact.Session.Device) &&
           fast.Session.ModuleCount == LineModules && (!hasGoal || seconds[1] < GoalSeconds);
}

bool AllRates() {
    std::printf("search: 8 rates x %lld addresses, %d modules, virtual seconds\n",
                static_cast<long long>(Addresses), LineModules);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "exact", "fast", "ratio", "goal");
    const bool same = FastAgainstExact("modules answer after 2 ms", 2, 0);
    return FastAgainstExact("the same, adapter of 16 ms", 2, 16) && FastAgainstExact("after 35 ms", 35, 0) &&
           same;
}

} // namespace

} // namespace kavro

int main() {
    const bool asNamed = kavro::SilentLine();
    return kavro::AllRates() && asNamed ? 0 : 1;
}
