// A search of 256 silent addresses at one baud rate on the virtual clock against the waits that the search
// itself asks for, and the real time that it took.

#include "bench/figures.h"
#include "map/search.h"
#include "sim/simulated_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <cstdio>

namespace kavro {

namespace {

constexpr std::int64_t Addresses = 256;
constexpr std::int64_t ProbesPerAddress = 2; // without and with checksum
constexpr std::int64_t BaudChangePauseMs = 1000;
constexpr std::size_t Baud9600Code = 3;

bool Run() {
    VirtualClock clock;
    SimulatedLine silent;
    SerialPorts ports;
    ports[0] = std::make_unique<SimulatedPort>(silent, clock);
    Session session(std::move(ports), clock);
    session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;
    session.Line.CommPort(1).PortOpen(true);
    session.SearchHighAddress = Addresses - 1;

    const double start = Seconds(CLOCK_MONOTONIC);
    NetworkSearch(session, {}).Run();
    const double wallMs = (Seconds(CLOCK_MONOTONIC) - start) * 1e3;

    const std::int64_t named = BaudChangePauseMs + Addresses * ProbesPerAddress * session.Line.ReplyTimeout;
    const std::int64_t spent = clock.GetTickCount();
    std::printf("search: %lld silent addresses at one baud rate, found %d\n",
                static_cast<long long>(Addresses), session.ModuleCount);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "named", "search", "ratio", "goal");
    std::printf("  %-34s %10lld %10lld %8.4f %8s\n", "waits, virtual milliseconds",
                static_cast<long long>(named), static_cast<long long>(spent),
                static_cast<double>(spent) / static_cast<double>(named), "1");
    std::printf("  %-34s %10s %10.2f\n", "real milliseconds", "", wallMs);
    return spent == named;
}

} // namespace

} // namespace kavro

int main() {
    return kavro::Run() ? 0 : 1;
}
