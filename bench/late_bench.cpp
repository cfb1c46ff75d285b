// Readings that are wrong because a reply came late: a monitor on a line on which one reply in a hundred
// comes 100 to 400 ms late, at several intervals. A reading is wrong when the module gave no such reply to
// the command that it was asked for in that turn. The modules' replies carry no address, and no two channels
// read alike.
//
//     late_bench [READINGS]

#include "bench/figures.h"
#include "link/codes.h"
#include "map/module_access.h"
#include "map/search.h"
#include "monitor/monitor.h"
#include "sim/digital_module.h"
#include "sim/module_factory.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kavro {

namespace {

constexpr int Intervals[] = {0, 10, 50, 100, 200, 500};
constexpr std::size_t Baud9600Code = 3;
constexpr int AddressStep = 9; // what the simulated channels read depends on the sum of address and channel

// Two of each kind, so that the reply of one has the form of the other's.
struct LateRun {
    LateRun() : Session(Ports(), Time), Monitor(Session) {
        for (const char* model : {"8250", "8510", "8490", "8250", "8510", "8490"}) {
            Session.SearchHighAddress = static_cast<std::int16_t>(Session.SearchHighAddress + AddressStep);
            ModuleSettings settings = FactorySettings(model);
            settings.Address = Session.SearchHighAddress;
            if (settings.Model == "8510")
                settings.TypeCode = FrequencyRange;
            auto& module = Line.Add(MakeModule(settings));
            if (auto* digital = dynamic_cast<DigitalModule*>(&module))
                digital->HeldInputs = settings.Address;
        }
        Session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;
        Session.Line.CommPort(1).PortOpen(true);
        NetworkSearch(Session, {}).Run();
        Line.LineFaults.Late = {.Share = 0.01, .MinMs = 100, .MaxMs = 400};
        Line.Log = [this](const LineEvent& event) { Given[event.Command].push_back(event.Reply); };
    }

    SerialPorts Ports() {
        SerialPorts ports;
        ports[0] = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }

    VirtualClock Time;
    SimulatedLine Line;
    kavro::Session Session;
    kavro::Monitor Monitor;
    std::map<std::string, std::vector<std::string>> Given; // in this turn, by command
};

// What a reply says of a channel.
double NumberIn(const std::string& reply, const std::string& channel) {
    if (channel == "IN" || channel == "OUT") // "!OOOOIIII"
        return std::stoi(reply.substr(channel == "IN" ? 5 : 1, 4), nullptr, 16);
    if (reply.find('.') == std::string::npos)
        return static_cast<double>(std::stoul(reply.substr(1), nullptr, 16));
    return std::stod(reply.substr(1));
}

bool IsRight(const LateRun& run, int index, const ChannelValue& value) {
    const std::string address = AddressText(run.Session, index);
    const bool word = value.Channel == "IN" || value.Channel == "OUT";
    const auto given = run.Given.find(word ? "$" + address + "6" : "#" + address + value.Channel);
    return value.State == ValueState::Ok && given != run.Given.end() &&
           std::ranges::any_of(given->second, [&](const std::string& reply) {
               return NumberIn(reply, value.Channel) == *value.Number;
           });
}

struct Counts {
    int Readings = 0, Wrong = 0, Failed = 0;
};

Counts Measure(int intervalMs, int readings) {
    LateRun run;
    Counts counts;
    for (std::int64_t due = run.Time.GetTickCount(); counts.Readings < readings;
         due = std::max(due + intervalMs, run.Time.GetTickCount())) {
        run.Time.SleepUntil(due * 1000);
        run.Given.clear();
        const auto turn = run.Monitor.Tick();
        if (!turn) // every module backs off
            continue;
        for (const ChannelValue& value : turn->Values) {
            ++counts.Readings;
            const bool told = value.State == ValueState::Error || value.State == ValueState::NoReply;
            counts.Failed += told;
            counts.Wrong += !told && !IsRight(run, turn->Index, value);
        }
    }
    return counts;
}

void Run(int readings) {
    const double start = Seconds(CLOCK_MONOTONIC);
    std::printf("late: 1 %% of the replies late by 100 to 400 ms, time-out 100 ms\n");
    std::printf("  %-34s %10s %10s %10s %8s %8s\n", "", "readings", "failed", "wrong", "percent", "goal");
    for (const int interval : Intervals) {
        const Counts counts = Measure(interval, readings);
        std::printf("  a module every %3d ms %12s %10d %10d %10d %8.3f %8s\n", interval, "", counts.Readings,
                    counts.Failed, counts.Wrong, 100.0 * counts.Wrong / counts.Readings, "0");
    }
    std::printf("  %.1f s\n", Seconds(CLOCK_MONOTONIC) - start);
}

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    kavro::Run(argc > 1 ? std::atoi(argv[1]) : 100'000);
}
