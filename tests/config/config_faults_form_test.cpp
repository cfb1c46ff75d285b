#include "config/module_on_line.h"

namespace kavro {
namespace {

/// Entries, the command that OK sends for them, with "AA" for the address spoken to, and what is told when it
/// is not accepted.
struct Step {
    const char* Entries;
    std::string Command, Failure;
    bool Configures() const { return Command[0] == '%'; }
};

/// A dialog and entries that change all of its module's settings, first those of the module configuration.
struct FormCase {
    ModuleRecord Record;
    std::vector<Step> Steps;
    std::string Load = {};   // sent when the dialog opens; what it reads is always written
    bool ToldAtOnce = false; // the success of the configuration; else that of any step, at the end

    bool Always(const Step& step) const { return !Load.empty() && !step.Configures(); }
    /// Of the reply the "!" alone counts.
    bool AnyAddress(const Step& step) const { return Always(step) || (ToldAtOnce && !step.Configures()); }
};

std::vector<Step> CommandSteps(std::vector<Step> steps) {
    for (Step& step : steps)
        step.Failure += " command failed.";
    return steps;
}

const CounterSettings Counting = {
    .GateMode = 2, .MaxValue = {100, 4e9}, .MinAtHigh = 10, .TtlAtHigh = 24, .AlarmSetting = {0, 1}};

const FormCase Cases[] = {
    {{.Model = "8230  ", .InputRange = 0x20},
     {{"Addr=2;InputRange=Cu, 0~60 ohms;DataFormat=Ohms", "%AA022A0643", ConfigFailedText},
      {"ChannelEnable_0;ChannelDisable_1;ChannelEnable_2", "$AA505",
       "Channel enable/disable configuration failed."}},
     "$AA6"},
    {{.Model = "8320  ", .InputRange = 0x33},
     {{"Addr=2", "%AA02330640", ConfigFailedText},
      {"InputPolarity=Change!", "~AACP01", "Digital input polarity configuration failed."}},
     {},
     true},
    {{.Model = "8450  ", .Digital = {1}},
     {{"Addr=2", "%AA02400640", ConfigFailedText},
      {"InputPolarity=Not change;OutputPolarity=Change!", "~AACP10",
       "Digital I/O polarity configuration failed."}},
     {},
     true},
    {{.Model = "8460  "},
     {{"Addr=2", "%AA02400640", ConfigFailedText},
      {"PortInput_0;PortOutput_1;PortOutput_2;PortInput_3", "$AAS09",
       "Port input/output configuration failed."}},
     "$AA6"},
    {{.Model = "8220  ", .HighAlarm = 8.5F, .LowAlarm = -1.5F, .InputRange = 8},
     {{"Addr=2;DataFormat=% of FSR", "%AA02080641", ConfigFailedText},
      {"AlarmMode=Latch", "@AAEA2", "Alarm mode configuration failed."},
      {"LowAlarm=-2", "@AAPL-02.000", "Low alarm limit configuration failed."},
      {"HighAlarm=2", "@AAPH+02.000", "High alarm limit configuration failed."}}},
    {{.Model = "8510  ", .InputRange = 80, .Counter = Counting},
     CommandSteps({{"Addr=2;FreqGateTime=1 second", "%AA02500644", "Module Configuration"},
                   {"InputMode=Photo Isolated", "$AAB1", "Input Mode Setting"},
                   {"GateMode=High", "$AAA1", "Gate Mode Setting"},
                   {"CounterStatus_0=Start", "$AA501", "Start/Stop Counter"},
                   {"CounterStatus_1=Start", "$AA511", "Start/Stop Counter"},
                   {"MaxValue_0=7", "$AA3000000007", "Max Counter Value Setting"},
                   {"MaxValue_1=8.9", "$AA3100000008", "Max Counter Value Setting"},
                   {"InitialValue_0=3", "@AAP000000003", "Initial Count Value Setting"},
                   {"InitialValue_1=4", "@AAP100000004", "Initial Count Value Setting"},
                   {"DigitalFilter=Enabled", "$AA41", "Digital Filter Enable/Disable"},
                   {"MinAtHigh=21", "$AA0H0021", "Min Input Signal Width at High Level Setting"},
                   {"MinAtLow=22", "$AA0L0022", "Min Input Signal Width at Low Level Setting"},
                   {"TTLAtHigh=3.1", "$AA1H31", "TTL Input High Trigger Level Setting"},
                   {"TTLAtLow=0.9", "$AA1L09", "TTL Input Low Trigger Level Setting"},
                   {"AlarmSetting_0=Enabled", "@AAEA0", "Alarm Enable/Disable"},
                   {"AlarmSetting_1=Disabled", "@AADA1", "Alarm Enable/Disable"},
                   {"AlarmValue_0=5", "@AAPA00000005", "Alarm Limit Value Setting"},
                   {"AlarmValue_1=6", "@AASA00000006", "Alarm Limit Value Setting"}})},
    {ConverterWith(0x6003),
     {{"Addr=2;DataBits=7;Parity=Even;StopBits=2;Interface=RS-485",
       "%AA02" + ToHex(FactorySettings("8620").TypeCode, 2) + "66E01E", ConfigFailedText}}}};

std::string At(const std::string& address, std::string command) {
    return command.replace(1, 2, address);
}

/// A module with checksum for a case, and what its dialog is expected to send and to show.
struct FormSession : ModuleOnLine {
    explicit FormSession(const FormCase& test) : ModuleOnLine(test.Record), Case(test), Pending(test.Steps) {
        Record.Checksum = 1;
        Record.Converter.FormatWord |= 0x4000; // of a converter the same
        Module.Settings.Checksum = true;
    }

    /// Opens the dialog, makes the entries and clicks OK; the adapter is pulled out at that command of OK.
    void Run(std::size_t unplugAt = 0) {
        Messages.Shown.clear();
        // A module that was moved without the program's knowing is put back to where its entry has it.
        MatchModule();
        UnplugAt = 0;
        const auto form = OpenFor(*this);
        Sent.clear();
        UnplugAt = unplugAt;
        QStringList entries;
        for (const Step& step : Case.Steps)
            entries << step.Entries;
        EXPECT_FALSE(StaysOpen(*form, entries.join(';')));
    }

    /// What is sent when those steps are accepted, which are pending no more then.
    Lines Expect(const std::function<bool(const Step&)>& accepted) {
        Lines sent;
        for (const Step& step : std::exchange(Pending, {})) {
            const bool accept = accepted(step);
            sent.push_back(At(Address, step.Command));
            if (!accept || Case.Always(step))
                Pending.push_back(step);
            if (!accept)
                Shown.emplace_back(step.Failure, "Error");
            else if (step.Configures() && Case.ToldAtOnce)
                Shown.push_back(CompleteMessage);
            if (accept && step.Configures())
                Address = "02";
            Any |= accept;
        }
        if (Any && !Case.ToldAtOnce)
            Shown.push_back(CompleteMessage);
        return sent;
    }

    /// What was accepted is in the entry and nothing else: the next time the other steps are sent.
    void ExpectTheRest() {
        Module.CommandFaults = {};
        Run();
        EXPECT_EQ(Sent, Expect([](const Step&) { return true; }));
    }

    const FormCase& Case;
    std::vector<Step> Pending;
    std::string Address = "01";
    ShownMessages Shown;
    bool Any = false; // accepted
};

void CheckFault(const FormCase& test, const std::string& bad, const Faults& fault) {
    SCOPED_TRACE(test.Record.Model + bad);
    FormSession session(test);
    session.Module.CommandFaults = [&](std::string_view command) {
        return At("AA", std::string(command)).starts_with(bad) ? fault : Faults{};
    };
    const auto start = session.Time.GetTickCount();
    session.Run();
    const bool longSilence = fault.Silent && bad != test.Load;
    EXPECT_GE(session.Time.GetTickCount() - start, longSilence ? session.Session.Line.LongReplyTimeout : 0);
    // The module has moved, and only the program does not know.
    const bool lost = bad[0] == '%' && (fault.WrongChecksum || fault.WrongAddress);
    const Lines sent = session.Expect([&](const Step& step) {
        return step.Command == bad ? fault.WrongAddress && test.AnyAddress(step) : !lost;
    });
    EXPECT_EQ(session.Sent, sent);
    EXPECT_EQ(session.Messages.Shown, session.Shown);
    EXPECT_EQ(session.Session.ConfigResult, session.Any ? 1 : 2);
    session.ExpectTheRest();
}

TEST(ConfigFaults, EachAtEachCommandOfEachForm) {
    for (const FormCase& test : Cases)
        for (const Faults& fault : {Faults{.Silent = true}, Faults{.Refuse = true},
                                    Faults{.WrongChecksum = true}, Faults{.WrongAddress = true}}) {
            for (const Step& step : test.Steps)
                CheckFault(test, step.Command, fault);
            if (!test.Load.empty())
                CheckFault(test, test.Load, fault);
        }
}

TEST(ConfigFaults, ALostPortIsOneMessage) {
    for (const FormCase& test : Cases)
        for (std::size_t i = 0; i < test.Steps.size(); ++i) {
            SCOPED_TRACE(test.Record.Model + test.Steps[i].Command);
            FormSession session(test);
            session.Run(i + 1);
            std::size_t step = 0;
            Lines sent = session.Expect([&](const Step&) { return step++ < i; });
            sent.resize(i + 1);
            EXPECT_EQ(session.Sent, sent);
            const ShownMessages& shown = session.Messages.Shown;
            ASSERT_EQ(shown.size(), test.ToldAtOnce && i > 0 ? 2U : 1U);
            EXPECT_EQ(shown.back().second, "Error");
            session.Line.Plug();
            session.Session.Line.CommPort(1).PortOpen(true);
            session.ExpectTheRest();
        }
}

TEST(ConfigFaults, FormsShowTheEntryAsItIs) {
    for (const FormCase& test : Cases) {
        FormSession session(test);
        StaysOpen(*OpenFor(session), "");
        EXPECT_EQ(session.Sent.size(), test.Load.empty() ? 0U : 2U) << test.Record.Model;
    }
}

} // namespace
} // namespace kavro
