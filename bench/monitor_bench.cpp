// Memory of a monitor that runs for a day of virtual time on a line of all models: after the first hour, when
// everything that it keeps is there, against after the last one.

#include "bench/figures.h"
#include "map/search.h"
#include "monitor/csv_log.h"
#include "monitor/monitor.h"
#include "ports/append_file.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <cstdio>
#include <fstream>
#include <memory>

#include <unistd.h>

namespace kavro {

namespace {

constexpr std::int64_t HourMs = 3'600'000;
constexpr std::int64_t DayMs = 24 * HourMs;
constexpr std::size_t Baud9600Code = 3;
constexpr std::int16_t HighestAddress = 24;

double ResidentMb() {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

struct MonitorRun {
    MonitorRun() : Session(Ports(), Time), Monitor(Session) {
        Session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;
        Session.Line.CommPort(1).PortOpen(true);
        Session.SearchHighAddress = HighestAddress;
        NetworkSearch(Session, {}).Run();
        Log.Open("/dev/null");
        Start = Time.GetTickCount();
    }

    // One module every half second, as the window and the command line do.
    void RunUntil(std::int64_t passedMs) {
        for (; Time.GetTickCount() < Start + passedMs; ++Ticks) {
            const MonitorTurn turn = Monitor.Tick().value();
            Log.Write(CsvLines(Session, turn.Index, turn.Values, {.UnixMs = Time.GetTickCount()}));
            Time.SleepUntil((Start + (Ticks + 1) * MonitorTickMs) * 1000);
        }
    }

    SerialPorts Ports() {
        SerialPorts ports;
        ports[0] = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }

    VirtualClock Time;
    SimulatedLine Line = DemoLine();
    kavro::Session Session;
    kavro::Monitor Monitor;
    CsvLog Log{OpenAppendFile};
    std::int64_t Start = 0;
    std::int64_t Ticks = 0;
};

void Run() {
    const double start = Seconds(CLOCK_MONOTONIC);
    ResidentMb(); // what asking takes itself is there from now on
    MonitorRun run;
    run.RunUntil(HourMs);
    const double hour = ResidentMb();
    run.RunUntil(DayMs);
    const double day = ResidentMb();
    std::printf("monitor: %d modules, %lld turns and %lld transactions in a day of virtual time, %.1f s\n",
                run.Session.ModuleCount, static_cast<long long>(run.Ticks),
                static_cast<long long>(run.Session.Line.Statistics.Transactions),
                Seconds(CLOCK_MONOTONIC) - start);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "1 hour", "24 hours", "ratio", "goal");
    std::printf("  %-34s %10.2f %10.2f %8.3f %8s\n", "resident memory, MiB", hour, day, day / hour, "1");
}

} // namespace

} // namespace kavro

int main() {
    kavro::Run();
}
