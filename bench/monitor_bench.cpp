// Memory of a monitor that runs for a day of virtual time on a line of all models: after the first hour, when
// everything that it keeps is there, against after the last one. Then the pace of 32 modules at 9600 baud:
// what one of them that has failed costs the others, against the same line with that module taken out of the
// map, and how much of the time the line is in use.

#include "bench/figures.h"
#include "map/search.h"
#include "monitor/csv_log.h"
#include "monitor/monitor.h"
#include "ports/append_file.h"
#include "ports/steady_clock.h"
#include "sim/demo_line.h"
#include "sim/module_factory.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

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
            const WallTime now = {.UnixMs = Time.GetTickCount()};
            Log.Write(CsvLines(Session, turn.Index, turn.Values, now), now);
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

constexpr int FleetSize = 32;
constexpr int DeadAddress = 9; // an 8250, which is asked for eight values
constexpr const char* FleetModels[] = {"8250", "8410", "8210", "8510", "8240", "8420", "8310", "8230"};
constexpr std::int64_t WarmUpUs = 60'000'000;
constexpr std::int64_t WatchedUs = 600'000'000;
constexpr std::int64_t RealUs = 3'000'000;
constexpr int RealRuns = 5;
constexpr std::int64_t CharacterUs = 10'000'000 / 9600;
constexpr std::int16_t Baud19200Code = 4;

struct PaceCase {
    const char* What = nullptr;
    int IntervalMs = 0;
    Faults Dead;
    bool OtherRate = false; // the dead module is taken for one at 19200 baud
    const char* Goal = "> 0.95";
};

const PaceCase PaceCases[] = {
    {"silent", 0, {.Silent = true}},
    {"silent, a turn each 500 ms", MonitorTickMs, {.Silent = true}},
    {"refuses", 0, {.Refuse = true}},
    {"gives a wrong address", 0, {.WrongAddress = true}},
    {"no carriage return", 0, {.NoCarriageReturn = true}},
    {"noise with each reply", 0, {.Noise = true}},
    {"silent, at another rate", 0, {.Silent = true}, true, ""},
    {"characters without end", 0, {.Babble = true}, false, ""},
};

// What the living modules did in the time that was watched.
struct PaceFigures {
    std::int64_t Turns = 0;
    std::int64_t Readings = 0;
    double Seconds = 0;
    double LineSeconds = 0; // that commands, turn-arounds and replies took
};

struct Fleet {
    explicit Fleet(Clock& time) : Time(time), Session(Ports(), time) {
        for (int address = 1; address <= FleetSize; ++address)
            Line.Add(MakeModule(FleetModels[(address - 1) % std::size(FleetModels)], address));
        Session.Line.CommPort(1).PortOpen(true);
        Session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;
        Session.SearchHighAddress = FleetSize;
        Session.ScanIndex = -1;
        Line.Log = [this](const LineEvent& event) {
            InUseUs +=
                static_cast<std::int64_t>(event.Command.size() + 1 + event.Reply.size()) * CharacterUs +
                (event.Reply.empty() ? 0 : Line.TurnAroundMicroseconds);
        };
    }

    void TakeOutOfMap(int index) {
        --Session.ModuleCount;
        for (; index < Session.ModuleCount; ++index)
            Session.ModuleTable[index] = Session.ModuleTable[index + 1];
    }

    PaceFigures Watch(int intervalMs, std::int64_t fromUs, std::int64_t lengthUs) {
        kavro::Monitor monitor(Session);
        PaceFigures figures;
        const std::int64_t intervalUs = std::int64_t{1000} * intervalMs;
        const std::int64_t begin = Time.Microseconds() + fromUs;
        std::int64_t now = Time.Microseconds(), due = now, inUse = InUseUs;
        for (; now < begin + lengthUs; now = Time.Microseconds()) {
            if (now < begin)
                inUse = InUseUs;
            const auto turn = monitor.Tick();
            if (turn && now >= begin && Session.ModuleTable[turn->Index].Address != DeadAddress) {
                ++figures.Turns;
                figures.Readings += std::ssize(turn->Values);
            }
            for (due += intervalUs; intervalUs > 0 && due < Time.Microseconds();)
                due += intervalUs;
            Time.SleepUntil(turn ? due : due = Time.Microseconds() + 1000 * monitor.DueInMs());
        }
        figures.Seconds = static_cast<double>(now - begin) / 1e6;
        figures.LineSeconds = static_cast<double>(InUseUs - inUse) / 1e6;
        return figures;
    }

    SerialPorts Ports() {
        SerialPorts ports;
        ports[0] = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }

    Clock& Time;
    SimulatedLine Line;
    kavro::Session Session;
    std::int64_t InUseUs = 0;
};

PaceFigures WatchCase(const PaceCase& pace, bool inMap) {
    VirtualClock time;
    Fleet fleet(time);
    NetworkSearch(fleet.Session, {}).Run();
    int dead = 0;
    while (fleet.Session.ModuleTable[dead].Address != DeadAddress)
        ++dead;
    fleet.Line.ModuleAt(DeadAddress).OwnFaults = pace.Dead;
    if (pace.OtherRate)
        fleet.Session.ModuleTable[dead].BaudCode = Baud19200Code;
    if (!inMap)
        fleet.TakeOutOfMap(dead);
    return fleet.Watch(pace.IntervalMs, WarmUpUs, WatchedUs);
}

void DeadModule() {
    std::printf("\nmonitor: %d modules at 9600 baud, one of them failed; turns of the others per second,\n"
                "minutes 1 to 11 of virtual time, with that module out of the map and in it\n",
                FleetSize);
    std::printf("  %-34s %10s %10s %8s %8s\n", "as fast as the line allows", "out", "in", "ratio", "goal");
    for (const PaceCase& pace : PaceCases) {
        const PaceFigures out = WatchCase(pace, false), in = WatchCase(pace, true);
        const double outRate = static_cast<double>(out.Turns) / out.Seconds;
        const double inRate = static_cast<double>(in.Turns) / in.Seconds;
        std::printf("  %-34s %10.2f %10.2f %8.4f %8s\n", pace.What, outRate, inRate, inRate / outRate,
                    pace.Goal);
    }
}

void PrintUse(const char* what, const std::vector<PaceFigures>& runs) {
    std::vector<double> allowed, read, share;
    for (const PaceFigures& run : runs) {
        const auto readings = static_cast<double>(run.Readings);
        allowed.push_back(readings / run.LineSeconds);
        read.push_back(readings / run.Seconds);
        share.push_back(run.LineSeconds / run.Seconds);
    }
    std::printf("  %-34s %10.2f %10.2f %8.4f %8s\n", what, Median(allowed), Median(read), Median(share),
                ">= 0.95");
}

// All modules answer: whatever is neither command, turn-around nor reply is a pause of the monitor.
void LineInUse() {
    std::printf("\nmonitor: readings per second, %d modules at 9600 baud without a pause between turns\n",
                FleetSize);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "the line", "monitor", "ratio", "goal");
    VirtualClock time;
    Fleet fleet(time);
    NetworkSearch(fleet.Session, {}).Run();
    PrintUse("virtual time", {fleet.Watch(0, WarmUpUs, WatchedUs)});
    SteadyClock realTime;
    Fleet real(realTime);
    real.Session.ModuleCount = fleet.Session.ModuleCount;
    for (int index = 0; index < fleet.Session.ModuleCount; ++index)
        real.Session.ModuleTable[index] = fleet.Session.ModuleTable[index];
    real.Watch(0, 0, RealUs); // the pause for the baud rate, and what is asked once
    std::vector<PaceFigures> runs;
    runs.reserve(RealRuns);
    for (int run = 0; run < RealRuns; ++run)
        runs.push_back(real.Watch(0, 0, RealUs));
    PrintUse("real time, median of 5 runs", runs);
}

void Memory() {
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
    kavro::Memory();
    kavro::DeadModule();
    kavro::LineInUse();
}
