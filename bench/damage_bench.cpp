// What a damaged reply does where no checksum is used: every reply that the modules of the demo line give to
// what is ours, with every damage at every place, once and at every repetition of its command. Counted is how
// often something is told as good that is not so, and how many of these no reader could notice, because the
// damaged reply is a good one of the same model in another state.
//
//     damage_bench [EXAMPLES]
//
// prints that many examples of each operation that could have been noticed.

#include "bench/captured_output.h"
#include "bench/damages.h"
#include "bench/good_replies.h"
#include "bench/tampered_port.h"
#include "cli/config_command.h"
#include "cli/read_command.h"
#include "cli/search_run.h"
#include "diag/alarm_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/text.h"
#include "map/list_line.h"
#include "monitor/monitor.h"

#include <cstdlib>
#include <set>

namespace kavro {

namespace {

constexpr std::size_t Baud9600Code = 3;

/// What an operation says is so, a statement a line. What it tells as failed is not among it.
using Statements = std::set<std::string>;

/// One run of an operation with a module.
struct BenchRun {
    BenchRun(BenchModule& target, CapturedOutput& output)
        : Target(target), Address(Target.Module.Settings.Initialisation ? std::int16_t{0} : std::int16_t{1}),
          Session(Ports(), Time), Output(output) {
        Session.Line.SettingsOf(1).BaudEnabled[Baud9600Code] = 1;
    }

    SerialPorts Ports() {
        SerialPorts ports;
        ports[0] = std::make_unique<TamperedPort>(Target.Module, Time);
        return ports;
    }
    TamperedPort& Port() { return static_cast<TamperedPort&>(Session.Line.CommPort(1)); }
    kavro::Contact Contact() const { return ContactOf(Session, Address, {}); }

    VirtualClock Time;
    BenchModule& Target;
    std::int16_t Address;
    kavro::Session Session;
    CapturedOutput& Output;
};

Statements LinesOf(const std::string& text) {
    std::istringstream lines(text);
    Statements statements;
    for (std::string line; std::getline(lines, line);)
        statements.insert(line);
    return statements;
}

void Search(BenchRun& run, const std::string& /*change*/, Statements& said) {
    SearchOptions options;
    options.HighestAddress = static_cast<std::int16_t>(run.Target.Module.Settings.Address);
    SearchLine(run.Session, options);
    for (int index = 0; index < run.Session.ModuleCount; ++index) {
        const ModuleRecord& record = run.Session.ModuleTable[index];
        if (!record.Complete) // and told so
            continue;
        said.insert({"address " + std::to_string(record.Address), "model " + record.Model,
                     "line " + BuildListLine(run.Session, index)});
    }
}

// A row of values without its time; nothing when it tells a failure.
void AddRow(std::string row, Statements& said) {
    row.erase(0, row.find(',') + 1);
    if (row.ends_with(",ok") || row.ends_with(",disabled") || row.ends_with(",open"))
        said.insert(row);
}

void Read(BenchRun& run, const std::string& /*change*/, Statements& said) {
    ReadValues(run.Session, run.Contact(), {.Form = ValueForm::Csv});
    for (const std::string& row : LinesOf(run.Output.Take()))
        AddRow(row, said);
}

void MonitorTwice(BenchRun& run, const std::string& /*change*/, Statements& said) {
    Monitor monitor(run.Session);
    for (int round = 0; round < 2; ++round) {
        Clock& clock = run.Session.Line.Time();
        clock.SleepUntil(clock.Microseconds() + 1000 * monitor.DueInMs()); // a module that failed backs off
        const auto turn = monitor.Tick();
        for (const std::string& row : LinesOf(CsvLines(run.Session, turn->Index, turn->Values, {})))
            AddRow(row, said);
    }
}

void AlarmPanel(Session& session, Statements& said) {
    AlarmStates states;
    if (ReadAlarmStates(session, 0, states) == Answer::Ok)
        said.insert("alarm " + std::to_string(states.Mode) + " " + std::to_string(states.Outputs) +
                    (states.Input ? " on" : " off"));
    for (const bool high : {false, true})
        if (std::string limit; ReadAlarmLimit(session, 0, high, limit) == Answer::Ok)
            said.insert((high ? "high " : "low ") + limit);
}

void CounterPanel(Session& session, Statements& said) {
    const auto flags = [&](const char* name, const CounterFlags& each) {
        said.insert(std::string(name) + (each[0] ? " 1" : " 0") + (each[1] ? "1" : "0"));
    };
    CounterFlags both;
    CounterAlarms alarms;
    if (ReadCounterStarted(session, 0, both) == Answer::Ok)
        flags("started", both);
    if (ReadCounterOverflow(session, 0, both) == Answer::Ok)
        flags("overflow", both);
    if (ReadCounterAlarms(session, 0, alarms) == Answer::Ok) {
        flags("enabled", alarms.Enabled);
        flags("active", alarms.Active);
    }
}

void DigitalPanel(Session& session, Statements& said) {
    DigitalStates states;
    if (ReadDigitalStates(session, 0, states) == Answer::Ok)
        said.insert({"out " + std::to_string(states.Outputs), "in " + std::to_string(states.Inputs)});
}

void PortPanel(Session& session, Statements& said) {
    unsigned word = 0;
    if (ReadPortDirections(session, 0, word) == Answer::Ok)
        said.insert("directions " + std::to_string(word));
    if (ReadPortLevels(session, 0, word) == Answer::Ok)
        said.insert("levels " + std::to_string(word));
}

struct PanelEntry {
    std::string_view Models;
    void (*Read)(Session& session, Statements& said);
};
constexpr PanelEntry Panels[] = {
    {"8210 8220 8240", AlarmPanel},
    {"8460", PortPanel},
    {"8510", CounterPanel},
    {"8410 8420 8430 8440 8450 8470 8480 8490", DigitalPanel},
};

void ReadPanel(BenchRun& run, const std::string& /*change*/, Statements& said) {
    for (const PanelEntry& panel : Panels)
        if (panel.Models.find(run.Target.Module.Settings.Model) != std::string_view::npos)
            panel.Read(run.Session, said);
}

void Show(BenchRun& run, const std::string& /*change*/, Statements& said) {
    if (ShowConfig(run.Session, run.Contact(), true) == ExitSuccess)
        said = LinesOf(run.Output.Take());
}

// What the module holds when the change is said to be done.
void Set(BenchRun& run, const std::string& change, Statements& said) {
    const auto sign = change.find('=');
    if (SetConfig(run.Session, run.Contact(), {{change.substr(0, sign), change.substr(sign + 1)}}) !=
        ExitSuccess)
        return;
    const auto own = static_cast<std::uint32_t>(run.Target.Module.Settings.Address);
    const std::string address = run.Address == 0 ? "00" : ToHex(static_cast<std::int32_t>(own), 2);
    for (const SettableReply& row : SettableReplies) {
        const std::string command = AtAddress(row.Read, address);
        said.insert(command + " " + run.Target.Reply(command));
    }
}

/// What is measured. The one place that says which functions read.
struct Operation {
    const char* Area;
    const char* Name;
    void (*Run)(BenchRun& run, const std::string& change, Statements& said);
    bool Known = false;      ///< the module has been identified before
    const char* Change = ""; ///< a setting and its new value
};

constexpr Operation Operations[] = {
    {"identification", "kavroctl search", Search},
    {"values", "kavroctl read", Read},
    {"values", "monitor, two rounds", MonitorTwice, true},
    {"values", "panels", ReadPanel, true},
    {"set-up", "kavroctl config show", Show},
    {"settings", "config set address", Set, false, "address=5"},
    {"settings", "config set format", Set, false, "format=1"},
    {"settings", "config set channels", Set, false, "channels=0,2"},
    {"settings", "config set low-alarm", Set, false, "low-alarm=0.5"},
    {"settings", "config set input-polarity", Set, false, "input-polarity=inverted"},
    {"settings", "config set port-a", Set, false, "port-a=output"},
    {"settings", "config set max-0", Set, false, "max-0=5000"},
    {"settings", "config set parity", Set, false, "parity=odd"},
};

/// An exchange that an operation makes when nothing is damaged.
struct GoodExchange {
    std::string Command, Reply; // without their carriage returns
    auto operator<=>(const GoodExchange&) const = default;
};

Statements RunOperation(const Operation& operation, BenchModule& target, CapturedOutput& output,
                        const std::function<void(const std::string&, std::string&)>& tamper) {
    BenchRun run(target, output);
    if (operation.Known)
        TryContact(run.Session, run.Contact());
    run.Port().Tamper = tamper;
    Statements said;
    operation.Run(run, operation.Change, said);
    output.Take();
    return said;
}

struct Counts {
    int Runs = 0, Wrong = 0, Unnoticeable = 0;
    int Left() const { return Wrong - Unnoticeable; }
};

struct Result {
    int Replies = 0;
    Counts Once, Always;
    std::vector<std::string> Examples;
};

class Measurement {
public:
    Measurement(const Operation& operation, std::size_t number, CapturedOutput& output, Result& result)
        : operation_(operation), number_(number), output_(output), result_(result) {}

    void Run() {
        std::set<GoodExchange> exchanges;
        truth_ = RunIt([&](const auto& command, const auto& reply) {
            if (!reply.empty())
                exchanges.insert({command, reply.substr(0, reply.size() - 1)});
        });
        if (truth_.empty()) // the model has nothing of that
            return;
        for (const GoodExchange& exchange : exchanges) {
            ++result_.Replies;
            for (const std::string& damaged : DamagesOf(exchange.Reply)) {
                Try(exchange, damaged, 1, result_.Once);
                Try(exchange, damaged, INT32_MAX, result_.Always);
            }
        }
    }

private:
    Statements RunIt(const std::function<void(const std::string&, std::string&)>& tamper) {
        if (*operation_.Change != '\0') // the module is changed: every run needs a new one
            target_ = std::make_unique<BenchModule>(number_);
        return RunOperation(operation_, *target_, output_, tamper);
    }

    void Try(const GoodExchange& exchange, const std::string& damaged, int times, Counts& counts) {
        const Statements said = RunIt([&](const auto& command, auto& reply) {
            if (command == exchange.Command && times-- > 0)
                reply = damaged + '\r';
        });
        ++counts.Runs;
        if (std::ranges::includes(truth_, said))
            return;
        ++counts.Wrong;
        // A carriage return in its middle ends it.
        const std::string received = damaged.substr(0, damaged.find('\r'));
        if (CouldBeGood(number_, exchange.Command, exchange.Reply, received))
            ++counts.Unnoticeable;
        else if (&counts == &result_.Once)
            Keep(exchange, damaged, said);
    }

    void Keep(const GoodExchange& exchange, const std::string& damaged, const Statements& said) {
        const auto wrong =
            std::ranges::find_if(said, [&](const auto& each) { return !truth_.contains(each); });
        const std::string& model = target_->Module.Settings.Model;
        result_.Examples.push_back(model + " " + exchange.Command + ": " + exchange.Reply + " -> " + damaged +
                                   ": " + *wrong);
    }

    const Operation& operation_;
    std::size_t number_;
    CapturedOutput& output_;
    Result& result_;
    std::unique_ptr<BenchModule> target_ = std::make_unique<BenchModule>(number_);
    Statements truth_;
};

void PrintRow(const Operation& operation, const Result& result) {
    std::printf("  %-15s %-27s %5d %8d", operation.Area, operation.Name, result.Replies, result.Once.Runs);
    for (const Counts& counts : {result.Once, result.Always})
        std::printf("   %6d %6d %6d", counts.Wrong, counts.Unnoticeable, counts.Left());
    std::printf("\n");
}

// Evenly from all of them.
void PrintExamples(const std::vector<std::string>& examples, std::size_t most) {
    const std::size_t count = std::min(most, examples.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::string& example = examples[i * examples.size() / count];
        std::string shown;
        for (const char character : example)
            shown += character >= ' ' && character <= '~' ? character : '.';
        std::printf("      %s\n", shown.c_str());
    }
}

void Run(std::size_t examples) {
    std::printf("damage: every reply with every damage, without checksums\n");
    std::printf("  %-42s  %6s %8s   %-20s   %-20s\n", "", "", "", "damaged once", "damaged every time");
    std::printf("  %-15s %-27s %5s %8s   %6s %6s %6s   %6s %6s %6s\n", "area", "operation", "replies",
                "damages", "wrong", "hidden", "left", "wrong", "hidden", "left");
    for (const Operation& operation : Operations) {
        Result result;
        {
            CapturedOutput output;
            const std::size_t modules = DemoLine().Modules().size();
            for (std::size_t number = 0; number < modules; ++number)
                Measurement(operation, number, output, result).Run();
        }
        PrintRow(operation, result);
        PrintExamples(result.Examples, examples);
        std::fflush(stdout);
    }
    std::printf("  wrong: told as good, but not so; hidden: no reader could notice; goal: none left\n");
}

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    kavro::Run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 0);
}
