// Polling rate of an 8-channel panel that is not held back by its timer, on the simulated line and the steady
// clock, against the rate at which the characters alone would take all of the time. Two figures: over whole
// runs, which other work on the machine slows, and by the median of the transactions, most of which no other
// work has come into.

#include "bench/figures.h"
#include "link/baud.h"
#include "map/module_access.h"
#include "ports/steady_clock.h"
#include "sim/module_factory.h"
#include "sim/simulated_port.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

namespace kavro {

namespace {

constexpr int Channels = 8;
constexpr int Runs = 15; // short and in turn, so that a busy machine slows all alike
constexpr double RunSeconds = 0.3;
constexpr double BitsPerCharacter = 10;

struct Setting {
    const char* What;
    std::int16_t BaudCode;
    std::int64_t TurnAroundUs;
    bool Sleeping = false; // the baseline: nothing but a sleep for the time of the characters
};
constexpr std::array<Setting, 6> Settings = {{{"sleeping only", 3, 0, true},
                                              {"no turn-around", 3, 0},
                                              {"turn-around 2 ms", 3, 2000},
                                              {"sleeping only", 6, 0, true},
                                              {"no turn-around", 6, 0},
                                              {"turn-around 2 ms", 6, 2000}}};

// An 8250 on a line, and what its panel knows of it.
struct Panel {
    explicit Panel(const Setting& setting) : Session(Ports(), Time), BaudCode(setting.BaudCode) {
        ModuleSettings module = FactorySettings("8250");
        module.Address = 1;
        module.Baud = BaudFromCode(BaudCode);
        Line.Add(MakeModule(std::move(module)));
        Line.TurnAroundMicroseconds = setting.TurnAroundUs;
        Session.ModuleTable[0] = {.Address = 1, .Model = "8250  ", .BaudCode = BaudCode, .InputRange = 8};
        Session.ModuleCount = 1;
        Session.SelectedModule = 0;
        Session.ScanIndex = -1;
        Session.Line.CommPort(1).PortOpen(true);
        Read(0); // the pause for the baud rate is not measured
    }

    // One of the transactions that a tick of the panel consists of. Returns the characters on the wire.
    std::size_t Read(int channel) {
        if (!ReadAnalogInput(Session, 0, channel).Value)
            throw RuntimeFailure("The simulated module gives no reading.");
        return Session.Line.CommandText.size() + Session.Line.ReplyText.size() + 2;
    }

    SerialPorts Ports() {
        SerialPorts ports;
        ports[0] = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }

    SteadyClock Time;
    SimulatedLine Line;
    kavro::Session Session;
    std::int16_t BaudCode;
};

struct Figures {
    double CharactersMs = 0;            // that the characters of a transaction need
    std::vector<double> TransactionsMs; // every one
    std::vector<double> RunMs;          // a transaction on the average of each run
    std::vector<double> ProcessorUs;    // the same
};

void Measure(Panel& panel, bool sleeping, Figures& figures) {
    const auto characters = static_cast<double>(panel.Read(0));
    figures.CharactersMs = characters * BitsPerCharacter * 1e3 / BaudFromCode(panel.BaudCode);
    const double start = Seconds(CLOCK_MONOTONIC);
    const double processor = Seconds(CLOCK_THREAD_CPUTIME_ID);
    double now = start;
    int transactions = 0;
    for (; now < start + RunSeconds || transactions % Channels != 0; ++transactions) {
        if (sleeping)
            panel.Time.SleepUntil(panel.Time.Microseconds() + std::lround(figures.CharactersMs * 1e3));
        else
            panel.Read(transactions % Channels);
        const double before = std::exchange(now, Seconds(CLOCK_MONOTONIC));
        figures.TransactionsMs.push_back((now - before) * 1e3);
    }
    figures.RunMs.push_back((now - start) * 1e3 / transactions);
    figures.ProcessorUs.push_back((Seconds(CLOCK_THREAD_CPUTIME_ID) - processor) * 1e6 / transactions);
}

void Print(const Setting& setting, const Figures& figures) {
    const auto pollsPerSecond = [](double transactionMs) { return 1e3 / (Channels * transactionMs); };
    const double run = Median(figures.RunMs), transaction = Median(figures.TransactionsMs);
    std::printf("  %6d baud, %-19s %10.2f %10.2f %7.3f %10.2f %7.3f %8s %9.1f\n",
                static_cast<int>(BaudFromCode(setting.BaudCode)), setting.What,
                pollsPerSecond(figures.CharactersMs), pollsPerSecond(run), figures.CharactersMs / run,
                pollsPerSecond(transaction), figures.CharactersMs / transaction,
                setting.TurnAroundUs == 0 && !setting.Sleeping ? ">= 0.95" : "", Median(figures.ProcessorUs));
}

void Run() {
    std::vector<std::unique_ptr<Panel>> panels;
    std::vector<Figures> figures(Settings.size());
    for (const Setting& setting : Settings)
        panels.push_back(std::make_unique<Panel>(setting));
    for (int run = 0; run < Runs; ++run)
        for (std::size_t i = 0; i < panels.size(); ++i)
            Measure(*panels[i], Settings[i].Sleeping, figures[i]);

    std::printf("panel: polls of %d channels per second, medians of %d runs and of their transactions\n",
                Channels, Runs);
    std::printf("  %-32s %10s %10s %7s %10s %7s %8s %9s\n", "", "characters", "runs", "ratio", "median",
                "ratio", "goal", "cpu us");
    for (std::size_t i = 0; i < Settings.size(); ++i)
        Print(Settings[i], figures[i]);
}

} // namespace

} // namespace kavro

int main() {
    kavro::Run();
}
