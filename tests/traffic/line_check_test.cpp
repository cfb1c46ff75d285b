#include "traffic/line_check.h"

#include "map/search.h"
#include "sim/module_factory.h"
#include "support/test_session.h"
#include "traffic/line_check_report.h"

namespace kavro {
namespace {

/// A simulated line on which somebody else talks, too.
class TalkedPort : public SimulatedPort {
public:
    TalkedPort(SimulatedLine& line, VirtualClock& clock, const std::string& text, const int& everyMs)
        : SimulatedPort(line, clock), clock_(clock), text_(text), everyMs_(everyMs) {}

    int InBufferCount() override { return static_cast<int>(Talk().size()) + SimulatedPort::InBufferCount(); }
    std::string EmptyInBuffer() override {
        return std::exchange(Talk(), {}) + SimulatedPort::EmptyInBuffer();
    }
    char Input() override {
        if (Talk().empty())
            return SimulatedPort::Input();
        const char first = talk_.front();
        talk_.erase(0, 1);
        return first;
    }
    bool WaitForInput(int milliseconds) override {
        if (everyMs_ == 0)
            return SimulatedPort::WaitForInput(milliseconds);
        const std::int64_t end = clock_.GetTickCount() + milliseconds;
        while (InBufferCount() == 0 && clock_.GetTickCount() < end)
            SimulatedPort::WaitForInput(1);
        return InBufferCount() > 0;
    }

private:
    // What has been said by now and was not taken yet.
    std::string& Talk() {
        for (; everyMs_ > 0 && clock_.GetTickCount() >= next_; next_ += everyMs_)
            talk_ += text_;
        return talk_;
    }

    VirtualClock& clock_;
    const std::string& text_;
    const int& everyMs_;
    std::int64_t next_ = 500;
    std::string talk_;
};

struct CheckedSession : TestSession {
    CheckedSession()
        : TestSession(
              [this](int) { return std::make_unique<TalkedPort>(Line, Time, TalkText, TalkEveryMs); }) {
        Session.Line.CommPort(1).PortOpen(true);
        EnableBaudCodes(Session, {3});
    }

    SimulatedModule& Add(std::string_view model, int address, bool checksum = false) {
        return Line.Add(MakeModule(model, address, 9600, checksum));
    }

    // Modules 1 to 5, of several families, in the list.
    void AddUsual() {
        const std::pair<const char*, bool> models[] = {
            {"8250", false}, {"8410", true}, {"8210", true}, {"8310", false}, {"8510", false}};
        for (int address = 1; const auto& [model, checksum] : models)
            Add(model, address++, checksum);
    }

    void Search(int highest = 5) {
        Session.SearchHighAddress = static_cast<std::int16_t>(highest);
        NetworkSearch(Session, {}).Run();
    }

    // "damaged 3, echo"
    std::string Check(int passes = 50) {
        LineCheck check(Session, {passes});
        check.Run();
        Result = check.Result();
        std::string text;
        Findings = FindingsOf(Result);
        for (const LineFinding& finding : Findings)
            text += (text.empty() ? "" : ", ") + finding.Finding +
                    (finding.Address ? " " + std::to_string(*finding.Address) : "");
        return text;
    }

    std::string Report() const {
        std::string text;
        for (const std::string& line : ReportLines(Result, Findings))
            text += line + "\n";
        return text;
    }

    SimulatedLine Line;
    std::string TalkText = "#07\r>+05.123\r";
    int TalkEveryMs = 0; // 0: nobody else talks
    LineCheckResult Result;
    std::vector<LineFinding> Findings;
};

struct FaultyLine {
    const char* Name;
    const char* Findings;
    std::function<void(CheckedSession& test)> Break; // after the search
    int Passes = 50;
    const char* NotSaid = nullptr;
};

void ShareAddress3(CheckedSession& test, std::string_view model, int delayMs = 0) {
    test.Add(model, 3, true).OwnFaults.DelayMs = delayMs;
}

Faults& At(CheckedSession& test, int address) {
    return test.Line.ModuleAt(address).OwnFaults;
}

// Modules that the list has otherwise: another model, or another type and data format.
void Exchange(CheckedSession& test, int address, std::string_view model, int format = -1) {
    ModuleSettings settings = FactorySettings(model);
    settings.Address = address;
    settings.Checksum = address == 2 || address == 3;
    if (format >= 0)
        settings.DataFormat = format;
    At(test, address).Unplugged = true;
    test.Line.Add(MakeModule(settings));
}

const FaultyLine FaultyLines[] = {
    {"good", "", [](CheckedSession&) {}},
    {"adapter with latency", "", [](CheckedSession& test) { test.Line.LineFaults.LatencyMs = 16; }},
    {"silent", "module-silent 3", [](CheckedSession& test) { At(test, 3).Silent = true; }},
    {"two silent", "module-silent 2, module-silent 4",
     [](CheckedSession& test) { At(test, 2).Silent = At(test, 4).Unplugged = true; }},
    {"all silent", "line-silent", [](CheckedSession& test) { test.Line.LineFaults.Silent = true; }},
    {"no carriage return", "damaged 3", [](CheckedSession& test) { At(test, 3).NoCarriageReturn = true; }},
    {"noise", "damaged 3", [](CheckedSession& test) { At(test, 3).Noise = true; }},
    {"noise on all", "damaged", [](CheckedSession& test) { test.Line.LineFaults.Noise = true; }},
    {"wrong checksum", "damaged 3", [](CheckedSession& test) { At(test, 3).WrongChecksum = true; }},
    {"wrong address", "damaged 1", [](CheckedSession& test) { At(test, 1).WrongAddress = true; }},
    {"babble", "damaged 3", [](CheckedSession& test) { At(test, 3).Babble = true; }, 6},
    {"damage 5%", "damaged 1", [](CheckedSession& test) { At(test, 1).DamageShare = 0.05; }},
    {"damage 20%", "damaged 1", [](CheckedSession& test) { At(test, 1).DamageShare = 0.2; }, 50, "Refresh"},
    {"damage 50%", "damaged 3", [](CheckedSession& test) { At(test, 3).DamageShare = 0.5; }},
    {"damage 100%", "damaged 1", [](CheckedSession& test) { At(test, 1).DamageShare = 1; }},
    {"damage all", "damaged", [](CheckedSession& test) { test.Line.LineFaults.DamageShare = 0.2; }},
    {"other models", "damaged 1, damaged 2, refused 3, refused 4",
     [](CheckedSession& test) {
         const char* const models[] = {"8410", "8250", "8510", "8210"};
         for (int address = 1; const char* model : models)
             Exchange(test, address++, model);
     }},
    {"another converter", "refused 1", [](CheckedSession& test) { Exchange(test, 1, "8610"); }},
    {"other data formats", "damaged 1, damaged 3",
     [](CheckedSession& test) {
         Exchange(test, 1, "8250", 2);
         Exchange(test, 3, "8210", 1);
     }},
    {"refuse", "refused 3", [](CheckedSession& test) { At(test, 3).Refuse = true; }},
    {"refuse all", "refused", [](CheckedSession& test) { test.Line.LineFaults.Refuse = true; }},
    {"slow", "slow 3", [](CheckedSession& test) { At(test, 3).DelayMs = 80; }},
    {"slower", "slow 3", [](CheckedSession& test) { At(test, 3).DelayMs = 600; }},
    {"slow all", "slow", [](CheckedSession& test) { test.Line.LineFaults.DelayMs = 75; }},
    {"slow characters", "slow 3", [](CheckedSession& test) { At(test, 3).SlowCharacterMs = 80; }},
    {"late", "slow 4",
     [](CheckedSession& test) {
         At(test, 4).Late = {.2, 100, 400};
     }},
    {"echo", "echo", [](CheckedSession& test) { test.Line.LineFaults.Echo = true; }},
    {"foreign", "foreign", [](CheckedSession& test) { test.TalkEveryMs = 1300; }},
    {"foreign never silent", "foreign", [](CheckedSession& test) { test.TalkEveryMs = 90; }},
    {"foreign and silent", "module-silent 3, foreign",
     [](CheckedSession& test) {
         test.TalkEveryMs = 2100;
         At(test, 3).Silent = true;
     }},
    {"damaged and silent", "damaged 3, module-silent 1, echo",
     [](CheckedSession& test) {
         test.Line.LineFaults.Echo = true;
         At(test, 3).DamageShare = 0.3;
         At(test, 1).Silent = true;
     }},
    {"two of another range", "double-address 3",
     [](CheckedSession& test) {
         ModuleSettings settings = FactorySettings("8210");
         settings.Address = 3;
         settings.Checksum = true;
         settings.TypeCode = 3;
         test.Line.Add(MakeModule(settings));
     }},
    {"two models", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8220"); }},
    {"two families", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8410"); }},
    {"two, 1 ms", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8210", 1); }},
    {"two, 5 ms", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8210", 5); }},
    {"two, 9 ms", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8220", 9); }},
    {"two, 30 ms", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8210", 30); }},
    {"two, 150 ms", "double-address 3", [](CheckedSession& test) { ShareAddress3(test, "8210", 150); }},
};

TEST(LineCheck, NamesEachFault) {
    for (const FaultyLine& line : FaultyLines) {
        for (const std::uint32_t seed : {1U, 2U, 3U}) {
            CheckedSession test;
            test.Line.SetSeed(seed);
            test.AddUsual();
            test.Search();
            line.Break(test);
            EXPECT_EQ(test.Check(line.Passes), line.Findings) << line.Name << ", seed " << seed << "\n"
                                                              << test.Report();
            EXPECT_FALSE(line.NotSaid && Contains(test.Report(), line.NotSaid)) << line.Name << "\n"
                                                                                << test.Report();
        }
    }
}

} // namespace
} // namespace kavro
